#include "audio/AudioRateConverter.h"

#include "tests/fakes/CoreAudioServices.h"

#include <gtest/gtest.h>

#include <vector>

using CoreAudioServices::state;
using Lines = std::vector<std::string>;

namespace {

constexpr OSStatus kWhat = 0x77686174;

struct RateEngineMac : testing::Test {
    RateEngineMac() { CoreAudioServices::begin(); }
    ~RateEngineMac() override
    {
        EXPECT_TRUE(state.alive.empty());
        EXPECT_EQ(state.strangeHandles, 0);
    }

    std::vector<float> input = std::vector<float>(2 * 256, 0.25f);
    std::vector<float> output = std::vector<float>(2 * 1024, -1.0f);
};

void expectStereoFloat(const AudioStreamBasicDescription& description, double rate)
{
    EXPECT_EQ(description.mSampleRate, rate);
    EXPECT_EQ(description.mFormatID, kAudioFormatLinearPCM);
    EXPECT_EQ(description.mFormatFlags, 9u);
    EXPECT_EQ(description.mBytesPerPacket, 8u);
    EXPECT_EQ(description.mFramesPerPacket, 1u);
    EXPECT_EQ(description.mBytesPerFrame, 8u);
    EXPECT_EQ(description.mChannelsPerFrame, 2u);
    EXPECT_EQ(description.mBitsPerChannel, 32u);
    EXPECT_EQ(description.mReserved, 0u);
}

AudioBufferList emptyList()
{
    AudioBufferList list{};
    list.mNumberBuffers = 7;
    list.mBuffers[0] = { 9, 99, &list };
    return list;
}

} // namespace

TEST_F(RateEngineMac, describesBothSidesAlikeButForTheRate)
{
    AudioRateConverter converter;
    EXPECT_TRUE(converter.setup(44100.0, 48000.0));
    EXPECT_EQ(state.calls, Lines{ "AudioConverterNew" });
    expectStereoFloat(state.source, 44100.0);
    expectStereoFloat(state.destination, 48000.0);
}

TEST_F(RateEngineMac, makesNoConverterForEqualOrImpossibleRates)
{
    AudioRateConverter converter;
    EXPECT_TRUE(converter.setup(48000.0, 48000.005));
    EXPECT_FALSE(converter.setup(0.0, 48000.0));
    EXPECT_FALSE(converter.setup(48000.0, -1.0));
    EXPECT_TRUE(state.calls.empty());
}

TEST_F(RateEngineMac, refusalAnswersFalseAndLeavesAPassThrough)
{
    state.statuses["AudioConverterNew"] = -50;
    AudioRateConverter converter;
    EXPECT_FALSE(converter.setup(44100.0, 48000.0));
    EXPECT_EQ(converter.convert(input.data(), 256, output.data(), 100), 100);
    EXPECT_EQ(state.calls, Lines{ "AudioConverterNew" });
}

TEST_F(RateEngineMac, nullHandleWithoutAnErrorIsARefusalToo)
{
    state.givesConverter = false;
    AudioRateConverter converter;
    EXPECT_FALSE(converter.setup(44100.0, 48000.0));
}

TEST_F(RateEngineMac, secondSetupDisposesOfTheFirstConverter)
{
    AudioRateConverter converter;
    EXPECT_TRUE(converter.setup(44100.0, 48000.0));
    EXPECT_TRUE(converter.setup(96000.0, 48000.0));
    EXPECT_EQ(state.calls, (Lines{ "AudioConverterNew", "AudioConverterDispose", "AudioConverterNew" }));
}

TEST_F(RateEngineMac, teardownAndDestructorDisposeOnce)
{
    {
        AudioRateConverter converter;
        EXPECT_TRUE(converter.setup(44100.0, 48000.0));
        converter.teardown();
        converter.teardown();
        converter.reset();
    }
    EXPECT_EQ(state.calls, (Lines{ "AudioConverterNew", "AudioConverterDispose" }));
}

TEST_F(RateEngineMac, resetReachesTheConverter)
{
    AudioRateConverter converter;
    EXPECT_TRUE(converter.setup(44100.0, 48000.0));
    converter.reset();
    EXPECT_EQ(state.calls, (Lines{ "AudioConverterNew", "AudioConverterReset" }));
}

