#include "core/NumberText.h"

#include "tests/support/CommaLocale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>

namespace {

// What the standard conversion makes of the text under the C locale; nothing if it throws.
template <typename Convert>
auto standard(Convert convert, const std::string& text) -> std::optional<decltype(convert(text))>
{
    try {
        return convert(text);
    } catch (const std::invalid_argument&) {
        return std::nullopt;
    } catch (const std::out_of_range&) {
        return std::nullopt;
    }
}

bool same(const std::optional<double>& one, const std::optional<double>& other)
{
    if (!one || !other)
        return one.has_value() == other.has_value();
    if (std::isnan(*one) || std::isnan(*other))
        return std::isnan(*one) && std::isnan(*other);
    return std::memcmp(&*one, &*other, sizeof(double)) == 0;
}

void expectStandard(const std::string& text)
{
    EXPECT_EQ(NumberText::parseInt(text), standard([](const std::string& t) { return std::stoi(t); }, text)) << text;
    EXPECT_EQ(NumberText::parseUnsigned(text), standard([](const std::string& t) { return std::stoul(t); }, text))
        << text;
    EXPECT_TRUE(same(NumberText::parseDouble(text), standard([](const std::string& t) { return std::stod(t); }, text)))
        << text;
}

class ConvertsLikeTheStandard : public testing::TestWithParam<const char*> { };

} // namespace

TEST_P(ConvertsLikeTheStandard, inAllThreeTypes)
{
    expectStandard(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Texts, ConvertsLikeTheStandard,
    testing::Values("", " ", "0", "7", "+7", "-7", "- 7", "+-7", "-+7", "--7", " \t\n\v\f\r12x",
        "\xC2\xA0"
        "12",
        "007", "0x10", "12 34", "1,5", "1.5", ".5", "5.", ".", "-.5", "+.5", "1e3", "1e", "1e+", "1e-2", "1E2",
        "2147483647", "2147483648", "-2147483648", "-2147483649", "4294967295", "4294967296", "-1", "-0",
        "18446744073709551615", "18446744073709551616", "-18446744073709551615", "-18446744073709551616",
        "99999999999999999999999999", "1e308", "1e309", "-1e309", "1e-307", "1e-320", "1e-400", "4.9e-324",
        "2.2250738585072014e-308", "0e-999999999999", "1e999999999999", "inf", "-inf", "INFINITY", "infinit", "nan",
        "-nan", "NaN(12)", "nan(", "0x", "0x.p1", "0xg", "0x1.8p3", "-0X1P-3", "+0xA.8", "0x-1", "0x+1", "0x1p2000",
        "0xinf", "0xnan", "23.976", "23.976-ND", "24000/1001", "e5", "x", "1_000", "\x00"));

TEST(NumberText, randomTextsConvertLikeTheStandard)
{
    constexpr char kLetters[] = " +-.0123456789xXeEpPaAfFnNiI/";
    std::mt19937 random(11);
    for (int round = 0; round < 5000; ++round) {
        std::string text;
        for (size_t length = random() % 9; length > 0; --length)
            text += kLetters[random() % (sizeof kLetters - 1)];
        expectStandard(text);
    }
}

TEST(NumberText, nulEndsANumberLikeAnyOtherText)
{
    EXPECT_EQ(NumberText::parseInt(std::string_view("1\0002", 3)), 1);
    EXPECT_EQ(NumberText::parseDouble(std::string_view("2.5\0001", 5)), 2.5);
}

TEST(NumberText, fixedNotationHasExactlyTheDecimalsAskedFor)
{
    EXPECT_EQ(NumberText::formatFixed(25.0, 3), "25.000");
    EXPECT_EQ(NumberText::formatFixed(24000.0 / 1001.0, 3), "23.976");
    EXPECT_EQ(NumberText::formatFixed(-0.5, 3), "-0.500");
    EXPECT_EQ(NumberText::formatFixed(7.0, 0), "7");
    EXPECT_EQ(NumberText::formatFixed(1e300, 3).size(), 305u);
}

TEST(NumberText, exactHalvesGoToTheEvenDigit)
{
    EXPECT_EQ(NumberText::formatFixed(63.8125, 3), "63.812");
    EXPECT_EQ(NumberText::formatFixed(0.0625, 3), "0.062");
    EXPECT_EQ(NumberText::formatFixed(-0.0625, 3), "-0.062");
    EXPECT_EQ(NumberText::formatFixed(0.1875, 3), "0.188");
    EXPECT_EQ(NumberText::formatFixed(2.5, 0), "2");
    EXPECT_EQ(NumberText::formatFixed(3.5, 0), "4");
}

TEST(NumberText, whatOnlyLooksLikeAHalfIsRoundedByItsExactValue)
{
    EXPECT_EQ(NumberText::formatFixed(1.0005, 3), "1.000"); // The double lies below.
    EXPECT_EQ(NumberText::formatFixed(2.0005, 3), "2.001"); // This one lies above.
}

TEST(NumberText, infiniteAndNotANumberAreWords)
{
    EXPECT_EQ(NumberText::formatFixed(std::numeric_limits<double>::infinity(), 3), "inf");
    EXPECT_EQ(NumberText::formatFixed(std::numeric_limits<double>::quiet_NaN(), 3), "nan");
}

TEST(NumberText, commaLocaleChangesNothing)
{
    const CommaLocale comma;
    if (!comma.works())
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    ASSERT_EQ(std::stod("23,5"), 23.5);
    EXPECT_EQ(NumberText::parseDouble("23.976"), 23.976);
    EXPECT_EQ(NumberText::parseDouble("23,976"), 23.0);
    EXPECT_EQ(NumberText::formatFixed(23.976, 3), "23.976");
    EXPECT_EQ(NumberText::parseUnsigned("1.000"), 1u);
}

TEST(NumberText, onlyAsciiLettersAreFolded)
{
    EXPECT_EQ(NumberText::toUpperAscii("aZ09_\xC3\xA4{`"), "AZ09_\xC3\xA4{`");
}
