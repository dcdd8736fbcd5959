#include "app/files/NativeFilePanel.h"
#include "tests/window/WindowFixture.h"

#include <QAbstractItemView>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPointer>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <filesystem>

namespace {

/// What the open panel was asked and what it answers.
struct Panel {
    QList<QString> picked;
    QString startDirectory;
    QString title;
    QWidget* parent = nullptr;
    int calls = 0;
} panel;

constexpr int kManyFiles = 5000;

} // namespace

// The user's choice comes from the test; both functions of the panel's source are replaced.
QList<QString> macPickFilesOrFolders(QWidget* parent, const QString& startDirectory, const QString& title)
{
    panel.parent = parent;
    panel.startDirectory = startDirectory;
    panel.title = title;
    ++panel.calls;
    return panel.picked;
}

void setMacWindowSubtitle(QWidget*, const char*) { }

namespace {

class FilesInAndOut : public WindowFixture {
protected:
    FilesInAndOut() { panel = {}; }

    QString touch(const std::string& name)
    {
        std::filesystem::create_directories(std::filesystem::path(folder.file(name)).parent_path());
        writeBytes(folder.file(name), "");
        return path(name);
    }

    std::vector<std::string> names() const { return column(FileColumn::FileName); }

    static QMimeData* mimeOf(const QList<QString>& paths)
    {
        auto* data = new QMimeData;
        QList<QUrl> urls;
        for (const QString& each : paths)
            urls.append(QUrl::fromLocalFile(each));
        data->setUrls(urls);
        return data;
    }

