#include "core/BwfMetadataReader.h"
#include "tests/support/ChangedRanges.h"
#include "tests/support/Recording.h"
#include "tests/support/TempFolder.h"
#include "tests/window/ModalHands.h"
#include "tests/window/WindowHands.h"

#include <QCheckBox>

#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <vector>

namespace {

/// What anybody but root is: somebody for whom a read-only file is one.
class PlainUser {
public:
    PlainUser()
    {
        if (geteuid() == 0)
            changed = seteuid(kNobody) == 0;
    }
    ~PlainUser() { EXPECT_TRUE(!changed || seteuid(0) == 0); }
    PlainUser(const PlainUser&) = delete;
    PlainUser& operator=(const PlainUser&) = delete;

private:
    static constexpr uid_t kNobody = 65534;
    bool changed = false;
};

const Recording kUsual = Recording::usual();

class SavingTest : public testing::Test {
protected:
    SavingTest() { setenv("HOME", home.path().c_str(), 1); }

    /// Adds a recording to those that the window opens at the first look at it.
    void have(const Recording& fields = Recording::usual())
    {
        const std::string name = "take" + std::to_string(paths.size() + 1) + ".wav";
        fields.file().write(folder.file(name));
        paths.append(QString::fromStdString(folder.file(name)));
        takes.push_back(fields);
    }

    WindowHands& hands()
    {
        if (!open) {
            for (const QString& path : paths)
                proofs.emplace_back(path.toStdString());
            open = std::make_unique<WindowHands>(paths);
        }
        return *open;
    }

    /// Presses the save button, and OK in all boxes that follow.
    QList<SeenBox> save()
    {
        const ModalHands modal;
        hands().click("saveButton");
        EXPECT_EQ(modal.dialogs, 0);
        return modal.boxes;
    }

    /// Saves and expects nothing but the closing box with its count.
    void saveAll(int count)
    {
        const QList<SeenBox> boxes = save();
        ASSERT_EQ(boxes.size(), 1);
        expectSuccess(boxes[0], count);
    }

    static void expectSuccess(const SeenBox& box, int count)
    {
        EXPECT_EQ(box.icon, QMessageBox::Information);
        EXPECT_EQ(box.title, "Success");
        EXPECT_EQ(box.text, QString("Metadata saved to %1 file(s)").arg(count));
        EXPECT_EQ(box.buttons, QStringList({ "OK" }));
    }

    static void expectFailure(const SeenBox& box, const QString& path)
    {
        EXPECT_EQ(box.icon, QMessageBox::Warning);
        EXPECT_EQ(box.title, "Error");
        EXPECT_EQ(box.text, "Failed to save metadata to:\n" + path);
        EXPECT_EQ(box.buttons, QStringList({ "OK" }));
    }

    BwfMetadata inFile(int row) const { return BwfMetadataReader::readMetadata(paths[row].toStdString()); }
    const FileProof& proof(int row) const { return proofs[static_cast<size_t>(row)]; }
    std::string untouched(int row) const { return proof(row).untouched(); }

    TempFolder home;
    TempFolder folder;
    QStringList paths;
    std::vector<Recording> takes;
    std::vector<FileProof> proofs;
    std::unique_ptr<WindowHands> open;
};

Recording withScene(const std::string& scene)
{
    Recording fields = Recording::usual();
    fields.scene = scene;
    return fields;
}

} // namespace

// Several files.

TEST_F(SavingTest, aFieldThatShowsTheMarkIsKeptInEachFile)
{
    have(withScene("12A"));
    have(withScene("13"));
    hands().select({ 0, 1 });
    EXPECT_EQ(hands().text("sceneEdit"), "—");
    hands().type("projectEdit", "Omega");
    saveAll(2);
    EXPECT_EQ(inFile(0).scene, "12A");
    EXPECT_EQ(inFile(1).scene, "13");
    for (int row : { 0, 1 }) {
        const Recording& take = takes[static_cast<size_t>(row)];
        EXPECT_EQ(inFile(row).project, "Omega");
        // "Alpha" and "Omega" share their last letter only.
        ByteRange project = take.elementRange("PROJECT", "Alpha");
        --project.end;
        EXPECT_EQ(proof(row).changedWithin({ take.descriptionRange(), project }), "");
    }
}

