#include "tests/cli/CliRun.h"

#include "cli/DumpFields.h"
#include "core/BwfMetadataReader.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace {

namespace fs = std::filesystem;

std::string element(const std::string& tag, const std::string& value)
{
    return "<" + tag + ">" + value + "</" + tag + ">";
}

std::string speed(const std::string& rate, const std::string& flag, uint64_t samples, const std::string& sampleRate)
{
    std::string text = element("TIMECODE_RATE", rate) + element("TIMECODE_FLAG", flag)
        + element("TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI", "0")
        + element("TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO", std::to_string(samples));
    if (!sampleRate.empty())
        text += element("TIMESTAMP_SAMPLE_RATE", sampleRate);
    return element("SPEED", text);
}

std::string ixml(const std::string& inside)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>" + element("BWFXML", inside);
}

/// The rows of a CSV text as RFC 4180 has it, without regard to how the program writes it.
std::vector<std::vector<std::string>> rowsOf(const std::string& csv)
{
    std::vector<std::vector<std::string>> rows(1, { "" });
    bool quoted = false;
    for (size_t i = 0; i < csv.size(); ++i) {
        std::string& cell = rows.back().back();
        if (quoted && csv[i] == '"' && i + 1 < csv.size() && csv[i + 1] == '"')
            cell += csv[++i];
        else if (csv[i] == '"')
            quoted = !quoted;
        else if (!quoted && csv[i] == ',')
            rows.back().emplace_back();
        else if (!quoted && csv.compare(i, 2, "\r\n") == 0) {
            rows.push_back({ "" });
            ++i;
        } else
            cell += csv[i];
    }
    rows.pop_back(); // What stands behind the last line end.
    return rows;
}

class Dump : public testing::Test {
protected:
    static QJsonObject object(const std::string& line)
    {
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(line), &error);
        EXPECT_EQ(QJsonParseError::NoError, error.error) << line;
        return document.object();
    }

    static std::vector<QJsonObject> objects(const CliResult& result)
    {
        std::vector<QJsonObject> found;
        std::istringstream lines(result.out);
        for (std::string line; std::getline(lines, line);)
            found.push_back(object(line));
        return found;
    }

    QJsonObject json(const WavBuilder& wav, std::vector<std::string> options = {})
    {
        wav.write(path);
        options.insert(options.begin(), { "dump", "--json", path });
        return objects(runCli(options)).at(0);
    }

    std::string text(const QJsonValue& value) { return value.toString().toStdString(); }

    /// The cell of the one file of a CSV dump.
    std::string cell(const std::string& column)
    {
        const auto rows = rowsOf(runCli({ "dump", "--csv", path }).out);
        const auto at = std::find(rows.at(0).begin(), rows.at(0).end(), column);
        return at == rows[0].end() ? "no such column" : rows.at(1).at(static_cast<size_t>(at - rows[0].begin()));
    }

    TempFolder folder;
    std::string path = folder.file("A.WAV");
};

TEST_F(Dump, textThatLooksLikeANumberStaysText)
{
    const QJsonObject file
        = json(WavBuilder()
                   .ixml(ixml(element("SCENE", "12") + element("TAKE", "01") + element("UBITS", "00000000")))
                   .fmt(48000, 2, 24)
                   .dataFrames(10));
    EXPECT_EQ(QJsonValue("12"), file["scene"]);
    EXPECT_EQ(QJsonValue("01"), file["take"]);
    EXPECT_EQ(QJsonValue("$00000000"), file["ubits"]);
    EXPECT_EQ(QJsonValue(1), file["schema_version"]);
}

