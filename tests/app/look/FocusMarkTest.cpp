#include "app/look/FocusMark.h"

#include "app/look/Theme.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFocusFrame>
#include <QImage>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QTableWidget>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

/// Relative luminance of a colour, 0.0 to 1.0, by the formula of the accessibility guidelines.
double luminance(const QColor& colour)
{
    const auto part
        = [](double value) { return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4); };
    return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
}

double contrast(const QColor& one, const QColor& other)
{
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

const QColor kLight{ QLatin1String(FocusMark::kLight) };
const QColor kDark{ QLatin1String(FocusMark::kDark) };

class FocusMarkInWindow : public testing::Test {
protected:
    FocusMarkInWindow()
    {
        window.setStyleSheet(Theme::filledMainStyleSheet());
        button = add(new QPushButton("M"));
        check = add(new QCheckBox("Circled"));
        slider = add(new QSlider(Qt::Vertical));
        combo = add(new QComboBox);
        table = add(new QTableWidget(3, 2));
        table->setStyleSheet(Theme::fileTableStyleSheet());
        table->setTabKeyNavigation(false);
        edit = add(new QLineEdit);
        window.resize(400, 500);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    template <typename Widget> Widget* add(Widget* widget)
    {
        layout->addWidget(widget);
        return widget;
    }

    QFocusFrame* ring() { return window.findChild<QFocusFrame*>(); }
    bool ringShows() { return ring() != nullptr && ring()->isVisible(); }

    /// Where the ring is, in the window.
    QRect ringPlace() { return QRect(ring()->mapTo(&window, QPoint()), ring()->size()); }
    QRect placeOf(const QWidget* widget) { return QRect(widget->mapTo(&window, QPoint()), widget->size()); }

    /// Goes to the widget by Tab.
    void tabTo(const QWidget* widget)
    {
        int steps = 0;
        do {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        } while (++steps < 20 && QApplication::focusWidget() != widget);
        ASSERT_EQ(QApplication::focusWidget(), widget);
    }

    FocusMark mark{ *qApp };
    QWidget window;
    QVBoxLayout* layout = new QVBoxLayout(&window);
    QPushButton* button;
    QCheckBox* check;
    QSlider* slider;
    QComboBox* combo;
    QTableWidget* table;
    QLineEdit* edit;
};

} // namespace

TEST(FocusMark, oneOfItsColoursStandsOutThreeToOneFromEveryGround)
{
    for (int red = 0; red < 256; red += 5) {
        for (int green = 0; green < 256; green += 5) {
            for (int blue = 0; blue < 256; blue += 5) {
                const QColor ground(red, green, blue);
                ASSERT_GE(std::max(contrast(kLight, ground), contrast(kDark, ground)), 3.0)
                    << ground.name().toStdString();
            }
        }
    }
}

TEST_F(FocusMarkInWindow, everyKindOfControlHasTwoPixelsOfEachColourAroundIt)
{
    for (QWidget* const each :
        { static_cast<QWidget*>(button), static_cast<QWidget*>(check), static_cast<QWidget*>(slider),
            static_cast<QWidget*>(combo), static_cast<QWidget*>(table), static_cast<QWidget*>(edit) }) {
        tabTo(each);
        ASSERT_TRUE(ringShows());
        const QRect place = placeOf(each);
        EXPECT_EQ(ringPlace(), place.adjusted(-2, -2, 2, 2));
        const QImage picture = window.grab().toImage();
        for (int depth = 0; depth < 4; ++depth) {
            const QColor wanted = depth < 2 ? kLight : kDark;
            const QPoint centre = place.center();
            EXPECT_EQ(picture.pixelColor(place.left() - 2 + depth, centre.y()), wanted) << depth;
            EXPECT_EQ(picture.pixelColor(place.right() + 2 - depth, centre.y()), wanted) << depth;
            EXPECT_EQ(picture.pixelColor(centre.x(), place.top() - 2 + depth), wanted) << depth;
            EXPECT_EQ(picture.pixelColor(centre.x(), place.bottom() + 2 - depth), wanted) << depth;
        }
    }
}

TEST_F(FocusMarkInWindow, onlyOneWidgetAtATimeHasARing)
{
    tabTo(check);
    tabTo(table);
    tabTo(edit);
    EXPECT_EQ(window.findChildren<QFocusFrame*>().size(), 1);
}

TEST_F(FocusMarkInWindow, theMouseBringsNoneAndTakesItAway)
{
    QTest::mouseClick(edit, Qt::LeftButton);
    EXPECT_TRUE(edit->hasFocus());
    EXPECT_FALSE(ringShows());
    tabTo(check);
    EXPECT_TRUE(ringShows());
    QTest::mouseClick(check, Qt::LeftButton);
    EXPECT_TRUE(check->hasFocus());
    EXPECT_FALSE(ringShows());
}

TEST_F(FocusMarkInWindow, focusThatAProgramMovesIsShownAfterAKeyOnly)
{
    QTest::mouseClick(button, Qt::LeftButton);
    edit->setFocus();
    EXPECT_FALSE(ringShows());
    QTest::keyClick(edit, Qt::Key_A);
    check->setFocus();
    EXPECT_TRUE(ringShows());
    EXPECT_EQ(ringPlace(), placeOf(check).adjusted(-2, -2, 2, 2));
}

TEST_F(FocusMarkInWindow, itFollowsAWidgetThatMovesGrowsAndHides)
{
    tabTo(edit);
    window.resize(500, 600);
    QTest::qWait(0);
    EXPECT_EQ(ringPlace(), placeOf(edit).adjusted(-2, -2, 2, 2));
    edit->hide();
    ASSERT_EQ(QApplication::focusWidget(), button) << "Qt goes on to the next";
    EXPECT_EQ(ringPlace(), placeOf(button).adjusted(-2, -2, 2, 2));
}

TEST_F(FocusMarkInWindow, itGoesWithAWidgetThatIsDeleted)
{
    tabTo(edit);
    delete edit;
    EXPECT_FALSE(ringShows());
}

TEST_F(FocusMarkInWindow, itTakesNoMouseFocusOrRoomAndAssistiveToolsPassItBy)
{
    const QSize hint = window.sizeHint();
    tabTo(button);
    EXPECT_EQ(window.sizeHint(), hint);
    EXPECT_EQ(ring()->focusPolicy(), Qt::NoFocus);
    EXPECT_TRUE(ring()->testAttribute(Qt::WA_TransparentForMouseEvents));
    QAccessibleInterface* const tree = QAccessible::queryAccessibleInterface(&window);
    for (int i = 0; i < tree->childCount(); ++i)
        EXPECT_NE(tree->child(i)->object(), ring());
}

TEST_F(FocusMarkInWindow, inAScrolledAreaItScrollsAndEndsAtTheAreasEdge)
{
    QScrollArea area;
    area.setStyleSheet(Theme::filledMainStyleSheet());
    auto* inside = new QWidget;
    auto* row = new QHBoxLayout(inside);
    for (int i = 0; i < 20; ++i)
        row->addWidget(new QPushButton(QString::number(i)));
    area.setWidget(inside);
    area.resize(300, 100);
    area.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&area));
    auto* const first = inside->findChildren<QPushButton*>().first();
    first->clearFocus();
    first->setFocus(Qt::TabFocusReason);
    auto* const frame = area.findChild<QFocusFrame*>();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->parentWidget(), area.viewport());
    const auto expected = [&] {
        return QRect(first->mapTo(area.viewport(), QPoint()), first->size())
            .adjusted(-2, -2, 2, 2)
            .intersected(area.viewport()->rect());
    };
    EXPECT_EQ(frame->geometry(), expected());
    area.horizontalScrollBar()->setValue(20);
    EXPECT_EQ(frame->geometry(), expected());
    EXPECT_EQ(frame->geometry().left(), 0);
    area.horizontalScrollBar()->setValue(area.horizontalScrollBar()->maximum());
    EXPECT_FALSE(frame->isVisible());
}

