#pragma once

#include <string>

/// The new content of a file on its way: a temporary file beside it, which takes its place as a whole. The temporary
/// file has the target's name followed by ".tmp", so that two processes that save the same file meet in it; an
/// advisory lock lets in one of them at a time. It is held until the object goes.
/// Thread: one per object; several objects for the same target may live at once, in any thread or process.
class ReplacementFile {
public:
    /// Makes the temporary file, or takes over an abandoned one, and empties it. Waits up to a second while another
    /// process holds it. Where the file system knows no locks, it goes on without one.
    explicit ReplacementFile(std::string targetPath);
    /// Removes the temporary file unless it has become the target.
    ~ReplacementFile();
    ReplacementFile(const ReplacementFile&) = delete;
    ReplacementFile& operator=(const ReplacementFile&) = delete;

    /// False if the temporary file can't be had; no other operation may be called then.
    bool isOpen() const { return descriptor >= 0; }

    /// Appends `text`. False if not all of it could be written.
    bool write(const std::string& text) const;
    /// Brings what was written to the disk. False if that failed; what can't be flushed by its nature counts as
    /// flushed.
    bool flush() const;
    /// Gives the temporary file the target's name. False if that failed; the target is then what it was.
    bool takeTargetsPlace();

private:
    void acquire();
    bool nameStillMeansThisFile() const;
    bool truncate() const;
    void closeDescriptor();

    std::string target;
    std::string temporary;
    int descriptor = -1;
    bool isTarget = false; // The temporary file has become the target.
};

/// Brings the bytes behind an open descriptor to the disk. False if they may not be there; what can't be flushed by
/// its nature counts as flushed. Any thread.
bool flushToDisk(int descriptor);
