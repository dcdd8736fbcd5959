#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Builds JSON on one line: keys in the order of the calls, whole numbers with all their digits, UTF-8 throughout.
/// The caller sees to it that what it builds is well-formed: a `key` in front of each value of an object.
/// Thread: any; one object belongs to one.
class JsonText {
public:
    /// Appends to `target`, which must outlive the object.
    explicit JsonText(std::string& target) : out(target) { }

    JsonText& beginObject() { return open('{'); }
    JsonText& endObject() { return close('}'); }
    JsonText& beginArray() { return open('['); }
    JsonText& endArray() { return close(']'); }
    JsonText& key(std::string_view name);
    /// Bytes that belong to no character of UTF-8 become U+FFFD.
    JsonText& text(std::string_view value);
    JsonText& number(uint64_t value);
    /// The fewest digits that give the same number back; null if it isn't finite.
    JsonText& real(double value);
    JsonText& flag(bool value);
    JsonText& none();

private:
    JsonText& open(char bracket);
    JsonText& close(char bracket);
    void separate();
    void appendQuoted(std::string_view utf8);

    std::string& out;
    bool needsComma = false;
};
