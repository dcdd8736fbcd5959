#include "tests/window/ModalHands.h"
#include "tests/window/WindowFixture.h"

#include <QAccessible>
#include <QCheckBox>
#include <QClipboard>
#include <QFormLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QTest>
#include <QTextEdit>

namespace {

class PanesInWindow : public WindowFixture {
protected:
    std::string notes() const { return widget<QTextEdit>("notesEdit")->toPlainText().toStdString(); }
    bool checked(const char* box) const { return widget<QCheckBox>(box)->isChecked(); }

    static Recording full()
    {
        Recording recording;
        recording.scene = "12A";
        recording.take = "3";
        recording.project = "Harbour";
        recording.tape = "18Y12M31";
        recording.note = "plane";
        recording.frameRate = "25/1";
        recording.ubits = "00112233";
        recording.circled = "TRUE";
        recording.wildTrack = "TRUE";
        recording.timeReference = 172824000;
        recording.timestampRate = 48048;
        recording.trackNames = { "Boom", "Lav" };
        return recording;
    }

    static void expectNoFile(const std::vector<std::string>& texts)
    {
        for (const std::string& each : texts)
            EXPECT_EQ(each, kMark);
    }

    void expectEmptyPanes() const
    {
        expectNoFile({ text("currentFileLabel"), text("channelsLabel"), text("sampleRateLabel"),
            text("tcSampleRateLabel"), text("frameRateLabel"), text("timecodeButton"), text("lengthLabel"),
            text("samplesSinceMidnightLabel"), text("userBitsLabel"), text("bitDepthLabel") });
        for (const char* edit : { "sceneEdit", "takeEdit", "projectEdit", "tapeIdEdit" })
            EXPECT_EQ(text(edit), "") << edit;
        EXPECT_EQ(notes(), "");
        EXPECT_FALSE(checked("circledCheck"));
        EXPECT_FALSE(checked("wildTrackCheck"));
    }

