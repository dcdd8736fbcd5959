#include "app/look/Theme.h"
#include "mixer/FilePlaybackMixerDialog.h"
#include "tests/support/DrivenOutput.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"
#include "window/FileTableColumns.h"
#include "window/MetadataManagerWindow.h"

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <memory>
#include <thread>

namespace {

constexpr int kTries = 20000; // Bounds the waits for the engine's threads.

void settle()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

class Playing : public testing::Test {
protected:
    void SetUp() override
    {
        DrivenOutput::reset();
        window = std::make_unique<MetadataManagerWindow>();
        window->show();
        // Boxes are confirmed as soon as they stand.
        QObject::connect(&boxCloser, &QTimer::timeout, [this] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box)
                return;
            boxes.append(box->text());
            boxPlace = box->geometry();
            QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        });
        boxCloser.start(1);
    }

    void TearDown() override
    {
        window.reset();
        EXPECT_EQ(DrivenOutput::unitsAlive(), 0);
    }

    /// Adds a mono file of two seconds whose samples all hold `level`.
    void add(const std::string& name, float level, const WavBuilder& start = WavBuilder().fmt(48000, 1, 16))
    {
        const auto sample = static_cast<int16_t>(level * 32768.0f);
        std::string frames;
        for (int i = 0; i < 96000; ++i)
            frames += le16(static_cast<uint16_t>(sample));
        WavBuilder builder = start;
        builder.data(frames).write(folder.file(name));
        window->openFiles({ QString::fromStdString(folder.file(name)) });
    }

    void addThree()
    {
        add("a.wav", 0.5f);
        add("b.wav", 0.25f);
        add("c.wav", 0.125f);
    }

    void addWithTrackName(const std::string& name)
    {
        add("named.wav", 0.5f,
            WavBuilder()
                .fmt(48000, 1, 16)
                .ixml("<BWFXML><TRACK_LIST><TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>" + name
                    + "</NAME></TRACK></TRACK_LIST></BWFXML>"));
    }

    /// Edits the only track's name in the pane of row 0.
    void editTrackName(const QString& name)
    {
        select(0);
        window->findChild<QTableWidget*>("trackTable")->item(0, indexOf(TrackColumn::Name))->setText(name);
    }

    QTableWidget* table() const { return window->findChild<QTableWidget*>("fileTable"); }

    QToolButton* playButton(int row) const { return qobject_cast<QToolButton*>(table()->cellWidget(row, 0)); }

    void press(int row) { QTest::mouseClick(playButton(row), Qt::LeftButton); }

    void click(const char* button) { QTest::mouseClick(window->findChild<QPushButton*>(button), Qt::LeftButton); }

    void select(int row)
    {
        const QPoint middle = table()->visualItemRect(table()->item(row, 1)).center();
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, middle);
    }

    QList<FilePlaybackMixerDialog*> dialogs() const { return window->findChildren<FilePlaybackMixerDialog*>(); }

    FilePlaybackMixerDialog* dialog() const { return dialogs().value(0); }

    QString playedFile() const
    {
        return dialogs().size() == 1 ? dialog()->findChild<QLabel*>("titleLabel")->text() : QString();
    }

    QString trackName(int track) const
    {
        return dialog()->findChild<QLabel*>(QStringLiteral("nameLabel%1").arg(track))->text();
    }

    void startPlayback() { QTest::mouseClick(dialog()->findChild<QPushButton*>("playPauseButton"), Qt::LeftButton); }

    bool isPlaying() const
    {
        return dialog()->findChild<QPushButton*>("playPauseButton")->text() == QLatin1String(" Pause");
    }

    static bool hear(float level)
    {
        for (int attempt = 0; attempt < kTries; ++attempt) {
            const std::vector<float> heard = DrivenOutput::pullStereo(64);
            const auto off = [level](float sample) { return std::fabs(sample - level) > 1e-4f; };
            if (!heard.empty() && std::none_of(heard.begin(), heard.end(), off))
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return false;
    }

    TempFolder folder;
    std::unique_ptr<MetadataManagerWindow> window;
    QTimer boxCloser;
    QStringList boxes;
    QRect boxPlace; ///< Where the last one stood.
};

} // namespace

