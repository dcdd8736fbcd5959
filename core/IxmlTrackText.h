#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The iXML text while its tracks are edited: an index of the tags that a track edit looks for, so that many edits
/// of a large text cost about as much as one walk over it. Every answer is the one that a plain search in the text
/// as it stands at that moment would give.
///
/// 1. A tag is known by its number in the order of the text, and numbers hold until `replaceBetween` says otherwise.
/// 2. What an edit puts between two tags is kept beside the text; the tags that stood there are gone.
/// 3. A position is the place in the indexed text plus the growth of all edits in front of it.
/// 4. A new value that holds one of the tags itself makes the index anew, from the text as it then is. A value never
///    forms a tag together with its neighbours: it stands between a whole opening and a whole closing tag.
///
/// One thread; belongs to one save.
class IxmlTrackText {
public:
    enum class Kind : uint8_t { TrackOpen, TrackClose, NameOpen, NameClose, FunctionOpen, FunctionClose, ChannelIndex };

    using Tag = uint32_t;
    static constexpr Tag kNone = UINT32_MAX;

    explicit IxmlTrackText(std::string ixml);

    /// The first CHANNEL_INDEX element that says exactly `channelIndex` in plain decimal; kNone if there is none.
    Tag firstChannelIndex(int32_t channelIndex);
    /// The nearest tag of that kind in front of `tag`; kNone if there is none. Not for ChannelIndex.
    Tag lastInFrontOf(Tag tag, Kind kind);
    /// The nearest tag of that kind behind `tag`; kNone if there is none. Not for ChannelIndex.
    Tag firstBehind(Tag tag, Kind kind);

    /// Offset in bytes of the tag's first byte in the text as it now is.
    size_t position(Tag tag) const;
    /// The tag that begins at that offset. Only valid right after `replaceBetween` has returned true.
    Tag tagAt(size_t offset) const;

    /// Replaces the bytes between the end of `open` and the start of `close`, which must stand behind it. True if
    /// the tags were numbered anew.
    bool replaceBetween(Tag open, Tag close, const std::string& value);

    /// The text with all edits in it.
    std::string edited() const;

private:
    struct Entry {
        size_t offset = 0; // In `text`.
        uint32_t length = 0;
        int32_t channelIndex = 0; // Of a ChannelIndex.
        Kind kind = Kind::TrackOpen;
    };

    struct Edit {
        Tag close = kNone;
        std::string value;
    };

    /// Ascending keys, from which single ones are taken away; the nearest that is left is found in about log time.
    class KeyList {
    public:
        static constexpr uint64_t kNoKey = UINT64_MAX;

        explicit KeyList(std::vector<uint64_t> ascending = {});
        void remove(uint64_t key);
        uint64_t firstFrom(uint64_t key);
        uint64_t lastUpTo(uint64_t key);

    private:
        static size_t follow(std::vector<uint32_t>& links, size_t slot);

        std::vector<uint64_t> keys;
        // Links lead from the slot of a key that was taken away towards one that is left; a slot that is left links
        // to itself. The end of the road is slot `keys.size()` forward. Backward all slots are shifted by one, so
        // that 0 is the end.
        std::vector<uint32_t> forward;
        std::vector<uint32_t> backward;
    };

    static constexpr size_t kKinds = 7;

    static uint64_t channelKey(int32_t channelIndex, Tag tag);
    static bool matchTag(std::string_view where, size_t offset, Entry& found);
    static bool findTag(std::string_view where, size_t from, Entry& found);
    void buildIndex();
    KeyList& listOf(Kind kind) { return lists[static_cast<size_t>(kind)]; }
    void removeBetween(Tag open, Tag close);
    void addGrowth(Tag behind, int64_t bytes);

    std::string text; // As it was when the index was made.
    std::vector<Entry> entries; // In the order of the text.
    KeyList standing; // Numbers of the tags that still stand.
    std::array<KeyList, kKinds> lists; // The same by kind; for ChannelIndex the keys are `channelKey`.
    std::vector<int64_t> growth; // Binary indexed tree over the numbers: bytes won by the edit behind each tag.
    std::map<Tag, Edit> edits; // By opening tag. One that a later edit swallows is dropped.
};
