#include "audio/PlaybackMixer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNotANumber = std::numeric_limits<float>::quiet_NaN();

struct Mixed {
    std::vector<float> stereo;
    std::vector<float> peaks;
};

// Outputs start as rubbish, so that what isn't written shows.
Mixed mix(const PlaybackMixer& mixer, const std::vector<float>& input, size_t tracks)
{
    const size_t frames = input.size() / tracks;
    Mixed out{ std::vector<float>(frames * 2, 9.0f), std::vector<float>(tracks, 9.0f) };
    mixer.mixToStereo(input.data(), static_cast<int32_t>(frames), out.stereo.data(), out.peaks.data());
    return out;
}

std::vector<float> noise(size_t count, float amplitude)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> sample(-amplitude, amplitude);
    std::vector<float> values(count);
    for (float& each : values)
        each = sample(random);
    return values;
}

} // namespace

TEST(PlaybackMixer, resetSetsUnityAndTheEqualPowerFactor)
{
    struct Row {
        int32_t tracks;
        float factor;
    };
    for (const Row& row : { Row{ 1, 1.0f }, { 2, 0.70710678f }, { 4, 0.5f }, { 8, 0.35355339f }, { 64, 0.125f } }) {
        const PlaybackMixer mixer(row.tracks);
        std::vector<float> input(static_cast<size_t>(row.tracks), 0.0f);
        input[0] = 0.5f;
        EXPECT_FLOAT_EQ(mix(mixer, input, input.size()).stereo[0], 0.5f * row.factor) << row.tracks;
    }
}

TEST(PlaybackMixer, resetForgetsGainsMutesAndSolosOfAllTracks)
{
    PlaybackMixer mixer(64);
    for (int32_t track = 0; track < 64; ++track) {
        mixer.setGain(track, 0.25f);
        mixer.setMuted(track, true);
        mixer.setSolo(track, true);
    }
    mixer.reset(1);
    mixer.reset(64);
    for (int32_t track = 0; track < 64; ++track) {
        EXPECT_EQ(mixer.gain(track), 1.0f);
        EXPECT_FALSE(mixer.muted(track));
        EXPECT_FALSE(mixer.solo(track));
    }
}

TEST(PlaybackMixer, resetToNoTracksMixesToZeros)
{
    for (const int32_t tracks : { 0, -3 }) {
        PlaybackMixer mixer(2);
        mixer.reset(tracks);
        const std::vector<float> input(8, 1.0f);
        std::vector<float> stereo(8, 9.0f);
        std::vector<float> peaks(2, 9.0f);
        mixer.mixToStereo(input.data(), 4, stereo.data(), peaks.data());
        EXPECT_EQ(stereo, std::vector<float>(8, 0.0f));
        EXPECT_EQ(peaks, std::vector<float>(2, 9.0f)) << "there are no tracks to report";
        EXPECT_EQ(mixer.gain(0), 0.0f) << "no track 0";
    }
}

TEST(PlaybackMixer, resetBeyondTheLimitGivesSixtyFourTracks)
{
    const PlaybackMixer mixer(100);
    EXPECT_EQ(mixer.gain(63), 1.0f);
    EXPECT_EQ(mixer.gain(64), 0.0f);
    std::vector<float> input(64, 0.0f);
    input[63] = 1.0f;
    EXPECT_EQ(mix(mixer, input, 64).stereo[0], 0.125f);
}

TEST(PlaybackMixer, gainTakesNoNegativeAndNoEndlessValuesButAnyAboveOne)
{
    PlaybackMixer mixer(1);
    mixer.setGain(0, 4.0f);
    EXPECT_EQ(mixer.gain(0), 4.0f);
    for (const float refused : { kNotANumber, kInfinity, -kInfinity, -1.0f }) {
        mixer.setGain(0, 4.0f);
        mixer.setGain(0, refused);
        EXPECT_EQ(mixer.gain(0), 0.0f);
    }
}

