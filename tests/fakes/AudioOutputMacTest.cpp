#include "audio/AudioOutput.h"
#include "audio/PlayerState.h"
#include "audio/TagwellAudioPlayer.h"

#include "tests/audio/PlayerTestSupport.h"
#include "tests/fakes/CoreAudioServices.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using CoreAudioServices::state;
using Lines = std::vector<std::string>;

namespace {

constexpr UInt32 kGlobal = fourCharacters("glob");

const Lines kSetUp = { "get default device", "get nominal rate", "AudioComponentFindNext", "AudioComponentInstanceNew",
    "AudioUnitSetProperty 8", "AudioUnitSetProperty 23", "AudioUnitInitialize" };

struct AudioOutputMac : testing::Test {
    AudioOutputMac()
    {
        CoreAudioServices::begin();
        WavBuilder().fmt(48000, 2, 16).dataFrames(4800).write(file);
    }
    ~AudioOutputMac() override
    {
        EXPECT_TRUE(state.alive.empty());
        EXPECT_EQ(state.strangeHandles, 0);
    }

    // The set-up calls up to and with `last`, then `more`.
    static Lines upTo(const std::string& last, const Lines& more)
    {
        Lines lines(kSetUp.begin(), std::find(kSetUp.begin(), kSetUp.end(), last) + 1);
        lines.insert(lines.end(), more.begin(), more.end());
        return lines;
    }

    // What the player hands to the unit as the callback's context.
    static const PlayerState& playerState()
    {
        return *static_cast<const PlayerState*>(state.unitCallback.inputProcRefCon);
    }

    TempFolder folder;
    std::string file = folder.file("take.wav");
};

} // namespace

TEST_F(AudioOutputMac, setsTheUnitUpInOrder)
{
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(file));
    EXPECT_EQ(state.calls, kSetUp);
    player.close();
}

TEST_F(AudioOutputMac, asksForTheDefaultDeviceAndThenForItsRate)
{
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(file));
    ASSERT_EQ(state.addresses.size(), 2u);
    EXPECT_EQ(state.objects, (std::vector<AudioObjectID>{ 1, 42 }));
    EXPECT_EQ(state.addresses[0].mSelector, fourCharacters("dOut"));
    EXPECT_EQ(state.addresses[1].mSelector, fourCharacters("nsrt"));
    for (const AudioObjectPropertyAddress& address : state.addresses) {
        EXPECT_EQ(address.mScope, kGlobal);
        EXPECT_EQ(address.mElement, 0u);
    }
    EXPECT_EQ(state.propertySizes, (std::vector<UInt32>{ 4, 8 }));
}

TEST_F(AudioOutputMac, looksForTheDefaultOutputUnit)
{
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(file));
    EXPECT_EQ(state.component.componentType, fourCharacters("auou"));
    EXPECT_EQ(state.component.componentSubType, fourCharacters("def "));
    EXPECT_EQ(state.component.componentManufacturer, fourCharacters("appl"));
    EXPECT_EQ(state.component.componentFlags, 0u);
    EXPECT_EQ(state.component.componentFlagsMask, 0u);
}

TEST_F(AudioOutputMac, describesNonInterleavedFloatsAtTheDevicesRate)
{
    state.rate = 44100.0;
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(file));
    EXPECT_EQ(state.unitFormat.mSampleRate, 44100.0);
    EXPECT_EQ(state.unitFormat.mFormatID, fourCharacters("lpcm"));
    EXPECT_EQ(state.unitFormat.mFormatFlags, 41u);
    EXPECT_EQ(state.unitFormat.mBytesPerPacket, 4u);
    EXPECT_EQ(state.unitFormat.mFramesPerPacket, 1u);
    EXPECT_EQ(state.unitFormat.mBytesPerFrame, 4u);
    EXPECT_EQ(state.unitFormat.mChannelsPerFrame, 2u);
    EXPECT_EQ(state.unitFormat.mBitsPerChannel, 32u);
    EXPECT_EQ(state.unitFormat.mReserved, 0u);
    EXPECT_EQ(state.scopes, (std::vector<AudioUnitScope>{ 1, 1 }));
    EXPECT_EQ(state.elements, (std::vector<AudioUnitElement>{ 0, 0 }));
    EXPECT_EQ(player.deviceSampleRate(), 44100.0);
}

TEST_F(AudioOutputMac, theInstalledCallbackFillsTheServicesOwnBuffers)
{
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(file));
    ASSERT_NE(state.unitCallback.inputProc, nullptr);
    ASSERT_NE(state.unitCallback.inputProcRefCon, nullptr);
    std::vector<float> left(64, 7.0f);
    std::vector<float> right(64, 7.0f);
    struct {
        AudioBufferList list;
        AudioBuffer second;
    } buffers{ { 2, { { 1, 256, left.data() } } }, { 1, 256, right.data() } };
    AudioUnitRenderActionFlags flags = 0;
    EXPECT_EQ(
        state.unitCallback.inputProc(state.unitCallback.inputProcRefCon, &flags, nullptr, 0, 64, &buffers.list), 0);
    EXPECT_EQ(left, std::vector<float>(64, 0.0f));
    EXPECT_EQ(right, std::vector<float>(64, 0.0f));
}

TEST_F(AudioOutputMac, noDefaultDeviceEndsTheSetUp)
{
    state.device = 0;
    TagwellAudioPlayer player;
    EXPECT_FALSE(player.open(file));
    EXPECT_EQ(state.calls, Lines{ "get default device" });
}

TEST_F(AudioOutputMac, aFailedQuestionForTheDeviceIsNoDevice)
{
    state.statuses["get default device"] = -1;
    TagwellAudioPlayer player;
    EXPECT_FALSE(player.open(file));
    EXPECT_EQ(state.calls, Lines{ "get default device" });
}

