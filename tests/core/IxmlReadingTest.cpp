#include "core/BwfMetadataReader.h"

#include "tests/support/CommaLocale.h"
#include "tests/support/PlainReader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

BwfMetadata parse(std::string_view text, BwfMetadata record = {})
{
    BwfMetadataReader::parseIxml(text, record);
    return record;
}

BwfMetadata at48k()
{
    BwfMetadata record;
    record.sampleRate = 48000;
    return record;
}

BwfMetadata with(uint64_t timeReference)
{
    BwfMetadata record;
    record.timeReference = timeReference;
    return record;
}

BwfMetadata described(const std::string& description)
{
    BwfMetadata record = at48k();
    record.description = description;
    return record;
}

std::string speed(const std::string& inner)
{
    return "<SPEED>" + inner + "</SPEED>";
}
std::string bext(const std::string& inner)
{
    return "<BEXT>" + inner + "</BEXT>";
}
std::string list(const std::string& inner)
{
    return "<TRACK_LIST>" + inner + "</TRACK_LIST>";
}
std::string rate(const std::string& text)
{
    return speed("<TIMECODE_RATE>" + text + "</TIMECODE_RATE>");
}

std::string midnight(const std::string& high, const std::string& low)
{
    return speed("<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>" + high + "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>"
        + "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>" + low + "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>");
}

std::string bwfTime(const std::string& high, const std::string& low)
{
    return bext("<BWF_TIME_REFERENCE_LOW>" + low + "</BWF_TIME_REFERENCE_LOW><BWF_TIME_REFERENCE_HIGH>" + high
        + "</BWF_TIME_REFERENCE_HIGH>");
}

std::string trackText(const BwfMetadata& record)
{
    std::string text;
    for (const BwfTrack& track : record.tracks)
        text += std::to_string(track.channelIndex) + ":" + track.name + "/" + track.function + " ";
    return text;
}

} // namespace

TEST(IxmlTag, valueIsTrimmedAndEntitiesStay)
{
    EXPECT_EQ(parse("<NOTE> two words </NOTE>").note, "two words");
    EXPECT_EQ(parse("<NOTE>\r\n\ta \n</NOTE>").note, "a");
    EXPECT_EQ(parse("<NOTE>a &amp; b</NOTE>").note, "a &amp; b");
    EXPECT_EQ(parse("<NOTE>\xFC</NOTE>").note, "\xFC");
}

TEST(IxmlTag, upperAndLowerCaseAreFoundAndMixedCaseIsNot)
{
    EXPECT_EQ(parse("<scene>1</scene>").scene, "1");
    EXPECT_EQ(parse("<Scene>1</Scene>").scene, "");
}

TEST(IxmlTag, upperCaseDecidesEvenIfItComesLaterAndIsEmpty)
{
    EXPECT_EQ(parse("<scene>1</scene><SCENE>2</SCENE>").scene, "2");
    EXPECT_EQ(parse("<scene>1</scene><SCENE></SCENE>").scene, "");
}

TEST(IxmlTag, firstOccurrenceCounts)
{
    EXPECT_EQ(parse("<TAKE>1</TAKE><TAKE>2</TAKE>").take, "1");
}

TEST(IxmlTag, valueEndsAtTheNextTagOfAnyKind)
{
    EXPECT_EQ(parse("<NOTE>a<b>c</b></NOTE>").note, "a");
    EXPECT_EQ(parse("<NOTE>a < b</NOTE>").note, "a");
    EXPECT_EQ(parse("<NOTE><![CDATA[a]]></NOTE>").note, "");
}

TEST(IxmlTag, noFurtherTagMeansNoValue)
{
    EXPECT_EQ(parse("<NOTE>open").note, "");
}

