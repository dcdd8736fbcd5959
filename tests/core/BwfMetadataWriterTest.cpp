#include "core/BwfMetadataWriter.h"

#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "tests/support/ChangedRanges.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr size_t kDescription = 256;
constexpr size_t kTimeReference = 338;
constexpr size_t kIxmlBytes = 1200;

const std::string kDescriptionText
    = "aSCENE=12\naTAKE=3\naTAPE=T1\naSPEED=25.000-ND\naTAG=Film\naNOTE=wind\naTRK1=Boom\n";

const std::string kIxml = "<BWFXML>\n<PROJECT>Film</PROJECT>\n<SCENE>12</SCENE>\n<TAKE>3</TAKE>\n<TAPE>T1</TAPE>\n"
                          "<NOTE>wind</NOTE>\n<CIRCLED>FALSE</CIRCLED>\n<UBITS>$00000000</UBITS>\n"
                          "<SPEED><TIMECODE_RATE>25/1</TIMECODE_RATE></SPEED>\n<TRACK_LIST>\n"
                          "<TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>Boom</NAME></TRACK>\n"
                          "</TRACK_LIST>\n</BWFXML>\n";

std::string field(const std::string& text, size_t size)
{
    std::string bytes = text.substr(0, size);
    bytes.resize(size, '\0');
    return bytes;
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    const size_t at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
}

BextFields bextOf(const std::string& description, uint64_t timeReference = 1000)
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

} // namespace

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

// The Description.

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

// Layouts.

TEST_F(WriterTest, chunksBehindTheAudioAreWritten)
{
    WavBuilder late;
    make(late.fmt(48000, 1, 24).data("odd").ixmlPadded(kIxml, kIxmlBytes, ' ').bext(bextOf("aSCENE=12\n")));
    updated.scene = "1";
    EXPECT_TRUE(save());
    std::string edited = replaced(kIxml, "<SCENE>12<", "<SCENE>1<");
    edited.resize(kIxmlBytes - 1, ' ');
    EXPECT_EQ(proof->patchedExactly({ ixmlText(edited), description("aSCENE=1\naSPEED=25.000-ND\n") }), "");
}

TEST_F(WriterTest, rf64IsPatchedWhereTheChunksStandInFrontOfTheAudio)
{
    WavBuilder large = WavBuilder::rf64();
    large.ds64(900).fmt(48000, 1, 24).bext(bextOf("aSCENE=12\n")).ixmlPadded(kIxml, kIxmlBytes, '\0').dataFrames(300);
    make(large.claimSize("data", 0xFFFFFFFFu));
    updated.scene = "13";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aSCENE=13\naSPEED=25.000-ND\n"),
                  ixmlText(replaced(kIxml, "<SCENE>12<", "<SCENE>13<")) }),
        "");
}

TEST_F(WriterTest, rf64ChunksBehindThePlaceholderSizeAreNotFound)
{
    WavBuilder large = WavBuilder::rf64();
    large.ds64(8).fmt(48000, 1, 16).data(std::string(8, '\x77')).claimSize("data", 0xFFFFFFFFu);
    make(large.bext(bextOf("aSCENE=12\n")));
    updated.scene = "13";
    EXPECT_FALSE(save());
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterTest, fileThatIsNoWaveButHasChunksIsPatchedAllTheSame)
{
    // The search looks at chunks only; the reader, which looks at the header, found nothing.
    WavBuilder other;
    other.fileId("XXXX").fmt(48000, 1, 24).bext(bextOf("aSCENE=12\n")).dataFrames(30);
    make(other);
    ASSERT_EQ(current.description, "");
    updated.scene = "13";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aSCENE=13\naSPEED=24.000-ND\n") }), "");
}

// A `bext` payload shorter than what is written into it. Inside the file the writes run on into what follows; at the
// end of the file they end, for the length must never change.

