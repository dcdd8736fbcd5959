#include "cli/EditForecast.h"

#include "cli/FileRun.h"
#include "core/BwfMetadataReader.h"
#include "core/BwfMetadataWriter.h"
#include "core/MetadataChanges.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// What the bytes of a file become where the forecast says what is written.
std::string foretold(std::string bytes, const WavBuilder& wav, const EditForecast& forecast)
{
    const auto put = [&bytes](size_t at, const std::string& text) {
        if (at < bytes.size())
            bytes.replace(
                at, std::min(text.size(), bytes.size() - at), text, 0, std::min(text.size(), bytes.size() - at));
    };
    if (forecast.descriptionField)
        put(wav.payloadOffset("bext"), *forecast.descriptionField);
    if (forecast.timeReference)
        put(wav.payloadOffset("bext") + 338, le64(*forecast.timeReference));
    if (forecast.ixmlPayload)
        put(wav.payloadOffset("iXML"), *forecast.ixmlPayload);
    return bytes;
}

void expectSameFields(const BwfMetadata& expected, const BwfMetadata& actual)
{
    EXPECT_EQ(expected.description, actual.description);
    EXPECT_EQ(expected.timeReference, actual.timeReference);
    EXPECT_EQ(expected.timestampSampleRate, actual.timestampSampleRate);
    EXPECT_EQ(expected.frameRate, actual.frameRate);
    EXPECT_EQ(expected.scene, actual.scene);
    EXPECT_EQ(expected.take, actual.take);
    EXPECT_EQ(expected.tape, actual.tape);
    EXPECT_EQ(expected.project, actual.project);
    EXPECT_EQ(expected.note, actual.note);
    EXPECT_EQ(expected.ubits, actual.ubits);
    EXPECT_EQ(expected.circled, actual.circled);
    EXPECT_EQ(expected.wildTrack, actual.wildTrack);
    ASSERT_EQ(expected.tracks.size(), actual.tracks.size());
    for (size_t i = 0; i < expected.tracks.size(); ++i) {
        EXPECT_EQ(expected.tracks[i].name, actual.tracks[i].name);
        EXPECT_EQ(expected.tracks[i].function, actual.tracks[i].function);
    }
}

/// Files and edits of all kinds, by a generator with a fixed seed.
class Dice {
public:
    explicit Dice(uint32_t seed) : engine(seed) { }

    bool oneIn(uint32_t n) { return below(n) == 0; }
    size_t below(size_t n) { return engine() % n; }

    std::string word()
    {
        static const char* const kWords[] = { "", "1", "12A", "a longer note", "<b>", "x & y", "\xC3\xA9", "A101",
            "two\nlines", " blank ", "</SCENE>", "<TAKE>9</TAKE>" };
        return oneIn(20) ? std::string(below(300), 'n') : kWords[below(std::size(kWords))];
    }

    std::string ixml()
    {
        std::string text = "<BWFXML>\n";
        for (const char* const name :
            { "PROJECT", "SCENE", "TAKE", "TAPE", "NOTE", "CIRCLED", "WILD_TRACK", "UBITS" }) {
            const std::string open = "<" + std::string(name) + ">";
            const std::string close = "</" + std::string(name) + ">";
            if (oneIn(15))
                text += close + open;
            else if (!oneIn(4))
                text += open + (oneIn(3) ? "TRUE" : word()) + close + "\n";
        }
        if (oneIn(3))
            text += "<SPEED><TIMECODE_RATE>24000/1001</TIMECODE_RATE><TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>5"
                    "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO><TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>0"
                    "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI></SPEED>";
        text += "<TRACK_LIST>";
        for (size_t i = 0, count = below(4); i < count; ++i)
            text += "<TRACK><CHANNEL_INDEX>" + std::to_string(1 + below(4)) + "</CHANNEL_INDEX><NAME>" + word()
                + "</NAME>" + (oneIn(2) ? "<FUNCTION>MIX</FUNCTION>" : "") + "</TRACK>\n";
        return text + "</TRACK_LIST>" + (oneIn(10) ? "" : "</BWFXML>\n");
    }

    void addIxml(WavBuilder& wav)
    {
        const std::string text = ixml();
        const std::string padding(oneIn(2) ? below(40) : 0, oneIn(2) ? ' ' : '\0');
        wav.ixml(text + padding);
        if (oneIn(8))
            wav.claimSize("iXML", static_cast<uint32_t>(oneIn(3) ? 0xFFFFFFFF : text.size() + below(4000)));
        else if (oneIn(10))
            wav.omitPadByte();
    }

