#pragma once

#include "core/BwfMetadata.h"

#include <string>
#include <string_view>

/// A text that Description and iXML both hold, with its name in messages.
struct SharedText {
    const char* name;
    std::string BwfMetadata::*field;
};

/// All that are read back as they were written. The user bits, which may get a "$", are compared by `sameUbits`.
inline constexpr SharedText kSharedTexts[] = {
    { "scene", &BwfMetadata::scene },
    { "take", &BwfMetadata::take },
    { "tape", &BwfMetadata::tape },
    { "project", &BwfMetadata::project },
    { "note", &BwfMetadata::note },
};

/// True if both are the same user bits, with or without the "$" that may stand in front. Any thread.
inline bool sameUbits(std::string_view first, std::string_view second)
{
    const auto plain = [](std::string_view text) { return text.substr(text.starts_with('$') ? 1 : 0); };
    return plain(first) == plain(second);
}
