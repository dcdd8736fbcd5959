// The player as its user sees it, over the driven output: the test is the device's clock.

#include "tests/audio/PlayerTestSupport.h"

#include <cmath>

using DrivenOutput::Step;
using Names = std::vector<std::string>;

namespace {

const Names kOpenCalls
    = { "openDefaultDevice", "nominalSampleRate", "newUnit", "setStreamFormat", "setRenderCallback", "initialize" };

Names firstOpenCalls(size_t count, const Names& more = {})
{
    Names names(kOpenCalls.begin(), kOpenCalls.begin() + static_cast<std::ptrdiff_t>(count));
    names.insert(names.end(), more.begin(), more.end());
    return names;
}

} // namespace

TEST_F(PlayerTest, aFreshPlayerIsClosedAndNeutral)
{
    EXPECT_FALSE(player.isOpen());
    EXPECT_FALSE(player.isPlaying());
    EXPECT_FALSE(player.isPaused());
    EXPECT_FALSE(player.isFinished());
    EXPECT_EQ(player.positionSeconds(), 0.0);
    EXPECT_EQ(player.durationSeconds(), 0.0);
    EXPECT_EQ(player.sampleRate(), 0);
    EXPECT_EQ(player.channels(), 0);
    EXPECT_EQ(player.bitDepth(), 0);
    EXPECT_EQ(player.formatCode(), 0);
    EXPECT_EQ(player.deviceSampleRate(), 48000.0);
    EXPECT_EQ(player.trackPeak(0), 0.0f);
    EXPECT_EQ(DrivenOutput::calls(), Names{});
}

TEST_F(PlayerTest, openSetsUpTheOutputInOrderAndStartsNothing)
{
    DrivenOutput::setNominalRate(44100.0);
    ASSERT_TRUE(player.open(monoFile(100)));
    EXPECT_EQ(DrivenOutput::calls(), kOpenCalls);
    EXPECT_EQ(DrivenOutput::streamRate(), 44100.0);
    EXPECT_EQ(player.deviceSampleRate(), 44100.0);
    EXPECT_TRUE(player.isOpen());
    EXPECT_FALSE(player.isPlaying());
    EXPECT_FALSE(DrivenOutput::started());
}

TEST_F(PlayerTest, openTellsTheFilesFormat)
{
    WavBuilder().fmt(96000, 6, 24).dataFrames(960).write(folder.file("poly.wav"));
    ASSERT_TRUE(player.open(folder.file("poly.wav")));
    EXPECT_EQ(player.sampleRate(), 96000);
    EXPECT_EQ(player.channels(), 6);
    EXPECT_EQ(player.bitDepth(), 24);
    EXPECT_EQ(player.formatCode(), 1);
    EXPECT_DOUBLE_EQ(player.durationSeconds(), 0.01);
}

TEST_F(PlayerTest, fileThatIsNoneIsRefusedBeforeTheDeviceIsAsked)
{
    EXPECT_FALSE(player.open(folder.file("missing.wav")));
    EXPECT_EQ(DrivenOutput::calls(), Names{});
}

TEST_F(PlayerTest, fileWithoutASampleRateIsRefusedBeforeTheDeviceIsAsked)
{
    for (const uint32_t rate : { 0U, 0x80000000U }) {
        WavBuilder().fmt(rate, 1, 16).dataFrames(10).write(folder.file("rate.wav"));
        EXPECT_FALSE(player.open(folder.file("rate.wav")));
        EXPECT_FALSE(player.isOpen());
        EXPECT_EQ(player.durationSeconds(), 0.0);
    }
    EXPECT_EQ(DrivenOutput::calls(), Names{});
}

TEST_F(PlayerTest, openIsFalseWithoutADevice)
{
    DrivenOutput::setDevice(0);
    EXPECT_FALSE(player.open(monoFile(100)));
    EXPECT_EQ(DrivenOutput::calls(), firstOpenCalls(1));
    EXPECT_FALSE(player.isOpen());
    EXPECT_FALSE(player.play());
}

