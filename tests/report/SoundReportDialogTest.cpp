#include "report/SoundReportDialog.h"
#include "tests/report/ReportFixture.h"
#include "tests/support/WavBuilder.h"

#include <QAccessible>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QTableWidget>
#include <QVBoxLayout>
#include <QtTest>

#include <cstring>

namespace {

const char* const kDetailLabels[]
    = { "fileNumberLabel", "filenameLabel", "sceneLabel", "takeLabel", "projectLabel", "soundRollLabel",
          "timecodeInLabel", "timecodeOutLabel", "durationLabel", "tracksLabel", "notesLabel", "fileDateLabel" };

bool createEnabled(const SoundReportDialog& dialog)
{
    return childOf<QPushButton>(dialog, "createReportButton").isEnabled();
}

QString folderText(const SoundReportDialog& dialog)
{
    return childOf<QLineEdit>(dialog, "folderEdit").text();
}

void clickRow(SoundReportDialog& dialog, int row)
{
    auto& table = childOf<QTableWidget>(dialog, "takeTable");
    QTest::mouseClick(
        table.viewport(), Qt::LeftButton, Qt::NoModifier, table.visualItemRect(table.item(row, 1)).center());
}

class ReportDialog : public ReportFixture {
protected:
    QString subfolder(const std::string& name)
    {
        QDir(path("")).mkpath(QString::fromStdString(name));
        return path(name);
    }

    /// A target that the file dialog takes and nobody can open.
    QString linkIntoNowhere()
    {
        QFile::link(path("missing/report"), path("link"));
        return path("link");
    }

    /// Presses "Create Sound Report", cancels the file dialog and returns the path that it proposed.
    static QString proposal(SoundReportDialog& dialog)
    {
        QString proposed;
        whenModal<QFileDialog>([&proposed](QFileDialog& chooser) {
            proposed = chooser.directory().filePath(proposedName(chooser));
            cancelChooser(chooser);
        });
        click(dialog, "createReportButton");
        return proposed;
    }

    /// Presses "Create Sound Report" and saves under `target`.
    static void createReport(SoundReportDialog& dialog, const QString& target)
    {
        whenModal<QFileDialog>([target](QFileDialog& chooser) { pickPath(chooser, target); });
        click(dialog, "createReportButton");
    }

    static QString toastText(const SoundReportDialog& dialog)
    {
        const QLabel* toast = dialog.findChild<QLabel*>("toast");
        return toast ? toast->text() : QString();
    }

    /// Runs `act`, which ends in a message box; returns title and text of the box.
    static QStringList boxAfter(const std::function<void()>& act)
    {
        QStringList seen;
        whenModal<QMessageBox>([&seen](QMessageBox& box) {
            seen << box.windowTitle() << box.text();
            EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
            QTest::keyClick(&box, Qt::Key_Return);
        });
        act();
        return seen;
    }
};

} // namespace

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
        { addTake("AAD0012_1.wav", { .scene = "12", .take = "3", .tape = "R7", .project = "Doc", .seconds = 90 }) },
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

// Folder mode.

TEST_F(ReportDialog, aFirstRunOpensEmpty)
{
    SoundReportDialog dialog(nullptr);
    dialog.show();
    EXPECT_EQ(labelText(dialog, "folderLabel"), "Sound Roll Folder:");
    EXPECT_TRUE(childOf<QPushButton>(dialog, "selectFolderButton").isVisible());
    EXPECT_EQ(folderText(dialog), "");
    EXPECT_EQ(rowCount(dialog), 0);
    EXPECT_FALSE(createEnabled(dialog));
}

TEST_F(ReportDialog, theFolderOfTheLastRecordingIsOpened)
{
    addTake("a.wav", { .scene = "1" });
    setSetting("lastRecording.folderPath", folder.path());
    setSetting("media.saveLocation", "/");
    setSetting("metadata.project", "tmp");
    const SoundReportDialog dialog(nullptr);
    EXPECT_EQ(folderText(dialog), QString::fromStdString(folder.path()));
    EXPECT_EQ(rowCount(dialog), 1);
    EXPECT_TRUE(createEnabled(dialog));
}

