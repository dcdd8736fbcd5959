#include "report/SoundReportDialog.h"

#include "app/settings/ConfigManager.h"

#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPalette>
#include <QPushButton>
#include <QStandardPaths>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <array>
#include <chrono>

namespace {

constexpr int kCsvFormat = 1;
constexpr int kAleFormat = 2;
constexpr int kToastTop = 50; // Pixels below the dialog's upper edge.
constexpr std::chrono::milliseconds kToastTime{ 2000 };

const char* const kNoValue = "--";
const char* const kNotAvailable = "N/A";

struct ReportFormat {
    const char* extension;
    const char* filter;
    const char* name;
};

ReportFormat reportFormat(int outputFormat)
{
    switch (outputFormat) {
    case kAleFormat:
        return { ".ale", "ALE Files (*.ale)", "ALE" };
    case kCsvFormat:
        return { ".csv", "CSV Files (*.csv)", "CSV" };
    default:
        return { ".pdf", "PDF Files (*.pdf)", "PDF" };
    }
}

QString setting(const char* key)
{
    return QString::fromStdString(ConfigManager::getInstance().getString(key, ""));
}

// Where the recorder that shares the settings keeps the current roll.
struct RecordingPlace {
    QString location = setting("media.saveLocation");
    QString project = setting("metadata.project");
    QString roll = setting("lastRecording.soundRoll");

    bool isKnown() const { return !location.isEmpty() && !project.isEmpty(); }
};

QString folderToStartIn()
{
    const RecordingPlace place;
    if (!place.isKnown())
        return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString folder = QDir(place.location).filePath(place.project);
    return place.roll.isEmpty() ? folder : QDir(folder).filePath(place.roll);
}

QString textOr(const QString& text, const char* fallback)
{
    return text.isEmpty() ? QString::fromLatin1(fallback) : text;
}

// The dark sheet gives rows a ground and a text colour but no alternate ground, which would come light from the
// system's palette, with the light text on it.
void keepAlternateRowsDark(QTableWidget& table)
{
    QPalette palette = table.palette();
    palette.setColor(QPalette::AlternateBase, QColor(0x25, 0x25, 0x26));
    table.setPalette(palette);
}

} // namespace

SoundReportDialog::SoundReportDialog(QWidget* parent) : QDialog(parent)
{
    setupUI();
    loadProductionInfo();
    openRememberedFolder();
}

SoundReportDialog::SoundReportDialog(const QList<QString>& files, QWidget* parent) : QDialog(parent)
{
    setupUI();
    loadProductionInfo();
    setFiles(files);
}

void SoundReportDialog::setupUI()
{
    setWindowTitle(QStringLiteral("Sound Report Generator"));
    setMinimumSize(1000, 700);
    resize(1200, 800);

    mainLayout = new QVBoxLayout(this);
    mainLayout->setObjectName("mainLayout");
    mainLayout->setSpacing(10);
    mainLayout->setContentsMargins(10, 10, 10, 10);
    mainLayout->addLayout(buildFolderRow());
    auto* middle = new QHBoxLayout;
    middle->addWidget(buildTakesGroup(), 2);
    middle->addWidget(buildDetailsGroup(), 1);
    mainLayout->addLayout(middle, 1);
    mainLayout->addLayout(buildButtonRow());
    connectControls();
}

QHBoxLayout* SoundReportDialog::buildFolderRow()
{
    folderLabel = new QLabel(QStringLiteral("Sound Roll Folder:"), this);
    folderLabel->setObjectName("folderLabel");
    folderEdit = new QLineEdit(this);
    folderEdit->setObjectName("folderEdit");
    folderEdit->setReadOnly(true);
    folderLabel->setBuddy(folderEdit);
    selectFolderButton = new QPushButton(QStringLiteral("Select Folder..."), this);
    selectFolderButton->setObjectName("selectFolderButton");

    folderLayout = new QHBoxLayout;
    folderLayout->setObjectName("folderLayout");
    folderLayout->addWidget(folderLabel);
    folderLayout->addWidget(folderEdit, 1);
    folderLayout->addWidget(selectFolderButton);
    return folderLayout;
}

QGroupBox* SoundReportDialog::buildTakesGroup()
{
    takesGroup = new QGroupBox(QStringLiteral("Takes"), this);
    takesGroup->setObjectName("takesGroup");
    takeTable = new QTableWidget(this);
    takeTable->setObjectName("takeTable");
    takeTable->setAccessibleName(QStringLiteral("Takes"));
    takeTable->setColumnCount(6);
    takeTable->setHorizontalHeaderLabels({ "File #", "Scene", "Take", "Project", "Sound Roll", "Duration" });
    takeTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    takeTable->setSelectionMode(QAbstractItemView::SingleSelection);
    takeTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    takeTable->horizontalHeader()->setStretchLastSection(true);
    takeTable->setAlternatingRowColors(true);
    keepAlternateRowsDark(*takeTable);

    auto* layout = new QVBoxLayout(takesGroup);
    layout->addWidget(takeTable);
    return takesGroup;
}