TEST(PlaybackMixer, tracksOutOfRangeAreIgnoredAndReadNeutrally)
{
    PlaybackMixer mixer(2);
    for (const int32_t track : { -1, 2, 64, 1000 }) {
        mixer.setGain(track, 3.0f);
        mixer.setMuted(track, false);
        mixer.setSolo(track, true);
        EXPECT_EQ(mixer.gain(track), 0.0f);
        EXPECT_TRUE(mixer.muted(track));
        EXPECT_FALSE(mixer.solo(track));
    }
    EXPECT_EQ(mix(mixer, { 0.5f, 0.25f }, 2).peaks, (std::vector<float>{ 0.5f, 0.25f }))
        << "no solo may have been stored";
}

TEST(PlaybackMixer, settingsOfTracksBeyondTheCountAreNotSeenAfterAWiderReset)
{
    PlaybackMixer mixer(2);
    mixer.setSolo(2, true);
    mixer.reset(3);
    EXPECT_FALSE(mixer.solo(2));
}

TEST(PlaybackMixer, effectiveGainLetsMuteWinOverSolo)
{
    PlaybackMixer mixer(2);
    mixer.setGain(0, 0.5f);
    EXPECT_EQ(mixer.effectiveGain(0, false), 0.5f);
    EXPECT_EQ(mixer.effectiveGain(0, true), 0.0f);
    mixer.setSolo(0, true);
    EXPECT_EQ(mixer.effectiveGain(0, true), 0.5f);
    mixer.setMuted(0, true);
    EXPECT_EQ(mixer.effectiveGain(0, true), 0.0f);
    EXPECT_EQ(mixer.effectiveGain(0, false), 0.0f);
}

TEST(PlaybackMixer, trackBothMutedAndSoloedSilencesAllTracks)
{
    PlaybackMixer mixer(3);
    mixer.setMuted(1, true);
    mixer.setSolo(1, true);
    const Mixed out = mix(mixer, { 1.0f, 1.0f, 1.0f }, 3);
    EXPECT_EQ(out.stereo, std::vector<float>(2, 0.0f));
    EXPECT_EQ(out.peaks, std::vector<float>(3, 0.0f));
}

TEST(PlaybackMixer, allMutedGivesZeroOutputAndZeroPeaks)
{
    PlaybackMixer mixer(5);
    for (int32_t track = 0; track < 5; ++track)
        mixer.setMuted(track, true);
    const Mixed out = mix(mixer, noise(50, 1.0f), 5);
    EXPECT_EQ(out.stereo, std::vector<float>(20, 0.0f));
    EXPECT_EQ(out.peaks, std::vector<float>(5, 0.0f));
}

TEST(PlaybackMixer, eightFullScaleTracksClampWhilePeaksReportOne)
{
    const PlaybackMixer mixer(8);
    Mixed out = mix(mixer, std::vector<float>(16, 1.0f), 8);
    EXPECT_EQ(out.stereo, std::vector<float>(4, 1.0f));
    EXPECT_EQ(out.peaks, std::vector<float>(8, 1.0f));
    out = mix(mixer, std::vector<float>(16, -1.0f), 8);
    EXPECT_EQ(out.stereo, std::vector<float>(4, -1.0f));
    EXPECT_EQ(out.peaks, std::vector<float>(8, 1.0f));
}

TEST(PlaybackMixer, soloDoesNotChangeTheFactor)
{
    PlaybackMixer mixer(8);
    mixer.setSolo(3, true);
    EXPECT_FLOAT_EQ(mix(mixer, std::vector<float>(8, 1.0f), 8).stereo[0], 0.35355339f);
}

TEST(PlaybackMixer, peakIsTakenBehindTheGainAndMayExceedOne)
{
    PlaybackMixer mixer(2);
    mixer.setGain(0, 3.0f);
    const Mixed out = mix(mixer, { 0.5f, 0.25f, -1.0f, 0.125f }, 2);
    EXPECT_EQ(out.peaks, (std::vector<float>{ 3.0f, 0.25f }));
}

TEST(PlaybackMixer, oneTrackAtUnityIsUnchangedBitForBit)
{
    const PlaybackMixer mixer(1);
    const std::vector<float> input = noise(300, 1.0f);
    const Mixed out = mix(mixer, input, 1);
    for (size_t i = 0; i < input.size(); ++i)
        ASSERT_EQ(out.stereo[2 * i], input[i]);
}

