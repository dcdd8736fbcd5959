#include "tests/window/WindowFixture.h"

#include <QDateTime>
#include <QFile>
#include <QGroupBox>
#include <QHeaderView>
#include <QImage>
#include <QLineEdit>
#include <QSplitter>
#include <QTest>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <filesystem>

namespace {

class FileTable : public WindowFixture { };

TEST_F(FileTable, windowHasItsTitleSizeAndTakesDrops)
{
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Metadata Manager - BWF Editor"));
    EXPECT_EQ(window->size(), QSize(1200, 800));
    EXPECT_TRUE(window->acceptDrops());
}

TEST_F(FileTable, hasItsFourteenColumns)
{
    const std::vector<std::string> wanted{ "", "File Name", "File Size", "Channels", "TAPEID", "SCENE", "TAKE",
        "START TC", "LENGTH", "DATE", "CIRCLED", "SAMPLE RATE", "FRAME RATE", "Notes" };
    std::vector<std::string> titles;
    for (int column = 0; column < table()->columnCount(); ++column)
        titles.push_back(table()->horizontalHeaderItem(column)->text().toStdString());
    EXPECT_EQ(titles, wanted);
}

TEST_F(FileTable, hasItsSettings)
{
    EXPECT_EQ(table()->selectionMode(), QAbstractItemView::ExtendedSelection);
    EXPECT_EQ(table()->selectionBehavior(), QAbstractItemView::SelectRows);
    EXPECT_EQ(table()->dragDropMode(), QAbstractItemView::DropOnly);
    EXPECT_EQ(table()->editTriggers(), QAbstractItemView::NoEditTriggers);
    EXPECT_TRUE(table()->verticalHeader()->isHidden());
    EXPECT_TRUE(table()->horizontalHeader()->stretchLastSection());
    EXPECT_EQ(table()->horizontalHeader()->minimumSectionSize(), 24);
    EXPECT_EQ(table()->horizontalHeader()->sectionResizeMode(0), QHeaderView::Fixed);
    EXPECT_EQ(table()->columnWidth(0), 40);
    EXPECT_FALSE(table()->showGrid());
    EXPECT_TRUE(table()->alternatingRowColors());
    EXPECT_FALSE(table()->isSortingEnabled());
}

TEST_F(FileTable, ofTheButtonsOnlyAddAndClearStartEnabled)
{
    EXPECT_EQ(text("addButton"), "Add...");
    EXPECT_EQ(text("removeFileButton"), "Remove File");
    EXPECT_EQ(text("clearButton"), "Clear");
    EXPECT_EQ(text("soundReportButton"), "Create Sound Report...");
    EXPECT_EQ(text("saveButton"), "Save Changes to Selected Files");
    EXPECT_TRUE(enabled("addButton"));
    EXPECT_FALSE(enabled("removeFileButton"));
    EXPECT_TRUE(enabled("clearButton"));
    EXPECT_FALSE(enabled("soundReportButton"));
    EXPECT_FALSE(enabled("saveButton"));
    EXPECT_EQ(widget<QWidget>("addButton")->toolTip(),
        QStringLiteral("Add WAV files, or folders (all WAVs inside are added)."));
    EXPECT_TRUE(widget<QWidget>("removeFileButton")->toolTip().isEmpty());
    EXPECT_TRUE(widget<QWidget>("clearButton")->toolTip().isEmpty());
    EXPECT_EQ(widget<QWidget>("soundReportButton")->toolTip(),
        QStringLiteral("Create a sound report (PDF / CSV / ALE) from the files above. Add files first."));
}

TEST_F(FileTable, splitterStandsOverSaveButton)
{
    auto* layout = qobject_cast<QVBoxLayout*>(window->centralWidget()->layout());
    ASSERT_TRUE(layout);
    ASSERT_EQ(layout->count(), 2);
    EXPECT_EQ(layout->itemAt(0)->widget(), widget<QSplitter>("filesSplitter"));
    EXPECT_EQ(layout->stretch(0), 1);
    EXPECT_EQ(layout->itemAt(1)->widget(), widget<QPushButton>("saveButton"));
    EXPECT_EQ(layout->stretch(1), 0);
    auto* outer = widget<QSplitter>("filesSplitter");
    EXPECT_EQ(qobject_cast<QGroupBox*>(outer->widget(0))->title(), QStringLiteral("Files"));
    EXPECT_EQ(outer->widget(1), widget<QSplitter>("detailSplitter"));
}

TEST_F(FileTable, rowShowsWhatTheFileSays)
{
    Recording recording;
    recording.scene = "12A";
    recording.take = "3";
    recording.tape = "18Y12M31";
    recording.note = "plane";
    recording.frameRate = "24000/1001";
    recording.circled = true;
    recording.timeReference = 48048ull * 3600;
    const QString file = write("T1.WAV", recording);
    window->addFiles({ file });

    ASSERT_EQ(table()->rowCount(), 1);
    EXPECT_EQ(cell(0, FileColumn::Play), "");
    EXPECT_EQ(cell(0, FileColumn::FileName), "T1.WAV");
    EXPECT_EQ(cell(0, FileColumn::FileSize),
        MetadataManagerWindow::formatFileSize(std::filesystem::file_size(file.toStdString())).toStdString());
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

TEST_F(FileTable, dateIsThatOfTheFileSystem)
{
    const QString file = write("a.wav", {});
    QFile opened(file);
    ASSERT_TRUE(opened.open(QIODevice::ReadWrite));
    ASSERT_TRUE(opened.setFileTime(QDateTime(QDate(2001, 2, 3), QTime(12, 0)), QFileDevice::FileModificationTime));
    opened.close();
    window->addFiles({ file });
    EXPECT_EQ(cell(0, FileColumn::Date), "2001-02-03");
}

TEST_F(FileTable, playColumnHasAnItemThatCanOnlyBeSelected)
{
    add("a.wav", {});
    const QTableWidgetItem* item = table()->item(0, 0);
    ASSERT_TRUE(item);
    EXPECT_EQ(item->flags(), Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    EXPECT_EQ(item->textAlignment(), static_cast<int>(Qt::AlignCenter));
}

TEST_F(FileTable, fileThatIsNoWavGetsARowAllTheSame)
{
    writeBytes(folder.file("a.wav"), std::string(512, 'x'));
    window->addFiles({ path("a.wav") });
    EXPECT_EQ(cell(0, FileColumn::FileName), "a.wav");
    EXPECT_EQ(cell(0, FileColumn::FileSize), "512.0 B");
    EXPECT_EQ(cell(0, FileColumn::Channels), "0");
    EXPECT_EQ(cell(0, FileColumn::SampleRate), "0 Hz");
    EXPECT_EQ(cell(0, FileColumn::StartTimecode), kMark);
    EXPECT_EQ(cell(0, FileColumn::Length), kMark);
    EXPECT_EQ(cell(0, FileColumn::FrameRate), kMark);
    EXPECT_EQ(cell(0, FileColumn::Circled), "No");
}

TEST_F(FileTable, startAtMidnightShowsTheMark)
{
    Recording recording;
    recording.frameRate = "25/1";
    add("a.wav", recording);
    EXPECT_EQ(cell(0, FileColumn::StartTimecode), kMark);
}

TEST_F(FileTable, samePathTwiceGivesOneRow)
{
    const QString file = write("a.wav", {});
    window->openFiles({ file, file });
    window->openFiles({ file });
    EXPECT_EQ(table()->rowCount(), 1);
}

TEST_F(FileTable, pathsOfOneFileThatAreWrittenDifferentlyAreTwoRows)
{
    window->addFiles({ write("a.wav", {}), path("./a.wav") });
    EXPECT_EQ(column(FileColumn::FileName), (std::vector<std::string>{ "a.wav", "a.wav" }));
}

TEST_F(FileTable, pathsThatDifferInCaseAreTwoFiles)
{
    window->openFiles({ write("a.wav", {}), write("A.wav", {}) });
    EXPECT_EQ(column(FileColumn::FileName), (std::vector<std::string>{ "a.wav", "A.wav" }));
}

TEST_F(FileTable, rowsStandInTheOrderOfAdding)
{
    window->addFiles({ write("b.wav", {}), write("a.wav", {}) });
    window->addFiles({ write("c.wav", {}), path("a.wav"), write("A.wav", {}) });
    EXPECT_EQ(column(FileColumn::FileName), (std::vector<std::string>{ "b.wav", "a.wav", "c.wav", "A.wav" }));
}

TEST_F(FileTable, addingSelectsNothingAndOffersNoSaving)
{
    add("a.wav", { .scene = "1" });
    EXPECT_TRUE(table()->selectedItems().isEmpty());
    EXPECT_FALSE(enabled("saveButton"));
    EXPECT_FALSE(enabled("removeFileButton"));
    EXPECT_EQ(text("currentFileLabel"), kMark);
}

TEST_F(FileTable, addingOffersTheReport)
{
    window->addFiles({});
    EXPECT_FALSE(enabled("soundReportButton"));
    add("a.wav", {});
    EXPECT_TRUE(enabled("soundReportButton"));
}

TEST_F(FileTable, columnsOfTheEmptyTableAreAsWideAsTheirHeaders)
{
    window->show();
    QCoreApplication::processEvents();
    EXPECT_EQ(table()->columnWidth(0), 40);
    for (int column = 1; column < kFileColumnCount - 1; ++column)
        EXPECT_EQ(table()->columnWidth(column), table()->horizontalHeader()->sectionSizeHint(column)) << column;
}

TEST_F(FileTable, addingFitsTheColumnsButThePlayColumn)
{
    table()->setColumnWidth(0, 90);
    add("a quite long name of a file that needs its room.wav", {});
    EXPECT_EQ(table()->columnWidth(0), 40);
    EXPECT_GT(table()->columnWidth(1), 200);
}

TEST_F(FileTable, columnsHaveRoomForTheirWidestText)
{
    add("a.wav", { .scene = "1", .tape = "1", .note = "1" });
    add("b.wav", { .scene = "A scene of many words", .take = "1", .tape = "A roll with a name" });
    add("c.wav", { .scene = "1", .take = "1", .note = "1" });
    for (const FileColumn each : { FileColumn::Scene, FileColumn::TapeId }) {
        const int fitted = table()->columnWidth(indexOf(each));
        table()->setColumnWidth(indexOf(each), 500);
        table()->resizeColumnToContents(indexOf(each));
        EXPECT_EQ(table()->columnWidth(indexOf(each)), fitted);
        EXPECT_GT(fitted, table()->horizontalHeader()->sectionSizeHint(indexOf(each)));
    }
}

TEST_F(FileTable, addingNothingNewFitsTheColumnsToo)
{
    add("a.wav", {});
    table()->setColumnWidth(0, 90);
    for (int column = 1; column < kFileColumnCount - 1; ++column)
        table()->setColumnWidth(column, 777);
    window->addFiles({ path("a.wav") });
    EXPECT_EQ(table()->columnWidth(0), 40);
    for (int column = 1; column < kFileColumnCount - 1; ++column)
        EXPECT_LT(table()->columnWidth(column), 400) << column;
}

TEST_F(FileTable, pathThatCannotBeSizedThrowsAfterTheFilesBeforeItHaveTheirRows)
{
    const QString first = write("a.wav", {});
    EXPECT_THROW(window->openFiles({ first, path("missing.wav") }), std::filesystem::filesystem_error);
    EXPECT_EQ(table()->rowCount(), 1);
    EXPECT_EQ(cell(0, FileColumn::FileName), "a.wav");
}

TEST_F(FileTable, clickOnACellSelectsTheWholeRowAndStartsNoEditing)
{
    add("a.wav", { .scene = "1" });
    add("b.wav", { .scene = "2" });
    window->show();
    QCoreApplication::processEvents();
    const QPoint place = table()->visualItemRect(table()->item(1, indexOf(FileColumn::Scene))).center();
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {}, place);
    EXPECT_EQ(table()->selectedItems().size(), kFileColumnCount);
    EXPECT_EQ(table()->currentRow(), 1);
    EXPECT_TRUE(table()->findChildren<QLineEdit*>().isEmpty());
}

TEST_F(FileTable, clickOnAHeaderDoesNotSort)
{
    window->addFiles({ write("b.wav", {}), write("a.wav", {}) });
    window->show();
    QCoreApplication::processEvents();
    QHeaderView* header = table()->horizontalHeader();
    for (int i = 0; i < 2; ++i)
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, QPoint(header->sectionViewportPosition(1) + 20, 5));
    EXPECT_EQ(column(FileColumn::FileName), (std::vector<std::string>{ "b.wav", "a.wav" }));
}

/// More rows than get their play buttons at once, so that some wait for the window to be idle.
class WaitingPlayButtons : public WindowFixture {
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
        window->addFiles(paths);
    }

