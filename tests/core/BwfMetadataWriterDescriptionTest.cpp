#include "tests/core/BwfMetadataWriterFixture.h"

// What a save makes of the Description.

TEST_F(WriterTest, sceneGoesIntoDescriptionAndIxml)
{
    makeUsual();
    updated.scene = "13";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description(replaced(kDescriptionText, "aSCENE=12", "aSCENE=13")),
                  ixmlText(replaced(kIxml, "<SCENE>12<", "<SCENE>13<")) }),
        "");
    const size_t digit = ixml() + kIxml.find("<SCENE>12") + 8;
    EXPECT_EQ(proof->changedExactly({ { bext() + 8, bext() + 9 }, { digit, digit + 1 } }), "");
}

TEST_F(WriterTest, everyTextFieldReachesTheDescription)
{
    make(withoutIxml(""));
    updated.scene = "S";
    updated.take = "K";
    updated.tape = "P";
    updated.note = "N";
    updated.ubits = "U";
    updated.project = "J";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly(
                  { description("aUBITS=U\naSCENE=S\naTAKE=K\naTAPE=P\naSPEED=24.000-ND\naTAG=J\naNOTE=N\n") }),
        "");
}

TEST_F(WriterTest, projectShowsAsTagLineAndAsProjectElement)
{
    makeUsual();
    updated.project = "Movi";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description(replaced(kDescriptionText, "aTAG=Film", "aTAG=Movi")),
                  ixmlText(replaced(kIxml, "<PROJECT>Film", "<PROJECT>Movi")) }),
        "");
}

TEST_F(WriterTest, unchangedFieldsKeepWhatTheDescriptionSaidEvenIfIxmlSaysOtherwise)
{
    make(usual("aSCENE=old\naTAKE=9\n", kIxml));
    updated.note = "rain";
    updated.scene = "12"; // As the iXML has it: no change.
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aSCENE=old\naTAKE=9\naSPEED=25.000-ND\naNOTE=rain\n"),
                  ixmlText(replaced(kIxml, "<NOTE>wind", "<NOTE>rain")) }),
        "");
}

TEST_F(WriterTest, digitalKeysStayDigital)
{
    make(withoutIxml("TS=00112233\ndSCENE=1\ndTRK1=Boom\n"));
    updated.take = "2";
    EXPECT_TRUE(save());
    EXPECT_EQ(
        proof->patchedExactly({ description("TS=00112233\ndSCENE=1\ndTAKE=2\ndFRAMERATE=24.000FF\ndTRK1=Boom\n") }),
        "");
}

TEST_F(WriterTest, descriptionOf255BytesIsKeptWholeAndOf256BytesCutByOne)
{
    const std::string rate = "aSPEED=24.000-ND\n";
    const size_t noteBytes = 255 - rate.size() - std::string("aNOTE=\n").size();
    make(withoutIxml(""));
    updated.note = std::string(noteBytes, 'n');
    EXPECT_TRUE(save());
    const std::string whole = rate + "aNOTE=" + updated.note + "\n";
    ASSERT_EQ(whole.size(), 255u);
    EXPECT_EQ(proof->patchedExactly({ description(whole) }), "");

    make(withoutIxml(""));
    updated.note = std::string(noteBytes + 1, 'n');
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description(rate + "aNOTE=" + updated.note) }), "");
    EXPECT_EQ(readBytes(path)[bext() + 255], '\0');
}

TEST_F(WriterTest, linesThatDoNotFitAreLostFromTheEndTrackNamesFirst)
{
    make(withoutIxml("aSCENE=1\naTRK1=Boom\naTRK2=Lavalier\n"));
    updated.note = std::string(211, 'n');
    EXPECT_TRUE(save());
    const std::string built = "aSCENE=1\naSPEED=24.000-ND\naNOTE=" + updated.note + "\naTRK1=Boom\naTRK2=Lavalier\n";
    EXPECT_EQ(proof->patchedExactly({ description(built.substr(0, 255)) }), "");
    EXPECT_EQ(built.substr(244, 11), "aTRK1=Boom\n");
}

