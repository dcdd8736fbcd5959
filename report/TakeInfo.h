#pragma once

#include <QDateTime>
#include <QFileInfo>
#include <QList>
#include <QString>

#include <cstdint>
#include <string>
#include <vector>

struct BwfMetadata;

/// One take of a sound roll: one file, one row of every report. A plain value; texts are UTF-8 as the file holds
/// them and become a `QString` only where they are shown. The drop-frame flag of a file is not taken over.
struct TakeInfo {
    /// Number that the recorder put in front of the first "_" of the file's name, such as "AAD0012"; empty for a name
    /// that doesn't start with "AAD" or holds no "_".
    std::string fileNumber;
    /// "s" and four digits, out of `fileNumber` or counted in the order of loading. Part of the record; no view reads
    /// it.
    std::string shortNumber;
    /// Name of the file with its extension.
    std::string filename;
    /// Scene name; may be empty.
    std::string scene;
    /// Take name; may be empty.
    std::string take;
    /// Project of the file's own metadata, not the configured one; may be empty.
    std::string project;
    /// Tape or roll name of the file; may be empty.
    std::string soundRoll;
    /// Start as HH:MM:SS:FF, empty when the file has no timecode.
    std::string timecodeIn;
    /// End as HH:MM:SS:FF, empty when the file has no timecode.
    std::string timecodeOut;
    /// Length in seconds; 0.0 when unknown.
    double duration = 0.0;
    /// Free note, may hold line feeds.
    std::string notes;
    /// Track names in channel order; empty names are kept. Never empty for a file whose channel count is known.
    std::vector<std::string> tracks;
    /// Absolute path of the file. Part of the record; no view reads it.
    std::string filePath;
    /// Modification time of the file, local time; may be invalid.
    QDateTime fileDate;
    /// Timecode frames per second; 0.0 when unknown.
    double frameRate = 0.0;
    /// Samples per second of the audio; 0 when unknown.
    uint32_t sampleRate = 0;
    /// Bits per sample; 0 when unknown.
    uint16_t bitDepth = 0;
    /// The file has two channels or more.
    bool isPoly = false;
    /// The take is circled. Shown by the CSV report with flags alone.
    bool circled = false;
    /// The take is a wild track. As `circled`.
    bool wildTrack = false;
};

/// Those of `paths` that are files now, in their order; others are dropped without a word.
QList<QFileInfo> filesAmong(const QList<QString>& paths);

/// The WAV files, suffix in any case, that lie directly in `folder`, by name. Hidden ones are passed over. Unlike the
/// walk of app/files/FolderWalk.h it enters no folder below: a roll is one folder. Empty if `folder` can't be read.
QList<QFileInfo> wavFilesIn(const QString& folder);

/// The take of a file whose record is `metadata`. `position` counts from 1 in the order of loading. Touches the file
/// for its date alone.
TakeInfo takeOf(const QFileInfo& file, const BwfMetadata& metadata, size_t position);

/// Sorts by file number, scene and take, each compared by its bytes; ties come in no defined order, but in the same one
/// for the same takes.
void sortTakes(std::vector<TakeInfo>& takes);

/// Reads each file, in the order given, and returns the takes sorted by `sortTakes`. A file that can't be parsed gives
/// a take of empty texts and zeros; a file that vanished, or for which anything else throws, gives none. Reads
/// synchronously.
std::vector<TakeInfo> readTakes(const QList<QFileInfo>& files);

/// The roll's name for a report over `files`, out of which the sorted `takes` were read: the first tape name of a
/// take, else the name of the first file's folder. Empty if there are neither.
QString soundRollOf(const std::vector<TakeInfo>& takes, const QList<QFileInfo>& files);
