// Saves over copies of real recordings, each field alone and all together, with a shorter, an equally long and a longer
// value. Programs that have nothing to do with this one then read the copies: they find the new values, and the sound
// they decode is the same.

#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "core/BwfMetadataWriter.h"
#include "tests/support/ChangedRanges.h"
#include "tests/support/RunProcess.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr uint64_t kDescription = 256;
constexpr uint64_t kTimeReference = 338;

enum class Length { Shorter, Equal, Longer };

/// A text field: where it stands in the record, in the Description, in the iXML, and what exiftool calls it.
struct TextField {
    const char* name;
    std::string BwfMetadata::*member;
    const char* line;
    const char* element;
    const char* exifTag;
};

const TextField kFields[] = {
    { "scene", &BwfMetadata::scene, "SCENE=", "SCENE", "BwfxmlScene" },
    { "take", &BwfMetadata::take, "TAKE=", "TAKE", "BwfxmlTake" },
    { "tape", &BwfMetadata::tape, "TAPE=", "TAPE", "BwfxmlTape" },
    { "note", &BwfMetadata::note, "NOTE=", "NOTE", "BwfxmlNote" },
    { "project", &BwfMetadata::project, "TAG=", "PROJECT", "BwfxmlProject" },
};

std::string withLength(const std::string& old, Length length)
{
    std::string value = old;
    if (length == Length::Longer)
        return value + "X";
    if (length == Length::Shorter)
        value.pop_back();
    if (!value.empty())
        value.back() = value.back() == 'Q' ? 'R' : 'Q';
    return value;
}

/// A value of that length can be made out of the old one, and is not the empty text.
bool hasValue(const std::string& old, Length length)
{
    return length == Length::Longer || old.size() > (length == Length::Shorter ? 1u : 0u);
}

ByteRange payload(const std::string& file, const std::string& id)
{
    for (const ChunkPlace& each : chunkList(file)) {
        if (each.id == id)
            return { each.offset + 8, each.offset + 8 + each.size };
    }
    ADD_FAILURE() << "no " << id;
    return {};
}

