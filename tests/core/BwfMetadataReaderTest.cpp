#include "core/BwfMetadataReader.h"

#include "tests/support/CommaLocale.h"
#include "tests/support/PlainReader.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

#include <unistd.h>

namespace {

class ReadMetadata : public testing::Test {
protected:
    BwfMetadata read(const std::string& bytes, const std::string& name = "take.wav")
    {
        writeBytes(folder.file(name), bytes);
        return BwfMetadataReader::readMetadata(folder.file(name));
    }
    BwfMetadata read(const WavBuilder& file) { return read(file.bytes()); }
    /// The record of a sparse file whose first chunk has `size` bytes, "<SCENE>near</SCENE>" first, and `chunks` behind
    /// it.
    BwfMetadata readBehind(uint32_t size, const std::string& chunks)
    {
        const std::string path = folder.file("far.wav");
        WavBuilder().chunk("big ", "<SCENE>near</SCENE>").claimSize("big ", size).write(path);
        std::filesystem::resize_file(path, uint64_t{ 20 } + size);
        std::ofstream(path, std::ios::binary | std::ios::app) << chunks;
        return BwfMetadataReader::readMetadata(path);
    }

    TempFolder folder;
};

WavBuilder plain()
{
    return WavBuilder().fmt(48000, 2, 24).dataFrames(4);
}

BextFields fullBext()
{
    BextFields fields;
    fields.description = "SCENE=7B\nTAPE=R9\nTRK1=Boom\n";
    fields.originator = "Recorder";
    fields.originatorReference = "REF1";
    fields.originationDate = "2024-05-06";
    fields.originationTime = "12:34:56";
    fields.timeReference = 172800000;
    fields.version = 2;
    fields.umid = std::string("\x06\x0A\xFF", 3);
    fields.codingHistory = "A=PCM,F=48000\r\n12345678";
    return fields;
}

/// A file, in a temporary folder, that this process may not open as long as the object lives.
class Unreadable {
public:
    explicit Unreadable(const std::string& path)
    {
        std::filesystem::permissions(std::filesystem::path(path).parent_path(), std::filesystem::perms(0755));
        std::filesystem::permissions(path, std::filesystem::perms::none);
        // The rights of a file don't bind root.
        if (wasRoot) {
            EXPECT_EQ(seteuid(kNobody), 0);
        }
    }
    ~Unreadable()
    {
        if (wasRoot) {
            EXPECT_EQ(seteuid(0), 0);
        }
    }
    Unreadable(const Unreadable&) = delete;
    Unreadable& operator=(const Unreadable&) = delete;

private:
    static constexpr uid_t kNobody = 65534;
    const bool wasRoot = geteuid() == 0;
};

const std::string kIxml = "<BWFXML><SCENE>12A</SCENE><SPEED><TIMECODE_RATE>25/1</TIMECODE_RATE></SPEED></BWFXML>";

/// The record of a file of which nothing but name and size is known.
std::string unknown(const std::string& name, uint64_t size)
{
    BwfMetadata record;
    record.fileName = name;
    record.fileSize = size;
    return recordText(record);
}

} // namespace

TEST_F(ReadMetadata, missingFileThrowsFilesystemError)
{
    EXPECT_THROW(BwfMetadataReader::readMetadata(folder.file("none.wav")), std::filesystem::filesystem_error);
}

TEST_F(ReadMetadata, folderThrowsFilesystemError)
{
    EXPECT_THROW(BwfMetadataReader::readMetadata(folder.path().string()), std::filesystem::filesystem_error);
}

TEST_F(ReadMetadata, emptyFileHasNameAndSizeZeroAlone)
{
    EXPECT_EQ(recordText(read(std::string())), unknown("take.wav", 0));
}

TEST_F(ReadMetadata, fileThatIsNoWavHasNameAndSizeAlone)
{
    EXPECT_EQ(recordText(read(std::string("this is a text, and a long one"))), unknown("take.wav", 30));
    EXPECT_EQ(recordText(read(plain().fileId("RIFX"))), unknown("take.wav", plain().bytes().size()));
}

