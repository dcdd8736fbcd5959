#pragma once

#include "core/BwfMetadata.h"

#include <QHash>
#include <QIcon>
#include <QList>
#include <QMainWindow>
#include <QSet>
#include <QString>

#include <cstdint>
#include <functional>
#include <optional>

class FileCellDelegate;
class FilePlaybackMixerDialog;
class QCheckBox;
class QFormLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSplitter;
class QTableWidget;
class QTextEdit;
class QVBoxLayout;

/// The main window: a table of files above, three panes with the metadata of the selected ones below.
///
/// 1. `records`, `filePaths` and the rows of `fileTable` move in step; the row number is the key into all three.
///    New rows go to the end and the table is never sorted, so the order is that of adding.
/// 2. `listedPaths` holds exactly the paths of `filePaths`.
/// 3. Signals are not blocked while the panes are filled: `dirty` means that the editors were touched by whatever
///    hand, and saving is offered as soon as they differ from what they showed before.
///
/// Thread: main only. Reading and writing files blocks the window.
class MetadataManagerWindow : public QMainWindow {
    Q_OBJECT

public:
    /// Builds the whole window, with an empty list.
    explicit MetadataManagerWindow(QWidget* parent = nullptr);
    /// Closes an open mixer dialog. Edits that were not saved are dropped.
    ~MetadataManagerWindow() override;
    MetadataManagerWindow(const MetadataManagerWindow&) = delete;
    MetadataManagerWindow& operator=(const MetadataManagerWindow&) = delete;

    /// Builds all controls. Called once, by the constructor.
    void setupUI();

    /// Adds the files as `addFiles` does and remembers the folder of the first one, or the first one itself if it
    /// is a folder. An empty list does nothing.
    void openFiles(const QList<QString>& paths);
    /// Lets the user pick files and folders to add.
    void openFileDialog();
    /// Reads each file and appends a row for it, in order. A path that is listed already (exact text) is skipped.
    /// No folders expected. A file that can't be understood gets a row with what could be found out. Throws
    /// std::filesystem::filesystem_error if a path can't be sized; the files before it have their rows then.
    void addFiles(const QList<QString>& paths);

    /// The text of a file's size in bytes: "1.5 KB".
    static QString formatFileSize(unsigned long long bytes);
    /// HH:MM:SS:FF of samples since midnight, frames cut, hours modulo 24. Empty if a number is 0 or below.
    /// The sound report has its own, with other rules.
    static QString formatTimecode(unsigned long long samples, unsigned int sampleRate, double frameRate);
    /// HH:MM:SS of a length in seconds, cut; "—" at 0.0 or below. The sound report has its own, with frames.
    static QString formatDuration(double seconds);

    /// The WAV files among `paths` and in the folders among them, as absolute paths in order of first appearance,
    /// each once. What does not exist or is no WAV file is left out.
    QList<QString> collectWavFilesFromPaths(const QList<QString>& paths) const;
    /// All WAV files of the tree under `dir`, sorted by path without regard to case. Hidden files and folders and
    /// symbolic links to folders are not looked at.
    QList<QString> collectWavFilesInDirectory(const QString& dir) const;
    /// Keeps `dir` as the folder in which the open panel starts, in the settings file too. An empty one is ignored.
    void rememberDirectory(const QString& dir);
    /// The folder in which the open panel starts: the remembered one or its nearest parent that exists.
    /// Empty if nothing is remembered or nothing of it exists.
    QString startingDirectory() const;

    /// Fills the panes from the records of the selected rows, and drops a start time that was not saved.
    void updateMetadataDisplay();
    /// The value that all selected records share, perhaps an empty one; "—" if they differ or there is none.
    /// `field` is a label for readers and plays no part.
    QString getCommonValue(const QString& field, std::function<QString(const BwfMetadata&)> getter);
    /// The flag that all selected records share; false if they differ or there is none. `field` as above.
    bool getCommonBool(const QString& field, std::function<bool(const BwfMetadata&)> getter);

    /// Gives both splitters the sizes of the settings file, each splitter its defaults unless all of its sizes are
    /// above 0.
    void restoreSplitterSizes();

    /// Puts a play button over column 0 of `row`. The table owns it.
    void attachPlayButton(int row);
    /// One name for each channel of the row's file, by its track list, "Track n" in the gaps. Empty if there is no
    /// such row.
    QList<QString> trackNamesForRow(int row) const;

public slots:
    /// Opens the sound report on the listed files, or in folder mode when the list is empty.
    void onSoundReport();

private slots:
    void onAdd();
    void onRemoveFile();
    void onClear();
    void onFileSelectionChanged();
    void onMetadataChanged();
    void onSaveChanges();
    void onTimecodeClicked();
    void persistSplitterSizes();
    void onPlayFile(int row);
    void closePlaybackOverlay();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void buildFrame();
    QWidget* buildFilesPane();
    void buildFileTable();
    QWidget* buildDetailPanes();
    void buildGeneralPane();
    void buildRecordingPane();
    void buildTrackPane();
    void setTabOrders();
    /// Saves the sizes at every move of a handle of `splitter`, which has all its panes by now.
    void keepSizesOf(QSplitter* splitter);

