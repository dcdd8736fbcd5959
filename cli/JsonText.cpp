#include "cli/JsonText.h"

#include "cli/PlainText.h"

#include <array>
#include <charconv>
#include <cmath>

JsonText& JsonText::key(std::string_view name)
{
    separate();
    appendQuoted(name);
    out += ':';
    needsComma = false;
    return *this;
}

JsonText& JsonText::text(std::string_view value)
{
    separate();
    if (isUtf8(value))
        appendQuoted(value);
    else
        appendQuoted(asUtf8(value));
    return *this;
}

JsonText& JsonText::number(uint64_t value)
{
    separate();
    out += std::to_string(value);
    return *this;
}

JsonText& JsonText::real(double value)
{
    if (!std::isfinite(value))
        return none();
    separate();
    std::array<char, 32> digits{}; // The longest double has 24 characters.
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    out.append(digits.data(), end.ptr);
    return *this;
}

JsonText& JsonText::flag(bool value)
{
    separate();
    out += value ? "true" : "false";
    return *this;
}

JsonText& JsonText::none()
{
    separate();
    out += "null";
    return *this;
}

JsonText& JsonText::open(char bracket)
{
    separate();
    out += bracket;
    needsComma = false;
    return *this;
}

JsonText& JsonText::close(char bracket)
{
    out += bracket;
    needsComma = true;
    return *this;
}

void JsonText::separate()
{
    if (needsComma)
        out += ',';
    needsComma = true;
}

void JsonText::appendQuoted(std::string_view utf8)
{
    constexpr char kDigits[] = "0123456789abcdef";
    out += '"';
    for (const char each : utf8) {
        const auto byte = static_cast<unsigned char>(each);
        if (each == '"' || each == '\\')
            out.append({ '\\', each });
        else if (each == '\n')
            out += "\\n";
        else if (each == '\r')
            out += "\\r";
        else if (each == '\t')
            out += "\\t";
        else if (byte < 0x20 || byte == 0x7F)
            out.append("\\u00").append({ kDigits[byte >> 4], kDigits[byte & 0xF] });
        else
            out += each;
    }
    out += '"';
}