TEST(IxmlTag, attributesAndSelfClosingTagsDoNotMatch)
{
    EXPECT_EQ(parse("<NOTE lang=\"en\">a</NOTE>").note, "");
    EXPECT_EQ(parse("<NOTE/>a<NOTE >b</NOTE>").note, "");
    EXPECT_EQ(parse("<<NOTE>a</NOTE>").note, "a");
    EXPECT_EQ(parse("<SUBNOTE>a</SUBNOTE>").note, "");
}

TEST(IxmlTag, emptyValueLeavesTheField)
{
    BwfMetadata record;
    record.scene = "before";
    EXPECT_EQ(parse("<SCENE> \n</SCENE>", record).scene, "before");
}

TEST(IxmlTag, nulBytesArePlainBytes)
{
    EXPECT_EQ(parse(std::string_view("\0<SCENE>a\0b</SCENE>", 19)).scene, std::string("a\0b", 3));
}

TEST(IxmlTag, textThatIsNoIxmlYieldsNothing)
{
    EXPECT_EQ(recordText(parse("no <tags> here > at <all")), recordText(BwfMetadata()));
    EXPECT_EQ(recordText(parse("")), recordText(BwfMetadata()));
}

TEST(IxmlTag, allProductionFieldsAreTaken)
{
    const BwfMetadata record = parse("<PROJECT>P</PROJECT><TAPE>T</TAPE><TAKE>3</TAKE><NOTE>N</NOTE><SCENE>S</SCENE>");
    EXPECT_EQ(record.project + record.tape + record.take + record.note + record.scene, "PT3NS");
}

TEST(IxmlFlags, onlyTrueAndOneAreTrue)
{
    for (const char* yes : { "TRUE", "true", "True", "1", " 1 " }) {
        EXPECT_TRUE(parse(std::string("<CIRCLED>") + yes + "</CIRCLED>").circled) << yes;
        EXPECT_TRUE(parse(std::string("<WILD_TRACK>") + yes + "</WILD_TRACK>").wildTrack) << yes;
    }
    BwfMetadata set;
    set.circled = set.wildTrack = true;
    for (const char* no : { "yes", "FALSE", "0", "11", "TRUE." }) {
        EXPECT_FALSE(parse(std::string("<CIRCLED>") + no + "</CIRCLED>", set).circled) << no;
        EXPECT_FALSE(parse(std::string("<WILD_TRACK>") + no + "</WILD_TRACK>", set).wildTrack) << no;
    }
    EXPECT_TRUE(parse("<CIRCLED></CIRCLED>", set).circled);
}

TEST(IxmlUbits, getADollarInFrontUnlessTheyHaveOne)
{
    EXPECT_EQ(parse("<UBITS>00112233</UBITS>").ubits, "$00112233");
    EXPECT_EQ(parse("<UBITS>$00112233</UBITS>").ubits, "$00112233");
}

TEST(IxmlSpeed, blockWithoutAClosingTagReachesToTheEnd)
{
    const BwfMetadata record = parse("<SPEED><TIMECODE_RATE>25</TIMECODE_RATE><TIMECODE_FLAG>DF</TIMECODE_FLAG>"
                                     "<TIMESTAMP_SAMPLE_RATE>48000</TIMESTAMP_SAMPLE_RATE>"
                                     "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>0</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>"
                                     "<SCENE>12A</SCENE>"
                                     "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>9</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>");
    EXPECT_EQ(record.frameRate, 25.0);
    EXPECT_TRUE(record.dropFrame);
    EXPECT_EQ(record.timestampSampleRate, 48000u);
    EXPECT_EQ(record.timeReference, 9u);
    EXPECT_EQ(record.scene, "12A");
}

TEST(IxmlSpeed, elementsOutsideTheBlockHaveNoEffect)
{
    EXPECT_EQ(parse("<TIMECODE_RATE>25</TIMECODE_RATE>").frameRate, 0.0);
    EXPECT_EQ(
        parse("<TIMECODE_RATE>25</TIMECODE_RATE><SPEED></SPEED><TIMECODE_RATE>24</TIMECODE_RATE>").frameRate, 0.0);
}

