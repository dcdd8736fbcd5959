// What runs on the mixer and render threads allocates nothing, locks nothing and calls nothing that blocks. The
// functions below stand in front of the C library's and count the calls of the thread under watch.

#include "audio/PlayerState.h"
#include "tests/audio/PlayerTestSupport.h"

#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>
#include <unistd.h>

#include <ctime>
#include <memory>
#include <mutex>

namespace {

thread_local bool watched = false;
thread_local int calls = 0;

void note()
{
    if (watched)
        ++calls;
}

template <typename Function> Function next(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void __libc_free(void* memory);

void* malloc(size_t size)
{
    note();
    return __libc_malloc(size);
}

void* calloc(size_t count, size_t size)
{
    note();
    return __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size)
{
    note();
    return __libc_realloc(memory, size);
}

void free(void* memory)
{
    note();
    __libc_free(memory);
}

int pthread_mutex_lock(pthread_mutex_t* mutex)
{
    static const auto real = next<int (*)(pthread_mutex_t*)>("pthread_mutex_lock");
    note();
    return real(mutex);
}

int pthread_mutex_trylock(pthread_mutex_t* mutex)
{
    static const auto real = next<int (*)(pthread_mutex_t*)>("pthread_mutex_trylock");
    note();
    return real(mutex);
}

int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex)
{
    static const auto real = next<int (*)(pthread_cond_t*, pthread_mutex_t*)>("pthread_cond_wait");
    note();
    return real(condition, mutex);
}

int pthread_cond_signal(pthread_cond_t* condition)
{
    static const auto real = next<int (*)(pthread_cond_t*)>("pthread_cond_signal");
    note();
    return real(condition);
}

int nanosleep(const timespec* wanted, timespec* left)
{
    static const auto real = next<int (*)(const timespec*, timespec*)>("nanosleep");
    note();
    return real(wanted, left);
}

int clock_nanosleep(clockid_t clock, int flags, const timespec* wanted, timespec* left)
{
    static const auto real = next<int (*)(clockid_t, int, const timespec*, timespec*)>("clock_nanosleep");
    note();
    return real(clock, flags, wanted, left);
}

int sched_yield()
{
    static const auto real = next<int (*)()>("sched_yield");
    note();
    return real();
}

ssize_t read(int file, void* to, size_t size)
{
    static const auto real = next<ssize_t (*)(int, void*, size_t)>("read");
    note();
    return real(file, to, size);
}

ssize_t write(int file, const void* from, size_t size)
{
    static const auto real = next<ssize_t (*)(int, const void*, size_t)>("write");
    note();
    return real(file, from, size);
}

} // extern "C"

namespace {

// Counts the calls of this thread while `work` runs.
template <typename Work> int callsDuring(Work work)
{
    calls = 0;
    watched = true;
    work();
    watched = false;
    return calls;
}

constexpr size_t kTracks = 64;
constexpr size_t kFrames = 20000;

class RealTimePromise : public testing::Test {
protected:
    RealTimePromise()
    {
        DrivenOutput::reset();
        path = makeFloatFile(folder, "wide.wav", 48000, kTracks, numberedSamples(kFrames, kTracks));
    }

    TempFolder folder;
    std::string path;
};

} // namespace

TEST(RealTimeWatch, seesEachKindOfCall)
{
    EXPECT_GE(callsDuring([] { delete new int(3); }), 1) << "heap";
    EXPECT_GE(callsDuring([] { std::this_thread::sleep_for(std::chrono::nanoseconds(1)); }), 1) << "sleep";
    std::mutex mutex;
    EXPECT_GE(callsDuring([&] { const std::lock_guard lock(mutex); }), 1) << "mutex";
    EXPECT_GE(callsDuring([] { EXPECT_EQ(write(-1, "", 1), -1); }), 1) << "write";
    char byte = 0;
    EXPECT_GE(callsDuring([&] { EXPECT_EQ(read(-1, &byte, 1), -1); }), 1) << "read";
    EXPECT_EQ(callsDuring([] {}), 0);
}

