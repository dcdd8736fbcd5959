#pragma once

#include <QFileDialog>
#include <QString>
#include <QStringList>

/// Shows `chooser` in Qt's own look, whatever the system's is, and gives the file that was picked; empty if none was.
/// Interface thread.
inline QString chosenFile(QFileDialog& chooser)
{
    chooser.setOption(QFileDialog::DontUseNativeDialog);
    const QStringList chosen = chooser.exec() == QDialog::Accepted ? chooser.selectedFiles() : QStringList();
    return chosen.isEmpty() ? QString() : chosen.first();
}
