// Real sound: the whole engine plays into a sound server of the test's own, whose sink is recorded.
// The machine's load may tear holes into the sound, since nothing here runs in a guaranteed time. Holes are silence,
// and the test signals have none, so the comparisons go over what was heard between them.

#include "audio/AudioOutput.h"
#include "audio/TagwellAudioPlayer.h"
#include "tests/audio/PlayerTestSupport.h"
#include "tests/support/PulseServer.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <numbers>
#include <type_traits>
#include <utility>

namespace {

// Sends both outputs of this process to a file while it lives.
class PrintWatch {
public:
    explicit PrintWatch(const TempFolder& folder) : path(folder.file("printed"))
    {
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        std::fflush(nullptr);
        for (int i = 0; i < 2; ++i) {
            saved[i] = dup(i + 1);
            dup2(file, i + 1);
        }
        ::close(file);
    }
    ~PrintWatch() { restore(); }
    PrintWatch(const PrintWatch&) = delete;
    PrintWatch& operator=(const PrintWatch&) = delete;

    std::string printed()
    {
        restore();
        return readBytes(path);
    }

private:
    void restore()
    {
        std::fflush(nullptr);
        for (int i = 0; i < 2; ++i) {
            if (saved[i] < 0)
                continue;
            dup2(saved[i], i + 1);
            ::close(saved[i]);
            saved[i] = -1;
        }
    }

    std::string path;
    int saved[2] = { -1, -1 };
};

class PulseOutputTest : public testing::Test {
protected:
    // Plays `path` to its end and answers the left side of what the sink played, without silence; the right one is
    // equal.
    std::vector<float> playAndRecord(PulseServer& server, const std::string& path)
    {
        PulseServer::Recording recording(server);
        EXPECT_TRUE(recording.running());
        EXPECT_TRUE(player.open(path));
        EXPECT_TRUE(player.play());
        EXPECT_TRUE(comesTrue([&] { return player.isFinished(); }));
        // The last frames are still on their way through the server.
        const size_t enough = recording.frames() + static_cast<size_t>(player.deviceSampleRate());
        EXPECT_TRUE(comesTrue([&] { return recording.frames() >= enough; }));
        return withoutSilence(recording.stop());
    }

    static std::vector<float> withoutSilence(const std::vector<float>& stereo)
    {
        std::vector<float> heard;
        for (size_t i = 0; i < stereo.size(); i += 2) {
            EXPECT_EQ(stereo[i], stereo[i + 1]);
            if (stereo[i] != 0.0f)
                heard.push_back(stereo[i]);
        }
        return heard;
    }

    TempFolder folder;
    TagwellAudioPlayer player;
};

std::ptrdiff_t threadCount()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
}

// Three tones far apart, none of them a divisor of the others or of a rate. Begins at its highest value, so that its
// first frame isn't silence.
double tones(double seconds)
{
    double sum = 0.0;
    for (const double frequency : { 313.7, 4001.3, 14003.9 })
        sum += 0.25 * std::cos(2.0 * std::numbers::pi * frequency * seconds);
    return sum;
}

// Highest deviation of `heard` from the ideal tones at `rate`, begun `shift` frames late, in dB below full scale. The
// onset and the end, where the filter has half a signal, are left out.
double deviation(const std::vector<float>& heard, double rate, int shift)
{
    constexpr size_t kEdge = 500;
    double highest = 1e-12;
    for (size_t i = kEdge; i + kEdge < heard.size(); ++i) {
        const double ideal = tones((static_cast<double>(i) + shift) / rate);
        highest = std::max(highest, std::abs(static_cast<double>(heard[i]) - ideal));
    }
    return 20.0 * std::log10(highest);
}

std::string makeToneFile(const TempFolder& folder, uint32_t rate)
{
    std::vector<float> samples(rate);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(tones(static_cast<double>(i) / rate));
    return makeFloatFile(folder, "tones.wav", rate, 1, samples);
}

} // namespace

