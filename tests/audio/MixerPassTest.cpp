// The mixer thread's work, pass by pass and without sleeping.

#include "audio/PlayerState.h"
#include "tests/audio/PlayerTestSupport.h"

#include <cmath>
#include <memory>

namespace {

using std::chrono::milliseconds;

class MixerPassTest : public testing::Test {
protected:
    // A state as `open` leaves it, but without an output and without the mixer thread; playing.
    void open(const std::string& path, double deviceRate = 48000.0)
    {
        ASSERT_TRUE(state->reader.open(path));
        state->channels = state->reader.getChannels();
        state->sampleRate = state->reader.getSampleRate();
        state->deviceRate = deviceRate;
        ASSERT_TRUE(state->converter.setup(state->sampleRate, deviceRate));
        mixer.reset(state->channels);
        blocks = std::make_unique<MixerBlocks>(state->channels);
        state->reader.startPrefetch(state->channels);
        state->transport.start();
    }

    void openMono(size_t frames, double deviceRate = 48000.0)
    {
        open(makeFloatFile(folder, "mono.wav", 48000, 1, numberedSamples(frames)), deviceRate);
    }

    milliseconds pass() { return mixerPass(*state, mixer, *blocks); }

    // Passes until a block was taken; the prefetch thread needs a moment first.
    void takeBlock()
    {
        ASSERT_TRUE(comesTrue([&] { return pass() == milliseconds(0); }));
    }

    // As the device would, so that there is room again.
    void drain() { state->stereoRead = state->stereoWrite.load(); }

    TempFolder folder;
    std::unique_ptr<PlayerState> state = std::make_unique<PlayerState>();
    PlaybackMixer mixer{ 0 };
    std::unique_ptr<MixerBlocks> blocks;
};

} // namespace

TEST_F(MixerPassTest, nothingIsTakenWhileTheTransportRests)
{
    openMono(1000);
    takeBlock();
    const int64_t position = state->reader.getPosition();
    const float peak = state->peaks[0];
    EXPECT_GT(peak, 0.0F);
    state->paused = true;
    EXPECT_EQ(pass(), milliseconds(8));
    state->paused = false;
    state->transport.stop();
    EXPECT_EQ(pass(), milliseconds(8));
    EXPECT_EQ(state->reader.getPosition(), position);
    EXPECT_EQ(state->peaks[0], peak) << "peaks stand still";
}

TEST_F(MixerPassTest, aPassTakes256FramesAtMost)
{
    openMono(10000);
    takeBlock();
    EXPECT_EQ(state->stereoWrite, 256U);
    EXPECT_TRUE(state->audioStarted);
}

TEST_F(MixerPassTest, theRingIsFilledToEightyMilliseconds)
{
    openMono(20000);
    ASSERT_TRUE(comesTrue([&] { return pass() == milliseconds(2); }));
    EXPECT_EQ(state->queuedFrames(), 3840U);
    EXPECT_EQ(state->reader.getPosition(), 3840);
    state->stereoRead = 100;
    EXPECT_EQ(pass(), milliseconds(0));
    EXPECT_EQ(state->queuedFrames(), 3840U) << "only what is missing is taken";
}

TEST_F(MixerPassTest, theTargetIsCutToWholeFrames)
{
    openMono(20000, 48000.0);
    state->deviceRate = 44106.0; // 3528.48 frames.
    ASSERT_TRUE(comesTrue([&] { return pass() == milliseconds(2); }));
    EXPECT_EQ(state->queuedFrames(), 3528U);
}

TEST_F(MixerPassTest, theTargetIsAtLeast64Frames)
{
    openMono(20000);
    state->deviceRate = 100.0;
    ASSERT_TRUE(comesTrue([&] { return pass() == milliseconds(2); }));
    EXPECT_EQ(state->queuedFrames(), 64U);
}

TEST_F(MixerPassTest, anAbsurdDeviceRateFillsTheRingUpToLessThan64FramesOfRoom)
{
    openMono(40000);
    state->deviceRate = 1e300;
    ASSERT_TRUE(comesTrue([&] { return pass() == milliseconds(2); }));
    EXPECT_EQ(state->queuedFrames(), 8191U) << "31 blocks of 256 and one of 255";
}

