#include "window/FileTable.h"

#include "core/BwfMetadataReader.h"
#include "tests/support/Recording.h"
#include "tests/support/TempFolder.h"
#include "window/FileList.h"
#include "window/FileTableColumns.h"
#include "window/MetadataTexts.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QSet>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace {

const std::string kMark = "\u2014";

/// The table by itself, over a list of its own.
class FileTableTest : public testing::Test {
protected:
    QString path(const std::string& name) const { return QString::fromStdString(folder.file(name)); }

    QString write(const std::string& name, const Recording& recording) const
    {
        recording.file().write(folder.file(name));
        return path(name);
    }

    void addFiles(const QList<QString>& paths)
    {
        for (const QString& each : paths)
            files.add(each);
        table->appendRows(files);
    }

    void add(const std::string& name, const Recording& recording) { addFiles({ write(name, recording) }); }

    void select(const QList<int>& rows) const
    {
        QItemSelection selection;
        for (const int row : rows)
            selection.select(table->model()->index(row, 0), table->model()->index(row, kFileColumnCount - 1));
        table->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    }

    void remove(const QList<int>& rows)
    {
        files.remove(rows);
        table->takeOutRows(rows);
    }

    std::string cell(int row, FileColumn column) const
    {
        const QTableWidgetItem* item = table->item(row, indexOf(column));
        return item != nullptr ? item->text().toStdString() : std::string("(no item)");
    }

    /// The column's texts from top to bottom.
    std::vector<std::string> column(FileColumn which) const
    {
        std::vector<std::string> texts;
        for (int row = 0; row < table->rowCount(); ++row)
            texts.push_back(cell(row, which));
        return texts;
    }

    TempFolder folder;
    FileList files;
    std::unique_ptr<FileTable> table = std::make_unique<FileTable>();
};

TEST_F(FileTableTest, hasItsFourteenColumns)
{
    const std::vector<std::string> wanted{ "", "File Name", "File Size", "Channels", "TAPEID", "SCENE", "TAKE",
        "START TC", "LENGTH", "DATE", "CIRCLED", "SAMPLE RATE", "FRAME RATE", "Notes" };
    std::vector<std::string> titles;
    for (int column = 0; column < table->columnCount(); ++column)
        titles.push_back(table->horizontalHeaderItem(column)->text().toStdString());
    EXPECT_EQ(titles, wanted);
}

TEST_F(FileTableTest, hasItsSettings)
{
    EXPECT_EQ(table->selectionMode(), QAbstractItemView::ExtendedSelection);
    EXPECT_EQ(table->selectionBehavior(), QAbstractItemView::SelectRows);
    EXPECT_EQ(table->dragDropMode(), QAbstractItemView::DropOnly);
    EXPECT_EQ(table->editTriggers(), QAbstractItemView::NoEditTriggers);
    EXPECT_TRUE(table->verticalHeader()->isHidden());
    EXPECT_TRUE(table->horizontalHeader()->stretchLastSection());
    EXPECT_EQ(table->horizontalHeader()->minimumSectionSize(), 24);
    EXPECT_EQ(table->horizontalHeader()->sectionResizeMode(0), QHeaderView::Fixed);
    EXPECT_EQ(table->columnWidth(0), 40);
    EXPECT_FALSE(table->showGrid());
    EXPECT_TRUE(table->alternatingRowColors());
    EXPECT_FALSE(table->isSortingEnabled());
}