TEST_F(PlayerTest, eachFailingStepOfTheOutputIsUndoneAndMakesOpenFalse)
{
    struct Row {
        Step step;
        Names calls;
    };
    const Row rows[] = {
        { Step::NewUnit, firstOpenCalls(3) },
        { Step::SetStreamFormat, firstOpenCalls(4, { "dispose" }) },
        { Step::SetRenderCallback, firstOpenCalls(5, { "dispose" }) },
        { Step::Initialize, firstOpenCalls(6, { "stop", "uninitialize", "dispose" }) },
    };
    const std::string path = monoFile(100);
    for (const Row& row : rows) {
        DrivenOutput::reset();
        DrivenOutput::failAt(row.step);
        EXPECT_FALSE(player.open(path));
        EXPECT_EQ(DrivenOutput::calls(), row.calls);
        EXPECT_EQ(DrivenOutput::unitsAlive(), 0);
        EXPECT_FALSE(player.isOpen());
        EXPECT_FALSE(player.play());
        EXPECT_EQ(player.durationSeconds(), 0.0);
    }
}

TEST_F(PlayerTest, aRateThatCannotBeConvertedMakesOpenFalseAndDisposesOfTheUnit)
{
    EXPECT_FALSE(player.open(monoFile(100, 1)));
    EXPECT_EQ(DrivenOutput::calls(), firstOpenCalls(6, { "stop", "uninitialize", "dispose" }));
    EXPECT_EQ(DrivenOutput::unitsAlive(), 0);
}

TEST_F(PlayerTest, aFailedOpenCanBeFollowedByAGoodOne)
{
    const std::string path = monoFile(1000);
    DrivenOutput::failAt(Step::Initialize);
    ASSERT_FALSE(player.open(path));
    DrivenOutput::reset();
    ASSERT_TRUE(player.open(path));
    ASSERT_TRUE(player.play());
    EXPECT_EQ(hear(1000), numberedSamples(1000));
}

TEST_F(PlayerTest, unknownDeviceRatesAreTakenAs48000)
{
    const std::string path = monoFile(100);
    for (const double rate : { 0.0, -1.0, std::nan("") }) {
        DrivenOutput::setNominalRate(rate);
        ASSERT_TRUE(player.open(path));
        EXPECT_EQ(player.deviceSampleRate(), 48000.0);
        EXPECT_EQ(DrivenOutput::streamRate(), 48000.0);
    }
}

TEST_F(PlayerTest, unknownDeviceRateConvertsTo48000)
{
    DrivenOutput::setNominalRate(0.0);
    ASSERT_TRUE(player.open(monoFile(9600, 96000)));
    ASSERT_TRUE(player.play());
    const std::vector<float> heard = hear(SIZE_MAX);
    EXPECT_NEAR(static_cast<double>(heard.size()), 4800.0, 200.0);
}

TEST_F(PlayerTest, closeStopsAndDisposesInOrder)
{
    ASSERT_TRUE(player.open(monoFile(100)));
    ASSERT_TRUE(player.play());
    DrivenOutput::forgetCalls();
    player.close();
    EXPECT_EQ(DrivenOutput::calls(), (Names{ "stop", "stop", "uninitialize", "dispose" }));
    EXPECT_FALSE(player.isOpen());
    EXPECT_EQ(player.channels(), 0);
    EXPECT_EQ(player.sampleRate(), 0);
    EXPECT_EQ(player.positionSeconds(), 0.0);
    EXPECT_EQ(player.durationSeconds(), 0.0);
}

TEST_F(PlayerTest, closeTwiceIsHarmless)
{
    ASSERT_TRUE(player.open(monoFile(100)));
    player.close();
    DrivenOutput::forgetCalls();
    player.close();
    EXPECT_EQ(DrivenOutput::calls(), Names{});
    EXPECT_FALSE(player.isOpen());
}

TEST_F(PlayerTest, secondOpenReplacesTheFirstFile)
{
    ASSERT_TRUE(player.open(monoFile(48000)));
    ASSERT_TRUE(player.play());
    WavBuilder().fmt(44100, 2, 16).dataFrames(441).write(folder.file("other.wav"));
    ASSERT_TRUE(player.open(folder.file("other.wav")));
    EXPECT_EQ(DrivenOutput::unitsAlive(), 1);
    EXPECT_EQ(player.channels(), 2);
    EXPECT_FALSE(player.isPlaying());
    EXPECT_EQ(player.positionSeconds(), 0.0);
}

TEST_F(PlayerTest, destructorClosesTheOutput)
{
    {
        TagwellAudioPlayer other;
        ASSERT_TRUE(other.open(monoFile(100)));
        ASSERT_TRUE(other.play());
    }
    EXPECT_EQ(DrivenOutput::unitsAlive(), 0);
}

