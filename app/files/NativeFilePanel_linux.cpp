#include "app/files/NativeFilePanel.h"

#include "app/files/FilePanel.h"

QList<QString> macPickFilesOrFolders(QWidget* parent, const QString& startDirectory, const QString& title)
{
    // The desktop's own panels take either files or folders, not both, so this one is ours.
    FilePanel panel(parent ? parent->window() : nullptr, startDirectory, title);
    if (panel.exec() != QDialog::Accepted)
        return {};
    return panel.pickedPaths();
}

void setMacWindowSubtitle(QWidget*, const char*)
{
    // Windows have one title line here.
}
