#pragma once

#include <string_view>

/// Names of the iXML elements that are both read and edited, in upper case as recorders write them. The names alone:
/// what counts as a tag and where its value ends is another matter in the reader (IxmlTags) than in the edit.
namespace IxmlNames {

inline constexpr std::string_view kScene = "SCENE";
inline constexpr std::string_view kProject = "PROJECT";
inline constexpr std::string_view kTape = "TAPE";
inline constexpr std::string_view kTake = "TAKE";
inline constexpr std::string_view kNote = "NOTE";
inline constexpr std::string_view kCircled = "CIRCLED";
inline constexpr std::string_view kWildTrack = "WILD_TRACK";
inline constexpr std::string_view kTrack = "TRACK";
inline constexpr std::string_view kChannelIndex = "CHANNEL_INDEX";
inline constexpr std::string_view kName = "NAME";
inline constexpr std::string_view kFunction = "FUNCTION";

} // namespace IxmlNames