TEST_F(SavingTest, aMixOfCircledFilesIsUncircledWhateverElseIsSaved)
{
    Recording circled = Recording::usual();
    circled.circled = "TRUE";
    have(circled);
    have();
    hands().select({ 0, 1 });
    EXPECT_FALSE(hands().widget<QCheckBox>("circledCheck")->isChecked());
    hands().type("notesEdit", "brief"); // As long as the old note: "FALSE" for "TRUE" does not fit.
    saveAll(2);
    EXPECT_TRUE(inFile(0).circled);
    EXPECT_EQ(inFile(0).note, "first") << "the text of one file is written as a whole or not at all";
    EXPECT_EQ(inFile(1).note, "brief");

    hands().type("notesEdit", "once"); // Shorter by what "FALSE" takes more.
    saveAll(2);
    EXPECT_FALSE(inFile(0).circled);
    EXPECT_FALSE(inFile(1).circled);
    EXPECT_EQ(inFile(0).note, "once");
    EXPECT_EQ(inFile(1).note, "once");
    EXPECT_EQ(hands().cell(0, 10), "No");
}

TEST_F(SavingTest, aMixOfWildTracksLosesTheFlagEvenIfOnlyTheSceneChanges)
{
    Recording wild = Recording::usual();
    wild.wildTrack = "TRUE";
    have(wild);
    have();
    hands().select({ 0, 1 });
    hands().type("sceneEdit", "12B");
    saveAll(2);
    for (int row : { 0, 1 }) {
        EXPECT_FALSE(inFile(row).wildTrack);
        EXPECT_EQ(inFile(row).scene, "12B");
    }
}

TEST_F(SavingTest, aCheckedFlagGoesToAll)
{
    have();
    have();
    hands().select({ 0, 1 });
    QTest::mouseClick(hands().widget<QCheckBox>("circledCheck"), Qt::LeftButton, {}, QPoint(8, 8));
    ASSERT_TRUE(hands().widget<QCheckBox>("circledCheck")->isChecked());
    saveAll(2);
    for (int row : { 0, 1 }) {
        EXPECT_TRUE(inFile(row).circled);
        EXPECT_EQ(hands().cell(row, 10), "Yes");
        EXPECT_EQ(proof(row).unchangedOutside({ kUsual.ixmlRange() }), "");
    }
}

TEST_F(SavingTest, anEmptiedFieldClearsNothingInSeveralFiles)
{
    have();
    have();
    hands().select({ 0, 1 });
    EXPECT_EQ(hands().text("sceneEdit"), "12A");
    hands().type("sceneEdit", "");
    saveAll(2);
    for (int row : { 0, 1 })
        EXPECT_EQ(untouched(row), "");
    EXPECT_EQ(hands().text("sceneEdit"), "12A");
}

TEST_F(SavingTest, theTakeOfSeveralFilesIsNeverWritten)
{
    have();
    have();
    hands().select({ 0, 1 });
    hands().widget<QLineEdit>("takeEdit")->setText("99");
    saveAll(2);
    for (int row : { 0, 1 })
        EXPECT_EQ(untouched(row), "");
}

TEST_F(SavingTest, theMarkWithAnythingElseIsWrittenAsItStands)
{
    have(withScene("12AB"));
    have(withScene("13AB"));
    hands().select({ 0, 1 });
    hands().type("sceneEdit", "—1");
    saveAll(2);
    EXPECT_EQ(inFile(0).scene, "—1");
    EXPECT_EQ(inFile(1).scene, "—1");
}

