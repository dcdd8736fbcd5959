#include "window/MetadataManagerWindow.h"

#include "app/ConfigManager.h"
#include "app/NativeFilePanel.h"
#include "window/FileTableColumns.h"

#include <QDir>
#include <QDirIterator>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSignalBlocker>
#include <QStringList>
#include <QTableWidget>
#include <QUrl>

namespace {

constexpr char kLastDirectoryKey[] = "metadataManager.lastDir";
/// Written by other programs of the family, only read here.
constexpr char kLastRecordingKey[] = "lastRecording.folderPath";

bool hasWavSuffix(const QFileInfo& file) { return file.suffix().compare(QLatin1String("wav"), Qt::CaseInsensitive) == 0; }

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

/// `list` without the entries at `rows`, which are ascending and in range.
template <typename Entry>
void eraseRows(QList<Entry>& list, const QList<int>& rows)
{
    auto nextErased = rows.begin();
    auto kept = list.begin();
    for (qsizetype row = 0; row < list.size(); ++row) {
        if (nextErased != rows.end() && *nextErased == row) {
            ++nextErased;
            continue;
        }
        *kept++ = std::move(list[row]);
    }
    list.erase(kept, list.end());
}

} // namespace

void MetadataManagerWindow::openFileDialog() { onAdd(); }

void MetadataManagerWindow::onAdd()
{
    const QList<QString> picked
        = macPickFilesOrFolders(this, startingDirectory(), QStringLiteral("Add WAV Files or Folders"));
    if (picked.isEmpty())
        return;

    // Before any filtering: a folder without a single WAV file is remembered too.
    const QFileInfo first(picked.first());
    rememberDirectory(first.isDir() ? first.absoluteFilePath() : first.absolutePath());

    const QList<QString> files = collectWavFilesFromPaths(picked);
    if (files.isEmpty()) {
        QMessageBox::information(
            this, QStringLiteral("Add"), QStringLiteral("No WAV files were found in the selection."), QMessageBox::Ok);
        return;
    }
    addFiles(files);
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
    QList<QString> files;
    QSet<QString> seen;
    const auto addOnce = [&](const QString& path) {
        if (seen.contains(path))
            return;
        seen.insert(path);
        files.append(path);
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
    return files;
}

QList<QString> MetadataManagerWindow::collectWavFilesInDirectory(const QString& dir) const
{
    QStringList files;
    QDirIterator walk(dir, { QStringLiteral("*.wav"), QStringLiteral("*.WAV") }, QDir::Files,
        QDirIterator::Subdirectories);
    while (walk.hasNext())
        files.append(walk.next());
    files.sort(Qt::CaseInsensitive);
    return files;
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
    const QList<int> rows = selectedRows();
    if (rows.isEmpty())
        return;
    closePlaybackOverlayOfRows(rows);
    removeRows(rows);
    soundReportButton->setEnabled(!filePaths.isEmpty());
    dirty = false;
}

void MetadataManagerWindow::removeRows(const QList<int>& rows)
{
    for (const int row : rows)
        listedPaths.remove(filePaths.at(row));
    eraseRows(records, rows);
    eraseRows(filePaths, rows);
    {
        // The panes are filled once, at the end, and not after each removal.
        const QSignalBlocker oneSignal(fileTable);
        for (qsizetype last = rows.size() - 1; last >= 0;) {
            qsizetype first = last;
            while (first > 0 && rows.at(first - 1) == rows.at(first) - 1)
                --first;
            fileTable->model()->removeRows(rows.at(first), rows.at(last) - rows.at(first) + 1);
            last = first - 1;
        }
    }
    onFileSelectionChanged();
}

void MetadataManagerWindow::onClear()
{
    closePlaybackOverlay();
    fileTable->setRowCount(0);
    records.clear();
    filePaths.clear();
    listedPaths.clear();
    updateMetadataDisplay();
    soundReportButton->setEnabled(false);
    dirty = false;
}
