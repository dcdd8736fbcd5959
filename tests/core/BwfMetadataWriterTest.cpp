#include "tests/core/BwfMetadataWriterFixture.h"

#include <filesystem>
#include <memory>

// What counts as a change.

TEST_F(WriterTest, recordEqualToTheFileIsTrueAndTheFileUntouched)
{
    makeUsual();
    updated = current;
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterTest, emptyTextsAndZeroTimeReferenceMeanNoChange)
{
    makeUsual();
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->untouched(), "");
    EXPECT_EQ(readBack().scene, "12");
}

TEST_F(WriterTest, emptySceneMeansNoChangeWhileAnotherFieldIsWritten)
{
    makeUsual();
    updated.take = "4";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description(replaced(kDescriptionText, "aTAKE=3", "aTAKE=4")),
                  ixmlText(replaced(kIxml, "<TAKE>3<", "<TAKE>4<")) }),
        "");
    EXPECT_EQ(readBack().scene, "12");
}

TEST_F(WriterTest, fieldsThatAreNeverWrittenAreNoChange)
{
    makeUsual();
    updated.originator = "x";
    updated.originatorReference = "x";
    updated.originationDate = "2000-01-01";
    updated.originationTime = "00:00:00";
    updated.umid = "x";
    updated.codingHistory = "x";
    updated.description = "x";
    updated.frameRate = 30.0;
    updated.dropFrame = true;
    updated.sampleRate = 1;
    updated.timestampSampleRate = 1;
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterTest, channelNumbersAreNotComparedAndTracksOnlyInTheFileDoNotCount)
{
    makeUsual();
    updated.tracks = { { 7, "Boom", "" } };
    EXPECT_TRUE(save());
    updated.tracks.clear();
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterTest, trackBeyondTheFilesListCountsAsChanged)
{
    makeUsual();
    updated.tracks = { { 1, "Boom", "" }, { 1, "Lav_", "" } };
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ ixmlText(replaced(kIxml, "<NAME>Boom<", "<NAME>Lav_<")) }), "");
}

TEST_F(WriterTest, eachTextFieldAloneReachesTheDescriptionAndTheIxml)
{
    struct Field {
        std::string BwfMetadata::*member;
        std::string line;
        std::string element;
        std::string value; // As long as the old one.
    };
    const Field fields[] = {
        { &BwfMetadata::scene, "aSCENE=12", "<SCENE>12", "99" },
        { &BwfMetadata::take, "aTAKE=3", "<TAKE>3", "9" },
        { &BwfMetadata::tape, "aTAPE=T1", "<TAPE>T1", "T9" },
        { &BwfMetadata::note, "aNOTE=wind", "<NOTE>wind", "rain" },
        { &BwfMetadata::project, "aTAG=Film", "<PROJECT>Film", "Movi" },
    };
    for (const Field& each : fields) {
        makeUsual();
        updated.*each.member = each.value;
        EXPECT_TRUE(save()) << each.element;
        const auto withValue
            = [&](const std::string& old) { return old.substr(0, old.size() - each.value.size()) + each.value; };
        EXPECT_EQ(proof->patchedExactly({ description(replaced(kDescriptionText, each.line, withValue(each.line))),
                      ixmlText(replaced(kIxml, each.element, withValue(each.element))) }),
            "")
            << each.element;
    }
}

TEST_F(WriterTest, wildTrackAloneReachesTheIxml)
{
    const std::string element = "<WILD_TRACK>TRUE</WILD_TRACK>";
    make(usual(kDescriptionText, replaced(kIxml, "</BWFXML>", element + "</BWFXML>")));
    ASSERT_TRUE(current.wildTrack);
    updated.wildTrack = false;
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ ixmlText(kIxml) }), "");
}

TEST_F(WriterTest, functionOfATrackAloneReachesTheIxml)
{
    const std::string named = "<NAME>Boom</NAME>";
    make(usual(kDescriptionText, replaced(kIxml, named, named + "<FUNCTION>MIX</FUNCTION>")));
    updated.tracks = { { 1, "Boom", "MID" } };
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ ixmlText(replaced(kIxml, named, named + "<FUNCTION>MID</FUNCTION>")) }), "");
}

// The time reference.

TEST_F(WriterTest, timeReferenceAloneChangesItsEightBytesOnly)
{
    make(withoutIxml(kDescriptionText));
    updated.timeReference = 0x0102030405060708u;
    EXPECT_TRUE(save());
    EXPECT_EQ(readBytes(path).substr(bext() + kTimeReference, 8), "\x08\x07\x06\x05\x04\x03\x02\x01");
    EXPECT_EQ(proof->patchedExactly({ timeReference(0x0102030405060708u) }), "");
    EXPECT_EQ(proof->changedExactly({ { bext() + kTimeReference, bext() + kTimeReference + 8 } }), "");
}

TEST_F(WriterTest, timeReferenceComesBackAsWritten)
{
    makeUsual();
    updated.timeReference = 20000000000u;
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ timeReference(20000000000u) }), "");
    EXPECT_EQ(readBack().timeReference, 20000000000u);
}

TEST_F(WriterTest, allThreeStepsOfOneCallAreWritten)
{
    makeUsual();
    updated.scene = "13";
    updated.timeReference = 77;
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description(replaced(kDescriptionText, "aSCENE=12", "aSCENE=13")),
                  timeReference(77), ixmlText(replaced(kIxml, "<SCENE>12<", "<SCENE>13<")) }),
        "");
}