    void addBext(WavBuilder& wav)
    {
        BextFields fields;
        for (const char* const key : { "aSCENE=", "aTAKE=", "aTAPE=", "aNOTE=", "aUBITS=", "sTRK1=", "dTRK2=" }) {
            if (oneIn(2))
                fields.description += key + word() + "\r\n";
        }
        fields.timeReference = oneIn(3) ? 0 : below(1000000);
        std::string payload = bextPayload(fields);
        if (oneIn(6))
            payload.resize(below(payload.size()));
        wav.chunk("bext", payload);
        if (oneIn(15))
            wav.claimSize("bext", static_cast<uint32_t>(oneIn(2) ? 0xFFFFFFFF : below(700)));
    }

    WavBuilder file()
    {
        WavBuilder wav = oneIn(8) ? WavBuilder::rf64().ds64(100) : WavBuilder();
        const bool ixmlFirst = oneIn(2);
        if (!oneIn(8) && ixmlFirst)
            addIxml(wav);
        if (!oneIn(8))
            addBext(wav);
        wav.fmt(48000, 1, 24);
        if (!ixmlFirst && oneIn(2))
            addIxml(wav);
        wav.dataFrames(10);
        if (oneIn(4))
            addIxml(wav);
        if (oneIn(6))
            wav.truncateTo(12 + below(wav.bytes().size() - 12));
        if (oneIn(60))
            wav.fileId("BW64");
        return wav;
    }

    BwfMetadata edit(BwfMetadata record)
    {
        for (const auto field : { &BwfMetadata::scene, &BwfMetadata::take, &BwfMetadata::tape, &BwfMetadata::project,
                 &BwfMetadata::note, &BwfMetadata::ubits }) {
            if (oneIn(4))
                record.*field = word();
        }
        record.circled = oneIn(4) ? !record.circled : record.circled;
        record.wildTrack = oneIn(6) ? !record.wildTrack : record.wildTrack;
        record.timeReference = oneIn(5) ? below(5000000) : record.timeReference;
        for (BwfTrack& track : record.tracks) {
            if (oneIn(4))
                track.name = word();
        }
        return record;
    }

private:
    std::mt19937 engine;
};

class Forecast : public testing::Test {
protected:
    std::string put(const WavBuilder& wav)
    {
        wav.write(path);
        return path;
    }

    EditForecast of(const WavBuilder& wav, const EditRequest& request) { return forecastEdit(put(wav), request); }

    TempFolder folder;
    std::string path = folder.file("a.wav");
};

TEST_F(Forecast, isWhatTheWriterDoes)
{
    std::map<EditOutcome, int> met;
    for (uint32_t seed = 0; seed < 2000; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        const WavBuilder wav = dice.file();
        put(wav);
        const std::string before = readBytes(path);
        const BwfMetadata current = BwfMetadataReader::readMetadata(path);
        const BwfMetadata wanted = dice.edit(current);
        const EditForecast forecast = forecastEdit(path, wanted);
        ASSERT_EQ(before, readBytes(path));
        ++met[forecast.outcome];
        if (forecast.doesDamage) {
            EXPECT_EQ(EditOutcome::Refused, forecast.outcome);
            continue;
        }
        EXPECT_EQ(forecast.writerSucceeds, BwfMetadataWriter::writeMetadata(path, wanted));
        const std::string after = readBytes(path);
        EXPECT_EQ(foretold(before, wav, forecast), after);
        expectSameFields(BwfMetadataReader::readMetadata(path), forecast.after);
        if (forecast.outcome == EditOutcome::Nothing || forecast.outcome == EditOutcome::Refused) {
            EXPECT_EQ(before, after);
        }
        EXPECT_EQ(forecast.outcome <= EditOutcome::Whole, forecast.obstacles.empty());
        if (HasFailure())
            return;
    }
    // All of them, so that none is claimed for want of a case.
    for (const EditOutcome each : { EditOutcome::Nothing, EditOutcome::Whole, EditOutcome::DescriptionOnly,
             EditOutcome::Partly, EditOutcome::Refused })
        EXPECT_GT(met[each], 10) << nameOf(each);
}