TEST_F(PulseOutputTest, atTheSinksRateTheSoundIsTheFileBitForBit)
{
    for (const uint32_t rate : { 44100U, 48000U }) {
        PulseServer server(rate);
        ASSERT_TRUE(server.running());
        server.useInThisProcess();
        const std::vector<float> samples = numberedSamples(2 * size_t{ rate });
        EXPECT_EQ(playAndRecord(server, makeFloatFile(folder, "whole.wav", rate, 1, samples)), samples) << rate;
        EXPECT_EQ(player.deviceSampleRate(), rate);
        player.close();
    }
}

TEST_F(PulseOutputTest, atAnotherRateTheSoundIsWithinNinetyDecibels)
{
    for (const uint32_t rate : { 44100U, 96000U }) {
        PulseServer server(48000);
        ASSERT_TRUE(server.running());
        server.useInThisProcess();
        const std::vector<float> heard = playAndRecord(server, makeToneFile(folder, rate));
        EXPECT_NEAR(static_cast<double>(heard.size()), 48000.0, 500.0);
        double best = 0.0;
        for (int shift = -3; shift <= 3; ++shift)
            best = std::min(best, deviation(heard, 48000.0, shift));
        EXPECT_LT(best, -90.0) << rate;
        player.close();
    }
}

TEST_F(PulseOutputTest, stopLeavesNothingBehindForTheNextStart)
{
    PulseServer server(48000);
    ASSERT_TRUE(server.running());
    server.useInThisProcess();
    const std::vector<float> samples = numberedSamples(24000);
    ASSERT_TRUE(player.open(makeFloatFile(folder, "again.wav", 48000, 1, samples)));
    ASSERT_TRUE(player.play());
    ASSERT_TRUE(comesTrue([&] { return player.positionSeconds() > 0.2; }));
    player.stop();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    player.stop();

    PulseServer::Recording recording(server);
    ASSERT_TRUE(recording.running());
    ASSERT_TRUE(player.play());
    ASSERT_TRUE(comesTrue([&] { return player.isFinished(); }));
    const size_t enough = recording.frames() + 24000;
    ASSERT_TRUE(comesTrue([&] { return recording.frames() >= enough; }));
    EXPECT_EQ(withoutSilence(recording.stop()), samples);
}

TEST_F(PulseOutputTest, aServerThatVanishesLeavesAPlayerThatCloses)
{
    PulseServer server(48000);
    ASSERT_TRUE(server.running());
    server.useInThisProcess();
    PrintWatch watch(folder);
    const std::string path = makeFloatFile(folder, "long.wav", 48000, 1, numberedSamples(96000));
    const bool opened = player.open(path);
    const bool played = player.play();
    const bool moved = comesTrue([&] { return player.positionSeconds() > 0.3; });
    server.kill();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const double silent = player.positionSeconds();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    const double later = player.positionSeconds();
    const bool playing = player.isPlaying();
    player.pause();
    player.seekSeconds(0.1);
    player.stop();
    const bool restarted = player.play();
    player.close();
    const bool reopened = player.open(path);
    EXPECT_EQ(watch.printed(), "");
    EXPECT_TRUE(opened);
    EXPECT_TRUE(played);
    EXPECT_TRUE(moved);
    EXPECT_EQ(silent, later) << "nobody pulls any more";
    EXPECT_TRUE(playing) << "the transport doesn't know";
    EXPECT_FALSE(restarted);
    EXPECT_FALSE(reopened);
}

TEST_F(PulseOutputTest, aServerThatFreezesDoesNotHoldThePlayer)
{
    PulseServer server(48000);
    ASSERT_TRUE(server.running());
    server.useInThisProcess();
    const std::string path = makeFloatFile(folder, "long.wav", 48000, 1, numberedSamples(96000));
    ASSERT_TRUE(player.open(path));
    ASSERT_TRUE(player.play());
    ASSERT_TRUE(comesTrue([&] { return player.positionSeconds() > 0.1; }));
    server.freeze();
    player.stop();
    EXPECT_FALSE(player.play()) << "the server is still frozen";
    player.close();
    PrintWatch watch(folder);
    const bool opened = player.open(path);
    EXPECT_EQ(watch.printed(), "");
    EXPECT_FALSE(opened);
}

