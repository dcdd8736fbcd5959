#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// Little-endian numbers out of raw bytes and into them, whatever the machine's own order is. Pure functions, any
// thread.

/// The number in the first 2, 4 or 8 bytes of `bytes`, low byte first.
inline uint16_t littleEndian16(const char* bytes)
{
    const auto low = static_cast<unsigned char>(bytes[0]);
    const auto high = static_cast<unsigned char>(bytes[1]);
    return static_cast<uint16_t>(low | (high << 8));
}
inline uint32_t littleEndian32(const char* bytes)
{
    return littleEndian16(bytes) | static_cast<uint32_t>(littleEndian16(bytes + 2)) << 16;
}
inline uint64_t littleEndian64(const char* bytes)
{
    return littleEndian32(bytes) | static_cast<uint64_t>(littleEndian32(bytes + 4)) << 32;
}

/// The low `Width` bytes of `value`, low byte first.
template <size_t Width> std::array<char, Width> littleEndianBytes(uint64_t value)
{
    static_assert(Width <= sizeof value);
    std::array<char, Width> bytes{};
    for (char& each : bytes) {
        each = static_cast<char>(value & 0xFF);
        value >>= 8;
    }
    return bytes;
}
