#include "tests/report/SoundReportDialogFixture.h"

#include <QAccessible>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>

// The window.

TEST_F(ReportDialog, theWindowHasItsTitleAndSizes)
{
    const SoundReportDialog dialog(nullptr);
    EXPECT_EQ(dialog.windowTitle(), "Sound Report Generator");
    EXPECT_EQ(dialog.minimumSize(), QSize(1000, 700));
    EXPECT_EQ(dialog.size(), QSize(1200, 800));
    EXPECT_EQ(childOf<QGroupBox>(dialog, "takesGroup").title(), "Takes");
    EXPECT_EQ(childOf<QGroupBox>(dialog, "detailsGroup").title(), "Take Details");
    EXPECT_EQ(childOf<QGroupBox>(dialog, "detailsGroup").maximumWidth(), 400);
    EXPECT_EQ(childOf<QPushButton>(dialog, "configureButton").text(), "Configure...");
    EXPECT_EQ(childOf<QPushButton>(dialog, "createReportButton").text(), "Create Sound Report");
    EXPECT_EQ(childOf<QPushButton>(dialog, "closeButton").text(), "Close");
    EXPECT_EQ(dialog.layout()->spacing(), 10);
    EXPECT_EQ(dialog.layout()->contentsMargins(), QMargins(10, 10, 10, 10));
}

TEST_F(ReportDialog, theTakesGetTwiceTheRoomOfTheDetails)
{
    const SoundReportDialog dialog(nullptr);
    const auto& rows = childOf<QVBoxLayout>(dialog, "mainLayout");
    ASSERT_EQ(rows.count(), 3);
    EXPECT_EQ(rows.stretch(0), 0);
    EXPECT_EQ(rows.stretch(1), 1);
    EXPECT_EQ(rows.stretch(2), 0);
    const auto* middle = qobject_cast<QHBoxLayout*>(rows.itemAt(1)->layout());
    ASSERT_TRUE(middle);
    EXPECT_EQ(middle->itemAt(0)->widget()->objectName(), "takesGroup");
    EXPECT_EQ(middle->stretch(0), 2);
    EXPECT_EQ(middle->itemAt(1)->widget()->objectName(), "detailsGroup");
    EXPECT_EQ(middle->stretch(1), 1);
    EXPECT_EQ(childOf<QHBoxLayout>(dialog, "folderLayout").stretch(1), 1);
}

TEST_F(ReportDialog, theTableShowsSixColumnsAndTakesNoEdits)
{
    const SoundReportDialog dialog(nullptr);
    const auto& table = childOf<QTableWidget>(dialog, "takeTable");
    QStringList titles;
    for (int column = 0; column < table.columnCount(); ++column)
        titles << table.horizontalHeaderItem(column)->text();
    EXPECT_EQ(titles, (QStringList{ "File #", "Scene", "Take", "Project", "Sound Roll", "Duration" }));
    EXPECT_EQ(table.selectionBehavior(), QAbstractItemView::SelectRows);
    EXPECT_EQ(table.selectionMode(), QAbstractItemView::SingleSelection);
    EXPECT_EQ(table.editTriggers(), QAbstractItemView::NoEditTriggers);
    EXPECT_TRUE(table.horizontalHeader()->stretchLastSection());
    EXPECT_TRUE(table.alternatingRowColors());
}

TEST_F(ReportDialog, theDetailPaneHasTwelveRows)
{
    const SoundReportDialog dialog(nullptr);
    const auto& form = childOf<QFormLayout>(dialog, "detailsLayout");
    const char* const captions[] = { "File Number:", "Filename:", "Scene:", "Take:", "Project:", "Sound Roll:",
        "Timecode In:", "Timecode Out:", "Duration:", "Tracks:", "Notes:", "File Date:" };
    ASSERT_EQ(form.rowCount(), 12);
    for (int row = 0; row < 12; ++row) {
        const auto* caption = qobject_cast<QLabel*>(form.itemAt(row, QFormLayout::LabelRole)->widget());
        EXPECT_EQ(caption->text(), captions[row]);
        EXPECT_EQ(form.itemAt(row, QFormLayout::FieldRole)->widget()->objectName(), kDetailLabels[row]);
    }
}

