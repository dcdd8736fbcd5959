#include "app/look/Theme.h"

#include <QCheckBox>
#include <QCryptographicHash>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QPushButton>
#include <QStringList>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTableWidget>
#include <QToolButton>
#include <QWidget>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace {

std::string sha256(const QString& text)
{
    return QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex().toStdString();
}

struct Sheet {
    const char* name; ///< Of the file with the wanted text, too.
    QString (*text)();
    int length; ///< In characters.
    const char* hash; ///< SHA-256 of the whole text, so that a slip in the file with the wanted text is found as well.
};

// A rule that is lost, added or moved anywhere is found here.
constexpr Sheet kSheets[] = {
    { "main-template", Theme::mainStyleSheet, 3897,
        "9d0c5b4be463c81da416f38a25d9c052eb2dc36b8f2af42003bb3ace1d4f3168" },
    { "main", Theme::filledMainStyleSheet, 4122, "9e0ddc9711d22096872137ffb0a3411606f5f8c23e946df2b565fde3c3fb3850" },
    { "file-table", Theme::fileTableStyleSheet, 570,
        "161a4d9cbd6ae72bd8e37aff1231f3a498da3bf5491d95666bf5e39118622944" },
    { "splitter-handle", Theme::splitterHandleStyleSheet, 102,
        "ee2fa7e764b637671326e156d935b4a988e22b5961ac451d0340c0b5d390af40" },
    { "timecode-button", Theme::timecodeButtonStyleSheet, 96,
        "552cc081134aac37f20ae54eb00cd3ac367e9e5817e3fb8ada5256284bbd123e" },
    { "play-button", Theme::playButtonStyleSheet, 205,
        "e3290dd9abbf19a4a37006c9d876061ab2495ba1dcb0289a61cacaeb5f8b34b1" },
};

/// The rules of a sheet, one a line: each ends with its closing brace.
QStringList rulesOf(QString sheet)
{
    return sheet.replace(u'}', QStringLiteral("}\n")).split(u'\n', Qt::SkipEmptyParts);
}

/// The rules in sheets/<name>.css, one a line.
QStringList wantedRules(const char* name)
{
    QFile file(QStringLiteral(SHEETS "/%1.css").arg(QLatin1String(name)));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name;
    return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
}

/// The first line in which the rules differ, as it is and as it is wanted; empty if they are equal.
std::string firstDifference(const QStringList& rules, const QStringList& wanted)
{
    for (qsizetype i = 0; i < std::max(rules.size(), wanted.size()); ++i) {
        const QString is = rules.value(i, QStringLiteral("(end)"));
        const QString wish = wanted.value(i, QStringLiteral("(end)"));
        if (is != wish)
            return "line " + std::to_string(i + 1) + " is \"" + is.toStdString() + "\", wanted is \""
                + wish.toStdString() + "\"";
    }
    return {};
}

/// A window in the program's look.
class ThemedWindow : public testing::Test {
protected:
    ThemedWindow()
    {
        window.setStyleSheet(Theme::filledMainStyleSheet());
        window.resize(400, 300);
    }

    QString colourAt(QWidget& widget, QPoint place) { return widget.grab().toImage().pixelColor(place).name(); }

    /// True if a pixel of exactly that colour is in the widget's picture.
    bool shows(QWidget& widget, const char* colour)
    {
        const QImage picture = widget.grab().toImage();
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                if (picture.pixelColor(x, y).name() == QLatin1String(colour))
                    return true;
            }
        }
        return false;
    }

    QWidget window;
};

} // namespace

TEST(Theme, everySheetIsExactToTheCharacter)
{
    for (const Sheet& sheet : kSheets) {
        EXPECT_EQ(firstDifference(rulesOf(sheet.text()), wantedRules(sheet.name)), "") << sheet.name;
        EXPECT_EQ(sheet.text().size(), sheet.length) << sheet.name;
        EXPECT_EQ(sha256(sheet.text()), sheet.hash) << sheet.name;
    }
}

TEST(Theme, aDifferenceIsToldByItsLine)
{
    const QStringList wanted{ "a { b }", "c { d }" };
    EXPECT_EQ(firstDifference(rulesOf("a { b }c { d }"), wanted), "");
    EXPECT_EQ(firstDifference(rulesOf("a { b }c { e }"), wanted), "line 2 is \"c { e }\", wanted is \"c { d }\"");
    EXPECT_EQ(firstDifference(rulesOf("a { b }"), wanted), "line 2 is \"(end)\", wanted is \"c { d }\"");
    EXPECT_EQ(firstDifference(rulesOf("a { b }c { d }e"), wanted), "line 3 is \"e\", wanted is \"(end)\"");
    EXPECT_NE(firstDifference(rulesOf("a { b } c { d }"), wanted), "");
}

