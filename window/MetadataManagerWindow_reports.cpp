#include "window/MetadataManagerWindow.h"

#include "report/SoundReportDialog.h"

void MetadataManagerWindow::onSoundReport()
{
    // The button needs files, the menu entry doesn't: without any the dialog asks for a folder.
    if (files.isEmpty()) {
        SoundReportDialog dialog(this);
        dialog.exec();
        return;
    }
    // A copy: the list may change while the dialog runs its own event loop.
    const QList<QString> paths = files.paths();
    SoundReportDialog dialog(paths, this);
    dialog.exec();
}