TEST_F(WriterTest, shortBextIsWrittenPastItsEndIntoWhatFollows)
{
    WavBuilder narrow;
    narrow.fmt(48000, 1, 24).chunk("bext", std::string(100, 'd')).chunk("JUNK", std::string(1000, 'j')).dataFrames(30);
    make(narrow);
    updated.scene = "13";
    updated.timeReference = 0x1111111111111111u;
    EXPECT_TRUE(save());
    // The header of the following chunk is among the bytes written over, so the chunk list is another.
    std::string expected = proof->before();
    expected.replace(bext(), kDescription, field("aSCENE=13\naSPEED=24.000-ND\n", kDescription));
    expected.replace(bext() + kTimeReference, 8, std::string(8, '\x11'));
    EXPECT_EQ(changedRanges(readBytes(path), expected), std::vector<ByteRange>());
}

TEST_F(WriterTest, ixmlHeaderThatTheDescriptionOfAShortBextHasRunOverIsNotFoundAnyMore)
{
    WavBuilder narrow;
    // The elements stand behind what the Description takes, where an edit would still find them.
    const std::string text = std::string(300, 'x') + kIxml;
    narrow.fmt(48000, 1, 24).chunk("bext", std::string(100, 'd')).ixml(text).dataFrames(30);
    make(narrow);
    ASSERT_EQ(current.scene, "12");
    updated.scene = "1";
    EXPECT_TRUE(save());
    std::string expected = proof->before();
    expected.replace(bext(), kDescription, field("aSCENE=1\naSPEED=25.000-ND\n", kDescription));
    EXPECT_EQ(changedRanges(readBytes(path), expected), std::vector<ByteRange>());
}

TEST_F(WriterTest, ixmlHeaderInsideTheDescriptionOfABextWithoutStepIsNotFoundAnyMore)
{
    // The size 0xFFFFFFFF steps by 0, so the search for iXML goes on inside the payload.
    WavBuilder stepless;
    const std::string text = std::string(300, 'x') + kIxml;
    const std::string inside = "iXML" + le32(static_cast<uint32_t>(text.size())) + text;
    stepless.fmt(48000, 1, 24).chunk("bext", inside).claimSize("bext", 0xFFFFFFFFu).dataFrames(30);
    make(stepless);
    ASSERT_EQ(current.scene, "12");
    updated.scene = "1";
    EXPECT_TRUE(save());
    const std::string after = readBytes(path);
    const auto changed = changedRanges(after, proof->before());
    EXPECT_EQ(after.size(), proof->before().size());
    ASSERT_FALSE(changed.empty());
    EXPECT_GE(changed.front().begin, bext());
    EXPECT_LE(changed.back().end, bext() + kDescription);
}

TEST_F(WriterTest, ixmlInFrontOfBextIsTheOneThatIsWritten)
{
    WavBuilder early;
    early.fmt(48000, 1, 24).ixmlPadded(kIxml, kIxmlBytes, '\0').bext(bextOf("aSCENE=12\n")).ixml("<SCENE>12</SCENE>");
    make(early.dataFrames(30));
    updated.scene = "13";
    updated.timeReference = 5;
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ ixmlText(replaced(kIxml, "<SCENE>12<", "<SCENE>13<")),
                  description("aSCENE=13\naSPEED=25.000-ND\n"), timeReference(5) }),
        "");
}

TEST_F(WriterTest, descriptionEndsAtTheEndOfTheFile)
{
    WavBuilder cut;
    cut.fmt(48000, 1, 24).dataFrames(30).chunk("bext", std::string(12, 'd'));
    make(cut);
    updated.scene = "13";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ { bext(), "aSCENE=13\naS" } }), "");
}

TEST_F(WriterTest, timeReferenceEndsAtTheEndOfTheFile)
{
    WavBuilder cut;
    cut.fmt(48000, 1, 24).dataFrames(30).chunk("bext", std::string(341, 'd')).omitPadByte();
    make(cut);
    updated.timeReference = 0x0102030405060708u;
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ { bext() + kTimeReference, "\x08\x07\x06" } }), "");
}

