#include "core/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// What stands behind white space and a sign, and whether the sign was a minus.
struct Signed {
    std::string_view rest;
    bool negative = false;
};

Signed skipSign(std::string_view text)
{
    const size_t begin = text.find_first_not_of(kWhiteSpace);
    if (begin == std::string_view::npos)
        return {};
    text.remove_prefix(begin);
    const bool negative = text.front() == '-';
    if (negative || text.front() == '+')
        text.remove_prefix(1);
    return { text, negative };
}

std::optional<uint64_t> parseDigits(std::string_view text)
{
    uint64_t value = 0;
    if (text.empty() || !isDigit(text.front()))
        return std::nullopt;
    if (std::from_chars(text.data(), text.data() + text.size(), value).ec != std::errc{})
        return std::nullopt;
    return value;
}

// "0x" with the beginning of a hexadecimal number behind it; from_chars by itself would take "0xinf", too.
bool hasHexPrefix(std::string_view text)
{
    constexpr std::string_view kBeginnings = ".0123456789abcdefABCDEF";
    return text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')
        && kBeginnings.find(text[2]) != std::string_view::npos;
}

std::optional<double> parseMagnitude(std::string_view text)
{
    if (text.empty() || text.front() == '-')
        return std::nullopt;
    const char* const end = text.data() + text.size();
    double value = 0.0;
    std::errc error = std::errc::invalid_argument;
    if (hasHexPrefix(text))
        error = std::from_chars(text.data() + 2, end, value, std::chars_format::hex).ec;
    // A prefix without hexadecimal digits is the number 0 with an "x" behind it.
    if (error == std::errc::invalid_argument)
        error = std::from_chars(text.data(), end, value).ec;
    if (error != std::errc{} || std::fpclassify(value) == FP_SUBNORMAL)
        return std::nullopt;
    return value;
}

} // namespace

namespace NumberText {

std::optional<int32_t> parseInt(std::string_view text)
{
    const Signed number = skipSign(text);
    const std::optional<uint64_t> magnitude = parseDigits(number.rest);
    const uint64_t limit = number.negative ? uint64_t{ 1 } << 31 : (uint64_t{ 1 } << 31) - 1;
    if (!magnitude || *magnitude > limit)
        return std::nullopt;
    const int64_t value = static_cast<int64_t>(*magnitude);
    return static_cast<int32_t>(number.negative ? -value : value);
}

std::optional<uint64_t> parseUnsigned(std::string_view text)
{
    const Signed number = skipSign(text);
    const std::optional<uint64_t> magnitude = parseDigits(number.rest);
    if (!magnitude)
        return std::nullopt;
    return number.negative ? uint64_t{ 0 } - *magnitude : *magnitude;
}

std::optional<double> parseDouble(std::string_view text)
{
    const Signed number = skipSign(text);
    const std::optional<double> magnitude = parseMagnitude(number.rest);
    if (!magnitude)
        return std::nullopt;
    return number.negative ? -*magnitude : *magnitude;
}

std::string formatFixed(double value, int decimals)
{
    std::array<char, std::numeric_limits<double>::max_exponent10 + 20> digits{};
    const std::to_chars_result result
        = std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, decimals);
    return { digits.data(), result.ptr };
}

std::string toUpperAscii(std::string_view text)
{
    std::string upper(text);
    for (char& c : upper) {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    }
    return upper;
}

} // namespace NumberText
