#include "app/Theme.h"

#include <QCryptographicHash>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QWidget>

#include <gtest/gtest.h>

namespace {

std::string sha256(const QString& text)
{
    return QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex().toStdString();
}

struct Sheet {
    const char* name;
    QString (*text)();
    int length;
    const char* hash;
};

// Worked out apart from the program, from the rules written down as a table.
constexpr Sheet kSheets[] = {
    {"main template", Theme::mainStyleSheet, 3897, "9d0c5b4be463c81da416f38a25d9c052eb2dc36b8f2af42003bb3ace1d4f3168"},
    {"main sheet", Theme::filledMainStyleSheet, 4122,
        "9e0ddc9711d22096872137ffb0a3411606f5f8c23e946df2b565fde3c3fb3850"},
    {"file table", Theme::fileTableStyleSheet, 570, "161a4d9cbd6ae72bd8e37aff1231f3a498da3bf5491d95666bf5e39118622944"},
    {"splitter handle", Theme::splitterHandleStyleSheet, 102,
        "ee2fa7e764b637671326e156d935b4a988e22b5961ac451d0340c0b5d390af40"},
    {"timecode button", Theme::timecodeButtonStyleSheet, 96,
        "552cc081134aac37f20ae54eb00cd3ac367e9e5817e3fb8ada5256284bbd123e"},
    {"play button", Theme::playButtonStyleSheet, 205,
        "e3290dd9abbf19a4a37006c9d876061ab2495ba1dcb0289a61cacaeb5f8b34b1"},
};

} // namespace

TEST(Theme, everySheetIsExactToTheCharacter)
{
    for (const Sheet& sheet : kSheets) {
        EXPECT_EQ(sheet.text().size(), sheet.length) << sheet.name;
        EXPECT_EQ(sha256(sheet.text()), sheet.hash) << sheet.name;
    }
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