TEST_F(WriterTest, cutIsBlindToCharactersOfSeveralBytes)
{
    make(withoutIxml(""));
    const std::string start = "aSPEED=24.000-ND\naNOTE=";
    updated.note = std::string(254 - start.size(), 'n') + "\xC3\xA9";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description(start + updated.note.substr(0, 255 - start.size())) }), "");
    EXPECT_EQ(readBytes(path).substr(bext() + 254, 2), std::string("\xC3\0", 2));
}

TEST_F(WriterTest, olderLongerDescriptionLeavesNothingBehind)
{
    make(withoutIxml("aNOTE=" + std::string(240, 'x')));
    updated.note = "n";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aSPEED=24.000-ND\naNOTE=n\n") }), "");
}

TEST_F(WriterTest, freeTextAndUnknownKeysAreLostOnTheFirstChange)
{
    make(withoutIxml("Some free text\naMIC=MKH50\naSCENE=1\n"));
    updated.take = "2";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aSCENE=1\naTAKE=2\naSPEED=24.000-ND\n") }), "");
}

TEST_F(WriterTest, analogueUserBitsAreLostUnlessChangedInTheSameCall)
{
    make(withoutIxml("aUBITS=11223344\naSCENE=1\n"));
    updated.take = "2";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aSCENE=1\naTAKE=2\naSPEED=24.000-ND\n") }), "");

    make(withoutIxml("aUBITS=11223344\naSCENE=1\n"));
    updated.take = "2";
    updated.ubits = "11223344";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aUBITS=11223344\naSCENE=1\naTAKE=2\naSPEED=24.000-ND\n") }), "");
}

TEST_F(WriterTest, userBitsGoToTheDescriptionAlone)
{
    makeUsual();
    updated.ubits = "$12345678";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aUBITS=$12345678\n" + kDescriptionText) }), "");
}

TEST_F(WriterTest, circledAndWildTrackAndTracksLeaveTheDescriptionAlone)
{
    makeUsual();
    updated.circled = true;
    updated.wildTrack = true;
    updated.tracks = { { 1, "", "" } };
    updated.take = "";
    EXPECT_FALSE(save()); // The new element doesn't fit.
    EXPECT_EQ(proof->untouched(), "");

    updated.wildTrack = false;
    EXPECT_TRUE(save());
    const std::string edited = replaced(replaced(kIxml, ">FALSE<", ">TRUE<"), "<NAME>Boom<", "<NAME><");
    EXPECT_EQ(proof->patchedExactly({ ixmlText(edited) }), "");
}

TEST_F(WriterTest, rateLineIsBuiltWithTheRateOfTheFileNeverOfTheWantedRecord)
{
    make(usual("aSPEED=30.000-ND\n", "<BWFXML><SPEED><TIMECODE_RATE>24000/1001</TIMECODE_RATE></SPEED></BWFXML>"));
    updated.frameRate = 29.97;
    updated.take = "2";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aTAKE=2\naSPEED=23.976-ND\n") }), "");
}

TEST_F(WriterTest, rateBetweenTwoThousandthsGoesToTheEvenOne)
{
    make(usual("", "<BWFXML><SPEED><TIMECODE_RATE>63.8125</TIMECODE_RATE></SPEED></BWFXML>"));
    updated.take = "2";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aTAKE=2\naSPEED=63.812-ND\n") }), "");
}

TEST_F(WriterTest, rateLineSays24WhereTheFileKnowsNoRate)
{
    make(withoutIxml(""));
    updated.take = "2";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aTAKE=2\naSPEED=24.000-ND\n") }), "");
}

TEST_F(WriterTest, negativeRateOfTheFileCountsAsNone)
{
    make(usual("", "<BWFXML><SPEED><TIMECODE_RATE>-25</TIMECODE_RATE></SPEED></BWFXML>"));
    ASSERT_EQ(current.frameRate, -25.0);
    updated.take = "2";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aTAKE=2\naSPEED=24.000-ND\n") }), "");
}
