#include "cli/PlainText.h"

#include <cstdint>
#include <cstring>

namespace {

constexpr char kReplacement[] = "\xEF\xBF\xBD";
constexpr uint32_t kLastCharacter = 0x10FFFF;
constexpr uint32_t kFirstSurrogate = 0xD800;
constexpr uint32_t kLastSurrogate = 0xDFFF;

unsigned char byteAt(std::string_view text, size_t index)
{
    return static_cast<unsigned char>(text[index]);
}

// Bytes that a character takes by its first one; 0 if no character begins so.
size_t lengthBy(unsigned char first)
{
    if (first < 0x80)
        return 1;
    if (first >= 0xC2 && first < 0xE0)
        return 2;
    if (first >= 0xE0 && first < 0xF0)
        return 3;
    return first >= 0xF0 && first < 0xF5 ? 4 : 0;
}

// Bytes of the character at the start of `text`, which isn't empty; 0 if there is none.
size_t characterBytes(std::string_view text)
{
    constexpr uint32_t kLowest[] = { 0, 0, 0x80, 0x800, 0x10000 };
    const size_t length = lengthBy(byteAt(text, 0));
    if (length < 2)
        return length;
    if (length > text.size())
        return 0;
    uint32_t character = byteAt(text, 0) & (0x7Fu >> length);
    for (size_t i = 1; i < length; ++i) {
        if ((byteAt(text, i) & 0xC0) != 0x80)
            return 0;
        character = character << 6 | (byteAt(text, i) & 0x3Fu);
    }
    const bool surrogate = character >= kFirstSurrogate && character <= kLastSurrogate;
    return character < kLowest[length] || character > kLastCharacter || surrogate ? 0 : length;
}

// Bytes at the start of `text` that are ASCII, counted in whole words; most texts have no others.
size_t asciiBytes(std::string_view text)
{
    constexpr uint64_t kHighBits = 0x8080808080808080;
    size_t count = 0;
    for (uint64_t word = 0; count + sizeof word <= text.size(); count += sizeof word) {
        std::memcpy(&word, text.data() + count, sizeof word);
        if ((word & kHighBits) != 0)
            break;
    }
    return count;
}

std::string escape(unsigned char byte)
{
    constexpr char kDigits[] = "0123456789abcdef";
    if (byte == '\n')
        return "\\n";
    if (byte == '\r')
        return "\\r";
    if (byte == '\t')
        return "\\t";
    return { '\\', 'x', kDigits[byte >> 4], kDigits[byte & 0xF] };
}

} // namespace

std::string oneLine(std::string_view text)
{
    std::string result;
    for (const char each : text) {
        const auto byte = static_cast<unsigned char>(each);
        if (byte < 0x20 || byte == 0x7F)
            result += escape(byte);
        else
            result += each;
    }
    return result;
}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        text.remove_prefix(asciiBytes(text));
        if (text.empty())
            break;
        const size_t length = characterBytes(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string asUtf8(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const size_t length = characterBytes(text);
        if (length == 0)
            result += kReplacement;
        else
            result += text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}
