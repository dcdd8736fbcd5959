#include "app/files/FilePanel.h"
#include "mixer/FilePlaybackMixerDialog.h"
#include "tests/support/DrivenOutput.h"
#include "tests/support/KeyboardWalk.h"
#include "tests/window/ModalHands.h"
#include "tests/window/WindowFixture.h"

#include <QAccessible>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QSplitter>
#include <QTest>
#include <QUrl>

namespace {

/// The window as it is used without a mouse and without a screen.
class WindowByKeyboard : public WindowFixture {
protected:
    WindowByKeyboard() { DrivenOutput::reset(); }

    void show()
    {
        window->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    void addThree()
    {
        for (const char* const name : { "A.WAV", "B.WAV", "C.WAV" })
            add(name, { .scene = name, .frameRate = "25/1", .timeReference = 48000, .trackNames = { "Boom", "Lav" } });
    }

    /// Comes into the list by Tab.
    void goIntoList()
    {
        widget<QPushButton>("saveButton")->setFocus();
        table()->setFocus(Qt::TabFocusReason);
    }

    FilePlaybackMixerDialog* mixer() const { return window->findChild<FilePlaybackMixerDialog*>(); }

    std::string spoken(const char* name, QAccessible::Text which) const
    {
        return QAccessible::queryAccessibleInterface(widget<QWidget>(name))->text(which).toStdString();
    }

    /// What comes over the list with another program's rows, and perhaps with files.
    static std::unique_ptr<QMimeData> foreignRows(const QList<QUrl>& urls)
    {
        QTableWidget other(1, 1);
        other.setItem(0, 0, new QTableWidgetItem("foreign"));
        std::unique_ptr<QMimeData> data(other.model()->mimeData({ other.model()->index(0, 0) }));
        if (!urls.isEmpty())
            data->setUrls(urls);
        return data;
    }

    /// Drops the data on the middle of the list's first row, or on its empty ground.
    bool dropOnList(const QMimeData& data, QPoint place)
    {
        QDragEnterEvent enter(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(table()->viewport(), &enter);
        QDragMoveEvent move(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(table()->viewport(), &move);
        QDropEvent drop(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(table()->viewport(), &drop);
        return enter.isAccepted();
    }
};

const QStringList kHardNames{ QString(10000, u'W'), QStringLiteral("first\nsecond"),
    QString::fromUtf8("\u0634\u0631\u064a\u0637").repeated(2000) };

} // namespace

TEST_F(WindowByKeyboard, tabGoesRoundBothWaysWithNoFileOneAndSeveral)
{
    show();
    KeyboardWalk::expectRoundBothWays(*window);
    EXPECT_EQ(KeyboardWalk::namelessControls(*window), QStringList());
    addThree();
    KeyboardWalk::expectRoundBothWays(*window);
    for (const std::vector<int>& rows : { std::vector<int>{ 1 }, { 0, 1, 2 } }) {
        select(rows);
        KeyboardWalk::expectRoundBothWays(*window);
        EXPECT_EQ(KeyboardWalk::namelessControls(*window), QStringList());
    }
}

TEST_F(WindowByKeyboard, tabGoesRoundTheTimecodeDialogAndEveryControlOfItHasAName)
{
    show();
    addThree();
    select({ 0 });
    ModalHands hands([](QDialog* dialog) {
        EXPECT_TRUE(QTest::qWaitFor([dialog] { return QApplication::activeWindow() == dialog; }));
        KeyboardWalk::expectRoundBothWays(*dialog);
        EXPECT_EQ(KeyboardWalk::namelessControls(*dialog), QStringList());
    });
    press("timecodeButton");
    EXPECT_EQ(hands.dialogs, 1);
}

TEST_F(WindowByKeyboard, tabGoesRoundThePanelThatAddsAndEveryControlOfItHasAName)
{
    FilePanel panel(nullptr, path("."), "Add WAV Files or Folders");
    panel.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&panel));
    KeyboardWalk::expectRoundBothWays(panel);
    EXPECT_EQ(KeyboardWalk::namelessControls(panel), QStringList());
}

TEST_F(WindowByKeyboard, theFirstDownGoesToTheFirstRow)
{
    show();
    addThree();
    goIntoList();
    QTest::keyClick(table(), Qt::Key_Down);
    EXPECT_EQ(text("sceneEdit"), "A.WAV");
    QTest::keyClick(table(), Qt::Key_Down);
    EXPECT_EQ(text("sceneEdit"), "B.WAV");
}

TEST_F(WindowByKeyboard, returnOnARowOpensTheMixerOnIt)
{
    show();
    addThree();
    goIntoList();
    for (const Qt::Key key : { Qt::Key_Return, Qt::Key_Enter }) {
        QTest::keyClick(table(), Qt::Key_Down);
        QTest::keyClick(table(), key, key == Qt::Key_Enter ? Qt::KeypadModifier : Qt::NoModifier);
        ASSERT_TRUE(mixer());
        EXPECT_EQ(mixer()->filePath, path(text("sceneEdit")));
    }
}

TEST_F(WindowByKeyboard, aDoubleClickOpensNothing)
{
    show();
    addThree();
    const QPoint place = table()->visualItemRect(table()->item(1, 1)).center();
    QTest::mouseClick(table()->viewport(), Qt::LeftButton, {}, place);
    QTest::mouseDClick(table()->viewport(), Qt::LeftButton, {}, place);
    EXPECT_FALSE(mixer());
}

TEST_F(WindowByKeyboard, returnWithoutARowOrWithControlOpensNothing)
{
    show();
    goIntoList();
    QTest::keyClick(table(), Qt::Key_Return);
    addThree();
    table()->setCurrentCell(0, 1);
    QTest::keyClick(table(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_FALSE(mixer());
}

TEST_F(WindowByKeyboard, afterRemoveTheKeyboardIsInTheListAndSpaceRemovesNoMore)
{
    show();
    addThree();
    select({ 1 });
    widget<QPushButton>("removeFileButton")->setFocus(Qt::TabFocusReason);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_TRUE(table()->hasFocus());
    for (int i = 0; i < 3; ++i)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
    EXPECT_EQ(table()->rowCount(), 2);
}

TEST_F(WindowByKeyboard, aRowSpeaksItsPlayButtonAndItsTextStaysEmpty)
{
    addThree();
    EXPECT_EQ(cell(1, FileColumn::Play), "");
    QAccessibleInterface* const tree = QAccessible::queryAccessibleInterface(table());
    EXPECT_EQ(tree->tableInterface()->cellAt(1, 0)->text(QAccessible::Name), "Play B.WAV");
    select({ 0 });
    press("removeFileButton");
    EXPECT_EQ(tree->tableInterface()->cellAt(0, 0)->text(QAccessible::Name), "Play B.WAV");
}

TEST_F(WindowByKeyboard, theTimecodeButtonIsTheStartTimecodeAndItsValueTheTime)
{
    addThree();
    EXPECT_EQ(spoken("timecodeButton", QAccessible::Name), "Start timecode");
    EXPECT_EQ(spoken("timecodeButton", QAccessible::Description), kMark);
    select({ 0 });
    EXPECT_EQ(spoken("timecodeButton", QAccessible::Description), "00:00:01:00");
    ModalHands hands([](QDialog* dialog) {
        dialog->findChild<QLineEdit*>("timecodeEdit")->setText("02:00:00:00");
        dialog->accept();
    });
    press("timecodeButton");
    EXPECT_EQ(spoken("timecodeButton", QAccessible::Description), "02:00:00:00");
    select({ 0, 1 });
    EXPECT_EQ(spoken("timecodeButton", QAccessible::Description), kMark);
}

TEST_F(WindowByKeyboard, aLongFileNameLeavesThePanesAndTheWindowAsTheyAre)
{
    show();
    add(std::string(60, 'n') + ".WAV", {});
    add(std::string(240, 'n') + ".WAV", {});
    QTest::qWait(0);
    const QSize before = window->size();
    const QList<int> panes = widget<QSplitter>("detailSplitter")->sizes();
    for (const int row : { 0, 1 }) {
        select({ row });
        QTest::qWait(0);
        EXPECT_EQ(window->size(), before);
        EXPECT_EQ(widget<QSplitter>("detailSplitter")->sizes(), panes);
        EXPECT_LE(window->minimumSizeHint().width(), 1200);
    }
    EXPECT_EQ(text("currentFileLabel").size(), 244U);
}

TEST_F(WindowByKeyboard, noTextOfAFileRulesTheLayout)
{
    show();
    QTest::qWait(0);
    const QSize before = window->size();
    const QList<int> panes = widget<QSplitter>("detailSplitter")->sizes();
    for (const QString& name : kHardNames) {
        for (const char* const label : { "currentFileLabel", "channelsLabel", "sampleRateLabel", "tcSampleRateLabel",
                 "frameRateLabel", "lengthLabel", "samplesSinceMidnightLabel", "userBitsLabel", "bitDepthLabel" }) {
            auto* const value = widget<QLabel>(label);
            value->setText(name);
            QTest::qWait(0);
            EXPECT_EQ(window->size(), before) << label;
            EXPECT_EQ(widget<QSplitter>("detailSplitter")->sizes(), panes) << label;
            EXPECT_TRUE(value->parentWidget()->rect().contains(value->geometry())) << label;
            EXPECT_EQ(value->text(), name);
        }
    }
}

TEST_F(WindowByKeyboard, headingsFitAtEveryFontSize)
{
    const QFont usual = QApplication::font();
    for (const int points : { 8, 10, 12, 16, 20, 24 }) {
        QFont font = usual;
        font.setPointSize(points);
        QApplication::setFont(font);
        MetadataManagerWindow other;
        other.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
        other.addFiles({ write("A.WAV", { .scene = "12A" }) });
        for (const char* const name : { "fileTable", "trackTable" }) {
            const QHeaderView& header = *other.findChild<QTableWidget*>(name)->horizontalHeader();
            for (int column = 0; column < header.count(); ++column) {
                if (header.sectionResizeMode(column) != QHeaderView::Fixed) {
                    EXPECT_GE(header.sectionSize(column), header.sectionSizeHint(column))
                        << name << " " << points << " points, column " << column;
                }
            }
        }
    }
    QApplication::setFont(usual);
}

TEST_F(WindowByKeyboard, rowsOfOtherProgramsAreNotTakenNeitherOnACellNorOnEmptyGround)
{
    show();
    addThree();
    const std::string before = cell(0, FileColumn::FileName);
    const std::unique_ptr<QMimeData> rows = foreignRows({});
    const QPoint onCell = table()->visualItemRect(table()->item(0, 1)).center();
    EXPECT_FALSE(dropOnList(*rows, onCell));
    EXPECT_FALSE(dropOnList(*rows, QPoint(20, table()->viewport()->height() - 3)));
    EXPECT_EQ(cell(0, FileColumn::FileName), before);
    EXPECT_EQ(table()->rowCount(), 3);
}

TEST_F(WindowByKeyboard, filesThatComeWithRowsOfOtherProgramsAreAdded)
{
    show();
    addThree();
    const std::unique_ptr<QMimeData> both = foreignRows({ QUrl::fromLocalFile(write("D.WAV", {})) });
    EXPECT_TRUE(dropOnList(*both, table()->visualItemRect(table()->item(0, 1)).center()));
    EXPECT_EQ(column(FileColumn::FileName), (std::vector<std::string>{ "A.WAV", "B.WAV", "C.WAV", "D.WAV" }));
}

TEST_F(WindowByKeyboard, aRowWithoutARecordIsRemovedAndPlaysNothing)
{
    show();
    addThree();
    table()->insertRow(3);
    select({ 3 });
    QTest::keyClick(table(), Qt::Key_Return);
    EXPECT_FALSE(mixer());
    press("removeFileButton");
    EXPECT_EQ(column(FileColumn::FileName), (std::vector<std::string>{ "A.WAV", "B.WAV", "C.WAV" }));
}
