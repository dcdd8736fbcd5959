#pragma once

#include <cstdint>

/// Where the fields of a `bext` payload stand, for the reader and the writer alike. Each field begins where the one
/// before it ends; offsets and sizes are bytes from the payload's first one. Texts are filled up with NUL and need
/// none at their end; numbers are little-endian.
namespace BextLayout {

struct Field {
    uint32_t offset = 0;
    uint32_t size = 0;

    /// Offset behind the field's last byte.
    constexpr uint32_t end() const { return offset + size; }
};

inline constexpr Field kDescription{ 0, 256 };
inline constexpr Field kOriginator{ kDescription.end(), 32 };
inline constexpr Field kOriginatorReference{ kOriginator.end(), 32 };
inline constexpr Field kOriginationDate{ kOriginatorReference.end(), 10 };
inline constexpr Field kOriginationTime{ kOriginationDate.end(), 8 };
/// Two numbers of four bytes, the low half first, and so one of eight.
inline constexpr Field kTimeReference{ kOriginationTime.end(), 8 };
inline constexpr Field kVersion{ kTimeReference.end(), 2 };
inline constexpr Field kUmid{ kVersion.end(), 64 };
/// Whatever later versions put here; neither read nor written.
inline constexpr Field kReserved{ kUmid.end(), 190 };

/// Bytes in front of the coding history, which takes the rest of the payload.
inline constexpr uint32_t kFixedBytes = kReserved.end();
/// What the reader takes off the payload's size to have that of the coding history: eight more than the fixed bytes,
/// so the history is read eight bytes short, and not at all in a payload that is no longer than this.
inline constexpr uint32_t kHistoryReserve = kFixedBytes + 8;

static_assert(kTimeReference.offset == 338);
static_assert(kVersion.offset == 346);
static_assert(kFixedBytes == 602);

} // namespace BextLayout
