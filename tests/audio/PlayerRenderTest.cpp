// The render callback by hand, in every layout of buffers, on a state that the test fills itself.

#include "audio/PlayerState.h"
#include "tests/audio/PlayerTestSupport.h"

#include <memory>

namespace {

using AudioOutput::BufferListOf;

// The function that a player installs on its output.
AudioOutput::RenderFunction installedFunction()
{
    DrivenOutput::reset();
    const TempFolder folder;
    TagwellAudioPlayer player;
    EXPECT_TRUE(player.open(makeFloatFile(folder, "one.wav", 48000, 1, { 0.5f })));
    return DrivenOutput::renderFunction();
}

class RenderTest : public testing::Test {
protected:
    RenderTest() { state->transport.start(); }

    // Frame i is i + 1 on the left and -(i + 1) on the right, counted on from the frame queued last.
    void queue(uint32_t frames)
    {
        std::vector<float> stereo;
        for (uint32_t i = 0; i < frames; ++i) {
            ++queued;
            stereo.push_back(static_cast<float>(queued));
            stereo.push_back(-static_cast<float>(queued));
        }
        ASSERT_TRUE(state->stereoRing.publish(state->stereoRing.mark(), stereo.data(), frames));
    }

    int32_t render(uint32_t frames, AudioOutput::BufferList* list)
    {
        return function(state.get(), nullptr, nullptr, 0, frames, list);
    }

    std::unique_ptr<PlayerState> state = std::make_unique<PlayerState>();
    AudioOutput::RenderFunction function = installedFunction();
    uint32_t queued = 0;
};

uint32_t bytesOf(const std::vector<float>& samples)
{
    return static_cast<uint32_t>(samples.size() * sizeof(float));
}

} // namespace

TEST_F(RenderTest, withoutContextOrListNothingHappens)
{
    std::vector<float> out(4, 9.0f);
    BufferListOf<1> list;
    list.buffer(0) = { 1, bytesOf(out), out.data() };
    EXPECT_EQ(function(nullptr, nullptr, nullptr, 0, 4, list.list()), 0);
    EXPECT_EQ(out, std::vector<float>(4, 9.0f));
    queue(4);
    EXPECT_EQ(render(4, nullptr), 0);
    EXPECT_EQ(state->stereoRing.taken(), 0U);
}

TEST_F(RenderTest, separateBuffersGetLeftAndRightAndThenSilence)
{
    queue(3);
    std::vector<float> left(5, 9.0f);
    std::vector<float> right(5, 9.0f);
    BufferListOf<2> list;
    list.buffer(0) = { 1, bytesOf(left), left.data() };
    list.buffer(1) = { 1, bytesOf(right), right.data() };
    EXPECT_EQ(render(5, list.list()), 0);
    EXPECT_EQ(left, (std::vector<float>{ 1, 2, 3, 0, 0 }));
    EXPECT_EQ(right, (std::vector<float>{ -1, -2, -3, 0, 0 }));
    EXPECT_EQ(state->stereoRing.taken(), 3U);
}

TEST_F(RenderTest, furtherSeparateBuffersAreZeroedOverTheirOwnSize)
{
    queue(2);
    std::vector<float> left(2, 9.0f);
    std::vector<float> right(2, 9.0f);
    std::vector<float> third(6, 9.0f);
    BufferListOf<4> list;
    list.buffer(0) = { 0, bytesOf(left), left.data() };
    list.buffer(1) = { 1, bytesOf(right), right.data() };
    list.buffer(2) = { 1, bytesOf(third), third.data() };
    render(2, list.list());
    EXPECT_EQ(third, std::vector<float>(6, 0.0f));
    EXPECT_EQ(right, (std::vector<float>{ -1, -2 }));
}

TEST_F(RenderTest, aNullSeparateBufferIsSkipped)
{
    for (const uint32_t absent : { 0U, 1U }) {
        queue(2);
        std::vector<float> other(2, 9.0f);
        BufferListOf<2> list;
        list.buffer(absent) = { 1, bytesOf(other), nullptr };
        list.buffer(1 - absent) = { 1, bytesOf(other), other.data() };
        EXPECT_EQ(render(2, list.list()), 0);
        EXPECT_NE(other[0], 9.0f);
    }
}

