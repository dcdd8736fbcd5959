#include "audio/AudioRateConverter.h"

#include "audio/RateEngine.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kSameRate = 0.01; // Frames per second; rates closer than this count as equal.
constexpr int kChannels = 2;

} // namespace

AudioRateConverter::AudioRateConverter() : converterRef(std::make_unique<RateEngine::Converter*>(nullptr)) { }

AudioRateConverter::~AudioRateConverter()
{
    disposeConverter();
}

bool AudioRateConverter::setup(double rateIn, double rateOut)
{
    teardown();
    // Written so that a rate that is not a number is refused as well.
    if (!(rateIn > 0.0) || !(rateOut > 0.0))
        return false;
    inputRate = rateIn;
    outputRate = rateOut;
    passthrough = std::abs(rateIn - rateOut) < kSameRate;
    if (passthrough)
        return true;
    *converterRef = RateEngine::newConverter(inputRate, outputRate);
    return *converterRef != nullptr;
}

int32_t AudioRateConverter::convert(const float* input, int32_t inputFrames, float* output, int32_t outputCapacity)
{
    if (outputCapacity < 1 || inputFrames < 1 || !input || !output)
        return 0;
    if (passthrough || !*converterRef) {
        const int32_t frames = std::min(inputFrames, outputCapacity);
        std::copy_n(input, frames * kChannels, output);
        return frames;
    }
    return RateEngine::convert(*converterRef, input, inputFrames, output, outputCapacity);
}

void AudioRateConverter::reset()
{
    if (*converterRef)
        RateEngine::reset(*converterRef);
}

void AudioRateConverter::teardown()
{
    disposeConverter();
    inputRate = 0.0;
    outputRate = 0.0;
    passthrough = true;
}

void AudioRateConverter::disposeConverter()
{
    if (*converterRef)
        RateEngine::dispose(*converterRef);
    *converterRef = nullptr;
}
