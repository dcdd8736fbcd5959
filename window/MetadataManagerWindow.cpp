#include "window/MetadataManagerWindow.h"

#include "app/look/Theme.h"
#include "core/BwfMetadataReader.h"
#include "window/FileCellDelegate.h"
#include "window/FileTableColumns.h"
#include "window/MetadataTexts.h"
#include "window/PlayColumnItem.h"
#include "window/WidgetHelpers.h"

#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QSplitter>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace {

constexpr int kStartWidth = 1200;
constexpr int kStartHeight = 800;
constexpr int kSplitterHandleWidth = 6;
constexpr int kPlayColumnWidth = 40;
constexpr int kSmallestColumnWidth = 24;
constexpr int kFewestPlayButtonsAtOnce = 100;
/// Qt lays out and looks through all buttons after each round, so rounds of one size would cost time by the square of
/// the rows. Rounds by a part of what is there keep it in proportion.
constexpr int kPartOfPlayButtonsAtOnce = 16;

constexpr std::array<const char*, kFileColumnCount> kFileHeaders{ "", "File Name", "File Size", "Channels", "TAPEID",
    "SCENE", "TAKE", "START TC", "LENGTH", "DATE", "CIRCLED", "SAMPLE RATE", "FRAME RATE", "Notes" };

void keepSplitterOpen(QSplitter* splitter)
{
    splitter->setChildrenCollapsible(false);
    splitter->setHandleWidth(kSplitterHandleWidth);
}

} // namespace

MetadataManagerWindow::MetadataManagerWindow(QWidget* parent) : QMainWindow(parent)
{
    setWindowTitle(QStringLiteral("Metadata Manager - BWF Editor"));
    setAcceptDrops(true);
    resize(kStartWidth, kStartHeight);
    setStyleSheet(Theme::filledMainStyleSheet());
    setupUI();
}

MetadataManagerWindow::~MetadataManagerWindow()
{
    closePlaybackOverlay();
}

void MetadataManagerWindow::setupUI()
{
    buildFrame();
    filesSplitter->addWidget(buildFilesPane());
    filesSplitter->addWidget(buildDetailPanes());
    filesSplitter->setStretchFactor(0, 1);
    filesSplitter->setStretchFactor(1, 2);
    setTabOrders();

    keepSizesOf(filesSplitter);
    keepSizesOf(detailSplitter);
    // The splitters have no real size before the event loop runs.
    QTimer::singleShot(0, this, &MetadataManagerWindow::restoreSplitterSizes);
}

void MetadataManagerWindow::buildFrame()
{
    centralArea = named("centralArea", new QWidget(this));
    mainLayout = named("mainLayout", new QVBoxLayout(centralArea));
    setCentralWidget(centralArea);

    filesSplitter = named("filesSplitter", new QSplitter(Qt::Vertical, centralArea));
    keepSplitterOpen(filesSplitter);
    filesSplitter->setStyleSheet(Theme::splitterHandleStyleSheet());
    detailSplitter = named("detailSplitter", new QSplitter(Qt::Horizontal, filesSplitter));
    keepSplitterOpen(detailSplitter);
    detailSplitter->setStyleSheet(filesSplitter->styleSheet());

    saveButton = named("saveButton", new QPushButton(QStringLiteral("Save Changes to Selected Files"), centralArea));
    saveButton->setEnabled(false);
    connect(saveButton, &QPushButton::clicked, this, &MetadataManagerWindow::onSaveChanges);

    mainLayout->addWidget(filesSplitter, 1);
    mainLayout->addWidget(saveButton, 0);
}

QWidget* MetadataManagerWindow::buildFilesPane()
{
    auto* pane = named("filesGroup", new QGroupBox(QStringLiteral("Files")));
    buildFileTable();

    addButton = named("addButton", new QPushButton(QStringLiteral("Add...")));
    addButton->setToolTip(QStringLiteral("Add WAV files, or folders (all WAVs inside are added)."));
    connect(addButton, &QPushButton::clicked, this, &MetadataManagerWindow::onAdd);

    removeFileButton = named("removeFileButton", new QPushButton(QStringLiteral("Remove File")));
    removeFileButton->setEnabled(false);
    connect(removeFileButton, &QPushButton::clicked, this, &MetadataManagerWindow::onRemoveFile);

    clearButton = named("clearButton", new QPushButton(QStringLiteral("Clear")));
    connect(clearButton, &QPushButton::clicked, this, &MetadataManagerWindow::onClear);

    soundReportButton = named("soundReportButton", new QPushButton(QStringLiteral("Create Sound Report...")));
    soundReportButton->setToolTip(
        QStringLiteral("Create a sound report (PDF / CSV / ALE) from the files above. Add files first."));
    soundReportButton->setEnabled(false);
    connect(soundReportButton, &QPushButton::clicked, this, &MetadataManagerWindow::onSoundReport);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(addButton);
    buttons->addWidget(removeFileButton);
    buttons->addWidget(clearButton);
    buttons->addStretch();
    buttons->addWidget(soundReportButton);

    auto* layout = new QVBoxLayout(pane);
    layout->addWidget(fileTable);
    layout->addLayout(buttons);
    return pane;
}