TEST_F(WriterTest, timeReferenceWhollyPastTheEndOfTheFileIsTrueAndTheFileUntouched)
{
    for (const size_t payload : { size_t{ 0 }, size_t{ 100 }, size_t{ 338 } }) {
        WavBuilder cut;
        cut.fmt(48000, 1, 24).dataFrames(30).chunk("bext", std::string(payload, 'd'));
        make(cut);
        updated.timeReference = 5;
        EXPECT_TRUE(save()) << payload;
        EXPECT_EQ(proof->untouched(), "") << payload;
    }
}

TEST_F(WriterTest, bextHeaderThatEndsTheFileInItsSizeFieldIsTrueAndTheFileUntouched)
{
    // The chunk counts as found, on a failed stream that writes nothing.
    WavBuilder cut;
    cut.fmt(48000, 1, 24).dataFrames(30).trailing("bext\x10");
    make(cut);
    updated.scene = "13";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterTest, ixmlThatClaimsMoreThanTheFileHoldsIsTrueAndTheFileUntouched)
{
    for (const uint32_t claim : { uint32_t{ 0x7FFFFFFF }, uint32_t{ 0xFFFFFFFE }, uint32_t{ 0xFFFFFFFF } }) {
        WavBuilder lying;
        lying.fmt(48000, 1, 24).dataFrames(30).ixml(kIxml).claimSize("iXML", claim);
        make(lying);
        updated.circled = true;
        EXPECT_TRUE(save()) << claim;
        EXPECT_EQ(proof->untouched(), "") << claim;
    }
}

// Positions are held in 32 bits. A chunk behind the first 4 GiB is not found, since its cut position is audio.

namespace {

/// A sparse RIFF file whose `data` ends at a bit more than 4 GiB, with `behind` after it.
void writeBeyond4GiB(const std::string& path, const WavBuilder& front, const std::string& behind)
{
    constexpr uint32_t kAudio = 0xFFFFFFF0u;
    const std::string head = front.bytes() + "data" + le32(kAudio) + std::string(4096, '\x33');
    writeBytes(path, head);
    std::filesystem::resize_file(path, front.bytes().size() + 8 + kAudio);
    std::ofstream(path, std::ios::binary | std::ios::app) << behind;
}

struct SparseState {
    explicit SparseState(const std::string& path) : size(std::filesystem::file_size(path))
    {
        struct stat status { };
        stat(path.c_str(), &status);
        blocks = status.st_blocks;
        constexpr size_t kEnds = 64 * 1024;
        std::ifstream in(path, std::ios::binary);
        ends.resize(2 * kEnds);
        in.read(ends.data(), kEnds);
        in.seekg(-static_cast<std::streamoff>(kEnds), std::ios::end);
        in.read(ends.data() + kEnds, kEnds);
    }
    bool operator==(const SparseState&) const = default;

    uint64_t size = 0;
    int64_t blocks = 0; // A write into the hole between the two ends would take some.
    std::string ends;
};

} // namespace

TEST_F(WriterTest, bextBehind4GiBIsNotFoundAndNoAudioIsWrittenOver)
{
    WavBuilder front;
    front.fmt(48000, 1, 16);
    writeBeyond4GiB(path, front, "bext" + le32(602) + bextPayload(bextOf("aSCENE=12\n")));
    const SparseState before(path);
    updated.scene = "13";
    EXPECT_FALSE(save());
    updated.scene = "";
    updated.timeReference = 5;
    EXPECT_FALSE(save());
    EXPECT_TRUE(SparseState(path) == before);
}