TEST_F(PlayerTest, playBeforeOpenIsFalse)
{
    EXPECT_FALSE(player.play());
    EXPECT_FALSE(player.isPlaying());
}

TEST_F(PlayerTest, playAfterCloseIsFalse)
{
    ASSERT_TRUE(player.open(monoFile(100)));
    player.close();
    EXPECT_FALSE(player.play());
    EXPECT_FALSE(player.isPlaying());
}

TEST_F(PlayerTest, aFailedStartIsFalseAndLeavesPlayingSet)
{
    ASSERT_TRUE(player.open(monoFile(100)));
    DrivenOutput::failAt(Step::Start);
    EXPECT_FALSE(player.play());
    EXPECT_TRUE(player.isPlaying());
}

TEST_F(PlayerTest, everySampleIsHeardOnceAndInOrder)
{
    ASSERT_TRUE(player.open(monoFile(30000)));
    ASSERT_TRUE(player.play());
    EXPECT_EQ(hear(30000), numberedSamples(30000));
}

TEST_F(PlayerTest, afterTheEndThePlayerIsFinishedAtTheDuration)
{
    ASSERT_TRUE(player.open(monoFile(5000)));
    ASSERT_TRUE(player.play());
    hear(SIZE_MAX);
    ASSERT_TRUE(comesTrue([&] { return !player.isPlaying(); }));
    EXPECT_TRUE(player.isFinished());
    EXPECT_FALSE(player.isPaused());
    EXPECT_NEAR(player.positionSeconds(), player.durationSeconds(), 1e-9);
    EXPECT_GT(player.trackPeak(0), 0.0f) << "peaks hold their last values";
    EXPECT_TRUE(DrivenOutput::started()) << "the unit goes on and hears silence";
    EXPECT_EQ(DrivenOutput::pullStereo(64), std::vector<float>(128, 0.0f));
}

TEST_F(PlayerTest, finishedPeaksStandStill)
{
    ASSERT_TRUE(player.open(monoFile(5000)));
    ASSERT_TRUE(player.play());
    hear(SIZE_MAX);
    ASSERT_TRUE(comesTrue([&] { return !player.isPlaying(); }));
    const float peak = player.trackPeak(0);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(player.trackPeak(0), peak);
}

TEST_F(PlayerTest, playAfterTheEndWithoutASeekStaysPlayingInSilence)
{
    ASSERT_TRUE(player.open(monoFile(1000)));
    ASSERT_TRUE(player.play());
    hear(SIZE_MAX);
    ASSERT_TRUE(comesTrue([&] { return !player.isPlaying(); }));
    ASSERT_TRUE(player.play());
    EXPECT_FALSE(player.isFinished());
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(DrivenOutput::pullStereo(64), std::vector<float>(128, 0.0f));
    EXPECT_TRUE(player.isPlaying());
    EXPECT_FALSE(player.isFinished());
}

TEST_F(PlayerTest, seekAfterTheEndLeadsToStoppedAtTheTargetWithTheUnitRunning)
{
    ASSERT_TRUE(player.open(monoFile(9600)));
    ASSERT_TRUE(player.play());
    hear(SIZE_MAX);
    ASSERT_TRUE(comesTrue([&] { return !player.isPlaying(); }));
    player.seekSeconds(0.1);
    EXPECT_FALSE(player.isFinished());
    EXPECT_FALSE(player.isPlaying());
    EXPECT_FALSE(player.isPaused());
    EXPECT_DOUBLE_EQ(player.positionSeconds(), 0.1);
    EXPECT_TRUE(DrivenOutput::started());
    ASSERT_TRUE(player.play());
    const std::vector<float> all = numberedSamples(9600);
    EXPECT_EQ(hear(SIZE_MAX), std::vector<float>(all.begin() + 4800, all.end()));
}

TEST_F(PlayerTest, aSeekOverrulesAnEndThatTheMixerHasFoundAndNotYetTold)
{
    ASSERT_TRUE(player.open(monoFile(96000)));
    ASSERT_TRUE(player.play());
    const uint64_t mark = state().transport.mark();
    player.seekSeconds(0.5);
    EXPECT_FALSE(state().transport.finish(mark));
    EXPECT_TRUE(player.isPlaying());
    EXPECT_FALSE(player.isFinished());
}

