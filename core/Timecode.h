#pragma once

#include <cstdint>
#include <string>

/// One moment of SMPTE timecode and its frame arithmetic, 29.97 drop-frame included.
/// A plain value; all operations are pure, never throw but for want of memory, and may be called from any thread.
/// Every argument has a defined result: what no integer can hold is clamped, not cast.
///
/// `cutStartText`, for the window, and one more formatter of start times in the report dialog cut where the playback
/// position wraps, and never count drop-frame, on purpose.
struct Timecode {
    /// Hours; not wrapped at 24 by `fromFrames`, 0 to 23 out of `fromPlaybackPosition`.
    int32_t hours = 0;
    /// Minutes, 0 to 59.
    int32_t minutes = 0;
    /// Seconds, 0 to 59.
    int32_t seconds = 0;
    /// Frames, 0 to `frameRate` - 1.
    int32_t frames = 0;
    /// Nominal frames per second: 24, 25, 30, 60 and so on; 30 for 29.97.
    int32_t frameRate = 0;
    /// Counted drop-frame; also selects the ";" before the frames.
    bool dropFrame = false;

    /// "01:02:03:04", or "01:02:03;04" when `dropFrame` is set. Each number has at least two digits and keeps all it
    /// has; a negative one carries its sign before the digits.
    std::string toString() const;

    /// Frames since 00:00:00:00. With `dropFrame` at 29 or 30 it is the count of 30-frame drop-frame whatever the
    /// rate; else the frames of the whole seconds are formed modulo 2^32 (as a signed number) before `frames` is added.
    int64_t toFrames() const;

    /// The timecode of a frame count at a nominal `rate`; hours run on past 24, up to the largest 32-bit number.
    /// Negative counts give numbers that are zero or negative. All numbers are 0 if `rate` is less than 1.
    static Timecode fromFrames(int64_t count, int rate, bool drop);

    /// `rate` rounded to the nearest integer, halves up, at most 2147483647; 24 if it isn't positive and finite.
    static int nominalFrameRate(double rate);

    /// True if `flag` is set and `rate` rounds to 29 or 30. False if it isn't positive and finite.
    static bool usesDropFrame(double rate, bool flag);

    /// Frames of 24 hours at a nominal rate; 24 stands in for a rate that is less than 1. Only 30 has a drop-frame
    /// count.
    static int64_t framesPerDay(int nominalRate, bool drop);

    /// The rate as people write it: "23.976", "25", "29.97 DF". `drop` is taken as it is, only the rate decides whether
    /// it shows. "--" if `rate` isn't positive and finite. The mixer's form: the window writes any rate out with " fps"
    /// behind it (window/MetadataTexts.h), the reports give it two decimals and "nd-C" or "df-C".
    static std::string formatFrameRate(double rate, bool drop);

    /// The timecode at `position` seconds into a file that starts `timeReference` samples after midnight, counted in
    /// `sampleRate` per second. It runs 24 hours and starts again. `rate` may be anything: 24 stands in for what isn't
    /// positive and finite. A position that is negative or not finite counts as 0.
    static Timecode fromPlaybackPosition(
        uint64_t timeReference, uint32_t sampleRate, double rate, bool dropFlag, double position);

    /// HH:MM:SS:FF of a file's start, as the window shows it: hours wrap at 24, frames are cut, never rounded, and a
    /// colon stands before them at every rate. Empty if `samples` or `samplesPerSecond` is 0 or `rate` isn't above 0.0.
    static std::string cutStartText(uint64_t samples, uint32_t samplesPerSecond, double rate);
};
