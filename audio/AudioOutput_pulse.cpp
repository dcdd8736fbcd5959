// The output on Linux: a PulseAudio server, or whatever speaks its protocol, through libpulse's asynchronous API.
//
// Threads: libpulse's own thread runs every callback and holds the main loop's lock while it does; the interface
// thread takes that lock for each step. The lock is thus what makes `stop` wait for a render call in flight.

#include "audio/AudioOutput.h"

#include "system/SilentErrors.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <utility>

#include <pthread.h>
#include <pulse/pulseaudio.h>
#include <sched.h>

namespace {

constexpr pa_usec_t kOpenLimit = 2'500'000; // Microseconds for all steps from the connection to the ready stream.
// For one later step. A connection whose server misses it once isn't waited for again.
constexpr pa_usec_t kStepLimit = 2'500'000;
constexpr pa_usec_t kStreamLatency = 100'000; // Microseconds that the server keeps queued.
constexpr uint32_t kServerChoice = static_cast<uint32_t>(-1);
constexpr uint32_t kPieceFrames = 1024; // Of one render call; the server may ask for several thousand at once.
constexpr uint32_t kChannels = 2;
constexpr int kRealtimePriority = 10; // Above all ordinary threads, below the sound server's own.

// A connection to the server with its thread. All members but `connect` and the destructor need the lock.
class Connection {
public:
    Connection() : loop(pa_threaded_mainloop_new()) { }
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Connects to the running server and starts none. False if there is none or it doesn't answer in time.
    bool connect();

    // Waits, with the lock held, until `done()`, or until the connection breaks or time is up. Returns what `done()`
    // says.
    template <typename Condition> bool waitUntil(Condition done);

    // The same for an operation, which is let go of. False if it could not begin, was cancelled or is still running.
    bool finish(pa_operation* operation);

    // From now on each wait has its own time limit.
    void endOpening() { opening = false; }

    bool ready() const { return !givenUp && context && pa_context_get_state(context) == PA_CONTEXT_READY; }
    void signal() { pa_threaded_mainloop_signal(loop, 0); }
    // Time is up: this wait ends, and none begins any more.
    void giveUp()
    {
        givenUp = true;
        signal();
    }

    pa_threaded_mainloop* loop; // Null if there is no memory.
    pa_context* context = nullptr;

private:
    pa_usec_t deadline() const { return opening ? openDeadline : pa_rtclock_now() + kStepLimit; }

