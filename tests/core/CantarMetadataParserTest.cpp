#include "core/CantarMetadataParser.h"

#include "tests/support/CommaLocale.h"

#include <gtest/gtest.h>

namespace {

CantarMetadata parse(const char* text)
{
    return CantarMetadataParser::parseDescription(text);
}

struct KeyCase {
    const char* line;
    std::string CantarMetadata::*field;
    bool digital;
};

class EveryKey : public testing::TestWithParam<KeyCase> { };

CantarMetadata fullRecord(bool digital)
{
    CantarMetadata record;
    record.ubits = "00112233";
    record.scene = "12A";
    record.take = "3";
    record.tape = "R1";
    record.tag = "Film";
    record.note = "good";
    record.trackNames = { "Boom", "", "Lav" };
    record.digitalKeys = digital;
    return record;
}

} // namespace

TEST_P(EveryKey, fillsItsFieldInAnyCase)
{
    const auto& [line, field, digital] = GetParam();
    CantarMetadata expected;
    expected.*field = "v1";
    expected.digitalKeys = digital;
    EXPECT_EQ(parse((std::string(line) + "=v1").c_str()), expected);
    std::string lower = line;
    for (char& c : lower)
        c = static_cast<char>(c + ('a' - 'A'));
    EXPECT_EQ(parse((lower + "=v1").c_str()), expected);
}

INSTANTIATE_TEST_SUITE_P(Keys, EveryKey,
    testing::Values(KeyCase{ "TS", &CantarMetadata::ubits, true }, KeyCase{ "DUBITS", &CantarMetadata::ubits, true },
        KeyCase{ "DSCENE", &CantarMetadata::scene, true }, KeyCase{ "ASCENE", &CantarMetadata::scene, false },
        KeyCase{ "SCENE", &CantarMetadata::scene, false }, KeyCase{ "DTAKE", &CantarMetadata::take, false },
        KeyCase{ "ATAKE", &CantarMetadata::take, false }, KeyCase{ "TAKE", &CantarMetadata::take, false },
        KeyCase{ "DTAPE", &CantarMetadata::tape, false }, KeyCase{ "ATAPE", &CantarMetadata::tape, false },
        KeyCase{ "TAPE", &CantarMetadata::tape, false }, KeyCase{ "DFRAMERATE", &CantarMetadata::frameRate, false },
        KeyCase{ "ASPEED", &CantarMetadata::frameRate, false }, KeyCase{ "SPEED", &CantarMetadata::frameRate, false },
        KeyCase{ "ATAG", &CantarMetadata::tag, false }, KeyCase{ "TAG", &CantarMetadata::tag, false },
        KeyCase{ "ANOTE", &CantarMetadata::note, false }, KeyCase{ "NOTE", &CantarMetadata::note, false }),
    [](const testing::TestParamInfo<KeyCase>& key) { return std::string(key.param.line); });

TEST(CantarMetadataParser, trimDropsBlanksTabsAndLineEndsAlone)
{
    EXPECT_EQ(CantarMetadataParser::trim(" \t\r\na b\v \n"), "a b\v");
    EXPECT_EQ(CantarMetadataParser::trim(" \t\r\n"), "");
}

TEST(CantarMetadataParser, blanksAroundLineKeyAndValueAreDropped)
{
    EXPECT_EQ(parse("sCeNe = 12A ").scene, "12A");
    EXPECT_EQ(parse(" \tTAKE\t=\t 4\r\nTAPE=R1\r\n").take, "4");
    EXPECT_EQ(parse("TAKE=4\r\nTAPE=R1\r\n").tape, "R1");
}

TEST(CantarMetadataParser, laterEqualSignsBelongToTheValue)
{
    EXPECT_EQ(parse("SCENE=1=2").scene, "1=2");
}

TEST(CantarMetadataParser, lastOfRepeatedKeysWins)
{
    const CantarMetadata record = parse("SCENE=A\naSCENE=B");
    EXPECT_EQ(record.scene, "B");
    EXPECT_FALSE(record.digitalKeys);
    EXPECT_EQ(parse("SCENE=A\nSCENE=").scene, "");
}