TEST(PlaybackMixer, leftAndRightAreBitIdenticalForAllInputs)
{
    for (size_t tracks = 1; tracks <= 64; ++tracks) {
        std::vector<float> input = noise(tracks * 70, 3.0f);
        input[0] = kNotANumber;
        input[tracks] = kInfinity;
        input[2 * tracks] = -0.0f;
        const PlaybackMixer mixer(static_cast<int32_t>(tracks));
        const Mixed out = mix(mixer, input, tracks);
        for (size_t i = 0; i < out.stereo.size(); i += 2)
            ASSERT_EQ(std::bit_cast<uint32_t>(out.stereo[i]), std::bit_cast<uint32_t>(out.stereo[i + 1]));
    }
}

TEST(PlaybackMixer, outputStaysBetweenTheLimitsWhateverComesIn)
{
    const PlaybackMixer mixer(2);
    const Mixed out = mix(mixer, { kNotANumber, 0.1f, kInfinity, 0.1f, -kInfinity, 0.1f, 1e30f, 1e30f }, 2);
    EXPECT_EQ(out.stereo, (std::vector<float>{ 0.0f, 0.0f, 1.0f, 1.0f, -1.0f, -1.0f, 1.0f, 1.0f }));
}

TEST(PlaybackMixer, sumsAndPeaksOfEveryTrackCountAgreeWithPlainArithmetic)
{
    for (size_t tracks = 1; tracks <= 64; ++tracks) {
        constexpr size_t kFrames = 131; // More than one chunk, and no multiple of anything.
        const std::vector<float> input = noise(tracks * kFrames, 0.9f);
        PlaybackMixer mixer(static_cast<int32_t>(tracks));
        for (size_t track = 0; track < tracks; ++track)
            mixer.setGain(static_cast<int32_t>(track), 0.1f + 0.01f * static_cast<float>(track));
        const Mixed out = mix(mixer, input, tracks);

        std::vector<float> peaks(tracks, 0.0f);
        for (size_t frame = 0; frame < kFrames; ++frame) {
            double sum = 0.0;
            for (size_t track = 0; track < tracks; ++track) {
                const float sample = input[frame * tracks + track] * mixer.gain(static_cast<int32_t>(track));
                peaks[track] = std::max(peaks[track], std::abs(sample));
                sum += static_cast<double>(sample);
            }
            ASSERT_NEAR(out.stereo[2 * frame], std::clamp(sum / std::sqrt(tracks), -1.0, 1.0), 2e-6) << tracks;
        }
        EXPECT_EQ(out.peaks, peaks) << tracks;
    }
}

TEST(PlaybackMixer, nullBuffersAndNoFramesZeroWhatIsThere)
{
    const PlaybackMixer mixer(2);
    const std::vector<float> input(8, 1.0f);
    std::vector<float> stereo(8, 9.0f);
    std::vector<float> peaks(2, 9.0f);

    mixer.mixToStereo(nullptr, 4, stereo.data(), peaks.data());
    EXPECT_EQ(stereo, std::vector<float>(8, 0.0f));
    EXPECT_EQ(peaks, std::vector<float>(2, 0.0f));

    peaks.assign(2, 9.0f);
    mixer.mixToStereo(input.data(), 4, nullptr, peaks.data());
    EXPECT_EQ(peaks, std::vector<float>(2, 0.0f));

    stereo.assign(8, 9.0f);
    peaks.assign(2, 9.0f);
    mixer.mixToStereo(input.data(), 0, stereo.data(), peaks.data());
    mixer.mixToStereo(input.data(), -1, stereo.data(), nullptr);
    EXPECT_EQ(stereo, std::vector<float>(8, 9.0f));
    EXPECT_EQ(peaks, std::vector<float>(2, 0.0f));
}

TEST(PlaybackMixer, peaksMayBeNull)
{
    const PlaybackMixer mixer(1);
    const float input[] = { 0.5f };
    float stereo[2] = {};
    mixer.mixToStereo(input, 1, stereo, nullptr);
    EXPECT_EQ(stereo[1], 0.5f);
}
