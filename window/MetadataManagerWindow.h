#pragma once

#include "window/FileList.h"

#include <QList>
#include <QMainWindow>
#include <QString>

#include <cstdint>
#include <functional>

class DetailPanes;
class FilePlaybackMixerDialog;
class FileTable;
class QPushButton;
class QSplitter;
class QVBoxLayout;

/// The main window: a table of files above, three panes with the metadata of the selected ones below.
///
/// 1. `files` (records and paths) and the rows of `fileTable` move in step; the row number is the key into both.
///    New rows go to the end and the table is never sorted, so the order is that of adding.
/// 2. Signals are not blocked while the panes are filled: `dirty` means that the editors were touched by whatever
///    hand, and saving is offered as soon as they differ from what they showed before.
///
/// What moves together lives together: `records` and `filePaths` in FileList; the columns, the play buttons and their
/// icon in FileTable; the panes' groups, labels and editors, `trackTable` and `pendingTimeReference` in DetailPanes,
/// which is `detailSplitter` itself. The window wires them: selected records go down to the panes, wishes come up.
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

    // NOLINTNEXTLINE(readability-redundant-access-specifiers): begins the slots.
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
    void setTabOrders();
    /// Saves the sizes at every move of a handle of `splitter`, which has all its panes by now.
    void keepSizesOf(QSplitter* splitter);

    /// Writes what the panes want into the row's file, with a warning if that fails. The row is in range.
    void writeRow(int row);
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
    DetailPanes* detailSplitter = nullptr; ///< Inner one, horizontal: the three panes.
    FileTable* fileTable = nullptr;
    QPushButton* addButton = nullptr;
    QPushButton* removeFileButton = nullptr;
    QPushButton* clearButton = nullptr;
    QPushButton* soundReportButton = nullptr;
    QPushButton* saveButton = nullptr;
    FileList files; ///< One per row.
    bool dirty = false; ///< The editors were touched since the last save, removal or clearing.
    QString lastDirectory; ///< Folder remembered for the open panel in this run; empty at first.
    FilePlaybackMixerDialog* playbackOverlay = nullptr; ///< Open mixer. Not owned; cleared when it is destroyed.
};
