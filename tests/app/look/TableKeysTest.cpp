#include "app/look/TableKeys.h"

#include <QLineEdit>
#include <QTableWidget>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

class TableKeys : public testing::Test {
protected:
    TableKeys()
    {
        for (int row = 0; row < table.rowCount(); ++row)
            table.setItem(row, 0, new QTableWidgetItem(QString::number(row)));
        table.setSelectionBehavior(QAbstractItemView::SelectRows);
        setUpTableKeys(table);
        auto* layout = new QVBoxLayout(&window);
        layout->addWidget(&before);
        layout->addWidget(&table);
        layout->addWidget(&after);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        before.setFocus();
        QTest::keyClick(&before, Qt::Key_Tab);
    }

    int selectedRow() const
    {
        const QModelIndexList rows = table.selectionModel()->selectedRows();
        return rows.size() == 1 ? rows.first().row() : -1;
    }

    QWidget window;
    QLineEdit before;
    QTableWidget table{ 20, 2 };
    QLineEdit after;
};

} // namespace

TEST_F(TableKeys, tabGoesThroughTheTableInOneStep)
{
    EXPECT_TRUE(table.hasFocus());
    QTest::keyClick(&table, Qt::Key_Tab);
    EXPECT_TRUE(after.hasFocus());
    QTest::keyClick(&after, Qt::Key_Backtab);
    EXPECT_TRUE(table.hasFocus());
    QTest::keyClick(&table, Qt::Key_Backtab);
    EXPECT_TRUE(before.hasFocus());
}

TEST_F(TableKeys, comingInByTabSelectsNothing)
{
    EXPECT_FALSE(table.selectionModel()->hasSelection());
}

TEST_F(TableKeys, theFirstDownGoesToTheFirstRowAndTheSecondToTheNext)
{
    QTest::keyClick(&table, Qt::Key_Down);
    EXPECT_EQ(selectedRow(), 0);
    QTest::keyClick(&table, Qt::Key_Down);
    EXPECT_EQ(selectedRow(), 1);
}

TEST_F(TableKeys, everyOtherKeyThatMovesStartsAtTheFirstRowToo)
{
    for (const Qt::Key key : { Qt::Key_Up, Qt::Key_PageDown, Qt::Key_PageUp }) {
        table.clearSelection();
        table.setCurrentCell(0, 0, QItemSelectionModel::NoUpdate);
        QTest::keyClick(&table, key);
        EXPECT_EQ(selectedRow(), 0) << key;
    }
}

TEST_F(TableKeys, fromARowFurtherDownTheKeysGoOn)
{
    table.setCurrentCell(5, 0, QItemSelectionModel::NoUpdate);
    QTest::keyClick(&table, Qt::Key_Down);
    EXPECT_EQ(selectedRow(), 6);
}

TEST_F(TableKeys, withControlTheKeyboardLeavesTheFirstRowUnselected)
{
    QTest::keyClick(&table, Qt::Key_Down, Qt::ControlModifier);
    EXPECT_FALSE(table.selectionModel()->hasSelection());
    EXPECT_EQ(table.currentRow(), 1);
}

TEST_F(TableKeys, anEmptyTableTakesTheKeysInSilence)
{
    table.setRowCount(0);
    QTest::keyClick(&table, Qt::Key_Down);
    EXPECT_EQ(table.currentRow(), -1);
}