    static bool enter(QWidget* under, const QMimeData* data)
    {
        QDragEnterEvent event(QPoint(5, 5), Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(under, &event);
        return event.isAccepted();
    }

    /// Drags the data over the window and away again; true if it may be dropped there.
    bool drag(const QMimeData* data) const
    {
        const bool accepted = enter(window.get(), data);
        QDragLeaveEvent leave;
        QApplication::sendEvent(window.get(), &leave);
        return accepted;
    }

    bool drag(const QList<QString>& paths) const
    {
        const std::unique_ptr<QMimeData> data(mimeOf(paths));
        return drag(data.get());
    }

    void drop(const QList<QString>& paths) const
    {
        const std::unique_ptr<QMimeData> data(mimeOf(paths));
        ASSERT_TRUE(enter(window.get(), data.get()));
        QDropEvent event(QPointF(100, 100), Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window.get(), &event);
    }

    /// Drags a file over a child of the window, as file managers hand it over, and drops it there.
    static void dropOn(QWidget* under, const QString& file)
    {
        const std::unique_ptr<QMimeData> data(mimeOf({ file }));
        data->setText(file);
        EXPECT_TRUE(enter(under, data.get()));
        QDropEvent event(QPointF(5, 5), Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(under, &event);
    }

    std::string remembered() const
    {
        return ConfigManager::getInstance().getString("metadataManager.lastDir", "(none)");
    }

    std::string settingsFile() const { return readBytes(ConfigManager::getInstance().getConfigPath()); }
};

TEST_F(FilesInAndOut, walkFindsWavFilesAtAnyDepthAndInAnyCase)
{
    touch("a.wav");
    touch("B.WAV");
    touch("one/two/three/c.Wav");
    touch("notes.txt");
    touch("wav");
    touch("d.wav.txt");
    EXPECT_EQ(window->collectWavFilesInDirectory(path("")),
        (QList<QString>{ path("a.wav"), path("B.WAV"), path("one/two/three/c.Wav") }));
}

TEST_F(FilesInAndOut, walkSkipsHiddenFilesAndFolders)
{
    touch(".hidden.wav");
    touch(".wav");
    touch(".secret/a.wav");
    touch("open/b.wav");
    EXPECT_EQ(window->collectWavFilesInDirectory(path("")), (QList<QString>{ path("open/b.wav") }));
}

TEST_F(FilesInAndOut, walkDoesNotFollowLinksToFoldersButTakesLinksToFiles)
{
    touch("real/a.wav");
    std::filesystem::create_directory_symlink(folder.file("real"), folder.file("link"));
    std::filesystem::create_directory_symlink(folder.path(), folder.file("real/loop"));
    std::filesystem::create_directory_symlink(folder.file("real"), folder.file("folder.wav"));
    std::filesystem::create_symlink(folder.file("real/a.wav"), folder.file("b.wav"));
    std::filesystem::create_symlink(folder.file("nowhere.wav"), folder.file("broken.wav"));
    EXPECT_EQ(window->collectWavFilesInDirectory(path("")), (QList<QString>{ path("b.wav"), path("real/a.wav") }));
}

TEST_F(FilesInAndOut, walkGoesIntoAFolderNamedAsAWavFile)
{
    touch("day.wav/a.wav");
    EXPECT_EQ(window->collectWavFilesInDirectory(path("")), (QList<QString>{ path("day.wav/a.wav") }));
}

TEST_F(FilesInAndOut, walkSortsByPathAndNotByNameOrFolder)
{
    for (const char* name : { "b/a.wav", "b.wav", "B-1.wav", "a/z.wav", "A/b.wav", "c/x/1.wav", "c/x.wav", "c.wav" })
        touch(name);
    QStringList wanted;
    for (const char* name : { "b/a.wav", "b.wav", "B-1.wav", "a/z.wav", "A/b.wav", "c/x/1.wav", "c/x.wav", "c.wav" })
        wanted.append(path(name));
    wanted.sort(Qt::CaseInsensitive);
    EXPECT_EQ(window->collectWavFilesInDirectory(path("")), wanted);
}

TEST_F(FilesInAndOut, walkInterleavesFoldersThatDifferInCaseOnly)
{
    for (const char* name : { "day/1.wav", "Day/2.wav", "day/3.wav", "DAY/4.wav" })
        touch(name);
    EXPECT_EQ(window->collectWavFilesInDirectory(path("")),
        (QList<QString>{ path("day/1.wav"), path("Day/2.wav"), path("day/3.wav"), path("DAY/4.wav") }));
}

TEST_F(FilesInAndOut, namesOfAllKindsAreFound)
{
    const QList<QString> files{ touch("with blanks.wav"), touch("quote\"'s.wav"), touch("line\nfeed.wav"),
        touch("\u00dcbung \u65e5\u672c \U0001F399.WAV"), touch("percent%20.wav"), touch("back\\slash.wav") };
    drop({ path("") });
    ASSERT_EQ(table()->rowCount(), files.size());
    const auto shown = names();
    for (const QString& file : files)
        EXPECT_EQ(std::count(shown.begin(), shown.end(), QFileInfo(file).fileName().toStdString()), 1)
            << file.toStdString();
}

TEST_F(FilesInAndOut, namesThatAreNoUtf8ArePassedOver)
{
    touch("a.wav");
    writeBytes(folder.file("b\xff.wav"), "");
    EXPECT_EQ(window->collectWavFilesInDirectory(path("")), (QList<QString>{ path("a.wav") }));
}

TEST_F(FilesInAndOut, walkOfWhatIsNoFolderFindsNothing)
{
    EXPECT_TRUE(window->collectWavFilesInDirectory(path("missing")).isEmpty());
    EXPECT_TRUE(window->collectWavFilesInDirectory(touch("a.wav")).isEmpty());
    EXPECT_TRUE(window->collectWavFilesInDirectory({}).isEmpty()) << "neither the root nor the current folder";
}

TEST_F(FilesInAndOut, folderReachedByALinkIsWalkedIfItIsGivenItself)
{
    touch("real/a.wav");
    std::filesystem::create_directory_symlink(folder.file("real"), folder.file("link"));
    EXPECT_EQ(window->collectWavFilesFromPaths({ path("link") }), (QList<QString>{ path("link/a.wav") }));
}

TEST_F(FilesInAndOut, hiddenFileIsTakenIfItIsGivenItself)
{
    EXPECT_EQ(window->collectWavFilesFromPaths({ touch(".a.wav") }), (QList<QString>{ path(".a.wav") }));
}

TEST_F(FilesInAndOut, aPathIsCollectedOnceInOrderOfFirstAppearance)
{
    touch("day/b.wav");
    touch("day/a.wav");
    touch("z.wav");
    EXPECT_EQ(window->collectWavFilesFromPaths(
                  { path("z.wav"), path("day/b.wav"), path("day"), path("z.wav"), path("missing.wav") }),
        (QList<QString>{ path("z.wav"), path("day/b.wav"), path("day/a.wav") }));
}

TEST_F(FilesInAndOut, filesOfOtherKindsAreNotCollected)
{
    EXPECT_TRUE(window->collectWavFilesFromPaths({ touch("a.pdf"), touch("b"), touch("c.wave"), QString() }).isEmpty());
}

TEST_F(FilesInAndOut, sameFolderTwiceGivesNoNewRowsAndNoMessage)
{
    touch("day/a.wav");
    touch("day/b.wav");
    panel.picked = { path("day") };
    press("addButton");
    press("addButton");
    EXPECT_EQ(names(), (std::vector<std::string>{ "a.wav", "b.wav" }));
    EXPECT_EQ(panel.calls, 2);
}

TEST_F(FilesInAndOut, dragWithOneWavAmongOthersIsAcceptedAndOnlyTheWavIsAdded)
{
    const QList<QString> files{ touch("a.pdf"), touch("b.Wav") };
    EXPECT_TRUE(drag(files));
    drop(files);
    EXPECT_EQ(names(), (std::vector<std::string>{ "b.Wav" }));
}

TEST_F(FilesInAndOut, dragOfAPdfAloneIsNotAccepted)
{
    EXPECT_FALSE(drag(QList<QString>{ touch("a.pdf") }));
}

TEST_F(FilesInAndOut, dragOfAFolderIsAccepted)
{
    touch("day/a.txt");
    EXPECT_TRUE(drag(QList<QString>{ path("day") }));
}

TEST_F(FilesInAndOut, dragDoesNotAskWhetherAWavExists)
{
    EXPECT_TRUE(drag(QList<QString>{ path("missing.wav") }));
}

TEST_F(FilesInAndOut, dragWithoutUrlsIsNotAccepted)
{
    QMimeData data;
    data.setText(path("a.wav"));
    EXPECT_FALSE(drag(&data));
}

TEST_F(FilesInAndOut, dragOfARemoteWavIsNotAccepted)
{
    QMimeData data;
    data.setUrls({ QUrl("https://example.com/a.wav") });
    EXPECT_FALSE(drag(&data));
}

TEST_F(FilesInAndOut, dragOverTheFileTableReachesTheWindow)
{
    window->show();
    const std::unique_ptr<QMimeData> data(mimeOf({ touch("a.wav") }));
    EXPECT_TRUE(enter(table()->viewport(), data.get()));
    QDropEvent event(QPointF(5, 5), Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(table()->viewport(), &event);
    EXPECT_EQ(names(), (std::vector<std::string>{ "a.wav" }));
}

TEST_F(FilesInAndOut, dragOfFilesOverTheEditorsReachesTheWindow)
{
    window->show();
    QStringList files;
    for (const char* editor : { "sceneEdit", "takeEdit", "projectEdit", "tapeIdEdit" }) {
        files.append(touch(std::string(editor) + ".wav"));
        dropOn(widget<QWidget>(editor), files.last());
        EXPECT_EQ(text(editor), "");
    }
    files.append(touch("notesEdit.wav"));
    dropOn(widget<QTextEdit>("notesEdit")->viewport(), files.last());
    EXPECT_EQ(widget<QTextEdit>("notesEdit")->toPlainText(), QString());
    EXPECT_EQ(table()->rowCount(), files.size());
}

TEST_F(FilesInAndOut, dragOfTextStaysWithTheEditors)
{
    window->show();
    QMimeData data;
    data.setText(QStringLiteral("plane"));
    EXPECT_TRUE(enter(widget<QWidget>("sceneEdit"), &data));
    EXPECT_TRUE(enter(widget<QTextEdit>("notesEdit")->viewport(), &data));
}

TEST_F(FilesInAndOut, dropRemembersTheFolderOfTheFirstWav)
{
    touch("day/one/a.wav");
    touch("day/two/b.wav");
    drop({ path("day") });
    EXPECT_EQ(remembered(), path("day/one").toStdString());
}

TEST_F(FilesInAndOut, dropOfNothingUsableIsSilentAndRemembersNothing)
{
    touch("day/a.txt");
    drop({ path("day"), path("missing.wav") });
    EXPECT_EQ(table()->rowCount(), 0);
    EXPECT_EQ(remembered(), "");
}

TEST_F(FilesInAndOut, dropOfThousandsAddsThemAllInPathOrder)
{
    QStringList wanted;
    for (int i = 0; i < kManyFiles; ++i)
        wanted.append(touch("roll" + std::to_string(i % 7) + "/t" + std::to_string(i) + ".wav"));
    wanted.sort(Qt::CaseInsensitive);
    drop({ path("") });
    ASSERT_EQ(table()->rowCount(), kManyFiles);
    const auto shown = names();
    for (int row = 0; row < kManyFiles; ++row)
        ASSERT_EQ(shown[static_cast<size_t>(row)], QFileInfo(wanted.at(row)).fileName().toStdString());
}

TEST_F(FilesInAndOut, panelIsAskedWithTheRememberedFolder)
{
    touch("day/a.wav");
    window->rememberDirectory(path("day"));
    window->openFileDialog();
    EXPECT_EQ(panel.calls, 1);
    EXPECT_EQ(panel.startDirectory, path("day"));
    EXPECT_EQ(panel.title, QStringLiteral("Add WAV Files or Folders"));
    EXPECT_EQ(panel.parent, window.get());
}

TEST_F(FilesInAndOut, cancelledPanelChangesNothing)
{
    press("addButton");
    EXPECT_EQ(table()->rowCount(), 0);
    EXPECT_EQ(remembered(), "");
}

TEST_F(FilesInAndOut, pickedFolderWithoutWavIsRememberedAndTold)
{
    touch("day/a.txt");
    panel.picked = { path("day") };
    QString title;
    QString message;
    QMessageBox::StandardButtons buttons;
    QTimer::singleShot(0, window.get(), [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_TRUE(box);
        title = box->windowTitle();
        message = box->text();
        buttons = box->standardButtons();
        box->accept();
    });
    press("addButton");
    EXPECT_EQ(title, QStringLiteral("Add"));
    EXPECT_EQ(message, QStringLiteral("No WAV files were found in the selection."));
    EXPECT_EQ(buttons, QMessageBox::Ok);
    EXPECT_EQ(remembered(), path("day").toStdString());
}

TEST_F(FilesInAndOut, pickedFolderIsRememberedItselfAndNotThatOfTheFilesInIt)
{
    touch("day/roll/a.wav");
    panel.picked = { path("day") };
    press("addButton");
    EXPECT_EQ(table()->rowCount(), 1);
    EXPECT_EQ(remembered(), folder.file("day"));
}

TEST_F(FilesInAndOut, pickedFileRemembersItsFolder)
{
    panel.picked = { touch("day/a.wav"), touch("other/b.wav") };
    press("addButton");
    EXPECT_EQ(remembered(), path("day").toStdString());
    EXPECT_EQ(names(), (std::vector<std::string>{ "a.wav", "b.wav" }));
}

TEST_F(FilesInAndOut, rememberingWritesTheSettingsFileAtOnce)
{
    window->rememberDirectory(path("day"));
    EXPECT_NE(settingsFile().find("metadataManager.lastDir=" + folder.file("day") + "\n"), std::string::npos);
}

TEST_F(FilesInAndOut, emptyFolderIsNotRemembered)
{
    window->rememberDirectory(path("day"));
    window->rememberDirectory({});
    EXPECT_EQ(remembered(), folder.file("day"));
}

TEST_F(FilesInAndOut, openingNothingRemembersNothing)
{
    window->openFiles({});
    EXPECT_EQ(remembered(), "");
}

TEST_F(FilesInAndOut, openedFilesRememberTheFolderOfTheFirst)
{
    window->openFiles({ touch("one/a.wav"), touch("two/b.wav") });
    EXPECT_EQ(remembered(), folder.file("one"));
}

TEST_F(FilesInAndOut, openedFolderIsRememberedItself)
{
    touch("day/a.wav");
    // A folder has no size to read; it is remembered before that is found out.
    EXPECT_THROW(window->openFiles({ path("day") }), std::filesystem::filesystem_error);
    EXPECT_EQ(remembered(), folder.file("day"));
    EXPECT_EQ(table()->rowCount(), 0);
}

TEST_F(FilesInAndOut, panelStartsInTheFolderOfThisRunWhateverTheSettingsSay)
{
    touch("one/a.wav");
    touch("two/a.wav");
    window->rememberDirectory(path("one"));
    ConfigManager::getInstance().setString("metadataManager.lastDir", folder.file("two"));
    EXPECT_EQ(window->startingDirectory(), path("one"));
}

TEST_F(FilesInAndOut, panelStartsNowhereIfNothingIsRemembered)
{
    EXPECT_TRUE(window->startingDirectory().isEmpty());
}

TEST_F(FilesInAndOut, panelStartsInTheFolderOfTheSettings)
{
    touch("day/a.wav");
    ConfigManager::getInstance().setString("metadataManager.lastDir", folder.file("day"));
    EXPECT_EQ(window->startingDirectory(), path("day"));
}

TEST_F(FilesInAndOut, panelStartsInTheLastRecordingsFolderOtherwise)
{
    touch("roll/a.wav");
    ConfigManager::getInstance().setString("lastRecording.folderPath", folder.file("roll"));
    EXPECT_EQ(window->startingDirectory(), path("roll"));
    ConfigManager::getInstance().setString("metadataManager.lastDir", folder.path().string());
    EXPECT_EQ(window->startingDirectory(), QString::fromStdString(folder.path().string()));
}

TEST_F(FilesInAndOut, panelStartsAtTheNearestParentThatExists)
{
    window->rememberDirectory(path("disk"));
    EXPECT_EQ(window->startingDirectory(), QString::fromStdString(folder.path().string()));
    window->rememberDirectory(path("disk/day 1/roll 2"));
    EXPECT_EQ(window->startingDirectory(), QString::fromStdString(folder.path().string()));
}

class Removing : public FilesInAndOut {
protected:
    Removing()
    {
        for (int i = 0; i < 5; ++i) {
            const std::string number = std::to_string(i);
            add("t" + number + ".wav", { .scene = number, .take = number });
        }
    }
};

TEST_F(Removing, leavesTheOthersInStep)
{
    select({ 1, 3 });
    press("removeFileButton");
    EXPECT_EQ(names(), (std::vector<std::string>{ "t0.wav", "t2.wav", "t4.wav" }));
    for (int row = 0; row < 3; ++row) {
        select({ row });
        EXPECT_EQ(text("currentFileLabel"), cell(row, FileColumn::FileName));
        EXPECT_EQ(text("sceneEdit"), cell(row, FileColumn::Scene));
    }
}

TEST_F(Removing, letsTheFilesBeAddedAgainAtTheEnd)
{
    select({ 1 });
    press("removeFileButton");
    window->addFiles({ path("t1.wav"), path("t2.wav") });
    EXPECT_EQ(names(), (std::vector<std::string>{ "t0.wav", "t2.wav", "t3.wav", "t4.wav", "t1.wav" }));
}

TEST_F(Removing, clearsThePanesAndOffersNothing)
{
    select({ 1 });
    press("removeFileButton");
    EXPECT_EQ(text("currentFileLabel"), kMark);
    EXPECT_EQ(text("sceneEdit"), "");
    EXPECT_FALSE(enabled("saveButton"));
    EXPECT_FALSE(enabled("removeFileButton"));
    EXPECT_TRUE(enabled("soundReportButton"));
    EXPECT_TRUE(table()->selectedItems().isEmpty());
}

TEST_F(Removing, ofSeveralLeavesTheTakeEditable)
{
    select({ 1, 2, 3 });
    ASSERT_FALSE(widget<QLineEdit>("takeEdit")->isEnabled());
    press("removeFileButton");
    EXPECT_TRUE(widget<QLineEdit>("takeEdit")->isEnabled());
}

TEST_F(Removing, ofAllDisablesTheReport)
{
    table()->selectAll();
    press("removeFileButton");
    EXPECT_EQ(table()->rowCount(), 0);
    EXPECT_FALSE(enabled("soundReportButton"));
}

TEST_F(Removing, dropsUnsavedEditsWithoutAQuestion)
{
    // Nothing in the editors changes when this file is selected, so saving is offered only for older edits.
    writeBytes(folder.file("empty.wav"), "");
    window->addFiles({ path("empty.wav") });
    select({ 5 });
    EXPECT_FALSE(enabled("saveButton"));
    select({ 0 });
    widget<QLineEdit>("sceneEdit")->setText("edited");
    EXPECT_TRUE(enabled("saveButton"));
    press("removeFileButton");
    select({ 4 });
    EXPECT_EQ(text("currentFileLabel"), "empty.wav");
    EXPECT_FALSE(enabled("saveButton"));
}

TEST_F(Removing, leavesTheFilesOnDiskAsTheyAre)
{
    const std::string before = readBytes(folder.file("t1.wav"));
    select({ 1 });
    press("removeFileButton");
    EXPECT_EQ(readBytes(folder.file("t1.wav")), before);
}

TEST_F(Removing, movesTheCurrentRowToTheNearestAbove)
{
    table()->setCurrentCell(3, 2);
    select({ 2, 3 });
    press("removeFileButton");
    EXPECT_EQ(table()->currentRow(), 1);
}

TEST_F(Removing, doesNothingWithoutASelection)
{
    widget<QLineEdit>("sceneEdit")->setText("edited");
    QMetaObject::invokeMethod(window.get(), "onRemoveFile");
    EXPECT_EQ(table()->rowCount(), 5);
}

TEST_F(Removing, ofScatteredRowsKeepsOrderButtonsAndCurrentRow)
{
    constexpr int kRows = 90;
    QList<QString> more;
    for (int i = 5; i < kRows; ++i)
        more.append(touch("t" + std::to_string(i) + ".wav"));
    window->addFiles(more);
    std::vector<int> even;
    std::vector<std::string> wanted;
    QList<QWidget*> buttons;
    for (int row = 0; row < kRows; ++row) {
        if (row % 2 == 0) {
            even.push_back(row);
            continue;
        }
        wanted.push_back("t" + std::to_string(row) + ".wav");
        buttons.append(table()->cellWidget(row, 0));
    }
    table()->setCurrentCell(40, 3);
    select(even);
    press("removeFileButton");

    EXPECT_EQ(names(), wanted);
    EXPECT_EQ(table()->currentRow(), 19); // Row 39 of before, the nearest that stayed above.
    EXPECT_TRUE(table()->selectedItems().isEmpty());
    for (int row = 0; row < table()->rowCount(); ++row) {
        ASSERT_EQ(table()->cellWidget(row, 0), buttons.at(row)) << row;
        ASSERT_EQ(cell(row, FileColumn::Play), "");
    }
    select({ 1 });
    EXPECT_EQ(text("currentFileLabel"), "t3.wav");
    EXPECT_EQ(text("sceneEdit"), "3");
}

TEST_F(Removing, clearEmptiesListAndPanesWithoutAQuestion)
{
    select({ 0 });
    press("clearButton");
    EXPECT_EQ(table()->rowCount(), 0);
    EXPECT_EQ(text("currentFileLabel"), kMark);
    EXPECT_FALSE(enabled("soundReportButton"));
    EXPECT_FALSE(enabled("saveButton"));
    EXPECT_FALSE(enabled("removeFileButton"));
    window->addFiles({ path("t0.wav") });
    EXPECT_EQ(names(), (std::vector<std::string>{ "t0.wav" }));
}

TEST_F(Removing, clearDropsUnsavedEditsWithoutAQuestion)
{
    select({ 0 });
    widget<QLineEdit>("sceneEdit")->setText("edited");
    press("clearButton");
    window->addFiles({ touch("empty.wav") });
    select({ 0 });
    EXPECT_EQ(text("currentFileLabel"), "empty.wav");
    EXPECT_FALSE(enabled("saveButton"));
}

TEST_F(Removing, clearOfASelectionOfSeveralLeavesTheTakeDisabled)
{
    select({ 0, 1 });
    press("clearButton");
    EXPECT_FALSE(widget<QLineEdit>("takeEdit")->isEnabled());
}

} // namespace