TEST_F(SavingTest, aMarkInAnyOfTheFourTextsKeepsWhatTheFilesHold)
{
    Recording first = Recording::usual();
    Recording second = Recording::usual();
    second.scene = "12B";
    second.project = "Gamma";
    second.tape = "R02";
    second.note = "other";
    have(first);
    have(second);
    hands().select({ 0, 1 });
    hands().widget<QLineEdit>("takeEdit")->setText("5"); // Touches the editors and is not written.
    saveAll(2);
    for (int row : { 0, 1 })
        EXPECT_EQ(untouched(row), "");
}

TEST_F(SavingTest, valuesThatAllFilesShareAreWrittenBackUnchanged)
{
    have();
    have();
    hands().select({ 0, 1 });
    saveAll(2);
    for (int row : { 0, 1 })
        EXPECT_EQ(untouched(row), "");
}

// One file.

TEST_F(SavingTest, aTypedTakeShowsInTheTableAndComesBackFromTheFile)
{
    have();
    have();
    hands().select({ 0 });
    hands().type("takeEdit", "07");
    saveAll(1);
    EXPECT_EQ(hands().cell(0, 6), "07");
    EXPECT_EQ(inFile(0).take, "07");
    EXPECT_EQ(untouched(1), "");
    hands().select({ 1 });
    EXPECT_EQ(hands().text("takeEdit"), "01");
    hands().select({ 0 });
    EXPECT_EQ(hands().text("takeEdit"), "07");
}

TEST_F(SavingTest, everyTextOfOneFileIsWritten)
{
    have();
    hands().select({ 0 });
    hands().type("sceneEdit", "12B");
    hands().type("takeEdit", "02");
    hands().type("projectEdit", "Gamma");
    hands().type("tapeIdEdit", "R02");
    hands().type("notesEdit", "other");
    saveAll(1);
    const BwfMetadata record = inFile(0);
    EXPECT_EQ(record.scene, "12B");
    EXPECT_EQ(record.take, "02");
    EXPECT_EQ(record.project, "Gamma");
    EXPECT_EQ(record.tape, "R02");
    EXPECT_EQ(record.note, "other");
    EXPECT_EQ(proof(0).changedWithin({ kUsual.descriptionRange(), kUsual.elementRange("PROJECT", "Alpha"),
                  kUsual.elementRange("SCENE", "12A"), kUsual.elementRange("TAKE", "01"),
                  kUsual.elementRange("TAPE", "R01"), kUsual.elementRange("NOTE", "first") }),
        "");
}

TEST_F(SavingTest, theRefreshedCellsFollowTheFile)
{
    have();
    hands().select({ 0 });
    hands().type("sceneEdit", "12B");
    hands().type("takeEdit", "02");
    hands().type("tapeIdEdit", "R02");
    hands().type("notesEdit", "other");
    saveAll(1);
    EXPECT_EQ(hands().cell(0, 4), "R02");
    EXPECT_EQ(hands().cell(0, 5), "12B");
    EXPECT_EQ(hands().cell(0, 6), "02");
    EXPECT_EQ(hands().cell(0, 13), "other");
}

TEST_F(SavingTest, theOtherCellsKeepTheirText)
{
    have();
    hands();
    QStringList before;
    for (int column : { 1, 2, 3, 8, 9, 11 }) {
        before += "old " + QString::number(column);
        hands().table()->item(0, column)->setText(before.last());
    }
    hands().select({ 0 });
    hands().type("sceneEdit", "12B");
    saveAll(1);
    QStringList after;
    for (int column : { 1, 2, 3, 8, 9, 11 })
        after += hands().cell(0, column);
    EXPECT_EQ(after, before);
}

TEST_F(SavingTest, aCellWithoutAnItemIsLeftOut)
{
    have();
    hands().select({ 0 });
    hands().type("sceneEdit", "12B");
    delete hands().table()->takeItem(0, 5);
    saveAll(1);
    EXPECT_EQ(hands().table()->item(0, 5), nullptr);
    EXPECT_EQ(inFile(0).scene, "12B");
}

