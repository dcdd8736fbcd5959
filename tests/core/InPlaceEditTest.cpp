#include "core/InPlaceEdit.h"

#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "core/BwfMetadataWriter.h"
#include "tests/support/ChangedRanges.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace {

namespace fs = std::filesystem;

using Kind = EditPlan::Problem::Kind;
using Place = EditPlan::Place;
using State = EditWrite::State;

constexpr size_t kDescription = 256;
constexpr size_t kIxmlBytes = 400;
constexpr uint64_t kMidnight = 0;

std::string field(std::string text, size_t size, char fill = '\0')
{
    text.resize(size, fill);
    return text;
}

BextFields bextFields()
{
    BextFields bext;
    bext.description = "aSCENE=12\naTAKE=3\naSPEED=25.000-ND\n";
    bext.timeReference = 48000;
    return bext;
}

const std::string kSpeed = "<SPEED><TIMECODE_RATE>25/1</TIMECODE_RATE>"
                           "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>0</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>"
                           "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>48000</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO></SPEED>";

std::string ixml(const std::string& scene, const std::string& speed = kSpeed)
{
    return "<BWFXML><SCENE>" + scene + "</SCENE><TAKE>3</TAKE>" + speed + "</BWFXML>";
}

class InPlaceEdit : public testing::Test {
protected:
    void put(const WavBuilder& wav)
    {
        builder = wav;
        builder.write(path);
        current = BwfMetadataReader::readMetadata(path);
        updated = current;
        start.reset();
    }
    void putUsual(char fill = ' ')
    {
        put(WavBuilder()
                .fmt(48000, 1, 24)
                .bext(bextFields())
                .ixmlPadded(ixml("12"), kIxmlBytes, fill)
                .dataFrames(500)
                .chunk("more", "tail"));
    }

    EditPlan plan(bool usePadding = false) const
    {
        InPlaceFile file(path, false);
        (void)file.read(); // It is `current`.
        return file.plan({ current, updated, start, usePadding });
    }
    State write(bool usePadding = false) const
    {
        InPlaceFile file(path, true);
        EXPECT_TRUE(file.read());
        const EditPlan made = file.plan({ current, updated, start, usePadding });
        return file.write(made).state;
    }
    std::vector<Kind> problems(bool usePadding = false) const
    {
        std::vector<Kind> kinds;
        for (const EditPlan::Problem& each : plan(usePadding).problems)
            kinds.push_back(each.kind);
        return kinds;
    }

    TempFolder folder;
    std::string path = folder.file("take.wav");
    WavBuilder builder;
    BwfMetadata current;
    BwfMetadata updated;
    std::optional<uint64_t> start;
};

TEST_F(InPlaceEdit, growthIntoThePaddingChangesTheDescriptionAndThePayloadAlone)
{
    for (const char fill : { ' ', '\0' }) {
        putUsual(fill);
        updated.scene = "12A & B";
        const FileProof proof(path);
        EXPECT_EQ(State::Written, write(true));
        EXPECT_EQ("",
            proof.patchedExactly({
                { builder.payloadOffset("bext"), field("aSCENE=12A & B\naTAKE=3\naSPEED=25.000-ND\n", kDescription) },
                { builder.payloadOffset("iXML"), field(ixml("12A &amp; B"), kIxmlBytes, fill) },
            }));
        EXPECT_EQ("12A &amp; B", BwfMetadataReader::readMetadata(path).scene);
    }
}

TEST_F(InPlaceEdit, editThatSaysWhatTheFileSaysPlansNothing)
{
    putUsual();
    EXPECT_TRUE(plan(true).patches.empty());
    EXPECT_TRUE(plan(true).problems.empty());
    start = 48000;
    EXPECT_TRUE(plan(true).patches.empty());
    const FileProof proof(path);
    EXPECT_EQ(State::Written, write());
    EXPECT_EQ("", proof.untouched());
}

TEST_F(InPlaceEdit, startChangesTheTimeReferenceAndTheDigitsOfTheIxmlAlone)
{
    putUsual();
    start = 96000;
    const FileProof proof(path);
    EXPECT_EQ(State::Written, write());
    const size_t digits
        = builder.payloadOffset("iXML") + builder.bytes().substr(builder.payloadOffset("iXML")).find("48000");
    EXPECT_EQ("", proof.patchedExactly({ { builder.payloadOffset("bext") + 338, le64(96000) }, { digits, "96000" } }));
    EXPECT_EQ(96000u, BwfMetadataReader::readMetadata(path).timeReference);
}

