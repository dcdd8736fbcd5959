#pragma once

#include <QString>

#include <cstdint>

// The digits of a start timecode as they are typed, and the time they stand for. Works without a window and does
// not depend on the locale. Thread: any.

/// Characters of a complete entry, HH:MM:SS:FF.
inline constexpr int kTimecodeEntryLength = 11;

/// The decimal digits of `text`, of any script, at most eight, with a colon behind each second one that has a
/// follower: "1a23" gives "12:3".
QString formatTimecodeDigits(const QString& text);

/// Where the cursor goes when `formatted` takes the place of `text`, in which it stood at `cursor`: behind the same
/// digit, with colons in front of it counted anew. Where `formatted` has more colons than `text` has in front of the
/// cursor, it may stand up to two places further on. Never beyond the end of `formatted`.
int cursorInFormattedDigits(const QString& text, int cursor, const QString& formatted);

/// Samples since midnight of HH:MM:SS:FF at `sampleRate` samples and `frameRate` frames per second; the fraction of
/// a sample is cut off. The frames may be as many as they like: 99 frames at 25 per second are 3.96 seconds.
/// 0 for every failure: a rate that isn't above 0, anything but four decimal numbers between colons, an hour beyond
/// 23, a minute or second beyond 59, or more samples than fit. So midnight itself can't be told from a failure.
uint64_t parseTimecodeToSamples(const QString& text, unsigned int sampleRate, double frameRate);