std::string withoutLineEnd(std::string text)
{
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

std::string toolOutput(const std::vector<std::string>& command)
{
    const ProcessResult result = runProcess(command, {}, false);
    EXPECT_EQ(result.exitCode, 0) << command[0];
    return withoutLineEnd(result.output);
}

std::string audioMd5(const std::string& path)
{
    const std::string sum = toolOutput({ "ffmpeg", "-v", "error", "-i", path, "-map", "0:a", "-f", "md5", "-" });
    EXPECT_EQ(sum.substr(0, 4), "MD5=");
    return sum;
}

std::string ffprobeTag(const std::string& path, const std::string& tag)
{
    return toolOutput(
        { "ffprobe", "-v", "error", "-show_entries", "format_tags=" + tag, "-of", "default=nw=1:nk=1", path });
}

/// Values of several tags, empty for one that the file doesn't have.
std::vector<std::string> exifTags(const std::string& path, const std::vector<std::string>& tags)
{
    std::vector<std::string> command = { "exiftool", "-T", "-n" };
    for (const std::string& each : tags)
        command.push_back("-" + each);
    command.push_back(path);
    std::vector<std::string> values;
    std::istringstream line(toolOutput(command));
    for (std::string value; std::getline(line, value, '\t');)
        values.push_back(value == "-" ? "" : value); // "-" is the tool's word for no such element.
    values.resize(tags.size()); // An empty value at the end leaves no trace.
    return values;
}

/// Every value of a tag that the file has several times, in order.
std::vector<std::string> exifTagList(const std::string& path, const std::string& tag)
{
    std::vector<std::string> values;
    std::istringstream lines(toolOutput({ "exiftool", "-a", "-s3", "-n", "-" + tag, path }));
    for (std::string value; std::getline(lines, value);)
        values.push_back(value);
    return values;
}

/// Of each recording the sound is decoded once; copies must sound the same.
const std::string& soundOf(const fs::path& recording)
{
    static std::map<fs::path, std::string> known;
    std::string& sum = known[recording];
    if (sum.empty())
        sum = audioMd5(recording.string());
    return sum;
}

/// One copy of a recording and a save on it.
struct Copy {
    Copy(const std::string& copyPath, const std::string& sound)
        : path(copyPath), proof(copyPath), md5(sound), current(BwfMetadataReader::readMetadata(copyPath))
    {
        updated.circled = current.circled;
        updated.wildTrack = current.wildTrack;
        const uint64_t bext = payload(proof.before(), "bext").begin;
        description = { bext, bext + kDescription };
        timeReference = { bext + kTimeReference, bext + kTimeReference + 8 };
        ixml = payload(proof.before(), "iXML");
    }

    bool hasElement(const std::string& name) const
    {
        const std::string text = proof.before().substr(ixml.begin, ixml.end - ixml.begin);
        return text.find("<" + name + ">") != std::string::npos && text.find("</" + name + ">") != std::string::npos;
    }

    /// The Description as the bytes of the file now have it.
    std::string storedDescription() const
    {
        const std::string field = readBytes(path).substr(description.begin, kDescription);
        return field.substr(0, field.find('\0'));
    }

    void expectSoundAndFrameKept(const std::vector<ByteRange>& written) const
    {
        EXPECT_EQ(proof.changedWithin(written), "") << path;
        EXPECT_EQ(audioMd5(path), md5) << path;
    }

    /// A foreign tool reads the whole Description as it stands, with this line in it.
    void expectDescription(const std::string& line) const
    {
        const std::string stored = storedDescription();
        EXPECT_NE(stored.find(line + "\n"), std::string::npos) << path << ": " << stored;
        EXPECT_EQ(ffprobeTag(path, "comment"), withoutLineEnd(stored)) << path;
    }

    std::string path;
    FileProof proof;
    std::string md5;
    BwfMetadata current;
    BwfMetadata updated;
    ByteRange description;
    ByteRange timeReference;
    ByteRange ixml;
};

class RecordingsTest : public testing::Test {
protected:
    void SetUp() override
    {
        const char* recordings = std::getenv("TAGWELL_RECORDINGS");
        if (!recordings || !*recordings)
            GTEST_SKIP() << "TAGWELL_RECORDINGS is not set: there are no recordings to save over copies of.";
        for (const char* tool : { "ffmpeg", "ffprobe", "exiftool" })
            ASSERT_TRUE(programExists(tool)) << tool << " is not installed.";
        for (const auto& each : fs::recursive_directory_iterator(recordings)) {
            if (each.path().extension() == ".WAV")
                sources.push_back(each.path());
        }
        std::sort(sources.begin(), sources.end());
        ASSERT_FALSE(sources.empty());
    }

    /// A copy of its own folder, so that the proofs see that nothing was put beside it.
    Copy copyOf(const fs::path& source)
    {
        const fs::path target = folder.path() / source.parent_path().filename() / source.filename();
        fs::create_directories(target.parent_path());
        fs::remove(target);
        fs::copy_file(source, target);
        fs::permissions(target, fs::perms::owner_write, fs::perm_options::add);
        return Copy(target.string(), soundOf(source));
    }

    std::vector<fs::path> sources;
    TempFolder folder;
};

class TextFieldTest : public RecordingsTest, public testing::WithParamInterface<std::tuple<size_t, Length>> { };
class LengthTest : public RecordingsTest, public testing::WithParamInterface<Length> { };

std::string lengthName(Length length)
{
    return length == Length::Shorter ? "shorter" : length == Length::Equal ? "equallyLong" : "longer";
}

} // namespace