TEST_F(InPlaceEdit, midnightIsATimeLikeAnyOther)
{
    putUsual();
    start = kMidnight;
    const FileProof proof(path);
    EXPECT_TRUE(plan().problems.empty());
    EXPECT_EQ(State::Written, write());
    const size_t digits
        = builder.payloadOffset("iXML") + builder.bytes().substr(builder.payloadOffset("iXML")).find("48000");
    EXPECT_EQ("", proof.patchedExactly({ { builder.payloadOffset("bext") + 338, le64(0) }, { digits, "00000" } }));
    EXPECT_EQ(0u, BwfMetadataReader::readMetadata(path).timeReference);
}

TEST_F(InPlaceEdit, startWhoseDigitsDontFitIsNotWhole)
{
    putUsual();
    start = 480000;
    EXPECT_EQ(std::vector{ Kind::IxmlFull }, problems());
    EXPECT_EQ(1u, plan().problems[0].missingBytes);
    EXPECT_TRUE(plan(true).problems.empty());
}

TEST_F(InPlaceEdit, startThatTheReaderTakesForNoneIsNotKept)
{
    put(WavBuilder().fmt(48000, 1, 24).bext(bextFields()).dataFrames(5));
    start = 20'000'000'001;
    EXPECT_EQ(std::vector{ Kind::NotKept }, problems());
    EXPECT_EQ("start", plan().problems[0].field);
    start = 20'000'000'000;
    EXPECT_TRUE(plan().problems.empty());
}

TEST_F(InPlaceEdit, shortBextIsNeverWrittenPastItsEnd)
{
    WavBuilder wav;
    wav.fmt(48000, 1, 24).chunk("bext", std::string(300, '\0')).ixml(ixml("12")).dataFrames(5);
    put(wav);
    start = 96000;
    EXPECT_EQ(std::vector{ Kind::BextShort }, problems());
    EXPECT_EQ(46u, plan().problems[0].missingBytes);
    EXPECT_TRUE(plan().patches.empty());
}

TEST_F(InPlaceEdit, metadataBehindTheAudioOfRf64IsLeftAlone)
{
    WavBuilder wav = WavBuilder::rf64();
    wav.ds64(600).fmt(48000, 1, 24).data(std::string(600, 'a')).claimSize("data", UINT32_MAX);
    wav.bext(bextFields()).ixml(ixml("12"));
    put(wav);
    updated.scene = "13";
    EXPECT_EQ(std::vector{ Kind::NoBext }, problems());
    EXPECT_TRUE(plan().patches.empty());
}

// A walk in 32 bits goes on inside such a chunk, and takes what it finds there for metadata.
TEST_F(InPlaceEdit, audioThatLooksLikeMetadataIsNeverWritten)
{
    const std::string inside = WavBuilder().bext(bextFields()).ixml(ixml("12")).bytes().substr(12);
    WavBuilder wav;
    wav.fmt(48000, 1, 24).data(inside).claimSize("data", UINT32_MAX);
    put(wav);
    ASSERT_EQ("12", current.scene) << "the reader takes it for metadata";
    updated.scene = "13";
    start = 96000;
    EXPECT_TRUE(plan().patches.empty());
    EXPECT_EQ(std::vector{ Kind::NoBext }, problems());
}

TEST_F(InPlaceEdit, ixmlThatTheFileCutsIsNotWritten)
{
    WavBuilder wav;
    wav.fmt(48000, 1, 24).bext(bextFields()).dataFrames(5).ixml(ixml("12")).claimSize("iXML", 5000);
    put(wav);
    updated.circled = true;
    EXPECT_EQ(std::vector{ Kind::IxmlCut }, problems(true));
    EXPECT_TRUE(plan(true).patches.empty());
}

