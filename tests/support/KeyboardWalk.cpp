#include "tests/support/KeyboardWalk.h"

#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <QWidget>

#include <gtest/gtest.h>

#include <algorithm>

namespace KeyboardWalk {

namespace {

constexpr int kMostSteps = 2000;

QString nameOf(const QWidget* widget)
{
    return QLatin1String(widget->metaObject()->className()) + QLatin1Char(' ') + widget->objectName();
}

QList<QWidget*> controlsOf(QWidget& window, Qt::FocusPolicy policy)
{
    QList<QWidget*> controls;
    for (QWidget* const each : window.findChildren<QWidget*>()) {
        if (each->window() == &window && each->isVisible() && each->isEnabled() && each->focusProxy() == nullptr
            && (each->focusPolicy() & policy) == policy)
            controls.append(each);
    }
    return controls;
}

} // namespace

QStringList round(QWidget& window, bool backwards)
{
    QStringList names;
    QList<const QWidget*> seen;
    const QWidget* const start = QApplication::focusWidget();
    if (start == nullptr || start->window() != &window) {
        ADD_FAILURE() << "nothing in the window has the keyboard";
        return {};
    }
    do {
        QWidget* const now = QApplication::focusWidget();
        EXPECT_FALSE(seen.contains(now)) << nameOf(now).toStdString() << " comes twice";
        if (seen.contains(now) || seen.size() > kMostSteps)
            return names;
        seen.append(now);
        names.append(nameOf(now));
        QTest::keyClick(now, backwards ? Qt::Key_Backtab : Qt::Key_Tab, backwards ? Qt::ShiftModifier : Qt::NoModifier);
    } while (QApplication::focusWidget() != start);
    return names;
}

void expectRoundBothWays(QWidget& window)
{
    if (QApplication::focusWidget() == nullptr || QApplication::focusWidget()->window() != &window)
        QTest::keyClick(&window, Qt::Key_Tab);
    const QStringList there = round(window);
    QStringList back = round(window, true);
    // Both begin where the keyboard was.
    std::reverse(back.begin(), back.end());
    if (!back.isEmpty())
        back.prepend(back.takeLast());
    EXPECT_EQ(there, back);
    for (const QWidget* const each : controlsOf(window, Qt::TabFocus))
        EXPECT_TRUE(there.contains(nameOf(each))) << nameOf(each).toStdString() << " is passed by";
}

QStringList namelessControls(QWidget& window)
{
    QStringList nameless;
    for (QWidget* const each : controlsOf(window, Qt::NoFocus)) {
        if (each->focusPolicy() == Qt::NoFocus)
            continue;
        QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(each);
        if (spoken == nullptr || spoken->text(QAccessible::Name).trimmed().isEmpty())
            nameless.append(nameOf(each));
    }
    return nameless;
}

} // namespace KeyboardWalk
