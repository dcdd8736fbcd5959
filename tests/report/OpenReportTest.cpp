// The report as it is opened from the main window.

#include "report/SoundReportDialog.h"
#include "tests/report/ReportFixture.h"
#include "window/MetadataManagerWindow.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

class OpenReport : public ReportFixture { };

} // namespace

TEST_F(OpenReport, theButtonOpensTheListedFilesInTheOrderOfTheReport)
{
    MetadataManagerWindow window;
    window.openFiles({ addTake("b.wav", { .scene = "2" }), addTake("a.wav", { .scene = "1" }) });
    window.show();
    bool came = false;
    whenModal<SoundReportDialog>([&](SoundReportDialog& dialog) {
        came = true;
        EXPECT_EQ(dialog.parentWidget(), &window);
        EXPECT_EQ(labelText(dialog, "folderLabel"), "Source:");
        EXPECT_EQ(childOf<QLineEdit>(dialog, "folderEdit").text(), "2 files from the file list");
        ASSERT_EQ(rowCount(dialog), 2);
        EXPECT_EQ(rowTexts(dialog, 0)[1], "1");
        click(dialog, "closeButton");
    });
    click(window, "soundReportButton");
    EXPECT_TRUE(came);
    EXPECT_EQ(window.findChild<SoundReportDialog*>(), nullptr);
}

TEST_F(OpenReport, withAnEmptyListTheFolderModeIsOpened)
{
    addTake("a.wav", {});
    setSetting("lastRecording.folderPath", folder.path());
    MetadataManagerWindow window;
    window.show();
    bool came = false;
    whenModal<SoundReportDialog>([&](SoundReportDialog& dialog) {
        came = true;
        EXPECT_EQ(dialog.parentWidget(), &window);
        EXPECT_EQ(labelText(dialog, "folderLabel"), "Sound Roll Folder:");
        EXPECT_TRUE(childOf<QPushButton>(dialog, "selectFolderButton").isVisible());
        EXPECT_EQ(rowCount(dialog), 1);
        click(dialog, "closeButton");
    });
    window.onSoundReport();
    EXPECT_TRUE(came);
}

TEST_F(OpenReport, aListedFileThatVanishedSinceIsLeftOut)
{
    MetadataManagerWindow window;
    window.openFiles({ addTake("a.wav", { .scene = "1" }), addTake("b.wav", { .scene = "2" }) });
    QFile::remove(path("a.wav"));
    QStringList scenes;
    whenModal<SoundReportDialog>([&](SoundReportDialog& dialog) {
        for (int row = 0; row < rowCount(dialog); ++row)
            scenes << rowTexts(dialog, row)[1];
        click(dialog, "closeButton");
    });
    window.onSoundReport();
    EXPECT_EQ(scenes, QStringList{ "2" });
}
