#include "report/SoundReportDialog.h"

#include "tests/report/ReportFixture.h"
#include "tests/support/KeyboardWalk.h"

#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QTableWidget>
#include <QTest>

#include <array>

namespace {

constexpr std::array kValueLabels{ "fileNumberLabel", "filenameLabel", "sceneLabel", "takeLabel", "projectLabel",
    "soundRollLabel", "timecodeInLabel", "timecodeOutLabel", "durationLabel", "tracksLabel", "notesLabel",
    "fileDateLabel" };

class ReportByKeyboard : public ReportFixture {
protected:
    QList<QString> takes(int count)
    {
        QList<QString> paths;
        for (int i = 0; i < count; ++i)
            paths.append(addTake("T" + std::to_string(i) + ".WAV", { .scene = std::to_string(i), .take = "1" }));
        return paths;
    }

    static void show(QWidget& dialog)
    {
        dialog.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog));
    }

    static void expectDashes(const SoundReportDialog& dialog)
    {
        for (const char* const label : kValueLabels)
            EXPECT_EQ(labelText(dialog, label), "--") << label;
    }
};

} // namespace

TEST_F(ReportByKeyboard, tabGoesRoundBothWaysWithoutFilesWithOneAndWithSeveral)
{
    SoundReportDialog empty(nullptr);
    show(empty);
    KeyboardWalk::expectRoundBothWays(empty);
    EXPECT_EQ(KeyboardWalk::namelessControls(empty), QStringList());
    empty.close();
    for (const int count : { 1, 5 }) {
        SoundReportDialog dialog(takes(count), nullptr);
        show(dialog);
        KeyboardWalk::expectRoundBothWays(dialog);
        childOf<QTableWidget>(dialog, "takeTable").selectRow(count - 1);
        KeyboardWalk::expectRoundBothWays(dialog);
        EXPECT_EQ(KeyboardWalk::namelessControls(dialog), QStringList());
    }
}

TEST_F(ReportByKeyboard, tabGoesRoundTheConfigurationAndEveryControlOfItHasAName)
{
    SoundReportDialog dialog(takes(1), nullptr);
    show(dialog);
    whenModal<QDialog>([](QDialog& configuration) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&configuration));
        EXPECT_TRUE(QTest::qWaitFor([&configuration] { return QApplication::activeWindow() == &configuration; }));
        KeyboardWalk::expectRoundBothWays(configuration);
        EXPECT_EQ(KeyboardWalk::namelessControls(configuration), QStringList());
        configuration.reject();
    });
    click(dialog, "configureButton");
}

TEST_F(ReportByKeyboard, tabGoesRoundTheFileDialogsAndEveryControlOfThemHasAName)
{
    SoundReportDialog dialog(takes(1), nullptr);
    show(dialog);
    const auto walk = [](QFileDialog& chooser) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&chooser));
        KeyboardWalk::expectRoundBothWays(chooser);
        EXPECT_EQ(KeyboardWalk::namelessControls(chooser), QStringList());
        cancelChooser(chooser);
    };
    whenModal<QFileDialog>(walk);
    click(dialog, "createReportButton");
    whenModal<QFileDialog>(walk);
    dialog.onSelectFolder();
}

TEST_F(ReportByKeyboard, theFirstDownGoesToTheFirstTake)
{
    SoundReportDialog dialog(takes(3), nullptr);
    show(dialog);
    auto& table = childOf<QTableWidget>(dialog, "takeTable");
    table.setFocus(Qt::TabFocusReason);
    QTest::keyClick(&table, Qt::Key_Down);
    EXPECT_EQ(labelText(dialog, "sceneLabel"), "0");
    QTest::keyClick(&table, Qt::Key_Down);
    EXPECT_EQ(labelText(dialog, "sceneLabel"), "1");
}

TEST_F(ReportByKeyboard, aListLoadedWhileADeselectedRowWasCurrentShowsNoTake)
{
    SoundReportDialog dialog(takes(3), nullptr);
    show(dialog);
    auto& table = childOf<QTableWidget>(dialog, "takeTable");
    table.selectRow(1);
    table.clearSelection();
    ASSERT_EQ(table.currentRow(), 1);
    dialog.setFiles(takes(2));
    EXPECT_EQ(table.currentRow(), -1);
    expectDashes(dialog);
    table.selectRow(0);
    EXPECT_EQ(labelText(dialog, "sceneLabel"), "0");
    dialog.updateTakeList();
    expectDashes(dialog);
}

TEST_F(ReportByKeyboard, textsOfFilesLeaveTheDialogsSizeAlone)
{
    const std::string arabic = "\u0634\u0631\u064a\u0637";
    std::string endless(10000, 'W');
    std::string hebrew;
    for (int i = 0; i < 2000; ++i)
        hebrew += arabic;
    QList<QString> paths;
    for (const std::string& text : { endless, std::string("first\nsecond"), hebrew }) {
        paths.append(addTake("H" + std::to_string(paths.size()) + ".WAV",
            { .scene = text,
                .take = text,
                .project = text,
                .tape = text,
                .note = text,
                .trackNames = { text, text } }));
    }
    SoundReportDialog dialog(paths, nullptr);
    show(dialog);
    const QSize before = dialog.size();
    const int detailsBefore = childOf<QGroupBox>(dialog, "detailsGroup").width();
    for (int row = 0; row < rowCount(dialog); ++row) {
        childOf<QTableWidget>(dialog, "takeTable").selectRow(row);
        QTest::qWait(0);
        EXPECT_EQ(dialog.size(), before);
        EXPECT_EQ(childOf<QGroupBox>(dialog, "detailsGroup").width(), detailsBefore);
        EXPECT_LE(dialog.minimumSizeHint().width(), 1000);
        EXPECT_LE(dialog.minimumSizeHint().height(), 700);
        for (const char* const label : kValueLabels) {
            const auto& shown = childOf<QLabel>(dialog, label);
            EXPECT_TRUE(shown.parentWidget()->rect().contains(shown.geometry())) << label;
        }
    }
    childOf<QTableWidget>(dialog, "takeTable").selectRow(0);
    EXPECT_EQ(labelText(dialog, "sceneLabel").size(), 10000) << "the text stays";
}

TEST_F(ReportByKeyboard, headingsFitAtEveryFontSize)
{
    const QFont usual = QApplication::font();
    for (const int points : { 8, 12, 18, 24 }) {
        QFont font = usual;
        font.setPointSize(points);
        QApplication::setFont(font);
        for (const int count : { 0, 2 }) {
            SoundReportDialog dialog(takes(count), nullptr);
            show(dialog);
            auto& table = childOf<QTableWidget>(dialog, "takeTable");
            for (int column = 0; column < table.columnCount(); ++column) {
                const auto& header = *table.horizontalHeader();
                EXPECT_GE(header.sectionSize(column), header.sectionSizeHint(column))
                    << points << " points, " << column;
            }
        }
    }
    QApplication::setFont(usual);
}
