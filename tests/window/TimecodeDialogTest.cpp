#include "core/BwfMetadataReader.h"
#include "tests/support/ChangedRanges.h"
#include "tests/support/Recording.h"
#include "tests/support/TempFolder.h"
#include "tests/window/ModalHands.h"
#include "tests/window/WindowHands.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QLabel>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

namespace {

/// The dialog for the start timecode as a user has it before him.
class EntryHands {
public:
    explicit EntryHands(QDialog* shown) : dialog(shown), edit(shown->findChild<QLineEdit*>("timecodeEdit"))
    {
        EXPECT_EQ(shown->objectName(), "timecodeDialog");
        EXPECT_TRUE(QTest::qWaitForWindowActive(shown));
    }

    void keys(const QString& text) const { QTest::keyClicks(edit, text); }
    void key(Qt::Key pressed, Qt::KeyboardModifiers modifiers = {}) const { QTest::keyClick(edit, pressed, modifiers); }
    void press(const char* button) const { QTest::mouseClick(dialog->findChild<QPushButton*>(button), Qt::LeftButton); }
    void enter(const QString& text) const
    {
        keys(text);
        press("okButton");
    }

    QDialog* dialog;
    QLineEdit* edit;
};

class TimecodeDialogTest : public testing::Test {
protected:
    TimecodeDialogTest() { setenv("HOME", home.path().c_str(), 1); }

    void have(const Recording& fields = Recording::usual())
    {
        const std::string name = "take" + std::to_string(paths.size() + 1) + ".wav";
        fields.file().write(folder.file(name));
        paths.append(QString::fromStdString(folder.file(name)));
        takes.push_back(fields);
    }

    WindowHands& hands()
    {
        if (!open)
            open = std::make_unique<WindowHands>(paths);
        return *open;
    }

    /// Clicks the timecode button, lets `steps` act in the dialog, and gives the boxes that came up.
    QList<SeenBox> clickButton(const std::function<void(const EntryHands&)>& steps)
    {
        const ModalHands modal([&steps](QDialog* dialog) { steps(EntryHands(dialog)); });
        hands().click("timecodeButton");
        dialogs = modal.dialogs;
        return modal.boxes;
    }

    /// As above, with one file that is selected; no box may come up.
    void edit(const std::function<void(const EntryHands&)>& steps)
    {
        EXPECT_TRUE(clickButton(steps).isEmpty());
        EXPECT_EQ(dialogs, 1);
    }

    QString button() { return hands().widget<QPushButton>("timecodeButton")->text(); }

    void save()
    {
        const ModalHands modal;
        hands().click("saveButton");
        EXPECT_EQ(modal.boxes.size(), 1);
    }

    uint64_t inFile(int row) const { return BwfMetadataReader::readMetadata(paths[row].toStdString()).timeReference; }

    TempFolder home;
    TempFolder folder;
    QStringList paths;
    std::vector<Recording> takes;
    std::unique_ptr<WindowHands> open;
    int dialogs = 0;
};

/// A window with one recording, which is selected.
class OneTakeTimecode : public TimecodeDialogTest {
protected:
    OneTakeTimecode()
    {
        Recording fields = Recording::usual();
        fields.trackNames.clear(); // A refill of the track table counts as a touch.
        have(fields);
        hands().select({ 0 });
    }
};

Recording withoutRate()
{
    Recording fields = Recording::usual();
    fields.frameRate.clear();
    return fields;
}

} // namespace

// Who gets the dialog.

TEST_F(TimecodeDialogTest, withNoFileSelectedABoxAsksForOne)
{
    have();
    const QList<SeenBox> boxes = clickButton({});
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_EQ(boxes[0].icon, QMessageBox::Information);
    EXPECT_EQ(boxes[0].title, "Set New TC Start");
    EXPECT_EQ(boxes[0].text, "Please select a file first.");
    EXPECT_EQ(boxes[0].buttons, QStringList({ "OK" }));
    EXPECT_EQ(dialogs, 0);
}

TEST_F(TimecodeDialogTest, withTwoFilesSelectedABoxAsksForExactlyOne)
{
    have();
    have();
    hands().select({ 0, 1 });
    const QList<SeenBox> boxes = clickButton({});
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_EQ(boxes[0].icon, QMessageBox::Information);
    EXPECT_EQ(boxes[0].title, "Set New TC Start");
    EXPECT_EQ(boxes[0].text, "Please select exactly one file to edit timecode.");
    EXPECT_EQ(dialogs, 0);
}