TEST_F(Dump, numbersAreNumbersAndMissingOnesAreNull)
{
    const QJsonObject file = json(WavBuilder().fmt(48000, 2, 24).dataFrames(10));
    EXPECT_EQ(QJsonValue(48000), file["sample_rate"]);
    EXPECT_EQ(QJsonValue(6), file["block_align"]);
    EXPECT_EQ(QJsonValue(10), file["frame_count"]);
    EXPECT_EQ(QJsonValue(60), file["data_bytes"]);
    EXPECT_EQ(QJsonValue(44), file["data_offset"]);
    EXPECT_EQ(QJsonValue("riff"), file["container"]);
    for (const char* name : { "frame_rate", "timecode_rate", "timecode_start", "timecode_end", "timecode_nominal" })
        EXPECT_TRUE(file[name].isNull()) << name;
    EXPECT_EQ(QJsonValue(""), file["scene"]);
}

TEST_F(Dump, startComesAsSamplesAsExactTimecodeAndAsTheWindowShowsIt)
{
    const QJsonObject file = json(WavBuilder()
                                      .ixml(ixml(speed("24000/1001", "NDF", 2190940753, "48000")))
                                      .fmt(48000, 2, 24)
                                      .data(std::string(1441434, '\1')));
    EXPECT_EQ(QJsonValue(2190940753.0), file["timestamp_samples"]);
    EXPECT_EQ(QJsonValue("24000/1001"), file["timecode_rate"]);
    EXPECT_EQ(QJsonValue(23.976), file["frame_rate"]);
    EXPECT_EQ(QJsonValue("12:39:59:00"), file["timecode_start"]);
    EXPECT_EQ(QJsonValue("12:40:04:00"), file["timecode_end"]);
    EXPECT_EQ(QJsonValue("12:40:44:14"), file["timecode_nominal"]);
}

TEST_F(Dump, rateThatTheReaderDerivesIsNotUsedForExactTimecode)
{
    const uint64_t hour = 48000ull * 3600 * 1001 / 1000;
    const QJsonObject derived
        = json(WavBuilder().ixml(ixml(speed("24000/1001", "NDF", hour, ""))).fmt(48000, 1, 24).dataFrames(10));
    EXPECT_EQ(QJsonValue("01:00:00:00"), derived["timecode_start"]);
    EXPECT_EQ(QJsonValue(48000), derived["timestamp_sample_rate"]);
    const uint64_t pulled = 48048ull * 3600 * 1001 / 1000;
    const QJsonObject stated
        = json(WavBuilder().ixml(ixml(speed("24000/1001", "NDF", pulled, "48048"))).fmt(48000, 1, 24).dataFrames(10));
    EXPECT_EQ(QJsonValue(48048), stated["timestamp_sample_rate"]);
    EXPECT_EQ("01:00:00:0", text(stated["timecode_start"]).substr(0, 10));
}

TEST_F(Dump, dropFrameIsCountedAndMarked)
{
    const uint64_t minute = 1800 * 8008 / 5; // Frame 1800 at 1601.6 samples each.
    const QJsonObject file
        = json(WavBuilder().ixml(ixml(speed("30000/1001", "DF", minute, "48000"))).fmt(48000, 1, 24).dataFrames(10));
    EXPECT_EQ(QJsonValue("00:01:00;02"), file["timecode_start"]);
    EXPECT_EQ(QJsonValue(true), file["drop_frame"]);
}

TEST_F(Dump, midnightIsATimeWhereTheFileHasABext)
{
    const WavBuilder wav = WavBuilder().ixml(ixml(speed("25/1", "NDF", 0, "48000"))).fmt(48000, 1, 24).dataFrames(9);
    EXPECT_EQ(QJsonValue("00:00:00:00"), json(WavBuilder(wav).bext({}))["timecode_start"]);
    EXPECT_TRUE(json(wav)["timecode_start"].isNull());
}