TEST_F(RealTimePromise, mixToStereoCallsNothing)
{
    const std::vector<float> input = numberedSamples(256, kTracks);
    std::vector<float> stereo(512);
    std::vector<float> peaks(kTracks);
    PlaybackMixer mixer(kTracks);
    mixer.setSolo(3, true);
    EXPECT_EQ(callsDuring([&] { mixer.mixToStereo(input.data(), 256, stereo.data(), peaks.data()); }), 0);
}

TEST_F(RealTimePromise, readFramesFromRingCallsNothing)
{
    WavFileReader reader;
    ASSERT_TRUE(reader.open(path));
    reader.startPrefetch(0);
    std::vector<float> block(256 * kTracks);
    int32_t total = 0;
    ASSERT_TRUE(comesTrue([&] {
        EXPECT_EQ(callsDuring([&] { total += reader.readFramesFromRing(block.data(), 256, kTracks); }), 0);
        return total == static_cast<int32_t>(kFrames);
    }));
    EXPECT_EQ(callsDuring([&] { reader.setPosition(100); }), 0);
    EXPECT_EQ(callsDuring([&] { reader.readFramesFromRing(block.data(), 256, kTracks); }), 0) << "seek pending";
}

TEST_F(RealTimePromise, mixerPassesCallNothing)
{
    for (const double deviceRate : { 48000.0, 44100.0, 96000.0 }) {
        const auto state = std::make_unique<PlayerState>();
        ASSERT_TRUE(state->reader.open(path));
        state->file = state->reader.getHeader();
        state->deviceRate = deviceRate;
        ASSERT_TRUE(state->converter.setup(48000.0, deviceRate));
        PlaybackMixer mixer(kTracks);
        MixerBlocks blocks(kTracks);
        state->reader.startPrefetch(kTracks);
        state->transport.start();
        std::vector<StereoFrame> out(StereoRing::kRenderBatch);
        int passes = 0;
        ASSERT_TRUE(comesTrue([&] {
            EXPECT_EQ(callsDuring([&] { mixerPass(*state, mixer, blocks); }), 0) << deviceRate;
            EXPECT_EQ(callsDuring([&] { state->stereoRing.take(StereoRing::kRenderBatch, out.data()); }), 0);
            if (++passes == 20)
                state->converter.reset();
            return state->transport.finished();
        }));
    }
}

TEST_F(RealTimePromise, renderCallbackCallsNothing)
{
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(path));
    ASSERT_TRUE(player.play());
    std::vector<float> left(4096);
    std::vector<float> right(4096);
    AudioOutput::BufferListOf<2> list;
    const uint32_t bytes = 4096 * sizeof(float);
    list.buffer(0) = { 1, bytes, left.data() };
    list.buffer(1) = { 1, bytes, right.data() };
    const AudioOutput::RenderFunction render = DrivenOutput::renderFunction();
    void* const context = DrivenOutput::renderContext();
    ASSERT_TRUE(comesTrue([&] {
        EXPECT_EQ(callsDuring([&] { render(context, nullptr, nullptr, 0, 256, list.list()); }), 0);
        return left[0] != 0.0f;
    }));
    EXPECT_EQ(callsDuring([&] { render(context, nullptr, nullptr, 0, 4096, list.list()); }), 0);
    list.buffer(0).mNumberChannels = 2;
    EXPECT_EQ(callsDuring([&] { render(context, nullptr, nullptr, 0, 4096, list.list()); }), 0) << "interleaved";
}

TEST_F(RealTimePromise, settingsAndReadOutsCallNothing)
{
    TagwellAudioPlayer player;
    ASSERT_TRUE(player.open(path));
    ASSERT_TRUE(player.play());
    EXPECT_EQ(callsDuring([&] {
        player.setTrackGain(3, 0.5f);
        player.setTrackMuted(3, true);
        player.setTrackSolo(3, true);
        (void)player.positionSeconds();
        (void)player.trackPeak(3);
        player.seekSeconds(0.1);
    }),
        0);
}