TEST(IxmlSpeed, blockTagsAreUpperOrCapitalisedAndNotLowerCase)
{
    EXPECT_EQ(parse("<Speed><timecode_rate>25</timecode_rate></Speed>").frameRate, 25.0);
    EXPECT_EQ(parse("<speed><TIMECODE_RATE>25</TIMECODE_RATE></speed>").frameRate, 0.0);
    EXPECT_EQ(parse("<Speed><TIMECODE_RATE>25</TIMECODE_RATE></Speed><SPEED><TIMECODE_RATE>24</TIMECODE_RATE></SPEED>")
                  .frameRate,
        24.0);
}

TEST(IxmlSpeed, otherClosingFormClosesWhereTheUpperOneIsMissing)
{
    EXPECT_EQ(parse("<SPEED></Speed><TIMECODE_RATE>25</TIMECODE_RATE>").frameRate, 0.0);
    EXPECT_EQ(parse("<SPEED></Speed><TIMECODE_RATE>25</TIMECODE_RATE></SPEED>").frameRate, 25.0);
}

TEST(IxmlSpeed, closingTagInFrontOfTheBlockDoesNotCloseIt)
{
    EXPECT_EQ(parse("</SPEED><SPEED><TIMECODE_RATE>25</TIMECODE_RATE>").frameRate, 25.0);
}

TEST(IxmlSpeed, closingTagOfTheBlockDoesNotEndAValueInIt)
{
    EXPECT_EQ(parse("<SPEED><TIMECODE_RATE>25</SPEED>").frameRate, 0.0);
}

TEST(IxmlSpeed, timestampRateIsTakenUnlessZeroOrBeyond32Bits)
{
    const auto parsed = [](const std::string& text) {
        return parse(speed("<TIMESTAMP_SAMPLE_RATE>" + text + "</TIMESTAMP_SAMPLE_RATE>")).timestampSampleRate;
    };
    EXPECT_EQ(parsed("48048"), 48048u);
    EXPECT_EQ(parsed(" +48048 Hz"), 48048u);
    EXPECT_EQ(parsed("4294967295"), 4294967295u);
    for (const char* none : { "0", "x", "4294967296", "-48048", "99999999999999999999" })
        EXPECT_EQ(parsed(none), 0u) << none;
    EXPECT_EQ(parsed("-18446744073709551615"), 1u); // Wraps around 64 bits.
}

TEST(IxmlSpeed, timeReferenceNeedsBothHalves)
{
    EXPECT_EQ(parse(midnight("1", "5")).timeReference, 0x100000005u);
    EXPECT_EQ(parse(midnight("", "5"), with(7)).timeReference, 7u);
    EXPECT_EQ(parse(midnight("1", ""), with(7)).timeReference, 7u);
    EXPECT_EQ(parse(midnight("x", "5"), with(7)).timeReference, 7u);
    EXPECT_EQ(parse(midnight("0", "x"), with(7)).timeReference, 7u);
}

TEST(IxmlSpeed, timeReferenceOfZeroCounts)
{
    EXPECT_EQ(parse(midnight("0", "0"), with(7)).timeReference, 0u);
}

TEST(IxmlSpeed, timeReferenceIsLimited)
{
    EXPECT_EQ(parse(midnight("0", "20000000000"), with(7)).timeReference, 20000000000u);
    EXPECT_EQ(parse(midnight("0", "20000000001"), with(7)).timeReference, 7u);
    EXPECT_EQ(parse(midnight("0", "-1"), with(7)).timeReference, 7u);
    EXPECT_EQ(parse(midnight("5", "0"), with(7)).timeReference, 7u);
}