TEST_F(ReadMetadata, otherFormTypeKeepsTheRf64MarkAlone)
{
    const WavBuilder file = plain().bext(fullBext()).ixml(kIxml).formType("AVI ");
    EXPECT_EQ(recordText(read(file)), unknown("take.wav", file.bytes().size()));
    BwfMetadata expected;
    expected.fileName = "take.wav";
    expected.fileSize = 4;
    expected.isRF64 = true;
    EXPECT_EQ(recordText(read(std::string("RF64"))), recordText(expected));
}

TEST_F(ReadMetadata, fileThatCannotBeOpenedHasNameAndSizeAlone)
{
    writeBytes(folder.file("take.wav"), plain().bytes());
    const Unreadable unreadable(folder.file("take.wav"));
    const BwfMetadata record = BwfMetadataReader::readMetadata(folder.file("take.wav"));
    EXPECT_EQ(recordText(record), unknown("take.wav", plain().bytes().size()));
}

TEST_F(ReadMetadata, pathsAreBytesWhateverTheLocale)
{
    const std::string name = "Szene \xC3\xA4 \xE2\x80\x94 1.WAV";
    EXPECT_EQ(read(plain().bytes(), name).fileName, name);
    EXPECT_EQ(read(plain().bytes(), "\xFF\xFE.wav").fileName, "\xFF\xFE.wav");
}

TEST_F(ReadMetadata, formatComesFromFmt)
{
    const BwfMetadata record = read(WavBuilder().fmt(96000, 8, 32, 3).dataFrames(4));
    EXPECT_EQ(record.sampleRate, 96000u);
    EXPECT_EQ(record.channels, 8u);
    EXPECT_EQ(record.bitsPerSample, 32u);
}

TEST_F(ReadMetadata, extensibleFormatIsReadLikeAnyOther)
{
    const std::string fmt = le16(0xFFFE) + le16(2) + le32(44100) + le32(0) + le16(6) + le16(24) + std::string(24, '\1');
    EXPECT_EQ(read(WavBuilder().chunk("fmt ", fmt).data("xxxxxx")).sampleRate, 44100u);
}

TEST_F(ReadMetadata, fmtBehindDataIsFound)
{
    EXPECT_EQ(read(WavBuilder().data("xxxxxx").fmt(48000, 2, 24)).sampleRate, 48000u);
}

TEST_F(ReadMetadata, riffWithoutDataHasNoFormatEither)
{
    const BwfMetadata record = read(WavBuilder().fmt(48000, 2, 24).bext(fullBext()));
    EXPECT_EQ(record.sampleRate, 0u);
    EXPECT_EQ(record.channels, 0u);
    EXPECT_EQ(record.bitsPerSample, 0u);
    EXPECT_EQ(record.originator, "Recorder");
}

TEST_F(ReadMetadata, rf64WithoutDs64HasNoFormatEither)
{
    const BwfMetadata record = read(WavBuilder::rf64().fmt(48000, 2, 24).dataFrames(4));
    EXPECT_EQ(record.sampleRate, 0u);
    EXPECT_EQ(record.duration, 0.0);
    EXPECT_TRUE(record.isRF64);
}

TEST_F(ReadMetadata, cutDs64LeavesNoFormat)
{
    const WavBuilder file = WavBuilder::rf64().fmt(48000, 2, 24).ds64(6000).truncateTo(12 + 24 + 8 + 15);
    EXPECT_EQ(read(file).sampleRate, 0u);
}

TEST_F(ReadMetadata, bytesOfACutFmtCountAsZero)
{
    const BwfMetadata record = read(WavBuilder().data("xx").fmt(48000, 2, 24).truncateTo(12 + 10 + 8 + 6));
    EXPECT_EQ(record.channels, 2u);
    EXPECT_EQ(record.sampleRate, 48000u & 0xFFFFu);
    EXPECT_EQ(record.bitsPerSample, 0u);
}

TEST_F(ReadMetadata, durationComesFromTheDataSize)
{
    EXPECT_EQ(read(WavBuilder().fmt(48000, 2, 24).data("").claimSize("data", 28800000)).duration, 100.0);
}

TEST_F(ReadMetadata, durationOfRf64ComesFromDs64AndNotFromTheDataHeader)
{
    const uint64_t size = 0x500000000;
    const WavBuilder file = WavBuilder::rf64().ds64(size).fmt(48000, 2, 16).data("xxxx");
    EXPECT_EQ(read(file).duration, static_cast<double>(size / 4) / 48000.0);
}