QGroupBox* SoundReportDialog::buildDetailsGroup()
{
    detailsGroup = new QGroupBox(QStringLiteral("Take Details"), this);
    detailsGroup->setObjectName("detailsGroup");
    detailsGroup->setMaximumWidth(400);
    detailsLayout = new QFormLayout(detailsGroup);
    detailsLayout->setObjectName("detailsLayout");

    struct Row {
        const char* caption;
        QLabel*& label;
        const char* name;
    };
    const std::array<Row, 12> rows{ {
        { "File Number:", fileNumberLabel, "fileNumberLabel" },
        { "Filename:", filenameLabel, "filenameLabel" },
        { "Scene:", sceneLabel, "sceneLabel" },
        { "Take:", takeLabel, "takeLabel" },
        { "Project:", projectLabel, "projectLabel" },
        { "Sound Roll:", soundRollLabel, "soundRollLabel" },
        { "Timecode In:", timecodeInLabel, "timecodeInLabel" },
        { "Timecode Out:", timecodeOutLabel, "timecodeOutLabel" },
        { "Duration:", durationLabel, "durationLabel" },
        { "Tracks:", tracksLabel, "tracksLabel" },
        { "Notes:", notesLabel, "notesLabel" },
        { "File Date:", fileDateLabel, "fileDateLabel" },
    } };
    for (const Row& row : rows) {
        row.label = new QLabel(QLatin1String(kNoValue), this);
        row.label->setObjectName(row.name);
        // A note may look like markup; it is shown as it stands in the file.
        row.label->setTextFormat(Qt::PlainText);
        detailsLayout->addRow(QLatin1String(row.caption), row.label);
    }
    // The two texts that outgrow the pane in practice: eight track names, a long note.
    tracksLabel->setWordWrap(true);
    notesLabel->setWordWrap(true);
    return detailsGroup;
}

QHBoxLayout* SoundReportDialog::buildButtonRow()
{
    configureButton = new QPushButton(QStringLiteral("Configure..."), this);
    configureButton->setObjectName("configureButton");
    createReportButton = new QPushButton(QStringLiteral("Create Sound Report"), this);
    createReportButton->setObjectName("createReportButton");
    createReportButton->setEnabled(false);
    closeButton = new QPushButton(QStringLiteral("Close"), this);
    closeButton->setObjectName("closeButton");

    buttonLayout = new QHBoxLayout;
    buttonLayout->setObjectName("buttonLayout");
    buttonLayout->addStretch();
    buttonLayout->addWidget(configureButton);
    buttonLayout->addWidget(createReportButton);
    buttonLayout->addWidget(closeButton);
    return buttonLayout;
}

void SoundReportDialog::connectControls()
{
    connect(selectFolderButton, &QPushButton::clicked, this, &SoundReportDialog::onSelectFolder);
    connect(takeTable, &QTableWidget::itemSelectionChanged, this, &SoundReportDialog::onTakeSelectionChanged);
    connect(configureButton, &QPushButton::clicked, this, &SoundReportDialog::onConfigure);
    connect(createReportButton, &QPushButton::clicked, this, &SoundReportDialog::onCreateReport);
    connect(closeButton, &QPushButton::clicked, this, &SoundReportDialog::accept);
}

void SoundReportDialog::openRememberedFolder()
{
    const QString last = setting("lastRecording.folderPath");
    if (!last.isEmpty() && QDir(last).exists()) {
        openFolder(last);
        return;
    }
    const RecordingPlace place;
    if (!place.isKnown())
        return;
    QString folder = place.location + QLatin1Char('/') + place.project;
    if (!place.roll.isEmpty())
        folder += QLatin1Char('/') + place.roll;
    if (QDir(folder).exists())
        openFolder(folder);
}

void SoundReportDialog::openFolder(const QString& folder)
{
    folderPath = folder;
    folderEdit->setText(folder);
    reloadFolder();
}

void SoundReportDialog::reloadFolder()
{
    if (folderPath.isEmpty())
        return;
    scanWavFiles(folderPath);
    updateTakeList();
    enableCreateButton();
}

void SoundReportDialog::enableCreateButton()
{
    createReportButton->setEnabled(!takes.empty());
}