TEST_F(FileTableTest, rowShowsWhatTheFileSays)
{
    Recording recording;
    recording.scene = "12A";
    recording.take = "3";
    recording.tape = "18Y12M31";
    recording.note = "plane";
    recording.frameRate = "24000/1001";
    recording.circled = "TRUE";
    recording.timeReference = 48048ull * 3600;
    const QString file = write("T1.WAV", recording);
    addFiles({ file });

    ASSERT_EQ(table->rowCount(), 1);
    EXPECT_EQ(cell(0, FileColumn::Play), "");
    EXPECT_EQ(cell(0, FileColumn::FileName), "T1.WAV");
    EXPECT_EQ(
        cell(0, FileColumn::FileSize), fileSizeText(std::filesystem::file_size(file.toStdString())).toStdString());
    EXPECT_EQ(cell(0, FileColumn::Channels), "POLY (2)");
    EXPECT_EQ(cell(0, FileColumn::TapeId), "18Y12M31");
    EXPECT_EQ(cell(0, FileColumn::Scene), "12A");
    EXPECT_EQ(cell(0, FileColumn::Take), "3");
    EXPECT_EQ(cell(0, FileColumn::StartTimecode), "01:00:00:00");
    EXPECT_EQ(cell(0, FileColumn::Length), "00:00:01");
    EXPECT_EQ(cell(0, FileColumn::Circled), "Yes");
    EXPECT_EQ(cell(0, FileColumn::SampleRate), "48000 Hz");
    EXPECT_EQ(cell(0, FileColumn::FrameRate), "23.976 fps");
    EXPECT_EQ(cell(0, FileColumn::Notes), "plane");
}

TEST_F(FileTableTest, dateIsThatOfTheFileSystem)
{
    const QString file = write("a.wav", {});
    QFile opened(file);
    ASSERT_TRUE(opened.open(QIODevice::ReadWrite));
    ASSERT_TRUE(opened.setFileTime(QDateTime(QDate(2001, 2, 3), QTime(12, 0)), QFileDevice::FileModificationTime));
    opened.close();
    addFiles({ file });
    EXPECT_EQ(cell(0, FileColumn::Date), "2001-02-03");
}