// The dialog.

TEST_F(OneTakeTimecode, theDialogIsOfFixedSizeAndAsksForEightDigits)
{
    edit([](const EntryHands& entry) {
        EXPECT_EQ(entry.dialog->windowTitle(), "Set New TC Start");
        EXPECT_EQ(entry.dialog->size(), QSize(280, 120));
        EXPECT_EQ(entry.dialog->minimumSize(), entry.dialog->maximumSize());
        const auto* label = entry.dialog->findChild<QLabel*>();
        ASSERT_TRUE(label);
        EXPECT_EQ(label->text(), "Enter timecode (HHMMSSFF):");
        EXPECT_EQ(label->buddy(), entry.edit);
        EXPECT_EQ(entry.edit->placeholderText(), "00:00:00:00");
        EXPECT_EQ(entry.edit->maxLength(), 11);
        EXPECT_EQ(entry.dialog->findChild<QPushButton*>("okButton")->text(), "OK");
        EXPECT_EQ(entry.dialog->findChild<QPushButton*>("cancelButton")->text(), "Cancel");
        EXPECT_LT(entry.dialog->findChild<QPushButton*>("okButton")->x(),
            entry.dialog->findChild<QPushButton*>("cancelButton")->x());
    });
}

TEST_F(OneTakeTimecode, theTimeOfTheFileIsOfferedAndSelected)
{
    edit([](const EntryHands& entry) {
        EXPECT_EQ(entry.edit->text(), "01:00:00:00");
        EXPECT_EQ(entry.edit->selectedText(), "01:00:00:00");
        EXPECT_EQ(entry.dialog->focusWidget(), entry.edit);
    });
}

TEST_F(TimecodeDialogTest, withoutATimeTheEditIsEmpty)
{
    Recording fields = Recording::usual();
    fields.timeReference = 0;
    have(fields);
    hands().select({ 0 });
    EXPECT_EQ(button(), "—");
    edit([](const EntryHands& entry) { EXPECT_EQ(entry.edit->text(), ""); });
}

TEST_F(OneTakeTimecode, digitsGetTheirColonsAsTheyAreTypedWithTheCursorAtTheEnd)
{
    edit([](const EntryHands& entry) {
        const QStringList steps = { "0", "01", "01:0", "01:02", "01:02:0", "01:02:03", "01:02:03:0", "01:02:03:04" };
        for (qsizetype i = 0; i < steps.size(); ++i) {
            entry.keys(QString("01020304").mid(i, 1));
            EXPECT_EQ(entry.edit->text(), steps[i]);
            EXPECT_EQ(entry.edit->cursorPosition(), steps[i].size());
        }
    });
}

TEST_F(OneTakeTimecode, aDigitDeletedInTheMiddleReflowsTheRestAndTheCursorStaysBehindItsDigit)
{
    edit([](const EntryHands& entry) {
        entry.keys("12345678");
        entry.edit->setCursorPosition(4);
        entry.key(Qt::Key_Backspace); // Takes the 3 out.
        EXPECT_EQ(entry.edit->text(), "12:45:67:8");
        EXPECT_EQ(entry.edit->cursorPosition(), 3);
        entry.edit->setCursorPosition(7);
        entry.key(Qt::Key_Backspace); // Takes the 6 out.
        EXPECT_EQ(entry.edit->text(), "12:45:78");
        EXPECT_EQ(entry.edit->cursorPosition(), 6);
    });
}

TEST_F(OneTakeTimecode, aLetterAndANinthDigitAreRemovedAtOnce)
{
    edit([](const EntryHands& entry) {
        entry.keys("12x");
        EXPECT_EQ(entry.edit->text(), "12");
        entry.keys("3456789");
        EXPECT_EQ(entry.edit->text(), "12:34:56:78");
    });
}

TEST_F(OneTakeTimecode, aColonTakenOutComesBack)
{
    edit([](const EntryHands& entry) {
        entry.keys("12345678");
        entry.edit->setCursorPosition(3);
        entry.key(Qt::Key_Backspace);
        EXPECT_EQ(entry.edit->text(), "12:34:56:78");
    });
}