TEST_F(PlayerTest, stopAndPlayOverruleAnEndThatTheMixerHasFoundAndNotYetTold)
{
    ASSERT_TRUE(player.open(monoFile(96000)));
    ASSERT_TRUE(player.play());
    const uint64_t mark = state().transport.mark();
    player.stop();
    EXPECT_FALSE(state().transport.finish(mark));
    EXPECT_FALSE(player.isFinished());
    ASSERT_TRUE(player.play());
    EXPECT_FALSE(state().transport.finish(mark));
    EXPECT_TRUE(player.isPlaying());
}

TEST_F(PlayerTest, pauseAndResumeLoseNothing)
{
    ASSERT_TRUE(player.open(monoFile(30000)));
    ASSERT_TRUE(player.play());
    std::vector<float> heard = hear(10000);
    player.pause();
    EXPECT_TRUE(player.isPaused());
    EXPECT_FALSE(player.isPlaying());
    const double position = player.positionSeconds();
    EXPECT_EQ(DrivenOutput::pullStereo(256), std::vector<float>(512, 0.0f));
    EXPECT_TRUE(DrivenOutput::started());
    player.resume();
    EXPECT_TRUE(player.isPlaying());
    EXPECT_FALSE(player.isPaused());
    EXPECT_GE(player.positionSeconds(), position - 0.02);
    const std::vector<float> rest = hear(20000 - (heard.size() - 10000));
    heard.insert(heard.end(), rest.begin(), rest.end());
    EXPECT_EQ(heard, numberedSamples(30000));
}

TEST_F(PlayerTest, pausedPeaksStandStill)
{
    ASSERT_TRUE(player.open(monoFile(48000)));
    ASSERT_TRUE(player.play());
    hear(5000);
    fillRing();
    player.pause();
    const float peak = player.trackPeak(0);
    EXPECT_GT(peak, 0.0f);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(player.trackPeak(0), peak);
}

TEST_F(PlayerTest, resumeFromStoppedStartsThePlayer)
{
    ASSERT_TRUE(player.open(monoFile(1000)));
    player.resume();
    EXPECT_TRUE(player.isPlaying());
    EXPECT_TRUE(DrivenOutput::started());
    EXPECT_EQ(hear(1000), numberedSamples(1000));
}

TEST_F(PlayerTest, resumeWithoutAFileOnlyClearsPaused)
{
    player.pause();
    EXPECT_TRUE(player.isPaused());
    player.resume();
    EXPECT_FALSE(player.isPaused());
    EXPECT_FALSE(player.isPlaying());
}

TEST_F(PlayerTest, pauseBeforePlayIsForgottenByPlay)
{
    ASSERT_TRUE(player.open(monoFile(1000)));
    player.pause();
    ASSERT_TRUE(player.play());
    EXPECT_FALSE(player.isPaused());
    EXPECT_TRUE(player.isPlaying());
}

TEST_F(PlayerTest, stopReturnsToTheStartAndZeroesThePeaks)
{
    ASSERT_TRUE(player.open(monoFile(48000)));
    ASSERT_TRUE(player.play());
    hear(9600);
    fillRing();
    ASSERT_GT(player.trackPeak(0), 0.0f);
    player.stop();
    EXPECT_FALSE(player.isPlaying());
    EXPECT_FALSE(player.isPaused());
    EXPECT_FALSE(player.isFinished());
    EXPECT_FALSE(DrivenOutput::started());
    EXPECT_EQ(player.trackPeak(0), 0.0f);
    EXPECT_EQ(player.positionSeconds(), 0.0);
}

TEST_F(PlayerTest, stopFromPausedAndFromFinishedLeadsToStopped)
{
    ASSERT_TRUE(player.open(monoFile(2000)));
    ASSERT_TRUE(player.play());
    player.pause();
    player.stop();
    EXPECT_FALSE(player.isPaused());
    EXPECT_EQ(player.positionSeconds(), 0.0);
    ASSERT_TRUE(player.play());
    hear(SIZE_MAX);
    ASSERT_TRUE(comesTrue([&] { return !player.isPlaying(); }));
    player.stop();
    EXPECT_FALSE(player.isFinished());
    EXPECT_EQ(player.positionSeconds(), 0.0);
    EXPECT_EQ(player.trackPeak(0), 0.0f);
}