TEST_F(AudioOutputMac, anUnknownRateIsTakenAs48000)
{
    for (const double rate : { 0.0, -1.0 }) {
        CoreAudioServices::begin();
        state.rate = rate;
        TagwellAudioPlayer player;
        ASSERT_TRUE(player.open(file));
        EXPECT_EQ(state.unitFormat.mSampleRate, 48000.0);
    }
    CoreAudioServices::begin();
    state.rate = 96000.0;
    state.statuses["get nominal rate"] = 560947818;
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(file));
    EXPECT_EQ(state.unitFormat.mSampleRate, 48000.0);
}

TEST_F(AudioOutputMac, noComponentEndsTheSetUp)
{
    state.hasComponent = false;
    TagwellAudioPlayer player;
    EXPECT_FALSE(player.open(file));
    EXPECT_EQ(state.calls, upTo("AudioComponentFindNext", {}));
}

TEST_F(AudioOutputMac, aUnitThatCannotBeMadeLeavesNothing)
{
    state.statuses["AudioComponentInstanceNew"] = -3000;
    TagwellAudioPlayer player;
    EXPECT_FALSE(player.open(file));
    EXPECT_EQ(state.calls, upTo("AudioComponentInstanceNew", {}));
}

TEST_F(AudioOutputMac, aRefusedFormatDisposesOfTheUnit)
{
    state.statuses["AudioUnitSetProperty 8"] = -10868;
    TagwellAudioPlayer player;
    EXPECT_FALSE(player.open(file));
    EXPECT_EQ(state.calls, upTo("AudioUnitSetProperty 8", { "AudioComponentInstanceDispose" }));
}

TEST_F(AudioOutputMac, aRefusedCallbackDisposesOfTheUnit)
{
    state.statuses["AudioUnitSetProperty 23"] = -10879;
    TagwellAudioPlayer player;
    EXPECT_FALSE(player.open(file));
    EXPECT_EQ(state.calls, upTo("AudioUnitSetProperty 23", { "AudioComponentInstanceDispose" }));
}

TEST_F(AudioOutputMac, aFailedInitialisationTearsTheUnitDownInOrder)
{
    state.statuses["AudioUnitInitialize"] = -10875;
    TagwellAudioPlayer player;
    EXPECT_FALSE(player.open(file));
    EXPECT_EQ(state.calls,
        upTo("AudioUnitInitialize",
            { "AudioOutputUnitStop", "AudioUnitUninitialize", "AudioComponentInstanceDispose" }));
}

TEST_F(AudioOutputMac, aRefusedConverterTearsTheUnitDown)
{
    state.rate = 44100.0;
    state.statuses["AudioConverterNew"] = -50;
    TagwellAudioPlayer player;
    EXPECT_FALSE(player.open(file));
    EXPECT_EQ(state.calls.back(), "AudioComponentInstanceDispose");
    EXPECT_FALSE(player.isOpen());
}

TEST_F(AudioOutputMac, playAndStopReachTheUnit)
{
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(file));
    state.calls.clear();
    EXPECT_TRUE(player.play());
    player.stop();
    EXPECT_EQ(state.calls, (Lines{ "AudioOutputUnitStart", "AudioOutputUnitStop" }));
}

TEST_F(AudioOutputMac, aUnitThatWillNotStartMakesPlayAnswerFalse)
{
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(file));
    state.statuses["AudioOutputUnitStart"] = -66681;
    EXPECT_FALSE(player.play());
    EXPECT_TRUE(player.isPlaying());
}

TEST_F(AudioOutputMac, closeStopsUninitialisesDisposes)
{
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(file));
    state.calls.clear();
    player.close();
    EXPECT_EQ(state.calls,
        (Lines{
            "AudioOutputUnitStop", "AudioOutputUnitStop", "AudioUnitUninitialize", "AudioComponentInstanceDispose" }));
}

TEST_F(AudioOutputMac, stopStopsTheUnitBeforeItEmptiesTheRing)
{
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(file));
    ASSERT_TRUE(player.play());
    ASSERT_TRUE(comesTrue([] { return playerState().stereoRing.queued() == 3840u; }));
    uint32_t queuedAtStop = 0;
    bool playingAtStop = true;
    state.onCall = [&](const std::string&) {
        queuedAtStop = playerState().stereoRing.queued();
        playingAtStop = playerState().transport.playing();
    };
    player.stop();
    EXPECT_EQ(queuedAtStop, 3840u);
    EXPECT_FALSE(playingAtStop);
    EXPECT_EQ(playerState().stereoRing.queued(), 0u);
    state.onCall = nullptr;
}

TEST_F(AudioOutputMac, seekAndStopMakeTheConverterForget)
{
    state.rate = 44100.0;
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(file));
    state.calls.clear();
    player.seekSeconds(0.05);
    EXPECT_EQ(state.calls, Lines{ "AudioConverterReset" });
    state.calls.clear();
    player.stop();
    EXPECT_EQ(state.calls, (Lines{ "AudioOutputUnitStop", "AudioConverterReset" }));
}

TEST_F(AudioOutputMac, closeEndsTheMixerThreadBeforeItDisposesOfAnything)
{
    state.rate = 44100.0;
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(file));
    Lines afterTheThread;
    state.onCall = [&](const std::string& line) {
        if (!playerState().mixerThread.joinable())
            afterTheThread.push_back(line);
    };
    player.close();
    state.onCall = nullptr;
    EXPECT_EQ(afterTheThread,
        (Lines{ "AudioOutputUnitStop", "AudioUnitUninitialize", "AudioComponentInstanceDispose",
            "AudioConverterDispose" }));
}
