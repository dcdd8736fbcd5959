#include "window/MetadataManagerWindow.h"

#include "app/files/FolderWalk.h"
#include "app/files/NativeFilePanel.h"
#include "app/files/WavSuffix.h"
#include "app/settings/ConfigManager.h"
#include "window/DetailPanes.h"
#include "window/FileTable.h"

#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSet>
#include <QUrl>

namespace {

constexpr char kLastDirectoryKey[] = "metadataManager.lastDir";
/// Written by other programs of the family, only read here.
constexpr char kLastRecordingKey[] = "lastRecording.folderPath";

QList<QString> localPaths(const QMimeData* data)
{
    QList<QString> paths;
    for (const QUrl& url : data->urls())
        paths.append(url.toLocalFile());
    return paths;
}

/// Absolute path of `dir` or of the nearest folder above it that exists; empty if there is none.
/// Climbs by the text of the path: QDir::cdUp refuses to step to a folder that does not exist, so it would not get
/// past a missing disk from inside one of its folders.
QString nearestExistingFolder(const QString& dir)
{
    QString path = QDir::cleanPath(QFileInfo(dir).absoluteFilePath());
    while (!QDir(path).exists()) {
        const QString parent = QFileInfo(path).path();
        if (parent == path)
            return {};
        path = parent;
    }
    return path;
}

} // namespace

void MetadataManagerWindow::openFileDialog()
{
    onAdd();
}

void MetadataManagerWindow::onAdd()
{
    const QList<QString> picked
        = macPickFilesOrFolders(this, startingDirectory(), QStringLiteral("Add WAV Files or Folders"));
    if (picked.isEmpty())
        return;

    // Before any filtering: a folder without a single WAV file is remembered too.
    const QFileInfo first(picked.first());
    rememberDirectory(first.isDir() ? first.absoluteFilePath() : first.absolutePath());

    const QList<QString> found = collectWavFilesFromPaths(picked);
    if (found.isEmpty()) {
        QMessageBox::information(
            this, QStringLiteral("Add"), QStringLiteral("No WAV files were found in the selection."), QMessageBox::Ok);
        return;
    }
    addFiles(found);
}

void MetadataManagerWindow::dragEnterEvent(QDragEnterEvent* event)
{
    for (const QString& path : localPaths(event->mimeData())) {
        const QFileInfo file(path);
        if (file.isDir() || hasWavSuffix(file)) {
            event->acceptProposedAction();
            return;
        }
    }
}

void MetadataManagerWindow::dropEvent(QDropEvent* event)
{
    // The event stays as it came: to accept a proposed move would tell the source to delete the files.
    openFiles(collectWavFilesFromPaths(localPaths(event->mimeData())));
}

QList<QString> MetadataManagerWindow::collectWavFilesFromPaths(const QList<QString>& paths) const
{
    QList<QString> found;
    QSet<QString> seen;
    const auto addOnce = [&](const QString& path) {
        if (seen.contains(path))
            return;
        seen.insert(path);
        found.append(path);
    };

    for (const QString& path : paths) {
        const QFileInfo file(path);
        if (!file.exists())
            continue;
        if (file.isDir()) {
            for (const QString& inside : collectWavFilesInDirectory(file.absoluteFilePath()))
                addOnce(inside);
        } else if (hasWavSuffix(file)) {
            addOnce(file.absoluteFilePath());
        }
    }
    return found;
}

QList<QString> MetadataManagerWindow::collectWavFilesInDirectory(const QString& dir) const
{
    return wavFilesUnder(dir);
}

void MetadataManagerWindow::rememberDirectory(const QString& dir)
{
    if (dir.isEmpty())
        return;
    lastDirectory = dir;
    ConfigManager& config = ConfigManager::getInstance();
    config.setString(kLastDirectoryKey, dir.toStdString());
    // A folder that is forgotten at the next start is not worth a message.
    (void)config.saveConfig({});
}

QString MetadataManagerWindow::startingDirectory() const
{
    const ConfigManager& config = ConfigManager::getInstance();
    QString remembered = lastDirectory;
    for (const char* key : { kLastDirectoryKey, kLastRecordingKey }) {
        if (remembered.isEmpty())
            remembered = QString::fromStdString(config.getString(key, {}));
    }
    if (remembered.isEmpty())
        return {};

    return nearestExistingFolder(remembered);
}

void MetadataManagerWindow::onRemoveFile()
{
    const QList<int> rows = fileTable->selectedRows();
    if (rows.isEmpty())
        return;
    closePlaybackOverlayOfRows(rows);
    files.remove(rows);
    fileTable->takeOutRows(rows);
    // The button is about to be disabled, and Qt would hand the keyboard on to "Clear".
    fileTable->setFocus();
    // Row by row the last but one removal would have left a single file in the panes, whose take can be edited.
    if (rows.size() > 1)
        detailSplitter->offerTake();
    onFileSelectionChanged();
    soundReportButton->setEnabled(!files.isEmpty());
    dirty = false;
}

void MetadataManagerWindow::onClear()
{
    closePlaybackOverlay();
    fileTable->clearRows();
    files.clear();
    updateMetadataDisplay();
    soundReportButton->setEnabled(false);
    dirty = false;
}
