#pragma once

#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "core/BwfMetadataWriter.h"
#include "tests/support/ChangedRanges.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

/// Bytes of the Description, which the `bext` payload begins with.
inline constexpr size_t kDescription = 256;
/// Where the time reference stands in the `bext` payload.
inline constexpr size_t kTimeReference = 338;
/// Bytes of the usual file's `iXML` payload: its text, then NUL.
inline constexpr size_t kIxmlBytes = 1200;

/// What the usual file says in both places, so that each edit shows in both.
inline const std::string kDescriptionText
    = "aSCENE=12\naTAKE=3\naTAPE=T1\naSPEED=25.000-ND\naTAG=Film\naNOTE=wind\naTRK1=Boom\n";

inline const std::string kIxml
    = "<BWFXML>\n<PROJECT>Film</PROJECT>\n<SCENE>12</SCENE>\n<TAKE>3</TAKE>\n<TAPE>T1</TAPE>\n"
      "<NOTE>wind</NOTE>\n<CIRCLED>FALSE</CIRCLED>\n<UBITS>$00000000</UBITS>\n"
      "<SPEED><TIMECODE_RATE>25/1</TIMECODE_RATE></SPEED>\n<TRACK_LIST>\n"
      "<TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>Boom</NAME></TRACK>\n"
      "</TRACK_LIST>\n</BWFXML>\n";

/// `text`, cut or filled with NUL to `size` bytes.
inline std::string field(const std::string& text, size_t size)
{
    std::string bytes = text.substr(0, size);
    bytes.resize(size, '\0');
    return bytes;
}

/// `text` with its first `from` replaced; fails the test if there is none.
inline std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

/// A `bext` that says something in every field.
inline BextFields bextOf(const std::string& description, uint64_t timeReference = 1000)
{
    BextFields fields;
    fields.description = description;
    fields.originator = "Recorder";
    fields.originatorReference = "REF0001";
    fields.originationDate = "2024-05-06";
    fields.originationTime = "07:08:09";
    fields.timeReference = timeReference;
    fields.umid = std::string(64, '\x5A');
    fields.codingHistory = "A=PCM,F=48000,W=24,M=mono,T=Recorder\r\n";
    return fields;
}

/// A file, a save and the proofs.
class WriterTest : public testing::Test {
protected:
    void make(const WavBuilder& from)
    {
        builder = from;
        builder.write(path);
        proof = std::make_unique<FileProof>(path);
        current = BwfMetadataReader::readMetadata(path);
        // What a caller hands over: nothing but the flags is filled in unless it is wanted.
        updated = BwfMetadata();
        updated.circled = current.circled;
        updated.wildTrack = current.wildTrack;
    }

    void makeUsual() { make(usual(kDescriptionText, kIxml)); }

    static WavBuilder usual(const std::string& description, const std::string& ixml)
    {
        WavBuilder result;
        result.fmt(48000, 1, 24).bext(bextOf(description)).ixmlPadded(ixml, kIxmlBytes, '\0').dataFrames(300);
        return result;
    }

    static WavBuilder withoutIxml(const std::string& description)
    {
        WavBuilder result;
        result.fmt(48000, 1, 24).bext(bextOf(description)).dataFrames(300);
        return result;
    }

    bool save() { return BwfMetadataWriter::writeMetadata(path, updated); }

    size_t bext() const { return builder.payloadOffset("bext"); }
    size_t ixml() const { return builder.payloadOffset("iXML"); }
    Patch description(const std::string& text) const { return { bext(), field(text, kDescription) }; }
    Patch ixmlText(const std::string& text) const { return { ixml(), field(text, kIxmlBytes) }; }
    Patch timeReference(uint64_t value) const { return { bext() + kTimeReference, le64(value) }; }
    BwfMetadata readBack() const { return BwfMetadataReader::readMetadata(path); }

    TempFolder folder;
    std::string path = folder.file("take.wav");
    WavBuilder builder;
    std::unique_ptr<FileProof> proof;
    BwfMetadata current;
    BwfMetadata updated;
};
