#pragma once

#include "cli/FileFindings.h"
#include "cli/Finding.h"

#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

/// Remembers of each file what takes are told apart by, and finds what doesn't go together: one name for two takes, and
/// two takes of one roll at one time.
///
/// The files of one take belong together: those that name the same family, and those under other names that start at
/// the same sample with the same scene and take, as a recorder splits tracks. A take that another roll recorded at the
/// same time is that of a second recorder. Time is counted within one roll and one date.
/// Thread: one at a time.
class TakeLedger {
public:
    /// What the file adds to those before it; the other path of each finding is the earlier one's.
    std::vector<Finding> add(const CheckedFile& file);

private:
    struct Entry {
        std::string path;
        std::string take; // Project, scene and take; empty if the scene or the take is unknown.
        std::string family;
        std::string roll; // And its date; empty if the tape is unknown.
        double begin = 0.0; // Seconds since midnight; no time is known if it isn't before `end`.
        double end = 0.0;
        double frame = 0.0; // Seconds.

        bool hasTime() const { return begin < end; }
        bool overlaps(const Entry& other) const;
        bool belongsTo(const Entry& other) const;
    };

    struct Roll {
        std::multimap<double, size_t> byBegin;
        double longest = 0.0; // Seconds.
    };

    static Entry entryOf(const CheckedFile& file);
    void checkName(const Entry& entry, std::vector<Finding>& findings) const;
    void checkUid(const CheckedFile& file, std::vector<Finding>& findings);
    void checkRoll(const Entry& entry, std::vector<Finding>& findings) const;

    std::vector<Entry> entries;
    std::unordered_map<std::string, std::vector<size_t>> byTake;
    std::unordered_map<std::string, Roll> rolls;
    std::unordered_map<std::string, size_t> byUid;
};