TEST_F(Playing, eachRowHasItsButton)
{
    addThree();
    for (int row = 0; row < 3; ++row) {
        QToolButton* button = playButton(row);
        ASSERT_NE(button, nullptr);
        EXPECT_EQ(button->iconSize(), QSize(18, 18));
        EXPECT_EQ(button->text(), "");
        EXPECT_EQ(button->toolTip(), "Play this file with a track mixer");
        EXPECT_TRUE(button->autoRaise());
        EXPECT_EQ(button->focusPolicy(), Qt::NoFocus);
        EXPECT_EQ(button->cursor().shape(), Qt::PointingHandCursor);
        EXPECT_EQ(button->accessibleName(), "Play");
        EXPECT_EQ(button->size(), QSize(28, 24));
        EXPECT_EQ(button->styleSheet(), Theme::playButtonStyleSheet());
    }
}

TEST_F(Playing, theIconIsAGreenTriangleToTheRight)
{
    add("a.wav", 0.5f);
    const QImage icon = playButton(0)->icon().pixmap(18, 18).toImage();
    ASSERT_EQ(icon.size(), QSize(18, 18));
    EXPECT_EQ(icon.pixelColor(8, 9), QColor(QStringLiteral("#1a7f37")));
    EXPECT_EQ(icon.pixelColor(6, 5), QColor(QStringLiteral("#1a7f37")));
    EXPECT_EQ(icon.pixelColor(3, 9).alpha(), 0);
    EXPECT_EQ(icon.pixelColor(13, 4).alpha(), 0);
    EXPECT_EQ(icon.pixelColor(16, 9).alpha(), 0);
}

TEST_F(Playing, aPressOpensTheMixerBesideTheWindow)
{
    addThree();
    press(1);
    ASSERT_EQ(dialogs().size(), 1);
    EXPECT_EQ(playedFile(), "b.wav");
    EXPECT_EQ(dialog()->parentWidget(), window.get());
    EXPECT_TRUE(dialog()->isVisible());
    EXPECT_FALSE(dialog()->isModal());
    startPlayback();
    EXPECT_TRUE(hear(0.25f));
}

TEST_F(Playing, aMonoFileWithoutTracksIsTrack1)
{
    add("a.wav", 0.5f);
    press(0);
    EXPECT_EQ(trackName(0), "Track 1");
    EXPECT_EQ(dialog()->findChild<QLabel*>("nameLabel1"), nullptr);
}

TEST_F(Playing, namesOfTheFileReachTheMixer)
{
    add("poly.wav", 0.01f,
        WavBuilder()
            .fmt(48000, 4, 16)
            .ixml("<BWFXML><TRACK_LIST><TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>Boom</NAME></TRACK>"
                  "<TRACK><CHANNEL_INDEX>2</CHANNEL_INDEX><NAME>Lav</NAME></TRACK>"
                  "<TRACK><CHANNEL_INDEX>4</CHANNEL_INDEX><NAME>Mix</NAME></TRACK></TRACK_LIST></BWFXML>"));
    press(0);
    EXPECT_EQ(trackName(0), "Boom");
    EXPECT_EQ(trackName(1), "Lav");
    EXPECT_EQ(trackName(2), "Track 3");
    EXPECT_EQ(trackName(3), "Mix");
}

TEST_F(Playing, aTrackNameThatIsNotSavedDoesNotReachTheMixer)
{
    addWithTrackName("Boom");
    editTrackName(QStringLiteral("Lav!"));
    press(0);
    EXPECT_EQ(trackName(0), "Boom");
}

TEST_F(Playing, aSavedTrackNameReachesTheNextMixerOnly)
{
    addWithTrackName("Boom");
    press(0);
    editTrackName(QStringLiteral("Lav!"));
    click("saveButton");
    EXPECT_EQ(boxes, QStringList({ "Metadata saved to 1 file(s)" }));
    EXPECT_EQ(trackName(0), "Boom") << "the open one keeps its copy";
    dialog()->close();
    settle();
    press(0);
    EXPECT_EQ(trackName(0), "Lav!");
}

TEST_F(Playing, trackNamesOfARowThatIsNotThereAreNone)
{
    add("a.wav", 0.5f);
    EXPECT_TRUE(window->trackNamesForRow(-1).isEmpty());
    EXPECT_TRUE(window->trackNamesForRow(1).isEmpty());
    EXPECT_EQ(window->trackNamesForRow(0).size(), 1);
}

