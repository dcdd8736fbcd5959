#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// Timecode counted in whole frames of an exact rate, and the samples they begin at. No floating point: a frame that is
// turned into samples and back is the same frame, whether the samples were rounded, cut or rounded up.
// Labels run 24 hours and start again. Pure functions, any thread.
//
// The formulas of Timecode, which the mixer and the window show, count by the nominal rate instead; at a pulled rate
// they are off by 1001/1000.

/// Frames per second as a fraction in its lowest terms; both numbers are above 0.
struct FrameRate {
    uint32_t numerator = 0;
    uint32_t denominator = 1;

    /// Frames that a second of labels has: 24 for 24000/1001. At least 1.
    uint32_t nominal() const;
    /// "24000/1001", "25/1".
    std::string toString() const;

    bool operator==(const FrameRate&) const = default;
};

/// The rate that a number in a file stands for: a whole one, a whole one times 1000/1001 (23.976 and 23.98 as well as
/// the fraction itself), or one of at most three decimals. Nothing if it is none of these, isn't above 0 or is above
/// 1000.
std::optional<FrameRate> exactFrameRate(double framesPerSecond);

/// True if labels at this rate leave out numbers, given the file's flag: only at a nominal 30 and 60.
bool countsDropFrame(const FrameRate& rate, bool flag);

/// Frames of the 24 hours of labels. `drop` as `countsDropFrame` gives it, here and below.
uint64_t labelledFramesPerDay(const FrameRate& rate, bool drop);

/// The sample, since midnight, at which a frame begins, rounded to the nearest; the greatest number if it needs more
/// than 64 bits. `sampleRate` is in samples per second and above 0, here and below.
uint64_t sampleOfFrame(uint64_t frame, const FrameRate& rate, uint32_t sampleRate);

/// The frame since midnight, not wrapped at 24 hours, that begins at or lies around a sample. The greatest number if
/// it needs more than 64 bits.
uint64_t frameAtSample(uint64_t sample, const FrameRate& rate, uint32_t sampleRate);

/// The number of frames nearest to a length in samples. The greatest number if it needs more than 64 bits.
uint64_t framesInLength(uint64_t samples, const FrameRate& rate, uint32_t sampleRate);

/// HH:MM:SS:FF of a frame since midnight, modulo the day; a ";" stands before the frames of drop-frame. Frames have
/// more than two digits where the rate asks for them.
std::string frameLabel(uint64_t frame, const FrameRate& rate, bool drop);

/// The frame that a label names: four numbers of two digits, ":" or ";" between them. Nothing if it has another form,
/// a number is out of range, or drop-frame counting leaves it out.
std::optional<uint64_t> frameOfLabel(std::string_view label, const FrameRate& rate, bool drop);
