#include "tests/support/DrivenOutput.h"

#include <algorithm>
#include <mutex>

namespace AudioOutput {

struct Device {
    uint32_t id;
};

struct Unit {
    double rate = 0.0;
    RenderFunction render = nullptr;
    void* context = nullptr;
    bool initialized = false;
    bool started = false;
};

} // namespace AudioOutput

namespace {

struct Output {
    // Held during a pull too, so that `stop` returns with none in flight.
    std::mutex mutex;
    uint32_t device = 1;
    double nominalRate = 48000.0;
    std::vector<DrivenOutput::Step> failing;
    std::vector<std::string> calls;
    std::vector<AudioOutput::Unit*> units; // In the order of their making.

    AudioOutput::Unit* latest() const { return units.empty() ? nullptr : units.back(); }
    bool fails(DrivenOutput::Step step) const
    {
        return std::find(failing.begin(), failing.end(), step) != failing.end();
    }
};

Output& output()
{
    static Output theOne;
    return theOne;
}

} // namespace

namespace AudioOutput {

using DrivenOutput::Step;

DevicePtr openDefaultDevice()
{
    const std::lock_guard lock(output().mutex);
    output().calls.emplace_back("openDefaultDevice");
    return DevicePtr(output().device != 0 ? new Device{ output().device } : nullptr);
}

uint32_t deviceId(const Device& device)
{
    return device.id;
}

double nominalSampleRate(Device& device)
{
    const std::lock_guard lock(output().mutex);
    output().calls.emplace_back("nominalSampleRate");
    return device.id == output().device ? output().nominalRate : 0.0;
}

UnitPtr newUnit(DevicePtr device)
{
    const std::lock_guard lock(output().mutex);
    output().calls.emplace_back("newUnit");
    if (!device || output().fails(Step::NewUnit))
        return nullptr;
    output().units.push_back(new Unit);
    return UnitPtr(output().units.back());
}

bool setStreamFormat(Unit& unit, double rate)
{
    const std::lock_guard lock(output().mutex);
    output().calls.emplace_back("setStreamFormat");
    unit.rate = rate;
    return !output().fails(Step::SetStreamFormat);
}

bool setRenderCallback(Unit& unit, RenderFunction render, void* context)
{
    const std::lock_guard lock(output().mutex);
    output().calls.emplace_back("setRenderCallback");
    unit.render = render;
    unit.context = context;
    return !output().fails(Step::SetRenderCallback);
}

bool initialize(Unit& unit)
{
    const std::lock_guard lock(output().mutex);
    output().calls.emplace_back("initialize");
    unit.initialized = !output().fails(Step::Initialize);
    return unit.initialized;
}

int32_t start(Unit& unit)
{
    const std::lock_guard lock(output().mutex);
    output().calls.emplace_back("start");
    if (output().fails(Step::Start) || !unit.initialized)
        return -1;
    unit.started = true;
    return 0;
}

void stop(Unit& unit)
{
    const std::lock_guard lock(output().mutex);
    output().calls.emplace_back("stop");
    unit.started = false;
}

void uninitialize(Unit& unit)
{
    const std::lock_guard lock(output().mutex);
    output().calls.emplace_back("uninitialize");
    unit.initialized = false;
}

void DeviceDeleter::operator()(Device* device) const
{
    delete device;
}

void UnitDeleter::operator()(Unit* unit) const
{
    const std::lock_guard lock(output().mutex);
    output().calls.emplace_back("dispose");
    std::erase(output().units, unit);
    delete unit;
}

} // namespace AudioOutput

namespace DrivenOutput {

void reset()
{
    const std::lock_guard lock(output().mutex);
    output().device = 1;
    output().nominalRate = 48000.0;
    output().failing.clear();
    output().calls.clear();
}

void setDevice(uint32_t device)
{
    const std::lock_guard lock(output().mutex);
    output().device = device;
}

void setNominalRate(double rate)
{
    const std::lock_guard lock(output().mutex);
    output().nominalRate = rate;
}

void failAt(Step step)
{
    const std::lock_guard lock(output().mutex);
    output().failing.push_back(step);
}

std::vector<std::string> calls()
{
    const std::lock_guard lock(output().mutex);
    return output().calls;
}

void forgetCalls()
{
    const std::lock_guard lock(output().mutex);
    output().calls.clear();
}

int unitsAlive()
{
    const std::lock_guard lock(output().mutex);
    return static_cast<int>(output().units.size());
}

bool started()
{
    const std::lock_guard lock(output().mutex);
    return output().latest() && output().latest()->started;
}

double streamRate()
{
    const std::lock_guard lock(output().mutex);
    return output().latest() ? output().latest()->rate : 0.0;
}

AudioOutput::RenderFunction renderFunction()
{
    const std::lock_guard lock(output().mutex);
    return output().latest() ? output().latest()->render : nullptr;
}

void* renderContext()
{
    const std::lock_guard lock(output().mutex);
    return output().latest() ? output().latest()->context : nullptr;
}

bool pull(float* left, float* right, uint32_t frames)
{
    const std::lock_guard lock(output().mutex);
    const AudioOutput::Unit* unit = output().latest();
    if (!unit || !unit->started || !unit->render)
        return false;
    const auto bytes = static_cast<uint32_t>(frames * sizeof(float));
    AudioOutput::BufferListOf<2> buffers;
    buffers.buffer(0) = { 1, bytes, left };
    buffers.buffer(1) = { 1, bytes, right };
    unit->render(unit->context, nullptr, nullptr, 0, frames, buffers.list());
    return true;
}

std::vector<float> pullStereo(uint32_t frames)
{
    std::vector<float> left(frames);
    std::vector<float> right(frames);
    if (!pull(left.data(), right.data(), frames))
        return {};
    std::vector<float> stereo;
    stereo.reserve(2 * left.size());
    for (size_t i = 0; i < left.size(); ++i) {
        stereo.push_back(left[i]);
        stereo.push_back(right[i]);
    }
    return stereo;
}

} // namespace DrivenOutput