TEST_F(SavingTest, theCellsOfTimeAndRateAreReadAgainToo)
{
    have();
    hands().select({ 0 });
    Recording moved = Recording::usual();
    moved.timeReference = 345600000;
    moved.frameRate = "24/1";
    moved.file().write(paths[0].toStdString());
    saveAll(1);
    EXPECT_EQ(hands().cell(0, 7), "02:00:00:00");
    EXPECT_EQ(hands().cell(0, 12), "24 fps");
}

TEST_F(SavingTest, anEmptiedFieldClearsNothingInOneFile)
{
    have();
    hands().select({ 0 });
    for (const char* edit : { "sceneEdit", "takeEdit", "projectEdit", "tapeIdEdit", "notesEdit" })
        hands().type(edit, "");
    saveAll(1);
    EXPECT_EQ(untouched(0), "");
    EXPECT_EQ(hands().text("sceneEdit"), "12A");
    EXPECT_EQ(hands().text("takeEdit"), "01");
}

TEST_F(SavingTest, theMarkTypedForOneFileGoesIntoTheFile)
{
    have();
    hands().select({ 0 });
    hands().type("sceneEdit", "—"); // Three bytes, as "12A" has.
    saveAll(1);
    EXPECT_EQ(inFile(0).scene, "—");
    EXPECT_EQ(proof(0).changedWithin({ kUsual.descriptionRange(), kUsual.elementRange("SCENE", "12A") }), "");
}

TEST_F(SavingTest, textGoesIntoTheFileAsUtf8)
{
    Recording fields = Recording::usual();
    fields.note = "123456";
    have(fields);
    hands().select({ 0 });
    hands().type("notesEdit", QString::fromUtf8("äöü"));
    saveAll(1);
    EXPECT_EQ(inFile(0).note, "\xC3\xA4\xC3\xB6\xC3\xBC");
    EXPECT_EQ(hands().widget<QTextEdit>("notesEdit")->toPlainText(), QString::fromUtf8("äöü"));
}

TEST_F(SavingTest, aTypedTrackNameGoesIntoTheTrackList)
{
    have();
    hands().select({ 0 });
    auto* tracks = hands().widget<QTableWidget>("trackTable");
    QTableWidgetItem* name = tracks->item(1, 2);
    tracks->scrollToItem(name);
    QTest::mouseClick(tracks->viewport(), Qt::LeftButton, {}, tracks->visualItemRect(name).center());
    QTest::mouseDClick(tracks->viewport(), Qt::LeftButton, {}, tracks->visualItemRect(name).center());
    auto* editor = tracks->viewport()->findChild<QLineEdit*>();
    ASSERT_TRUE(editor);
    editor->selectAll();
    QTest::keyClicks(editor, "Mic");
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents(); // The table takes the text in its own time.
    EXPECT_EQ(name->text(), "Mic");

    ASSERT_TRUE(hands().enabled("saveButton"));
    saveAll(1);
    ASSERT_EQ(inFile(0).tracks.size(), 2u);
    EXPECT_EQ(inFile(0).tracks[0].name, "Boom");
    EXPECT_EQ(inFile(0).tracks[1].name, "Mic");
    EXPECT_EQ(inFile(0).tracks[1].function, "dry");
    EXPECT_EQ(proof(0).changedExactly({ kUsual.elementRange("NAME", "Lav") }), "");
}

TEST_F(SavingTest, anEmptiedTrackNameAndFunctionAreWrittenEmpty)
{
    have();
    hands().select({ 0 });
    auto* tracks = hands().widget<QTableWidget>("trackTable");
    tracks->item(1, 2)->setText("");
    delete tracks->takeItem(1, 3);
    saveAll(1);
    ASSERT_EQ(inFile(0).tracks.size(), 2u);
    EXPECT_EQ(inFile(0).tracks[0].name, "Boom");
    EXPECT_EQ(inFile(0).tracks[1].name, "");
    EXPECT_EQ(inFile(0).tracks[1].function, "");
    EXPECT_EQ(proof(0).unchangedOutside({ kUsual.ixmlRange() }), "");
}