    /// Label and control of each row of a form, in order.
    std::vector<std::pair<std::string, std::string>> rowsOf(const char* form) const
    {
        std::vector<std::pair<std::string, std::string>> rows;
        auto* layout = window->findChild<QFormLayout*>(QString::fromLatin1(form));
        for (int row = 0; row < layout->rowCount(); ++row) {
            auto* label = qobject_cast<QLabel*>(layout->itemAt(row, QFormLayout::LabelRole)->widget());
            const QWidget* field = layout->itemAt(row, QFormLayout::FieldRole)->widget();
            EXPECT_EQ(label->buddy(), field);
            rows.emplace_back(label->text().toStdString(), field->objectName().toStdString());
        }
        return rows;
    }
};

TEST_F(PanesInWindow, generalPaneHasItsRows)
{
    EXPECT_EQ(widget<QGroupBox>("generalGroup")->title(), QStringLiteral("GENERAL"));
    const std::vector<std::pair<std::string, std::string>> wanted{ { "Current File:", "currentFileLabel" },
        { "Channels:", "channelsLabel" }, { "Scene:", "sceneEdit" }, { "Take:", "takeEdit" },
        { "Circled:", "circledCheck" }, { "Wild Track:", "wildTrackCheck" }, { "Project:", "projectEdit" },
        { "Tape ID:", "tapeIdEdit" }, { "Notes:", "notesEdit" } };
    EXPECT_EQ(rowsOf("generalForm"), wanted);
    EXPECT_EQ(widget<QTextEdit>("notesEdit")->maximumHeight(), 100);
}

TEST_F(PanesInWindow, recordingPaneHasItsRows)
{
    EXPECT_EQ(widget<QGroupBox>("recordingGroup")->title(), QStringLiteral("RECORDING INFO"));
    const std::vector<std::pair<std::string, std::string>> wanted{ { "Sample Rate:", "sampleRateLabel" },
        { "TC Sample Rate:", "tcSampleRateLabel" }, { "Frame Rate:", "frameRateLabel" },
        { "Timecode:", "timecodeButton" }, { "Length:", "lengthLabel" },
        { "Samples Since Midnight:", "samplesSinceMidnightLabel" }, { "UserBits:", "userBitsLabel" },
        { "Bit Depth:", "bitDepthLabel" } };
    EXPECT_EQ(rowsOf("recordingForm"), wanted);
    EXPECT_TRUE(widget<QPushButton>("timecodeButton")->isFlat());
    EXPECT_EQ(widget<QPushButton>("timecodeButton")->cursor().shape(), Qt::PointingHandCursor);
}

TEST_F(PanesInWindow, trackPaneHoldsTheTrackTable)
{
    EXPECT_EQ(widget<QGroupBox>("trackGroup")->title(), QStringLiteral("TRACK INFO"));
    std::vector<std::string> titles;
    for (int column = 0; column < tracks()->columnCount(); ++column)
        titles.push_back(tracks()->horizontalHeaderItem(column)->text().toStdString());
    EXPECT_EQ(titles, (std::vector<std::string>{ "Interleave", "Channel", "Track Name", "Function" }));
    EXPECT_TRUE(tracks()->horizontalHeader()->stretchLastSection());
    EXPECT_TRUE(tracks()->verticalHeader()->isHidden());
    EXPECT_EQ(tracks()->editTriggers(), QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked);
    EXPECT_TRUE(tracks()->alternatingRowColors());
    EXPECT_TRUE(tracks()->showGrid());
    EXPECT_EQ(tracks()->selectionBehavior(), QAbstractItemView::SelectItems);
}

TEST_F(PanesInWindow, startEmpty)
{
    expectEmptyPanes();
}

TEST_F(PanesInWindow, withoutASelectionEverythingIsEmptyAgain)
{
    add("a.wav", full());
    select({ 0 });
    table()->clearSelection();
    expectEmptyPanes();
    EXPECT_EQ(tracks()->rowCount(), 0);
    EXPECT_FALSE(enabled("saveButton"));
}

TEST_F(PanesInWindow, oneFileIsShownInFull)
{
    add("a.wav", full());
    select({ 0 });
    EXPECT_EQ(text("currentFileLabel"), "a.wav");
    EXPECT_EQ(text("channelsLabel"), "2");
    EXPECT_EQ(text("sceneEdit"), "12A");
    EXPECT_EQ(text("takeEdit"), "3");
    EXPECT_TRUE(checked("circledCheck"));
    EXPECT_TRUE(checked("wildTrackCheck"));
    EXPECT_EQ(text("projectEdit"), "Harbour");
    EXPECT_EQ(text("tapeIdEdit"), "18Y12M31");
    EXPECT_EQ(notes(), "plane");
    EXPECT_EQ(text("sampleRateLabel"), "48000 Hz");
    EXPECT_EQ(text("tcSampleRateLabel"), "48048 Hz");
    EXPECT_EQ(text("frameRateLabel"), "25 fps");
    EXPECT_EQ(text("timecodeButton"), "00:59:56:22");
    EXPECT_EQ(text("lengthLabel"), "00:00:01");
    EXPECT_EQ(text("samplesSinceMidnightLabel"), "172824000");
    EXPECT_EQ(text("userBitsLabel"), "$00112233");
    EXPECT_EQ(text("bitDepthLabel"), "24 bit");
}

TEST_F(PanesInWindow, oneFileThatSaysNothingShowsMarksAndZeros)
{
    writeBytes(folder.file("a.wav"), "");
    window->addFiles({ path("a.wav") });
    select({ 0 });
    EXPECT_EQ(text("channelsLabel"), "0");
    EXPECT_EQ(text("sampleRateLabel"), "0 Hz");
    EXPECT_EQ(text("tcSampleRateLabel"), kMark);
    EXPECT_EQ(text("frameRateLabel"), kMark);
    EXPECT_EQ(text("timecodeButton"), kMark);
    EXPECT_EQ(text("lengthLabel"), kMark);
    EXPECT_EQ(text("samplesSinceMidnightLabel"), kMark);
    EXPECT_EQ(text("userBitsLabel"), kMark);
    EXPECT_EQ(text("bitDepthLabel"), "0 bit");
    EXPECT_EQ(tracks()->rowCount(), 0);
}

TEST_F(PanesInWindow, monoIsANumberInThePane)
{
    add("a.wav", { .channels = 1 });
    select({ 0 });
    EXPECT_EQ(text("channelsLabel"), "1");
}

TEST_F(PanesInWindow, timeReferenceOfZeroShowsMarks)
{
    add("a.wav", { .frameRate = "25/1" });
    select({ 0 });
    EXPECT_EQ(text("timecodeButton"), kMark);
    EXPECT_EQ(text("samplesSinceMidnightLabel"), kMark);
}

TEST_F(PanesInWindow, frameRatesAreShort)
{
    add("a.wav", { .frameRate = "29.97" });
    add("b.wav", { .frameRate = "24" });
    select({ 0 });
    EXPECT_EQ(text("frameRateLabel"), "29.97 fps");
    select({ 1 });
    EXPECT_EQ(text("frameRateLabel"), "24 fps");
}

TEST_F(PanesInWindow, severalFilesShowWhatTheyShare)
{
    add("a.wav", full());
    add("b.wav", full());
    select({ 0, 1 });
    EXPECT_EQ(text("currentFileLabel"), "2 files selected");
    EXPECT_EQ(text("channelsLabel"), "2");
    EXPECT_EQ(text("sceneEdit"), "12A");
    EXPECT_TRUE(checked("circledCheck"));
    EXPECT_TRUE(checked("wildTrackCheck"));
    EXPECT_EQ(text("projectEdit"), "Harbour");
    EXPECT_EQ(text("tapeIdEdit"), "18Y12M31");
    EXPECT_EQ(notes(), "plane");
    EXPECT_EQ(text("sampleRateLabel"), "48000 Hz");
    EXPECT_EQ(text("tcSampleRateLabel"), "48048 Hz");
    EXPECT_EQ(text("frameRateLabel"), "25 fps");
    EXPECT_EQ(tracks()->rowCount(), 0);
}

TEST_F(PanesInWindow, severalFilesNeverShareTakeAndTimes)
{
    add("a.wav", full());
    add("b.wav", full());
    select({ 0, 1 });
    expectNoFile({ text("takeEdit"), text("timecodeButton"), text("lengthLabel"), text("samplesSinceMidnightLabel"),
        text("userBitsLabel"), text("bitDepthLabel") });
    EXPECT_FALSE(widget<QLineEdit>("takeEdit")->isEnabled());
    select({ 1 });
    EXPECT_TRUE(widget<QLineEdit>("takeEdit")->isEnabled());
    EXPECT_EQ(text("takeEdit"), "3");
}

TEST_F(PanesInWindow, severalFilesShowTheMarkWhereTheyDiffer)
{
    add("a.wav", full());
    Recording other{ .scene = "13",
        .project = "Hill",
        .tape = "2",
        .note = "rain",
        .frameRate = "24/1",
        .timestampRate = 96000,
        .sampleRate = 96000,
        .channels = 1 };
    add("b.wav", other);
    select({ 0, 1 });
    expectNoFile({ text("channelsLabel"), text("sceneEdit"), text("projectEdit"), text("tapeIdEdit"), notes(),
        text("sampleRateLabel"), text("tcSampleRateLabel"), text("frameRateLabel") });
    EXPECT_FALSE(checked("circledCheck"));
    EXPECT_FALSE(checked("wildTrackCheck"));
}

TEST_F(PanesInWindow, severalFilesThatSayNothingShareZerosAndMarks)
{
    writeBytes(folder.file("a.wav"), "");
    writeBytes(folder.file("b.wav"), "");
    window->addFiles({ path("a.wav"), path("b.wav") });
    select({ 0, 1 });
    EXPECT_EQ(text("channelsLabel"), "0");
    EXPECT_EQ(text("sampleRateLabel"), "0 Hz");
    EXPECT_EQ(text("tcSampleRateLabel"), kMark);
    EXPECT_EQ(text("frameRateLabel"), kMark);
    for (const char* edit : { "sceneEdit", "projectEdit", "tapeIdEdit" })
        EXPECT_EQ(text(edit), "") << edit;
    EXPECT_EQ(notes(), "");
    EXPECT_FALSE(checked("circledCheck"));
    EXPECT_FALSE(checked("wildTrackCheck"));
}

TEST_F(PanesInWindow, eachFlagHasItsOwnBox)
{
    add("a.wav", { .circled = "TRUE" });
    add("b.wav", { .circled = "TRUE", .wildTrack = "TRUE" });
    add("c.wav", { .wildTrack = "TRUE" });
    select({ 0 });
    EXPECT_TRUE(checked("circledCheck"));
    EXPECT_FALSE(checked("wildTrackCheck"));
    select({ 0, 1 });
    EXPECT_TRUE(checked("circledCheck"));
    EXPECT_FALSE(checked("wildTrackCheck"));
    select({ 1, 2 });
    EXPECT_FALSE(checked("circledCheck"));
    EXPECT_TRUE(checked("wildTrackCheck"));
}

TEST_F(PanesInWindow, threeScenesAreSharedOnlyIfAllAgree)
{
    add("a.wav", { .scene = "12" });
    add("b.wav", { .scene = "12" });
    add("c.wav", { .scene = "12A" });
    add("d.wav", { .scene = "12" });
    select({ 0, 1, 2 });
    EXPECT_EQ(text("sceneEdit"), kMark);
    select({ 0, 1, 3 });
    EXPECT_EQ(text("sceneEdit"), "12");
}

TEST_F(PanesInWindow, sharedEmptyTextIsEmptyAndNotTheMark)
{
    add("a.wav", {});
    add("b.wav", {});
    select({ 0, 1 });
    EXPECT_EQ(text("sceneEdit"), "");
    EXPECT_EQ(notes(), "");
}

TEST_F(PanesInWindow, sharedValuesAreComparedWithRegardToCase)
{
    add("a.wav", { .scene = "a" });
    add("b.wav", { .scene = "A" });
    select({ 0, 1 });
    EXPECT_EQ(text("sceneEdit"), kMark);
}

TEST_F(PanesInWindow, oneCircledOfTwoIsUnchecked)
{
    add("a.wav", { .circled = "TRUE" });
    add("b.wav", {});
    select({ 0, 1 });
    EXPECT_FALSE(checked("circledCheck"));
    EXPECT_FALSE(widget<QCheckBox>("circledCheck")->isTristate());
}

TEST_F(PanesInWindow, timecodeRateFallsBackOnTheAudiosForOneFileOnly)
{
    add("a.wav", { .frameRate = "25/1" });
    add("b.wav", { .frameRate = "25/1" });
    select({ 0 });
    EXPECT_EQ(text("tcSampleRateLabel"), "48000 Hz");
    select({ 0, 1 });
    EXPECT_EQ(text("tcSampleRateLabel"), kMark);
}

TEST_F(PanesInWindow, rowCountsOnceHoweverManyOfItsCellsAreSelected)
{
    add("a.wav", {});
    add("b.wav", {});
    auto* model = table()->selectionModel();
    for (int column = 1; column < 4; ++column)
        model->select(table()->model()->index(0, column), QItemSelectionModel::Select);
    EXPECT_EQ(text("currentFileLabel"), "a.wav");
    model->select(table()->model()->index(1, 5), QItemSelectionModel::Select);
    EXPECT_EQ(text("currentFileLabel"), "2 files selected");
}

TEST_F(PanesInWindow, commonValueOfNothingIsTheMark)
{
    add("a.wav", { .scene = "1", .circled = "TRUE" });
    const auto scene = [](const BwfMetadata& record) { return QString::fromStdString(record.scene); };
    const auto circled = [](const BwfMetadata& record) { return record.circled; };
    EXPECT_EQ(window->getCommonValue("scene", scene).toStdString(), kMark);
    EXPECT_FALSE(window->getCommonBool("circled", circled));
    select({ 0 });
    EXPECT_EQ(window->getCommonValue("scene", scene).toStdString(), "1");
    EXPECT_TRUE(window->getCommonBool("circled", circled));
}

TEST_F(PanesInWindow, trackTableFitsIntoItsPane)
{
    add("a.wav", full());
    window->resize(1300, 800); // Fonts may be wider elsewhere.
    window->show();
    QCoreApplication::processEvents();
    select({ 0 });
    QCoreApplication::processEvents();
    EXPECT_EQ(tracks()->horizontalHeader()->length(), tracks()->viewport()->width());
    for (int column = 0; column < kTrackColumnCount; ++column)
        EXPECT_GE(tracks()->columnWidth(column), 50) << column;
}

TEST_F(PanesInWindow, rowsOfThePanesStandCloseTogether)
{
    window->resize(1200, 1400);
    window->show();
    QCoreApplication::processEvents();
    for (const char* pane : { "generalForm", "recordingForm" }) {
        auto* form = window->findChild<QFormLayout*>(QString::fromLatin1(pane));
        for (int row = 0; row < 2; ++row) {
            const QWidget* label = form->itemAt(row, QFormLayout::LabelRole)->widget();
            const QWidget* value = form->itemAt(row, QFormLayout::FieldRole)->widget();
            EXPECT_NEAR(label->geometry().center().y(), value->geometry().center().y(), 1) << pane << row;
        }
    }
}

TEST_F(PanesInWindow, trackTableIsEmptyForSeveralFiles)
{
    add("a.wav", full());
    add("b.wav", full());
    select({ 0 });
    ASSERT_EQ(tracks()->rowCount(), 2);
    select({ 0, 1 });
    EXPECT_EQ(tracks()->rowCount(), 0);
}

TEST_F(PanesInWindow, interleaveCountsTheTracksAndChannelIsWhatTheFileSays)
{
    WavBuilder()
        .fmt(48000, 2, 24)
        .ixml(
            "<BWFXML><TRACK_LIST><TRACK><CHANNEL_INDEX>7</CHANNEL_INDEX><NAME>Boom</NAME><FUNCTION>M</FUNCTION></TRACK>"
            "<TRACK><CHANNEL_INDEX>3</CHANNEL_INDEX><NAME>Lav</NAME><FUNCTION>S</FUNCTION></TRACK></TRACK_LIST></"
            "BWFXML>")
        .dataFrames(10)
        .write(folder.file("a.wav"));
    window->addFiles({ path("a.wav") });
    select({ 0 });
    ASSERT_EQ(tracks()->rowCount(), 2);
    const std::vector<std::vector<std::string>> wanted{ { "1", "7", "Boom", "M" }, { "2", "3", "Lav", "S" } };
    for (int row = 0; row < 2; ++row) {
        for (int column = 0; column < kTrackColumnCount; ++column)
            EXPECT_EQ(trackCell(row, static_cast<TrackColumn>(column)),
                wanted[static_cast<size_t>(row)][static_cast<size_t>(column)])
                << row << ' ' << column;
    }
}

TEST_F(PanesInWindow, selectingAFileWithTheSameTracksTouchesNothing)
{
    Recording recording;
    recording.trackNames = { "Boom", "Lav" };
    recording.file().write(folder.file("a.wav"));
    recording.file().write(folder.file("b.wav"));
    window->addFiles({ path("a.wav"), path("b.wav") });
    select({ 0 });
    {
        const ModalHands confirms; // Nothing counts as touched after a save.
        press("saveButton");
    }
    ASSERT_FALSE(enabled("saveButton"));
    select({ 1 });
    EXPECT_EQ(text("currentFileLabel"), "b.wav");
    EXPECT_FALSE(enabled("saveButton"));
}

TEST_F(PanesInWindow, trackTableShowsTheTracksOfOneFile)
{
    add("a.wav", full());
    select({ 0 });
    ASSERT_EQ(tracks()->rowCount(), 2);
    EXPECT_EQ(trackCell(1, TrackColumn::Interleave), "2");
    EXPECT_EQ(trackCell(1, TrackColumn::Channel), "2");
    EXPECT_EQ(trackCell(1, TrackColumn::Name), "Lav");
    EXPECT_EQ(trackCell(1, TrackColumn::Function), "F2");
    table()->clearSelection();
    EXPECT_EQ(tracks()->rowCount(), 0);
}

TEST_F(PanesInWindow, doubleClickEditsNameAndFunctionOfATrackOnly)
{
    add("a.wav", full());
    window->show();
    select({ 0 });
    QCoreApplication::processEvents();
    for (int column = 0; column < kTrackColumnCount; ++column) {
        QTableWidgetItem* item = tracks()->item(0, column);
        const QPoint place = tracks()->visualItemRect(item).center();
        QTest::mouseClick(tracks()->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(tracks()->viewport(), Qt::LeftButton, {}, place);
        const bool editable = column >= indexOf(TrackColumn::Name);
        EXPECT_EQ(tracks()->isPersistentEditorOpen(item) || tracks()->viewport()->findChild<QLineEdit*>() != nullptr,
            editable)
            << column;
        if (auto* editor = tracks()->viewport()->findChild<QLineEdit*>())
            QTest::keyClick(editor, Qt::Key_Escape);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

TEST_F(PanesInWindow, removeIsOfferedWithASelectionOnly)
{
    add("a.wav", {});
    EXPECT_FALSE(enabled("removeFileButton"));
    select({ 0 });
    EXPECT_TRUE(enabled("removeFileButton"));
    table()->clearSelection();
    EXPECT_FALSE(enabled("removeFileButton"));
}

TEST_F(PanesInWindow, selectingAFileWithAnotherSceneOffersSavingWithoutTyping)
{
    add("a.wav", { .scene = "1" });
    add("b.wav", { .scene = "2" });
    select({ 0 });
    select({ 1 });
    EXPECT_TRUE(enabled("saveButton"));
}

TEST_F(PanesInWindow, selectingAFileThatChangesNothingOffersNoSaving)
{
    writeBytes(folder.file("a.wav"), "");
    window->addFiles({ path("a.wav") });
    select({ 0 });
    EXPECT_FALSE(enabled("saveButton"));
}

TEST_F(PanesInWindow, selectionChangeLeavesEditsUnsavedAndSavingOffered)
{
    writeBytes(folder.file("a.wav"), "");
    writeBytes(folder.file("b.wav"), "");
    window->addFiles({ path("a.wav"), path("b.wav") });
    select({ 0 });
    widget<QLineEdit>("projectEdit")->setText("typed");
    select({ 1 });
    EXPECT_EQ(text("projectEdit"), "");
    EXPECT_TRUE(enabled("saveButton"));
    table()->clearSelection();
    EXPECT_FALSE(enabled("saveButton"));
    select({ 0 });
    EXPECT_EQ(text("projectEdit"), "");
    EXPECT_TRUE(enabled("saveButton"));
}

TEST_F(PanesInWindow, everyEditorOffersSaving)
{
    writeBytes(folder.file("a.wav"), "");
    const auto fresh = [this] {
        window = std::make_unique<MetadataManagerWindow>();
        window->addFiles({ path("a.wav") });
        select({ 0 });
        ASSERT_FALSE(enabled("saveButton"));
    };
    for (const char* edit : { "sceneEdit", "takeEdit", "projectEdit", "tapeIdEdit" }) {
        fresh();
        QTest::keyClicks(widget<QLineEdit>(edit), "x");
        EXPECT_TRUE(enabled("saveButton")) << edit;
    }
    for (const char* box : { "circledCheck", "wildTrackCheck" }) {
        fresh();
        widget<QCheckBox>(box)->click();
        EXPECT_TRUE(enabled("saveButton")) << box;
    }
    fresh();
    QTest::keyClicks(widget<QTextEdit>("notesEdit"), "x");
    EXPECT_TRUE(enabled("saveButton"));
}

TEST_F(PanesInWindow, notesTakeTextWithoutItsLooks)
{
    auto* copied = new QMimeData;
    copied->setHtml(QStringLiteral("<b>plane</b>"));
    copied->setText(QStringLiteral("plane"));
    QApplication::clipboard()->setMimeData(copied);
    auto* edit = widget<QTextEdit>("notesEdit");
    edit->paste();
    EXPECT_EQ(notes(), "plane");
    EXPECT_LT(edit->textCursor().charFormat().fontWeight(), QFont::Bold);
}

TEST_F(PanesInWindow, editedTrackNameOffersSaving)
{
    writeBytes(folder.file("a.wav"), "");
    window->addFiles({ path("a.wav") });
    select({ 0 });
    tracks()->setRowCount(1);
    ASSERT_FALSE(enabled("saveButton"));
    tracks()->setItem(0, indexOf(TrackColumn::Name), new QTableWidgetItem("Boom"));
    EXPECT_TRUE(enabled("saveButton"));
}

TEST_F(PanesInWindow, typingWithoutASelectionOffersNothing)
{
    QTest::keyClicks(widget<QLineEdit>("sceneEdit"), "x");
    EXPECT_FALSE(enabled("saveButton"));
}

TEST_F(PanesInWindow, tabWalksThroughTheControlsInReadingOrder)
{
    add("a.wav", full());
    window->show();
    select({ 0 });
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    table()->setFocus();
    std::vector<std::string> visited;
    for (int i = 0; i < 15; ++i) {
        QWidget* focused = window->focusWidget();
        ASSERT_TRUE(focused);
        visited.push_back(focused->objectName().toStdString());
        QTest::keyClick(focused, Qt::Key_Tab);
    }
    EXPECT_EQ(visited,
        (std::vector<std::string>{ "fileTable", "addButton", "removeFileButton", "clearButton", "soundReportButton",
            "sceneEdit", "takeEdit", "circledCheck", "wildTrackCheck", "projectEdit", "tapeIdEdit", "notesEdit",
            "timecodeButton", "trackTable", "saveButton" }));
}

TEST_F(PanesInWindow, everyFocusableControlHasAnAccessibleName)
{
    add("a.wav", full());
    for (QWidget* each : window->findChildren<QWidget*>()) {
        if (each->focusPolicy() == Qt::NoFocus || each->objectName().isEmpty() || each->objectName().startsWith("qt_"))
            continue;
        QAccessibleInterface* face = QAccessible::queryAccessibleInterface(each);
        ASSERT_TRUE(face);
        EXPECT_FALSE(face->text(QAccessible::Name).isEmpty()) << each->objectName().toStdString();
    }
}

} // namespace