TEST_F(ReportDialog, everyControlHasAnAccessibleName)
{
    SoundReportDialog dialog(nullptr);
    dialog.show();
    for (const QWidget* control : dialog.findChildren<QWidget*>()) {
        if (control->focusPolicy() == Qt::NoFocus || control->objectName().startsWith("qt_"))
            continue;
        QAccessibleInterface* face = QAccessible::queryAccessibleInterface(const_cast<QWidget*>(control));
        ASSERT_TRUE(face);
        EXPECT_FALSE(face->text(QAccessible::Name).isEmpty()) << control->objectName().toStdString();
    }
}

TEST_F(ReportDialog, closeAccepts)
{
    SoundReportDialog dialog(nullptr);
    dialog.show();
    click(dialog, "closeButton");
    EXPECT_FALSE(dialog.isVisible());
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
}

// File-list mode.

TEST_F(ReportDialog, aListOfFilesHidesTheFolderButton)
{
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    dialog.show();
    EXPECT_EQ(labelText(dialog, "folderLabel"), "Source:");
    EXPECT_FALSE(childOf<QPushButton>(dialog, "selectFolderButton").isVisible());
    EXPECT_TRUE(childOf<QLineEdit>(dialog, "folderEdit").isReadOnly());
}

TEST_F(ReportDialog, oneFileAndThreeFilesAreCountedInWords)
{
    const QString a = addTake("a.wav", {});
    EXPECT_EQ(folderText(SoundReportDialog({ a }, nullptr)), "1 file from the file list");
    const QList<QString> three{ a, addTake("b.wav", {}), addTake("c.wav", {}) };
    EXPECT_EQ(folderText(SoundReportDialog(three, nullptr)), "3 files from the file list");
}

TEST_F(ReportDialog, anEmptyListGivesNoRowsAndNothingToCreate)
{
    const SoundReportDialog dialog(QList<QString>{}, nullptr);
    EXPECT_EQ(folderText(dialog), "0 files from the file list");
    EXPECT_EQ(rowCount(dialog), 0);
    EXPECT_FALSE(createEnabled(dialog));
}

TEST_F(ReportDialog, aListedFileThatVanishedIsNeitherCountedNorShown)
{
    const SoundReportDialog dialog({ path("gone.wav"), addTake("a.wav", {}), path("") }, nullptr);
    EXPECT_EQ(folderText(dialog), "1 file from the file list");
    EXPECT_EQ(rowCount(dialog), 1);
    EXPECT_TRUE(createEnabled(dialog));
}

// A file inside the program's resources is there for the list and gone for the reader.
TEST_F(ReportDialog, aFileThatVanishesAfterTheCountIsCountedAndNotShown)
{
    const QString inside = ":/qt-project.org/styles/commonstyle/images/file-16.png";
    ASSERT_TRUE(QFileInfo(inside).isFile());
    const SoundReportDialog dialog({ inside, addTake("a.wav", {}) }, nullptr);
    EXPECT_EQ(folderText(dialog), "2 files from the file list");
    EXPECT_EQ(rowCount(dialog), 1);
}

TEST_F(ReportDialog, aRowShowsSixTextsOfItsTake)
{
    const SoundReportDialog dialog(
        { addTake("AAD0012_1.wav",
            { .scene = "12", .take = "3", .project = "Doc", .tape = "R7", .frameRate = "25/1", .seconds = 90 }) },
        nullptr);
    EXPECT_EQ(rowTexts(dialog, 0), (QStringList{ "AAD0012", "12", "3", "Doc", "R7", "00:01:30:00" }));
}

TEST_F(ReportDialog, withoutAFileNumberItsCellIsEmpty)
{
    EXPECT_EQ(rowTexts(SoundReportDialog({ addTake("x.wav", { .scene = "1" }) }, nullptr), 0).first(), "");
}