TEST_F(SavingTest, theChannelOfATrackIsReadFromItsCell)
{
    have();
    hands().select({ 0 });
    auto* tracks = hands().widget<QTableWidget>("trackTable");
    // The second row claims channel 1: its new name is written there.
    tracks->item(1, 1)->setText("1");
    tracks->item(1, 2)->setText("Mic!");
    saveAll(1);
    ASSERT_EQ(inFile(0).tracks.size(), 2u);
    EXPECT_EQ(inFile(0).tracks[0].name, "Mic!");
    EXPECT_EQ(inFile(0).tracks[1].name, "Lav");
}

TEST_F(SavingTest, aChannelCellWithoutItemCountsTheRowAndOneWithoutNumberIsZero)
{
    have();
    hands().select({ 0 });
    auto* tracks = hands().widget<QTableWidget>("trackTable");
    tracks->item(0, 1)->setText("one"); // Channel 0 is not in the file, so this name finds no place.
    tracks->item(0, 2)->setText("None");
    delete tracks->takeItem(1, 1);
    tracks->item(1, 2)->setText("Mic");
    saveAll(1);
    ASSERT_EQ(inFile(0).tracks.size(), 2u);
    EXPECT_EQ(inFile(0).tracks[0].name, "Boom");
    EXPECT_EQ(inFile(0).tracks[1].name, "Mic");
}

// Bytes that the editors can't show.

namespace {

/// A recorder that writes Latin-1, with an "e" acute at the end of all texts but the take.
Recording latin1()
{
    Recording fields = Recording::usual();
    fields.scene = "Caf\xE9";
    fields.tape = "Rol\xE9";
    fields.project = "Alph\xE9";
    fields.note = "bris\xE9";
    fields.trackNames = { "Boom\xE9", "Lav\xE9" };
    fields.function = "cl\xE9";
    return fields;
}

/// UTF-8 that a text edit gives back otherwise: a byte order mark, CR LF, a no-break space, a line separator.
Recording fineUtf8()
{
    const std::string mark = "\xEF\xBB\xBF";
    Recording fields = Recording::usual();
    fields.scene = mark + "12A";
    fields.tape = mark + "R01";
    fields.project = mark + "Alpha";
    fields.note = mark
        + "one\r\ntwo\rthree\xC2\xA0"
          "four\xE2\x80\xA8"
          "five\xE2\x80\xA9six";
    fields.trackNames = { mark + "Boom", "L\xC2\xA0v" };
    fields.function = mark + "dry";
    return fields;
}

} // namespace

TEST_F(SavingTest, textsThatNobodyTouchedKeepTheirBytesWhenTheTakeOfOneFileChanges)
{
    for (const Recording& fields : { latin1(), fineUtf8() })
        have(fields);
    for (const int row : { 0, 1 }) {
        hands().select({ row });
        hands().type("takeEdit", "07");
        saveAll(1);
        const Recording& take = takes[static_cast<size_t>(row)];
        EXPECT_EQ(inFile(row).take, "07");
        EXPECT_EQ(proof(row).changedWithin({ take.descriptionRange(), take.elementRange("TAKE", "01") }), "");
    }
}

TEST_F(SavingTest, aTakeThatNobodyTouchedKeepsItsBytesWhenTheSceneOfItsFileChanges)
{
    for (const char* bytes : { "prise \xE9", "\xEF\xBB\xBF 07" }) {
        Recording fields = Recording::usual();
        fields.take = bytes;
        have(fields);
    }
    for (const int row : { 0, 1 }) {
        hands().select({ row });
        hands().type("sceneEdit", "13B");
        saveAll(1);
        const Recording& take = takes[static_cast<size_t>(row)];
        EXPECT_EQ(inFile(row).scene, "13B");
        EXPECT_EQ(proof(row).changedWithin({ take.descriptionRange(), take.elementRange("SCENE", "12A") }), "");
    }
}

