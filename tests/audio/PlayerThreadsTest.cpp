// All threads of the player against each other. What counts here is what the sanitizers say; the rest is bookkeeping.

#include "tests/audio/PlayerTestSupport.h"

#include <atomic>
#include <cmath>

namespace {

// The device's thread: pulls as fast as it can until told to end, and looks at every sample.
class Device {
public:
    Device() : thread([this] { run(); }) { }
    ~Device()
    {
        ending = true;
        thread.join();
    }
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    bool heardOnlySound() const { return sound; }

private:
    void run()
    {
        while (!ending) {
            for (const float sample : DrivenOutput::pullStereo(256)) {
                if (!(sample >= -1.0f && sample <= 1.0f))
                    sound = false;
            }
            std::this_thread::yield();
        }
    }

    std::atomic<bool> ending{ false };
    std::atomic<bool> sound{ true };
    std::thread thread;
};

} // namespace

TEST_F(PlayerTest, tenThousandSeeksAgainstPlayingLeaveAWorkingPlayer)
{
    const size_t frames = 200000;
    ASSERT_TRUE(player.open(monoFile(frames)));
    ASSERT_TRUE(player.play());
    {
        Device device;
        for (int i = 0; i < 10000; ++i) {
            player.seekSeconds(static_cast<double>((i * 7919) % 190000) / 48000.0);
            (void)player.positionSeconds();
            (void)player.trackPeak(0);
            player.setTrackGain(0, 0.5f + 0.5f * static_cast<float>(i % 2));
            if (i % 64 == 0)
                std::this_thread::sleep_for(std::chrono::microseconds(200));
        }
        EXPECT_TRUE(device.heardOnlySound());
    }
    player.stop();
    player.setTrackGain(0, 1.0f);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    player.stop();
    player.seekSeconds(static_cast<double>(frames - 5000) / 48000.0);
    ASSERT_TRUE(player.play());
    const std::vector<float> all = numberedSamples(frames);
    EXPECT_EQ(hear(SIZE_MAX), std::vector<float>(all.end() - 5000, all.end()));
}

TEST_F(PlayerTest, seeksAndStopsAgainstARunningConverterLeaveAWorkingPlayer)
{
    DrivenOutput::setNominalRate(44100.0);
    ASSERT_TRUE(player.open(monoFile(200000)));
    {
        Device device;
        for (int i = 0; i < 2000; ++i) {
            ASSERT_TRUE(player.play());
            player.seekSeconds(static_cast<double>((i * 7919) % 190000) / 48000.0);
            if (i % 16 == 0)
                std::this_thread::sleep_for(std::chrono::microseconds(500));
            if (i % 64 == 0)
                player.stop();
        }
        EXPECT_TRUE(device.heardOnlySound());
    }
    player.stop();
    player.seekSeconds(4.0);
    ASSERT_TRUE(player.play());
    const size_t left = 200000 - 192000;
    const double expected = static_cast<double>(left) * 44100.0 / 48000.0;
    EXPECT_NEAR(static_cast<double>(hear(SIZE_MAX).size()), expected, 500.0);
}

TEST_F(PlayerTest, transportChangesAgainstAPullingDeviceEndWell)
{
    ASSERT_TRUE(player.open(monoFile(100000)));
    Device device;
    for (int i = 0; i < 500; ++i) {
        ASSERT_TRUE(player.play());
        player.pause();
        player.setTrackMuted(0, i % 3 == 0);
        player.setTrackSolo(0, i % 5 == 0);
        player.resume();
        if (i % 4 == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        player.stop();
    }
    EXPECT_TRUE(comesTrue([&] { return player.trackPeak(0) == 0.0f; })) << "stop has the last word on the peaks";
    player.close();
    EXPECT_TRUE(device.heardOnlySound());
}

TEST_F(PlayerTest, openingAndClosingWhilePlayingLeavesNothingBehind)
{
    const std::string path = monoFile(100000);
    Device device;
    for (int i = 0; i < 50; ++i) {
        ASSERT_TRUE(player.open(path));
        ASSERT_TRUE(player.play());
        if (i % 2 == 0)
            player.close();
    }
    player.close();
    EXPECT_EQ(DrivenOutput::unitsAlive(), 0);
}

TEST_F(PlayerTest, twoPlayersKeepApart)
{
    TagwellAudioPlayer other;
    ASSERT_TRUE(player.open(monoFile(1000)));
    ASSERT_TRUE(other.open(monoFile(1000)));
    ASSERT_TRUE(player.play());
    player.close();
    EXPECT_TRUE(other.isOpen());
    EXPECT_FALSE(other.isPlaying());
}
