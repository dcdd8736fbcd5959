#include "app/MainMenu.h"
#include "app/TagwellApplication.h"
#include "app/files/WavArguments.h"
#include "mixer/FilePlaybackMixerDialog.h"
#include "tests/support/TempFolder.h"
#include "tests/support/TestApplication.h"
#include "tests/support/WavBuilder.h"
#include "tests/window/ModalHands.h"
#include "window/MetadataManagerWindow.h"

#include <QAbstractButton>
#include <QAction>
#include <QFileOpenEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTableWidget>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

std::unique_ptr<QApplication> makeTestApplication(int& argc, char** argv)
{
    return std::make_unique<TagwellApplication>(argc, argv);
}

namespace {

/// The application with its window, as they stand when the program runs.
class ApplicationTest : public testing::Test {
protected:
    ApplicationTest()
    {
        setenv("HOME", folder.path().c_str(), 1);
        buildMenuBar(&window);
        application().mainWindow = &window;
    }
    ~ApplicationTest() override { application().mainWindow = nullptr; }

    static TagwellApplication& application() { return *static_cast<TagwellApplication*>(QCoreApplication::instance()); }

    QString write(const std::string& name)
    {
        WavBuilder().fmt(48000, 2, 24).dataFrames(48).write(folder.file(name));
        return QString::fromStdString(folder.file(name));
    }

    /// Sends what the system sends when a file is opened with the program. True if it was taken.
    static bool open(const QString& path)
    {
        QFileOpenEvent event(path);
        return QCoreApplication::sendEvent(QCoreApplication::instance(), &event);
    }

    QTableWidget* table() { return window.findChild<QTableWidget*>("fileTable"); }

    /// Shows the window and lets `act` loose once the program runs. What the program then ends with.
    template <typename Act> int runUntilItEnds(Act act)
    {
        window.show();
        QTimer::singleShot(0, &window, act);
        return QApplication::exec();
    }

    void leaveAnEditUnsaved()
    {
        window.openFiles({ write("take.wav") });
        table()->selectRow(0);
        window.findChild<QLineEdit*>("sceneEdit")->setText("unsaved");
        EXPECT_TRUE(window.findChild<QAbstractButton*>("saveButton")->isEnabled());
    }

    TempFolder folder;
    MetadataManagerWindow window;
};

struct Entry {
    QString text;
    QKeySequence shortcut;
    bool operator==(const Entry&) const = default;
};

QList<Entry> entriesOf(const QAction* menu)
{
    QList<Entry> entries;
    for (const QAction* action : menu->menu()->actions())
        entries.append(action->isSeparator() ? Entry{ "---", {} } : Entry{ action->text(), action->shortcut() });
    return entries;
}

} // namespace

// Command line.

TEST_F(ApplicationTest, argumentsThatExistAndHaveTheSuffixInAnyCaseAreTakenInTheirOrder)
{
    const QString second = write("b.WAV");
    const QString first = write("a.Wav");
    const QString text = write("c.txt");
    std::filesystem::create_directory(folder.file("folder"));
    const QString missing = QString::fromStdString(folder.file("missing.wav"));
    const QString plain = QString::fromStdString(folder.file("folder"));
    EXPECT_EQ(wavArguments({ "tagwell", second, first, text, missing, plain }), QList<QString>({ second, first }));
}

TEST_F(ApplicationTest, aFolderNamedAsAWavFileIsTaken)
{
    std::filesystem::create_directory(folder.file("reel.wav"));
    const QString path = QString::fromStdString(folder.file("reel.wav"));
    EXPECT_EQ(wavArguments({ "tagwell", path }), QList<QString>{ path });
}

TEST_F(ApplicationTest, theProgramItselfIsNoFile)
{
    EXPECT_TRUE(wavArguments({ write("program.wav") }).isEmpty());
    EXPECT_TRUE(wavArguments({}).isEmpty());
}

TEST_F(ApplicationTest, relativeArgumentsBecomeAbsolute)
{
    write("a.wav");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    const QList<QString> files = wavArguments({ "tagwell", "a.wav" });
    const std::string here = std::filesystem::current_path().string();
    std::filesystem::current_path(before);
    EXPECT_EQ(files, QList<QString>{ QString::fromStdString(here + "/a.wav") });
}

TEST_F(ApplicationTest, onlyTheLastSuffixCounts)
{
    const QString path = write("take.wav.bak");
    const QString taken = write("take.bak.wav");
    EXPECT_EQ(wavArguments({ "tagwell", path, taken }), QList<QString>{ taken });
}

// Menus.

TEST_F(ApplicationTest, theMenusHaveTheirEntriesAndKeys)
{
    const QList<QAction*> menus = window.menuBar()->actions();
    ASSERT_EQ(menus.size(), 2);
    EXPECT_EQ(menus[0]->text(), "&File");
    EXPECT_EQ(entriesOf(menus[0]),
        QList<Entry>({ { "&Open\u2026", QKeySequence(QKeySequence::Open) }, { "---", {} },
            { "&Quit", QKeySequence(QKeySequence::Quit) } }));
    EXPECT_EQ(menus[1]->text(), "&Tools");
    EXPECT_EQ(entriesOf(menus[1]), QList<Entry>({ { "&Sound Report\u2026", {} } }));
}

