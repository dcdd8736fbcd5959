#include "core/Timecode.h"

#include "core/WholeNumber.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

constexpr int kFallbackRate = 24;
constexpr int64_t kSecondsPerDay = 86400;

// Drop-frame leaves out two frame numbers in each minute but every tenth, so these hold two frames less for each
// such minute than 30 frames a second would give.
constexpr int64_t kDropFramesPerMinute = 1798;
constexpr int64_t kDropFramesPerTenMinutes = 17982;
constexpr int64_t kDropFramesPerHour = 107892;
constexpr int64_t kDropFramesPerDay = 2589408;

// A position that falls on a frame boundary may come out of the division a hair below it.
constexpr double kFrameEpsilon = 1e-9;

constexpr double kNear = 0.02;

bool isPositiveFinite(double value)
{
    return value > 0.0 && std::isfinite(value);
}

bool isDropFrameRate(int rate)
{
    return rate == 29 || rate == 30;
}

int32_t clampToInt32(int64_t value)
{
    constexpr int64_t kLowest = std::numeric_limits<int32_t>::min();
    constexpr int64_t kHighest = std::numeric_limits<int32_t>::max();
    return static_cast<int32_t>(std::clamp(value, kLowest, kHighest));
}

void appendTwoDigits(std::string& text, int32_t number)
{
    const int64_t wide = number;
    if (wide < 0)
        text += '-';
    const std::string digits = std::to_string(wide < 0 ? -wide : wide);
    if (digits.size() < 2)
        text += '0';
    text += digits;
}

// The frame numbers that drop-frame counting has left out before `count`. Zero or of the sign of `count`.
int64_t droppedNumbersBefore(int64_t count)
{
    const int64_t tens = count / kDropFramesPerTenMinutes;
    const int64_t rest = count % kDropFramesPerTenMinutes;
    return 18 * tens + 2 * ((rest - 2) / kDropFramesPerMinute);
}

// Whole frames modulo one day. Taken in floating point, where it is exact, since a hostile time reference or rate
// gives more frames than 64 bits hold. 0 for an infinite count.
int64_t framesOfDay(double wholeFrames, int64_t day)
{
    if (!std::isfinite(wholeFrames))
        return 0;
    return static_cast<int64_t>(std::fmod(wholeFrames, static_cast<double>(day)));
}

struct NamedRate {
    double rate;
    double from; // Rates from here on, up to the next whole one, are called the same; equal to `rate` for none.
    double below;
    const char* text;
    const char* dropText;
};

constexpr std::array kNamedRates{
    NamedRate{ 23.976, 23.9, 24.0, "23.976", "23.976" },
    NamedRate{ 24.0, 24.0, 24.0, "24", "24" },
    NamedRate{ 25.0, 25.0, 25.0, "25", "25" },
    NamedRate{ 29.97, 29.9, 30.0, "29.97 NDF", "29.97 DF" },
    NamedRate{ 30.0, 30.0, 30.0, "30", "30 DF" },
    NamedRate{ 59.94, 59.9, 60.0, "59.94", "59.94" },
    NamedRate{ 60.0, 60.0, 60.0, "60", "60" },
};

void appendTwoDigitsOf(std::string& text, uint64_t number)
{
    if (number < 10)
        text += '0';
    text += std::to_string(number);
}

// Three decimals at most, without trailing zeros; the same under every locale.
std::string plainNumber(double value)
{
    // The largest double has 309 digits before the point.
    std::array<char, 320> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed, 3);
    std::string text(digits.data(), end.ptr);
    while (text.size() > 1 && text.back() == '0')
        text.pop_back();
    if (text.back() == '.')
        text.pop_back();
    return text;
}

} // namespace

std::string Timecode::toString() const
{
    std::string text;
    appendTwoDigits(text, hours);
    text += ':';
    appendTwoDigits(text, minutes);
    text += ':';
    appendTwoDigits(text, seconds);
    text += dropFrame ? ';' : ':';
    appendTwoDigits(text, frames);
    return text;
}

