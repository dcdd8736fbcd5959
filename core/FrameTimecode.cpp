#include "core/FrameTimecode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

__extension__ using Wide = unsigned __int128;

constexpr uint32_t kPullDenominator = 1001;
constexpr uint32_t kThousand = 1000;
constexpr double kGreatestRate = 1000.0;
constexpr double kWholeTolerance = 0.0005; // Of texts with three decimals.
constexpr double kPulledTolerance = 0.005; // 23.98 stands for 24000/1001.
constexpr double kDecimalTolerance = 1e-6;

constexpr uint64_t kSecondsPerMinute = 60;
constexpr uint64_t kMinutesPerTen = 10;
constexpr uint64_t kSecondsPerHour = 3600;
constexpr uint64_t kSecondsPerDay = 86400;
constexpr uint64_t kDropMinutesPerTen = 9; // Of each ten minutes, those that leave numbers out.

FrameRate reduced(uint32_t numerator, uint32_t denominator)
{
    const uint32_t divisor = std::gcd(numerator, denominator);
    return { numerator / divisor, denominator / divisor };
}

uint64_t cut(Wide value)
{
    constexpr uint64_t kGreatest = std::numeric_limits<uint64_t>::max();
    return value > kGreatest ? kGreatest : static_cast<uint64_t>(value);
}

// Numbers that each minute but the tenth leaves out.
uint64_t droppedPerMinute(const FrameRate& rate)
{
    return rate.nominal() / 15;
}

uint64_t framesPerTenMinutes(const FrameRate& rate)
{
    return kMinutesPerTen * kSecondsPerMinute * rate.nominal() - kDropMinutesPerTen * droppedPerMinute(rate);
}

// The number that the label of a frame shows, counted without leaving any out.
uint64_t labelNumber(uint64_t frame, const FrameRate& rate)
{
    const uint64_t dropped = droppedPerMinute(rate);
    const uint64_t perMinute = kSecondsPerMinute * rate.nominal() - dropped;
    const uint64_t tens = frame / framesPerTenMinutes(rate);
    const uint64_t rest = frame % framesPerTenMinutes(rate);
    const uint64_t minutes = rest < dropped ? 0 : (rest - dropped) / perMinute;
    return frame + dropped * (kDropMinutesPerTen * tens + minutes);
}

void append(std::string& text, uint64_t number)
{
    if (number < 10)
        text += '0';
    text += std::to_string(number);
}

// The four numbers of a label; nothing if it has another form.
std::optional<std::array<uint32_t, 4>> numbersOf(std::string_view label)
{
    constexpr std::string_view kForm = "00:00:00:00";
    if (label.size() != kForm.size())
        return std::nullopt;
    std::array<uint32_t, 4> numbers{};
    for (size_t i = 0; i < label.size(); ++i) {
        const bool isSign = label[i] == ':' || label[i] == ';';
        const bool isDigit = label[i] >= '0' && label[i] <= '9';
        if (kForm[i] == ':' ? !isSign : !isDigit)
            return std::nullopt;
        if (isDigit)
            numbers[i / 3] = numbers[i / 3] * 10 + static_cast<uint32_t>(label[i] - '0');
    }
    return numbers;
}

} // namespace

uint32_t FrameRate::nominal() const
{
    return std::max<uint32_t>((numerator + denominator / 2) / denominator, 1);
}

std::string FrameRate::toString() const
{
    return std::to_string(numerator) + "/" + std::to_string(denominator);
}

std::optional<FrameRate> exactFrameRate(double framesPerSecond)
{
    if (!(framesPerSecond > 0.0) || framesPerSecond > kGreatestRate)
        return std::nullopt;
    const double whole = std::round(framesPerSecond);
    const auto number = static_cast<uint32_t>(whole);
    if (number > 0 && std::fabs(framesPerSecond - whole) < kWholeTolerance)
        return FrameRate{ number, 1 };
    if (number > 0 && std::fabs(framesPerSecond - whole * kThousand / kPullDenominator) < kPulledTolerance)
        return reduced(number * kThousand, kPullDenominator);
    const double thousandths = std::round(framesPerSecond * kThousand);
    if (thousandths > 0.0 && std::fabs(framesPerSecond * kThousand - thousandths) < kDecimalTolerance)
        return reduced(static_cast<uint32_t>(thousandths), kThousand);
    return std::nullopt;
}

bool countsDropFrame(const FrameRate& rate, bool flag)
{
    return flag && (rate.nominal() == 30 || rate.nominal() == 60);
}

uint64_t labelledFramesPerDay(const FrameRate& rate, bool drop)
{
    constexpr uint64_t kTensPerDay = kSecondsPerDay / (kMinutesPerTen * kSecondsPerMinute);
    return drop ? kTensPerDay * framesPerTenMinutes(rate) : kSecondsPerDay * rate.nominal();
}

uint64_t sampleOfFrame(uint64_t frame, const FrameRate& rate, uint32_t sampleRate)
{
    const Wide samples = Wide{ frame } * rate.denominator * sampleRate;
    return cut((samples + rate.numerator / 2) / rate.numerator);
}

// Where a frame is no whole number of samples, its first sample may have been rounded down, so the one before the next
// frame's beginning belongs to that frame already.
uint64_t frameAtSample(uint64_t sample, const FrameRate& rate, uint32_t sampleRate)
{
    const uint64_t divisor = uint64_t{ rate.denominator } * sampleRate;
    const bool isWhole = divisor % rate.numerator == 0;
    return cut((Wide{ sample } + (isWhole ? 0 : 1)) * rate.numerator / divisor);
}

uint64_t framesInLength(uint64_t samples, const FrameRate& rate, uint32_t sampleRate)
{
    const uint64_t divisor = uint64_t{ rate.denominator } * sampleRate;
    return cut((Wide{ samples } * rate.numerator + divisor / 2) / divisor);
}

std::string frameLabel(uint64_t frame, const FrameRate& rate, bool drop)
{
    const uint64_t ofDay = frame % labelledFramesPerDay(rate, drop);
    const uint64_t number = drop ? labelNumber(ofDay, rate) : ofDay;
    const uint64_t seconds = number / rate.nominal();
    std::string text;
    append(text, seconds / kSecondsPerHour);
    text += ':';
    append(text, seconds / kSecondsPerMinute % kSecondsPerMinute);
    text += ':';
    append(text, seconds % kSecondsPerMinute);
    text += drop ? ';' : ':';
    append(text, number % rate.nominal());
    return text;
}

std::optional<uint64_t> frameOfLabel(std::string_view label, const FrameRate& rate, bool drop)
{
    const auto numbers = numbersOf(label);
    if (!numbers)
        return std::nullopt;
    const auto [hours, minutes, seconds, frames] = *numbers;
    if (hours >= 24 || minutes >= kSecondsPerMinute || seconds >= kSecondsPerMinute || frames >= rate.nominal())
        return std::nullopt;
    const uint64_t wholeMinutes = hours * uint64_t{ 60 } + minutes;
    const uint64_t number = (wholeMinutes * kSecondsPerMinute + seconds) * rate.nominal() + frames;
    if (!drop)
        return number;
    const uint64_t dropped = droppedPerMinute(rate);
    if (minutes % kMinutesPerTen != 0 && seconds == 0 && frames < dropped)
        return std::nullopt;
    return number - dropped * (wholeMinutes - wholeMinutes / kMinutesPerTen);
}