TEST_F(InPlaceEdit, valueThatWouldNotComeOutAgainIsNotKept)
{
    putUsual();
    updated.scene = "<";
    EXPECT_EQ(std::vector{ Kind::NotKept }, problems());
    EXPECT_TRUE(plan(true).problems.empty());
    updated.scene = " 1";
    EXPECT_EQ(std::vector{ Kind::NotKept }, problems(true));
    EXPECT_EQ("scene", plan(true).problems[0].field);
}

TEST_F(InPlaceEdit, fileThatChangedItsLengthSinceThePlanStaysUntouched)
{
    for (const bool grows : { true, false }) {
        putUsual();
        updated.scene = "13";
        InPlaceFile file(path, true);
        EXPECT_TRUE(file.read());
        const EditPlan made = file.plan({ current, updated, start, false });
        fs::resize_file(path, grows ? builder.bytes().size() + 1 : builder.bytes().size() - 1);
        const FileProof proof(path);
        EXPECT_EQ(State::ChangedMeanwhile, file.write(made).state);
        EXPECT_EQ("", proof.untouched());
    }
}

TEST_F(InPlaceEdit, fileThatGotOtherBytesWherePatchesGoSinceThePlanStaysUntouched)
{
    putUsual();
    updated.scene = "13";
    for (const Place place : { Place::Description, Place::Ixml }) {
        InPlaceFile file(path, true);
        EXPECT_TRUE(file.read());
        const EditPlan made = file.plan({ current, updated, start, false });
        const EditPlan::Patch* const patch = made.patchOf(place);
        ASSERT_NE(nullptr, patch);
        std::fstream other(path, std::ios::in | std::ios::out | std::ios::binary);
        other.seekp(static_cast<std::streamoff>(patch->offset));
        other << "somebody else's" << std::flush;
        const FileProof proof(path);
        EXPECT_EQ(State::ChangedMeanwhile, file.write(made).state);
        EXPECT_EQ("", proof.untouched());
        putUsual();
        updated.scene = "13";
    }
}

TEST_F(InPlaceEdit, textThatTheDescriptionAloneWouldTellOtherwiseIsNotKept)
{
    putUsual();
    updated.note = "wind\naSCENE=99";
    const EditPlan made = plan(true);
    ASSERT_EQ(1u, made.problems.size());
    EXPECT_EQ(Kind::NotKept, made.problems.front().kind);
    EXPECT_EQ("note", made.problems.front().field);
}

TEST_F(InPlaceEdit, emptyFileIsNoContainer)
{
    writeBytes(path, "");
    updated.circled = true;
    EXPECT_EQ(std::vector{ Kind::UnknownContainer }, problems());
}

TEST_F(InPlaceEdit, whatIsNoFileIsNotRead)
{
    EXPECT_THROW((void)InPlaceFile(path, true).read(), fs::filesystem_error);
    EXPECT_FALSE(fs::exists(path));
    EXPECT_THROW((void)InPlaceFile(folder.path().string(), true).read(), fs::filesystem_error);
    ASSERT_EQ(0, mkfifo(path.c_str(), 0600));
    EXPECT_THROW((void)InPlaceFile(path, true).read(), fs::filesystem_error) << "and doesn't wait for the other end";
}

TEST_F(InPlaceEdit, fileThatMayOnlyBeReadIsPlannedForAndNotWritten)
{
    putUsual();
    updated.scene = "13";
    InPlaceFile file(path, false);
    ASSERT_TRUE(file.read());
    const EditPlan made = file.plan({ current, updated, start, false });
    EXPECT_EQ(2u, made.patches.size());
    const FileProof proof(path);
    EXPECT_EQ(State::NotOpened, file.write(made).state);
    EXPECT_EQ("", proof.untouched());
}

// Files and edits of all kinds, with what stands in the way of the writer among them.
class AgainstTheWriter : public InPlaceEdit {
protected:
    size_t pick(size_t count) { return random() % count; }

    std::string text()
    {
        std::string made;
        for (size_t i = pick(5) + 1; i > 0; --i)
            made += "abc12"[pick(5)];
        return made;
    }