TEST_F(Dump, tracksAreAList)
{
    const std::string tracks
        = element("TRACK", element("CHANNEL_INDEX", "3") + element("NAME", "Bo|om") + element("FUNCTION", "L-MIX"))
        + element("TRACK", element("CHANNEL_INDEX", "4") + element("NAME", "Lav"));
    const QJsonObject file
        = json(WavBuilder().ixml(ixml(element("TRACK_LIST", tracks))).fmt(48000, 2, 24).dataFrames(1));
    const QJsonArray list = file["tracks"].toArray();
    ASSERT_EQ(2, list.size());
    EXPECT_EQ(QJsonValue(3), list[0].toObject()["channel_index"]);
    EXPECT_EQ(QJsonValue("Bo|om"), list[0].toObject()["name"]);
    EXPECT_EQ(QJsonValue("L-MIX"), list[0].toObject()["function"]);
    EXPECT_EQ("3=Bo\\|om/L-MIX|4=Lav", cell("tracks"));
}

TEST_F(Dump, bytesThatAreNoUtf8BecomeReplacementsAndAreTold)
{
    const QJsonObject odd = json(WavBuilder()
                                     .ixml(ixml(element("SCENE", "Caf\xE9") + element("NOTE", "na\xC3\xAFve")))
                                     .fmt(48000, 1, 24)
                                     .data("x"));
    EXPECT_EQ(QString("Caf\uFFFD"), odd["scene"].toString());
    EXPECT_EQ(QString("na\u00EFve"), odd["note"].toString());
    EXPECT_EQ(QJsonValue(true), odd["not_utf8"]);
    EXPECT_EQ("Caf\xE9", cell("scene"));
    EXPECT_EQ("yes", cell("not_utf8"));
    const QJsonObject clean
        = json(WavBuilder().ixml(ixml(element("NOTE", "na\xC3\xAFve"))).fmt(48000, 1, 24).data("x"));
    EXPECT_EQ(QJsonValue(false), clean["not_utf8"]);
}

TEST_F(Dump, failedFilesHaveAnObjectAndARowToo)
{
    WavBuilder().fmt(48000, 1, 24).dataFrames(5).write(path);
    const std::string gone = folder.file("gone, \"far\".wav");
    const CliResult lines = runCli({ "dump", "--json", gone, path });
    EXPECT_EQ(Exit::Found, lines.exit);
    const auto found = objects(lines);
    ASSERT_EQ(2u, found.size());
    EXPECT_EQ(gone, text(found[0]["path"]));
    EXPECT_EQ("not-found", text(found[0]["error"].toObject()["code"]));
    EXPECT_FALSE(found[1].contains("error"));

    const auto rows = rowsOf(runCli({ "dump", "--csv", gone, path }).out);
    ASSERT_EQ(3u, rows.size());
    for (const auto& row : rows)
        EXPECT_EQ(rows[0].size(), row.size());
    EXPECT_EQ("error", rows[0].back());
    EXPECT_EQ(gone, rows[1].front());
    EXPECT_EQ("not-found", rows[1].back());
    EXPECT_EQ("", rows[2].back());
}

TEST_F(Dump, csvHasTheNamesOfTheJson)
{
    const QJsonObject file = json(WavBuilder().fmt(48000, 1, 24).dataFrames(5), { "--chunks" });
    const auto rows = rowsOf(runCli({ "dump", "--csv", "--chunks", path }).out);
    for (const std::string& name : rows.at(0)) {
        if (name == "error")
            continue;
        const auto point = name.find('.');
        const QJsonObject group = point == std::string::npos ? file : file["bext"].toObject();
        EXPECT_TRUE(group.contains(QString::fromStdString(name.substr(point == std::string::npos ? 0 : point + 1))))
            << name;
    }
}

TEST_F(Dump, csvCellsKeepLineEndsQuotesAndCommas)
{
    const std::string note = "one, \"two\"\r\nthree";
    WavBuilder().ixml(ixml(element("NOTE", note))).fmt(48000, 1, 24).dataFrames(5).write(path);
    EXPECT_EQ(note, cell("note"));
}