TEST(CantarMetadataParser, userBitsKeyIsDigitalAndGetsNoDollar)
{
    const CantarMetadata record = parse("TS=00112233");
    EXPECT_EQ(record.ubits, "00112233");
    EXPECT_TRUE(record.digitalKeys);
}

TEST(CantarMetadataParser, analogueUserBitsAreNotReadBack)
{
    EXPECT_EQ(parse("aUBITS=00112233"), CantarMetadata());
}

TEST(CantarMetadataParser, unknownKeysAndLinesWithoutEqualSignChangeNothing)
{
    EXPECT_EQ(parse("sSCENE=1\nfree text\nSCENES=2\n=3\nFRAMERATE=25"), CantarMetadata());
}

TEST(CantarMetadataParser, textOfLineFeedsAloneSaysNothing)
{
    EXPECT_EQ(parse("\n\n\n"), CantarMetadata());
}

TEST(CantarMetadataParser, stopsAreNoSeparators)
{
    EXPECT_EQ(parse("SCENE=1.TAKE=2").scene, "1.TAKE=2");
}

TEST(CantarMetadataParser, frameRateLosesItsSuffixes)
{
    EXPECT_EQ(parse("dFRAMERATE=25.000FF").frameRate, "25.000");
    EXPECT_EQ(parse("aSPEED=23.976-ND").frameRate, "23.976");
    EXPECT_EQ(parse("SPEED=30-NDFF").frameRate, "30");
    EXPECT_EQ(parse("SPEED=25ff").frameRate, "25ff");
    EXPECT_EQ(parse("SPEED=FF").frameRate, "");
    EXPECT_EQ(parse("SPEED=F").frameRate, "F");
    EXPECT_EQ(parse("SPEED=25 FF").frameRate, "25 ");
}

TEST(CantarMetadataParser, trackNumberIsTheEntryCountedFromOne)
{
    const CantarMetadata record = parse("aTRK3=Boom");
    EXPECT_EQ(record.trackNames, (TrackNameList{ "", "", "Boom" }));
    EXPECT_EQ(CantarMetadataParser::buildDescription(record, 0.0), "aTRK3=Boom\n");
}

TEST(CantarMetadataParser, trackNumbersConvertAsNumbersDo)
{
    EXPECT_EQ(parse("TRK2X=Boom").trackNames, (TrackNameList{ "", "Boom" }));
    EXPECT_EQ(parse("TRK +2=Boom").trackNames, (TrackNameList{ "", "Boom" }));
    EXPECT_EQ(parse("dTRK02=Boom").trackNames, (TrackNameList{ "", "Boom" }));
}

TEST(CantarMetadataParser, trackKeysWithoutAUsableNumberAreDropped)
{
    for (const char* line : { "TRK=Boom", "DTRK=Boom", "aTRK=Boom", "TRKX=Boom", "TRK0=Boom", "TRK-1=Boom",
             "TRK2147483648=Boom", "TRACK1=Boom", "TRK99999999999999999999=Boom" })
        EXPECT_EQ(parse(line), CantarMetadata()) << line;
}

TEST(CantarMetadataParser, emptyTrackNameNeitherGrowsNorClears)
{
    EXPECT_EQ(parse("TRK1=Boom\nTRK1=\nTRK5=").trackNames, (TrackNameList{ "Boom" }));
}

TEST(CantarMetadataParser, hugeTrackNumberGrowsTheListAndNotTheWork)
{
    const CantarMetadata record = parse("TRK100000000=x\nTRK2147483647=y\nTRK1=a");
    EXPECT_EQ(record.trackNames.size(), 2147483647u);
    EXPECT_EQ(record.trackNames[99999999], "x");
    EXPECT_EQ(record.trackNames[99999998], "");
    EXPECT_EQ(record.trackNames.named().size(), 3u);
    EXPECT_EQ(CantarMetadataParser::buildDescription(record, 0.0), "aTRK1=a\naTRK100000000=x\naTRK2147483647=y\n");
}

