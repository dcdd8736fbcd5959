#include "app/files/NativeFilePanel.h"

#include "app/files/FilePanel.h"
#include "app/files/FolderModel.h"
#include "tests/support/TempFolder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <utility>

namespace {

/// The open panel as a user has it before him. Every look-up fails the test if the widget isn't there.
class PanelHands {
public:
    explicit PanelHands(QWidget* shown) : dialog(shown) { }

    template <typename Widget> Widget* widget(const char* name) const
    {
        auto* found = dialog->findChild<Widget*>(name);
        EXPECT_TRUE(found) << name;
        return found;
    }

    QTreeView* view() const { return widget<QTreeView>("fileView"); }
    QString location() const { return widget<QLineEdit>("locationEdit")->text(); }
    QString status() const { return widget<QLabel>("selectionLabel")->text(); }

    QStringList names() const
    {
        QStringList shown;
        for (int row = 0; row < view()->model()->rowCount(); ++row)
            shown += view()->model()->index(row, 0).data().toString();
        return shown;
    }

    QPoint place(const QString& name) const
    {
        const int row = static_cast<int>(names().indexOf(name));
        EXPECT_GE(row, 0) << name.toStdString();
        return view()->visualRect(view()->model()->index(row, 0)).center();
    }

    void click(const QString& name, Qt::KeyboardModifiers modifiers = {}) const
    {
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, modifiers, place(name));
    }

    void doubleClick(const QString& name) const
    {
        const QPoint where = place(name);
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, {}, where);
        QTest::mouseDClick(view()->viewport(), Qt::LeftButton, {}, where);
    }

    void key(Qt::Key pressed, Qt::KeyboardModifiers modifiers = {}) const
    {
        QWidget* focused = dialog->focusWidget();
        QTest::keyClick(focused ? focused : dialog, pressed, modifiers);
    }

    void press(const char* button) const { QTest::mouseClick(widget<QAbstractButton>(button), Qt::LeftButton); }

    void type(const QString& path) const
    {
        auto* edit = widget<QLineEdit>("locationEdit");
        edit->setFocus();
        edit->selectAll();
        QTest::keyClicks(edit, path);
        QTest::keyClick(edit, Qt::Key_Return);
    }

    QWidget* dialog;
};

class FilePanelTest : public testing::Test {
protected:
    FilePanelTest()
    {
        for (const char* name : { "T10.WAV", "t2.wav", "T1.wav", "notes.txt", ".hidden.wav" })
            writeBytes(folder.file(name), "x");
        std::filesystem::create_directories(folder.file("Day 2/inner"));
        std::filesystem::create_directories(folder.file("Day 1"));
        writeBytes(folder.file("Day 2/deep.wav"), "x");
    }

    /// Opens the panel, lets `steps` act in it, and gives what it answers. A panel that is still open when the
    /// steps are over is cancelled.
    QList<QString> pick(const std::function<void(const PanelHands&)>& steps) { return pickFrom(start(), steps); }

    QList<QString> pickFrom(
        const QString& where, const std::function<void(const PanelHands&)>& steps, QWidget* parent = nullptr)
    {
        bool ran = false;
        QTimer::singleShot(0, [&] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_TRUE(dialog);
            ran = true;
            EXPECT_TRUE(QTest::qWaitForWindowActive(dialog)); // Shortcuts reach the active window alone.
            steps(PanelHands(dialog));
            if (dialog->isVisible())
                dialog->reject();
        });
        const QList<QString> picked = macPickFilesOrFolders(parent, where, "Add WAV Files or Folders");
        EXPECT_TRUE(ran);
        return picked;
    }

    QString start() const { return QString::fromStdString(folder.path().string()); }
    QString path(const char* name) const { return QString::fromStdString(folder.file(name)); }

    TempFolder folder;
};

} // namespace

