#include "window/MetadataManagerWindow.h"

#include "app/look/Theme.h"
#include "app/settings/ConfigManager.h"
#include "window/FileDragFilter.h"
#include "window/FileTableColumns.h"
#include "window/MetadataTexts.h"
#include "window/WidgetHelpers.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QSplitter>
#include <QSplitterHandle>
#include <QTableWidget>
#include <QTextEdit>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <span>

namespace {

constexpr int kNotesMaximumHeight = 100;
constexpr std::array<const char*, kTrackColumnCount> kTrackHeaders{ "Interleave", "Channel", "Track Name", "Function" };
/// Pixels. The last column takes what is left, but never less than it had before; together they fit into a pane of
/// usual size.
constexpr std::array<int, kTrackColumnCount> kTrackColumnWidths{ 88, 76, 110, 70 };

/// Where one pane's size in pixels is kept, and what it is when nothing usable is.
struct PaneSize {
    const char* key;
    int defaultSize;
};

constexpr std::array kFilesPaneSizes{
    PaneSize{ "metadataManager.split.files", 300 },
    PaneSize{ "metadataManager.split.details", 480 },
};

constexpr std::array kDetailPaneSizes{
    PaneSize{ "metadataManager.split.general", 360 },
    PaneSize{ "metadataManager.split.recording", 360 },
    PaneSize{ "metadataManager.split.tracks", 360 },
};

void storeSizes(const QSplitter* splitter, std::span<const PaneSize> panes)
{
    if (splitter == nullptr)
        return;
    const QList<int> sizes = splitter->sizes();
    if (sizes.size() < static_cast<qsizetype>(panes.size()))
        return;
    for (size_t i = 0; i < panes.size(); ++i)
        ConfigManager::getInstance().setInt(panes[i].key, sizes.at(static_cast<qsizetype>(i)));
}

/// Stored and default sizes of one splitter are never mixed: one bad value takes all of them back to the defaults.
void applyStoredSizes(QSplitter* splitter, std::span<const PaneSize> panes)
{
    if (splitter == nullptr)
        return;
    QList<int> stored;
    QList<int> defaults;
    for (const PaneSize& pane : panes) {
        stored.append(ConfigManager::getInstance().getInt(pane.key, -1));
        defaults.append(pane.defaultSize);
    }
    const bool allUsable = std::all_of(stored.cbegin(), stored.cend(), [](int size) { return size > 0; });
    splitter->setSizes(allUsable ? stored : defaults);
}

/// Installed on a splitter's handle: when it is let go, the sizes that its moves have saved go to the disk.
class HandleReleaseFilter : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::MouseButtonRelease)
            (void)ConfigManager::getInstance().flushConfig();
        return QObject::eventFilter(watched, event);
    }
};

/// Adds a row with a label that shows a value of the selection. The row's text names it for assistive tools.
QLabel* addValueRow(QFormLayout* form, const char* title, const char* name)
{
    auto* value = named(name, new QLabel(noValueMark()));
    // Values come out of files; one that looks like markup is still a value.
    value->setTextFormat(Qt::PlainText);
    form->addRow(QLatin1String(title), value);
    return value;
}

} // namespace

QWidget* MetadataManagerWindow::buildDetailPanes()
{
    buildGeneralPane();
    buildRecordingPane();
    buildTrackPane();
    int index = 0;
    for (QGroupBox* pane : { generalGroup, recordingGroup, trackGroup }) {
        detailSplitter->addWidget(pane);
        detailSplitter->setStretchFactor(index++, 1);
    }
    return detailSplitter;
}

void MetadataManagerWindow::buildGeneralPane()
{
    generalGroup = named("generalGroup", new QGroupBox(QStringLiteral("GENERAL")));
    generalForm = named("generalForm", new QFormLayout(generalGroup));

    currentFileLabel = addValueRow(generalForm, "Current File:", "currentFileLabel");
    channelsLabel = addValueRow(generalForm, "Channels:", "channelsLabel");

    auto* const dragFilter = new FileDragFilter(generalGroup);
    const auto addLine = [this, dragFilter](const char* title, const char* name) {
        auto* edit = named(name, new QLineEdit);
        edit->installEventFilter(dragFilter);
        connect(edit, &QLineEdit::textChanged, this, &MetadataManagerWindow::onMetadataChanged);
        generalForm->addRow(QLatin1String(title), edit);
        return edit;
    };
    const auto addFlag = [this](const char* title, const char* name) {
        auto* check = named(name, new QCheckBox);
        connectStateChanged(check, this, &MetadataManagerWindow::onMetadataChanged);
        generalForm->addRow(QLatin1String(title), check);
        return check;
    };
    sceneEdit = addLine("Scene:", "sceneEdit");
    takeEdit = addLine("Take:", "takeEdit");
    circledCheck = addFlag("Circled:", "circledCheck");
    wildTrackCheck = addFlag("Wild Track:", "wildTrackCheck");
    projectEdit = addLine("Project:", "projectEdit");
    tapeIdEdit = addLine("Tape ID:", "tapeIdEdit");

    notesEdit = named("notesEdit", new QTextEdit);
    notesEdit->setMaximumHeight(kNotesMaximumHeight);
    // It has all its height already; asking for more would push the rows above apart in a tall pane.
    notesEdit->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    // Tab goes on to the next control, as everywhere in the panes.
    notesEdit->setTabChangesFocus(true);
    // Files hold plain text only; what is pasted shall not look as if they held more.
    notesEdit->setAcceptRichText(false);
    notesEdit->viewport()->installEventFilter(dragFilter);
    connect(notesEdit, &QTextEdit::textChanged, this, &MetadataManagerWindow::onMetadataChanged);
    generalForm->addRow(QStringLiteral("Notes:"), notesEdit);
}