// The line edit shows and gives back 32767 characters.
TEST_F(SavingTest, aSceneLongerThanItsEditorTakesKeepsItsEnd)
{
    const Recording fields = withScene(std::string(40000, 's') + "end");
    have(fields);
    hands().select({ 0 });
    ASSERT_LT(hands().text("sceneEdit").size(), 40000);
    hands().type("takeEdit", "07");
    saveAll(1);
    EXPECT_EQ(proof(0).changedWithin({ fields.descriptionRange(), fields.elementRange("TAKE", "01") }), "");
}

TEST_F(SavingTest, textsThatNobodyTouchedAreNoChangeAtAll)
{
    for (const Recording& fields : { latin1(), fineUtf8() })
        have(fields);
    for (const int row : { 0, 1 }) {
        hands().select({ row });
        saveAll(1);
        EXPECT_EQ(untouched(row), "");
    }
}

TEST_F(SavingTest, textsThatNobodyTouchedKeepTheBytesThatAllFilesShare)
{
    for (const Recording& fields : { latin1(), latin1(), fineUtf8(), fineUtf8() })
        have(fields);
    for (const QList<int>& rows : { QList<int>{ 0, 1 }, QList<int>{ 2, 3 } }) {
        hands().select(rows);
        EXPECT_NE(hands().text("sceneEdit"), "—");
        QTest::mouseClick(hands().widget<QCheckBox>("circledCheck"), Qt::LeftButton, {}, QPoint(8, 8));
        saveAll(2);
        for (const int row : rows) {
            EXPECT_TRUE(inFile(row).circled);
            EXPECT_EQ(inFile(row).note, takes[static_cast<size_t>(row)].note);
            EXPECT_EQ(inFile(row).scene, takes[static_cast<size_t>(row)].scene);
            EXPECT_EQ(inFile(row).project, takes[static_cast<size_t>(row)].project);
            EXPECT_EQ(proof(row).unchangedOutside({ takes[static_cast<size_t>(row)].ixmlRange() }), "");
        }
    }
}

TEST_F(SavingTest, aTextThatIsTypedIntoSeveralFilesLeavesTheBytesOfTheOthers)
{
    have(latin1());
    have(latin1());
    hands().select({ 0, 1 });
    hands().type("projectEdit", "Omega");
    saveAll(2);
    for (const int row : { 0, 1 }) {
        EXPECT_EQ(inFile(row).project, "Omega");
        EXPECT_EQ(
            proof(row).changedWithin({ latin1().descriptionRange(), latin1().elementRange("PROJECT", "Alph\xE9") }),
            "");
    }
}

TEST_F(SavingTest, bytesThatOnlyLookAlikeAreKeptInEachFile)
{
    Recording other = latin1();
    other.scene = "Caf\xEA";
    have(latin1());
    have(other);
    hands().select({ 0, 1 });
    ASSERT_EQ(hands().text("sceneEdit"), QString::fromUtf8("Caf\xEF\xBF\xBD"));
    hands().type("notesEdit", "wind!");
    saveAll(2);
    EXPECT_EQ(inFile(0).scene, "Caf\xE9");
    EXPECT_EQ(inFile(1).scene, "Caf\xEA");
    EXPECT_EQ(inFile(0).note, "wind!");
    EXPECT_EQ(inFile(1).note, "wind!");
}

TEST_F(SavingTest, whatIsTypedAndTakenBackIsNoChange)
{
    have(latin1());
    have(fineUtf8());
    for (const int row : { 0, 1 }) {
        hands().select({ row });
        for (const char* name : { "sceneEdit", "projectEdit", "tapeIdEdit" }) {
            const QString before = hands().text(name);
            hands().type(name, "other");
            hands().type(name, before);
            EXPECT_EQ(hands().text(name), before);
        }
        auto* notes = hands().widget<QTextEdit>("notesEdit");
        notes->moveCursor(QTextCursor::End);
        QTest::keyClick(notes, Qt::Key_X);
        QTest::keyClick(notes, Qt::Key_Backspace);
        auto* tracks = hands().widget<QTableWidget>("trackTable");
        for (const int column : { 2, 3 }) {
            const QString before = tracks->item(0, column)->text();
            tracks->item(0, column)->setText("other");
            tracks->item(0, column)->setText(before);
        }
        saveAll(1);
        EXPECT_EQ(untouched(row), "");
    }
}