TEST_F(WriterTest, bextBehind4GiBKeepsTheEditFromTheIxmlAsAMissingOneDoes)
{
    WavBuilder front;
    front.fmt(48000, 1, 16).ixml(kIxml);
    writeBeyond4GiB(path, front, "bext" + le32(602) + bextPayload(bextOf("aSCENE=12\n")));
    const SparseState before(path);
    updated.scene = "13";
    EXPECT_FALSE(save());
    EXPECT_TRUE(SparseState(path) == before);
}

TEST_F(WriterTest, ixmlBehind4GiBIsNotFoundAndNoAudioIsWrittenOver)
{
    WavBuilder front;
    front.fmt(48000, 1, 16).bext(bextOf("aSCENE=12\n"));
    writeBeyond4GiB(path, front, "iXML" + le32(static_cast<uint32_t>(kIxml.size())) + kIxml);
    const SparseState before(path);
    updated.circled = true;
    EXPECT_FALSE(save());
    EXPECT_TRUE(SparseState(path) == before);
}

namespace {

constexpr uint64_t k4GiB = uint64_t{ 1 } << 32;

/// A sparse RIFF file whose `bext` payload begins at `payload`. Its audio begins at offset 44.
void writeWithBextAt(const std::string& path, uint64_t payload, const std::string& bext)
{
    constexpr uint64_t kAudioBegin = 44;
    WavBuilder front;
    const std::string head = front.fmt(48000, 1, 16).bytes();
    EXPECT_EQ(head.size() + 8, kAudioBegin);
    writeBytes(
        path, head + "data" + le32(static_cast<uint32_t>(payload - 8 - kAudioBegin)) + std::string(4096, '\x33'));
    std::filesystem::resize_file(path, payload - 8);
    std::ofstream(path, std::ios::binary | std::ios::app) << "bext" << le32(static_cast<uint32_t>(bext.size())) << bext;
}

} // namespace

TEST_F(WriterTest, fieldsOfABextThatBeginsRightInFrontOf4GiBDoNotWrapToTheStartOfTheFile)
{
    constexpr uint64_t kLastPayload = k4GiB - 2; // Chunks begin at even offsets.
    std::string bext = bextPayload(bextOf("aSCENE=12\n"));
    writeWithBextAt(path, kLastPayload, bext);
    const SparseState before(path);
    updated.scene = "13";
    updated.timeReference = 0x0102030405060708u;
    EXPECT_TRUE(save());

    bext.replace(0, kDescription, field("aSCENE=13\naSPEED=24.000-ND\n", kDescription));
    bext.replace(kTimeReference, 8, le64(0x0102030405060708u));
    SparseState expected = before;
    expected.ends.replace(expected.ends.size() - bext.size(), bext.size(), bext);
    EXPECT_TRUE(SparseState(path) == expected);
}

TEST_F(WriterTest, bextThatBeginsAt4GiBIsNotFoundAndTheStartOfTheFileStays)
{
    writeWithBextAt(path, k4GiB, bextPayload(bextOf("aSCENE=12\n")));
    const SparseState before(path);
    updated.scene = "13";
    EXPECT_FALSE(save());
    updated.scene = "";
    updated.timeReference = 5;
    EXPECT_FALSE(save());
    EXPECT_TRUE(SparseState(path) == before);
}

// The class's small operations.

namespace {

class WriterStreamTest : public testing::Test {
protected:
    void open(const std::string& bytes)
    {
        writeBytes(path, bytes);
        stream.open(path, std::ios::in | std::ios::out | std::ios::binary);
    }
    std::string written()
    {
        stream.close();
        return readBytes(path);
    }

    TempFolder folder;
    std::string path = folder.file("bytes");
    std::fstream stream;
};

} // namespace

TEST_F(WriterStreamTest, findChunkGivesSizeAndPositionAndStandsAtThePayload)
{
    WavBuilder builder;
    builder.fmt(48000, 1, 16).chunk("odd ", "abc").chunk("want", "payload!");
    open(builder.bytes());
    uint32_t size = 0;
    uint32_t position = 0;
    EXPECT_TRUE(BwfMetadataWriter::findChunk(stream, "want", size, position));
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(position, builder.payloadOffset("want"));
    EXPECT_EQ(stream.get(), 'p');

    std::ifstream in(path, std::ios::binary);
    position = 0;
    EXPECT_TRUE(BwfMetadataWriter::findChunk(in, "want", size, position));
    EXPECT_EQ(position, builder.payloadOffset("want"));
}