TEST_F(FilePanelTest, titleMessageAndButtonOfferToAddFilesAndFolders)
{
    pick([](const PanelHands& panel) {
        EXPECT_EQ(panel.dialog->windowTitle(), "Add WAV Files or Folders");
        EXPECT_EQ(panel.widget<QLabel>("messageLabel")->text(),
            "Select WAV files and/or folders. Folders add every WAV inside.");
        EXPECT_EQ(panel.widget<QPushButton>("pickButton")->text(), "Add");
        EXPECT_TRUE(panel.dialog->isModal());
    });
}

TEST_F(FilePanelTest, offersNoNewFolder)
{
    pick([](const PanelHands& panel) {
        QStringList buttons;
        for (const auto* button : panel.dialog->findChildren<QAbstractButton*>()) {
            if (!button->objectName().isEmpty())
                buttons += button->objectName();
        }
        buttons.sort();
        EXPECT_EQ(buttons, QStringList({ "cancelButton", "pickButton", "upButton" }));
    });
}

TEST_F(FilePanelTest, showsTheStartFolderWithFoldersFirstAndHiddenEntriesLeftOut)
{
    pick([this](const PanelHands& panel) {
        EXPECT_EQ(panel.location(), start());
        EXPECT_EQ(panel.names(), QStringList({ "Day 1", "Day 2", "notes.txt", "T1.wav", "t2.wav", "T10.WAV" }));
    });
}

TEST_F(FilePanelTest, aStartFolderThatDoesNotExistGivesTheNearestAbove)
{
    pickFrom(path("gone/further"), [this](const PanelHands& panel) { EXPECT_EQ(panel.location(), start()); });
}

TEST_F(FilePanelTest, anEmptyStartFolderGivesTheHomeFolder)
{
    pickFrom({}, [](const PanelHands& panel) { EXPECT_EQ(panel.location(), QDir::homePath()); });
}

TEST_F(FilePanelTest, twoFilesAndAFolderAreThreePathsInTheOrderOfTheRows)
{
    const QList<QString> picked = pick([](const PanelHands& panel) {
        panel.click("T10.WAV");
        panel.click("T1.wav", Qt::ControlModifier);
        panel.click("Day 2", Qt::ControlModifier);
        EXPECT_EQ(panel.status(), "3 items selected");
        panel.press("pickButton");
    });
    EXPECT_EQ(picked, QList<QString>({ path("Day 2"), path("T1.wav"), path("T10.WAV") }));
}

TEST_F(FilePanelTest, shiftSelectsARange)
{
    const QList<QString> picked = pick([](const PanelHands& panel) {
        panel.click("Day 2");
        panel.click("T1.wav", Qt::ShiftModifier);
        panel.press("pickButton");
    });
    EXPECT_EQ(picked, QList<QString>({ path("Day 2"), path("notes.txt"), path("T1.wav") }));
}

TEST_F(FilePanelTest, ctrlTakesAnEntryOutAgain)
{
    const QList<QString> picked = pick([](const PanelHands& panel) {
        panel.click("T1.wav");
        panel.click("t2.wav", Qt::ControlModifier);
        panel.click("T1.wav", Qt::ControlModifier);
        panel.press("pickButton");
    });
    EXPECT_EQ(picked, QList<QString>({ path("t2.wav") }));
}

TEST_F(FilePanelTest, cancelGivesAnEmptyList)
{
    const QList<QString> picked = pick([](const PanelHands& panel) {
        panel.click("T1.wav");
        panel.press("cancelButton");
        EXPECT_FALSE(panel.dialog->isVisible());
    });
    EXPECT_TRUE(picked.isEmpty());
}

TEST_F(FilePanelTest, escapeGivesAnEmptyList)
{
    const QList<QString> picked = pick([](const PanelHands& panel) {
        panel.click("T1.wav");
        panel.key(Qt::Key_Escape);
        EXPECT_FALSE(panel.dialog->isVisible());
    });
    EXPECT_TRUE(picked.isEmpty());
}