    QWidget* button(int row) const { return table()->cellWidget(row, indexOf(FileColumn::Play)); }

    int rowsWithButton() const
    {
        int count = 0;
        for (int row = 0; row < table()->rowCount(); ++row)
            count += button(row) != nullptr ? 1 : 0;
        return count;
    }

    bool allGetOne() const
    {
        return QTest::qWaitFor([this] { return rowsWithButton() == table()->rowCount(); });
    }

    /// No row shares its button with another one, and none is left over from rows that went.
    bool eachHasItsOwn() const
    {
        QSet<QWidget*> seen;
        for (int row = 0; row < table()->rowCount(); ++row)
            seen.insert(button(row));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return seen.size() == table()->rowCount()
            && seen.size() == table()->findChildren<QToolButton*>(QStringLiteral("playButton")).size();
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
    select({ 0, 1, 2, 340 });
    press("removeFileButton");
    EXPECT_EQ(button(87), kept);
    EXPECT_TRUE(allGetOne());
    EXPECT_TRUE(eachHasItsOwn());
    EXPECT_EQ(button(87), kept);
}

TEST_F(WaitingPlayButtons, scatteredRowsRemovedLeaveTheOthersTheirs)
{
    addMany(350);
    std::vector<int> odd;
    QList<QWidget*> kept;
    for (int row = 0; row < 350; ++row) {
        if (row % 2 == 1)
            odd.push_back(row);
        else if (button(row) != nullptr)
            kept.append(button(row));
    }
    select(odd);
    press("removeFileButton");
    EXPECT_TRUE(allGetOne());
    EXPECT_TRUE(eachHasItsOwn());
    for (int row = 0; row < kept.size(); ++row)
        ASSERT_EQ(button(row), kept.at(row)) << row;
    EXPECT_EQ(cell(100, FileColumn::FileName), "t200.wav");
}

TEST_F(WaitingPlayButtons, clearedRowsAreNotWaitedFor)
{
    addMany(350);
    press("clearButton");
    EXPECT_EQ(table()->rowCount(), 0);
    addMany(120);
    EXPECT_TRUE(allGetOne());
    EXPECT_EQ(table()->rowCount(), 120);
    EXPECT_TRUE(eachHasItsOwn());
}

TEST_F(WaitingPlayButtons, windowMayGoMeanwhile)
{
    addMany(350);
    window.reset();
    QCoreApplication::processEvents();
    SUCCEED();
}

class Painted : public WindowFixture {
protected:
    Painted()
    {
        add("a.wav", { .scene = "12A" });
        add("b.wav", {});
        window->show();
        QCoreApplication::processEvents();
    }

