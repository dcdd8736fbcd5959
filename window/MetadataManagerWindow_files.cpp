#include "window/MetadataManagerWindow.h"

#include "app/files/FolderWalk.h"
#include "app/files/NativeFilePanel.h"
#include "app/files/WavSuffix.h"
#include "app/settings/ConfigManager.h"
#include "window/FileTableColumns.h"
#include "window/PlayColumnItem.h"

#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSet>
#include <QSignalBlocker>
#include <QTableWidget>
#include <QUrl>

#include <algorithm>

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

/// Rows that follow one another.
struct RowRun {
    int first;
    int count;
};

/// Removal in few steps is cheap; each step costs time by the number of rows, as every play button is renumbered.
constexpr qsizetype kFewRuns = 16;

QList<RowRun> runsOf(const QList<int>& rows)
{
    QList<RowRun> runs;
    for (const int row : rows) {
        if (!runs.isEmpty() && runs.last().first + runs.last().count == row)
            ++runs.last().count;
        else
            runs.append({ row, 1 });
    }
    return runs;
}

void removeRuns(QTableWidget* table, const QList<RowRun>& runs)
{
    // From the bottom up, so that no removal moves the rows still to come.
    for (auto run = runs.crbegin(); run != runs.crend(); ++run)
        table->model()->removeRows(run->first, run->count);
}

/// Where the current row goes when `rows` are removed one by one from the bottom up: to the nearest row above that
/// stays, else to the first one that does. -1 if none stays or none is current.
int currentRowWithout(const QTableWidget* table, const QList<int>& rows)
{
    const auto stays = [&](int row) { return !std::binary_search(rows.begin(), rows.end(), row); };
    for (int row = table->currentRow(); row >= 0; --row) {
        if (stays(row))
            return row;
    }
    for (int row = 0; table->currentRow() >= 0 && row < table->rowCount(); ++row) {
        if (stays(row))
            return row;
    }
    return -1;
}

/// Brings `rows` together at the top in one step, which takes the play buttons along, and removes them in another.
void removeScattered(QTableWidget* table, const QList<int>& rows)
{
    const int current = currentRowWithout(table, rows);
    const int column = std::max(table->currentColumn(), 0);
    table->setCurrentCell(current, column, QItemSelectionModel::Clear);

    const int playColumn = indexOf(FileColumn::Play);
    for (const int row : rows)
        table->item(row, playColumn)->setData(PlayColumnItem::kLeavingRole, true);
    table->model()->sort(playColumn);
    table->model()->removeRows(0, static_cast<int>(rows.size()));
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
    const QList<int> rows = selectedRows();
    if (rows.isEmpty())
        return;
    closePlaybackOverlayOfRows(rows);
    removeRows(rows);
    soundReportButton->setEnabled(!files.isEmpty());
    dirty = false;
}

void MetadataManagerWindow::removeRows(const QList<int>& rows)
{
    files.remove(rows);
    rowsWithPlayButton
        -= static_cast<int>(std::lower_bound(rows.begin(), rows.end(), rowsWithPlayButton) - rows.begin());
    {
        // The panes are filled once, at the end, and not after each removal.
        const QSignalBlocker oneSignal(fileTable);
        const QList<RowRun> runs = runsOf(rows);
        if (runs.size() <= kFewRuns)
            removeRuns(fileTable, runs);
        else
            removeScattered(fileTable, rows);
    }
    // Row by row the last but one removal would have left a single file in the panes, whose take can be edited.
    if (rows.size() > 1)
        takeEdit->setEnabled(true);
    onFileSelectionChanged();
}

void MetadataManagerWindow::onClear()
{
    closePlaybackOverlay();
    fileTable->setRowCount(0);
    files.clear();
    rowsWithPlayButton = 0;
    updateMetadataDisplay();
    soundReportButton->setEnabled(false);
    dirty = false;
}