TEST(Theme, theNineColoursHaveTheirValues)
{
    EXPECT_STREQ(Theme::kBgWindow, "#1e1e1e");
    EXPECT_STREQ(Theme::kTextPrimary, "#f0f0f0");
    EXPECT_STREQ(Theme::kBorder, "#444444");
    EXPECT_STREQ(Theme::kAccent, "#0A84FF");
    EXPECT_STREQ(Theme::kAccentTeal, "#55aaaa");
    EXPECT_STREQ(Theme::kAccentTealHi, "#66cccc");
    EXPECT_STREQ(Theme::kBgSurface, "#2a2a2a");
    EXPECT_STREQ(Theme::kDanger, "#ff3333");
    EXPECT_STREQ(Theme::kDangerBorder, "#ff4444");
}

TEST_F(ThemedWindow, aDisabledButtonIsGreyOnNearlyBlack)
{
    QPushButton button("\u2588\u2588\u2588\u2588", &window); // Blocks, so that some pixels have the pure text colour.
    button.resize(200, 40);
    EXPECT_EQ(colourAt(button, { 8, 20 }), "#3a3a3a");
    EXPECT_TRUE(shows(button, "#f0f0f0"));
    button.setEnabled(false);
    EXPECT_EQ(colourAt(button, { 8, 20 }), "#1a1a1a");
    EXPECT_TRUE(shows(button, "#666666"));
    EXPECT_FALSE(shows(button, "#f0f0f0"));
}

TEST_F(ThemedWindow, aReadOnlyLineEditHasABackgroundOfItsOwn)
{
    QLineEdit edit(&window);
    edit.resize(200, 40);
    EXPECT_EQ(colourAt(edit, { 100, 20 }), "#2d2d2d");
    edit.setReadOnly(true);
    EXPECT_EQ(colourAt(edit, { 100, 20 }), "#333333");
}

TEST_F(ThemedWindow, aCheckedBoxIsAPlainTealFillWithALighterBorder)
{
    QCheckBox box(&window);
    box.resize(200, 40);
    QStyleOptionButton option;
    option.initFrom(&box);
    const QRect indicator = box.style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, &box);
    EXPECT_EQ(colourAt(box, indicator.center()), "#2d2d2d");
    box.setChecked(true);
    EXPECT_TRUE(shows(box, Theme::kAccentTealHi));
    for (const QPoint offset : { QPoint(0, 0), QPoint(-4, 2), QPoint(-1, 4), QPoint(4, -4) })
        EXPECT_EQ(colourAt(box, indicator.center() + offset), Theme::kAccentTeal) << "no mark inside";
}

TEST_F(ThemedWindow, aSelectedRowIsPurpleWithWhiteTextAndThePlayButtonStaysTransparent)
{
    QTableWidget table(2, 2, &window);
    table.setStyleSheet(Theme::fileTableStyleSheet());
    table.setSelectionBehavior(QAbstractItemView::SelectRows);
    table.setFocusPolicy(Qt::NoFocus);
    table.resize(400, 200);
    for (int row = 0; row < 2; ++row)
        table.setItem(row, 1, new QTableWidgetItem("\u2588\u2588"));
    auto* button = new QToolButton;
    button->setStyleSheet(Theme::playButtonStyleSheet());
    table.setCellWidget(0, 0, button);
    EXPECT_EQ(colourAt(*table.viewport(), table.visualItemRect(table.item(1, 1)).center() + QPoint(30, 0)), "#ffffff");

    table.selectRow(0);
    const QRect cell = table.visualRect(table.model()->index(0, 0));
    EXPECT_EQ(colourAt(*table.viewport(), cell.center()), "#9b59b6");
    const QRect text = table.visualItemRect(table.item(0, 1));
    const QImage picture = table.viewport()->grab(text).toImage();
    bool white = false;
    for (int x = 0; x < picture.width(); ++x)
        white = white || picture.pixelColor(x, picture.height() / 2).name() == "#ffffff";
    EXPECT_TRUE(white);
}
