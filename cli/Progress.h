#pragma once

#include "cli/Io.h"

#include <cstddef>
#include <string>

/// "12 of 5000 files, 0:45 left", at most `columns` - 1 characters. The time left is told by that of the files done,
/// `millis` in all; it is left out while none is.
std::string progressLine(size_t done, size_t total, int64_t millis, int columns);

/// One line on a terminal that says how far a run is. Nothing is shown where `err` is no terminal, and nothing before
/// the work has taken half a second; the line changes at most six times a second.
/// Thread: main only.
class Progress {
public:
    /// `used` must outlive the object. The work begins now.
    Progress(Io& used, size_t totalFiles);
    /// Takes the line away.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// `done` files are done.
    void step(size_t done);
    /// Takes the line away, so that other text can stand there; the next `step` brings it back.
    void clear();

private:
    Io& io;
    size_t total;
    int64_t begin = 0;
    int64_t nextMillis = 0; // The line may change from then on.
    size_t shownBytes = 0; // Of the line on the terminal; 0 if there is none.
};
