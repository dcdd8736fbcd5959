#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

struct BwfMetadata;

/// What is wanted of a file. Records are not owned and must outlive the wish.
struct InPlaceWish {
    /// As BwfMetadataReader::readMetadataWhole gives it.
    const BwfMetadata& current;
    /// As BwfMetadataWriter::writeMetadata takes it; its time reference isn't looked at.
    const BwfMetadata& updated;
    /// Samples since midnight, 0 for midnight itself; nothing leaves the start as it is.
    std::optional<uint64_t> start;
    /// The iXML text may grow into the padding of its chunk.
    bool usePadding = false;
};

/// An edit of a file that is known to the byte before the file is touched. A plain value.
///
/// 1. It overwrites the Description and the time reference of `bext` and the payload of `iXML`, and nothing else: not
///    even past the end of a short `bext`. Where the walk to a chunk could have gone through audio, it is not written.
/// 2. Without a start and without use of the padding the bytes are those of BwfMetadataWriter.
struct EditPlan {
    enum class Place { Description, TimeReference, Ixml };

    /// Bytes that take the place of as many others.
    struct Patch {
        Place place = Place::Description;
        /// Of the first byte in the file.
        uint64_t offset = 0;
        std::string before;
        std::string after;
    };

    /// Why the edit is not whole.
    struct Problem {
        enum class Kind {
            /// The container, or the walk to a chunk, is one that the reader doesn't follow.
            UnknownContainer,
            Unreadable,
            NoBext,
            BextShort,
            DescriptionFull,
            NoIxml,
            IxmlCut,
            IxmlFull,
            IxmlForeign,
            NoPlaceForStart,
            /// The reader would give another value for `field` afterwards.
            NotKept,
        };
        Kind kind = Kind::NotKept;
        /// Bytes that are missing, where that is the problem.
        uint64_t missingBytes = 0;
        /// "scene", "track 2"; empty if it isn't about one.
        std::string field = {};
    };

    uint64_t fileBytes = 0;
    /// In the order of the write; those that change nothing are left out.
    std::vector<Patch> patches;
    /// Empty if the edit is whole.
    std::vector<Problem> problems;

    /// Null if the plan has none for that place. Valid until the plan changes.
    const Patch* patchOf(Place place) const;
};

/// What the file at `path` would become. Reads, writes nothing. Any thread; blocks.
EditPlan planEdit(const std::string& path, const InPlaceWish& wish);

/// How a write ended.
struct EditWrite {
    enum class State {
        /// All patches are in the file; they were read back.
        Written,
        /// The file couldn't be opened for writing, for `error`. It is untouched.
        NotOpened,
        /// The file is no longer the one that was planned for. It is untouched.
        ChangedMeanwhile,
        /// A write failed, or what was read back is something else; places from `patchesDone` on are unknown.
        Failed,
    };
    State state = State::Written;
    /// Patches that are whole in the file.
    std::size_t patchesDone = 0;
    std::error_code error;
};

/// Writes the patches of a plan, each with one write, and reads them back. Never makes the file longer or shorter.
/// Blocks; any thread, as long as no two work on one file.
[[nodiscard]] EditWrite writePlan(const std::string& path, const EditPlan& plan);
