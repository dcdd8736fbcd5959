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
        state->file = state->reader.getHeader();
        state->deviceRate = deviceRate;
        ASSERT_TRUE(state->converter.setup(state->file.sampleRate, deviceRate));
        mixer.reset(state->file.channels);
        blocks = std::make_unique<MixerBlocks>(state->file.channels);
        state->reader.startPrefetch(state->file.channels);
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
    void drain()
    {
        std::vector<StereoFrame> out(StereoRing::kRenderBatch);
        while (state->stereoRing.take(StereoRing::kRenderBatch, out.data()) > 0) { }
    }

    // The device takes `frames` frames, 1 to StereoRing::kRenderBatch.
    void take(uint32_t frames)
    {
        std::vector<StereoFrame> out(frames);
        ASSERT_EQ(state->stereoRing.take(frames, out.data()), frames);
    }

    // Adds silence until `frames` frames are queued.
    void queue(uint32_t frames)
    {
        ASSERT_TRUE(state->stereoRing.advance(state->stereoRing.mark(), frames - state->stereoRing.queued()));
        ASSERT_EQ(state->stereoRing.queued(), frames);
    }

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
    const float peak = state->peaks.at(0);
    EXPECT_GT(peak, 0.0f);
    state->transport.pause();
    EXPECT_EQ(pass(), milliseconds(8));
    state->transport.resume();
    state->transport.stop();
    EXPECT_EQ(pass(), milliseconds(8));
    EXPECT_EQ(state->reader.getPosition(), position);
    EXPECT_EQ(state->peaks.at(0), peak) << "peaks stand still";
}

TEST_F(MixerPassTest, aPassTakes256FramesAtMost)
{
    openMono(10000);
    takeBlock();
    EXPECT_EQ(state->stereoRing.written(), 256U);
    EXPECT_TRUE(state->transport.audioStarted());
}

TEST_F(MixerPassTest, theRingIsFilledToEightyMilliseconds)
{
    openMono(20000);
    ASSERT_TRUE(comesTrue([&] { return pass() == milliseconds(2); }));
    EXPECT_EQ(state->stereoRing.queued(), 3840U);
    EXPECT_EQ(state->reader.getPosition(), 3840);
    take(100);
    EXPECT_EQ(pass(), milliseconds(0));
    EXPECT_EQ(state->stereoRing.queued(), 3840U) << "only what is missing is taken";
}

TEST_F(MixerPassTest, theTargetIsCutToWholeFrames)
{
    openMono(20000, 48000.0);
    state->deviceRate = 44106.0; // 3528.48 frames.
    ASSERT_TRUE(comesTrue([&] { return pass() == milliseconds(2); }));
    EXPECT_EQ(state->stereoRing.queued(), 3528U);
}

TEST_F(MixerPassTest, theTargetIsAtLeast64Frames)
{
    openMono(20000);
    state->deviceRate = 100.0;
    ASSERT_TRUE(comesTrue([&] { return pass() == milliseconds(2); }));
    EXPECT_EQ(state->stereoRing.queued(), 64U);
}

TEST_F(MixerPassTest, anAbsurdDeviceRateFillsTheRingUpToLessThan64FramesOfRoom)
{
    openMono(40000);
    state->deviceRate = 1e300;
    ASSERT_TRUE(comesTrue([&] { return pass() == milliseconds(2); }));
    EXPECT_EQ(state->stereoRing.queued(), 8191U) << "31 blocks of 256 and one of 255";
}

TEST_F(MixerPassTest, lessThan64FramesOfRoomAreLeftAlone)
{
    openMono(40000);
    state->deviceRate = 192000.0; // Wants more than the ring holds.
    takeBlock();
    const int64_t position = state->reader.getPosition();
    queue(8191 - 63);
    EXPECT_EQ(pass(), milliseconds(2));
    EXPECT_EQ(state->reader.getPosition(), position);
    take(1);
    EXPECT_EQ(pass(), milliseconds(0));
    EXPECT_EQ(state->reader.getPosition(), position + 64);
}

TEST_F(MixerPassTest, theCountOfDeviceFramesIsTakenAsFileFramesWithoutScaling)
{
    open(makeFloatFile(folder, "fast.wav", 96000, 1, numberedSamples(20000)), 48000.0);
    takeBlock();
    EXPECT_EQ(state->reader.getPosition(), 256);
    EXPECT_LE(state->stereoRing.written(), 128U);
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
        return state->stereoRing.written() == 300U;
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
        return state->stereoRing.written() == 300U;
    }));
    drain();
    state->transport.forgetAudio();
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
        return state->stereoRing.written() == 300U;
    }));
    drain();
    state->reader.setPosition(0);
    pass();
    EXPECT_FALSE(state->transport.finished());
    EXPECT_TRUE(state->transport.playing());
}

TEST_F(MixerPassTest, peaksFallByEightPercentWithEachBlock)
{
    std::vector<float> samples(256, 0.5f);
    samples.resize(1024, 0.0f);
    open(makeFloatFile(folder, "burst.wav", 48000, 1, samples));
    takeBlock();
    EXPECT_EQ(state->peaks.at(0), 0.5f);
    takeBlock();
    EXPECT_EQ(state->peaks.at(0), 0.92f * 0.5f);
    takeBlock();
    EXPECT_EQ(state->peaks.at(0), 0.92f * (0.92f * 0.5f));
}

TEST_F(MixerPassTest, aLouderBlockRaisesThePeakAtOnce)
{
    std::vector<float> samples(256, 0.25f);
    samples.resize(512, 0.75f);
    open(makeFloatFile(folder, "rise.wav", 48000, 1, samples));
    takeBlock();
    takeBlock();
    EXPECT_EQ(state->peaks.at(0), 0.75f);
}

TEST_F(MixerPassTest, aConvertedBlockHas1024FramesAtMost)
{
    open(makeFloatFile(folder, "slow.wav", 24000, 1, numberedSamples(20000)), 192000.0);
    takeBlock();
    takeBlock();
    const uint32_t before = state->stereoRing.written();
    takeBlock();
    EXPECT_EQ(state->stereoRing.written() - before, 1024U) << "256 file frames would be 2048";
}

TEST_F(MixerPassTest, convertedBlocksAreWrittenWithoutALookAtTheRoom)
{
    openMono(60000, 192000.0);
    ASSERT_TRUE(comesTrue([&] { return pass() == milliseconds(0) && state->stereoRing.written() > 1000U; }));
    queue(8191 - 64); // Room for 64 frames.
    const uint32_t before = state->stereoRing.written();
    EXPECT_EQ(pass(), milliseconds(0));
    EXPECT_GT(state->stereoRing.written() - before, 64U) << "64 file frames become about 256";
}

// The file is at its end, but what is queued of it is still to be heard when the seek empties the ring.
TEST_F(MixerPassTest, aRingThatASeekHasEmptiedIsNotTheEnd)
{
    openMono(300);
    ASSERT_TRUE(comesTrue([&] {
        pass();
        return state->stereoRing.written() == 300U;
    }));
    state->transport.beginSeek();
    state->stereoRing.clear();
    EXPECT_EQ(pass(), milliseconds(4));
    EXPECT_TRUE(state->transport.playing());
    EXPECT_FALSE(state->transport.finished());
    state->reader.setPosition(100);
    state->transport.endSeek();
    ASSERT_TRUE(comesTrue([&] {
        pass();
        return state->stereoRing.queued() == 200U;
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