TEST(IxmlSpeed, frameRateIsAPlainNumberOrAFraction)
{
    EXPECT_EQ(parse(rate("23.976")).frameRate, 23.976);
    EXPECT_EQ(parse(rate("-25")).frameRate, -25.0);
    EXPECT_EQ(parse(rate("25 fps")).frameRate, 25.0);
    EXPECT_EQ(parse(rate("25/1"), at48k()).frameRate, 25.0);
    EXPECT_EQ(parse(rate("25/1"), at48k()).timestampSampleRate, 0u);
    EXPECT_EQ(parse(rate("50/2/4")).frameRate, 25.0);
    EXPECT_TRUE(std::isnan(parse(rate("nan")).frameRate));
    EXPECT_TRUE(std::isinf(parse(rate("inf")).frameRate));
}

TEST(IxmlSpeed, fractionThatMakesNoSenseLeavesTheFrameRate)
{
    BwfMetadata record = at48k();
    record.frameRate = 24.0;
    for (const char* wrong :
        { "30000/0", "30000/-1", "30000/", "/1001", "/", "x/1001", "30000/x", "30000/nan", "1e400" })
        EXPECT_EQ(parse(rate(wrong), record).frameRate, 24.0) << wrong;
    EXPECT_EQ(parse(rate("x/1001"), record).timestampSampleRate, 0u);
}

TEST(IxmlSpeed, denominatorOf1001GivesThePulledRate)
{
    const BwfMetadata record = parse(rate("24000/1001"), at48k());
    EXPECT_EQ(record.frameRate, 24000.0 / 1001.0);
    EXPECT_EQ(record.timestampSampleRate, 48048u);
    EXPECT_EQ(parse(rate("24000/1001")).timestampSampleRate, 0u); // No rate to pull.
    for (const char* other : { "24000/1000", "24000/1002", "24000/1001.5" })
        EXPECT_EQ(parse(rate(other), at48k()).timestampSampleRate, 0u) << other;
}

TEST(IxmlSpeed, timestampRateOfTheFileGoesBeforeThePulledOne)
{
    const std::string text = speed("<TIMESTAMP_SAMPLE_RATE>48000</TIMESTAMP_SAMPLE_RATE>"
                                   "<TIMECODE_RATE>24000/1001</TIMECODE_RATE>");
    EXPECT_EQ(parse(text, at48k()).timestampSampleRate, 48000u);
}

TEST(IxmlSpeed, pulledRateStaysInItsField)
{
    BwfMetadata record;
    record.sampleRate = 0xFFFFFFFFu;
    EXPECT_EQ(parse(rate("24000/1001"), record).timestampSampleRate, 0xFFFFFFFFu);
}

TEST(IxmlSpeed, dropFrameIsExactlyTwoSpellings)
{
    BwfMetadata record;
    record.dropFrame = true;
    const auto parsed = [&record](const std::string& flag) {
        return parse(speed("<TIMECODE_FLAG>" + flag + "</TIMECODE_FLAG>"), record).dropFrame;
    };
    EXPECT_TRUE(parsed("DF"));
    EXPECT_TRUE(parsed(" df "));
    EXPECT_FALSE(parsed("NDF"));
    EXPECT_FALSE(parsed("Df"));
    EXPECT_TRUE(parsed("")); // Untouched.
    EXPECT_TRUE(parse(speed(""), record).dropFrame);
}

TEST(IxmlBext, blockNeedsBothEnds)
{
    const std::string time = "<BWF_TIME_REFERENCE_LOW>9</BWF_TIME_REFERENCE_LOW>";
    EXPECT_EQ(parse("<BEXT>" + time).timeReference, 0u);
    const std::string clock = "<BWF_ORIGINATION_TIME>01-02-03</BWF_ORIGINATION_TIME>";
    EXPECT_EQ(parse("<BEXT>" + clock).originationTime, "");
    EXPECT_EQ(parse("<BEXT>" + clock + "</BEXT>").originationTime, "01:02:03");
    EXPECT_EQ(parse(time + "</BEXT>").timeReference, 0u);
    EXPECT_EQ(parse("<Bext>" + time + "</Bext>").timeReference, 9u);
    EXPECT_EQ(parse("<BEXT>" + time + "</Bext>").timeReference, 9u);
    EXPECT_EQ(parse("<bext>" + time + "</bext>").timeReference, 0u);
    EXPECT_EQ(parse("<BEXT></BEXT>" + time).timeReference, 0u);
    EXPECT_EQ(parse("</BEXT><BEXT>" + time + "</BEXT>").timeReference, 9u);
}