TEST_P(TextFieldTest, newValueIsReadByForeignToolsAndTheSoundIsTheSame)
{
    const TextField& field = kFields[std::get<0>(GetParam())];
    const Length length = std::get<1>(GetParam());
    size_t saved = 0;
    for (const fs::path& source : sources) {
        Copy copy = copyOf(source);
        const std::string old = copy.current.*field.member;
        if (!hasValue(old, length))
            continue;
        const std::string value = withLength(old, length);
        copy.updated.*field.member = value;
        ASSERT_TRUE(BwfMetadataWriter::writeMetadata(copy.path, copy.updated)) << copy.path;
        ++saved;

        const bool fits = length != Length::Longer;
        std::vector<ByteRange> written = { copy.description };
        if (fits)
            written.push_back(copy.ixml);
        copy.expectSoundAndFrameKept(written);
        copy.expectDescription(field.line + value);
        const std::vector<std::string> seen = exifTags(copy.path, { field.exifTag });
        const std::string stands = fits ? value : old;
        EXPECT_EQ(seen[0], stands) << copy.path;
        // What the iXML leaves empty the reader takes from the Description, which has the new value in any case.
        const std::string read = stands.empty() ? value : stands;
        EXPECT_EQ(BwfMetadataReader::readMetadata(copy.path).*field.member, read) << copy.path;
    }
    EXPECT_GT(saved, 0u);
}

INSTANTIATE_TEST_SUITE_P(Recordings, TextFieldTest,
    testing::Combine(testing::Range(size_t{ 0 }, std::size(kFields)),
        testing::Values(Length::Shorter, Length::Equal, Length::Longer)),
    [](const auto& each) {
        return std::string(kFields[std::get<0>(each.param)].name) + "_" + lengthName(std::get<1>(each.param));
    });

TEST_P(LengthTest, allFieldsTogetherAreReadByForeignToolsAndTheSoundIsTheSame)
{
    const Length length = GetParam();
    for (const fs::path& source : sources) {
        Copy copy = copyOf(source);
        std::vector<std::string> tags;
        std::vector<std::string> expected;
        for (const TextField& field : kFields) {
            const std::string old = copy.current.*field.member;
            if (!hasValue(old, length))
                continue;
            copy.updated.*field.member = withLength(old, length);
            tags.push_back(field.exifTag);
            expected.push_back(length == Length::Longer ? old : withLength(old, length));
        }
        copy.updated.timeReference = copy.current.timeReference + 12345;
        copy.updated.tracks = copy.current.tracks;
        for (BwfTrack& track : copy.updated.tracks)
            track.name = withLength(track.name, length);
        ASSERT_TRUE(BwfMetadataWriter::writeMetadata(copy.path, copy.updated)) << copy.path;

        std::vector<ByteRange> written = { copy.description, copy.timeReference };
        if (length != Length::Longer)
            written.push_back(copy.ixml);
        copy.expectSoundAndFrameKept(written);
        copy.expectDescription("SCENE=" + copy.updated.scene);
        EXPECT_EQ(ffprobeTag(copy.path, "time_reference"), std::to_string(copy.updated.timeReference));
        EXPECT_EQ(exifTags(copy.path, tags), expected) << copy.path;
        EXPECT_EQ(
            toolOutput({ "exiftool", "-b", "-Description", copy.path }), withoutLineEnd(copy.storedDescription()));
    }
}

TEST_P(LengthTest, trackNamesAreReadByForeignToolsAndTheSoundIsTheSame)
{
    const bool fits = GetParam() != Length::Longer;
    for (const fs::path& source : sources) {
        Copy copy = copyOf(source);
        ASSERT_FALSE(copy.current.tracks.empty()) << copy.path;
        copy.updated.tracks = copy.current.tracks;
        std::vector<std::string> expected;
        for (BwfTrack& track : copy.updated.tracks) {
            const std::string value = withLength(track.name, GetParam());
            expected.push_back(fits ? value : track.name);
            track.name = value;
        }
        EXPECT_EQ(BwfMetadataWriter::writeMetadata(copy.path, copy.updated), fits) << copy.path;
        if (fits)
            copy.expectSoundAndFrameKept({ copy.ixml });
        else
            EXPECT_EQ(copy.proof.untouched(), "") << copy.path;
        EXPECT_EQ(exifTagList(copy.path, "BwfxmlTrackListTrackName"), expected) << copy.path;
    }
}

