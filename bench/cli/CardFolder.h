#pragma once

#include "cli/CommandLine.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <cstdint>
#include <ostream>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

/// A folder of `count` small recordings with full metadata, read once so that they are in the cache.
class CardFolder {
public:
    explicit CardFolder(int count)
    {
        for (int i = 0; i < count; ++i) {
            paths.push_back(folder.file("A101_" + std::to_string(10000 + i) + ".WAV"));
            recording(i).write(paths.back());
            (void)readBytes(paths.back());
        }
    }

    std::vector<std::string> paths;
    std::string path() const { return folder.path().string(); }

private:
    static WavBuilder recording(int take)
    {
        BextFields fields;
        fields.description = "sSPEED=023.976-ND\r\nsTAKE=1\r\nsSCENE=A101\r\nsTAPE=18Y12M31\r\n";
        fields.originator = "Recorder";
        fields.originationDate = "2024-05-06";
        fields.originationTime = "12:34:56";
        fields.timeReference = 2190940753;
        fields.codingHistory = "A=PCM,F=48000,W=24,M=stereo,R=48000,T=2 Ch\r\n";
        const std::string text
            = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><BWFXML><PROJECT>Film</PROJECT><SCENE>A101</SCENE>"
              "<TAKE>"
            + std::to_string(take)
            + "</TAKE><TAPE>18Y12M31</TAPE><NOTE>good "
              "one</NOTE><CIRCLED>FALSE</CIRCLED><SPEED><TIMECODE_RATE>24000/1001"
              "</TIMECODE_RATE><TIMECODE_FLAG>NDF</TIMECODE_FLAG><TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>0"
              "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI><TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>2190940753"
              "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO><TIMESTAMP_SAMPLE_RATE>48000</TIMESTAMP_SAMPLE_RATE></SPEED>"
              "<TRACK_LIST><TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>Boom</NAME></TRACK><TRACK><CHANNEL_INDEX>2"
              "</CHANNEL_INDEX><NAME>Lav</NAME></TRACK></TRACK_LIST></BWFXML>";
        return WavBuilder()
            .bext(fields)
            .ixmlPadded(text, 5 * 1024, ' ')
            .fmt(48000, 2, 24)
            .data(std::string(4800, '\x11'));
    }

    TempFolder folder;
};

/// Counts what is written and keeps nothing.
class CountingBuffer : public std::streambuf {
public:
    uint64_t bytes = 0;

protected:
    int_type overflow(int_type byte) override
    {
        ++bytes;
        return byte;
    }
    std::streamsize xsputn(const char*, std::streamsize count) override
    {
        bytes += static_cast<uint64_t>(count);
        return count;
    }
};

/// Runs the command line with its output counted; the number of bytes, 0 if not all was well.
inline uint64_t bytesPrintedBy(const std::vector<std::string>& arguments)
{
    CountingBuffer counter;
    std::istringstream in;
    std::ostream out(&counter);
    std::ostringstream err;
    Io io{
        .in = in, .out = out, .err = err, .millis = [] { return int64_t{ 0 }; }, .interrupted = [] { return false; }
    };
    return runCommandLine(arguments, io) == Exit::Ok ? counter.bytes : 0;
}