void SoundReportDialog::onSelectFolder()
{
    QFileDialog chooser(nullptr, QStringLiteral("Select Sound Roll Folder"), folderToStartIn());
    chooser.setFileMode(QFileDialog::Directory);
    chooser.setOptions(QFileDialog::ShowDirsOnly | QFileDialog::DontResolveSymlinks | QFileDialog::DontUseNativeDialog);
    if (chooser.exec() != QDialog::Accepted)
        return;
    const QStringList chosen = chooser.selectedFiles();
    if (!chosen.isEmpty())
        openFolder(chosen.first());
}

void SoundReportDialog::onScanFolder()
{
    reloadFolder();
}

void SoundReportDialog::onTakeSelectionChanged()
{
    const int row = takeTable->currentRow();
    if (row < 0 || static_cast<size_t>(row) >= takes.size()) {
        for (QLabel* label : { fileNumberLabel, filenameLabel, sceneLabel, takeLabel, projectLabel, soundRollLabel,
                 timecodeInLabel, timecodeOutLabel, durationLabel, tracksLabel, notesLabel, fileDateLabel })
            label->setText(QLatin1String(kNoValue));
        return;
    }
    const TakeInfo& take = takes[static_cast<size_t>(row)];
    fileNumberLabel->setText(QString::fromStdString(take.fileNumber));
    filenameLabel->setText(QString::fromStdString(take.filename));
    sceneLabel->setText(QString::fromStdString(take.scene));
    takeLabel->setText(QString::fromStdString(take.take));
    projectLabel->setText(QString::fromStdString(take.project));
    soundRollLabel->setText(QString::fromStdString(take.soundRoll));
    timecodeInLabel->setText(QString::fromStdString(take.timecodeIn));
    timecodeOutLabel->setText(QString::fromStdString(take.timecodeOut));
    durationLabel->setText(formatDuration(take.duration, take.frameRate));
    tracksLabel->setText(take.tracks.empty() ? QLatin1String(kNotAvailable) : joinedTracks(take, QStringLiteral(", ")));
    notesLabel->setText(textOr(QString::fromStdString(take.notes), kNotAvailable));
    fileDateLabel->setText(take.fileDate.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss")));
}

// Nothing in the name is cleaned: a project with a "/" in it names a further folder.
QString SoundReportDialog::defaultReportName(const QString& extension) const
{
    QString name;
    for (const QString& part : { QString::fromStdString(takes.front().project), soundRoll }) {
        if (!part.isEmpty())
            name += part + QLatin1Char('_');
    }
    return name + QLatin1String("SoundReport") + extension;
}

bool SoundReportDialog::generateReport(const QString& filePath)
{
    switch (outputFormat) {
    case kAleFormat:
        return generateAleReport(filePath);
    case kCsvFormat:
        return generateCsvReport(filePath);
    default:
        return generatePdfReport(filePath);
    }
}

void SoundReportDialog::onCreateReport()
{
    if (takes.empty()) {
        showBox(QStringLiteral("No Takes"), QStringLiteral("Please scan a folder with WAV files first."));
        return;
    }
    const ReportFormat format = reportFormat(outputFormat);
    const QString proposal = folderPath + QLatin1Char('/') + defaultReportName(QLatin1String(format.extension));
    QFileDialog chooser(nullptr, QStringLiteral("Save Sound Report"), proposal, QLatin1String(format.filter));
    chooser.setAcceptMode(QFileDialog::AcceptSave);
    chooser.setFileMode(QFileDialog::AnyFile);
    chooser.setOption(QFileDialog::DontUseNativeDialog);
    if (chooser.exec() != QDialog::Accepted)
        return;
    const QStringList chosen = chooser.selectedFiles();
    if (chosen.isEmpty())
        return;

    const QString formatName = QLatin1String(format.name);
    if (generateReport(chosen.first()))
        showToast(formatName + QLatin1String(" report generated successfully!"));
    else
        showBox(QStringLiteral("Error"), QLatin1String("Failed to generate ") + formatName + QLatin1String(" report."));
}

void SoundReportDialog::showToast(const QString& text)
{
    auto* toast = new QLabel(text, this);
    toast->setObjectName("toast");
    toast->setStyleSheet(
        QStringLiteral("QLabel { background-color: rgba(0, 150, 0, 200); color: white; padding: 12px 24px; "
                       "border-radius: 6px; font-size: 14px; font-weight: bold; }"));
    toast->setAlignment(Qt::AlignCenter);
    toast->adjustSize();
    toast->move((width() - toast->width()) / 2, kToastTop);
    toast->show();
    toast->raise();
    QTimer::singleShot(kToastTime, Qt::CoarseTimer, toast, &QLabel::deleteLater);
}

void SoundReportDialog::showBox(const QString& title, const QString& text)
{
    QMessageBox box(this);
    box.setWindowTitle(title);
    box.setText(text);
    box.setIcon(QMessageBox::NoIcon);
    box.exec();
}