TEST_F(SavingTest, aTextThatIsTypedGoesInAsUtf8WhateverTheOldBytesWere)
{
    have(latin1());
    have(fineUtf8());
    hands().select({ 0 });
    hands().type("sceneEdit", QString::fromUtf8("Ca\xC3\xA9"));
    saveAll(1);
    EXPECT_EQ(inFile(0).scene, "Ca\xC3\xA9");
    EXPECT_EQ(proof(0).changedWithin({ latin1().descriptionRange(), latin1().elementRange("SCENE", "Caf\xE9") }), "");

    hands().select({ 1 });
    hands().type("notesEdit", QString::fromUtf8("ne\xC3\xBC"));
    auto* notes = hands().widget<QTextEdit>("notesEdit");
    QTest::keyClick(notes, Qt::Key_Return);
    QTest::keyClicks(notes, "zwei");
    saveAll(1);
    EXPECT_EQ(inFile(1).note, "ne\xC3\xBC\nzwei");
    EXPECT_EQ(inFile(1).scene, fineUtf8().scene);
}

// The text that the notes give back is the same with either blank.
TEST_F(SavingTest, aBlankTypedInPlaceOfANoBreakSpaceIsAChange)
{
    Recording fields = Recording::usual();
    fields.note = "a\xC2\xA0z";
    have(fields);
    hands().select({ 0 });
    auto* notes = hands().widget<QTextEdit>("notesEdit");
    notes->moveCursor(QTextCursor::End);
    notes->moveCursor(QTextCursor::PreviousCharacter);
    QTest::keyClick(notes, Qt::Key_Backspace);
    QTest::keyClick(notes, Qt::Key_Space);
    saveAll(1);
    EXPECT_EQ(inFile(0).note, "a z");
}

TEST_F(SavingTest, aRenamedTrackLeavesTheBytesOfItsFunctionAndOfTheOtherTracks)
{
    have(latin1());
    hands().select({ 0 });
    hands().widget<QTableWidget>("trackTable")->item(1, 2)->setText(QString::fromUtf8("L\xC3\xA9!"));
    saveAll(1);
    EXPECT_EQ(inFile(0).tracks[1].name, "L\xC3\xA9!");
    EXPECT_EQ(proof(0).changedWithin({ latin1().elementRange("NAME", "Lav\xE9") }), "");
}

// The state afterwards.

TEST_F(SavingTest, savingIsOffAfterwardsAndStaysOffForTheSameSelection)
{
    have();
    have();
    hands().select({ 0, 1 });
    hands().type("sceneEdit", "12B");
    EXPECT_TRUE(hands().enabled("saveButton"));
    saveAll(2);
    EXPECT_FALSE(hands().enabled("saveButton"));
    QMetaObject::invokeMethod(&hands().window, "onFileSelectionChanged");
    EXPECT_FALSE(hands().enabled("saveButton"));
}

TEST_F(SavingTest, aRefillThatChangesTheEditorsTurnsSavingOnAgain)
{
    have();
    hands().select({ 0 });
    hands().type("sceneEdit", ""); // Comes back from the file.
    saveAll(1);
    EXPECT_EQ(hands().text("sceneEdit"), "12A");
    EXPECT_TRUE(hands().enabled("saveButton"));
}

TEST_F(SavingTest, withNothingSelectedNothingHappens)
{
    have();
    hands();
    const ModalHands modal;
    QMetaObject::invokeMethod(&hands().window, "onSaveChanges");
    EXPECT_TRUE(modal.boxes.isEmpty());
    EXPECT_EQ(untouched(0), "");
}

// Files that can't be written.

