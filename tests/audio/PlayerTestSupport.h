#pragma once

#include "audio/PlayerState.h"
#include "audio/TagwellAudioPlayer.h"
#include "tests/support/DrivenOutput.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <bit>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

/// Waits for what another thread is to bring about. False if it hasn't come after half a minute, which only a hang
/// explains.
template <typename Condition> bool comesTrue(Condition condition)
{
    for (int i = 0; i < 30000; ++i) {
        if (condition())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return condition();
}

/// Makes a 32-bit float file of `interleaved` samples and answers its path.
inline std::string makeFloatFile(const TempFolder& folder, const std::string& name, uint32_t rate, uint16_t channels,
    const std::vector<float>& interleaved)
{
    std::string payload;
    payload.reserve(interleaved.size() * 4);
    for (const float sample : interleaved)
        payload += le32(std::bit_cast<uint32_t>(sample));
    const std::string path = folder.file(name);
    WavBuilder().fmt(rate, channels, 32, 3).data(payload).write(path);
    return path;
}

/// `frames` x `channels` samples, none of them 0.0 and each different from its neighbours: silence and gaps show.
inline std::vector<float> numberedSamples(size_t frames, size_t channels = 1)
{
    std::vector<float> samples(frames * channels);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(1 + i % 30000) / 32768.0f;
    return samples;
}

/// A player over the driven output, with a folder for its files.
class PlayerTest : public testing::Test {
protected:
    PlayerTest() { DrivenOutput::reset(); }

    /// A mono file of `frames` numbered samples at `rate`.
    std::string monoFile(size_t frames, uint32_t rate = 48000)
    {
        return makeFloatFile(folder, "mono.wav", rate, 1, numberedSamples(frames));
    }

    /// What the device hears until it has got `frames` frames that aren't silence, or the player has finished: the left
    /// channel without its silence. The right one has to be equal.
    std::vector<float> hear(size_t frames)
    {
        std::vector<float> heard;
        EXPECT_TRUE(comesTrue([&] {
            const std::vector<float> pulled = DrivenOutput::pullStereo(128);
            for (size_t i = 0; i < pulled.size(); i += 2) {
                EXPECT_EQ(pulled[i], pulled[i + 1]);
                if (pulled[i] != 0.0f)
                    heard.push_back(pulled[i]);
            }
            return heard.size() >= frames || player.isFinished();
        }));
        return heard;
    }

    /// The state of the player opened last.
    static PlayerState& state() { return *static_cast<PlayerState*>(DrivenOutput::renderContext()); }

    /// Waits until the mixer has filled the stereo ring. Without a pull it then has nothing under way that a pause, a
    /// seek or a stop could meet halfway. The file needs 80 ms more.
    static void fillRing()
    {
        const auto target = static_cast<uint32_t>(state().deviceRate * 0.08);
        EXPECT_TRUE(comesTrue([&] { return state().stereoRing.queued() == target; }));
    }

    TempFolder folder;
    TagwellAudioPlayer player;
};