TEST_F(FocusMarkInWindow, aCellEditorKeepsItsRingWhileTheTableScrolls)
{
    table->setRowCount(60);
    tabTo(table);
    table->setCurrentCell(0, 0);
    table->edit(table->currentIndex());
    QWidget* const editor = QApplication::focusWidget();
    ASSERT_NE(editor, table);
    auto* const frame = table->viewport()->findChild<QFocusFrame*>();
    ASSERT_TRUE(frame && frame->isVisible());
    table->verticalScrollBar()->setValue(1);
    const QRect around = editor->geometry().adjusted(-2, -2, 2, 2).intersected(table->viewport()->rect());
    EXPECT_TRUE(around.isEmpty() ? !frame->isVisible() : frame->geometry() == around);
}

TEST_F(FocusMarkInWindow, aSecondWindowHasItsOwnAndTheFirstLosesIt)
{
    tabTo(check);
    {
        QWidget second;
        auto* rows = new QVBoxLayout(&second);
        auto* other = new QPushButton("OK");
        rows->addWidget(other);
        second.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&second));
        other->setFocus();
        EXPECT_TRUE(second.findChild<QFocusFrame*>()->isVisible());
        EXPECT_FALSE(ringShows());
    }
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    EXPECT_TRUE(ringShows()) << "the keyboard came back";
}
