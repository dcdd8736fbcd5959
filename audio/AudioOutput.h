#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

/// The system's default audio output, as the player needs it. One source per platform implements these
/// functions, and the tests have one whose clock is the test; a program links exactly one of them. All decisions
/// (order of the calls, what a failure means, default rate) are the player's: nothing here falls back, and only `start`
/// tries anything again.
///
/// Thread: everything but the render function is called on the thread that opens the player. Calls may wait for
/// the system, in `openDefaultDevice` to `initialize` together for less than 3 seconds. Nothing is ever printed.
namespace AudioOutput {

/// One buffer of 32-bit float samples, in the shape that pull-model output services use.
struct Buffer {
    uint32_t mNumberChannels; ///< Interleaved channels; 1 where each channel has a buffer of its own.
    uint32_t mDataByteSize; ///< Room in bytes at `mData`.
    void* mData; ///< Owned by the caller of the render function. Null means that the buffer is to be left alone.
};

/// `mNumberBuffers` buffers, lying one behind the other from `mBuffers[0]` on: more than the member's type says, so
/// they are reached by `buffersOf`. Use BufferListOf to make one.
struct BufferList {
    uint32_t mNumberBuffers;
    Buffer mBuffers[1];
};

/// The first of the buffers of `list`; the others follow it.
inline Buffer* buffersOf(BufferList* list)
{
    return reinterpret_cast<Buffer*>(reinterpret_cast<std::byte*>(list) + offsetof(BufferList, mBuffers));
}

/// Room for a list of up to `kBuffers` buffers, all of them empty at first.
template <uint32_t kBuffers> class BufferListOf {
public:
    BufferListOf()
    {
        static_assert(kBuffers >= 1);
        new (storage) BufferList{ kBuffers, { { 0, 0, nullptr } } };
        for (uint32_t i = 1; i < kBuffers; ++i)
            new (buffersOf(list()) + i) Buffer{ 0, 0, nullptr };
    }
    BufferListOf(const BufferListOf&) = delete;
    BufferListOf& operator=(const BufferListOf&) = delete;

    /// The list. Lives as long as this object.
    BufferList* list() { return std::launder(reinterpret_cast<BufferList*>(storage)); }
    /// Buffer `index`, 0 to `kBuffers` - 1.
    Buffer& buffer(uint32_t index) { return buffersOf(list())[index]; }

private:
    alignas(BufferList) std::byte storage[sizeof(BufferList) + (kBuffers - 1) * sizeof(Buffer)];
};

/// Fills `frames` frames of `bufferList` and answers 0. `actionFlags`, `timeStamp` and `busNumber` are the
/// service's own and may be null or 0. Thread: the output's, at real-time priority.
using RenderFunction = int32_t (*)(void* context, uint32_t* actionFlags, const void* timeStamp, uint32_t busNumber,
    uint32_t frames, BufferList* bufferList);

/// The default output device, asked for and perhaps connected to. Each platform has its own.
struct Device;
/// An output unit: a stream to the default device. Each platform has its own.
struct Unit;

/// Lets go of the device.
struct DeviceDeleter {
    void operator()(Device* device) const;
};
/// Disposes of the unit, in whatever state it is.
struct UnitDeleter {
    void operator()(Unit* unit) const;
};
using DevicePtr = std::unique_ptr<Device, DeviceDeleter>;
using UnitPtr = std::unique_ptr<Unit, UnitDeleter>;

/// The default output device. Null if there is none.
DevicePtr openDefaultDevice();

/// The system's number of `device`, never 0.
uint32_t deviceId(const Device& device);

/// Nominal rate of `device` in frames per second. 0.0 if it can't be told, or if it isn't the default any more.
double nominalSampleRate(Device& device);

/// A unit on the default output, not yet initialised, which takes over what `device` has opened. Null if the device is
/// null, or if the system has no such service or refuses.
UnitPtr newUnit(DevicePtr device);

/// The unit will be fed two non-interleaved channels of 32-bit float at `rate` frames per second. False if the
/// system refuses.
bool setStreamFormat(Unit& unit, double rate);

/// `render` will be called with `context`, which has to live until the unit is disposed of. False if the system
/// refuses.
bool setRenderCallback(Unit& unit, RenderFunction render, void* context);

/// Makes the unit ready for `start`. False if the system refuses or doesn't answer in time.
bool initialize(Unit& unit);

/// Begins to call the render function; on a started unit nothing changes. Where the connection to the sound service was
/// lost since `initialize`, one new attempt is made first, which may take 3 seconds. Anything but 0 if the device is
/// gone or the system refuses.
int32_t start(Unit& unit);

/// Ends the calls: none is in flight when this returns. On a stopped unit nothing happens.
void stop(Unit& unit);

/// Takes back `initialize`. The unit is stopped.
void uninitialize(Unit& unit);

} // namespace AudioOutput