int64_t Timecode::toFrames() const
{
    if (dropFrame && isDropFrameRate(frameRate)) {
        return int64_t{ hours } * kDropFramesPerHour + int64_t{ minutes / 10 } * kDropFramesPerTenMinutes
            + int64_t{ minutes % 10 } * kDropFramesPerMinute + int64_t{ seconds } * 30 + frames;
    }
    // Unsigned, so that hours no day has wrap around instead of overflowing.
    const uint32_t wholeSeconds
        = static_cast<uint32_t>(hours) * 3600u + static_cast<uint32_t>(minutes) * 60u + static_cast<uint32_t>(seconds);
    return int64_t{ static_cast<int32_t>(wholeSeconds * static_cast<uint32_t>(frameRate)) } + frames;
}

Timecode Timecode::fromFrames(int64_t count, int rate, bool drop)
{
    Timecode result;
    result.frameRate = rate;
    result.dropFrame = drop;
    if (rate < 1)
        return result;

    // The dropped numbers are put back on the quotient and the remainder, since the sum with the count itself could
    // overflow. Both have the sign of the count, so the truncating division comes out as that of the sum.
    const int64_t dropped = drop && isDropFrameRate(rate) ? droppedNumbersBefore(count) : 0;
    const int64_t frameSum = count % rate + dropped % rate;
    const int64_t total = count / rate + dropped / rate + frameSum / rate;

    result.frames = static_cast<int32_t>(frameSum % rate);
    result.seconds = static_cast<int32_t>(total % 60);
    result.minutes = static_cast<int32_t>(total / 60 % 60);
    result.hours = clampToInt32(total / 3600);
    return result;
}

int Timecode::nominalFrameRate(double rate)
{
    if (!isPositiveFinite(rate))
        return kFallbackRate;
    constexpr int kHighest = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(std::round(rate), static_cast<double>(kHighest)));
}

bool Timecode::usesDropFrame(double rate, bool flag)
{
    return flag && isPositiveFinite(rate) && isDropFrameRate(nominalFrameRate(rate));
}

int64_t Timecode::framesPerDay(int nominalRate, bool drop)
{
    if (drop && nominalRate == 30)
        return kDropFramesPerDay;
    return (nominalRate > 0 ? nominalRate : kFallbackRate) * kSecondsPerDay;
}

std::string Timecode::formatFrameRate(double rate, bool drop)
{
    if (!isPositiveFinite(rate))
        return "--";
    for (const NamedRate& named : kNamedRates) {
        if (std::fabs(rate - named.rate) < kNear || (rate >= named.from && rate < named.below))
            return drop ? named.dropText : named.text;
    }
    return plainNumber(rate);
}

Timecode Timecode::fromPlaybackPosition(
    uint64_t timeReference, uint32_t sampleRate, double rate, bool dropFlag, double position)
{
    const int nominal = nominalFrameRate(rate);
    const bool drop = usesDropFrame(rate, dropFlag);
    const double effectiveRate = isPositiveFinite(rate) ? rate : static_cast<double>(nominal);

    double start = 0.0;
    if (nominal > 0 && sampleRate != 0 && timeReference != 0)
        start = nominal * (static_cast<double>(timeReference) / sampleRate);
    const double elapsed = (isPositiveFinite(position) ? position : 0.0) * effectiveRate;

    const int64_t day = framesPerDay(nominal, drop);
    const int64_t total = framesOfDay(std::round(start), day) + framesOfDay(std::floor(elapsed + kFrameEpsilon), day);
    // Neither part is ever negative, so the remainder isn't either.
    return fromFrames(total % day, nominal, drop);
}

std::string Timecode::cutStartText(uint64_t samples, uint32_t samplesPerSecond, double rate)
{
    if (samples == 0 || samplesPerSecond == 0 || !(rate > 0.0))
        return {};

    constexpr uint64_t kSecondsPerMinute = 60;
    constexpr uint64_t kSecondsPerHour = 3600;
    constexpr uint64_t kHoursPerDay = 24;
    const double time = static_cast<double>(samples) / samplesPerSecond;
    const uint64_t whole = wholeOf(time);
    const double samplesPerFrame = samplesPerSecond / rate;
    std::string text;
    appendTwoDigitsOf(text, whole / kSecondsPerHour % kHoursPerDay);
    text += ':';
    appendTwoDigitsOf(text, whole % kSecondsPerHour / kSecondsPerMinute);
    text += ':';
    appendTwoDigitsOf(text, whole % kSecondsPerMinute);
    text += ':';
    appendTwoDigitsOf(text, wholeOf((time - static_cast<double>(whole)) * samplesPerSecond / samplesPerFrame));
    return text;
}