TEST(IxmlBext, timeFillsAnEmptyFieldAlone)
{
    const std::string text = bext("<BWF_ORIGINATION_TIME>12-34-xx</BWF_ORIGINATION_TIME>");
    EXPECT_EQ(parse(text).originationTime, "12:34:xx");
    BwfMetadata record;
    record.originationTime = "01:02:03";
    EXPECT_EQ(parse(text, record).originationTime, "01:02:03");
}

TEST(IxmlBext, dateHasNoEffect)
{
    EXPECT_EQ(
        recordText(parse(bext("<BWF_ORIGINATION_DATE>2024-01-02</BWF_ORIGINATION_DATE>"))), recordText(BwfMetadata()));
}

TEST(IxmlBext, timeReferenceIsLowWithOrWithoutHigh)
{
    EXPECT_EQ(parse(bwfTime("1", "5")).timeReference, 0x100000005u);
    EXPECT_EQ(parse(bwfTime("", "5")).timeReference, 5u);
    EXPECT_EQ(parse(bwfTime("1", ""), with(7)).timeReference, 7u);
    EXPECT_EQ(parse(bwfTime("x", "5"), with(7)).timeReference, 7u);
    EXPECT_EQ(parse(bwfTime("0", "x"), with(7)).timeReference, 7u);
}

TEST(IxmlBext, timeReferenceOfZeroOrBeyondTheLimitIsNone)
{
    EXPECT_EQ(parse(bwfTime("0", "0"), with(7)).timeReference, 7u);
    EXPECT_EQ(parse(bwfTime("0", "20000000000"), with(7)).timeReference, 20000000000u);
    EXPECT_EQ(parse(bwfTime("0", "20000000001"), with(7)).timeReference, 7u);
    EXPECT_EQ(parse(bwfTime("0", "-1940552340"), with(7)).timeReference, 7u);
}

TEST(IxmlBext, timeReferenceGoesBeforeTheSpeedBlocks)
{
    EXPECT_EQ(parse(bwfTime("0", "5") + midnight("0", "6")).timeReference, 5u);
}

TEST(IxmlTracks, entriesKeepTheirOrderAndNumbers)
{
    const std::string text = list("<TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>A</NAME><FUNCTION>M</FUNCTION></TRACK>"
                                  "<TRACK><CHANNEL_INDEX>2</CHANNEL_INDEX><NAME>B</NAME></TRACK>"
                                  "<TRACK><CHANNEL_INDEX>5</CHANNEL_INDEX><NAME>C</NAME></TRACK>");
    EXPECT_EQ(trackText(parse(text)), "1:A/M 2:B/ 5:C/ ");
}

TEST(IxmlTracks, missingElementComesFromTheNextTrackThatHasIt)
{
    EXPECT_EQ(trackText(parse(list("<TRACK></TRACK><TRACK><NAME>B</NAME></TRACK>"))), "1:B/ 2:B/ ");
    EXPECT_EQ(trackText(parse(list("<TRACK><name>a</name></TRACK><TRACK><NAME>B</NAME></TRACK>"))), "1:B/ 2:B/ ");
}

TEST(IxmlTracks, missingOrWrongNumberIsThePlaceInTheList)
{
    const std::string text = list("<TRACK><CHANNEL_INDEX>7</CHANNEL_INDEX></TRACK>"
                                  "<TRACK><CHANNEL_INDEX>x</CHANNEL_INDEX></TRACK><TRACK></TRACK>");
    EXPECT_EQ(trackText(parse(text)), "7:/ 2:/ 3:/ ");
    EXPECT_EQ(trackText(parse(list("<TRACK><CHANNEL_INDEX>-3 x</CHANNEL_INDEX></TRACK>"))), "-3:/ ");
    EXPECT_EQ(trackText(parse(list("<TRACK><CHANNEL_INDEX>2147483648</CHANNEL_INDEX></TRACK>"))), "1:/ ");
}

