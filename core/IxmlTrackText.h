#pragma once

#include "core/BwfMetadata.h"

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The iXML text while its tracks are edited. Every edit gives the bytes that plain searches in the text as it stands
/// at that moment would give; many edits of a large text cost little more than one walk over it.
///
/// 1. The text is cut in front of each tag that an edit looks for: the opening and closing TRACK, NAME and FUNCTION,
///    and each CHANNEL_INDEX element. No tag straddles a cut, so a search part by part finds what a search in the
///    whole text finds.
/// 2. Of each part it is noted which tags it holds, so that a search goes straight to where it ends.
/// 3. An edit rewrites the part of the opening tag. Parts that it swallows stay as empty ones, so that nothing moves
///    and nothing is numbered anew.
/// 4. A new value stands between a whole opening and a whole closing tag, so it never forms a tag together with its
///    neighbours. One that holds tags itself isn't cut: its part then holds several, which are found by plain search.
///
/// Microseconds to rename every track by plain searches, by the index with a tree of shifted positions that stood here
/// before, and in parts (g++ 12, -O3; bench/core/editTracks.cpp):
///
///     tracks                                plain       index   parts
///     8                                       3.5         3.4     2.6
///     16                                      9.6         5.9     4.8
///     32                                       33          11      10
///     64                                      109          21      20
///     1,000                                22,000         710     320
///     20,000                                    -      16,200   7,700
///     2,000, with names that hold tags    104,000     535,000     730
///     8,000, with names that hold tags          -  10,100,000   2,900
///     20,000, names never closed                -      23,300  63,100
///     20,000, tracks closed at the end          -      17,300  31,300
///     20,000 numbers in one track               -       2,800  35,100
///
/// One thread; belongs to one edit.
class IxmlTrackText {
public:
    /// Copies what it needs; `ixml` may go afterwards.
    explicit IxmlTrackText(std::string_view ixml);

    /// Replaces what NAME and FUNCTION say, even by an empty text, in the first track that lists the channel number in
    /// plain decimal. Each must begin in front of where the track ended before its name changed. False if neither was
    /// replaced; the text is then as it was.
    bool setTrack(const BwfTrack& wanted);

    /// The text with all edits in it.
    std::string edited() const;

private:
    /// What is noted of a part. The opening and the closing tag of an element stand side by side.
    enum Content : uint8_t {
        TrackOpen,
        TrackClose,
        NameOpen,
        NameClose,
        FunctionOpen,
        FunctionClose,
        ChannelIndex, // The whole element.
        Bytes, // Anything at all.
        kContents
    };

    /// Where a tag begins. In the order of the text.
    struct Place {
        size_t part = 0;
        size_t offset = 0; // Bytes from the start of the part.
        // NOLINTNEXTLINE(modernize-use-nullptr): the comparison with 0 is written by the compiler, not here.
        auto operator<=>(const Place&) const = default;
    };

    /// The notes of `kPerBlock` parts in a row.
    struct Block {
        std::array<uint64_t, kContents> holders{}; // A bit for each part that holds it.
        size_t bytes = 0; // Of all their texts.
    };

    static constexpr size_t kPerBlock = 64;
    static constexpr size_t kNoPart = SIZE_MAX;

    static Content tagAt(std::string_view text, int32_t& channelIndex);
    template <class OnTag> static void forEachTag(std::string_view text, OnTag onTag);

    void noteTag(size_t part, Content tag, int32_t channelIndex);
    void noteBytes(size_t part);
    void noteAll(size_t part);
    void forgetAll(size_t part);
    size_t firstPartFrom(size_t part, Content content, size_t limit = SIZE_MAX) const;
    size_t lastPartUpTo(size_t part, Content content) const;

    std::optional<Place> firstNumber(int32_t channelIndex) const;
    std::optional<Place> firstFrom(Place from, Content tag, size_t limit = SIZE_MAX) const;
    std::optional<Place> lastUpTo(Place from, Content tag) const;
    size_t distance(Place from, Place to) const;

    bool setElement(Place track, Content openTag, size_t limit, const std::string& value);
    void replace(Place from, Place to, std::string_view value);
    void replaceInPart(size_t part, size_t begin, size_t end, std::string_view value);

    std::vector<std::string> parts;
    std::vector<Block> blocks;
    std::set<std::pair<int32_t, size_t>> numbers; // Channel numbers, each with a part that lists it.
};