void MetadataManagerWindow::buildRecordingPane()
{
    recordingGroup = named("recordingGroup", new QGroupBox(QStringLiteral("RECORDING INFO")));
    recordingForm = named("recordingForm", new QFormLayout(recordingGroup));

    sampleRateLabel = addValueRow(recordingForm, "Sample Rate:", "sampleRateLabel");
    tcSampleRateLabel = addValueRow(recordingForm, "TC Sample Rate:", "tcSampleRateLabel");
    frameRateLabel = addValueRow(recordingForm, "Frame Rate:", "frameRateLabel");

    timecodeButton = named("timecodeButton", new QPushButton(noValueMark()));
    timecodeButton->setFlat(true);
    timecodeButton->setStyleSheet(Theme::timecodeButtonStyleSheet());
    timecodeButton->setCursor(Qt::PointingHandCursor);
    connect(timecodeButton, &QPushButton::clicked, this, &MetadataManagerWindow::onTimecodeClicked);
    recordingForm->addRow(QStringLiteral("Timecode:"), timecodeButton);

    lengthLabel = addValueRow(recordingForm, "Length:", "lengthLabel");
    samplesSinceMidnightLabel = addValueRow(recordingForm, "Samples Since Midnight:", "samplesSinceMidnightLabel");
    userBitsLabel = addValueRow(recordingForm, "UserBits:", "userBitsLabel");
    bitDepthLabel = addValueRow(recordingForm, "Bit Depth:", "bitDepthLabel");
}

void MetadataManagerWindow::buildTrackPane()
{
    trackGroup = named("trackGroup", new QGroupBox(QStringLiteral("TRACK INFO")));
    trackLayout = named("trackLayout", new QVBoxLayout(trackGroup));

    trackTable = named("trackTable", new QTableWidget(0, kTrackColumnCount));
    trackTable->setAccessibleName(QStringLiteral("Tracks"));
    QStringList titles;
    for (const char* title : kTrackHeaders)
        titles.append(QLatin1String(title));
    trackTable->setHorizontalHeaderLabels(titles);
    for (int column = 0; column < kTrackColumnCount; ++column)
        trackTable->setColumnWidth(column, kTrackColumnWidths[static_cast<size_t>(column)]);
    trackTable->horizontalHeader()->setStretchLastSection(true);
    trackTable->verticalHeader()->setVisible(false);
    trackTable->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked);
    // Outside an open cell editor Tab leaves the table.
    trackTable->setTabKeyNavigation(false);
    trackTable->setAlternatingRowColors(true);
    trackTable->setStyleSheet(Theme::fileTableStyleSheet());
    connect(trackTable, &QTableWidget::itemChanged, this, &MetadataManagerWindow::onMetadataChanged);
    trackLayout->addWidget(trackTable);
}

void MetadataManagerWindow::setTabOrders()
{
    const QList<QWidget*> order{ fileTable, addButton, removeFileButton, clearButton, soundReportButton, sceneEdit,
        takeEdit, circledCheck, wildTrackCheck, projectEdit, tapeIdEdit, notesEdit, timecodeButton, trackTable,
        saveButton };
    for (qsizetype i = 1; i < order.size(); ++i)
        setTabOrder(order.at(i - 1), order.at(i));
}

void MetadataManagerWindow::persistSplitterSizes()
{
    storeSizes(filesSplitter, kFilesPaneSizes);
    storeSizes(detailSplitter, kDetailPaneSizes);
    // Every move of a handle comes here, as often as the mouse reports. Another program may look at the file at any
    // moment, so each move is written, but the disk is waited for only when the handle is let go: on a slow one the
    // handle would stutter behind the mouse. Sizes that are forgotten at the next start are not worth a message.
    (void)ConfigManager::getInstance().saveConfigUnflushed();
}

void MetadataManagerWindow::keepSizesOf(QSplitter* splitter)
{
    connect(splitter, &QSplitter::splitterMoved, this, &MetadataManagerWindow::persistSplitterSizes);
    auto* const filter = new HandleReleaseFilter(splitter);
    for (int i = 1; i < splitter->count(); ++i)
        splitter->handle(i)->installEventFilter(filter);
}

void MetadataManagerWindow::restoreSplitterSizes()
{
    applyStoredSizes(filesSplitter, kFilesPaneSizes);
    applyStoredSizes(detailSplitter, kDetailPaneSizes);
}
