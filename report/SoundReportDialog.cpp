#include "report/SoundReportDialog.h"

#include "app/look/Named.h"
#include "app/look/TableColumns.h"
#include "app/look/TableKeys.h"
#include "app/settings/ConfigManager.h"
#include "report/AleReport.h"
#include "report/ChosenFile.h"
#include "report/CsvReport.h"
#include "report/ReportTexts.h"
#include "report/SoundReportDocument.h"
#include "report/TakeDetailsPane.h"

#include <QDir>
#include <QFileDialog>
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

constexpr int kToastTop = 50; // Pixels below the dialog's upper edge.
constexpr std::chrono::milliseconds kToastTime{ 2000 };

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

// The folder to open by itself; empty if there is none.
QString rememberedFolder()
{
    QString last = setting("lastRecording.folderPath");
    if (!last.isEmpty() && QDir(last).exists())
        return last;
    const RecordingPlace place;
    if (!place.isKnown())
        return {};
    QString folder = place.location + QLatin1Char('/') + place.project;
    if (!place.roll.isEmpty())
        folder += QLatin1Char('/') + place.roll;
    return QDir(folder).exists() ? folder : QString();
}

// Nothing in the name is cleaned: a project with a "/" in it names a further folder.
QString proposedName(const QString& project, const QString& roll, const char* extension)
{
    QString name;
    for (const QString& part : { project, roll }) {
        if (!part.isEmpty())
            name += part + QLatin1Char('_');
    }
    return name + QLatin1String("SoundReport") + QLatin1String(extension);
}

// The dark sheet gives rows a ground and a text colour but no alternate ground, which would come light from the
// system's palette, with the light text on it.
void keepAlternateRowsDark(QTableWidget& table)
{
    QPalette palette = table.palette();
    palette.setColor(QPalette::AlternateBase, QColor(0x25, 0x25, 0x26));
    table.setPalette(palette);
}

void showToast(QWidget& window, const QString& text)
{
    auto* toast = named("toast", new QLabel(text, &window));
    toast->setStyleSheet(
        QStringLiteral("QLabel { background-color: rgba(0, 150, 0, 200); color: white; padding: 12px 24px; "
                       "border-radius: 6px; font-size: 14px; font-weight: bold; }"));
    toast->setAlignment(Qt::AlignCenter);
    toast->adjustSize();
    toast->move((window.width() - toast->width()) / 2, kToastTop);
    toast->show();
    toast->raise();
    QTimer::singleShot(kToastTime, Qt::CoarseTimer, toast, &QLabel::deleteLater);
}

void showBox(QWidget& window, const QString& title, const QString& text)
{
    QMessageBox box(&window);
    box.setWindowTitle(title);
    box.setText(text);
    box.setIcon(QMessageBox::NoIcon);
    box.exec();
}

} // namespace

SoundReportDialog::SoundReportDialog(QWidget* parent) : QDialog(parent)
{
    setupUI();
    loadProductionInfo();
    const QString folder = rememberedFolder();
    if (!folder.isEmpty())
        openFolder(folder);
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

    mainLayout = named("mainLayout", new QVBoxLayout(this));
    mainLayout->setSpacing(10);
    mainLayout->setContentsMargins(10, 10, 10, 10);
    mainLayout->addLayout(buildFolderRow());
    auto* middle = new QHBoxLayout;
    middle->addWidget(buildTakesGroup(), 2);
    detailsGroup = new TakeDetailsPane(this);
    middle->addWidget(detailsGroup, 1);
    mainLayout->addLayout(middle, 1);
    mainLayout->addLayout(buildButtonRow());
    connectControls();
}

QHBoxLayout* SoundReportDialog::buildFolderRow()
{
    folderLabel = named("folderLabel", new QLabel(QStringLiteral("Sound Roll Folder:"), this));
    folderEdit = named("folderEdit", new QLineEdit(this));
    folderEdit->setReadOnly(true);
    folderLabel->setBuddy(folderEdit);
    selectFolderButton = named("selectFolderButton", new QPushButton(QStringLiteral("Select Folder..."), this));

    folderLayout = named("folderLayout", new QHBoxLayout);
    folderLayout->addWidget(folderLabel);
    folderLayout->addWidget(folderEdit, 1);
    folderLayout->addWidget(selectFolderButton);
    return folderLayout;
}

QGroupBox* SoundReportDialog::buildTakesGroup()
{
    takesGroup = named("takesGroup", new QGroupBox(QStringLiteral("Takes"), this));
    takeTable = named("takeTable", new QTableWidget(this));
    takeTable->setAccessibleName(QStringLiteral("Takes"));
    takeTable->setColumnCount(6);
    takeTable->setHorizontalHeaderLabels({ "File #", "Scene", "Take", "Project", "Sound Roll", "Duration" });
    takeTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    takeTable->setSelectionMode(QAbstractItemView::SingleSelection);
    takeTable->setEditTriggers(QAbstractItemView::NoEditTriggers);
    takeTable->horizontalHeader()->setStretchLastSection(true);
    takeTable->setAlternatingRowColors(true);
    keepAlternateRowsDark(*takeTable);
    setUpTableKeys(*takeTable);
    fitColumns(*takeTable);

    auto* layout = new QVBoxLayout(takesGroup);
    layout->addWidget(takeTable);
    return takesGroup;
}