TEST_F(PulseOutputTest, playsAgainWhenAFrozenServerIsBack)
{
    PulseServer server(48000);
    ASSERT_TRUE(server.running());
    server.useInThisProcess();
    const std::vector<float> samples = numberedSamples(24000);
    ASSERT_TRUE(player.open(makeFloatFile(folder, "again.wav", 48000, 1, samples)));
    ASSERT_TRUE(player.play());
    ASSERT_TRUE(comesTrue([&] { return player.positionSeconds() > 0.1; }));
    server.freeze();
    player.stop();
    server.thaw();

    PulseServer::Recording recording(server);
    ASSERT_TRUE(recording.running());
    ASSERT_TRUE(player.play());
    ASSERT_TRUE(comesTrue([&] { return player.isFinished(); }));
    const size_t enough = recording.frames() + 24000;
    ASSERT_TRUE(comesTrue([&] { return recording.frames() >= enough; }));
    EXPECT_EQ(withoutSilence(recording.stop()), samples);
}

TEST_F(PulseOutputTest, playsAgainOnAServerThatHasTakenTheLostOnesPlace)
{
    const std::string path = makeFloatFile(folder, "long.wav", 48000, 1, numberedSamples(96000));
    {
        PulseServer first(48000);
        ASSERT_TRUE(first.running());
        first.useInThisProcess();
        ASSERT_TRUE(player.open(path));
        ASSERT_TRUE(player.play());
        ASSERT_TRUE(comesTrue([&] { return player.positionSeconds() > 0.1; }));
    }
    EXPECT_FALSE(player.play());
    PulseServer second(44100);
    ASSERT_TRUE(second.running());
    second.useInThisProcess();
    const double before = player.positionSeconds();
    EXPECT_TRUE(player.play());
    EXPECT_TRUE(comesTrue([&] { return player.positionSeconds() > before + 0.3; }));
}

TEST_F(PulseOutputTest, withoutAServerOpenIsFalseAndNothingIsPrinted)
{
    setenv("HOME", folder.path().c_str(), 1);
    setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
    setenv("PULSE_SERVER", "unix:/nonexistent", 1);
    const std::string path = makeFloatFile(folder, "one.wav", 48000, 1, { 0.5f });
    PrintWatch watch(folder);
    const bool opened = player.open(path);
    const bool played = player.play();
    EXPECT_EQ(watch.printed(), "");
    EXPECT_FALSE(opened);
    EXPECT_FALSE(played);
    EXPECT_FALSE(player.isOpen());
}

TEST_F(PulseOutputTest, withoutAnySoundSetUpOpenIsFalseAndNothingIsPrinted)
{
    setenv("HOME", "/nonexistent", 1);
    setenv("XDG_RUNTIME_DIR", "/nonexistent", 1);
    unsetenv("PULSE_SERVER");
    const std::string path = makeFloatFile(folder, "one.wav", 48000, 1, { 0.5f });
    PrintWatch watch(folder);
    const bool opened = player.open(path);
    EXPECT_EQ(watch.printed(), "");
    EXPECT_FALSE(opened);
}

TEST_F(PulseOutputTest, aDamagedSoundSetUpIsNotCommentedOn)
{
    std::filesystem::create_directories(folder.path() / ".config/pulse");
    writeBytes(folder.file(".config/pulse/client.conf"), "nonsense\n");
    const std::string path = makeFloatFile(folder, "one.wav", 48000, 1, { 0.5f });
    unsetenv("PULSE_SERVER");
    unsetenv("XDG_RUNTIME_DIR");
    for (const std::string& home : { folder.path().string(), path, std::string("relative") }) {
        setenv("HOME", home.c_str(), 1);
        PrintWatch watch(folder);
        const bool opened = player.open(path);
        EXPECT_EQ(watch.printed(), "") << home;
        EXPECT_FALSE(opened);
    }
}

TEST_F(PulseOutputTest, theErrorOutputIsBackAfterOpen)
{
    setenv("HOME", folder.path().c_str(), 1);
    setenv("PULSE_SERVER", "unix:/nonexistent", 1);
    PrintWatch watch(folder);
    EXPECT_EQ(AudioOutput::openDefaultDevice(), nullptr);
    std::fputs("heard", stderr);
    EXPECT_EQ(watch.printed(), "heard");
}