TEST_F(FilePanelTest, addIsOffWhileNothingIsSelected)
{
    pick([](const PanelHands& panel) {
        EXPECT_FALSE(panel.widget<QPushButton>("pickButton")->isEnabled());
        EXPECT_EQ(panel.status(), "Nothing selected");
        panel.key(Qt::Key_Return, Qt::ControlModifier);
        EXPECT_TRUE(panel.dialog->isVisible());
        panel.click("T1.wav");
        EXPECT_TRUE(panel.widget<QPushButton>("pickButton")->isEnabled());
        EXPECT_EQ(panel.status(), "1 item selected");
        panel.doubleClick("Day 1");
        EXPECT_FALSE(panel.widget<QPushButton>("pickButton")->isEnabled());
    });
}

TEST_F(FilePanelTest, aDoubleClickGoesIntoAFolder)
{
    const QList<QString> picked = pick([this](const PanelHands& panel) {
        panel.doubleClick("Day 2");
        EXPECT_EQ(panel.location(), path("Day 2"));
        EXPECT_EQ(panel.names(), QStringList({ "inner", "deep.wav" }));
        panel.click("deep.wav");
        panel.press("pickButton");
    });
    EXPECT_EQ(picked, QList<QString>({ path("Day 2/deep.wav") }));
}

TEST_F(FilePanelTest, aDoubleClickAddsAFile)
{
    const QList<QString> picked = pick([](const PanelHands& panel) { panel.doubleClick("t2.wav"); });
    EXPECT_EQ(picked, QList<QString>({ path("t2.wav") }));
}

TEST_F(FilePanelTest, theFolderAboveShowsTheFolderLeftAsSelected)
{
    const QList<QString> picked = pick([this](const PanelHands& panel) {
        panel.doubleClick("Day 2");
        panel.press("upButton");
        EXPECT_EQ(panel.location(), start());
        panel.press("pickButton");
    });
    EXPECT_EQ(picked, QList<QString>({ path("Day 2") }));
}

TEST_F(FilePanelTest, theRootHasNothingAbove)
{
    pickFrom("/", [](const PanelHands& panel) {
        EXPECT_FALSE(panel.widget<QToolButton>("upButton")->isEnabled());
        panel.key(Qt::Key_Backspace);
        EXPECT_EQ(panel.location(), "/");
    });
}

TEST_F(FilePanelTest, theKeyboardAloneSelectsAndAdds)
{
    const QList<QString> picked = pick([this](const PanelHands& panel) {
        EXPECT_EQ(panel.dialog->focusWidget(), panel.view());
        panel.key(Qt::Key_Down); // To "Day 1", which has the keyboard but is not selected.
        panel.key(Qt::Key_Down);
        panel.key(Qt::Key_Return);
        EXPECT_EQ(panel.location(), path("Day 2"));
        panel.key(Qt::Key_Backspace);
        EXPECT_EQ(panel.location(), start());
        panel.key(Qt::Key_Down, Qt::ShiftModifier);
        panel.key(Qt::Key_Down, Qt::ShiftModifier);
        panel.key(Qt::Key_Return);
    });
    EXPECT_EQ(picked, QList<QString>({ path("Day 2"), path("notes.txt"), path("T1.wav") }));
}

TEST_F(FilePanelTest, theFirstDownSelectsTheFirstEntryOfEachFolder)
{
    const QList<QString> picked = pick([this](const PanelHands& panel) {
        panel.type(path("Day 2"));
        EXPECT_EQ(panel.dialog->focusWidget(), panel.view());
        panel.type(start());
        panel.key(Qt::Key_Down);
        panel.key(Qt::Key_Return, Qt::ControlModifier);
    });
    EXPECT_EQ(picked, QList<QString>({ path("Day 1") }));
}

TEST_F(FilePanelTest, theFirstDownInThePlacesGoesToTheFirst)
{
    pick([](const PanelHands& panel) {
        auto* places = panel.widget<QListWidget>("placesList");
        places->setFocus(Qt::TabFocusReason);
        panel.key(Qt::Key_Down);
        EXPECT_TRUE(places->item(0)->isSelected());
    });
}