TEST_F(OneTakeTimecode, aPastedTextIsCutToElevenCharactersBeforeItIsFiltered)
{
    edit([](const EntryHands& entry) {
        QApplication::clipboard()->setText("TC 01-02-03-04-05");
        entry.key(Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(entry.edit->text(), "01:02:03"); // Out of "TC 01-02-03".
    });
}

TEST_F(OneTakeTimecode, anOfferedTextIsNotFormattedUntilItIsTouched)
{
    // At 120 frames a second the frames can have three digits; the last one is over the length.
    Recording fields = Recording::usual();
    fields.frameRate = "120/1";
    fields.timeReference = 172800000 + 48000 / 120 * 105;
    fields.file().write(folder.file("fast.wav"));
    hands().window.openFiles({ QString::fromStdString(folder.file("fast.wav")) });
    hands().select({ 1 });
    EXPECT_EQ(button(), "01:00:00:105");
    edit([](const EntryHands& entry) { EXPECT_EQ(entry.edit->text(), "01:00:00:10"); });
}

// What becomes of the entry.

TEST_F(OneTakeTimecode, aCompleteTimeShowsOnTheButtonAndWaitsForTheSave)
{
    const FileProof proof(paths[0].toStdString());
    save(); // The first selection filled the editors, which turned saving on.
    EXPECT_FALSE(hands().enabled("saveButton"));
    const QString samples = hands().widget<QLabel>("samplesSinceMidnightLabel")->text();
    edit([](const EntryHands& entry) { entry.enter("02000000"); });
    EXPECT_EQ(button(), "02:00:00:00");
    EXPECT_TRUE(hands().enabled("saveButton"));
    EXPECT_EQ(hands().widget<QLabel>("samplesSinceMidnightLabel")->text(), samples);
    EXPECT_EQ(hands().cell(0, 7), "01:00:00:00");
    EXPECT_EQ(proof.untouched(), "");
}

TEST_F(OneTakeTimecode, theSaveWritesTheEightBytesOfTheTimeAndNothingElse)
{
    const FileProof proof(paths[0].toStdString());
    edit([](const EntryHands& entry) { entry.enter("01000012"); });
    save();
    EXPECT_EQ(inFile(0), 172823040u);
    EXPECT_EQ(proof.patchedExactly({ { takes[0].timeReferenceRange().begin, le64(172823040) } }), "");
    EXPECT_EQ(proof.changedWithin({ takes[0].timeReferenceRange() }), "");
    EXPECT_EQ(hands().cell(0, 7), "01:00:00:12");
    EXPECT_EQ(button(), "01:00:00:12");
    EXPECT_EQ(hands().widget<QLabel>("samplesSinceMidnightLabel")->text(), "172823040");
}

TEST_F(OneTakeTimecode, afterTheSaveNothingIsPending)
{
    edit([](const EntryHands& entry) { entry.enter("02000000"); });
    save();
    EXPECT_EQ(inFile(0), 345600000u);
    takes[0].file().write(paths[0].toStdString()); // Back to the old time.
    const FileProof proof(paths[0].toStdString());
    hands().type("sceneEdit", "12A");
    save();
    EXPECT_EQ(proof.untouched(), "");
}

TEST_F(OneTakeTimecode, returnInTheEditMeansOk)
{
    edit([](const EntryHands& entry) {
        entry.keys("02000000");
        entry.key(Qt::Key_Return);
        EXPECT_FALSE(entry.dialog->isVisible());
    });
    EXPECT_EQ(button(), "02:00:00:00");
}

TEST_F(OneTakeTimecode, cancelLeavesButtonAndFileAsTheyWere)
{
    save();
    const FileProof proof(paths[0].toStdString());
    edit([](const EntryHands& entry) {
        entry.keys("02000000");
        entry.press("cancelButton");
        EXPECT_FALSE(entry.dialog->isVisible());
    });
    EXPECT_EQ(button(), "01:00:00:00");
    EXPECT_FALSE(hands().enabled("saveButton"));
    hands().type("sceneEdit", "12A");
    save();
    EXPECT_EQ(proof.untouched(), "");
}

TEST_F(OneTakeTimecode, aShortEntryGivesTheWarningAndChangesNothing)
{
    const QList<SeenBox> boxes = clickButton([](const EntryHands& entry) { entry.enter("1234"); });
    ASSERT_EQ(boxes.size(), 1);
    EXPECT_EQ(boxes[0].icon, QMessageBox::Warning);
    EXPECT_EQ(boxes[0].title, "Invalid Timecode");
    EXPECT_EQ(boxes[0].text, "Please enter a complete timecode (HH:MM:SS:FF).");
    EXPECT_EQ(boxes[0].buttons, QStringList({ "OK" }));
    EXPECT_EQ(dialogs, 1) << "the dialog doesn't come back";
    EXPECT_EQ(button(), "01:00:00:00");
}

TEST_F(OneTakeTimecode, anEmptyEntryChangesNothingWithoutAWord)
{
    edit([](const EntryHands& entry) {
        entry.key(Qt::Key_Delete);
        entry.press("okButton");
    });
    EXPECT_EQ(button(), "01:00:00:00");
}

TEST_F(OneTakeTimecode, cancelAndADroppedEntryLeaveAnEarlierEntryStanding)
{
    edit([](const EntryHands& entry) { entry.enter("01000012"); });
    edit([](const EntryHands& entry) {
        entry.keys("02000000");
        entry.press("cancelButton");
    });
    EXPECT_EQ(button(), "01:00:00:12");
    edit([](const EntryHands& entry) { entry.enter("24000000"); });
    EXPECT_EQ(button(), "01:00:00:12");
    save();
    EXPECT_EQ(inFile(0), 172823040u);
}

TEST_F(OneTakeTimecode, aCompleteEntryOutOfRangeAndMidnightAreDroppedWithoutAWord)
{
    save();
    for (const char* typed : { "24000000", "25000000", "00600000", "00006000", "00000000" }) {
        edit([typed](const EntryHands& entry) { entry.enter(typed); });
        EXPECT_EQ(button(), "01:00:00:00") << typed;
        EXPECT_FALSE(hands().enabled("saveButton")) << typed;
    }
}

TEST_F(OneTakeTimecode, moreFramesThanASecondHasAreTaken)
{
    edit([](const EntryHands& entry) { entry.enter("00000099"); });
    EXPECT_EQ(button(), "00:00:00:99");
    save();
    EXPECT_EQ(inFile(0), 190080u); // 3.96 seconds.
    EXPECT_EQ(button(), "00:00:03:24");
}

TEST_F(TimecodeDialogTest, anotherSelectionDropsTheTimeThatWasNotSaved)
{
    have();
    have();
    hands().select({ 0 });
    const FileProof proof(paths[0].toStdString());
    edit([](const EntryHands& entry) { entry.enter("02000000"); });
    hands().select({ 1 });
    hands().select({ 0 });
    EXPECT_EQ(button(), "01:00:00:00");
    save();
    EXPECT_EQ(proof.untouched(), "");
}

TEST_F(TimecodeDialogTest, withoutAFrameRateTheTimeIsWorkedOutAtTwentyFour)
{
    have(withoutRate());
    hands().select({ 0 });
    EXPECT_EQ(hands().widget<QLabel>("frameRateLabel")->text(), "—");
    EXPECT_EQ(button(), "—");
    edit([](const EntryHands& entry) {
        EXPECT_EQ(entry.edit->text(), "");
        entry.enter("00000112");
    });
    EXPECT_EQ(button(), "00:00:01:12");
    save();
    EXPECT_EQ(inFile(0), 72000u);
    EXPECT_EQ(button(), "—");
}

TEST_F(TimecodeDialogTest, theRateOfTheTimestampComesBeforeThatOfTheAudio)
{
    Recording fields = Recording::usual();
    fields.frameRate = "24000/1001"; // With 48000 Hz of audio the time counts in 48048.
    have(fields);
    hands().select({ 0 });
    edit([](const EntryHands& entry) { entry.enter("00000100"); });
    save();
    EXPECT_EQ(inFile(0), 48048u);
}

TEST_F(TimecodeDialogTest, withoutAnyRateEveryTimeIsDroppedWithoutAWord)
{
    writeBytes(folder.file("take1.wav"), "this is no recording");
    paths.append(QString::fromStdString(folder.file("take1.wav")));
    hands().select({ 0 });
    edit([](const EntryHands& entry) { entry.enter("01000000"); });
    EXPECT_EQ(button(), "—");
}