    WavBuilder file()
    {
        BextFields bext;
        bext.description = pick(4) == 0 ? std::string(250, 'x') : "aSCENE=" + text() + "\naNOTE=" + text() + "\n";
        bext.timeReference = pick(100000);
        std::string inside = "<SCENE>" + text() + "</SCENE>";
        for (const char* name : { "TAKE", "NOTE", "CIRCLED", "WILD_TRACK", "TAPE", "UBITS" }) {
            if (pick(2) == 0)
                inside += std::string("<") + name + ">" + (pick(3) == 0 ? "TRUE" : text()) + "</" + name + ">";
        }
        inside += "<TRACK_LIST><TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>" + text() + "</NAME></TRACK></TRACK_LIST>";
        WavBuilder wav;
        wav.fmt(48000, 1, 24);
        if (pick(8) > 0)
            wav.bext(bext);
        if (pick(2) == 0)
            wav.dataFrames(50);
        if (pick(8) > 0)
            wav.ixmlPadded("<BWFXML>" + inside + "</BWFXML>", 500, pick(2) == 0 ? ' ' : '\0');
        if (pick(4) > 0)
            wav.dataFrames(50);
        return wav;
    }

    void want()
    {
        for (std::string BwfMetadata::*each : { &BwfMetadata::scene, &BwfMetadata::take, &BwfMetadata::tape,
                 &BwfMetadata::note, &BwfMetadata::project, &BwfMetadata::ubits }) {
            if (pick(4) == 0)
                updated.*each = text();
        }
        updated.circled = pick(2) == 0;
        updated.wildTrack = pick(2) == 0;
        if (pick(3) == 0 && !updated.tracks.empty())
            updated.tracks[0].name = text();
    }

    std::mt19937 random{ 7 };
};

TEST_F(AgainstTheWriter, plainEditGivesTheBytesOfTheWriterWholeOrInPart)
{
    int whole = 0;
    int inPart = 0;
    const std::string twin = folder.file("twin.wav");
    for (int round = 0; round < 600; ++round) {
        put(file());
        fs::copy_file(path, twin, fs::copy_options::overwrite_existing);
        want();
        InPlaceFile edited(path, true);
        ASSERT_TRUE(edited.read());
        const EditPlan made = edited.plan({ current, updated, start, false });
        ASSERT_EQ(State::Written, edited.write(made).state);
        (void)BwfMetadataWriter::writeMetadata(twin, updated); // Its bytes are what counts.
        ASSERT_EQ(readBytes(twin), readBytes(path)) << "round " << round;
        if (!made.patches.empty())
            ++(made.problems.empty() ? whole : inPart);
    }
    EXPECT_GT(whole, 30);
    EXPECT_GT(inPart, 30);
}

TEST_F(AgainstTheWriter, wholeEditReadsBackAsItWasAskedForAndTheRestAsBefore)
{
    int whole = 0;
    for (int round = 0; round < 600; ++round) {
        put(file());
        want();
        start = pick(3) == 0 ? std::optional<uint64_t>(pick(200000)) : std::nullopt;
        const FileProof proof(path);
        InPlaceFile edited(path, true);
        ASSERT_TRUE(edited.read());
        const EditPlan made = edited.plan({ current, updated, start, pick(2) == 0 });
        if (!made.problems.empty())
            continue;
        ASSERT_EQ(State::Written, edited.write(made).state);
        const size_t bext = builder.payloadOffset("bext");
        const size_t ixmlAt = builder.payloadOffset("iXML");
        ASSERT_EQ("",
            proof.unchangedOutside({ { bext, bext + kDescription }, { bext + 338, bext + 346 },
                { ixmlAt, ixmlAt + (ixmlAt == 0 ? 0 : 500) } }));
        const BwfMetadata after = BwfMetadataReader::readMetadata(path);
        EXPECT_EQ(updated.scene, after.scene);
        EXPECT_EQ(updated.take, after.take);
        EXPECT_EQ(updated.tape, after.tape);
        EXPECT_EQ(updated.note, after.note);
        EXPECT_EQ(updated.project, after.project);
        EXPECT_EQ(updated.circled, after.circled);
        EXPECT_EQ(updated.wildTrack, after.wildTrack);
        EXPECT_EQ(start.value_or(current.timeReference), after.timeReference);
        ASSERT_EQ(updated.tracks.size(), after.tracks.size());
        for (size_t i = 0; i < updated.tracks.size(); ++i)
            EXPECT_EQ(updated.tracks[i].name, after.tracks[i].name);
        ++whole;
    }
    EXPECT_GT(whole, 50);
}

} // namespace
