#pragma once

#include <QList>
#include <QString>

class QWidget;

/// Lets the user pick files and folders together, several at once, in one modal panel whose button reads "Add".
/// `parent` may be null. The panel starts in `startDirectory`; where it starts if that is empty is its own choice.
/// Every kind of file can be picked. Gives absolute paths in the panel's order, symbolic links resolved.
/// Empty if the user cancelled. Thread: main only; blocks until the panel is closed, while events go on.
QList<QString> macPickFilesOrFolders(QWidget* parent, const QString& startDirectory, const QString& title);

/// Sets the small second title line of a window that is shown already; `subtitle` is UTF-8.
/// Does nothing where windows have no such line, or if either pointer is null. Thread: main only.
void setMacWindowSubtitle(QWidget* window, const char* subtitle);