TEST_F(ReadMetadata, frameCountIsWhole)
{
    EXPECT_EQ(read(WavBuilder().fmt(48000, 1, 16).data("xxx")).duration, 1.0 / 48000.0);
}

TEST_F(ReadMetadata, twelveBitSamplesCountAsOneByte)
{
    EXPECT_EQ(read(WavBuilder().fmt(8000, 1, 12).data(std::string(8000, 'x'))).duration, 1.0);
}

TEST_F(ReadMetadata, zeroesInTheFormatLeaveNoDuration)
{
    EXPECT_EQ(read(WavBuilder().fmt(48000, 0, 16).data("xxxx")).duration, 0.0);
    EXPECT_EQ(read(WavBuilder().fmt(0, 1, 16).data("xxxx")).duration, 0.0);
    EXPECT_EQ(read(WavBuilder().fmt(48000, 1, 7).data("xxxx")).duration, 0.0);
    EXPECT_EQ(read(WavBuilder().fmt(48000, 1, 16).data("")).duration, 0.0);
}

TEST_F(ReadMetadata, missingPadByteLosesTheChunksBehindIt)
{
    const WavBuilder good = plain().chunk("odd ", "abc").ixml(kIxml);
    EXPECT_EQ(read(good).scene, "12A");
    EXPECT_EQ(read(plain().chunk("odd ", "abc").omitPadByte().ixml(kIxml)).scene, "");
}

TEST_F(ReadMetadata, rf64WithMetadataInFrontOfAPlaceholderIsReadWhole)
{
    const WavBuilder file = WavBuilder::rf64()
                                .ds64(600)
                                .bext(fullBext())
                                .ixml(kIxml)
                                .fmt(48000, 2, 24)
                                .data(std::string(600, '\x55'))
                                .claimSize("data", 0xFFFFFFFFu);
    const BwfMetadata record = read(file);
    EXPECT_EQ(record.scene, "12A");
    EXPECT_EQ(record.originator, "Recorder");
    EXPECT_EQ(record.duration, 100.0 / 48000.0);
    EXPECT_TRUE(record.isRF64);
}

// The positions of chunks behind 4 GB are cut to 32 bits. That of `bext` is cut eight bytes early, at its header, so a
// chunk whose header still lies in front of that border is read where it stands.
TEST_F(ReadMetadata, bextThatBeginsJustInFrontOfFourGigabytesIsReadThere)
{
    EXPECT_EQ(readBehind(0xFFFFFFE8u, WavBuilder().bext(fullBext()).bytes().substr(12)).originator, "Recorder");
}

TEST_F(ReadMetadata, chunksBehindFourGigabytesAreReadAtTheirPositionsCutTo32Bits)
{
    const std::string bext = "bext" + le32(602) + std::string(602, 'x');
    EXPECT_EQ(readBehind(0xFFFFFFF8u, bext).description.substr(0, 4), "<SCE");
    const std::string ixml = "iXML" + le32(24) + "<SCENE>far</SCENE>      ";
    EXPECT_EQ(readBehind(0xFFFFFFF8u, ixml).scene, "near");
}

TEST_F(ReadMetadata, rf64WithMetadataBehindAPlaceholderIsNotFound)
{
    const WavBuilder file = WavBuilder::rf64()
                                .ds64(600)
                                .fmt(48000, 2, 24)
                                .data(std::string(600, '\x55'))
                                .claimSize("data", 0xFFFFFFFFu)
                                .bext(fullBext())
                                .ixml(kIxml);
    const BwfMetadata record = read(file);
    EXPECT_EQ(record.scene, "");
    EXPECT_EQ(record.originator, "");
    EXPECT_EQ(record.duration, 100.0 / 48000.0);
}

TEST_F(ReadMetadata, bextWithoutIxmlLeavesSceneEmpty)
{
    const BwfMetadata record = read(plain().bext(fullBext()));
    EXPECT_EQ(record.scene, "");
    EXPECT_EQ(record.description, fullBext().description);
    EXPECT_TRUE(record.tracks.empty());
}

TEST_F(ReadMetadata, ixmlOfSizeZeroStillLetsTheDescriptionSpeak)
{
    const BwfMetadata record = read(plain().bext(fullBext()).ixml(""));
    EXPECT_EQ(record.scene, "7B");
    EXPECT_EQ(record.tracks.size(), 1u);
}

