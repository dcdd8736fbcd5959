// Texts of files that look like markup, in the labels of every window that shows them.

#include "mixer/FilePlaybackMixerDialog.h"
#include "report/SoundReportDialog.h"
#include "tests/support/DrivenOutput.h"
#include "tests/window/MarkupLabels.h"
#include "tests/window/ModalHands.h"
#include "tests/window/WindowFixture.h"

#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

namespace {

constexpr char kFileName[] = "AAD<h1>big<b>_1.wav";

class Labels : public WindowFixture {
protected:
    Labels()
    {
        DrivenOutput::reset();
        BextFields bext;
        bext.description = "SCENE=<h1>1\nTAKE=<h1>2\nTAPE=<h1>3\nNOTE=<h1>4\nTRK1=<h1>Boom\nTS=<h1>00</h1>\n";
        // Empty, so that the Description is asked; a project has only this place, where a tag ends it.
        const std::string ixml = "<BWFXML><PROJECT>p</PROJECT></BWFXML>";
        WavBuilder().fmt(48000, 1, 16).bext(bext).ixml(ixml).dataFrames(100).write(folder.file(kFileName));
        window->addFiles({ path(kFileName) });
        window->show();
        select({ 0 });
    }

    /// Expects `shown` labels of `dialog` to show a text with a tag as it stands, and none to show it otherwise.
    static void expectPlain(const QWidget& dialog, qsizetype shown)
    {
        EXPECT_EQ(labelsWithTags(dialog).size(), shown);
        EXPECT_EQ(labelsThatTakeMarkup(dialog), QStringList());
    }
};

} // namespace

TEST_F(Labels, ofTheWindowShowMarkupAsItStands)
{
    EXPECT_EQ(text("currentFileLabel"), kFileName);
    EXPECT_EQ(text("userBitsLabel"), "<h1>00</h1>");
    expectPlain(*window, 2);
    for (const char* value : { "currentFileLabel", "channelsLabel", "sampleRateLabel", "tcSampleRateLabel",
             "frameRateLabel", "lengthLabel", "samplesSinceMidnightLabel", "userBitsLabel", "bitDepthLabel" })
        EXPECT_EQ(widget<QLabel>(value)->textFormat(), Qt::PlainText) << value;
}

TEST_F(Labels, ofTheMixerShowMarkupAsItStands)
{
    QTest::mouseClick(table()->cellWidget(0, 0), Qt::LeftButton);
    auto* mixer = window->findChild<FilePlaybackMixerDialog*>();
    ASSERT_TRUE(mixer);
    expectPlain(*mixer, 2); // The file and its only track.
    mixer->close();
}

TEST_F(Labels, ofTheReportShowMarkupAsItStands)
{
    const ModalHands modal([](QDialog* dialog) {
        ASSERT_TRUE(qobject_cast<SoundReportDialog*>(dialog));
        dialog->findChild<QTableWidget*>("takeTable")->selectRow(0);
        // File name, the number in it, scene, take, roll, track and notes.
        expectPlain(*dialog, 7);
    });
    press("soundReportButton");
    EXPECT_EQ(modal.dialogs, 1);
}

TEST_F(Labels, ofTheReportsConfigurationShowMarkupAsItStands)
{
    ConfigManager& settings = ConfigManager::getInstance();
    for (const char* key :
        { "productionCompany", "projectName", "director", "soundMixer", "mixerPhone", "mixerEmail", "companyLogoPath" })
        settings.setString(std::string("soundreport.") + key, "<h1>" + std::string(key));
    bool came = false;
    const ModalHands modal([&came](QDialog* report) {
        QTimer::singleShot(0, [&came] {
            auto* configuration = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_TRUE(configuration);
            came = true;
            EXPECT_GE(configuration->findChildren<QLabel*>().size(), 9);
            EXPECT_EQ(labelsThatTakeMarkup(*configuration), QStringList());
            configuration->reject();
        });
        report->findChild<QPushButton*>("configureButton")->click();
    });
    press("soundReportButton");
    EXPECT_TRUE(came);
}

TEST_F(Labels, ofTheTimecodeDialogShowMarkupAsItStands)
{
    const ModalHands modal([](QDialog* dialog) {
        EXPECT_EQ(dialog->findChildren<QLabel*>().size(), 1);
        EXPECT_EQ(labelsThatTakeMarkup(*dialog), QStringList());
    });
    press("timecodeButton");
    EXPECT_EQ(modal.dialogs, 1);
}

TEST_F(Labels, ofTheBoxAboutAFailedSaveShowMarkupAsItStands)
{
    // A scene needs the chunk that isn't there.
    WavBuilder().fmt(48000, 1, 16).dataFrames(100).write(folder.file("<h1>bare.wav"));
    window->addFiles({ path("<h1>bare.wav") });
    select({ 1 });
    QStringList wrong;
    bool named = false;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return;
        named = named || labelsWithTags(*box).size() == 1;
        wrong += labelsThatTakeMarkup(*box);
        box->accept();
    });
    look.start(0);
    widget<QLineEdit>("sceneEdit")->setText("other");
    press("saveButton");
    EXPECT_TRUE(named) << "no box with the file's name came up";
    EXPECT_EQ(wrong, QStringList());
}