TEST_F(RateEngineMac, offersTheOutputAsOneStereoBufferOfTheCapacity)
{
    AudioRateConverter converter;
    EXPECT_TRUE(converter.setup(44100.0, 48000.0));
    state.fill = [this](auto, void*, UInt32* packets, AudioBufferList* list) {
        EXPECT_EQ(*packets, 1024u);
        EXPECT_EQ(list->mNumberBuffers, 1u);
        EXPECT_EQ(list->mBuffers[0].mNumberChannels, 2u);
        EXPECT_EQ(list->mBuffers[0].mDataByteSize, 1024u * 8u);
        EXPECT_EQ(list->mBuffers[0].mData, output.data());
        *packets = 279;
        return OSStatus{ 0 };
    };
    EXPECT_EQ(converter.convert(input.data(), 256, output.data(), 1024), 279);
}

TEST_F(RateEngineMac, failedConversionGivesNoFrames)
{
    AudioRateConverter converter;
    EXPECT_TRUE(converter.setup(44100.0, 48000.0));
    state.fill = [](auto, void*, UInt32* packets, AudioBufferList*) {
        *packets = 100;
        return OSStatus{ -1 };
    };
    EXPECT_EQ(converter.convert(input.data(), 256, output.data(), 1024), 0);
}

TEST_F(RateEngineMac, callbackLendsTheCallersBlockPieceByPieceThenReportsItsEnd)
{
    AudioRateConverter converter;
    EXPECT_TRUE(converter.setup(44100.0, 48000.0));
    state.fill = [this](AudioConverterComplexInputDataProc provide, void* cursor, UInt32* packets, AudioBufferList*) {
        const UInt32 expected[] = { 100, 100, 56, 0 };
        UInt32 offset = 0;
        for (UInt32 frames : expected) {
            AudioBufferList list = emptyList();
            UInt32 wanted = 100;
            auto* descriptions = reinterpret_cast<AudioStreamPacketDescription*>(&list);
            EXPECT_EQ(provide(state.lastConverter, &wanted, &list, &descriptions, cursor), 0);
            EXPECT_EQ(descriptions, nullptr);
            EXPECT_EQ(wanted, frames);
            EXPECT_EQ(list.mNumberBuffers, 1u);
            EXPECT_EQ(list.mBuffers[0].mNumberChannels, 2u);
            EXPECT_EQ(list.mBuffers[0].mDataByteSize, frames * 8u);
            void* lent = frames != 0 ? input.data() + 2 * offset : nullptr;
            EXPECT_EQ(list.mBuffers[0].mData, lent);
            offset += frames;
        }
        *packets = 278;
        return OSStatus{ 0 };
    };
    EXPECT_EQ(converter.convert(input.data(), 256, output.data(), 1024), 278);
}

TEST_F(RateEngineMac, eachCallStartsAtItsOwnBlock)
{
    AudioRateConverter converter;
    EXPECT_TRUE(converter.setup(44100.0, 48000.0));
    std::vector<void*> lent;
    state.fill = [&lent](AudioConverterComplexInputDataProc provide, void* cursor, UInt32* packets, AudioBufferList*) {
        AudioBufferList list{};
        UInt32 wanted = 10;
        EXPECT_EQ(provide(state.lastConverter, &wanted, &list, nullptr, cursor), 0);
        lent.push_back(list.mBuffers[0].mData);
        *packets = 1;
        return OSStatus{ 0 };
    };
    EXPECT_EQ(converter.convert(input.data(), 256, output.data(), 1024), 1);
    EXPECT_EQ(converter.convert(input.data() + 8, 12, output.data(), 1024), 1);
    EXPECT_EQ(lent, (std::vector<void*>{ input.data(), input.data() + 8 }));
}

TEST_F(RateEngineMac, callbackWithNothingToWorkOnAnswersWhat)
{
    AudioRateConverter converter;
    EXPECT_TRUE(converter.setup(44100.0, 48000.0));
    state.fill = [](AudioConverterComplexInputDataProc provide, void* cursor, UInt32* packets, AudioBufferList*) {
        AudioBufferList list{};
        UInt32 wanted = 10;
        auto* descriptions = reinterpret_cast<AudioStreamPacketDescription*>(&list);
        EXPECT_EQ(provide(state.lastConverter, nullptr, &list, &descriptions, cursor), kWhat);
        EXPECT_EQ(descriptions, nullptr);
        EXPECT_EQ(provide(state.lastConverter, &wanted, nullptr, nullptr, cursor), kWhat);
        EXPECT_EQ(provide(state.lastConverter, &wanted, &list, nullptr, nullptr), kWhat);
        *packets = 0;
        return OSStatus{ 0 };
    };
    EXPECT_EQ(converter.convert(input.data(), 256, output.data(), 1024), 0);
}