TEST_F(ReadMetadata, ixmlWhoseSizeFieldIsCutStillLetsTheDescriptionSpeak)
{
    EXPECT_EQ(read(plain().bext(fullBext()).trailing("iXML\x05")).scene, "7B");
}

TEST_F(ReadMetadata, ixmlIdMatchesInItsExactCase)
{
    EXPECT_EQ(read(plain().chunk("IXML", kIxml)).scene, "");
    EXPECT_EQ(read(plain().chunk("ixml", kIxml)).scene, "");
}

TEST_F(ReadMetadata, firstOfSeveralChunksCounts)
{
    EXPECT_EQ(read(plain().ixml("<SCENE>1</SCENE>").ixml("<SCENE>2</SCENE>")).scene, "1");
}

TEST_F(ReadMetadata, ixmlBehindDataIsFound)
{
    EXPECT_EQ(read(plain().ixml(kIxml)).scene, "12A");
}

TEST_F(ReadMetadata, paddingOfEitherKindChangesNothing)
{
    for (char pad : { ' ', '\0' })
        EXPECT_EQ(read(plain().ixmlPadded(kIxml, 5226, pad)).scene, "12A") << static_cast<int>(pad);
}

// Padding is only left away where nothing follows it.
TEST_F(ReadMetadata, longPaddingInsideTheTextStays)
{
    for (const std::string& pad : { std::string(200000, '\0'), std::string(200000, ' '),
             std::string(100000, ' ') + std::string(100000, '\0') + std::string(100000, ' ') }) {
        const BwfMetadata record = read(plain().ixml("<TAKE>3</TAKE><NOTE>a" + pad + "b</NOTE>" + pad));
        EXPECT_EQ(record.note, "a" + pad + "b");
        EXPECT_EQ(record.take, "3");
    }
}

TEST_F(ReadMetadata, cutIxmlGivesWhatArrived)
{
    const WavBuilder file = WavBuilder()
                                .fmt(48000, 2, 24)
                                .data("")
                                .ixml("<SCENE>12A</SCENE><TAKE>3</TAKE>")
                                .truncateTo(12 + 24 + 8 + 8 + 25);
    const BwfMetadata record = read(file);
    EXPECT_EQ(record.scene, "12A");
    EXPECT_EQ(record.take, "");
}

TEST_F(ReadMetadata, singleStepsReadTheSameAsAllTogether)
{
    const WavBuilder file = plain().bext(fullBext()).ixml(kIxml);
    const BwfMetadata together = read(file);
    BwfMetadata record;
    BwfMetadataReader::readFileInfo(folder.file("take.wav"), record);
    EXPECT_EQ(record.sampleRate, 48000u);
    EXPECT_EQ(record.originator, "");
    BwfMetadataReader::readBextChunk(folder.file("take.wav"), record);
    EXPECT_EQ(record.originator, "Recorder");
    EXPECT_EQ(record.scene, "");
    BwfMetadataReader::readIxmlChunk(folder.file("take.wav"), record);
    EXPECT_EQ(recordText(record), recordText(together));
}

TEST_F(ReadMetadata, singleStepsOnAMissingFileLeaveTheRecordAlone)
{
    BwfMetadata record;
    record.description = "SCENE=1";
    const std::string before = recordText(record);
    BwfMetadataReader::readBextChunk(folder.file("none.wav"), record);
    BwfMetadataReader::readIxmlChunk(folder.file("none.wav"), record);
    EXPECT_EQ(recordText(record), before);
}

TEST_F(ReadMetadata, singleStepsOnAFileThatCannotBeOpenedLeaveTheRecordAlone)
{
    const std::string path = folder.file("take.wav");
    plain().bext(fullBext()).ixml(kIxml).write(path);
    BwfMetadata record;
    record.description = "SCENE=1";
    const std::string before = recordText(record);
    const Unreadable unreadable(path);
    BwfMetadataReader::readBextChunk(path, record);
    BwfMetadataReader::readIxmlChunk(path, record);
    EXPECT_EQ(recordText(record), before);
}

