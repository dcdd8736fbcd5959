#include "tests/report/SoundReportDialogFixture.h"

#include <cstring>

// Creating reports.

TEST_F(ReportDialog, theProposedNameHoldsProjectAndRoll)
{
    SoundReportDialog dialog({ addTake("a.wav", { .project = "Doc", .tape = "R1" }) }, nullptr);
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
    SoundReportDialog dialog({ addTake("b.wav", { .scene = "2", .project = "Second", .tape = "R" }),
                                 addTake("a.wav", { .scene = "1", .project = "First", .tape = "R" }) },
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
    SoundReportDialog dialog({ addTake("a.wav", { .project = "A/B", .tape = "R" }) }, nullptr);
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
    SoundReportDialog dialog({ addTake("a.wav", { .project = "Doc", .tape = "R" }) }, nullptr);
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
