#pragma once

#include "audio/AudioOutput.h"

#include <cstdint>
#include <string>
#include <vector>

/// The audio output of tests: no device, no thread, no clock. A test sets what the system would answer, and pulls
/// frames itself where the device would. Link `tagwell_test_driven_output` instead of `tagwell_audio_output`.
///
/// There is one output for the process, as there is one default device. Call `reset` at the start of each test.
/// Thread: `pull` and the readers of state from any; the rest while no player is inside a call.
namespace DrivenOutput {

/// The steps that can be told to fail.
enum class Step { NewUnit, SetStreamFormat, SetRenderCallback, Initialize, Start };

/// Back to: device 1 is there, 48000.0 frames per second, every step succeeds, no calls noted.
void reset();

/// The id of the default device; 0 is no device.
void setDevice(uint32_t device);
/// What the device says of its rate; 0.0 is unknown.
void setNominalRate(double rate);
/// From now on `step` fails, until `reset`.
void failAt(Step step);

/// The names of the output's functions that were called since `reset`, in order.
std::vector<std::string> calls();
/// Forgets the noted calls only.
void forgetCalls();

/// Units made and not yet disposed of.
int unitsAlive();
/// True between `start` and `stop` of the unit made last.
bool started();
/// The rate set on the unit made last; 0.0 before that.
double streamRate();
/// What was set on the unit made last; null before that. Calling the function directly goes round `stop`.
AudioOutput::RenderFunction renderFunction();
void* renderContext();

/// What the device would do: calls the render function once for `frames` frames in two buffers of one channel. `stop`
/// waits for a pull in flight, as a real one does. False, with nothing written, if no unit is started.
bool pull(float* left, float* right, uint32_t frames);

/// `pull` as a list of left, right, left, right...; empty if no unit is started.
std::vector<float> pullStereo(uint32_t frames);

} // namespace DrivenOutput