TEST_F(ReportDialog, aMissingLastFolderGivesWayToTheCurrentProjectAndRoll)
{
    subfolder("P/R");
    addTake("P/R/a.wav", {});
    setSetting("lastRecording.folderPath", folder.file("nowhere"));
    setSetting("media.saveLocation", folder.path());
    setSetting("metadata.project", "P");
    setSetting("lastRecording.soundRoll", "R");
    const SoundReportDialog dialog(nullptr);
    EXPECT_EQ(folderText(dialog), path("P/R"));
    EXPECT_EQ(rowCount(dialog), 1);
}

TEST_F(ReportDialog, withoutARollTheProjectFolderIsOpened)
{
    subfolder("P");
    setSetting("media.saveLocation", folder.path());
    setSetting("metadata.project", "P");
    const SoundReportDialog dialog(nullptr);
    EXPECT_EQ(folderText(dialog), path("P"));
    EXPECT_FALSE(createEnabled(dialog));
}

TEST_F(ReportDialog, aMissingProjectFolderOpensEmpty)
{
    setSetting("media.saveLocation", folder.path());
    setSetting("metadata.project", "P");
    EXPECT_EQ(folderText(SoundReportDialog(nullptr)), "");
}

TEST_F(ReportDialog, locationAndProjectAreBothNeeded)
{
    setSetting("media.saveLocation", folder.path());
    EXPECT_EQ(folderText(SoundReportDialog(nullptr)), "");
    setSetting("media.saveLocation", "");
    setSetting("metadata.project", folder.path());
    EXPECT_EQ(folderText(SoundReportDialog(nullptr)), "");
}

TEST_F(ReportDialog, aFolderGivesItsWavFilesAloneInAnyCase)
{
    addTake("a.wav", {});
    addTake("b.WAV", {});
    addTake("c.wave", {});
    addTake("d.txt", {});
    subfolder("deep");
    addTake("deep/e.wav", {});
    subfolder("folder.wav");
    setSetting("lastRecording.folderPath", folder.path());
    EXPECT_EQ(rowCount(SoundReportDialog(nullptr)), 2);
}

TEST_F(ReportDialog, aFolderOfTwoThousandTakesIsListed)
{
    for (int i = 0; i < 2000; ++i)
        addTake("t" + std::to_string(i) + ".wav", { .scene = std::to_string(10000 + i) });
    setSetting("lastRecording.folderPath", folder.path());
    const SoundReportDialog dialog(nullptr);
    ASSERT_EQ(rowCount(dialog), 2000);
    EXPECT_EQ(rowTexts(dialog, 0)[1], "10000");
    EXPECT_EQ(rowTexts(dialog, 1999)[1], "11999");
}

TEST_F(ReportDialog, aChosenFolderIsShownAndRead)
{
    const QString chosen = subfolder("ROLL9");
    addTake("ROLL9/a.wav", { .scene = "7" });
    SoundReportDialog dialog(nullptr);
    whenModal<QFileDialog>([chosen](QFileDialog& chooser) {
        EXPECT_EQ(chooser.windowTitle(), "Select Sound Roll Folder");
        EXPECT_EQ(chooser.fileMode(), QFileDialog::Directory);
        EXPECT_EQ(chooser.options(),
            QFileDialog::ShowDirsOnly | QFileDialog::DontResolveSymlinks | QFileDialog::DontUseNativeDialog);
        EXPECT_EQ(chooser.parentWidget(), nullptr);
        pickPath(chooser, chosen);
    });
    click(dialog, "selectFolderButton");
    EXPECT_EQ(folderText(dialog), chosen);
    ASSERT_EQ(rowCount(dialog), 1);
    EXPECT_EQ(rowTexts(dialog, 0)[1], "7");
    EXPECT_TRUE(createEnabled(dialog));
}

TEST_F(ReportDialog, cancellingTheFolderChangesNothing)
{
    addTake("a.wav", {});
    setSetting("lastRecording.folderPath", folder.path());
    SoundReportDialog dialog(nullptr);
    whenModal<QFileDialog>([](QFileDialog& chooser) { cancelChooser(chooser); });
    click(dialog, "selectFolderButton");
    EXPECT_EQ(folderText(dialog), QString::fromStdString(folder.path()));
    EXPECT_EQ(rowCount(dialog), 1);
}