TEST_F(Dump, chunksBehindTheAudioOfRf64AreListed)
{
    const WavBuilder wav = WavBuilder::rf64()
                               .ds64(6)
                               .fmt(48000, 1, 24)
                               .data("123456")
                               .claimSize("data", 0xFFFFFFFF)
                               .ixmlPadded("<BWFXML></BWFXML>", 100, ' ');
    const QJsonArray chunks = json(wav, { "--chunks" })["chunks"].toArray();
    ASSERT_EQ(4, chunks.size());
    EXPECT_EQ(QJsonValue("data"), chunks[2].toObject()["id"]);
    EXPECT_EQ(QJsonValue(6), chunks[2].toObject()["size"]);
    EXPECT_EQ(QJsonValue("iXML"), chunks[3].toObject()["id"]);
    EXPECT_EQ(QJsonValue(86), chunks[3].toObject()["offset"]);
    EXPECT_EQ(QJsonValue(83), chunks[3].toObject()["free_bytes"]);
    EXPECT_FALSE(json(wav).contains("chunks"));
}

TEST_F(Dump, freeBytesEndAtTheLastTag)
{
    const auto freeBytes = [this](const std::string& payload) {
        WavBuilder().fmt(48000, 1, 24).ixml(payload).write(path);
        return freeBytesOf(path, *readFileFacts(path).chunks.find("iXML"));
    };
    EXPECT_EQ(0u, freeBytes("<a/>"));
    EXPECT_EQ(4u, freeBytes(std::string("<a/>\r\n \0", 8)));
    EXPECT_EQ(0u, freeBytes("<a/>x   "));
    EXPECT_EQ(0u, freeBytes("      "));
    EXPECT_EQ(200000u, freeBytes("<a/>" + std::string(200000, ' ')));
}

TEST_F(Dump, textLinesUpAndShowsControlCharactersAsEscapes)
{
    WavBuilder()
        .ixml(ixml(element("SCENE", "\x1B[31mred") + element("NOTE", "one\r\ntwo")))
        .fmt(48000, 1, 24)
        .data("x")
        .write(path);
    const std::string out = runCli({ "dump", path }).out;
    EXPECT_NE(std::string::npos, out.find("\n  scene                       \\x1b[31mred\n"));
    EXPECT_NE(std::string::npos, out.find("\n  note                        one\n                              two\n"))
        << out;
}

TEST_F(Dump, numbersDoNotDependOnTheLocale)
{
    WavBuilder()
        .ixml(ixml(speed("24000/1001", "NDF", 2190940753, "48000")))
        .fmt(48000, 2, 24)
        .dataFrames(100001)
        .write(path);
    const std::vector<std::string> forms[]
        = { { "dump", "--json", "--chunks", path }, { "dump", "--csv", path }, { "dump", path } };
    std::vector<std::string> before;
    for (const auto& arguments : forms)
        before.push_back(runCli(arguments).out);
    const CommaLocale german;
    if (!german.works())
        GTEST_SKIP() << "no comma locale on this machine";
    for (size_t i = 0; i < before.size(); ++i)
        EXPECT_EQ(before[i], runCli(forms[i]).out);
}

TEST_F(Dump, fileThatVanishesMeanwhileIsOneErrorAndTheRestGoesOn)
{
    const std::string last = folder.file("B.WAV");
    WavBuilder().fmt(48000, 1, 24).dataFrames(5).write(path);
    WavBuilder().fmt(48000, 1, 24).dataFrames(5).write(last);
    const CliResult result = runCli({ "dump", "--json", folder.path().string() }, { .beforeFile = [this](int number) {
        if (number == 0)
            fs::remove(path);
    } });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("tagwell-cli: " + path + ": there is no such file\n", result.err);
    EXPECT_EQ(2u, objects(result).size());
}

TEST_F(Dump, whatIsNoRecordingIsRefusedInPlainWords)
{
    const std::string notes = folder.file("notes.wav");
    writeBytes(notes, "these are notes");
    EXPECT_EQ("tagwell-cli: " + notes + ": it is no WAV file\n", runCli({ "dump", notes }).err);
    EXPECT_EQ("tagwell-cli: /dev/zero: it is no file\n", runCli({ "dump", "/dev/zero" }).err);
    EXPECT_EQ("tagwell-cli: " + notes + "/x.wav: there is no such file\n", runCli({ "dump", notes + "/x.wav" }).err);
}

