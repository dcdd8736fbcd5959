#pragma once

#include "window/FileTableColumns.h"

#include <QString>

#include <cstdint>
#include <string>

class QFileInfo;
struct BwfMetadata;

// The texts that the main window shows, worked out from records. They need no window and do not depend on the locale.
// Thread: any.

/// The mark of a field without a value, and of one whose values differ over a multiple selection: "—", U+2014.
/// Saving reads it back from the editors.
QString noValueMark();

/// Text for the interface; `bytes` are taken to be UTF-8.
QString textFromUtf8(const std::string& bytes);

/// Samples per second in which the record's `timeReference` counts; 0 if neither rate is known.
uint32_t timecodeRate(const BwfMetadata& record);

/// One decimal and a unit from "B" to "TB", in steps of 1024: "512.0 B", "1.5 KB".
QString fileSizeText(uint64_t bytes);

/// HH:MM:SS:FF of `samples` since midnight; hours wrap at 24, frames are cut, never rounded.
/// Empty if `samples` or `sampleRate` is 0 or `frameRate` isn't above 0.0.
QString timecodeText(uint64_t samples, uint32_t sampleRate, double frameRate);

/// HH:MM:SS of a length in seconds, cut to whole ones; hours go on beyond 24. The mark if `seconds` isn't above 0.0.
QString durationText(double seconds);

/// The record's start timecode; the mark if it has no start time, rate or frame rate. A start at midnight has none.
QString startTimecodeText(const BwfMetadata& record);

/// At most three decimals and " fps": "25 fps", "23.976 fps". The mark if the rate isn't above 0.0.
/// The mixer shows a rate by its usual name and says how it is counted (Timecode::formatFrameRate); the reports write
/// two decimals and "nd-C" or "df-C" (formatFramerate).
QString frameRateText(double frameRate);

/// "48000 Hz", also for 0.
QString hertzText(uint32_t rate);

/// "0", "MONO" or "POLY (8)", as the file table shows a number of channels.
QString channelsText(uint16_t channels);

/// What the file table shows of `record` in `column`. `file` is the record's file; its name and modification time
/// are taken from there. Empty for the play column.
QString fileCellText(FileColumn column, const BwfMetadata& record, const QFileInfo& file);