TEST_F(ReportDialog, anEmptyFolderEmptiesTheListAndDisablesCreating)
{
    addTake("a.wav", {});
    const QString empty = subfolder("empty");
    setSetting("lastRecording.folderPath", folder.path());
    SoundReportDialog dialog(nullptr);
    dialog.show();
    clickRow(dialog, 0);
    EXPECT_EQ(labelText(dialog, "filenameLabel"), "a.wav");
    whenModal<QFileDialog>([empty](QFileDialog& chooser) { pickPath(chooser, empty); });
    click(dialog, "selectFolderButton");
    EXPECT_EQ(folderText(dialog), empty);
    EXPECT_EQ(rowCount(dialog), 0);
    EXPECT_FALSE(createEnabled(dialog));
    for (const char* name : kDetailLabels)
        EXPECT_EQ(labelText(dialog, name), "--") << name;
}

namespace {

QString startOfFolderChooser(SoundReportDialog& dialog)
{
    QString start;
    whenModal<QFileDialog>([&start](QFileDialog& chooser) {
        start = chooser.directory().absolutePath();
        cancelChooser(chooser);
    });
    click(dialog, "selectFolderButton");
    return start;
}

} // namespace

TEST_F(ReportDialog, theFolderChooserStartsAtTheCurrentRoll)
{
    const QString roll = subfolder("P/R");
    setSetting("media.saveLocation", folder.path());
    setSetting("metadata.project", "P");
    setSetting("lastRecording.soundRoll", "R");
    SoundReportDialog dialog(nullptr);
    EXPECT_EQ(startOfFolderChooser(dialog), roll);
    setSetting("lastRecording.soundRoll", "");
    EXPECT_EQ(startOfFolderChooser(dialog), path("P"));
}

TEST_F(ReportDialog, withoutAProjectTheFolderChooserStartsAtTheDocuments)
{
    QDir().mkpath(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    addTake("a.wav", {});
    setSetting("lastRecording.folderPath", folder.path());
    SoundReportDialog dialog(nullptr);
    EXPECT_EQ(startOfFolderChooser(dialog),
        QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)).absolutePath());
}

TEST_F(ReportDialog, scanningAgainFindsNewFiles)
{
    addTake("a.wav", {});
    setSetting("lastRecording.folderPath", folder.path());
    SoundReportDialog dialog(nullptr);
    addTake("b.wav", {});
    dialog.onScanFolder();
    EXPECT_EQ(rowCount(dialog), 2);
    QFile::remove(path("a.wav"));
    QFile::remove(path("b.wav"));
    dialog.onScanFolder();
    EXPECT_EQ(rowCount(dialog), 0);
    EXPECT_FALSE(createEnabled(dialog));
}

TEST_F(ReportDialog, scanningAgainWithoutAFolderDoesNothing)
{
    SoundReportDialog dialog(nullptr);
    dialog.onScanFolder();
    EXPECT_EQ(rowCount(dialog), 0);
}