TEST_F(PlayerTest, playAfterStopBeginsAtTheStart)
{
    ASSERT_TRUE(player.open(monoFile(20000)));
    ASSERT_TRUE(player.play());
    hear(5000);
    fillRing();
    player.stop();
    ASSERT_TRUE(player.play());
    EXPECT_EQ(hear(SIZE_MAX), numberedSamples(20000));
}

TEST_F(PlayerTest, seekWhilePausedMovesThePositionAtOnceAndStaysPaused)
{
    ASSERT_TRUE(player.open(monoFile(96000)));
    ASSERT_TRUE(player.play());
    hear(1000);
    fillRing();
    player.pause();
    player.seekSeconds(1.5);
    EXPECT_DOUBLE_EQ(player.positionSeconds(), 1.5);
    EXPECT_TRUE(player.isPaused());
    EXPECT_FALSE(player.isPlaying());
    player.resume();
    const std::vector<float> all = numberedSamples(96000);
    EXPECT_EQ(hear(SIZE_MAX), std::vector<float>(all.begin() + 72000, all.end()));
}

TEST_F(PlayerTest, seekWhileStoppedIsWherePlayBegins)
{
    ASSERT_TRUE(player.open(monoFile(9600)));
    player.seekSeconds(0.1);
    EXPECT_DOUBLE_EQ(player.positionSeconds(), 0.1);
    EXPECT_FALSE(player.isPlaying());
    ASSERT_TRUE(player.play());
    const std::vector<float> all = numberedSamples(9600);
    EXPECT_EQ(hear(SIZE_MAX), std::vector<float>(all.begin() + 4800, all.end()));
}

TEST_F(PlayerTest, seekIsHeldInsideTheFile)
{
    ASSERT_TRUE(player.open(monoFile(4800)));
    player.seekSeconds(-5.0);
    EXPECT_EQ(player.positionSeconds(), 0.0);
    player.seekSeconds(99.0);
    EXPECT_DOUBLE_EQ(player.positionSeconds(), 0.1);
    player.seekSeconds(std::nan(""));
    EXPECT_EQ(player.positionSeconds(), 0.0);
}

TEST_F(PlayerTest, seekWithoutAFileDoesNothing)
{
    player.seekSeconds(1.0);
    EXPECT_EQ(player.positionSeconds(), 0.0);
}

TEST_F(PlayerTest, seekWhilePlayingGoesOnPlayingFromThere)
{
    ASSERT_TRUE(player.open(monoFile(29000)));
    ASSERT_TRUE(player.play());
    hear(2000);
    player.seekSeconds(0.5);
    EXPECT_TRUE(player.isPlaying());
    const std::vector<float> heard = hear(SIZE_MAX);
    const std::vector<float> all = numberedSamples(29000);
    ASSERT_GE(heard.size(), 5000U);
    EXPECT_EQ(std::vector<float>(heard.end() - 5000, heard.end()), std::vector<float>(all.end() - 5000, all.end()));
}

TEST_F(PlayerTest, positionFollowsWhatIsHeardWhenTheRatesDiffer)
{
    DrivenOutput::setNominalRate(44100.0);
    ASSERT_TRUE(player.open(monoFile(2 * 48000)));
    ASSERT_TRUE(player.play());
    EXPECT_GE(player.positionSeconds(), 0.0);
    size_t heard = 0;
    while (heard < 44100) {
        heard += hear(441).size();
        // What the converter holds back and a block under way are not counted; both are a few milliseconds.
        const double position = player.positionSeconds();
        ASSERT_GE(position, 0.0);
        ASSERT_NEAR(position, static_cast<double>(heard) / 44100.0, 0.03);
    }
}

TEST_F(PlayerTest, queuedFramesCountAtTheDevicesRateAndTakenOnesAtTheFiles)
{
    DrivenOutput::setNominalRate(44100.0);
    ASSERT_TRUE(player.open(monoFile(2 * 48000)));
    player.seekSeconds(1.0);
    ASSERT_TRUE(state().stereoRing.advance(state().stereoRing.mark(), 4410));
    EXPECT_DOUBLE_EQ(player.positionSeconds(), 0.9);
    player.seekSeconds(0.05);
    ASSERT_TRUE(state().stereoRing.advance(state().stereoRing.mark(), 4410));
    EXPECT_EQ(player.positionSeconds(), 0.0) << "never below";
}