INSTANTIATE_TEST_SUITE_P(Recordings, LengthTest, testing::Values(Length::Shorter, Length::Equal, Length::Longer),
    [](const auto& each) { return lengthName(each.param); });

TEST_F(RecordingsTest, timeReferenceIsReadByForeignToolsAndOnlyItsBytesChange)
{
    for (const fs::path& source : sources) {
        for (const uint64_t value : { uint64_t{ 1 }, uint64_t{ 4294967296 }, uint64_t{ 20000000000 } }) {
            Copy copy = copyOf(source);
            copy.updated.timeReference = value;
            ASSERT_TRUE(BwfMetadataWriter::writeMetadata(copy.path, copy.updated)) << copy.path;
            copy.expectSoundAndFrameKept({ copy.timeReference });
            EXPECT_EQ(ffprobeTag(copy.path, "time_reference"), std::to_string(value)) << copy.path;
            EXPECT_EQ(exifTags(copy.path, { "TimeReference" }), std::vector<std::string>{ std::to_string(value) });
        }
    }
}

TEST_F(RecordingsTest, circledIsReadByForeignToolsWhereTheFileHasTheElement)
{
    size_t circledFiles = 0;
    for (const fs::path& source : sources) {
        Copy copy = copyOf(source);
        ASSERT_FALSE(copy.current.circled) << copy.path;
        copy.updated.circled = true;
        const bool saved = BwfMetadataWriter::writeMetadata(copy.path, copy.updated);
        const bool shrinks = copy.proof.before().find("<CIRCLED>FALSE</CIRCLED>") != std::string::npos;
        EXPECT_EQ(saved, shrinks) << copy.path;
        if (!shrinks) {
            EXPECT_EQ(copy.proof.untouched(), "") << copy.path;
            continue;
        }
        ++circledFiles;
        copy.expectSoundAndFrameKept({ copy.ixml });
        EXPECT_EQ(exifTags(copy.path, { "BwfxmlCircled" }), std::vector<std::string>{ "TRUE" }) << copy.path;
    }
    EXPECT_GT(circledFiles, 0u);
}

TEST_F(RecordingsTest, wildTrackFitsWhereSomethingElseShrinks)
{
    size_t wildFiles = 0;
    for (const fs::path& source : sources) {
        Copy copy = copyOf(source);
        constexpr size_t kLine = 37; // "  <WILD_TRACK>TRUE</WILD_TRACK>\n" is 32 bytes; a note that pays for it.
        if (copy.current.note.size() < 2 || copy.hasElement("WILD_TRACK"))
            continue;
        copy.updated.wildTrack = true;
        copy.updated.note = "n";
        ASSERT_TRUE(BwfMetadataWriter::writeMetadata(copy.path, copy.updated)) << copy.path;
        const bool fits = copy.current.note.size() > kLine;
        EXPECT_EQ(BwfMetadataReader::readMetadata(copy.path).wildTrack, fits) << copy.path;
        copy.expectSoundAndFrameKept({ copy.description });
        ++wildFiles;
    }
    EXPECT_GT(wildFiles, 0u);
}

TEST_F(RecordingsTest, recordAsReadIsTrueAndLeavesTheFileUntouched)
{
    for (const fs::path& source : sources) {
        const Copy copy = copyOf(source);
        EXPECT_TRUE(BwfMetadataWriter::writeMetadata(copy.path, copy.current));
        EXPECT_EQ(copy.proof.untouched(), "") << copy.path;
    }
}