TEST_F(MixerPassTest, lessThan64FramesOfRoomAreLeftAlone)
{
    openMono(40000);
    state->deviceRate = 192000.0; // Wants more than the ring holds.
    takeBlock();
    const int64_t position = state->reader.getPosition();
    state->stereoWrite = 8191 - 63;
    state->stereoRead = 0;
    EXPECT_EQ(pass(), milliseconds(2));
    EXPECT_EQ(state->reader.getPosition(), position);
    state->stereoRead = 1;
    EXPECT_EQ(pass(), milliseconds(0));
    EXPECT_EQ(state->reader.getPosition(), position + 64);
}

TEST_F(MixerPassTest, theCountOfDeviceFramesIsTakenAsFileFramesWithoutScaling)
{
    open(makeFloatFile(folder, "fast.wav", 96000, 1, numberedSamples(20000)), 48000.0);
    takeBlock();
    EXPECT_EQ(state->reader.getPosition(), 256);
    EXPECT_LE(state->stereoWrite, 128U);
}

TEST_F(MixerPassTest, withoutDataThePassRestsFourMilliseconds)
{
    openMono(0);
    EXPECT_EQ(pass(), milliseconds(4));
    EXPECT_TRUE(state->transport.playing()) << "no block was taken since the start";
    EXPECT_FALSE(state->transport.finished());
}

TEST_F(MixerPassTest, theEndIsNoticedOnlyWhenTheRingHasRunEmpty)
{
    openMono(300);
    takeBlock();
    ASSERT_TRUE(comesTrue([&] {
        pass();
        return state->stereoWrite == 300U;
    }));
    EXPECT_EQ(pass(), milliseconds(4));
    EXPECT_FALSE(state->transport.finished());
    EXPECT_TRUE(state->transport.playing());
    drain();
    EXPECT_EQ(pass(), milliseconds(4));
    EXPECT_TRUE(state->transport.finished());
    EXPECT_FALSE(state->transport.playing());
    EXPECT_EQ(pass(), milliseconds(8));
}

TEST_F(MixerPassTest, theEndIsNotNoticedBeforeABlockSinceTheStart)
{
    openMono(300);
    takeBlock();
    ASSERT_TRUE(comesTrue([&] {
        pass();
        return state->stereoWrite == 300U;
    }));
    drain();
    state->audioStarted = false;
    pass();
    EXPECT_FALSE(state->transport.finished());
    EXPECT_TRUE(state->transport.playing());
}

TEST_F(MixerPassTest, aPendingSeekBeforeTheEndKeepsTheTransportRunning)
{
    openMono(300);
    takeBlock();
    ASSERT_TRUE(comesTrue([&] {
        pass();
        return state->stereoWrite == 300U;
    }));
    drain();
    state->reader.setPosition(0);
    pass();
    EXPECT_FALSE(state->transport.finished());
    EXPECT_TRUE(state->transport.playing());
}

TEST_F(MixerPassTest, peaksFallByEightPercentWithEachBlock)
{
    std::vector<float> samples(256, 0.5F);
    samples.resize(1024, 0.0F);
    open(makeFloatFile(folder, "burst.wav", 48000, 1, samples));
    takeBlock();
    EXPECT_EQ(state->peaks[0], 0.5F);
    takeBlock();
    EXPECT_EQ(state->peaks[0], 0.92F * 0.5F);
    takeBlock();
    EXPECT_EQ(state->peaks[0], 0.92F * (0.92F * 0.5F));
}

TEST_F(MixerPassTest, aLouderBlockRaisesThePeakAtOnce)
{
    std::vector<float> samples(256, 0.25F);
    samples.resize(512, 0.75F);
    open(makeFloatFile(folder, "rise.wav", 48000, 1, samples));
    takeBlock();
    takeBlock();
    EXPECT_EQ(state->peaks[0], 0.75F);
}

TEST_F(MixerPassTest, aConvertedBlockHas1024FramesAtMost)
{
    open(makeFloatFile(folder, "slow.wav", 24000, 1, numberedSamples(20000)), 192000.0);
    takeBlock();
    takeBlock();
    const uint64_t before = state->stereoWrite;
    takeBlock();
    EXPECT_EQ(state->stereoWrite - before, 1024U) << "256 file frames would be 2048";
}

