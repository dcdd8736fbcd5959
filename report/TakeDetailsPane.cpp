#include "report/TakeDetailsPane.h"

#include "app/look/ElidedLabel.h"
#include "app/look/Named.h"
#include "report/ReportTexts.h"
#include "report/TakeInfo.h"

#include <QFormLayout>
#include <QLabel>

#include <array>

namespace {

constexpr int kMaximumWidth = 400; // Pixels.
constexpr int kMostLines = 8; // Of a text that wraps; more would push the rows below out of the window.
constexpr char kNoValue[] = "--";
constexpr char kNotAvailable[] = "N/A";

struct Row {
    const char* caption;
    const char* name;
    QString (*text)(const TakeInfo& take);
    // For texts that outgrow the pane in practice: eight track names, a long note.
    bool wraps = false;
};

template <std::string TakeInfo::*field> QString fieldText(const TakeInfo& take)
{
    return QString::fromStdString(take.*field);
}

QString tracksText(const TakeInfo& take)
{
    // A track without a name is a track all the same.
    return take.tracks.empty() ? QLatin1String(kNotAvailable) : joinedTracks(take, QStringLiteral(", "));
}

QString notesText(const TakeInfo& take)
{
    const QString notes = QString::fromStdString(take.notes);
    return notes.isEmpty() ? QLatin1String(kNotAvailable) : notes;
}

QString fileDateText(const TakeInfo& take)
{
    return take.fileDate.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

constexpr std::array<Row, 12> kRows{ {
    { "File Number:", "fileNumberLabel", fieldText<&TakeInfo::fileNumber> },
    { "Filename:", "filenameLabel", fieldText<&TakeInfo::filename> },
    { "Scene:", "sceneLabel", fieldText<&TakeInfo::scene> },
    { "Take:", "takeLabel", fieldText<&TakeInfo::take> },
    { "Project:", "projectLabel", fieldText<&TakeInfo::project> },
    { "Sound Roll:", "soundRollLabel", fieldText<&TakeInfo::soundRoll> },
    { "Timecode In:", "timecodeInLabel", fieldText<&TakeInfo::timecodeIn> },
    { "Timecode Out:", "timecodeOutLabel", fieldText<&TakeInfo::timecodeOut> },
    { "Duration:", "durationLabel", [](const TakeInfo& take) { return reportDuration(take); } },
    { "Tracks:", "tracksLabel", tracksText, true },
    { "Notes:", "notesLabel", notesText, true },
    { "File Date:", "fileDateLabel", fileDateText },
} };

} // namespace

TakeDetailsPane::TakeDetailsPane(QWidget* parent) : QGroupBox(QStringLiteral("Take Details"), parent)
{
    named("detailsGroup", this);
    setMaximumWidth(kMaximumWidth);
    auto* detailsLayout = named("detailsLayout", new QFormLayout(this));
    for (const Row& row : kRows) {
        auto* label = named(row.name, new ElidedLabel(QLatin1String(kNoValue), row.wraps ? kMostLines : 1));
        detailsLayout->addRow(QLatin1String(row.caption), label);
        valueLabels.push_back(label);
    }
}

void TakeDetailsPane::showTake(const TakeInfo& take)
{
    size_t row = 0;
    for (QLabel* label : valueLabels)
        label->setText(kRows[row++].text(take));
}

void TakeDetailsPane::showNoTake()
{
    for (QLabel* label : valueLabels)
        label->setText(QLatin1String(kNoValue));
}
