#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// One entry of a file's track list.
struct BwfTrack {
    /// Channel number as the file gives it, counted from 1. May leave gaps and may repeat; not the list position.
    int32_t channelIndex = 0;
    /// Track name, bytes of the file taken to be UTF-8; may be empty. The reader gives all tracks together no more than
    /// 64 MiB of names and functions; those beyond are empty.
    std::string name;
    /// Track function, empty unless the file's iXML gave one.
    std::string function;
};

/// All that is known about one Broadcast WAV file: a plain value, copied freely, never shared by pointer.
/// Numbers are 0 and texts empty where the file said nothing. Texts are the bytes of the file, taken to be
/// UTF-8 only where they are shown. As a record of wanted values an empty text or a `timeReference` of 0 means
/// that the field stays as it is in the file; `circled` and `wildTrack` are always taken as values.
struct BwfMetadata {
    /// The greatest `timeReference` that counts as one: more than a day even at 192000 samples per second. What a
    /// file gives beyond it is no time of day, and is not taken.
    static constexpr uint64_t kMaxTimeReference = 20'000'000'000;

    /// Samples per second of the audio; 0 when no `fmt ` chunk was read.
    uint32_t sampleRate = 0;
    /// Interleaved channels; 0 when no `fmt ` chunk was read.
    uint16_t channels = 0;
    /// Bits per sample; 0 when no `fmt ` chunk was read.
    uint16_t bitsPerSample = 0;
    /// Samples since midnight of the first sample, in the timestamp rate; 0 means unknown. At most
    /// `kMaxTimeReference`.
    uint64_t timeReference = 0;
    /// Samples per second in which `timeReference` counts; 0 means that it counts in `sampleRate`.
    uint32_t timestampSampleRate = 0;
    /// Timecode frames per second; 0.0 means unknown. Any sign or size that the file gives.
    double frameRate = 0.0;
    /// Timecode is counted drop-frame.
    bool dropFrame = false;
    /// The file's first four bytes are "RF64".
    bool isRF64 = false;
    /// `bext` Description, at most 256 bytes, cut at the first NUL.
    std::string description;
    /// `bext` Originator, at most 32 bytes.
    std::string originator;
    /// `bext` OriginatorReference, at most 32 bytes.
    std::string originatorReference;
    /// `bext` OriginationDate as stored, at most 10 bytes, unchecked.
    std::string originationDate;
    /// Time of day as HH:MM:SS, from `bext` if well formed there, else as the iXML gives it.
    std::string originationTime;
    /// `bext` Version.
    uint16_t bextVersion = 0;
    /// The 64 UMID bytes as 128 lower-case hexadecimal digits; empty without `bext`.
    std::string umid;
    /// `bext` CodingHistory less its last eight bytes, cut at the first NUL.
    std::string codingHistory;
    /// User bits. From iXML with a leading "$", from the Description as they stand.
    std::string ubits;
    /// The take is circled.
    bool circled = false;
    /// The take is a wild track.
    bool wildTrack = false;
    /// Scene name.
    std::string scene;
    /// Project name, from iXML only.
    std::string project;
    /// Tape or reel name.
    std::string tape;
    /// Take name.
    std::string take;
    /// Free note.
    std::string note;
    /// Track list in file order; may be empty.
    std::vector<BwfTrack> tracks;
    /// Seconds of audio by the `data` chunk's size; 0.0 when it could not be computed.
    double duration = 0.0;
    /// Last component of the path.
    std::string fileName;
    /// Size of the file in bytes.
    uint64_t fileSize = 0;
};