TEST(IxmlTracks, listNeedsBothEndsInEitherSpelling)
{
    const std::string track = "<TRACK><NAME>A</NAME></TRACK>";
    EXPECT_EQ(trackText(parse("<TRACK_LIST>" + track)), "");
    EXPECT_EQ(trackText(parse(track + "</TRACK_LIST>")), "");
    EXPECT_EQ(trackText(parse("<TrackList>" + track + "</TrackList>")), "1:A/ ");
    EXPECT_EQ(trackText(parse("<TRACK_LIST>" + track + "</TrackList>")), "1:A/ ");
    EXPECT_EQ(trackText(parse("<track_list>" + track + "</track_list>")), "");
    EXPECT_EQ(trackText(parse("</TRACK_LIST><TRACK_LIST>" + track + "</TRACK_LIST>")), "1:A/ ");
}

TEST(IxmlTracks, onlyTheUpperCaseTrackTagCounts)
{
    EXPECT_EQ(trackText(parse(list("<track><NAME>A</NAME></track><Track></Track>"))), "");
}

TEST(IxmlTracks, onlyTheFirstListIsRead)
{
    EXPECT_EQ(trackText(parse(list("<TRACK><NAME>A</NAME></TRACK>") + list("<TRACK><NAME>B</NAME></TRACK>"))), "1:A/ ");
}

TEST(IxmlTracks, trackWithoutItsEndIsTheLast)
{
    EXPECT_EQ(trackText(parse(list("<TRACK><NAME>A</NAME><TRACK><NAME>B</NAME>"))), "1:A/ ");
    EXPECT_EQ(trackText(parse(list("<TRACK><NAME>A</NAME>") + "</TRACK><TRACK></TRACK>")), "1:A/ ");
}

TEST(IxmlTracks, valueThatTheListsEndCutsIsNone)
{
    EXPECT_EQ(trackText(parse(list("<TRACK><NAME>A"))), "1:/ ");
}

TEST(IxmlTracks, entriesAreAppendedToTheRecords)
{
    BwfMetadata record;
    record.tracks.push_back({ 9, "old", "f" });
    EXPECT_EQ(trackText(parse(list("<TRACK><NAME>A</NAME></TRACK>"), record)), "9:old/f 1:A/ ");
}

TEST(IxmlTracks, longListsOfEmptyTracksAreRead)
{
    std::string inner;
    for (int i = 0; i < 35000; ++i)
        inner += "<TRACK></TRACK>";
    EXPECT_EQ(parse(list(inner)).tracks.size(), 35000u);
    EXPECT_EQ(parse(list(inner)).tracks.back().channelIndex, 35000);
}

TEST(IxmlTracks, oneLongNameBehindThousandsOfTracksTakesABoundedRoom)
{
    std::string inner;
    for (int i = 0; i < 20000; ++i)
        inner += "<TRACK></TRACK>";
    const std::string name(512 * 1024, 'n');
    const BwfMetadata record = parse(list(inner + "<TRACK><NAME>" + name + "</NAME></TRACK>"));
    ASSERT_EQ(record.tracks.size(), 20001u);
    size_t bytes = 0;
    for (const BwfTrack& track : record.tracks)
        bytes += track.name.size();
    EXPECT_EQ(record.tracks.front().name, name);
    EXPECT_EQ(record.tracks.back().name, "");
    EXPECT_EQ(bytes, 64u * 1024 * 1024);
}