TEST_F(FileTableTest, playColumnHasAnItemThatCanOnlyBeSelected)
{
    add("a.wav", {});
    const QTableWidgetItem* item = table->item(0, 0);
    ASSERT_TRUE(item);
    EXPECT_EQ(item->flags(), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    EXPECT_EQ(item->textAlignment(), static_cast<int>(Qt::AlignCenter));
}

TEST_F(FileTableTest, fileThatIsNoWavGetsARowAllTheSame)
{
    writeBytes(folder.file("a.wav"), std::string(512, 'x'));
    addFiles({ path("a.wav") });
    EXPECT_EQ(cell(0, FileColumn::FileName), "a.wav");
    EXPECT_EQ(cell(0, FileColumn::FileSize), "512.0 B");
    EXPECT_EQ(cell(0, FileColumn::Channels), "0");
    EXPECT_EQ(cell(0, FileColumn::SampleRate), "0 Hz");
    EXPECT_EQ(cell(0, FileColumn::StartTimecode), kMark);
    EXPECT_EQ(cell(0, FileColumn::Length), kMark);
    EXPECT_EQ(cell(0, FileColumn::FrameRate), kMark);
    EXPECT_EQ(cell(0, FileColumn::Circled), "No");
}

TEST_F(FileTableTest, startAtMidnightShowsTheMark)
{
    Recording recording;
    recording.frameRate = "25/1";
    add("a.wav", recording);
    EXPECT_EQ(cell(0, FileColumn::StartTimecode), kMark);
}

TEST_F(FileTableTest, columnsOfTheEmptyTableAreAsWideAsTheirHeaders)
{
    table->show();
    QCoreApplication::processEvents();
    EXPECT_EQ(table->columnWidth(0), 40);
    for (int column = 1; column < kFileColumnCount - 1; ++column)
        EXPECT_EQ(table->columnWidth(column), table->horizontalHeader()->sectionSizeHint(column)) << column;
}

TEST_F(FileTableTest, addingFitsTheColumnsButThePlayColumn)
{
    table->setColumnWidth(0, 90);
    add("a quite long name of a file that needs its room.wav", {});
    EXPECT_EQ(table->columnWidth(0), 40);
    EXPECT_GT(table->columnWidth(1), 200);
}

TEST_F(FileTableTest, columnsHaveRoomForTheirWidestText)
{
    add("a.wav", { .scene = "1", .tape = "1", .note = "1" });
    add("b.wav", { .scene = "A scene of many words", .take = "1", .tape = "A roll with a name" });
    add("c.wav", { .scene = "1", .take = "1", .note = "1" });
    for (const FileColumn each : { FileColumn::Scene, FileColumn::TapeId }) {
        const int fitted = table->columnWidth(indexOf(each));
        table->setColumnWidth(indexOf(each), 500);
        table->resizeColumnToContents(indexOf(each));
        EXPECT_EQ(table->columnWidth(indexOf(each)), fitted);
        EXPECT_GT(fitted, table->horizontalHeader()->sectionSizeHint(indexOf(each)));
    }
}

TEST_F(FileTableTest, addingNothingNewFitsTheColumnsToo)
{
    add("a.wav", {});
    table->setColumnWidth(0, 90);
    for (int column = 1; column < kFileColumnCount - 1; ++column)
        table->setColumnWidth(column, 777);
    addFiles({ path("a.wav") });
    EXPECT_EQ(table->columnWidth(0), 40);
    for (int column = 1; column < kFileColumnCount - 1; ++column)
        EXPECT_LT(table->columnWidth(column), 400) << column;
}

TEST_F(FileTableTest, clickOnACellSelectsTheWholeRowAndStartsNoEditing)
{
    add("a.wav", { .scene = "1" });
    add("b.wav", { .scene = "2" });
    table->show();
    QCoreApplication::processEvents();
    const QPoint place = table->visualItemRect(table->item(1, indexOf(FileColumn::Scene))).center();
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(table->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(table->selectedItems().size(), kFileColumnCount);
    EXPECT_EQ(table->currentRow(), 1);
    EXPECT_TRUE(table->findChildren<QLineEdit*>().isEmpty());
}

TEST_F(FileTableTest, clickOnAHeaderDoesNotSort)
{
    addFiles({ write("b.wav", {}), write("a.wav", {}) });
    table->show();
    QCoreApplication::processEvents();
    QHeaderView* header = table->horizontalHeader();
    for (int i = 0; i < 2; ++i)
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(header->sectionViewportPosition(1) + 20, 5));
    EXPECT_EQ(column(FileColumn::FileName), (std::vector<std::string>{ "b.wav", "a.wav" }));
}

TEST_F(FileTableTest, rowsFollowTheListFromTheLastOneShown)
{
    files.add(write("a.wav", {}));
    files.add(write("b.wav", {}));
    table->appendRows(files);
    table->item(0, indexOf(FileColumn::Scene))->setText("stays");
    files.add(write("c.wav", {}));
    table->appendRows(files);
    EXPECT_EQ(column(FileColumn::FileName), (std::vector<std::string>{ "a.wav", "b.wav", "c.wav" }));
    EXPECT_EQ(cell(0, FileColumn::Scene), "stays");
}

TEST_F(FileTableTest, selectedRowsAscendAndCountOnce)
{
    for (const char* name : { "a", "b", "c", "d" })
        add(name, {});
    EXPECT_FALSE(table->hasSelection());
    EXPECT_TRUE(table->selectedRows().isEmpty());
    select({ 3, 1 });
    EXPECT_EQ(table->selectedRows(), (QList<int>{ 1, 3 }));
    QItemSelection cells;
    cells.append(QItemSelectionRange(table->model()->index(2, 5)));
    cells.append(QItemSelectionRange(table->model()->index(0, 2)));
    cells.append(QItemSelectionRange(table->model()->index(0, 3), table->model()->index(2, 3)));
    table->selectionModel()->select(cells, QItemSelectionModel::ClearAndSelect);
    EXPECT_EQ(table->selectedRows(), (QList<int>{ 0, 1, 2 }));
    EXPECT_TRUE(table->hasSelection());
}

TEST_F(FileTableTest, rowsAreTakenOutInSilenceAndNothingIsSelectedThen)
{
    for (const char* name : { "a", "b", "c", "d", "e" })
        add(name, {});
    select({ 1, 3 });
    const QSignalSpy told(table.get(), &FileTable::itemSelectionChanged);
    remove({ 1, 3 });
    EXPECT_EQ(told.count(), 0);
    EXPECT_TRUE(table->selectedRows().isEmpty());
    EXPECT_EQ(column(FileColumn::FileName), (std::vector<std::string>{ "a", "c", "e" }));
    select({ 2 });
    EXPECT_EQ(told.count(), 1);
}

TEST_F(FileTableTest, clearedRowsTellThatNothingIsSelectedAnyMore)
{
    add("a.wav", {});
    select({ 0 });
    QList<int> seen{ -1 };
    QObject::connect(table.get(), &FileTable::itemSelectionChanged, table.get(), [&] { seen = table->selectedRows(); });
    table->clearRows();
    EXPECT_TRUE(seen.isEmpty());
    EXPECT_EQ(table->rowCount(), 0);
}

TEST_F(FileTableTest, refreshedRowShowsWhatASaveCanChangeAndKeepsTheRest)
{
    add("a.wav", {});
    add("b.wav", {});
    std::vector<std::string> before;
    for (int column = 0; column < kFileColumnCount; ++column)
        before.push_back(cell(1, static_cast<FileColumn>(column)));

    BwfMetadata record;
    record.scene = "12A";
    record.take = "3";
    record.tape = "R01";
    record.note = "plane";
    record.circled = true;
    record.frameRate = 25.0;
    record.sampleRate = 48000;
    record.timeReference = 172800000;
    record.channels = 7;
    record.fileSize = 1;
    record.duration = 3600.0;
    table->refreshRow(1, record, QFileInfo(path("other.wav")));
    for (const FileColumn kept : { FileColumn::Play, FileColumn::FileName, FileColumn::FileSize, FileColumn::Channels,
             FileColumn::Length, FileColumn::Date, FileColumn::SampleRate })
        EXPECT_EQ(cell(1, kept), before[static_cast<size_t>(indexOf(kept))]) << indexOf(kept);
    EXPECT_EQ(cell(1, FileColumn::TapeId), "R01");
    EXPECT_EQ(cell(1, FileColumn::Scene), "12A");
    EXPECT_EQ(cell(1, FileColumn::Take), "3");
    EXPECT_EQ(cell(1, FileColumn::StartTimecode), "01:00:00:00");
    EXPECT_EQ(cell(1, FileColumn::Circled), "Yes");
    EXPECT_EQ(cell(1, FileColumn::FrameRate), "25 fps");
    EXPECT_EQ(cell(1, FileColumn::Notes), "plane");
    EXPECT_EQ(cell(0, FileColumn::Scene), "");
}

TEST_F(FileTableTest, cellWithoutAnItemIsNotRefreshed)
{
    add("a.wav", {});
    delete table->takeItem(0, indexOf(FileColumn::Scene));
    BwfMetadata record;
    record.scene = "12A";
    table->refreshRow(0, record, QFileInfo(path("a.wav")));
    EXPECT_EQ(cell(0, FileColumn::Scene), "(no item)");
}

TEST_F(FileTableTest, aPressSaysWhichRowWantsToPlay)
{
    for (const char* name : { "a", "b", "c" })
        add(name, {});
    auto* const button = qobject_cast<QAbstractButton*>(table->cellWidget(2, 0));
    ASSERT_TRUE(button);
    const QSignalSpy wanted(table.get(), &FileTable::playWanted);
    button->click();
    remove({ 0 });
    button->click();
    EXPECT_EQ(wanted.count(), 2);
    EXPECT_EQ(wanted.value(0).value(0).toInt(), 2);
    EXPECT_EQ(wanted.value(1).value(0).toInt(), 1);
}

TEST_F(FileTableTest, aButtonWithoutARowSaysNothing)
{
    add("a.wav", {});
    auto* const button = qobject_cast<QAbstractButton*>(table->cellWidget(0, 0));
    const QSignalSpy wanted(table.get(), &FileTable::playWanted);
    table->attachPlayButton(0); // The old one goes with the next turn of the event loop only.
    button->click();
    EXPECT_EQ(wanted.count(), 0);
}

/// More rows than get their play buttons at once, so that some wait for the window to be idle.
class WaitingPlayButtons : public FileTableTest {
protected:
    /// Adds `count` empty files, named by numbers from `first` on.
    void addMany(int count, int first = 0)
    {
        QList<QString> paths;
        for (int i = first; i < first + count; ++i) {
            const std::string name = "t" + std::to_string(i) + ".wav";
            writeBytes(folder.file(name), "");
            paths.append(path(name));
        }
        addFiles(paths);
    }

    QWidget* button(int row) const { return table->cellWidget(row, indexOf(FileColumn::Play)); }

    int rowsWithButton() const
    {
        int count = 0;
        for (int row = 0; row < table->rowCount(); ++row)
            count += button(row) != nullptr ? 1 : 0;
        return count;
    }

    bool allGetOne() const
    {
        return QTest::qWaitFor([this] { return rowsWithButton() == table->rowCount(); });
    }

    /// No row shares its button with another one, and none is left over from rows that went.
    bool eachHasItsOwn() const
    {
        QSet<QWidget*> seen;
        for (int row = 0; row < table->rowCount(); ++row)
            seen.insert(button(row));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return seen.size() == table->rowCount()
            && seen.size() == table->findChildren<QAbstractButton*>(QStringLiteral("playButton")).size();
    }
};

TEST_F(WaitingPlayButtons, everyRowGetsItsOwnInTheEnd)
{
    addMany(350);
    EXPECT_GE(rowsWithButton(), 100);
    EXPECT_LT(rowsWithButton(), 350);
    EXPECT_TRUE(allGetOne());
    EXPECT_TRUE(eachHasItsOwn());
}

TEST_F(WaitingPlayButtons, rowsAddedMeanwhileGetTheirsToo)
{
    for (int i = 0; i < 3; ++i)
        addMany(220, i * 220);
    EXPECT_LT(rowsWithButton(), 660);
    EXPECT_TRUE(allGetOne());
    EXPECT_TRUE(eachHasItsOwn());
}

TEST_F(WaitingPlayButtons, removedRowsLeaveTheOthersTheirs)
{
    addMany(350);
    QWidget* const kept = button(90);
    remove({ 0, 1, 2, 340 });
    EXPECT_EQ(button(87), kept);
    EXPECT_TRUE(allGetOne());
    EXPECT_TRUE(eachHasItsOwn());
    EXPECT_EQ(button(87), kept);
}

TEST_F(WaitingPlayButtons, scatteredRowsRemovedLeaveTheOthersTheirs)
{
    addMany(350);
    QList<int> odd;
    QList<QWidget*> kept;
    for (int row = 0; row < 350; ++row) {
        if (row % 2 == 1)
            odd.append(row);
        else if (button(row) != nullptr)
            kept.append(button(row));
    }
    remove(odd);
    EXPECT_TRUE(allGetOne());
    EXPECT_TRUE(eachHasItsOwn());
    for (int row = 0; row < kept.size(); ++row)
        ASSERT_EQ(button(row), kept.at(row)) << row;
    EXPECT_EQ(cell(100, FileColumn::FileName), "t200.wav");
}

TEST_F(WaitingPlayButtons, clearedRowsAreNotWaitedFor)
{
    addMany(350);
    files.clear();
    table->clearRows();
    EXPECT_EQ(table->rowCount(), 0);
    addMany(120);
    EXPECT_TRUE(allGetOne());
    EXPECT_EQ(table->rowCount(), 120);
    EXPECT_TRUE(eachHasItsOwn());
}

TEST_F(WaitingPlayButtons, tableMayGoMeanwhile)
{
    addMany(350);
    table.reset();
    QCoreApplication::processEvents();
    SUCCEED();
}

} // namespace
