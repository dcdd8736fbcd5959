#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// The literal tags of an iXML text that the reader looks for, found in one pass. No XML: a tag is exactly "<NAME>" in
/// one of the spellings below, whatever stands around it.
class IxmlTags {
public:
    /// The elements with a value. Each is known in upper and in lower case, but not in mixed case.
    enum class Element : uint8_t {
        TimestampSampleRate,
        SamplesSinceMidnightHi,
        SamplesSinceMidnightLo,
        TimecodeRate,
        TimecodeFlag,
        Ubits,
        OriginationTime,
        TimeReferenceLow,
        TimeReferenceHigh,
        Scene,
        Project,
        Tape,
        Take,
        Note,
        Circled,
        WildTrack,
        ChannelIndex,
        Name,
        Function,
        Count
    };

    /// The tags that bound a block. Where a block has two spellings, the second counts only without the first.
    enum class Mark : uint8_t {
        SpeedBegin,
        SpeedBegin2,
        SpeedEnd,
        SpeedEnd2,
        BextBegin,
        BextBegin2,
        BextEnd,
        BextEnd2,
        TrackListBegin,
        TrackListBegin2,
        TrackListEnd,
        TrackListEnd2,
        TrackBegin,
        TrackEnd,
        Count
    };

    /// Index of a tag in the order of the text, or kNone.
    using Index = size_t;
    static constexpr Index kNone = SIZE_MAX;

    /// Tags from `begin` up to but without `end`.
    struct Range {
        Index begin = 0;
        Index end = 0;
    };

    /// `text` must outlive the object.
    explicit IxmlTags(std::string_view text);

    /// All tags.
    Range all() const { return { 0, tags.size() }; }
    /// The first `mark` at or behind `from`; kNone if there is none.
    Index find(Mark mark, Index from = 0) const;
    /// The first `mark` at or behind `from`, else the first `second` there; kNone if there is neither.
    Index find(Mark mark, Mark second, Index from) const;

    /// The trimmed text behind the element's first tag in `range`, up to the next "<" of any kind. The upper-case
    /// spelling goes before an earlier lower-case one. Empty if there is no tag, or no "<" in the range behind it.
    std::string_view value(Element element, Range range) const;

    /// The same for ranges that all end at `end` and begin further and further on: each tag is looked at once.
    class Cursor {
    public:
        Cursor(const IxmlTags& tags, Element element, Index end);
        /// The value in the range from `begin` on, which must not be less than in the call before.
        std::string_view value(Index begin);

    private:
        struct Spelling {
            uint8_t kind = 0;
            Index at = kNone; // The tag found last; kNone before the first look.
            std::string_view value;
        };
        bool advance(Spelling& spelling, Index begin) const;

        const IxmlTags& source;
        Index rangeEnd;
        Spelling upper;
        Spelling lower;
    };

private:
    struct Tag {
        size_t begin = 0; // Of its "<".
        size_t valueBegin = 0;
        size_t valueEnd = 0; // The next "<"; valueBegin if there is none.
        uint8_t kind = 0;
    };

    // Each element has two kinds, upper case first; the marks follow.
    static constexpr uint8_t kElementKinds = 2 * static_cast<uint8_t>(Element::Count);
    static constexpr uint8_t kKinds = kElementKinds + static_cast<uint8_t>(Mark::Count);

    static uint8_t upperKind(Element element) { return static_cast<uint8_t>(2 * static_cast<uint8_t>(element)); }
    static uint8_t lowerKind(Element element) { return static_cast<uint8_t>(upperKind(element) + 1); }
    static uint8_t kindOf(Mark mark) { return static_cast<uint8_t>(kElementKinds + static_cast<uint8_t>(mark)); }

    Index findKind(uint8_t kind, Range range) const;
    std::string_view valueAt(Index tag, Index rangeEnd) const;

    std::string_view text;
    std::vector<Tag> tags;
    std::array<Index, kKinds> first; // Of each kind in the whole text.
};