TEST_F(WriterTest, roundTripKeepsEveryFieldThatWasNotEdited)
{
    makeUsual();
    updated.scene = "9";
    updated.note = "rain";
    updated.timeReference = 48000;
    EXPECT_TRUE(save());
    BwfMetadata expected = current;
    expected.scene = "9";
    expected.note = "rain";
    expected.timeReference = 48000;
    const BwfMetadata read = readBack();
    EXPECT_EQ(read.scene, expected.scene);
    EXPECT_EQ(read.note, expected.note);
    EXPECT_EQ(read.timeReference, expected.timeReference);
    EXPECT_EQ(read.take, current.take);
    EXPECT_EQ(read.tape, current.tape);
    EXPECT_EQ(read.project, current.project);
    EXPECT_EQ(read.ubits, current.ubits);
    EXPECT_EQ(read.circled, current.circled);
    EXPECT_EQ(read.originator, current.originator);
    EXPECT_EQ(read.originatorReference, current.originatorReference);
    EXPECT_EQ(read.originationDate, current.originationDate);
    EXPECT_EQ(read.originationTime, current.originationTime);
    EXPECT_EQ(read.umid, current.umid);
    EXPECT_EQ(read.codingHistory, current.codingHistory);
    EXPECT_EQ(read.bextVersion, current.bextVersion);
    EXPECT_EQ(read.frameRate, current.frameRate);
    EXPECT_EQ(read.duration, current.duration);
    EXPECT_EQ(read.fileSize, current.fileSize);
    ASSERT_EQ(read.tracks.size(), 1u);
    EXPECT_EQ(read.tracks[0].name, "Boom");
    EXPECT_EQ(proof->unchangedOutside({ { bext(), bext() + kDescription },
                  { bext() + kTimeReference, bext() + kTimeReference + 8 }, { ixml(), ixml() + kIxmlBytes } }),
        "");
}

// What comes of a file that lacks something.

TEST_F(WriterTest, withoutBextASceneEditIsFalseAndTheIxmlIsNotReached)
{
    WavBuilder noBext;
    make(noBext.fmt(48000, 1, 24).ixml(kIxml).dataFrames(300));
    updated.scene = "13";
    EXPECT_FALSE(save());
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterTest, withoutBextATimeReferenceEditKeepsAFlagFromTheIxmlToo)
{
    WavBuilder noBext;
    make(noBext.fmt(48000, 1, 24).ixml(kIxml).dataFrames(300));
    updated.timeReference = 5;
    updated.circled = true;
    EXPECT_FALSE(save());
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterTest, withoutBextAFlagOrATrackNameAloneReachesTheIxml)
{
    WavBuilder noBext;
    make(noBext.fmt(48000, 1, 24).ixmlPadded(kIxml, kIxmlBytes, '\0').dataFrames(300));
    updated.circled = true;
    updated.tracks = { { 1, "Lav", "" } };
    EXPECT_TRUE(save());
    const std::string edited = replaced(replaced(kIxml, ">FALSE<", ">TRUE<"), ">Boom<", ">Lav<");
    EXPECT_EQ(proof->patchedExactly({ ixmlText(edited) }), "");
}

TEST_F(WriterTest, withoutIxmlAFlagIsFalseAndTheFileUntouched)
{
    make(withoutIxml(kDescriptionText));
    updated.circled = true;
    EXPECT_FALSE(save());
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterTest, withoutIxmlASceneGoesToTheDescriptionAndIsTrue)
{
    make(withoutIxml("aSCENE=1\n"));
    updated.scene = "2";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aSCENE=2\naSPEED=24.000-ND\n") }), "");
    EXPECT_EQ(readBack().scene, "") << "without iXML the Description is not read for fields";
}

TEST_F(WriterTest, ixmlThatWouldGrowStaysWhileTheDescriptionIsWrittenAndIxmlWinsOnTheNextRead)
{
    makeUsual();
    updated.scene = "12A";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description(replaced(kDescriptionText, "aSCENE=12", "aSCENE=12A")) }), "");
    EXPECT_EQ(readBack().scene, "12");
}

TEST_F(WriterTest, ixmlAloneThatWouldGrowIsFalseAndTheFileUntouched)
{
    makeUsual();
    updated.tracks = { { 1, "Boom 1", "" } };
    EXPECT_FALSE(save());
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterTest, missingFileThrows)
{
    EXPECT_THROW(
        (void)BwfMetadataWriter::writeMetadata(folder.file("none.wav"), updated), std::filesystem::filesystem_error);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(WriterTest, pathBytesReachTheFileSystemUnharmed)
{
    path = folder.file("Szene \xC3\xBC \xFF 1.wav");
    makeUsual();
    updated.scene = "9";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->changedWithin({ { bext(), bext() + kDescription }, { ixml(), ixml() + kIxmlBytes } }), "");
}

TEST_F(WriterTest, linkedFileIsWrittenThroughTheLink)
{
    makeUsual();
    std::filesystem::create_symlink(path, folder.file("link.wav"));
    proof = std::make_unique<FileProof>(path);
    updated.timeReference = 5;
    EXPECT_TRUE(BwfMetadataWriter::writeMetadata(folder.file("link.wav"), updated));
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("link.wav")));
    EXPECT_EQ(proof->patchedExactly({ timeReference(5) }), "");
}