TEST_F(ReportDialog, rowsStandInSortedOrder)
{
    const SoundReportDialog dialog({ addTake("b.wav", { .scene = "2" }), addTake("a.wav", { .scene = "1" }) }, nullptr);
    EXPECT_EQ(rowTexts(dialog, 0)[1], "1");
    EXPECT_EQ(rowTexts(dialog, 1)[1], "2");
}

// The detail pane.

TEST_F(ReportDialog, withoutACurrentRowAllTwelveLabelsReadDashes)
{
    SoundReportDialog dialog({ addTake("a.wav", { .scene = "1" }) }, nullptr);
    for (const char* name : kDetailLabels)
        EXPECT_EQ(labelText(dialog, name), "--") << name;
}

TEST_F(ReportDialog, aClickedRowIsShownInFull)
{
    const QString name = addTake("AAD0012_01.wav",
        { .scene = "12A",
            .take = "3",
            .project = "Doc",
            .tape = "R7",
            .note = "a &amp; b",
            .frameRate = "25/1",
            .timeReference = 48000ull * 3723,
            .timestampRate = 48000,
            .channels = 2,
            .trackNames = { "Boom", "Lav" },
            .seconds = 30 });
    QFile file(name);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    file.setFileTime(QDateTime(QDate(2024, 2, 29), QTime(13, 4, 5)), QFileDevice::FileModificationTime);
    file.close();
    SoundReportDialog dialog({ addTake("x.wav", {}), name }, nullptr);
    dialog.show();
    clickRow(dialog, 1);
    const char* const expected[] = { "AAD0012", "AAD0012_01.wav", "12A", "3", "Doc", "R7", "01:02:03:00", "01:02:33:00",
        "00:00:30:00", "Boom, Lav", "a &amp; b", "2024-02-29 13:04:05" };
    for (size_t i = 0; i < 12; ++i) {
        EXPECT_EQ(labelText(dialog, kDetailLabels[i]), expected[i]);
        EXPECT_EQ(childOf<QLabel>(dialog, kDetailLabels[i]).textFormat(), Qt::PlainText);
    }
}

TEST_F(ReportDialog, aTakeWithoutTracksAndNotesShowsNotAvailable)
{
    writeBytes(folder.file("junk.wav"), "no recording");
    SoundReportDialog dialog({ path("junk.wav") }, nullptr);
    dialog.show();
    clickRow(dialog, 0);
    EXPECT_EQ(labelText(dialog, "tracksLabel"), "N/A");
    EXPECT_EQ(labelText(dialog, "notesLabel"), "N/A");
    EXPECT_EQ(labelText(dialog, "sceneLabel"), "");
    EXPECT_EQ(labelText(dialog, "durationLabel"), "00:00:00:00");
}

TEST(ReportDialogTexts, areTheReportsOwnUnderTheDialogsNames)
{
    EXPECT_EQ(SoundReportDialog::formatTimecode(48000 * 61 + 47999, 48000, 25.0), "00:01:01:24");
    EXPECT_EQ(SoundReportDialog::formatTimecode(48000ull * 3600 * 30, 48000, 25.0), "30:00:00:00");
    EXPECT_EQ(SoundReportDialog::formatTimecode(48000, 0, 25.0), "--:--:--:--");
    EXPECT_EQ(SoundReportDialog::formatDuration(3661.5, 24.0), "01:01:01:12");
    EXPECT_EQ(SoundReportDialog::formatDuration(1.5, 0.0), "00:00:01:15");
    EXPECT_EQ(SoundReportDialog::formatFramerate(29.97), "29.97df-C");
    EXPECT_EQ(SoundReportDialog::formatFramerate(0.0), "");
    EXPECT_EQ(SoundReportDialog::escapeCSV("a,\"b\""), "\"a,\"\"b\"\"\"");
    EXPECT_EQ(SoundReportDialog::escapeCSV(" a "), " a ");
}
