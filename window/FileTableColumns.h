#pragma once

/// The columns of the file table, left to right.
enum class FileColumn {
    Play, ///< Holds the play button; its item has no text.
    FileName,
    FileSize,
    Channels,
    TapeId,
    Scene,
    Take,
    StartTimecode,
    Length,
    Date,
    Circled,
    SampleRate,
    FrameRate,
    Notes
};

inline constexpr int kFileColumnCount = 14;

/// The columns of the track table, left to right.
enum class TrackColumn {
    Interleave, ///< Position in the list, from 1.
    Channel,
    Name,
    Function
};

inline constexpr int kTrackColumnCount = 4;

/// The column's index in its table.
constexpr int indexOf(FileColumn column)
{
    return static_cast<int>(column);
}
constexpr int indexOf(TrackColumn column)
{
    return static_cast<int>(column);
}
