#pragma once

#include "window/MetadataManagerWindow.h"

#include <QAbstractButton>
#include <QHeaderView>
#include <QLineEdit>
#include <QStringList>
#include <QTableWidget>
#include <QTest>
#include <QTextEdit>

#include <gtest/gtest.h>

#include <string>

/// The main window and what a user's hands do in it. A control that isn't there fails the test.
class WindowHands {
public:
    /// Shows the window with the files in it.
    explicit WindowHands(const QStringList& paths)
    {
        window.openFiles(paths);
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    template <typename Widget> Widget* widget(const char* name)
    {
        auto* found = window.findChild<Widget*>(name);
        EXPECT_TRUE(found) << name;
        return found;
    }

    QTableWidget* table() { return widget<QTableWidget>("fileTable"); }

    /// Selects exactly these rows by clicks.
    void select(const QList<int>& rows)
    {
        Qt::KeyboardModifiers modifiers;
        for (const int row : rows) {
            clickRow(row, modifiers);
            modifiers = Qt::ControlModifier;
        }
    }

    void selectAll()
    {
        table()->setFocus();
        QTest::keyClick(table(), Qt::Key_A, Qt::ControlModifier);
    }

    void clickRow(int row, Qt::KeyboardModifiers modifiers = {})
    {
        QTableWidgetItem* item = table()->item(row, 1);
        ASSERT_TRUE(item);
        table()->scrollToItem(item);
        QTest::mouseClick(table()->viewport(), Qt::LeftButton, modifiers, table()->visualItemRect(item).center());
    }

    /// Replaces the text of a line edit or of the notes by typing.
    void type(const char* name, const QString& text)
    {
        auto* edit = widget<QWidget>(name);
        edit->setFocus();
        QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClick(edit, Qt::Key_Delete);
        for (const QChar character : text) {
            if (character.unicode() < 0x80)
                QTest::keyClick(edit, character.toLatin1());
            else // As an input method brings it in.
                QTest::sendKeyEvent(QTest::Click, edit, Qt::Key_unknown, QString(character), Qt::NoModifier);
        }
    }

    QString text(const char* name) { return widget<QLineEdit>(name)->text(); }
    QString cell(int row, int column) { return table()->item(row, column)->text(); }

    void click(const char* button) { QTest::mouseClick(widget<QAbstractButton>(button), Qt::LeftButton); }
    bool enabled(const char* button) { return widget<QAbstractButton>(button)->isEnabled(); }

    MetadataManagerWindow window;
};