TEST_F(WriterStreamTest, searchThatRanOffTheEndLeavesTheStreamFailedForEveryLaterOne)
{
    WavBuilder builder;
    open(builder.fmt(48000, 1, 16).bytes());
    uint32_t size = 7;
    uint32_t position = 7;
    EXPECT_FALSE(BwfMetadataWriter::findChunk(stream, "FMT ", size, position));
    EXPECT_FALSE(BwfMetadataWriter::findChunk(stream, "fmt ", size, position));
    EXPECT_EQ(size, 7u);
    EXPECT_EQ(position, 7u);
}

TEST_F(WriterStreamTest, writeStringAlwaysEndsTheFieldInNul)
{
    open("0123456789");
    BwfMetadataWriter::writeString(stream, "abcdef", 4, 3);
    EXPECT_EQ(written(),
        std::string("012abc\0"
                    "789",
            10));
}

TEST_F(WriterStreamTest, writeStringFillsTheFieldWithNul)
{
    open("0123456789");
    BwfMetadataWriter::writeString(stream, "a", 4, 3);
    BwfMetadataWriter::writeString(stream, "", 1, 0);
    EXPECT_EQ(written(),
        std::string("\0"
                    "12a\0\0\0"
                    "789",
            10));
}

TEST_F(WriterStreamTest, writeStringOnAWriteStreamGoesOnWhereItStands)
{
    std::ofstream out(path, std::ios::binary);
    BwfMetadataWriter::writeString(out, "abcdef", 4);
    BwfMetadataWriter::writeString(out, "g", 3);
    BwfMetadataWriter::writeString(out, "h", 0);
    out.close();
    EXPECT_EQ(readBytes(path), std::string("abc\0g\0\0", 7));
}

TEST_F(WriterStreamTest, numbersAreWrittenLowByteFirst)
{
    std::ofstream out(path, std::ios::binary);
    BwfMetadataWriter::writeUint16LE(out, 0x0102);
    BwfMetadataWriter::writeUint32LE(out, 0x03040506u);
    BwfMetadataWriter::writeUint64LE(out, 0x0708090A0B0C0D0Eu);
    out.close();
    EXPECT_EQ(readBytes(path), "\x02\x01\x06\x05\x04\x03\x0E\x0D\x0C\x0B\x0A\x09\x08\x07");
}

TEST_F(WriterStreamTest, fourByteNumberIsReadBackFromBothKindsOfStream)
{
    open("....");
    BwfMetadataWriter::writeUint32LE(stream, 0xFEDCBA98u);
    stream.seekg(0);
    EXPECT_EQ(BwfMetadataWriter::readUint32LE(stream), 0xFEDCBA98u);
    EXPECT_EQ(BwfMetadataWriter::readUint32LE(stream), 0u) << "bytes past the end count as 0";
    EXPECT_EQ(written(), "\x98\xBA\xDC\xFE");
    std::ifstream in(path, std::ios::binary);
    EXPECT_EQ(BwfMetadataWriter::readUint32LE(in), 0xFEDCBA98u);
}

TEST_F(WriterStreamTest, descriptionIsTrueEvenOnAFailedStreamAndWritesNothing)
{
    open(std::string(600, 'x'));
    stream.setstate(std::ios::failbit);
    EXPECT_TRUE(BwfMetadataWriter::updateBextDescription(stream, 0, "text"));
    EXPECT_FALSE(BwfMetadataWriter::updateBextTimeReference(stream, 0, 5));
    EXPECT_EQ(written(), std::string(600, 'x'));
}
