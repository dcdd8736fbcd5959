#pragma once

/// Makes the mixer's hand-made widgets speak in assistive tools as a person reads them, under the names that they have
/// anyway. A fader tells decibels, where a plain slider would tell tenths of them; a meter its level and its clip
/// indicator; the waveform the place of the playhead in seconds. Each tells it as a number with its range, and as a
/// text: the value's text and the description, since not every platform passes on the first.
/// May be called any number of times; from the first call on it holds for all faders, meters and waveforms.
/// Thread: main only.
void installMixerAccessibility();