void MetadataManagerWindow::buildFileTable()
{
    fileTable = named("fileTable", new QTableWidget(0, kFileColumnCount));
    fileTable->setAccessibleName(QStringLiteral("Files"));
    fileCells = new FileCellDelegate(fileTable);
    fileTable->setItemDelegate(fileCells);
    QStringList titles;
    for (const char* title : kFileHeaders)
        titles.append(QLatin1String(title));
    fileTable->setHorizontalHeaderLabels(titles);

    fileTable->setSelectionMode(QAbstractItemView::ExtendedSelection);
    fileTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    fileTable->setDragDropMode(QAbstractItemView::DropOnly);
    fileTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    // Tab leaves the table instead of walking through its cells for ever.
    fileTable->setTabKeyNavigation(false);
    fileTable->verticalHeader()->setVisible(false);
    fileTable->horizontalHeader()->setStretchLastSection(true);
    fileTable->horizontalHeader()->setMinimumSectionSize(kSmallestColumnWidth);
    fileTable->horizontalHeader()->setSectionResizeMode(indexOf(FileColumn::Play), QHeaderView::Fixed);
    fileTable->setColumnWidth(indexOf(FileColumn::Play), kPlayColumnWidth);
    fileTable->setShowGrid(false);
    fileTable->setAlternatingRowColors(true);
    fileTable->setStyleSheet(Theme::fileTableStyleSheet());
    fitFileColumns();
    connect(fileTable, &QTableWidget::itemSelectionChanged, this, &MetadataManagerWindow::onFileSelectionChanged);
}

void MetadataManagerWindow::openFiles(const QList<QString>& paths)
{
    if (paths.isEmpty())
        return;
    const QFileInfo first(paths.first());
    rememberDirectory(first.isDir() ? first.absoluteFilePath() : first.absolutePath());
    addFiles(paths);
}

void MetadataManagerWindow::addFiles(const QList<QString>& paths)
{
    try {
        readNewFiles(paths);
    } catch (...) {
        // A path that can't be sized ends the batch; lists and rows must be in step for whoever takes it from here.
        appendRowsForNewRecords();
        throw;
    }
    appendRowsForNewRecords();
    soundReportButton->setEnabled(!filePaths.isEmpty());
}

void MetadataManagerWindow::readNewFiles(const QList<QString>& paths)
{
    for (const QString& path : paths) {
        if (listedPaths.contains(path))
            continue;
        records.append(BwfMetadataReader::readMetadata(path.toStdString()));
        filePaths.append(path);
        listedPaths.insert(path);
    }
}

void MetadataManagerWindow::appendRowsForNewRecords()
{
    const int firstNewRow = fileTable->rowCount();
    const int rowCount = static_cast<int>(records.size());
    // All rows at once: each insertion by itself would renumber every play button above it. Updates stay enabled, since
    // enabling them again marks every button for painting; nothing is painted before the event loop runs anyway.
    fileTable->setRowCount(rowCount);
    for (int row = firstNewRow; row < rowCount; ++row)
        fillFileRow(row);
    attachWaitingPlayButtons();
    fitFileColumns();
}

void MetadataManagerWindow::attachWaitingPlayButtons()
{
    // A styled button takes ten times as long as reading its file. The first rows get theirs at once, the others while
    // the window is idle, so that thousands of files are there to be worked on long before the last button is.
    const int round = std::max(kFewestPlayButtonsAtOnce, rowsWithPlayButton / kPartOfPlayButtonsAtOnce);
    const int end = std::min(fileTable->rowCount(), rowsWithPlayButton + round);
    for (; rowsWithPlayButton < end; ++rowsWithPlayButton)
        attachPlayButton(rowsWithPlayButton);
    if (rowsWithPlayButton >= fileTable->rowCount() || playButtonRoundIsDue)
        return;
    playButtonRoundIsDue = true;
    QTimer::singleShot(0, this, [this] {
        playButtonRoundIsDue = false;
        attachWaitingPlayButtons();
    });
}

void MetadataManagerWindow::fillFileRow(int row)
{
    auto* playItem = new PlayColumnItem;
    playItem->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    playItem->setTextAlignment(Qt::AlignCenter);
    fileTable->setItem(row, indexOf(FileColumn::Play), playItem);

    const QFileInfo file(filePaths.at(row));
    for (int column = indexOf(FileColumn::FileName); column < kFileColumnCount; ++column) {
        const QString text = fileCellText(static_cast<FileColumn>(column), records.at(row), file);
        fileTable->setItem(row, column, new QTableWidgetItem(text));
    }
}

void MetadataManagerWindow::fitFileColumns()
{
    fileCells->beginFitting();
    for (int column = indexOf(FileColumn::FileName); column < kFileColumnCount; ++column)
        fileTable->resizeColumnToContents(column);
    fileCells->endFitting();
    fileTable->horizontalHeader()->setSectionResizeMode(indexOf(FileColumn::Play), QHeaderView::Fixed);
    fileTable->setColumnWidth(indexOf(FileColumn::Play), kPlayColumnWidth);
}

bool MetadataManagerWindow::hasRecord(int row) const
{
    return row >= 0 && row < records.size();
}

QString MetadataManagerWindow::formatFileSize(unsigned long long bytes)
{
    return fileSizeText(bytes);
}

QString MetadataManagerWindow::formatTimecode(unsigned long long samples, unsigned int sampleRate, double frameRate)
{
    return timecodeText(samples, sampleRate, frameRate);
}

QString MetadataManagerWindow::formatDuration(double seconds)
{
    return durationText(seconds);
}
