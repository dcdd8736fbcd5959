#pragma once

#include "report/ReportSettings.h"
#include "report/TakeInfo.h"

#include <QDialog>
#include <QList>
#include <QString>

#include <vector>

class QFileInfo;
class QGroupBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;
class QVBoxLayout;
class TakeDetailsPane;

/// The modal window that lists the takes of a sound roll and writes them as a PDF, CSV or ALE report.
///
/// It is in one of two source modes for its whole life, chosen by the constructor: in folder mode the user picks the
/// folder, in file-list mode the files are given. It reads the files by itself and shares nothing with its opener but
/// the settings. What it writes comes from the free functions of CsvReport.h, AleReport.h and SoundReportDocument.h;
/// the operations with their names here only hand over its takes.
///
/// Invariant: row i of `takeTable` shows `takes[i]`; the table can't be sorted.
/// Thread: main thread only. Reading a roll and writing a report block it.
class SoundReportDialog : public QDialog {
    Q_OBJECT

public:
    /// Folder mode. Opens the folder of the last recording, else the one made of the current project and roll, if it
    /// exists; without one the dialog starts empty. `parent` may be null.
    explicit SoundReportDialog(QWidget* parent);
    /// File-list mode with the takes of `files`. `parent` may be null.
    SoundReportDialog(const QList<QString>& files, QWidget* parent);

    /// Switches to file-list mode and loads those of `paths` that are files; others are dropped without a word.
    /// The roll's name is the first tape name of the sorted takes, else the name of the first file's folder.
    void setFiles(const QList<QString>& paths);
    /// Loads the WAV files that lie directly in `folder`, in any case of the suffix. The roll takes the folder's name,
    /// whatever the files say. The table is left alone: `updateTakeList` follows.
    void scanWavFiles(const QString& folder);
    /// Replaces the takes by those of `files`, sorted. A file that can't be examined is left out without a word.
    void loadTakesFromFiles(const QList<QFileInfo>& files);
    /// Rebuilds the table from the takes. No row is current afterwards.
    void updateTakeList();

    // The texts of report/ReportTexts.h, under the names that they have here.
    /// `reportTimecode`: "--:--:--:--" if one of the rates is 0, hours that go on past 23.
    static QString formatTimecode(unsigned long long samples, unsigned int sampleRate, double frameRate);
    /// `reportDuration`: HH:MM:SS:FF, at 30 frames per second unless `frameRate` is above 0.
    static QString formatDuration(double seconds, double frameRate);
    /// `reportFrameRate`: such as "25nd-C"; empty if the rate is 0 or less.
    static QString formatFramerate(double frameRate);
    /// `csvField`: `value` in quotes where a comma, a double quote or a line end asks for it.
    static QString escapeCSV(const QString& value);

    /// Takes the production details and the format over from the settings, unchecked.
    void loadProductionInfo();
    /// Puts the production details and the format into the settings and saves them. A failed save has no effect here.
    void saveProductionInfo();

    /// Writes the takes as comma-separated UTF-8 text. False if the file can't be opened for writing; errors while
    /// writing are not looked at.
    bool generateCsvReport(const QString& filePath);
    /// Writes the takes as an Avid Log Exchange file. False if the file can't be opened for writing; errors while
    /// writing are not looked at.
    bool generateAleReport(const QString& filePath);
    /// Prints the takes with the production details to an A4 PDF. False if there are no takes, and nothing is written
    /// then; true otherwise, even if the path can't be written.
    bool generatePdfReport(const QString& filePath);

    // NOLINTNEXTLINE(readability-redundant-access-specifiers): begins the slots.
public slots:
    /// Asks for a folder and loads it. Cancelling changes nothing.
    void onSelectFolder();
    /// Reads the current folder again; nothing happens without one.
    void onScanFolder();
    /// Edits the production details, the format and the logo; keeps and saves them if accepted.
    void onConfigure();
    /// Asks for a file and writes the report in the configured format into it.
    void onCreateReport();
    /// Shows the current row's take in the detail pane, "--" throughout without one.
    void onTakeSelectionChanged();

private:
    void setupUI();
    QHBoxLayout* buildFolderRow();
    QGroupBox* buildTakesGroup();
    QHBoxLayout* buildButtonRow();
    void connectControls();

    void openFolder(const QString& folder);
    void enableCreateButton();
    bool generateReport(const QString& filePath);

    QVBoxLayout* mainLayout = nullptr;
    QHBoxLayout* folderLayout = nullptr;
    QLabel* folderLabel = nullptr;
    QLineEdit* folderEdit = nullptr;
    QPushButton* selectFolderButton = nullptr;
    QGroupBox* takesGroup = nullptr;
    QTableWidget* takeTable = nullptr;
    TakeDetailsPane* detailsGroup = nullptr;
    QHBoxLayout* buttonLayout = nullptr;
    QPushButton* configureButton = nullptr;
    QPushButton* createReportButton = nullptr;
    QPushButton* closeButton = nullptr;

    /// Folder of the takes, where the save dialog starts.
    QString folderPath;
    /// The roll's name in the report and in the default file name.
    QString soundRoll;
    std::vector<TakeInfo> takes;
    /// The production details and the format.
    ReportSettings settings;
};
