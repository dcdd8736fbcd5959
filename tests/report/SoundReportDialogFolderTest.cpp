#include "tests/report/SoundReportDialogFixture.h"

#include <QStandardPaths>

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
