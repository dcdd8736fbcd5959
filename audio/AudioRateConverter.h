#pragma once

#include <cstdint>
#include <memory>

namespace RateEngine {
struct Converter;
}

/// Converts interleaved stereo float blocks from the file's rate to the device's. Equal rates are copied.
/// Thread: `setup`, `teardown` and the destructor while no `convert` is in flight; `convert` on the mixer thread;
/// `reset` on any thread.
class AudioRateConverter {
public:
    AudioRateConverter();
    ~AudioRateConverter();
    AudioRateConverter(const AudioRateConverter&) = delete;
    AudioRateConverter& operator=(const AudioRateConverter&) = delete;

    /// Gets ready to convert from `rateIn` to `rateOut`, in frames per second. Rates less than 0.01 apart are
    /// passed through. False if a rate is 0.0 or less or the system can't convert between them; `convert` then copies.
    bool setup(double rateIn, double rateOut);

    /// Converts `inputFrames` frames of `input` into at most `outputCapacity` frames of `output` and answers the
    /// frames written. What the capacity cuts off is lost. 0 if a count is below 1, a buffer is null or the
    /// conversion fails; also while the filter fills at the start.
    /// Never blocks or allocates.
    int32_t convert(const float* input, int32_t inputFrames, float* output, int32_t outputCapacity);

    /// Forgets the filter history, so that nothing from before a seek comes out after it. Does nothing without a
    /// converter. A block in flight may still be converted with the old history.
    void reset();

    /// Back to the state after construction. Harmless when repeated.
    void teardown();

private:
    void disposeConverter();

    // The cell lives as long as this object; the handle in it is null when there is no converter.
    std::unique_ptr<RateEngine::Converter*> converterRef;
    double inputRate = 0.0; // Frames per second; 0.0 when not set up.
    double outputRate = 0.0;
    bool passthrough = true;
};
