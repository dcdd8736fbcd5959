#include "window/MetadataManagerWindow.h"

#include "app/look/Named.h"
#include "app/look/Theme.h"
#include "window/CommonValue.h"
#include "window/DetailPanes.h"
#include "window/FileTable.h"
#include "window/MetadataTexts.h"

#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSplitter>
#include <QTimer>
#include <QVBoxLayout>

namespace {

constexpr int kStartWidth = 1200;
constexpr int kStartHeight = 800;
constexpr int kSplitterHandleWidth = 6;

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
    filesSplitter->addWidget(detailSplitter);
    filesSplitter->setStretchFactor(0, 1);
    filesSplitter->setStretchFactor(1, 2);
    setTabOrders();
    // Qt would begin with what was made first.
    fileTable->setFocus();

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
    detailSplitter = named("detailSplitter", new DetailPanes(filesSplitter));
    keepSplitterOpen(detailSplitter);
    detailSplitter->setStyleSheet(filesSplitter->styleSheet());
    connect(detailSplitter, &DetailPanes::touched, this, &MetadataManagerWindow::onMetadataChanged);
    connect(detailSplitter, &DetailPanes::timecodeClicked, this, &MetadataManagerWindow::onTimecodeClicked);

    saveButton = named("saveButton", new QPushButton(QStringLiteral("Save Changes to Selected Files"), centralArea));
    saveButton->setEnabled(false);
    connect(saveButton, &QPushButton::clicked, this, &MetadataManagerWindow::onSaveChanges);

    mainLayout->addWidget(filesSplitter, 1);
    mainLayout->addWidget(saveButton, 0);
}

QWidget* MetadataManagerWindow::buildFilesPane()
{
    auto* pane = named("filesGroup", new QGroupBox(QStringLiteral("Files")));
    fileTable = named("fileTable", new FileTable);
    connect(fileTable, &FileTable::itemSelectionChanged, this, &MetadataManagerWindow::onFileSelectionChanged);
    connect(fileTable, &FileTable::playWanted, this, &MetadataManagerWindow::onPlayFile);

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

void MetadataManagerWindow::setTabOrders()
{
    const QList<QWidget*> order
        = QList<QWidget*>{ fileTable, addButton, removeFileButton, clearButton, soundReportButton }
        + detailSplitter->tabOrder() + QList<QWidget*>{ saveButton };
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order.at(i - 1), order.at(i));
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
        for (const QString& path : paths)
            files.add(path);
    } catch (...) {
        // A path that can't be sized ends the batch; list and rows must be in step for whoever takes it from here.
        fileTable->appendRows(files);
        throw;
    }
    fileTable->appendRows(files);
    soundReportButton->setEnabled(!files.isEmpty());
}

void MetadataManagerWindow::onFileSelectionChanged()
{
    removeFileButton->setEnabled(fileTable->hasSelection());
    updateMetadataDisplay();
}

void MetadataManagerWindow::onMetadataChanged()
{
    dirty = true;
    saveButton->setEnabled(fileTable->hasSelection());
}

void MetadataManagerWindow::updateMetadataDisplay()
{
    const QList<int> rows = fileTable->selectedRows();
    if (rows.size() == 1 && !files.contains(rows.first())) {
        detailSplitter->dropTypedStart();
        return;
    }
    detailSplitter->showRecords(files.recordsOf(rows));
    saveButton->setEnabled(dirty && !rows.isEmpty());
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the signature is fixed.
QString MetadataManagerWindow::getCommonValue(const QString&, std::function<QString(const BwfMetadata&)> getter)
{
    return commonValue(files.recordsOf(fileTable->selectedRows()), std::cref(getter)).value_or(noValueMark());
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the signature is fixed.
bool MetadataManagerWindow::getCommonBool(const QString&, std::function<bool(const BwfMetadata&)> getter)
{
    return commonValue(files.recordsOf(fileTable->selectedRows()), std::cref(getter)).value_or(false);
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
