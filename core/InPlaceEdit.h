#pragma once

#include "core/BwfMetadata.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

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

/// How a write ended.
struct EditWrite {
    enum class State {
        /// All patches are in the file; they were read back.
        Written,
        /// The file couldn't be opened for writing, for `error`. It is untouched.
        NotOpened,
        /// The file has another length, or other bytes where patches go, than was planned for. It is untouched.
        ChangedMeanwhile,
        /// A write failed, or what was read back is something else; places from `patchesDone` on are unknown.
        Failed,
    };
    State state = State::Written;
    /// Patches that are whole in the file.
    size_t patchesDone = 0;
    std::error_code error;
};

/// One file for one edit. It is opened once, so that what was read and planned for is what is written to.
/// One thread, as long as no two work on one file; calls block.
class InPlaceFile {
public:
    /// `forWriting` false never opens it for writing.
    InPlaceFile(std::string filePath, bool forWriting) : path(std::move(filePath)), wantsWriting(forWriting) { }

    /// Opens the file and reads its record, as BwfMetadataReader::readMetadataWhole does; a file that can't be opened
    /// for writing is read all the same. Nothing if it can't be opened, or not be read whole. Call once, first. Throws
    /// std::filesystem::filesystem_error if there is no such file or it is no regular one.
    std::optional<BwfMetadata> read();

    /// What the file would become. Writes nothing.
    EditPlan plan(const InPlaceWish& wish);

    /// Writes the patches of the plan, each with one write, and reads them back. Never makes the file longer or
    /// shorter.
    [[nodiscard]] EditWrite write(const EditPlan& plan);

private:
    void open();
    bool hasTheLength(const EditPlan& plan);
    bool holdsAll(const EditPlan& plan, std::string EditPlan::Patch::*bytes);
    bool holds(uint64_t offset, const std::string& wanted);
    bool put(const EditPlan::Patch& patch);

    std::string path;
    bool wantsWriting;
    std::fstream stream; // Without a buffer, so that each write reaches the file, and fails, by itself.
    std::error_code notWritable; // Why it isn't open for writing.
};
