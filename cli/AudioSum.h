#pragma once

#include <string>
#include <string_view>
#include <vector>

/// How a checksum that the file itself carries stands to its audio.
enum class StoredSum {
    /// Equal, the bytes in the order of the digest.
    Agrees,
    /// Equal, the bytes last first, as mastering tools store them.
    AgreesReversed,
    /// Another digest.
    Differs,
    /// Not 16 bytes.
    Malformed,
};

/// What a file's audio is by its checksum.
struct AudioSum {
    /// MD5 of the payload of `data`, its declared bytes and nothing else: 32 lower-case hexadecimal digits.
    std::string digits;
    /// One for each `MD5 ` chunk, in order; mostly none.
    std::vector<StoredSum> stored;
};

/// Reads the audio of the file at `path` from end to end. Throws FileError if the file can't be read, is no WAV file,
/// has no audio, or ends before the audio does: there is no checksum of less than all. Thread: any; blocks.
AudioSum readAudioSum(const std::string& path);
