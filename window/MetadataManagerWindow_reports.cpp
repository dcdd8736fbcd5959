#include "window/MetadataManagerWindow.h"

#include "report/SoundReportDialog.h"

void MetadataManagerWindow::onSoundReport()
{
    // The button needs files, the menu entry doesn't: without any the dialog asks for a folder.
    if (filePaths.isEmpty()) {
        SoundReportDialog dialog(this);
        dialog.exec();
        return;
    }
    // A copy: the list may change while the dialog runs its own event loop.
    const QList<QString> files = filePaths;
    SoundReportDialog dialog(files, this);
    dialog.exec();
}
