#include "app/TagwellApplication.h"

#include "app/files/WavSuffix.h"
#include "window/MetadataManagerWindow.h"

#include <QFileOpenEvent>

TagwellApplication::~TagwellApplication() = default;

bool TagwellApplication::event(QEvent* event)
{
    if (event->type() != QEvent::FileOpen)
        return QApplication::event(event);

    // A folder is not taken: folders come by drag and drop or through the open panel.
    const QString file = static_cast<QFileOpenEvent*>(event)->file();
    if (file.isEmpty() || !hasWavSuffix(QFileInfo(file)) || mainWindow == nullptr)
        return QApplication::event(event);

    mainWindow->openFiles({ file });
    mainWindow->show();
    mainWindow->raise();
    mainWindow->activateWindow();
    return true;
}