TEST_F(MixerPassTest, convertedBlocksAreWrittenWithoutALookAtTheRoom)
{
    openMono(60000, 192000.0);
    ASSERT_TRUE(comesTrue([&] { return pass() == milliseconds(0) && state->stereoWrite > 1000U; }));
    state->stereoRead = state->stereoWrite - (8191U - 64U); // Room for 64 frames.
    const uint64_t before = state->stereoWrite;
    EXPECT_EQ(pass(), milliseconds(0));
    EXPECT_GT(state->stereoWrite - before, 64U) << "64 file frames become about 256";
}

TEST_F(MixerPassTest, aBlockThatASeekHasOvertakenIsDropped)
{
    const std::vector<float> stereo(20, 0.5F);
    state->stereoWrite = 500;
    state->publishFrames(400, stereo.data(), 10);
    EXPECT_EQ(state->stereoWrite, 500U);
    state->publishFrames(500, stereo.data(), 10);
    EXPECT_EQ(state->stereoWrite, 510U);
}

TEST_F(MixerPassTest, aBlockThatAClearHasOvertakenIsDroppedThoughTheCounterStoodAtZero)
{
    const std::vector<float> stereo(20, 0.5F);
    const uint64_t from = state->stereoWrite;
    ASSERT_EQ(from, 0U);
    state->emptyStereoRing();
    state->publishFrames(from, stereo.data(), 10);
    EXPECT_EQ(state->queuedFrames(), 0U);
    state->publishFrames(state->stereoWrite, stereo.data(), 10);
    EXPECT_EQ(state->queuedFrames(), 10U);
}

TEST_F(MixerPassTest, aRingOfWhichOnlyOneCounterIsClearedIsEmpty)
{
    const std::vector<float> stereo(20, 0.5F);
    state->publishFrames(state->stereoWrite, stereo.data(), 10);
    const uint64_t written = state->stereoWrite;
    state->emptyStereoRing();
    state->stereoWrite = written;
    EXPECT_EQ(state->queuedFrames(), 0U);
}

TEST_F(MixerPassTest, anEndFoundBeforeASeekOrStopOrStartCountsNoMore)
{
    TransportFlags& transport = state->transport;
    for (void (TransportFlags::*change)() :
        { &TransportFlags::clearFinished, &TransportFlags::stop, &TransportFlags::start }) {
        transport.start();
        const uint64_t mark = transport.mark();
        (transport.*change)();
        const bool playing = transport.playing();
        EXPECT_FALSE(transport.finish(mark));
        EXPECT_EQ(transport.playing(), playing);
        EXPECT_FALSE(transport.finished());
    }
    transport.start();
    EXPECT_TRUE(transport.finish(transport.mark()));
    EXPECT_FALSE(transport.playing());
    EXPECT_TRUE(transport.finished());
}

// The file is at its end, but what is queued of it is still to be heard when the seek empties the ring.
TEST_F(MixerPassTest, aRingThatASeekHasEmptiedIsNotTheEnd)
{
    openMono(300);
    ASSERT_TRUE(comesTrue([&] {
        pass();
        return state->stereoWrite == 300U;
    }));
    state->transport.beginSeek();
    state->emptyStereoRing();
    EXPECT_EQ(pass(), milliseconds(4));
    EXPECT_TRUE(state->transport.playing());
    EXPECT_FALSE(state->transport.finished());
    state->reader.setPosition(100);
    state->transport.endSeek();
    ASSERT_TRUE(comesTrue([&] {
        pass();
        return state->queuedFrames() == 200U;
    }));
    drain();
    pass();
    EXPECT_TRUE(state->transport.finished()) << "the end counts again behind the seek";
}

TEST_F(MixerPassTest, blocksHoldAtLeastOneTrack)
{
    const MixerBlocks none(0);
    EXPECT_EQ(none.input.size(), 256U);
    EXPECT_EQ(none.peaks.size(), 1U);
    const MixerBlocks many(64);
    EXPECT_EQ(many.input.size(), 256U * 64U);
    EXPECT_EQ(many.stereo.size(), 512U);
    EXPECT_EQ(many.converted.size(), 2048U);
}