TEST_F(PlayerTest, positionNeverFallsBelowZeroWhileTheFirstFramesAreQueued)
{
    DrivenOutput::setNominalRate(44100.0);
    ASSERT_TRUE(player.open(monoFile(48000)));
    ASSERT_TRUE(player.play());
    for (int i = 0; i < 100; ++i) {
        ASSERT_GE(player.positionSeconds(), 0.0);
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    EXPECT_LT(player.positionSeconds(), 0.02) << "nothing was pulled, so nothing was heard";
}

TEST_F(PlayerTest, aTruncatedFileNeverFinishes)
{
    WavBuilder().fmt(48000, 1, 16).dataFrames(4800).truncateTo(44 + 2 * 2400).write(folder.file("short.wav"));
    ASSERT_TRUE(player.open(folder.file("short.wav")));
    ASSERT_TRUE(player.play());
    ASSERT_TRUE(comesTrue([&] {
        DrivenOutput::pullStereo(128);
        return player.positionSeconds() == 0.05 && state().stereoRing.queued() == 0;
    }));
    std::this_thread::sleep_for(std::chrono::milliseconds(60));
    EXPECT_TRUE(player.isPlaying());
    EXPECT_FALSE(player.isFinished());
    EXPECT_EQ(player.positionSeconds(), 0.05);
}

TEST_F(PlayerTest, anEmptyFileOpensAndStaysPlayingInSilence)
{
    ASSERT_TRUE(player.open(monoFile(0)));
    ASSERT_TRUE(player.play());
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_TRUE(player.isPlaying()) << "no block was ever taken, so there is no end to notice";
    EXPECT_EQ(player.durationSeconds(), 0.0);
}

TEST_F(PlayerTest, stopZeroesThePeaksOfAllTracks)
{
    const std::vector<float> samples(size_t{ 48000 } * 3, 0.5f);
    ASSERT_TRUE(player.open(makeFloatFile(folder, "three.wav", 48000, 3, samples)));
    ASSERT_TRUE(player.play());
    hear(1000);
    for (int32_t track = 0; track < 3; ++track)
        EXPECT_EQ(player.trackPeak(track), 0.5f) << track;
    player.stop();
    for (int32_t track = 0; track < 3; ++track)
        EXPECT_EQ(player.trackPeak(track), 0.0f) << track;
}

TEST_F(PlayerTest, trackPeaksAreThoseOfTheTracksAlone)
{
    const size_t frames = 4800;
    std::vector<float> samples;
    for (size_t i = 0; i < frames; ++i) {
        samples.push_back(0.25f);
        samples.push_back(-0.5f);
    }
    ASSERT_TRUE(player.open(makeFloatFile(folder, "two.wav", 48000, 2, samples)));
    player.setTrackGain(1, 4.0f);
    ASSERT_TRUE(player.play());
    hear(1000);
    EXPECT_EQ(player.trackPeak(0), 0.25f);
    EXPECT_EQ(player.trackPeak(1), 2.0f) << "not clamped";
    EXPECT_EQ(player.trackPeak(-1), 0.0f);
    state().peaks.raise(std::vector<float>{ 0.0f, 0.0f, 0.75f }.data(), 3);
    ASSERT_EQ(state().peaks.at(2), 0.75f);
    EXPECT_EQ(player.trackPeak(2), 0.0f) << "whatever lies behind the last track";
    EXPECT_EQ(player.trackPeak(64), 0.0f);
}

TEST_F(PlayerTest, openForgetsTheMixOfTheFileBefore)
{
    const std::string path = monoFile(1000);
    ASSERT_TRUE(player.open(path));
    player.setTrackMuted(0, true);
    player.setTrackGain(0, 0.0f);
    ASSERT_TRUE(player.open(path));
    ASSERT_TRUE(player.play());
    EXPECT_EQ(hear(1000), numberedSamples(1000));
}

TEST_F(PlayerTest, soloAndMuteReachTheMix)
{
    std::vector<float> samples;
    for (size_t i = 0; i < 2000; ++i) {
        samples.push_back(0.25f);
        samples.push_back(0.5f);
    }
    ASSERT_TRUE(player.open(makeFloatFile(folder, "two.wav", 48000, 2, samples)));
    player.setTrackSolo(1, true);
    ASSERT_TRUE(player.play());
    const std::vector<float> heard = hear(2000);
    ASSERT_EQ(heard.size(), 2000U);
    EXPECT_FLOAT_EQ(heard[0], 0.5f * 0.70710678f);
}
