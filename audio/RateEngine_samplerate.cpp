#include "audio/RateEngine.h"

#include <atomic>
#include <cmath>
#include <memory>

#include <samplerate.h>

namespace RateEngine {

namespace {

constexpr int kChannels = 2;

struct StateDeleter {
    void operator()(SRC_STATE* state) const { src_delete(state); }
};

} // namespace

struct Converter {
    std::unique_ptr<SRC_STATE, StateDeleter> state;
    double ratio = 1.0; // Output rate divided by input rate.
    // The library must not be entered by two threads at once, so a reset is a wish that `convert` fulfils.
    std::atomic<bool> resetWanted{ false };
};

Converter* newConverter(double inputRate, double outputRate)
{
    const double ratio = outputRate / inputRate;
    // The library takes a ratio that is no number for a valid one.
    if (!std::isfinite(ratio) || src_is_valid_ratio(ratio) == 0)
        return nullptr;
    int error = 0;
    std::unique_ptr<SRC_STATE, StateDeleter> state(src_new(SRC_SINC_BEST_QUALITY, kChannels, &error));
    if (!state || error != 0)
        return nullptr;
    auto made = std::make_unique<Converter>();
    made->state = std::move(state);
    made->ratio = ratio;
    return made.release();
}

int32_t convert(Converter* converter, const float* input, int32_t inputFrames, float* output, int32_t outputCapacity)
{
    if (converter->resetWanted.exchange(false, std::memory_order_acquire))
        src_reset(converter->state.get());
    SRC_DATA block{};
    block.data_in = input;
    block.data_out = output;
    block.input_frames = inputFrames;
    block.output_frames = outputCapacity;
    block.src_ratio = converter->ratio;
    if (src_process(converter->state.get(), &block) != 0)
        return 0;
    return static_cast<int32_t>(block.output_frames_gen);
}

void reset(Converter* converter)
{
    converter->resetWanted.store(true, std::memory_order_release);
}

void dispose(Converter* converter)
{
    delete converter;
}

} // namespace RateEngine
