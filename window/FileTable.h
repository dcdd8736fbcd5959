#pragma once

#include <QIcon>
#include <QList>
#include <QTableWidget>

class FileCellDelegate;
class FileList;
class QFileInfo;
struct BwfMetadata;

/// The table of the listed files: one row for each, with what its record says and a button that plays it. New rows go
/// to the end and it is never sorted, so a row's number is the key into the list too. It acts on no file itself: it
/// says what is selected and which row wants to play.
///
/// 1. The rows above `rowsWithPlayButton` have their play button, the others wait for it.
/// 2. At most one round of buttons is due, however often rows are added.
///
/// Files that are dragged over it go to the window around it; of other programs' rows it takes none.
/// Thread: main only.
class FileTable : public QTableWidget {
    Q_OBJECT

public:
    /// Without rows, the columns as wide as their headers.
    explicit FileTable(QWidget* parent = nullptr);

    /// Adds a row for each file of `files` behind the last one shown, and fits the columns. The first new rows get
    /// their play buttons at once, the others when the window is idle.
    void appendRows(const FileList& files);

    /// Shows in the row, which is in range, what can have changed with a save of its file. Size, date and all that is
    /// a fact of the sound keep their text.
    void refreshRow(int row, const BwfMetadata& record, const QFileInfo& file);

    /// Takes out `rows`, which are ascending, different and in range. Nothing is selected afterwards, and no signal
    /// tells of it. The current row goes to the nearest above that stays.
    void takeOutRows(const QList<int>& rows);

    /// Takes out all rows. The change of the selection is signalled as any other.
    void clearRows();

    /// The distinct rows in which at least one cell is selected, ascending.
    QList<int> selectedRows() const;
    bool hasSelection() const;

    /// Puts a play button over column 0 of `row`, which is in range, in place of the one that may be there. Rows get
    /// theirs by themselves.
    void attachPlayButton(int row);

signals:
    /// The play button of `row` was pressed, or Return while the row was the current one.
    void playWanted(int row);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    QStringList mimeTypes() const override;

private:
    void fillRow(int row, const FileList& files);
    void fitColumns();
    void keepPlayColumnFixed();
    /// Gives the next rows without a play button theirs, and goes on when the window is idle until all have one.
    void attachWaitingPlayButtons();
    void announcePlay(const QWidget* button);

    FileCellDelegate* cells = nullptr; ///< Draws and measures the cells. Owned as a child.
    int rowsWithPlayButton = 0;
    bool playButtonRoundIsDue = false; ///< It comes with a turn of the event loop.
    QIcon playIcon; ///< Shared by all play buttons; drawn for the first one.
};
