#include "audio/WideDecode.h"

#include <immintrin.h>

#include <algorithm>

namespace {

constexpr int64_t kStep = 8; // Samples of one round: 24 bytes in, one register of eight floats out.

// At least 1, at most kStep.
int64_t samplesToWholeRegister(const float* out)
{
    constexpr uintptr_t kRegisterBytes = kStep * sizeof(float);
    return static_cast<int64_t>((kRegisterBytes - reinterpret_cast<uintptr_t>(out) % kRegisterBytes) / sizeof(float));
}

// The build is for any x86-64 processor. Its instructions can't move single bytes across a register, so a compiler's
// loop over three-byte samples costs ten times what this one does.
__attribute__((target("avx2"))) int64_t decodeAvx2(const uint8_t* in, int64_t samples, float* out)
{
    // Each sample's bytes go to the upper end of 32 bits over a zero byte; the upper half was loaded 8 bytes further on
    // and has its first sample at byte 4.
    const __m256i raise = _mm256_setr_epi8(-1, 0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, // Bytes 0 to 11.
        -1, 4, 5, 6, -1, 7, 8, 9, -1, 10, 11, 12, -1, 13, 14, 15); // Bytes 12 to 23.
    const __m256 scale = _mm256_set1_ps(1.0f / 2147483648.0f);
    const auto decodeStep = [ raise, scale, in, out ](int64_t i) __attribute__((target("avx2"), always_inline))
    {
        const uint8_t* bytes = in + 3 * i;
        const __m128i low = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
        const __m128i high = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + 8));
        const __m256i raised = _mm256_shuffle_epi8(_mm256_set_m128i(high, low), raise);
        _mm256_storeu_ps(out + i, _mm256_mul_ps(_mm256_cvtepi32_ps(raised), scale));
    };
    if (samples < kStep)
        return 0;
    // One step wherever `out` begins, then on from the first sample that stands at a whole register: a store across two
    // cache lines costs twice. A few samples are decoded again by that.
    decodeStep(0);
    int64_t i = samplesToWholeRegister(out);
    for (; i + 4 * kStep <= samples; i += 4 * kStep) {
        decodeStep(i);
        decodeStep(i + kStep);
        decodeStep(i + 2 * kStep);
        decodeStep(i + 3 * kStep);
    }
    for (; i + kStep <= samples; i += kStep)
        decodeStep(i);
    return std::max(i, kStep);
}

} // namespace

int64_t decodeWide24(const uint8_t* in, int64_t samples, float* out)
{
    return __builtin_cpu_supports("avx2") ? decodeAvx2(in, samples, out) : 0;
}
