#include "app/settings/ConfigManager.h"

#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

namespace {

struct OwnSettings : ConfigManager { };

/// Makes the process German, with a locale of its own when the machine has none. False if that needs tools that
/// aren't installed.
bool setCommaLocale(const TempFolder& folder)
{
    if (std::setlocale(LC_ALL, "de_DE.UTF-8"))
        return true;
    const std::string make = "localedef -i de_DE -f UTF-8 '" + folder.file("de_DE.UTF-8") + "' >/dev/null 2>&1";
    if (std::system(make.c_str()) != 0)
        return false;
    setenv("LOCPATH", folder.path().c_str(), 1);
    return std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr;
}

class ConfigManagerLocaleTest : public testing::Test {
protected:
    void SetUp() override
    {
        setenv("HOME", folder.path().c_str(), 1);
        if (!setCommaLocale(folder))
            GTEST_SKIP() << "no locale with a decimal comma, and no localedef to make one";
        ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    }
    void TearDown() override { std::setlocale(LC_ALL, "C"); }

    TempFolder folder;
};

} // namespace

TEST_F(ConfigManagerLocaleTest, numbersKeepTheirPoint)
{
    OwnSettings settings;
    settings.setFloat("a", 23.976f);
    EXPECT_EQ(settings.getString("a", ""), "23.976000");
    EXPECT_EQ(settings.getFloat("a", 0.0f), 23.976f);
    settings.setString("b", "1,5");
    EXPECT_EQ(settings.getFloat("b", 0.0f), 1.0f);
}

TEST_F(ConfigManagerLocaleTest, integersHaveNoGroups)
{
    OwnSettings settings;
    settings.setInt("a", 1234567);
    EXPECT_EQ(settings.getString("a", ""), "1234567");
    settings.setString("b", "1.234");
    EXPECT_EQ(settings.getInt("b", 0), 1);
}

TEST_F(ConfigManagerLocaleTest, theProcessKeepsItsLocale)
{
    OwnSettings settings;
    settings.setFloat("a", 0.5f);
    EXPECT_EQ(settings.getFloat("a", 0.0f), 0.5f);
    EXPECT_STREQ(std::localeconv()->decimal_point, ",");
}