TEST_F(ApplicationTest, openShowsThePanel)
{
    QString title;
    {
        const ModalHands modal([&title](QDialog* dialog) { title = dialog->windowTitle(); });
        window.findChild<QAction*>("openAction")->trigger();
    }
    EXPECT_EQ(title, "Add WAV Files or Folders");
}

TEST_F(ApplicationTest, soundReportShowsTheReport)
{
    QString shown;
    {
        const ModalHands modal([&shown](QDialog* dialog) { shown = dialog->metaObject()->className(); });
        window.findChild<QAction*>("soundReportAction")->trigger();
    }
    EXPECT_EQ(shown, "SoundReportDialog");
}

// Opening through the system.

TEST_F(ApplicationTest, aWavFileIsTakenAndTheWindowComesUp)
{
    EXPECT_FALSE(window.isVisible());
    EXPECT_TRUE(open(write("take.WAV")));
    ASSERT_EQ(table()->rowCount(), 1);
    EXPECT_EQ(table()->item(0, 1)->text(), "take.WAV");
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
}

TEST_F(ApplicationTest, aFileThatIsListedAlreadyBringsTheWindowToTheFront)
{
    const QString path = write("take.wav");
    EXPECT_TRUE(open(path));
    QWidget other;
    other.show();
    other.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&other));
    EXPECT_TRUE(open(path));
    EXPECT_EQ(table()->rowCount(), 1);
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
}

TEST_F(ApplicationTest, filesOfAnotherKindFoldersAndNothingAreNotTaken)
{
    std::filesystem::create_directory(folder.file("reel"));
    for (const QString& path : { write("take.aif"), QString::fromStdString(folder.file("reel")), QString() })
        EXPECT_FALSE(open(path)) << path.toStdString();
    EXPECT_EQ(table()->rowCount(), 0);
    EXPECT_FALSE(window.isVisible());
}

TEST_F(ApplicationTest, withoutAWindowAFileIsLost)
{
    application().mainWindow = nullptr;
    EXPECT_FALSE(open(write("take.wav")));
    application().mainWindow = &window;
    QCoreApplication::processEvents();
    EXPECT_EQ(table()->rowCount(), 0);
}

TEST_F(ApplicationTest, aFileThatArrivesDuringABoxOfTheSaveGetsItsRowBelowTheOthers)
{
    WavBuilder withoutRoom; // A scene needs a chunk that isn't there, so the save warns.
    withoutRoom.fmt(48000, 2, 24).dataFrames(48);
    withoutRoom.write(folder.file("first.wav"));
    const QString path = QString::fromStdString(folder.file("first.wav"));
    window.openFiles({ path });
    table()->selectRow(0);
    window.findChild<QLineEdit*>("sceneEdit")->setText("12A");

    const QString late = write("late.wav");
    QTimer arrival;
    QObject::connect(&arrival, &QTimer::timeout, &window, [&] {
        if (QApplication::activeModalWidget())
            open(late);
    });
    arrival.start(0);
    const ModalHands modal;
    window.findChild<QAbstractButton*>("saveButton")->click();
    ASSERT_EQ(modal.boxes.size(), 2);
    EXPECT_EQ(modal.boxes[0].text, "Failed to save metadata to:\n" + path);
    EXPECT_EQ(modal.boxes[1].text, "Metadata saved to 1 file(s)");
    ASSERT_EQ(table()->rowCount(), 2);
    EXPECT_EQ(table()->item(0, 1)->text(), "first.wav");
    EXPECT_EQ(table()->item(1, 1)->text(), "late.wav");
    EXPECT_EQ(window.findChild<QLineEdit*>("sceneEdit")->text(), "");
}

// The end.

TEST_F(ApplicationTest, closingTheWindowEndsTheProgramWithoutAQuestion)
{
    leaveAnEditUnsaved();
    const ModalHands modal;
    EXPECT_EQ(runUntilItEnds([this] { window.close(); }), 0);
    EXPECT_TRUE(modal.boxes.isEmpty());
    EXPECT_EQ(modal.dialogs, 0);
}

TEST_F(ApplicationTest, anOpenMixerDoesNotKeepTheProgramRunning)
{
    window.openFiles({ write("take.wav") });
    const ModalHands modal; // The machine may have no sound, which a box tells.
    EXPECT_EQ(runUntilItEnds([this] {
        QTest::mouseClick(table()->cellWidget(0, 0), Qt::LeftButton);
        EXPECT_TRUE(window.findChild<FilePlaybackMixerDialog*>());
        window.close();
    }),
        0);
}

TEST_F(ApplicationTest, quitEndsTheProgramWithoutAQuestion)
{
    leaveAnEditUnsaved();
    const ModalHands modal;
    EXPECT_EQ(runUntilItEnds([this] { window.findChild<QAction*>("quitAction")->trigger(); }), 0);
    EXPECT_TRUE(modal.boxes.isEmpty());
    EXPECT_EQ(modal.dialogs, 0);
}