TEST_F(FilePanelTest, ctrlReturnAddsTheSelectedFolderItself)
{
    const QList<QString> picked = pick([](const PanelHands& panel) {
        panel.click("Day 1");
        panel.key(Qt::Key_Return, Qt::ControlModifier);
    });
    EXPECT_EQ(picked, QList<QString>({ path("Day 1") }));
}

TEST_F(FilePanelTest, returnAddsASelectedFile)
{
    const QList<QString> picked = pick([](const PanelHands& panel) {
        panel.click("T1.wav");
        panel.key(Qt::Key_Return);
    });
    EXPECT_EQ(picked, QList<QString>({ path("T1.wav") }));
}

TEST_F(FilePanelTest, returnWithNothingSelectedDoesNothing)
{
    pick([](const PanelHands& panel) {
        panel.key(Qt::Key_Return);
        EXPECT_TRUE(panel.dialog->isVisible());
    });
}

TEST_F(FilePanelTest, ctrlASelectsAll)
{
    const QList<QString> picked = pick([](const PanelHands& panel) {
        panel.key(Qt::Key_A, Qt::ControlModifier);
        panel.press("pickButton");
    });
    EXPECT_EQ(picked.size(), 6);
}

TEST_F(FilePanelTest, letterKeysFindANameByItsBeginning)
{
    const QList<QString> picked = pick([](const PanelHands& panel) {
        QTest::keyClicks(panel.view(), "t10");
        panel.key(Qt::Key_Return);
    });
    EXPECT_EQ(picked, QList<QString>({ path("T10.WAV") }));
}

TEST_F(FilePanelTest, aTypedFolderIsShown)
{
    pick([this](const PanelHands& panel) {
        panel.type(path("Day 2"));
        EXPECT_EQ(panel.location(), path("Day 2"));
        EXPECT_EQ(panel.dialog->focusWidget(), panel.view());
        panel.type("inner");
        EXPECT_EQ(panel.location(), path("Day 2/inner"));
        panel.type("~");
        EXPECT_EQ(panel.location(), QDir::homePath());
    });
}

TEST_F(FilePanelTest, aTypedFileIsSelectedInItsFolder)
{
    const QList<QString> picked = pick([this](const PanelHands& panel) {
        panel.type(path("Day 2/deep.wav"));
        EXPECT_EQ(panel.location(), path("Day 2"));
        panel.press("pickButton");
    });
    EXPECT_EQ(picked, QList<QString>({ path("Day 2/deep.wav") }));
}

TEST_F(FilePanelTest, aTypedPathThatDoesNotExistIsToldAndChangesNothing)
{
    pick([](const PanelHands& panel) {
        panel.type("gone");
        EXPECT_EQ(panel.status(), "There is no such file or folder");
        EXPECT_EQ(panel.names().size(), 6);
        EXPECT_TRUE(panel.dialog->isVisible());
    });
}

TEST_F(FilePanelTest, aClickOnAPlaceGoesThere)
{
    pick([](const PanelHands& panel) {
        auto* places = panel.widget<QListWidget>("placesList");
        const QList<QListWidgetItem*> computer = places->findItems("Computer", Qt::MatchExactly);
        ASSERT_EQ(computer.size(), 1);
        QTest::mouseClick(places->viewport(), Qt::LeftButton, {}, places->visualItemRect(computer[0]).center());
        EXPECT_EQ(panel.location(), "/");
    });
}

TEST_F(FilePanelTest, aPlacesToolTipShowsItsPathAsItIs)
{
    const QByteArray home = qgetenv("HOME");
    const std::pair<const char*, const char*> tips[]
        = { { "Tom & Jerry", "/Tom & Jerry" }, { "<b>fat", "/&lt;b&gt;fat</p>" }, { "a&lt;b", "/a&amp;lt;b</p>" } };
    for (const auto& [name, tip] : tips) {
        std::filesystem::create_directory(folder.file(name));
        qputenv("HOME", QByteArray::fromStdString(folder.file(name)));
        pick([tip = tip](const PanelHands& panel) {
            const QString shown = panel.widget<QListWidget>("placesList")->item(0)->toolTip();
            EXPECT_TRUE(shown.endsWith(QLatin1String(tip))) << shown.toStdString();
        });
    }
    qputenv("HOME", home);
}