TEST_F(Playing, rowsThatAreNotThereOpenNothing)
{
    add("a.wav", 0.5f);
    for (const int row : { -1, 1, 1000000 })
        QMetaObject::invokeMethod(window.get(), "onPlayFile", Qt::DirectConnection, Q_ARG(int, row));
    EXPECT_TRUE(dialogs().isEmpty());
}

TEST_F(Playing, aButtonWithoutARowDoesNothing)
{
    addThree();
    QPointer<QToolButton> button = playButton(2);
    table()->setCellWidget(2, 0, nullptr);
    if (button)
        button->click();
    EXPECT_TRUE(dialogs().isEmpty());
}

TEST_F(Playing, closingByTheUserForgetsTheDialogAndAPressOpensANewOne)
{
    addThree();
    press(0);
    const QPointer<FilePlaybackMixerDialog> first = dialog();
    first->close();
    settle();
    EXPECT_TRUE(first.isNull());
    press(0);
    EXPECT_EQ(playedFile(), "a.wav");
}

TEST_F(Playing, twoPressesOnTheSameRowOpenOneDialogThatPlaysOn)
{
    addThree();
    press(0);
    const QPointer<FilePlaybackMixerDialog> first = dialog();
    startPlayback();
    ASSERT_TRUE(hear(0.5f));
    first->hide();
    press(0);
    settle();
    EXPECT_EQ(dialogs().size(), 1);
    EXPECT_EQ(dialog(), first);
    EXPECT_TRUE(first->isVisible()) << "brought to the front";
    EXPECT_TRUE(isPlaying());
}

TEST_F(Playing, aPressOnTheSameRowBringsTheDialogToTheFront)
{
    addThree();
    press(0);
    // Not by asking the dialog, which counts as active while its parent is.
    const auto comesToTheFront
        = [](const QWidget* widget) { return QTest::qWaitFor([=] { return QApplication::activeWindow() == widget; }); };
    window->activateWindow();
    ASSERT_TRUE(comesToTheFront(window.get()));
    press(0);
    EXPECT_TRUE(comesToTheFront(dialog()));
}

TEST_F(Playing, aPressOnAnotherRowReplacesTheDialog)
{
    addThree();
    press(0);
    const QPointer<FilePlaybackMixerDialog> first = dialog();
    startPlayback();
    press(1);
    settle();
    EXPECT_TRUE(first.isNull());
    EXPECT_EQ(playedFile(), "b.wav");
    EXPECT_EQ(DrivenOutput::unitsAlive(), 1) << "only one file plays";
}

TEST_F(Playing, theReplacedDialogsEndDoesNotLoseTheNewOne)
{
    addThree();
    press(0);
    press(1);
    settle();
    const QPointer<FilePlaybackMixerDialog> second = dialog();
    press(1);
    settle();
    EXPECT_EQ(dialogs().size(), 1);
    EXPECT_EQ(dialog(), second);
}

TEST_F(Playing, aChangeOfTheSelectionLeavesIt)
{
    addThree();
    press(0);
    const QPointer<FilePlaybackMixerDialog> first = dialog();
    startPlayback();
    select(2);
    select(1);
    settle();
    EXPECT_EQ(dialog(), first);
    EXPECT_TRUE(isPlaying());
}

TEST_F(Playing, removingItsRowClosesIt)
{
    addThree();
    press(1);
    startPlayback();
    select(1);
    click("removeFileButton");
    settle();
    EXPECT_EQ(table()->rowCount(), 2);
    EXPECT_TRUE(dialogs().isEmpty());
    EXPECT_EQ(DrivenOutput::unitsAlive(), 0);
    press(1);
    EXPECT_EQ(playedFile(), "c.wav");
}

TEST_F(Playing, removingAnotherRowLeavesIt)
{
    addThree();
    press(1);
    const QPointer<FilePlaybackMixerDialog> first = dialog();
    startPlayback();
    select(0);
    click("removeFileButton");
    settle();
    EXPECT_EQ(table()->rowCount(), 2);
    EXPECT_EQ(dialog(), first);
    EXPECT_TRUE(isPlaying());
}

TEST_F(Playing, removingItAmongSeveralRowsClosesIt)
{
    addThree();
    press(1);
    table()->selectAll();
    click("removeFileButton");
    settle();
    EXPECT_TRUE(dialogs().isEmpty());
}