QHBoxLayout* SoundReportDialog::buildButtonRow()
{
    configureButton = named("configureButton", new QPushButton(QStringLiteral("Configure..."), this));
    createReportButton = named("createReportButton", new QPushButton(QStringLiteral("Create Sound Report"), this));
    createReportButton->setEnabled(false);
    closeButton = named("closeButton", new QPushButton(QStringLiteral("Close"), this));

    buttonLayout = named("buttonLayout", new QHBoxLayout);
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

void SoundReportDialog::setFiles(const QList<QString>& paths)
{
    const QList<QFileInfo> files = filesAmong(paths);
    folderLabel->setText(QStringLiteral("Source:"));
    folderEdit->setText(QStringLiteral("%1 file%2 from the file list")
                            .arg(files.size())
                            .arg(QLatin1String(files.size() == 1 ? "" : "s")));
    selectFolderButton->hide();
    if (!files.isEmpty())
        folderPath = files.first().absolutePath();
    loadTakesFromFiles(files);
    soundRoll = soundRollOf(takes, files);
    updateTakeList();
    enableCreateButton();
}

void SoundReportDialog::scanWavFiles(const QString& folder)
{
    soundRoll = QDir(folder).dirName();
    loadTakesFromFiles(wavFilesIn(folder));
}

void SoundReportDialog::loadTakesFromFiles(const QList<QFileInfo>& files)
{
    takes = readTakes(files);
}

void SoundReportDialog::updateTakeList()
{
    takeTable->setRowCount(0);
    takeTable->setRowCount(static_cast<int>(takes.size()));
    int row = 0;
    for (const TakeInfo& take : takes) {
        const std::array<QString, 6> cells{ QString::fromStdString(take.fileNumber), QString::fromStdString(take.scene),
            QString::fromStdString(take.take), QString::fromStdString(take.project),
            QString::fromStdString(take.soundRoll), reportDuration(take) };
        int column = 0;
        for (const QString& cell : cells)
            takeTable->setItem(row, column++, new QTableWidgetItem(cell));
        ++row;
    }
    fitColumns(*takeTable);
    // A current row that wasn't selected goes without a signal of the selection.
    onTakeSelectionChanged();
}

void SoundReportDialog::openFolder(const QString& folder)
{
    folderPath = folder;
    folderEdit->setText(folder);
    onScanFolder();
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
    if (folderPath.isEmpty())
        return;
    scanWavFiles(folderPath);
    updateTakeList();
    enableCreateButton();
}

void SoundReportDialog::onTakeSelectionChanged()
{
    const int row = takeTable->currentRow();
    if (row < 0 || static_cast<size_t>(row) >= takes.size())
        detailsGroup->showNoTake();
    else
        detailsGroup->showTake(takes[static_cast<size_t>(row)]);
}

QString SoundReportDialog::formatTimecode(unsigned long long samples, unsigned int sampleRate, double frameRate)
{
    return reportTimecode(samples, sampleRate, frameRate);
}

QString SoundReportDialog::formatDuration(double seconds, double frameRate)
{
    return reportDuration(seconds, frameRate);
}

QString SoundReportDialog::formatFramerate(double frameRate)
{
    return reportFrameRate(frameRate);
}

QString SoundReportDialog::escapeCSV(const QString& value)
{
    return csvField(value);
}

bool SoundReportDialog::generateCsvReport(const QString& filePath)
{
    return writeCsvReport(filePath, takes);
}

bool SoundReportDialog::generateAleReport(const QString& filePath)
{
    return writeAleReport(filePath, takes);
}

bool SoundReportDialog::generatePdfReport(const QString& filePath)
{
    return writePdfReport(filePath, takes, settings, soundRoll);
}

bool SoundReportDialog::generateReport(const QString& filePath)
{
    switch (settings.outputFormat) {
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
        showBox(*this, QStringLiteral("No Takes"), QStringLiteral("Please scan a folder with WAV files first."));
        return;
    }
    const ReportFormat& format = reportFormat(settings.outputFormat);
    const QString project = QString::fromStdString(takes.front().project);
    const QString proposal = folderPath + QLatin1Char('/') + proposedName(project, soundRoll, format.extension);
    QFileDialog chooser(nullptr, QStringLiteral("Save Sound Report"), proposal, QLatin1String(format.filter));
    chooser.setAcceptMode(QFileDialog::AcceptSave);
    chooser.setFileMode(QFileDialog::AnyFile);
    const QString chosen = chosenFile(chooser);
    if (chosen.isEmpty())
        return;

    const QString formatName = QLatin1String(format.name);
    if (generateReport(chosen))
        showToast(*this, formatName + QLatin1String(" report generated successfully!"));
    else
        showBox(*this, QStringLiteral("Error"),
            QLatin1String("Failed to generate ") + formatName + QLatin1String(" report."));
}