TEST_F(PulseOutputTest, aServerThatNeverAnswersMakesOpenFalse)
{
    const std::string socketPath = folder.file("mute");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, socketPath.c_str(), sizeof address.sun_path - 1);
    const int listener = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(listener, 4), 0);
    setenv("HOME", folder.path().c_str(), 1);
    setenv("XDG_RUNTIME_DIR", folder.path().c_str(), 1);
    setenv("PULSE_SERVER", ("unix:" + socketPath).c_str(), 1);
    const std::string path = makeFloatFile(folder, "one.wav", 48000, 1, { 0.5f });
    PrintWatch watch(folder);
    const bool opened = player.open(path);
    EXPECT_EQ(watch.printed(), "");
    EXPECT_FALSE(opened);
    ::close(listener);
}

TEST_F(PulseOutputTest, noThreadIsLeftOverWhetherOpenSucceedsOrNot)
{
    const std::string path = makeFloatFile(folder, "long.wav", 48000, 1, numberedSamples(96000));
    const std::ptrdiff_t before = threadCount();
    {
        PulseServer server(48000);
        ASSERT_TRUE(server.running());
        server.useInThisProcess();
        ASSERT_TRUE(player.open(path));
        EXPECT_GE(threadCount(), before + 3) << "prefetch, mixer, output";
        ASSERT_TRUE(player.play());
        player.close();
        // A joined thread leaves the list a moment later.
        EXPECT_TRUE(comesTrue([&] { return threadCount() == before; }));
        ASSERT_TRUE(player.open(path));
        ASSERT_TRUE(player.play());
    }
    player.close();
    EXPECT_TRUE(comesTrue([&] { return threadCount() == before; })) << "the server went first";
    EXPECT_FALSE(player.open(path));
    EXPECT_TRUE(comesTrue([&] { return threadCount() == before; })) << "there is no server";
}

// A unit is made out of the device, which only asking for it brings: no other order of the calls compiles.
static_assert(!std::is_invocable_v<decltype(&AudioOutput::newUnit)>);
static_assert(!std::is_invocable_v<decltype(&AudioOutput::newUnit), AudioOutput::DevicePtr&>);

TEST_F(PulseOutputTest, withoutADeviceThereIsNoUnit)
{
    EXPECT_EQ(AudioOutput::newUnit(nullptr), nullptr);
}

TEST_F(PulseOutputTest, aDeviceWhoseServerHasGoneHasNoRate)
{
    PulseServer server(48000);
    ASSERT_TRUE(server.running());
    server.useInThisProcess();
    const AudioOutput::DevicePtr device = AudioOutput::openDefaultDevice();
    ASSERT_NE(device, nullptr);
    EXPECT_EQ(AudioOutput::nominalSampleRate(*device), 48000.0);
    server.kill();
    EXPECT_EQ(AudioOutput::nominalSampleRate(*device), 0.0);
}

TEST_F(PulseOutputTest, aUnitWithAnAbsurdRateIsRefusedAndCanBeDisposedOf)
{
    PulseServer server(48000);
    ASSERT_TRUE(server.running());
    server.useInThisProcess();
    AudioOutput::DevicePtr device = AudioOutput::openDefaultDevice();
    ASSERT_NE(device, nullptr);
    EXPECT_NE(AudioOutput::deviceId(*device), 0U);
    const AudioOutput::UnitPtr unit = AudioOutput::newUnit(std::move(device));
    ASSERT_NE(unit, nullptr);
    EXPECT_FALSE(AudioOutput::setStreamFormat(*unit, 0.0));
    EXPECT_FALSE(AudioOutput::setStreamFormat(*unit, 1e12));
    EXPECT_FALSE(AudioOutput::setStreamFormat(*unit, std::nan("")));
    EXPECT_NE(AudioOutput::start(*unit), 0) << "not initialised";
    AudioOutput::stop(*unit);
}