TEST_F(Dump, readOnlyFileIsReadAndStaysAsItIs)
{
    WavBuilder().fmt(48000, 1, 24).dataFrames(5).write(path);
    fs::permissions(path, fs::perms::owner_read);
    const std::string before = readBytes(path);
    const auto time = fs::last_write_time(path);
    EXPECT_EQ(Exit::Ok, runCli({ "dump", path }).exit);
    EXPECT_EQ(before, readBytes(path));
    EXPECT_EQ(time, fs::last_write_time(path));
}

TEST_F(Dump, hostileFilesGiveALineEachInEveryForm)
{
    const WavBuilder whole = WavBuilder().bext({}).ixml(ixml(element("SCENE", "1"))).fmt(48000, 2, 24).dataFrames(3);
    std::vector<std::string> contents;
    for (size_t size = 0; size < whole.bytes().size(); size += 7)
        contents.push_back(WavBuilder(whole).truncateTo(size).bytes());
    for (const char* id : { "bext", "iXML", "fmt ", "data" }) {
        for (const uint32_t size : { 0u, 1u, 0x7FFFFFFFu, 0xFFFFFFFEu, 0xFFFFFFFFu })
            contents.push_back(WavBuilder(whole).claimSize(id, size).bytes());
    }
    for (const uint64_t size : { uint64_t{ 0 }, ~uint64_t{ 0 }, uint64_t{ 1 } << 63 })
        contents.push_back(
            WavBuilder::rf64().ds64(size).fmt(1, 65535, 65535).data("x").claimSize("data", 0xFFFFFFFF).bytes());
    contents.push_back(WavBuilder().fmt(0, 0, 0).data("x").bytes());
    contents.push_back(
        WavBuilder().ixml(ixml(speed("1/0", "DF", ~uint64_t{ 0 }, "4294967295"))).fmt(1, 1, 8).data("x").bytes());
    for (size_t i = 0; i < contents.size(); ++i)
        writeBytes(folder.file("hostile" + std::to_string(i) + ".wav"), contents[i]);

    const std::string all = folder.path().string();
    EXPECT_EQ(contents.size(), objects(runCli({ "dump", "--json", "--chunks", all })).size());
    EXPECT_EQ(contents.size() + 1, rowsOf(runCli({ "dump", "--csv", "--chunks", all }).out).size());
    EXPECT_NE(Exit::Usage, runCli({ "dump", "--chunks", all }).exit);
    EXPECT_NE(Exit::Usage, runCli({ "verify", all }).exit);
}

TEST_F(Dump, recordingsReadAsTheReaderReadsThem)
{
    const char* recordings = std::getenv("TAGWELL_RECORDINGS");
    if (!recordings)
        GTEST_SKIP() << "TAGWELL_RECORDINGS is not set";
    const CliResult result = runCli({ "dump", "--json", recordings });
    EXPECT_EQ(Exit::Ok, result.exit) << result.err;
    const auto files = objects(result);
    ASSERT_EQ(7u, files.size());
    for (const QJsonObject& file : files) {
        const BwfMetadata record = BwfMetadataReader::readMetadata(text(file["path"]));
        EXPECT_EQ(record.scene, text(file["scene"]));
        EXPECT_EQ(record.take, text(file["take"]));
        EXPECT_EQ(record.description, text(file["bext"].toObject()["description"]));
        EXPECT_EQ(static_cast<double>(record.timeReference), file["timestamp_samples"].toDouble());
        EXPECT_EQ(static_cast<qsizetype>(record.tracks.size()), file["tracks"].toArray().size());
        EXPECT_EQ(nominalLabel(record), text(file["timecode_nominal"]));
    }
    EXPECT_EQ("12:39:59:00", text(files[0]["timecode_start"]));
}

} // namespace