    static bool hasColour(const QImage& image, const QColor& colour)
    {
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) == colour)
                    return true;
            }
        }
        return false;
    }
};

TEST_F(Painted, selectedRowIsPurpleWithWhiteText)
{
    const QRect scene = table()->visualItemRect(table()->item(0, indexOf(FileColumn::Scene)));
    const QImage before = table()->viewport()->grab().toImage();
    EXPECT_EQ(before.pixelColor(scene.right() - 2, scene.center().y()), QColor("#ffffff"));
    select({ 0 });
    const QImage after = table()->viewport()->grab().toImage();
    EXPECT_EQ(after.pixelColor(scene.right() - 2, scene.center().y()), QColor("#9B59B6"));
    EXPECT_TRUE(hasColour(after.copy(scene), QColor("#ffffff")));
    EXPECT_FALSE(hasColour(after.copy(scene), QColor("#111111")));
}

TEST_F(Painted, playButtonIsTransparentOverTheSelection)
{
    // The first row has the focus frame in its play column.
    select({ 1 });
    const QWidget* button = table()->cellWidget(1, 0);
    ASSERT_TRUE(button);
    const QImage image = table()->viewport()->grab().toImage();
    EXPECT_EQ(image.pixelColor(button->geometry().topLeft() + QPoint(3, 3)), QColor("#9B59B6"));
}

TEST_F(Painted, tablesAreWhiteInADarkWindow)
{
    const QImage image = window->grab().toImage();
    EXPECT_EQ(image.pixelColor(2, image.height() - 2), QColor("#1e1e1e"));
    const QPoint inside = tracks()->viewport()->mapTo(window.get(), tracks()->viewport()->rect().center());
    EXPECT_EQ(image.pixelColor(inside), QColor("#ffffff"));
}

TEST_F(Painted, disabledSaveButtonIsGreyOnNearlyBlack)
{
    const auto* button = widget<QPushButton>("saveButton");
    ASSERT_FALSE(button->isEnabled());
    const QImage image = widget<QPushButton>("saveButton")->grab().toImage();
    EXPECT_EQ(image.pixelColor(20, image.height() / 2), QColor("#1a1a1a"));
    EXPECT_TRUE(hasColour(image, QColor("#666666")));
    EXPECT_FALSE(hasColour(image, QColor("#f0f0f0")));
}

} // namespace
