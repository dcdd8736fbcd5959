#pragma once

#include <QString>

struct TakeInfo;

// The texts that the reports and their dialog show, worked out from values. They depend on no locale.
// Thread: any.

/// `samples` counted at `sampleRate` as HH:MM:SS:FF; "--:--:--:--" if one of the rates is 0. Hours go on past 23,
/// frames are the truncated fraction of the second times `frameRate`, without drop-frame counting.
/// The window's text wraps at 24 hours and is empty for a count of 0: MetadataManagerWindow::formatTimecode.
QString reportTimecode(unsigned long long samples, unsigned int sampleRate, double frameRate);

/// `seconds` as HH:MM:SS:FF, at 30 frames per second unless `frameRate` is above 0. Has no failure text.
/// The window's text has no frames and shows a dash for 0: MetadataManagerWindow::formatDuration.
QString reportDuration(double seconds, double frameRate);
/// The take's own length at its own rate.
QString reportDuration(const TakeInfo& take);

/// A rate such as "25nd-C" or "29.97df-C"; empty if the rate is 0 or less. The suffix follows the rate alone,
/// not a file's drop-frame flag, and stands in the reports only: the window shows a rate as "25 fps", the mixer as
/// Timecode::formatFrameRate has it.
QString reportFrameRate(double frameRate);

/// `value` as a CSV field: quoted if it holds a comma, a double quote, a line feed or a carriage return.
QString csvField(const QString& value);

/// The track names with `separator` between them; empty when there are none.
QString joinedTracks(const TakeInfo& take, const QString& separator);

/// The file's name less a final ".wav" in any case.
QString nameWithoutWav(const TakeInfo& take);