TEST_F(FilePanelTest, returnOnAPlaceGoesThere)
{
    pick([](const PanelHands& panel) {
        auto* places = panel.widget<QListWidget>("placesList");
        places->setFocus();
        places->setCurrentRow(0);
        panel.key(Qt::Key_Return);
        EXPECT_EQ(panel.location(), QDir::homePath());
    });
}

TEST_F(FilePanelTest, aLinkToAFileGivesTheFile)
{
    std::filesystem::create_symlink(folder.file("Day 2/deep.wav"), folder.file("link.wav"));
    const QList<QString> picked = pick([](const PanelHands& panel) {
        panel.click("link.wav");
        panel.press("pickButton");
    });
    EXPECT_EQ(picked, QList<QString>({ path("Day 2/deep.wav") }));
}

TEST_F(FilePanelTest, aLinkToAFolderGivesTheFolderAndIsLeftBehindWhenEntered)
{
    std::filesystem::create_directory_symlink(folder.file("Day 2/inner"), folder.file("alias"));
    const QList<QString> picked = pick([](const PanelHands& panel) {
        panel.click("alias");
        panel.press("pickButton");
    });
    EXPECT_EQ(picked, QList<QString>({ path("Day 2/inner") }));
    pick([this](const PanelHands& panel) {
        panel.doubleClick("alias");
        EXPECT_EQ(panel.location(), path("Day 2/inner"));
    });
}

TEST_F(FilePanelTest, whatLeadsNowhereOrVanishedIsLeftOut)
{
    const std::string broken = folder.file("broken.wav");
    std::filesystem::create_symlink(folder.file("nowhere.wav"), broken);
    const QList<QString> picked = pick([this](const PanelHands& panel) {
        panel.key(Qt::Key_A, Qt::ControlModifier);
        std::filesystem::remove(folder.file("T1.wav"));
        panel.press("pickButton");
    });
    EXPECT_EQ(
        picked, QList<QString>({ path("Day 1"), path("Day 2"), path("notes.txt"), path("t2.wav"), path("T10.WAV") }));
}

TEST_F(FilePanelTest, namesOfAllKindsComeBackAsTheyAre)
{
    const QList<QString> odd
        = { path(" blank .wav"), path("line\nfeed.wav"), path("quote\"'.wav"), path("\xC3\xA4\xE6\x97\xA5<b>.wav") };
    for (const QString& each : odd)
        writeBytes(each.toStdString(), "x");
    const QList<QString> picked = pick([](const PanelHands& panel) {
        panel.key(Qt::Key_A, Qt::ControlModifier);
        panel.press("pickButton");
    });
    for (const QString& each : odd)
        EXPECT_TRUE(picked.contains(each)) << each.toStdString();
}

TEST_F(FilePanelTest, aSelectionSurvivesSorting)
{
    writeBytes(folder.file("t2.wav"), std::string(500, 'x'));
    const QList<QString> picked = pick([](const PanelHands& panel) {
        panel.click("t2.wav");
        QHeaderView* header = panel.view()->header();
        const QPoint size(header->sectionViewportPosition(1) + header->sectionSize(1) / 2, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, size);
        EXPECT_EQ(panel.names().last(), "t2.wav");
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, size);
        EXPECT_EQ(panel.names().indexOf("t2.wav"), 2) << "the two folders stay in front";
        panel.press("pickButton");
    });
    EXPECT_EQ(picked, QList<QString>({ path("t2.wav") }));
}

TEST_F(FilePanelTest, f5ShowsWhatIsNew)
{
    pick([this](const PanelHands& panel) {
        writeBytes(folder.file("new.wav"), "x");
        panel.key(Qt::Key_F5);
        EXPECT_TRUE(panel.names().contains("new.wav"));
    });
}

