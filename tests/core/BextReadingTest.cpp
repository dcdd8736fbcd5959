#include "core/BwfMetadataReader.h"

#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

namespace {

class ReadBext : public testing::Test {
protected:
    BwfMetadata read(const WavBuilder& file)
    {
        file.write(folder.file("a.wav"));
        BwfMetadata record;
        BwfMetadataReader::readBextChunk(folder.file("a.wav"), record);
        return record;
    }
    BwfMetadata read(const BextFields& fields) { return read(WavBuilder().bext(fields).chunk("next", "")); }
    std::string timeOf(const std::string& stored)
    {
        BextFields fields;
        fields.originationTime = stored;
        return read(fields).originationTime;
    }
    uint64_t referenceOf(uint64_t stored)
    {
        BextFields fields;
        fields.timeReference = stored;
        return read(fields).timeReference;
    }

    TempFolder folder;
};

// Every byte that is no NUL and no field's end stands for its field.
BextFields filled()
{
    BextFields fields;
    fields.description = std::string(256, 'd');
    fields.originator = std::string(32, 'o');
    fields.originatorReference = std::string(32, 'r');
    fields.originationDate = "2024/05/06";
    fields.originationTime = "23:59:58";
    fields.timeReference = 0x112345678;
    fields.version = 0x0201;
    fields.umid = std::string(64, '\xA5');
    return fields;
}

/// The record of a file that ends after `bytes` bytes of the payload.
WavBuilder cutAt(size_t bytes)
{
    return WavBuilder().bext(filled()).truncateTo(20 + bytes);
}

} // namespace

TEST_F(ReadBext, fieldsAreTakenAtTheirOffsetsAndFullWidth)
{
    const BwfMetadata record = read(filled());
    EXPECT_EQ(record.description, std::string(256, 'd'));
    EXPECT_EQ(record.originator, std::string(32, 'o'));
    EXPECT_EQ(record.originatorReference, std::string(32, 'r'));
    EXPECT_EQ(record.originationDate, "2024/05/06");
    EXPECT_EQ(record.originationTime, "23:59:58");
    EXPECT_EQ(record.timeReference, 0x112345678u);
    EXPECT_EQ(record.bextVersion, 0x0201u);
}

TEST_F(ReadBext, textsEndAtTheFirstNulAndAreNotTrimmed)
{
    BextFields fields;
    fields.description = std::string(" a \0b", 5);
    fields.originator = " o\r\n";
    const BwfMetadata record = read(fields);
    EXPECT_EQ(record.description, " a ");
    EXPECT_EQ(record.originator, " o\r\n");
}

TEST_F(ReadBext, bytesOfOtherCharacterSetsStay)
{
    BextFields fields;
    fields.originator = "M\xFCller \x80";
    EXPECT_EQ(read(fields).originator, "M\xFCller \x80");
}

TEST_F(ReadBext, umidIsAllOfItsBytesInLowerCaseHex)
{
    BextFields fields;
    fields.umid = std::string("\x00\x0A\xFF", 3);
    EXPECT_EQ(read(fields).umid, "000aff" + std::string(122, '0'));
    EXPECT_EQ(read(BextFields()).umid, std::string(128, '0'));
}

TEST_F(ReadBext, timeOfDayIsAcceptedByItsFormAlone)
{
    EXPECT_EQ(timeOf("12:34:56"), "12:34:56");
    EXPECT_EQ(timeOf("99:99:99"), "99:99:99");
    for (const char* wrong : { "12-34-56", "12:34-56", "12:34:5", "12:34:5x", " 2:34:56", "", "1:234:56" })
        EXPECT_EQ(timeOf(wrong), "") << wrong;
}

TEST_F(ReadBext, timeOfAnotherFormEmptiesTheField)
{
    WavBuilder().bext(BextFields()).write(folder.file("a.wav"));
    BwfMetadata record;
    record.originationTime = "before";
    BwfMetadataReader::readBextChunk(folder.file("a.wav"), record);
    EXPECT_EQ(record.originationTime, "");
}