TEST_F(SavingTest, aReadOnlyFileAmongThreeIsNamedOnceAndTheOthersAreWritten)
{
    for (int i = 0; i < 3; ++i)
        have();
    chmod(folder.path().c_str(), 0755);
    for (const QString& path : paths)
        chmod(path.toUtf8(), path == paths[1] ? 0444 : 0666);
    hands().select({ 0, 1, 2 });
    hands().type("sceneEdit", "12B");

    QList<SeenBox> boxes;
    {
        const PlainUser user;
        boxes = save();
    }
    ASSERT_EQ(boxes.size(), 2);
    expectFailure(boxes[0], paths[1]);
    expectSuccess(boxes[1], 3);
    EXPECT_EQ(inFile(0).scene, "12B");
    EXPECT_EQ(untouched(1), "");
    EXPECT_EQ(inFile(2).scene, "12B");
    EXPECT_EQ(hands().cell(1, 5), "12A");
    EXPECT_EQ(hands().text("sceneEdit"), "—");
}

TEST_F(SavingTest, theEditsOfAFailedFileVanishFromTheEditors)
{
    Recording fields = Recording::usual();
    fields.withBext = false; // A scene needs the chunk that isn't there.
    have(fields);
    hands().select({ 0 });
    hands().type("sceneEdit", "12B");
    const QList<SeenBox> boxes = save();
    ASSERT_EQ(boxes.size(), 2);
    expectFailure(boxes[0], paths[0]);
    expectSuccess(boxes[1], 1);
    EXPECT_EQ(untouched(0), "");
    EXPECT_EQ(hands().text("sceneEdit"), "12A");
}

TEST_F(SavingTest, aTextThatDoesNotFitIsGivenUpWithoutAWord)
{
    have();
    hands().select({ 0 });
    hands().type("sceneEdit", "12AB"); // Reaches the Description, but the longer iXML text has no room.
    saveAll(1);
    EXPECT_EQ(proof(0).changedWithin({ kUsual.descriptionRange() }), "");
    EXPECT_EQ(hands().text("sceneEdit"), "12A");
    EXPECT_EQ(hands().cell(0, 5), "12A");
}

TEST_F(SavingTest, whenAllFailEachHasItsWarningAndTheClosingBoxCountsThemAll)
{
    Recording fields = Recording::usual();
    fields.withBext = false;
    have(fields);
    have(fields);
    hands().select({ 0, 1 });
    hands().type("projectEdit", "Omega");
    const QList<SeenBox> boxes = save();
    ASSERT_EQ(boxes.size(), 3);
    expectFailure(boxes[0], paths[0]);
    expectFailure(boxes[1], paths[1]);
    expectSuccess(boxes[2], 2);
}

TEST_F(SavingTest, aBatchOfHundredsGoesOnPastFailuresInItsMiddle)
{
    constexpr int kFiles = 300;
    const auto fails = [](int row) { return row == 77 || row % 100 == 50; };
    QStringList failing;
    for (int row = 0; row < kFiles; ++row) {
        Recording fields = Recording::usual();
        fields.withBext = !fails(row);
        have(fields);
        if (fails(row))
            failing += paths.last();
    }
    hands().selectAll();
    hands().type("projectEdit", "Omega");

    QList<SeenBox> boxes = save();
    ASSERT_EQ(boxes.size(), failing.size() + 1);
    expectSuccess(boxes.takeLast(), kFiles);
    QStringList named;
    for (const SeenBox& box : boxes)
        named += box.text.section('\n', 1);
    std::ranges::sort(named); // The order of the files is nobody's business.
    std::ranges::sort(failing);
    EXPECT_EQ(named, failing);

    ByteRange project = kUsual.elementRange("PROJECT", "Alpha");
    --project.end;
    for (int row = 0; row < kFiles; ++row) {
        const std::string wrong
            = fails(row) ? untouched(row) : proof(row).changedWithin({ kUsual.descriptionRange(), project });
        EXPECT_EQ(wrong, "") << row;
    }
}