TEST_F(Playing, afterARowAboveHasGoneAButtonPlaysItsOwnFile)
{
    addThree();
    QToolButton* button = playButton(2);
    select(0);
    click("removeFileButton");
    ASSERT_EQ(playButton(1), button);
    QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(playedFile(), "c.wav");
}

TEST_F(Playing, whileLaterRowsWaitForTheirButtonsAButtonPlaysItsOwnFile)
{
    addThree();
    QStringList more;
    for (int i = 0; i < 300; ++i) {
        const std::string name = folder.file("more" + std::to_string(i) + ".wav");
        writeBytes(name, "");
        more.append(QString::fromStdString(name));
    }
    window->openFiles(more);
    QToolButton* button = playButton(2);
    table()->selectRow(0);
    window->findChild<QPushButton*>("removeFileButton")->click();
    ASSERT_EQ(playButton(301), nullptr);
    button->click();
    EXPECT_EQ(playedFile(), "c.wav");
}

TEST_F(Playing, clearClosesIt)
{
    addThree();
    press(1);
    startPlayback();
    click("clearButton");
    settle();
    EXPECT_TRUE(dialogs().isEmpty());
    EXPECT_EQ(DrivenOutput::unitsAlive(), 0);
}

TEST_F(Playing, clearWithoutADialogIsHarmless)
{
    addThree();
    click("clearButton");
    EXPECT_EQ(table()->rowCount(), 0);
}

TEST_F(Playing, savingLeavesItWithItsCopyOfTheMetadata)
{
    addThree();
    press(0);
    const QPointer<FilePlaybackMixerDialog> first = dialog();
    startPlayback();
    ASSERT_TRUE(hear(0.5f));
    select(0);
    auto* scene = window->findChild<QLineEdit*>("sceneEdit");
    QTest::keyClicks(scene, "12A");
    click("saveButton");
    settle();
    EXPECT_EQ(dialog(), first);
    EXPECT_TRUE(isPlaying());
    EXPECT_TRUE(hear(0.5f));
}

TEST_F(Playing, addingRowsLeavesIt)
{
    addThree();
    press(0);
    const QPointer<FilePlaybackMixerDialog> first = dialog();
    startPlayback();
    add("d.wav", 0.0625f);
    settle();
    EXPECT_EQ(dialog(), first);
    EXPECT_TRUE(isPlaying());
}

TEST_F(Playing, theWindowsEndEndsPlayback)
{
    addThree();
    press(0);
    const QPointer<FilePlaybackMixerDialog> first = dialog();
    startPlayback();
    ASSERT_TRUE(hear(0.5f));
    const QSignalSpy closed(first, &QDialog::rejected);
    window.reset();
    EXPECT_TRUE(first.isNull());
    EXPECT_EQ(closed.size(), 1) << "closed, not only deleted";
    EXPECT_EQ(DrivenOutput::unitsAlive(), 0);
}

TEST_F(Playing, closePlaybackOverlayClosesItOnce)
{
    addThree();
    press(0);
    QMetaObject::invokeMethod(window.get(), "closePlaybackOverlay", Qt::DirectConnection);
    QMetaObject::invokeMethod(window.get(), "closePlaybackOverlay", Qt::DirectConnection);
    settle();
    EXPECT_TRUE(dialogs().isEmpty());
}

TEST_F(Playing, anUnplayableFileOpensAsADisplayAfterItsBox)
{
    writeBytes(folder.file("text.wav"), "no sound");
    window->openFiles({ QString::fromStdString(folder.file("text.wav")) });
    press(0);
    EXPECT_EQ(boxes, QStringList({ "Could not open this WAV for playback." }));
    EXPECT_EQ(playedFile(), "text.wav");
    EXPECT_TRUE(dialog()->isVisible());
}

TEST_F(Playing, theBoxStandsOverTheDialogToCome)
{
    writeBytes(folder.file("text.wav"), "no sound");
    window->openFiles({ QString::fromStdString(folder.file("text.wav")) });
    window->move(150, 150);
    press(0);
    const QPoint off = boxPlace.center() - dialog()->geometry().center();
    EXPECT_LT(off.manhattanLength(), 100);
}

TEST_F(Playing, aFileThatHasGoneFromDiskGivesTheBox)
{
    addThree();
    std::remove(folder.file("b.wav").c_str());
    press(1);
    EXPECT_EQ(boxes.size(), 1);
    EXPECT_EQ(playedFile(), "b.wav");
}