TEST(CantarMetadataParser, digitalTextIsBuiltInItsOrder)
{
    EXPECT_EQ(CantarMetadataParser::buildDescription(fullRecord(true), 25.0),
        "TS=00112233\ndSCENE=12A\ndTAKE=3\ndTAPE=R1\ndFRAMERATE=25.000FF\naTAG=Film\naNOTE=good\ndTRK1=Boom\n"
        "dTRK3=Lav\n");
}

TEST(CantarMetadataParser, analogueTextIsBuiltInItsOrder)
{
    EXPECT_EQ(CantarMetadataParser::buildDescription(fullRecord(false), 24000.0 / 1001.0),
        "aUBITS=00112233\naSCENE=12A\naTAKE=3\naTAPE=R1\naSPEED=23.976-ND\naTAG=Film\naNOTE=good\naTRK1=Boom\n"
        "aTRK3=Lav\n");
}

TEST(CantarMetadataParser, frameRateTextServesWhereTheNumberIsUnknown)
{
    CantarMetadata record;
    record.frameRate = "29.97";
    EXPECT_EQ(CantarMetadataParser::buildDescription(record, 0.0), "aSPEED=29.97-ND\n");
    EXPECT_EQ(CantarMetadataParser::buildDescription(record, -1.0), "aSPEED=29.97-ND\n");
    EXPECT_EQ(CantarMetadataParser::buildDescription(record, 24.0), "aSPEED=24.000-ND\n");
}

TEST(CantarMetadataParser, builtFrameRatesParseBackToTheSameText)
{
    for (bool digital : { true, false }) {
        const std::string text = CantarMetadataParser::buildDescription(fullRecord(digital), 25.0);
        EXPECT_EQ(CantarMetadataParser::parseDescription(text).frameRate, "25.000") << digital;
    }
}

TEST(CantarMetadataParser, digitalTextWithoutSceneOrUserBitsComesBackAnalogue)
{
    CantarMetadata record;
    record.take = "3";
    record.digitalKeys = true;
    const std::string text = CantarMetadataParser::buildDescription(record, 0.0);
    EXPECT_EQ(text, "dTAKE=3\n");
    EXPECT_FALSE(CantarMetadataParser::parseDescription(text).digitalKeys);
}

TEST(CantarMetadataParser, recordWithNothingToSayGivesTheEmptyText)
{
    EXPECT_EQ(CantarMetadataParser::buildDescription(CantarMetadata(), 0.0), "");
    EXPECT_EQ(parse(""), CantarMetadata());
}

TEST(CantarMetadataParser, builtTextHasNoLengthLimit)
{
    CantarMetadata record;
    record.note = std::string(5000, 'n');
    EXPECT_EQ(CantarMetadataParser::buildDescription(record, 0.0), "aNOTE=" + record.note + "\n");
}

TEST(CantarMetadataParser, commaLocaleChangesNothing)
{
    const CommaLocale comma;
    if (!comma.works())
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    EXPECT_EQ(CantarMetadataParser::buildDescription(fullRecord(true), 23.976).find("dFRAMERATE=23.976FF\n"), 40u);
    CantarMetadata record;
    record.trackNames.set(12344, "x");
    EXPECT_EQ(CantarMetadataParser::buildDescription(record, 0.0), "aTRK12345=x\n");
}

TEST(TrackNameList, entriesBeyondTheEndReadAsEmpty)
{
    const TrackNameList names{ "a", "" };
    EXPECT_EQ(names.size(), 2u);
    EXPECT_EQ(names[5], "");
    EXPECT_FALSE(names.empty());
    EXPECT_TRUE(TrackNameList().empty());
}

TEST(TrackNameList, settingAnEmptyNameKeepsTheEntry)
{
    TrackNameList names{ "a", "b" };
    names.set(1, "");
    EXPECT_EQ(names, (TrackNameList{ "a", "" }));
}
