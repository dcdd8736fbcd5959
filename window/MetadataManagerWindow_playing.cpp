#include "window/MetadataManagerWindow.h"

#include "mixer/FilePlaybackMixerDialog.h"
#include "window/FileTable.h"
#include "window/TrackNames.h"

#include <QCoreApplication>
#include <QEvent>
#include <QPointer>

#include <algorithm>

void MetadataManagerWindow::attachPlayButton(int row)
{
    fileTable->attachPlayButton(row);
}

void MetadataManagerWindow::onPlayFile(int row)
{
    if (!files.contains(row))
        return;
    const QString path = files.path(row);
    if (!playbackOverlay || playbackOverlay->filePath != path) {
        // Only one file plays at a time.
        closePlaybackOverlay();
        openPlaybackOverlay(row);
    }
    playbackOverlay->show();
    playbackOverlay->raise();
    playbackOverlay->activateWindow();
}

void MetadataManagerWindow::openPlaybackOverlay(int row)
{
    // By value: the dialog may wait in a warning box, and files may be opened meanwhile.
    const BwfMetadata record = files.record(row);
    auto* const dialog = new FilePlaybackMixerDialog(files.path(row), trackNamesForRow(row), record, this);
    playbackOverlay = dialog;
    connect(dialog, &QObject::destroyed, this, [this, dialog] {
        // An old dialog may go when a new one stands already.
        if (playbackOverlay == dialog)
            playbackOverlay = nullptr;
    });
}

QList<QString> MetadataManagerWindow::trackNamesForRow(int row) const
{
    return files.contains(row) ? mixerTrackNames(files.record(row)) : QList<QString>();
}

void MetadataManagerWindow::closePlaybackOverlay()
{
    if (!playbackOverlay)
        return;
    const QPointer<FilePlaybackMixerDialog> dialog = playbackOverlay;
    playbackOverlay = nullptr;
    dialog->close();
    // It would delete itself with the next turn of the event loop only, and sound on while the next file is read.
    if (dialog)
        QCoreApplication::sendPostedEvents(dialog, QEvent::DeferredDelete);
}

void MetadataManagerWindow::closePlaybackOverlayOfRows(const QList<int>& rows)
{
    if (!playbackOverlay)
        return;
    const auto plays = [this](int row) { return files.contains(row) && files.path(row) == playbackOverlay->filePath; };
    if (std::any_of(rows.begin(), rows.end(), plays))
        closePlaybackOverlay();
}