TEST_F(RenderTest, oneStereoBufferIsInterleaved)
{
    queue(2);
    std::vector<float> out(8, 9.0f);
    BufferListOf<1> list;
    list.buffer(0) = { 2, bytesOf(out), out.data() };
    render(2, list.list());
    EXPECT_EQ(out, (std::vector<float>{ 1, -1, 2, -2, 0, 0, 0, 0 })) << "its size counts, not the frames asked for";
}

TEST_F(RenderTest, oneMonoBufferGetsTheLeftSide)
{
    for (const uint32_t channels : { 0U, 1U }) {
        state->stereoRing.clear();
        queued = 0;
        queue(2);
        std::vector<float> out(4, 9.0f);
        BufferListOf<1> list;
        list.buffer(0) = { channels, bytesOf(out), out.data() };
        render(4, list.list());
        EXPECT_EQ(out, (std::vector<float>{ 1, 2, 0, 0 }));
    }
}

TEST_F(RenderTest, interleavedChannelsBeyondTwoAreSilent)
{
    queue(1);
    std::vector<float> out(8, 9.0f);
    BufferListOf<1> list;
    list.buffer(0) = { 4, bytesOf(out), out.data() };
    render(2, list.list());
    EXPECT_EQ(out, (std::vector<float>{ 1, -1, 0, 0, 0, 0, 0, 0 }));
}

TEST_F(RenderTest, severalInterleavedBuffersAllGetTheSameFrames)
{
    queue(2);
    std::vector<float> first(4, 9.0f);
    std::vector<float> second(2, 9.0f);
    BufferListOf<2> list;
    list.buffer(0) = { 2, bytesOf(first), first.data() };
    list.buffer(1) = { 1, bytesOf(second), second.data() };
    render(2, list.list());
    EXPECT_EQ(first, (std::vector<float>{ 1, -1, 2, -2 }));
    EXPECT_EQ(second, (std::vector<float>{ 1, 2 }));
}

TEST_F(RenderTest, anInterleavedBufferWithoutRoomForAFrameIsSkipped)
{
    queue(2);
    std::vector<float> out(2, 9.0f);
    BufferListOf<1> list;
    list.buffer(0) = { 2, 7, out.data() };
    EXPECT_EQ(render(2, list.list()), 0);
    list.buffer(0) = { 2, 8, nullptr };
    EXPECT_EQ(render(2, list.list()), 0);
    list.buffer(0) = { 0xFFFFFFFFU, 8, out.data() };
    EXPECT_EQ(render(2, list.list()), 0);
    EXPECT_EQ(out, std::vector<float>(2, 9.0f));
}

TEST_F(RenderTest, aListOfNoBuffersStillTakesTheFrames)
{
    queue(5);
    BufferListOf<1> list;
    list.list()->mNumberBuffers = 0;
    EXPECT_EQ(render(3, list.list()), 0);
    EXPECT_EQ(state->stereoRing.taken(), 3U);
}

TEST_F(RenderTest, oneCallTakes2048FramesAtMostAndTheRestIsSilence)
{
    queue(5000);
    std::vector<float> left(4096, 9.0f);
    std::vector<float> right(4096, 9.0f);
    BufferListOf<2> list;
    list.buffer(0) = { 1, bytesOf(left), left.data() };
    list.buffer(1) = { 1, bytesOf(right), right.data() };
    render(4096, list.list());
    EXPECT_EQ(left[2047], 2048.0f);
    EXPECT_EQ(right[2047], -2048.0f);
    EXPECT_EQ(std::vector<float>(left.begin() + 2048, left.end()), std::vector<float>(2048, 0.0f));
    EXPECT_EQ(state->stereoRing.taken(), 2048U);
    EXPECT_EQ(state->stereoRing.queued(), 2952U);
}

TEST_F(RenderTest, neitherPausedNorStoppedTakesFrames)
{
    queue(4);
    std::vector<float> left(4, 9.0f);
    std::vector<float> right(4, 9.0f);
    BufferListOf<2> list;
    list.buffer(0) = { 1, bytesOf(left), left.data() };
    list.buffer(1) = { 1, bytesOf(right), right.data() };
    state->transport.pause();
    render(4, list.list());
    state->transport.resume();
    state->transport.stop();
    render(4, list.list());
    EXPECT_EQ(left, std::vector<float>(4, 0.0f));
    EXPECT_EQ(state->stereoRing.queued(), 4U) << "the ring keeps its frames";
}