TEST_F(ReadMetadata, wholeReadIsTheSameRecordWhereverTheFileEnds)
{
    const std::string bytes
        = WavBuilder().fmt(48000, 1, 16).bext(fullBext()).dataFrames(20).ixml(kIxml).claimSize("iXML", 9000).bytes();
    for (size_t size = 0; size <= bytes.size(); ++size) {
        const std::string plainRecord = recordText(read(bytes.substr(0, size)));
        const auto whole = BwfMetadataReader::readMetadataWhole(folder.file("take.wav"));
        ASSERT_TRUE(whole) << size;
        ASSERT_EQ(recordText(*whole), plainRecord) << size;
    }
}

TEST_F(ReadMetadata, wholeReadOfAFileThatCannotBeOpenedIsNothing)
{
    const std::string path = folder.file("take.wav");
    plain().write(path);
    const Unreadable unreadable(path);
    EXPECT_FALSE(BwfMetadataReader::readMetadataWhole(path));
}

TEST_F(ReadMetadata, wholeReadOfAMissingFileThrowsAsTheOtherDoes)
{
    EXPECT_THROW(
        (void)BwfMetadataReader::readMetadataWhole(folder.file("none.wav")), std::filesystem::filesystem_error);
}

TEST_F(ReadMetadata, fileIsNotChanged)
{
    const std::string bytes = plain().bext(fullBext()).ixml(kIxml).bytes();
    writeBytes(folder.file("take.wav"), bytes);
    const auto before = std::filesystem::last_write_time(folder.file("take.wav"));
    (void)BwfMetadataReader::readMetadata(folder.file("take.wav"));
    EXPECT_EQ(readBytes(folder.file("take.wav")), bytes);
    EXPECT_EQ(std::filesystem::last_write_time(folder.file("take.wav")), before);
}

TEST_F(ReadMetadata, commaLocaleChangesNothing)
{
    const WavBuilder file = plain().bext(fullBext()).ixml("<SPEED><TIMECODE_RATE>23.976</TIMECODE_RATE></SPEED>");
    const BwfMetadata before = read(file);
    const CommaLocale comma;
    if (!comma.works())
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    const BwfMetadata record = read(file);
    EXPECT_EQ(record.frameRate, 23.976);
    EXPECT_EQ(recordText(record), recordText(before));
}

// Files with all chunks cut all along, against the plain reader: no cut end reads as anything else.
TEST_F(ReadMetadata, cutEndsReadAsStepByStep)
{
    for (const WavBuilder& shape : { WavBuilder().bext(fullBext()).ixml(kIxml).fmt(48000, 2, 24).dataFrames(2),
             WavBuilder().fmt(48000, 2, 24).dataFrames(2).ixml(kIxml).bext(fullBext()),
             WavBuilder::rf64().ds64(12).ixml(kIxml).fmt(48000, 2, 24).dataFrames(2).bext(fullBext()) }) {
        const std::string bytes = shape.bytes();
        for (size_t length = 0; length <= bytes.size(); length += 3) {
            const BwfMetadata record = read(bytes.substr(0, length));
            ASSERT_EQ(recordText(record), recordText(PlainReader::readMetadata(folder.file("take.wav")))) << length;
        }
    }
}

TEST_F(ReadMetadata, damagedFilesReadAsStepByStep)
{
    std::mt19937 engine(5);
    const auto random = [&engine](size_t bound) { return static_cast<size_t>(engine()) % bound; };
    const std::string whole = WavBuilder::rf64()
                                  .ds64(12)
                                  .bext(fullBext())
                                  .ixml(kIxml)
                                  .fmt(48000, 2, 24)
                                  .dataFrames(2)
                                  .chunk("bext", "x")
                                  .bytes();
    for (int round = 0; round < 500; ++round) {
        std::string bytes = whole;
        bytes[2] = random(2) ? '6' : 'F';
        bytes.replace(0, 4, random(2) ? "RIFF" : "RF64");
        for (size_t damage = random(6); damage > 0; --damage)
            bytes[random(bytes.size())] = static_cast<char>(random(3) ? random(4) : random(256));
        if (random(3) == 0)
            bytes.erase(12 + random(bytes.size() - 12), random(9));
        const BwfMetadata record = read(bytes);
        ASSERT_EQ(recordText(record), recordText(PlainReader::readMetadata(folder.file("take.wav")))) << round;
    }
}