    /// Appends records and paths of those `paths` that are not listed yet.
    void readNewFiles(const QList<QString>& paths);
    /// Makes the table's rows follow the lists, and fits the columns.
    void appendRowsForNewRecords();
    void fillFileRow(int row);
    void fitFileColumns();
    /// Gives the next rows without a play button theirs, and goes on when the window is idle until all have one.
    void attachWaitingPlayButtons();
    /// Takes `rows`, ascending and all in range, out of lists and table; the selection is empty afterwards.
    void removeRows(const QList<int>& rows);

    /// The distinct selected rows of `fileTable`, ascending.
    QList<int> selectedRows() const;
    bool hasRecord(int row) const;
    void showNoRow();
    void showOneRow(const BwfMetadata& record);
    void showSeveralRows(qsizetype count);
    void showTracks(const std::vector<BwfTrack>& tracks);

    /// Fills an editor and keeps what it then shows.
    void fillText(QLineEdit* edit, const QString& text);
    void fillText(QTextEdit* edit, const QString& text);
    /// The editor shows what it was filled with, be it that it was not touched or that all was taken back.
    bool isAsFilled(const QLineEdit* edit) const;
    bool isAsFilled(const QTextEdit* edit) const;

    /// What the editors want written into the file of `record`, which is the one that is selected or one of several.
    /// Where an editor or a cell is as it was filled, these are the record's own bytes, elsewhere the text as UTF-8.
    /// A text that is left empty keeps what the file has; the two flags know no such state and always go along.
    BwfMetadata updateRecord(const BwfMetadata& record, bool forOneFile) const;
    /// Writes `update` into the row's file, with a warning if that fails. The row is in range.
    void writeRow(int row, const BwfMetadata& update);
    /// Replaces the row's record by what its file says now, and refreshes the cells that can have changed. The row is
    /// in range. Throws std::filesystem::filesystem_error if the file is gone.
    void readBackRow(int row);
    /// Keeps a typed start timecode until the save. `rate` is samples per second, 0 if unknown.
    void takeTypedTimecode(const QString& text, uint32_t rate, double frameRate);

    /// Opens the mixer on the file of `row`, which is in range. No other one is open.
    void openPlaybackOverlay(int row);
    /// Closes the open mixer dialog if it plays the file of one of `rows`.
    void closePlaybackOverlayOfRows(const QList<int>& rows);

    // All widgets are children, owned through Qt's parent tree.
    QWidget* centralArea = nullptr;
    QVBoxLayout* mainLayout = nullptr; ///< Layout of `centralArea`.
    QSplitter* filesSplitter = nullptr; ///< Outer one, vertical: the file list above the panes.
    QSplitter* detailSplitter = nullptr; ///< Inner one, horizontal: the three panes.
    QTableWidget* fileTable = nullptr;
    QPushButton* addButton = nullptr;
    QPushButton* removeFileButton = nullptr;
    QPushButton* clearButton = nullptr;
    QPushButton* soundReportButton = nullptr;
    QGroupBox* generalGroup = nullptr;
    QFormLayout* generalForm = nullptr;
    QLabel* currentFileLabel = nullptr;
    QLabel* channelsLabel = nullptr;
    QLineEdit* sceneEdit = nullptr;
    QLineEdit* takeEdit = nullptr;
    QCheckBox* circledCheck = nullptr;
    QCheckBox* wildTrackCheck = nullptr;
    QLineEdit* projectEdit = nullptr;
    QLineEdit* tapeIdEdit = nullptr;
    QTextEdit* notesEdit = nullptr;
    QGroupBox* recordingGroup = nullptr;
    QFormLayout* recordingForm = nullptr;
    QLabel* sampleRateLabel = nullptr;
    QLabel* tcSampleRateLabel = nullptr;
    QLabel* frameRateLabel = nullptr;
    QPushButton* timecodeButton = nullptr; ///< Shows the start timecode; a click edits it.
    QLabel* lengthLabel = nullptr;
    QLabel* samplesSinceMidnightLabel = nullptr;
    QLabel* userBitsLabel = nullptr;
    QLabel* bitDepthLabel = nullptr;
    uint64_t pendingTimeReference = 0; ///< Samples since midnight of a start time typed but not saved; 0 for none.
    QGroupBox* trackGroup = nullptr;
    QVBoxLayout* trackLayout = nullptr;
    QTableWidget* trackTable = nullptr;
    QPushButton* saveButton = nullptr;
    QList<BwfMetadata> records; ///< One per row, as last read from its file.
    QList<QString> filePaths; ///< One per row, as handed to `addFiles`.
    bool dirty = false; ///< The editors were touched since the last save, removal or clearing.
    QString lastDirectory; ///< Folder remembered for the open panel in this run; empty at first.
    FilePlaybackMixerDialog* playbackOverlay = nullptr; ///< Open mixer. Not owned; cleared when it is destroyed.

    FileCellDelegate* fileCells = nullptr; ///< Draws and measures the cells of `fileTable`, which owns it.
    QSet<QString> listedPaths; ///< The entries of `filePaths`, so that duplicates are found without a search.
    int rowsWithPlayButton = 0; ///< The rows above this one have their play button, the others wait for it.
    bool playButtonRoundIsDue = false; ///< The next ones come with a turn of the event loop, however many files follow.
    QIcon playIcon; ///< Shared by all play buttons; drawn for the first one.
    QHash<const QWidget*, QString> filledTexts; ///< By text editor: what it showed when it had just been filled.
    std::optional<QList<int>> rowsOfFill; ///< Selected rows while the panes are filled, worked out once for all fields.
};