TEST_F(FilePanelTest, aFolderThatVanishedIsTold)
{
    pick([this](const PanelHands& panel) {
        std::filesystem::remove(folder.file("Day 1"));
        panel.doubleClick("Day 1");
        EXPECT_TRUE(panel.dialog->isVisible());
        EXPECT_EQ(panel.location(), start());
        EXPECT_EQ(panel.status(), "This folder can't be opened");
    });
}

TEST_F(FilePanelTest, ctrlLReachesThePath)
{
    pick([](const PanelHands& panel) {
        panel.key(Qt::Key_L, Qt::ControlModifier);
        EXPECT_EQ(panel.dialog->focusWidget(), panel.widget<QLineEdit>("locationEdit"));
    });
}

TEST_F(FilePanelTest, everyControlHasAnAccessibleName)
{
    pick([](const PanelHands& panel) {
        EXPECT_EQ(panel.view()->accessibleName(), "Files and folders");
        EXPECT_EQ(panel.widget<QListWidget>("placesList")->accessibleName(), "Places");
        EXPECT_EQ(panel.widget<QToolButton>("upButton")->accessibleName(), "Go to the folder above");
        bool labelled = false;
        for (const auto* label : panel.dialog->findChildren<QLabel*>())
            labelled = labelled || label->buddy() == panel.widget<QLineEdit>("locationEdit");
        EXPECT_TRUE(labelled);
    });
}

TEST_F(FilePanelTest, opensWithoutWaitingAsEveryDialogDoes)
{
    FilePanel panel(nullptr, start(), "Add WAV Files or Folders");
    panel.open();
    EXPECT_TRUE(panel.isVisible());
    EXPECT_TRUE(panel.isModal());
}

TEST_F(FilePanelTest, thePanelIsDarkWithoutParent)
{
    pick([](const PanelHands& panel) {
        const QImage picture = panel.dialog->grab().toImage();
        EXPECT_EQ(picture.pixelColor(2, 2).name(), "#1e1e1e");
    });
}

TEST_F(FilePanelTest, thePanelBelongsToTheParentsWindow)
{
    QWidget window;
    auto* inner = new QWidget(&window);
    pickFrom(
        start(), [&window](const PanelHands& panel) { EXPECT_EQ(panel.dialog->parentWidget(), &window); }, inner);
}

TEST_F(FilePanelTest, theSubtitleIsDroppedSilently)
{
    QWidget window;
    setMacWindowSubtitle(&window, "By somebody");
    setMacWindowSubtitle(nullptr, "By somebody");
    setMacWindowSubtitle(&window, nullptr);
    EXPECT_TRUE(window.windowTitle().isEmpty());
}

// The order of names.

TEST(NaturalOrder, runsOfDigitsCountByTheirNumber)
{
    EXPECT_TRUE(naturallyBefore("T2", "T10"));
    EXPECT_TRUE(naturallyBefore("T2 a", "T10"));
    EXPECT_TRUE(naturallyBefore("1-2-3", "1-10-3"));
    EXPECT_TRUE(naturallyBefore("9", "99999999999999999999999999999999"));
    EXPECT_FALSE(naturallyBefore("T10", "T2"));
}

TEST(NaturalOrder, caseMattersOnlyBetweenOtherwiseEqualTexts)
{
    EXPECT_TRUE(naturallyBefore("a", "B"));
    EXPECT_TRUE(naturallyBefore("A", "b"));
    EXPECT_TRUE(naturallyBefore("A", "a"));
    EXPECT_FALSE(naturallyBefore("a", "A"));
}

TEST(NaturalOrder, differentTextsAreNeverEqualAndEqualOnesNeverBefore)
{
    const QStringList texts = { "", "0", "00", "007", "7", "a", "A", "a0", "a00", "ab", "T01", "T1" };
    for (const QString& first : texts) {
        for (const QString& second : texts)
            EXPECT_EQ(naturallyBefore(first, second) || naturallyBefore(second, first), first != second);
    }
}

TEST(NaturalOrder, aBeginningStandsBeforeTheWhole)
{
    EXPECT_TRUE(naturallyBefore("take", "take 1"));
    EXPECT_TRUE(naturallyBefore("", "a"));
}
