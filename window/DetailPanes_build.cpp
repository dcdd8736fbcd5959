#include "window/DetailPanes.h"

#include "app/look/ElidedLabel.h"
#include "app/look/Named.h"
#include "app/look/Theme.h"
#include "window/FileDragFilter.h"
#include "window/MetadataTexts.h"
#include "window/TrackTable.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTextEdit>
#include <QVBoxLayout>

namespace {

constexpr int kNotesMaximumHeight = 100;

/// Adds a row with a label that shows a value of the selection. The row's text names it for assistive tools.
QLabel* addValueRow(QFormLayout* form, const char* title, const char* name)
{
    // Values come out of files, where nothing bounds their length.
    auto* value = named(name, new ElidedLabel(noValueMark()));
    form->addRow(QLatin1String(title), value);
    return value;
}

/// Calls `slot`, a member function of `receiver` without arguments, at each change of the box's state.
/// Qt renamed the signal in 6.7.
template <typename Receiver, typename Slot>
void connectStateChanged(const QCheckBox* box, const Receiver* receiver, Slot slot)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
    QObject::connect(box, &QCheckBox::checkStateChanged, receiver, slot);
#else
    QObject::connect(box, &QCheckBox::stateChanged, receiver, slot);
#endif
}

} // namespace

DetailPanes::DetailPanes(QWidget* parent) : QSplitter(Qt::Horizontal, parent)
{
    buildGeneralPane();
    buildRecordingPane();
    buildTrackPane();
    int index = 0;
    for (QGroupBox* pane : { generalGroup, recordingGroup, trackGroup }) {
        addWidget(pane);
        setStretchFactor(index++, 1);
    }
}

void DetailPanes::buildGeneralPane()
{
    generalGroup = named("generalGroup", new QGroupBox(QStringLiteral("GENERAL")));
    generalForm = named("generalForm", new QFormLayout(generalGroup));

    currentFileLabel = addValueRow(generalForm, "Current File:", "currentFileLabel");
    channelsLabel = addValueRow(generalForm, "Channels:", "channelsLabel");

    auto* const dragFilter = new FileDragFilter(generalGroup);
    const auto addLine = [this, dragFilter](const char* title, const char* name) {
        auto* edit = named(name, new QLineEdit);
        edit->installEventFilter(dragFilter);
        connect(edit, &QLineEdit::textChanged, this, &DetailPanes::touched);
        generalForm->addRow(QLatin1String(title), edit);
        return edit;
    };
    const auto addFlag = [this](const char* title, const char* name) {
        auto* check = named(name, new QCheckBox);
        connectStateChanged(check, this, &DetailPanes::touched);
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
    connect(notesEdit, &QTextEdit::textChanged, this, &DetailPanes::touched);
    generalForm->addRow(QStringLiteral("Notes:"), notesEdit);
}

void DetailPanes::buildRecordingPane()
{
    recordingGroup = named("recordingGroup", new QGroupBox(QStringLiteral("RECORDING INFO")));
    recordingForm = named("recordingForm", new QFormLayout(recordingGroup));

    sampleRateLabel = addValueRow(recordingForm, "Sample Rate:", "sampleRateLabel");
    tcSampleRateLabel = addValueRow(recordingForm, "TC Sample Rate:", "tcSampleRateLabel");
    frameRateLabel = addValueRow(recordingForm, "Frame Rate:", "frameRateLabel");

    timecodeButton = named("timecodeButton", new QPushButton(noValueMark()));
    timecodeButton->setAccessibleName(QStringLiteral("Start timecode"));
    showStart(noValueMark());
    timecodeButton->setFlat(true);
    timecodeButton->setStyleSheet(Theme::timecodeButtonStyleSheet());
    timecodeButton->setCursor(Qt::PointingHandCursor);
    connect(timecodeButton, &QPushButton::clicked, this, &DetailPanes::timecodeClicked);
    recordingForm->addRow(QStringLiteral("Timecode:"), timecodeButton);

    lengthLabel = addValueRow(recordingForm, "Length:", "lengthLabel");
    samplesSinceMidnightLabel = addValueRow(recordingForm, "Samples Since Midnight:", "samplesSinceMidnightLabel");
    userBitsLabel = addValueRow(recordingForm, "UserBits:", "userBitsLabel");
    bitDepthLabel = addValueRow(recordingForm, "Bit Depth:", "bitDepthLabel");
}

void DetailPanes::buildTrackPane()
{
    trackGroup = named("trackGroup", new QGroupBox(QStringLiteral("TRACK INFO")));
    trackLayout = named("trackLayout", new QVBoxLayout(trackGroup));
    trackTable = named("trackTable", makeTrackTable());
    connect(trackTable, &QTableWidget::itemChanged, this, &DetailPanes::touched);
    trackLayout->addWidget(trackTable);
}
