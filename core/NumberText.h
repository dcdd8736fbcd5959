#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers as text, the same under every locale of the process. The readers follow the standard string-to-number
/// operations in base 10: leading white space and one sign are allowed, text behind the number is ignored.
/// A NUL byte is text like any other. Pure functions, any thread.
/// The settings, which stand on no other folder, have their own way: PlainNumbers in app/settings/ConfigManager.cpp.
namespace NumberText {

/// A signed 32-bit number. Nothing if there are no digits or the value is out of range.
std::optional<int32_t> parseInt(std::string_view text);

/// An unsigned 64-bit number. A minus sign wraps: "-1" is the greatest value. Nothing if there are no digits or
/// they name more than 64 bits; narrower fields test their own range.
std::optional<uint64_t> parseUnsigned(std::string_view text);

/// A double: decimal, hexadecimal ("0x1.8p3"), "inf", "infinity" or "nan", in any case. Nothing if there is no
/// number or it is too great or too small for a normal double.
std::optional<double> parseDouble(std::string_view text);

/// Fixed notation with a point and exactly `decimals` digits behind it (0 to 15). The value is rounded by its exact
/// binary value, an exact half to the even digit. Infinities are "inf" and "-inf", not-a-number is "nan" or "-nan".
std::string formatFixed(double value, int decimals);

/// The text with a to z as A to Z; all other bytes stay.
std::string toUpperAscii(std::string_view text);

} // namespace NumberText