TEST_F(ReadBext, timeReferenceIsAcceptedFromOneToTwentyMilliard)
{
    EXPECT_EQ(referenceOf(1), 1u);
    EXPECT_EQ(referenceOf(20000000000), 20000000000u);
    EXPECT_EQ(referenceOf(20000000001), 0u);
    EXPECT_EQ(referenceOf(0xFFFFFFFFFFFFFFFF), 0u);
}

TEST_F(ReadBext, timeReferenceOutOfRangeLeavesTheField)
{
    BextFields fields;
    fields.timeReference = 20000000001;
    WavBuilder().bext(fields).write(folder.file("a.wav"));
    BwfMetadata record;
    record.timeReference = 5;
    BwfMetadataReader::readBextChunk(folder.file("a.wav"), record);
    EXPECT_EQ(record.timeReference, 5u);
}

TEST_F(ReadBext, codingHistoryLacksItsLastEightBytes)
{
    BextFields fields;
    fields.codingHistory = "A=PCM\0\0\0\0"; // Nine bytes from here on.
    fields.codingHistory.resize(9, '\0');
    EXPECT_EQ(read(fields).codingHistory, "A");
    fields.codingHistory = "A=PCM,F=48000,W=24\r\n";
    EXPECT_EQ(read(fields).codingHistory, "A=PCM,F=4800");
}

TEST_F(ReadBext, shortPayloadsHaveNoCodingHistory)
{
    BextFields fields;
    EXPECT_EQ(read(fields).codingHistory, "");
    fields.codingHistory = "12345678";
    EXPECT_EQ(read(fields).codingHistory, "");
}

TEST_F(ReadBext, codingHistoryEndsAtTheFirstNul)
{
    BextFields fields;
    fields.codingHistory = std::string("one\0two and more", 16);
    EXPECT_EQ(read(fields).codingHistory, "one");
}

TEST_F(ReadBext, longCodingHistoryIsReadWhole)
{
    BextFields fields;
    fields.codingHistory = std::string(200000, 'h');
    EXPECT_EQ(read(fields).codingHistory, std::string(200000 - 8, 'h'));
}

TEST_F(ReadBext, codingHistoryCutByTheEndOfTheFileKeepsWhatArrived)
{
    BextFields fields;
    fields.codingHistory = "A=PCM,F=48000,W=24\r\n";
    EXPECT_EQ(read(WavBuilder().bext(fields).truncateTo(20 + 602 + 5)).codingHistory, "A=PCM");
}

TEST_F(ReadBext, shortChunkIsReadOnIntoWhatFollowsIt)
{
    const WavBuilder file = WavBuilder().chunk("bext", "1234").chunk("next", std::string(600, 'n'));
    const BwfMetadata record = read(file);
    EXPECT_EQ(record.description, "1234next" + le32(600).substr(0, 2));
    EXPECT_EQ(record.originator, std::string(32, 'n'));
}

TEST_F(ReadBext, fieldsThatTheEndOfTheFileCutsAreEmptyOrZero)
{
    EXPECT_EQ(read(cutAt(255)).description, "");
    EXPECT_EQ(read(cutAt(256)).description, std::string(256, 'd'));
    EXPECT_EQ(read(cutAt(287)).originator, "");
    EXPECT_EQ(read(cutAt(319)).originatorReference, "");
    EXPECT_EQ(read(cutAt(329)).originationDate, "");
    EXPECT_EQ(read(cutAt(337)).originationTime, "");
    EXPECT_EQ(read(cutAt(338)).originationTime, "23:59:58");
    EXPECT_EQ(read(cutAt(345)).timeReference, 0u);
    EXPECT_EQ(read(cutAt(346)).timeReference, 0x112345678u);
    EXPECT_EQ(read(cutAt(347)).bextVersion, 0u);
    EXPECT_EQ(read(cutAt(411)).umid, "");
    EXPECT_EQ(read(cutAt(412)).umid.size(), 128u);
}

TEST_F(ReadBext, fileOfAnotherKindLeavesTheRecord)
{
    EXPECT_EQ(read(WavBuilder().fileId("RIFX").bext(filled())).description, "");
    EXPECT_EQ(read(WavBuilder().formType("AVI ").bext(filled())).description, "");
    EXPECT_EQ(read(WavBuilder::rf64().bext(filled())).description.size(), 256u);
}