TEST_F(Forecast, wholeEditReadsBackAsItWasAskedFor)
{
    int whole = 0;
    for (uint32_t seed = 0; seed < 600; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        put(dice.file());
        const BwfMetadata current = BwfMetadataReader::readMetadata(path);
        EditRequest request;
        request.scene = "77B";
        request.note = dice.oneIn(2) ? std::optional<std::string>(std::string(dice.below(80) + 1, 'n')) : std::nullopt;
        request.circled = !current.circled;
        if (forecastEdit(path, request).outcome != EditOutcome::Whole)
            continue;
        ++whole;
        ASSERT_TRUE(BwfMetadataWriter::writeMetadata(path, wantedRecord(current, request).record));
        const BwfMetadata after = BwfMetadataReader::readMetadata(path);
        EXPECT_EQ("77B", after.scene);
        EXPECT_EQ(request.note.value_or(current.note), after.note);
        EXPECT_EQ(!current.circled, after.circled);
    }
    EXPECT_GT(whole, 20);
}

TEST_F(Forecast, bytesThatMissAreThoseThatPaddingWouldHaveToBe)
{
    const std::string text = "<BWFXML><SCENE>1</SCENE></BWFXML>";
    EditRequest request;
    request.scene = "1234";
    const EditForecast forecast = of(WavBuilder().bext({}).ixml(text).fmt(48000, 1, 24), request);
    EXPECT_EQ(EditOutcome::DescriptionOnly, forecast.outcome);
    EXPECT_EQ(3u, forecast.ixmlMissing);
    ASSERT_EQ(1u, forecast.obstacles.size());
    EXPECT_EQ("ixml-full", forecast.obstacles.front().code);
    // An element that gets shorter makes the room.
    const std::string roomy = "<BWFXML><SCENE>1</SCENE><NOTE>long</NOTE></BWFXML>";
    request.note = "x";
    EXPECT_EQ(EditOutcome::Whole, of(WavBuilder().bext({}).ixml(roomy).fmt(48000, 1, 24), request).outcome);
}

TEST_F(Forecast, descriptionThatWouldBeCutIsNotWhole)
{
    const auto withNote = [this](size_t bytes) {
        BextFields fields;
        fields.description = "aNOTE=" + std::string(bytes, 'n');
        EditRequest request;
        request.scene = "2";
        const std::string ixml = "<BWFXML><SCENE>1</SCENE><NOTE>n</NOTE></BWFXML>";
        return of(WavBuilder().bext(fields).ixml(ixml).fmt(48000, 1, 24), request);
    };
    // Besides the note there are "aSCENE=2", a line for the rate, and three line ends.
    BwfMetadata noteAndScene;
    noteAndScene.scene = "2";
    noteAndScene.note = "x";
    const std::string rest = editedDescription({}, noteAndScene);
    const size_t fitting = 255 - (rest.size() - 1);
    EXPECT_EQ(EditOutcome::Whole, withNote(fitting).outcome);
    EXPECT_EQ(0u, withNote(fitting).descriptionMissing);
    EXPECT_EQ(1u, withNote(fitting + 1).descriptionMissing);
    EXPECT_EQ(EditOutcome::Partly, withNote(fitting + 1).outcome);
    EXPECT_EQ("description-full", withNote(fitting + 1).obstacles.front().code);
}

TEST_F(Forecast, editIsRefusedWhereNothingTakesIt)
{
    EditRequest circled;
    circled.circled = true;
    EditRequest scene;
    scene.scene = "2";
    const std::string ixml = "<BWFXML><SCENE>1</SCENE></BWFXML>";
    const EditForecast noIxml = of(WavBuilder().bext({}).fmt(48000, 1, 24), circled);
    EXPECT_EQ(EditOutcome::Refused, noIxml.outcome);
    EXPECT_EQ("no-ixml", noIxml.obstacles.front().code);
    const EditForecast noBext = of(WavBuilder().ixml(ixml).fmt(48000, 1, 24), scene);
    EXPECT_EQ(EditOutcome::Refused, noBext.outcome);
    EXPECT_EQ("no-bext", noBext.obstacles.front().code);
    const EditForecast shortBext = of(WavBuilder().chunk("bext", "short").fmt(48000, 1, 24), scene);
    EXPECT_EQ(EditOutcome::Refused, shortBext.outcome);
    EXPECT_TRUE(shortBext.doesDamage);
    EXPECT_EQ("bext-short", shortBext.obstacles.front().code);
}

TEST_F(Forecast, editThatTheFileSaysAlreadyIsNothing)
{
    EditRequest request;
    request.scene = "1";
    const std::string ixml = "<BWFXML><SCENE>1</SCENE></BWFXML>";
    EXPECT_EQ(EditOutcome::Nothing, of(WavBuilder().ixml(ixml).fmt(48000, 1, 24), request).outcome);
}