TEST(DescriptionFallback, fillsWhatTheXmlLeftEmpty)
{
    const BwfMetadata record
        = parse("<SCENE>12A</SCENE>", described("SCENE=9\nTAPE=R1\nTAKE=3\nNOTE=n\nTAG=p\nTS=00112233\n"));
    EXPECT_EQ(record.scene, "12A");
    EXPECT_EQ(record.tape, "R1");
    EXPECT_EQ(record.take, "3");
    EXPECT_EQ(record.note, "n");
    EXPECT_EQ(record.project, "");
    EXPECT_EQ(record.ubits, "00112233");
}

// Each element missing from an otherwise complete text: the lines of the Description give that one alone.
TEST(DescriptionFallback, fillsAnyOneThatIsMissingFromACompleteText)
{
    const std::string description = "TS=2\nTAPE=d\nSCENE=d\nTAKE=d\nNOTE=d\nSPEED=30\nTRK1=d";
    const std::string texts[]
        = { "<SCENE>x</SCENE>", "<TAPE>x</TAPE>", "<TAKE>x</TAKE>", "<NOTE>x</NOTE>", "<UBITS>1</UBITS>",
              speed("<TIMESTAMP_SAMPLE_RATE>44100</TIMESTAMP_SAMPLE_RATE>"
                    "<TIMECODE_RATE>25</TIMECODE_RATE>"),
              list("<TRACK><NAME>x</NAME></TRACK>") };
    const auto said = [](const BwfMetadata& record) {
        return record.scene + record.tape + record.take + record.note + " " + record.ubits + " "
            + std::to_string(record.timestampSampleRate) + " " + std::to_string(static_cast<int>(record.frameRate))
            + " " + trackText(record);
    };
    const auto without = [&](size_t missing, const std::string& instead = "") {
        std::string text;
        for (size_t i = 0; i < std::size(texts); ++i)
            text += i == missing ? instead : texts[i];
        return said(parse(text, described(description)));
    };
    EXPECT_EQ(without(std::size(texts)), "xxxx $1 44100 25 1:x/ ");
    EXPECT_EQ(without(0), "dxxx $1 44100 25 1:x/ ");
    EXPECT_EQ(without(1), "xdxx $1 44100 25 1:x/ ");
    EXPECT_EQ(without(2), "xxdx $1 44100 25 1:x/ ");
    EXPECT_EQ(without(3), "xxxd $1 44100 25 1:x/ ");
    EXPECT_EQ(without(4), "xxxx 2 44100 25 1:x/ ");
    EXPECT_EQ(without(5, rate("25")), "xxxx $1 48000 25 1:x/ ");
    EXPECT_EQ(without(5, speed("<TIMESTAMP_SAMPLE_RATE>44100</TIMESTAMP_SAMPLE_RATE>")), "xxxx $1 44100 30 1:x/ ");
    EXPECT_EQ(without(6), "xxxx $1 44100 25 1:d/ ");
}

TEST(DescriptionFallback, userBitsOfTheXmlGoFirst)
{
    EXPECT_EQ(parse("<UBITS>1</UBITS>", described("TS=2")).ubits, "$1");
}

TEST(DescriptionFallback, frameRateCountsWhereTheXmlsIsZero)
{
    EXPECT_EQ(parse("", described("SPEED=25-ND")).frameRate, 25.0);
    EXPECT_EQ(parse(rate("0"), described("SPEED=25-ND")).frameRate, 25.0);
    EXPECT_EQ(parse(rate("24"), described("SPEED=25-ND")).frameRate, 24.0);
    EXPECT_EQ(parse("", described("SPEED=x")).frameRate, 0.0);
}

TEST(DescriptionFallback, holesInTheNamesAreGapsInTheNumbers)
{
    EXPECT_EQ(trackText(parse("", described("TRK1=A\nTRK2=\nTRK4=D"))), "1:A/ 4:D/ ");
    EXPECT_EQ(trackText(parse(list("<TRACK></TRACK>"), described("TRK1=A"))), "1:/ ");
}

TEST(DescriptionFallback, hugeTrackNumberIsOneEntry)
{
    EXPECT_EQ(trackText(parse("", described("TRK100000000=x"))), "100000000:x/ ");
}