    bool running = false;
    bool opening = true;
    bool givenUp = false; // A wait has run out of time.
    pa_usec_t openDeadline = 0;
};

class Lock {
public:
    explicit Lock(const Connection& connection) : loop(connection.loop) { pa_threaded_mainloop_lock(loop); }
    ~Lock() { pa_threaded_mainloop_unlock(loop); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    pa_threaded_mainloop* loop;
};

void onContextChange(pa_context* /*context*/, void* connection)
{
    static_cast<Connection*>(connection)->signal();
}

void onOperationChange(pa_operation* /*operation*/, void* connection)
{
    static_cast<Connection*>(connection)->signal();
}

void onDeadline(pa_mainloop_api* /*api*/, pa_time_event* /*event*/, const timeval* /*now*/, void* connection)
{
    static_cast<Connection*>(connection)->giveUp();
}

Connection::~Connection()
{
    if (!loop)
        return;
    if (context) {
        const Lock lock(*this);
        pa_context_set_state_callback(context, nullptr, nullptr);
        pa_context_disconnect(context);
        pa_context_unref(context);
    }
    if (running)
        pa_threaded_mainloop_stop(loop);
    pa_threaded_mainloop_free(loop);
}

bool Connection::connect()
{
    openDeadline = pa_rtclock_now() + kOpenLimit;
    if (!loop || pa_threaded_mainloop_start(loop) < 0)
        return false;
    running = true;
    // libpulse comments on whatever it finds wrong in the user's set-up (a runtime folder of somebody else, a damaged
    // client.conf), and offers no way to have it silent.
    const SilentErrors silence;
    const Lock lock(*this);
    context = pa_context_new(pa_threaded_mainloop_get_api(loop), "Tagwell");
    if (!context)
        return false;
    pa_context_set_state_callback(context, onContextChange, this);
    if (pa_context_connect(context, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0)
        return false;
    return waitUntil([this] { return pa_context_get_state(context) == PA_CONTEXT_READY; });
}

template <typename Condition> bool Connection::waitUntil(Condition done)
{
    if (done())
        return true;
    pa_time_event* alarm = givenUp ? nullptr : pa_context_rttime_new(context, deadline(), onDeadline, this);
    if (!alarm)
        return false;
    while (!done() && !givenUp && PA_CONTEXT_IS_GOOD(pa_context_get_state(context)))
        pa_threaded_mainloop_wait(loop);
    pa_threaded_mainloop_get_api(loop)->time_free(alarm);
    return done();
}

bool Connection::finish(pa_operation* operation)
{
    if (!operation)
        return false;
    pa_operation_set_state_callback(operation, onOperationChange, this);
    (void)waitUntil([operation] { return pa_operation_get_state(operation) != PA_OPERATION_RUNNING; });
    const bool succeeded = pa_operation_get_state(operation) == PA_OPERATION_DONE;
    // Its callback may write to the caller's frame, so it must not come later.
    pa_operation_cancel(operation);
    pa_operation_unref(operation);
    return succeeded;
}

struct SinkAnswer {
    bool found = false;
    uint32_t index = 0;
    uint32_t rate = 0;
};

void onSink(pa_context* /*context*/, const pa_sink_info* sink, int end, void* answer)
{
    if (end != 0 || !sink)
        return;
    *static_cast<SinkAnswer*>(answer) = { true, sink->index, sink->sample_spec.rate };
}

SinkAnswer askForDefaultSink(Connection& connection)
{
    SinkAnswer answer;
    const Lock lock(connection);
    if (connection.ready()
        && !connection.finish(pa_context_get_sink_info_by_name(connection.context, "@DEFAULT_SINK@", onSink, &answer)))
        return {};
    return answer;
}

} // namespace

namespace AudioOutput {

// The connection made to ask for the device goes on to serve the unit, so that opening connects once.
struct Device {
    std::unique_ptr<Connection> connection;
    uint32_t id;
};

struct Unit {
    std::unique_ptr<Connection> connection;
    pa_stream* stream = nullptr;
    uint32_t rate = 0; // Frames per second.
    RenderFunction render = nullptr;
    void* context = nullptr;
    bool initialized = false;
    bool started = false;
    bool priorityAsked = false; // libpulse's thread only.
    // Scratch of one piece, libpulse's thread only.
    std::array<float, kPieceFrames> left{};
    std::array<float, kPieceFrames> right{};
    std::array<float, size_t{ kPieceFrames } * kChannels> interleaved{};
};

namespace {

void onStreamChange(pa_stream* /*stream*/, void* unit)
{
    static_cast<Unit*>(unit)->connection->signal();
}

// A refusal (no right to it, no real-time kernel) leaves an ordinary thread, which does for most machines.
void askForPriority(Unit& unit)
{
    if (unit.priorityAsked)
        return;
    unit.priorityAsked = true;
    sched_param parameters{};
    parameters.sched_priority = kRealtimePriority;
    (void)pthread_setschedparam(pthread_self(), SCHED_RR, &parameters);
}

void renderPiece(Unit& unit, uint32_t frames)
{
    BufferListOf<2> buffers;
    const auto bytes = static_cast<uint32_t>(frames * sizeof(float));
    buffers.buffer(0) = { 1, bytes, unit.left.data() };
    buffers.buffer(1) = { 1, bytes, unit.right.data() };
    unit.render(unit.context, nullptr, nullptr, 0, frames, buffers.list());
    for (size_t i = 0; i < frames; ++i) {
        unit.interleaved[kChannels * i] = unit.left[i];
        unit.interleaved[kChannels * i + 1] = unit.right[i];
    }
}

// Writes `bytes` in pieces: what the player has, or silence.
void feed(Unit& unit, size_t bytes, bool silent)
{
    constexpr size_t kFrameBytes = kChannels * sizeof(float);
    size_t left = bytes / kFrameBytes;
    while (left > 0) {
        const auto frames = static_cast<uint32_t>(std::min<size_t>(left, kPieceFrames));
        if (silent)
            unit.interleaved.fill(0.0f);
        else
            renderPiece(unit, frames);
        if (pa_stream_write(unit.stream, unit.interleaved.data(), frames * kFrameBytes, nullptr, 0, PA_SEEK_RELATIVE)
            < 0)
            return;
        left -= frames;
    }
}

void onWritable(pa_stream* /*stream*/, size_t bytes, void* unit)
{
    auto& self = *static_cast<Unit*>(unit);
    askForPriority(self);
    feed(self, bytes, false);
}

// What the server wants queued before it begins to play. It is silence: at a start the player's ring is only about to
// be filled, and a render call in the midst of that would tear a hole into the first sound.
void prefill(pa_mainloop_api* /*api*/, void* unit)
{
    auto& self = *static_cast<Unit*>(unit);
    if (!self.stream || !self.started)
        return;
    askForPriority(self);
    const size_t wanted = pa_stream_writable_size(self.stream);
    if (wanted != static_cast<size_t>(-1))
        feed(self, wanted, true);
}

bool streamGood(const Unit& unit)
{
    return unit.stream && unit.connection->ready() && pa_stream_get_state(unit.stream) == PA_STREAM_READY;
}

bool connectStream(Unit& unit)
{
    const pa_sample_spec format{ PA_SAMPLE_FLOAT32NE, unit.rate, kChannels };
    unit.stream = pa_stream_new(unit.connection->context, "Playback", &format, nullptr);
    if (!unit.stream)
        return false;
    pa_stream_set_state_callback(unit.stream, onStreamChange, &unit);
    pa_buffer_attr sizes{};
    sizes.maxlength = kServerChoice;
    sizes.tlength = static_cast<uint32_t>(pa_usec_to_bytes(kStreamLatency, &format));
    sizes.prebuf = kServerChoice;
    sizes.minreq = kServerChoice;
    sizes.fragsize = kServerChoice;
    const auto flags = static_cast<pa_stream_flags_t>(PA_STREAM_START_CORKED | PA_STREAM_ADJUST_LATENCY);
    if (pa_stream_connect_playback(unit.stream, nullptr, &sizes, flags, nullptr, nullptr) < 0)
        return false;
    return unit.connection->waitUntil([&unit] { return pa_stream_get_state(unit.stream) != PA_STREAM_CREATING; })
        && streamGood(unit);
}

void dropStream(Unit& unit)
{
    if (!unit.stream)
        return;
    pa_stream_set_state_callback(unit.stream, nullptr, nullptr);
    pa_stream_set_write_callback(unit.stream, nullptr, nullptr);
    pa_stream_disconnect(unit.stream);
    pa_stream_unref(unit.stream);
    unit.stream = nullptr;
}

bool ready(const Unit& unit)
{
    const Lock lock(*unit.connection);
    return streamGood(unit);
}

// The server didn't answer in time once, or has gone: what is left of its connection serves no more. One attempt; where
// it fails before the new connection stands, the old one stays, and closing doesn't wait for it.
bool reconnect(Unit& unit)
{
    auto made = std::make_unique<Connection>();
    if (!made->connect())
        return false;
    {
        const Lock lock(*unit.connection);
        unit.started = false;
        dropStream(unit);
    }
    unit.connection = std::move(made); // Ends the old one's thread.
    unit.priorityAsked = false;
    const Lock lock(*unit.connection);
    const bool connected = connectStream(unit);
    unit.connection->endOpening();
    return connected;
}

} // namespace

DevicePtr openDefaultDevice()
{
    auto connection = std::make_unique<Connection>();
    if (!connection->connect())
        return nullptr;
    const SinkAnswer sink = askForDefaultSink(*connection);
    if (!sink.found)
        return nullptr;
    // The server counts its devices from 0, which means "none" here.
    return DevicePtr(new Device{ std::move(connection), sink.index + 1 });
}

uint32_t deviceId(const Device& device)
{
    return device.id;
}

double nominalSampleRate(Device& device)
{
    const SinkAnswer sink = askForDefaultSink(*device.connection);
    return sink.found && sink.index + 1 == device.id ? sink.rate : 0.0;
}

UnitPtr newUnit(DevicePtr device)
{
    if (!device)
        return nullptr;
    UnitPtr made(new Unit);
    made->connection = std::move(device->connection);
    return made;
}

bool setStreamFormat(Unit& unit, double rate)
{
    if (!(rate >= 1.0) || rate > PA_RATE_MAX)
        return false;
    unit.rate = static_cast<uint32_t>(std::lround(rate));
    return true;
}

bool setRenderCallback(Unit& unit, RenderFunction render, void* context)
{
    unit.render = render;
    unit.context = context;
    return true;
}

bool initialize(Unit& unit)
{
    const Lock lock(*unit.connection);
    unit.initialized = unit.connection->ready() && connectStream(unit);
    unit.connection->endOpening();
    return unit.initialized;
}

int32_t start(Unit& unit)
{
    if (!unit.initialized || !(ready(unit) || reconnect(unit)))
        return -1;
    const Lock lock(*unit.connection);
    if (unit.started)
        return 0;
    // The write callback comes only now: installed earlier it would be called once while the stream is still corked.
    unit.started = true;
    pa_stream_set_write_callback(unit.stream, onWritable, &unit);
    pa_mainloop_api_once(pa_threaded_mainloop_get_api(unit.connection->loop), prefill, &unit);
    const bool running = unit.connection->finish(pa_stream_cork(unit.stream, 0, nullptr, nullptr));
    return running ? 0 : -1;
}

void stop(Unit& unit)
{
    const Lock lock(*unit.connection);
    if (!unit.started)
        return;
    unit.started = false;
    pa_stream_set_write_callback(unit.stream, nullptr, nullptr);
    if (!streamGood(unit))
        return;
    // Both are under way before the first wait.
    pa_operation* corked = pa_stream_cork(unit.stream, 1, nullptr, nullptr);
    pa_operation* flushed = pa_stream_flush(unit.stream, nullptr, nullptr);
    (void)unit.connection->finish(corked);
    (void)unit.connection->finish(flushed);
}

void uninitialize(Unit& unit)
{
    const Lock lock(*unit.connection);
    unit.initialized = false;
    dropStream(unit);
}

void DeviceDeleter::operator()(Device* device) const
{
    delete device;
}

void UnitDeleter::operator()(Unit* unit) const
{
    stop(*unit);
    uninitialize(*unit);
    // Ends libpulse's thread, which may still have the prefill to do.
    unit->connection.reset();
    delete unit;
}

} // namespace AudioOutput