TEST_F(Forecast, userBitsBehindThoseOfTheIxmlAreInTheDescriptionOnly)
{
    EditRequest request;
    request.ubits = "12345678";
    const std::string ixml = "<BWFXML><UBITS>00000000</UBITS></BWFXML>";
    EXPECT_EQ(EditOutcome::DescriptionOnly, of(WavBuilder().bext({}).ixml(ixml).fmt(48000, 1, 24), request).outcome);
    // The line that stands for them without digital keys is never read back.
    EXPECT_EQ(
        EditOutcome::DescriptionOnly, of(WavBuilder().bext({}).ixml("<BWFXML/>").fmt(48000, 1, 24), request).outcome);
    BextFields digital;
    digital.description = "dSCENE=1\n";
    EXPECT_EQ(EditOutcome::Whole, of(WavBuilder().bext(digital).ixml("<BWFXML/>").fmt(48000, 1, 24), request).outcome);
}

TEST_F(Forecast, trackThatTheFileDoesNotListIsAnObstacle)
{
    const WavBuilder wav = WavBuilder()
                               .bext({})
                               .fmt(48000, 1, 24)
                               .ixml("<BWFXML><SCENE>11</SCENE><TRACK_LIST><TRACK><CHANNEL_INDEX>2</"
                                     "CHANNEL_INDEX><NAME>Boom</NAME></TRACK>"
                                     "</TRACK_LIST></BWFXML>");
    EditRequest request;
    request.tracks = { { 3, "Lav", std::nullopt } };
    EXPECT_EQ(EditOutcome::Refused, of(wav, request).outcome);
    EXPECT_EQ("no-track", of(wav, request).obstacles.front().code);
    request.scene = "2";
    EXPECT_EQ(EditOutcome::Partly, of(wav, request).outcome);
    request.tracks = { { 2, "Lav", std::nullopt } };
    EXPECT_EQ(EditOutcome::Whole, of(wav, request).outcome);
}

// The writer takes the chunk for found, and says yes on a stream that writes nothing.
TEST_F(Forecast, chunkWhoseHeaderIsCutTakesNothingThoughTheWriterSaysYes)
{
    WavBuilder wav = WavBuilder().ixml("<BWFXML><SCENE>1</SCENE></BWFXML>").fmt(48000, 1, 24).bext({});
    wav.truncateTo(wav.payloadOffset("bext") - 2);
    EditRequest request;
    request.scene = "2";
    const EditForecast forecast = of(wav, request);
    EXPECT_EQ(EditOutcome::Refused, forecast.outcome);
    ASSERT_FALSE(forecast.obstacles.empty());
    EXPECT_EQ("bext-cut", forecast.obstacles.front().code);
    EXPECT_TRUE(forecast.writerSucceeds);
    const BwfMetadata wanted = wantedRecord(BwfMetadataReader::readMetadata(path), request).record;
    EXPECT_TRUE(BwfMetadataWriter::writeMetadata(path, wanted));
    EXPECT_EQ(wav.bytes(), readBytes(path));
}

TEST_F(Forecast, fileThatCannotBeWrittenIsRefused)
{
    put(WavBuilder().bext({}).fmt(48000, 1, 24));
    fs::permissions(path, fs::perms(0444));
    fs::permissions(folder.path(), fs::perms(0755));
    EditRequest request;
    request.scene = "2";
    // The administrator may write to every file, so somebody else has to ask.
    constexpr uid_t kNobody = 65534;
    const uid_t user = geteuid();
    ASSERT_TRUE(user != 0 || seteuid(kNobody) == 0);
    const EditForecast forecast = forecastEdit(path, request);
    ASSERT_TRUE(user != 0 || seteuid(user) == 0);
    EXPECT_EQ(EditOutcome::Refused, forecast.outcome);
    ASSERT_FALSE(forecast.obstacles.empty());
    EXPECT_EQ("no-permission", forecast.obstacles.front().code);
}

TEST_F(Forecast, whatIsNoRecordingIsAnError)
{
    EditRequest request;
    request.scene = "2";
    EXPECT_THROW((void)forecastEdit(folder.file("gone.wav"), request), FileError);
    writeBytes(path, "no WAV file");
    EXPECT_THROW((void)forecastEdit(path, request), FileError);
}

} // namespace
