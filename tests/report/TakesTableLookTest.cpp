#include "app/look/Theme.h"
#include "report/SoundReportDialog.h"

#include <QTableWidget>
#include <QWidget>

#include <gtest/gtest.h>

TEST(TakesTableLook, everySecondRowIsAsDarkAsTheOthers)
{
    QWidget window;
    window.setStyleSheet(Theme::filledMainStyleSheet());
    SoundReportDialog dialog(&window);
    auto* table = dialog.findChild<QTableWidget*>("takeTable");
    ASSERT_NE(table, nullptr);
    table->setRowCount(2);
    for (int row = 0; row < 2; ++row)
        table->setItem(row, 5, new QTableWidgetItem);
    dialog.show();
    const QImage picture = table->viewport()->grab().toImage();
    for (int row = 0; row < 2; ++row) {
        const QPoint middle = table->visualItemRect(table->item(row, 5)).center();
        EXPECT_LT(picture.pixelColor(middle).lightness(), 64) << "row " << row;
    }
}