TEST(DescriptionFallback, digitalKeysGiveTheTimestampRate)
{
    for (const char* pulled : { "23.976", "29.97", "59.94", "23.9769" })
        EXPECT_EQ(parse(rate(pulled), described("TS=1")).timestampSampleRate, 48048u) << pulled;
    for (const char* plain : { "24", "25", "30", "47.952", "23.9771", "inf" })
        EXPECT_EQ(parse(rate(plain), described("TS=1")).timestampSampleRate, 48000u) << plain;
    for (const char* unknown : { "0", "-25", "nan", "x" })
        EXPECT_EQ(parse(rate(unknown), described("TS=1")).timestampSampleRate, 0u) << unknown;
    EXPECT_EQ(parse(rate("25"), described("SCENE=1")).timestampSampleRate, 0u);
    EXPECT_EQ(parse("", described("dSCENE=1\ndFRAMERATE=29.970FF")).timestampSampleRate, 48048u);
}

TEST(DescriptionFallback, timestampRateStaysWhereItIsKnownOrTheSampleRateIsNot)
{
    const std::string known
        = speed("<TIMESTAMP_SAMPLE_RATE>44100</TIMESTAMP_SAMPLE_RATE><TIMECODE_RATE>25</TIMECODE_RATE>");
    EXPECT_EQ(parse(known, described("TS=1")).timestampSampleRate, 44100u);
    BwfMetadata record = described("TS=1");
    record.sampleRate = 0;
    EXPECT_EQ(parse(rate("25"), record).timestampSampleRate, 0u);
}

TEST(DescriptionFallback, emptyDescriptionSaysNothing)
{
    EXPECT_EQ(recordText(parse("", described(""))), recordText(at48k()));
}

TEST(IxmlLocale, commaLocaleChangesNothing)
{
    const CommaLocale comma;
    if (!comma.works())
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    EXPECT_EQ(parse(rate("29.97")).frameRate, 29.97);
    EXPECT_EQ(parse(rate("2.5/0.5")).frameRate, 5.0);
    EXPECT_EQ(parse("", described("SPEED=23.976-ND")).frameRate, 23.976);
}

// Texts of real and broken tags in random order, against one plain search for each.
TEST(IxmlText, randomTextsReadAsStepByStep)
{
    const std::string pieces[] = { "<SPEED>", "</SPEED>", "<Speed>", "</Speed>", "<BEXT>", "</BEXT>", "<Bext>",
        "</Bext>", "<TRACK_LIST>", "</TRACK_LIST>", "<TrackList>", "</TrackList>", "<TRACK>", "</TRACK>", "<NAME>",
        "<name>", "</NAME>", "<FUNCTION>", "<function>", "<CHANNEL_INDEX>", "<channel_index>", "<SCENE>", "<scene>",
        "<UBITS>", "<CIRCLED>", "<TIMECODE_RATE>", "<timecode_rate>", "<TIMESTAMP_SAMPLE_RATE>",
        "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>", "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>", "<BWF_TIME_REFERENCE_LOW>",
        "<BWF_TIME_REFERENCE_HIGH>", "<BWF_ORIGINATION_TIME>", "<TIMECODE_FLAG>", "<", ">", "1", "24000/1001", "DF",
        " ", "12-3", "a\n", "$", std::string(1, '\0'), "TRUE" };
    std::mt19937 engine(3);
    const auto random = [&engine](size_t bound) { return static_cast<size_t>(engine()) % bound; };
    for (int round = 0; round < 4000; ++round) {
        std::string text;
        for (size_t count = random(60); count > 0; --count)
            text += pieces[random(std::size(pieces))];
        BwfMetadata plain = described(random(2) ? "" : "TS=1\nSPEED=25\nTRK2=b\nSCENE=d");
        const BwfMetadata ours = parse(text, plain);
        PlainReader::parseIxml(text, plain);
        ASSERT_EQ(recordText(ours), recordText(plain)) << text;
    }
}