TEST_F(ReportDialog, scanningLeavesTheTableAlone)
{
    addTake("a.wav", {});
    SoundReportDialog dialog(nullptr);
    dialog.scanWavFiles(path(""));
    EXPECT_EQ(rowCount(dialog), 0);
    dialog.updateTakeList();
    EXPECT_EQ(rowCount(dialog), 1);
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
            .tape = "R7",
            .project = "Doc",
            .note = "a &amp; b",
            .tracks = { "Boom", "Lav" },
            .timeReference = 48000ull * 3723,
            .channels = 2,
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

// Creating reports.

TEST_F(ReportDialog, theProposedNameHoldsProjectAndRoll)
{
    SoundReportDialog dialog({ addTake("a.wav", { .tape = "R1", .project = "Doc" }) }, nullptr);
    setSetting("soundreport.projectName", "unused");
    EXPECT_EQ(proposal(dialog), path("Doc_R1_SoundReport.pdf"));
}

TEST_F(ReportDialog, inFolderModeTheFoldersNameIsTheRollWhateverTheFilesSay)
{
    setSetting("lastRecording.folderPath", subfolder("ROLL7").toStdString());
    setSetting("soundreport.outputFormat", "1");
    addTake("ROLL7/a.wav", { .tape = "OTHER" });
    SoundReportDialog dialog(nullptr);
    EXPECT_EQ(proposal(dialog), path("ROLL7/ROLL7_SoundReport.csv"));
}

TEST_F(ReportDialog, inListModeTheFirstTapeNameOfTheSortedTakesIsTheRoll)
{
    setSetting("soundreport.outputFormat", "2");
    SoundReportDialog dialog({ addTake("c.wav", { .scene = "3", .tape = "T3" }),
                                 addTake("b.wav", { .scene = "2", .tape = "T2" }), addTake("a.wav", { .scene = "1" }) },
        nullptr);
    EXPECT_EQ(proposal(dialog), path("T2_SoundReport.ale"));
}

TEST_F(ReportDialog, inListModeWithoutTapeNamesTheFirstFilesFolderIsTheRoll)
{
    subfolder("DAY2");
    subfolder("DAY1");
    SoundReportDialog dialog(
        { path("gone.wav"), addTake("DAY2/b.wav", { .scene = "2" }), addTake("DAY1/a.wav", { .scene = "1" }) },
        nullptr);
    EXPECT_EQ(proposal(dialog), path("DAY2/DAY2_SoundReport.pdf"));
}

TEST_F(ReportDialog, theProposedProjectIsThatOfTheFirstSortedTake)
{
    SoundReportDialog dialog({ addTake("b.wav", { .scene = "2", .tape = "R", .project = "Second" }),
                                 addTake("a.wav", { .scene = "1", .tape = "R", .project = "First" }) },
        nullptr);
    EXPECT_EQ(proposal(dialog), path("First_R_SoundReport.pdf"));
}

TEST_F(ReportDialog, aTakeFromTheRootFolderHasNoRollNameToPropose)
{
    SoundReportDialog dialog({ addTake("a.wav", { .project = "Doc" }) }, nullptr);
    dialog.scanWavFiles("/");
    dialog.loadTakesFromFiles({ QFileInfo(path("a.wav")) });
    EXPECT_EQ(proposal(dialog), path("Doc_SoundReport.pdf"));
    dialog.loadTakesFromFiles({ QFileInfo(addTake("b.wav", {})) });
    EXPECT_EQ(proposal(dialog), path("SoundReport.pdf"));
}

TEST_F(ReportDialog, aSlashInTheProjectNamesAFurtherFolder)
{
    subfolder("A");
    SoundReportDialog dialog({ addTake("a.wav", { .tape = "R", .project = "A/B" }) }, nullptr);
    EXPECT_EQ(proposal(dialog), path("A/B_R_SoundReport.pdf"));
}

TEST_F(ReportDialog, theSaveDialogAsksForTheFormatInForce)
{
    struct Row {
        const char* format;
        const char* filter;
        const char* suffix;
    };
    for (const Row& row : { Row{ "0", "PDF Files (*.pdf)", ".pdf" }, Row{ "1", "CSV Files (*.csv)", ".csv" },
             Row{ "2", "ALE Files (*.ale)", ".ale" }, Row{ "7", "PDF Files (*.pdf)", ".pdf" },
             Row{ "-1", "PDF Files (*.pdf)", ".pdf" } }) {
        setSetting("soundreport.outputFormat", row.format);
        SoundReportDialog dialog({ addTake("a.wav", { .tape = "R" }) }, nullptr);
        whenModal<QFileDialog>([&row](QFileDialog& chooser) {
            EXPECT_EQ(chooser.windowTitle(), "Save Sound Report");
            EXPECT_EQ(chooser.nameFilters(), QStringList(row.filter));
            EXPECT_EQ(chooser.acceptMode(), QFileDialog::AcceptSave);
            EXPECT_EQ(chooser.fileMode(), QFileDialog::AnyFile);
            EXPECT_TRUE(chooser.testOption(QFileDialog::DontUseNativeDialog));
            EXPECT_EQ(chooser.parentWidget(), nullptr);
            EXPECT_EQ(proposedName(chooser), QString("R_SoundReport") + row.suffix);
            cancelChooser(chooser);
        });
        click(dialog, "createReportButton");
        EXPECT_EQ(toastText(dialog), "");
    }
}

TEST_F(ReportDialog, theReportIsWrittenInItsFormatAndAToastSaysSo)
{
    struct Row {
        const char* format;
        const char* name;
        const char* start;
    };
    for (const Row& row : { Row{ "0", "PDF", "%PDF-" }, Row{ "1", "CSV", "File Number," },
             Row{ "2", "ALE", "Heading\n" }, Row{ "7", "PDF", "%PDF-" } }) {
        setSetting("soundreport.outputFormat", row.format);
        SoundReportDialog dialog({ addTake("a.wav", { .tape = "R" }) }, nullptr);
        dialog.show();
        const QString target = path(std::string("report.") + row.format);
        createReport(dialog, target);
        EXPECT_EQ(toastText(dialog), QString(row.name) + " report generated successfully!");
        EXPECT_EQ(readBytes(target.toStdString()).substr(0, std::strlen(row.start)), row.start);
        EXPECT_TRUE(dialog.isVisible());
    }
}

TEST_F(ReportDialog, theProposalCanBeTakenAsItIs)
{
    setSetting("soundreport.outputFormat", "1");
    SoundReportDialog dialog({ addTake("a.wav", { .tape = "R", .project = "Doc" }) }, nullptr);
    whenModal<QFileDialog>(
        [](QFileDialog& chooser) { QTest::keyClick(&childOf<QLineEdit>(chooser, "fileNameEdit"), Qt::Key_Return); });
    click(dialog, "createReportButton");
    EXPECT_TRUE(QFile::exists(path("Doc_R_SoundReport.csv")));
}

TEST_F(ReportDialog, aNameWithoutExtensionIsTakenAsItStands)
{
    setSetting("soundreport.outputFormat", "1");
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    createReport(dialog, "report");
    EXPECT_TRUE(QFile::exists(path("report")));
    EXPECT_FALSE(QFile::exists(path("report.csv")));
}

TEST_F(ReportDialog, theToastStandsInTheMiddleNearTheTopAndGoesByItself)
{
    setSetting("soundreport.outputFormat", "1");
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    dialog.show();
    createReport(dialog, path("r.csv"));
    QPointer<QLabel> toast = dialog.findChild<QLabel*>("toast");
    ASSERT_TRUE(toast);
    EXPECT_TRUE(toast->isVisible());
    EXPECT_EQ(toast->pos(), QPoint((dialog.width() - toast->width()) / 2, 50));
    EXPECT_EQ(toast->alignment(), Qt::AlignCenter);
    EXPECT_EQ(toast->styleSheet(),
        "QLabel { background-color: rgba(0, 150, 0, 200); color: white; padding: 12px 24px; border-radius: 6px; "
        "font-size: 14px; font-weight: bold; }");
    EXPECT_TRUE(QTest::qWaitFor([&toast] { return toast.isNull(); }, 30000));
}

TEST_F(ReportDialog, aTargetThatCannotBeOpenedBringsTheErrorBox)
{
    for (const auto& [format, name] : { std::pair("1", "CSV"), std::pair("2", "ALE") }) {
        setSetting("soundreport.outputFormat", format);
        SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
        const QStringList box = boxAfter([&] { createReport(dialog, linkIntoNowhere()); });
        EXPECT_EQ(box, (QStringList{ "Error", QString("Failed to generate %1 report.").arg(name) }));
        EXPECT_EQ(toastText(dialog), "");
    }
}

TEST_F(ReportDialog, aTargetInAMissingFolderBringsTheErrorBox)
{
    setSetting("soundreport.outputFormat", "1");
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    const QString target = path("missing/report.csv");
    EXPECT_EQ(boxAfter([&] { createReport(dialog, target); }).value(0), "Error");
    EXPECT_FALSE(QFile::exists(path("missing")));
}

TEST_F(ReportDialog, anUnwritablePdfTargetStillBringsTheToast)
{
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    createReport(dialog, linkIntoNowhere());
    EXPECT_EQ(toastText(dialog), "PDF report generated successfully!");
}

TEST_F(ReportDialog, creatingWithoutTakesBringsABox)
{
    SoundReportDialog dialog(nullptr);
    EXPECT_EQ(boxAfter([&dialog] { dialog.onCreateReport(); }),
        (QStringList{ "No Takes", "Please scan a folder with WAV files first." }));
}

TEST_F(ReportDialog, severalReportsCanBeMadeInOneSession)
{
    setSetting("soundreport.outputFormat", "1");
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    createReport(dialog, path("one.csv"));
    createReport(dialog, path("two.csv"));
    EXPECT_EQ(readBytes(folder.file("one.csv")), readBytes(folder.file("two.csv")));
    EXPECT_FALSE(readBytes(folder.file("two.csv")).empty());
}

TEST_F(ReportDialog, nothingButTheReportIsWrittenBesideTheAudio)
{
    addTake("a.wav", { .scene = "1" });
    const std::string before = readBytes(folder.file("a.wav"));
    setSetting("soundreport.outputFormat", "2");
    SoundReportDialog dialog({ path("a.wav") }, nullptr);
    createReport(dialog, path("r.ale"));
    EXPECT_EQ(readBytes(folder.file("a.wav")), before);
    EXPECT_EQ(QDir(path("")).entryList(QDir::Files), (QStringList{ "a.wav", "r.ale" }));
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
