// Makes a handful of recordings as a shoot day leaves them, for a first look at the program: several scenes, mono
// and polyphonic, different rates, one wild track, one circled take. Usage: tagwell_demo_recordings FOLDER

#include <array>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <string>
#include <vector>

namespace {

struct Recording {
    std::string file;
    std::string scene;
    std::string take;
    std::string tape;
    std::string note;
    bool circled;
    bool wildTrack;
    uint32_t rate; // Hz
    uint16_t bits; // 16 or 24
    std::string timecodeRate; // as iXML has it
    uint32_t startSecond; // since midnight
    double seconds; // length
    std::vector<std::string> tracks;
};

const std::vector<std::string> kSingle = { "Boom" };
const std::vector<std::string> kPair = { "Boom", "Plant" };
const std::vector<std::string> kEight = { "Mix L", "Mix R", "Boom", "Anna", "Ben", "Clara", "Plant", "Spare" };

const std::vector<Recording> kDay = {
    { "12A-T1.WAV", "12A", "1", "ROLL07", "Plane overhead", false, false, 48000, 24, "25/1", 33120, 14.0, kEight },
    { "12A-T2.WAV", "12A", "2", "ROLL07", "Good for sound", true, false, 48000, 24, "25/1", 33245, 17.0, kEight },
    { "12B-T1.WAV", "12B", "1", "ROLL07", "Boom only", false, false, 48000, 24, "25/1", 35010, 9.0, kSingle },
    { "12B-T2.WAV", "12B", "2", "ROLL07", "", false, false, 48000, 24, "25/1", 35122, 11.0, kPair },
    { "31-T1.WAV", "31", "1", "ROLL08", "Rain on the roof", false, false, 48000, 24, "24000/1001", 51300, 12.0,
        kEight },
    { "31-T2.WAV", "31", "2", "ROLL08", "", true, false, 48000, 24, "24000/1001", 51422, 10.0, kPair },
    { "WT-Street.WAV", "31", "WT1", "ROLL08", "Street, no traffic", false, true, 96000, 24, "25/1", 54000, 8.0, kPair },
    { "Guide-T1.WAV", "44", "1", "ROLL09", "Camera guide", false, false, 44100, 16, "30000/1001", 61200, 9.0, kPair },
};

void putNumber(std::string& out, uint64_t value, int width)
{
    for (int i = 0; i < width; ++i)
        out += static_cast<char>((value >> (8 * i)) & 0xFF);
}

void putField(std::string& out, std::string text, size_t width)
{
    text.resize(width, '\0');
    out += text;
}

void putChunk(std::string& out, const std::string& id, const std::string& payload)
{
    out += id;
    putNumber(out, payload.size(), 4);
    out += payload;
    if (payload.size() % 2 != 0)
        out += '\0';
}

// Recordings that run at a pulled-down rate count their timestamp in the pulled-up one.
uint32_t timestampRate(const Recording& recording)
{
    const bool pulled = recording.timecodeRate.ends_with("/1001");
    return pulled ? static_cast<uint32_t>(recording.rate * 1.001 + 0.5) : recording.rate;
}

uint64_t timeReference(const Recording& recording)
{
    return uint64_t{ recording.startSecond } * timestampRate(recording);
}

std::string bextPayload(const Recording& recording)
{
    std::string out;
    putField(out, "aSCENE=" + recording.scene + "\naTAKE=" + recording.take + "\naTAPE=" + recording.tape + "\n", 256);
    putField(out, "Tagwell demo", 32);
    putField(out, "", 32);
    putField(out, "2026-05-14", 10);
    putField(out, "09:12:00", 8);
    putNumber(out, timeReference(recording), 8);
    putNumber(out, 1, 2);
    putField(out, "", 64 + 190);
    out += "A=PCM,F=" + std::to_string(recording.rate) + "\r\n";
    return out;
}

std::string element(const std::string& name, const std::string& value)
{
    return "  <" + name + ">" + value + "</" + name + ">\n";
}

std::string trackList(const Recording& recording)
{
    std::string text = "  <TRACK_LIST>\n";
    for (size_t i = 0; i < recording.tracks.size(); ++i) {
        text += "    <TRACK>\n      <CHANNEL_INDEX>" + std::to_string(i + 1) + "</CHANNEL_INDEX>\n      <NAME>"
            + recording.tracks[i] + "</NAME>\n      <FUNCTION></FUNCTION>\n    </TRACK>\n";
    }
    return text + "  </TRACK_LIST>\n";
}

// The start time stands in bext alone: one in the iXML would win over it, and a corrected one would not show.
std::string ixmlPayload(const Recording& recording)
{
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<BWFXML>\n";
    text += element("PROJECT", "The Long Field") + element("SCENE", recording.scene) + element("TAKE", recording.take)
        + element("TAPE", recording.tape) + element("NOTE", recording.note)
        + element("CIRCLED", recording.circled ? "TRUE" : "FALSE") + element("UBITS", "26051400");
    if (recording.wildTrack)
        text += element("WILD_TRACK", "TRUE");
    text += "  <SPEED>\n" + element("TIMECODE_RATE", recording.timecodeRate) + element("TIMECODE_FLAG", "NDF")
        + element("TIMESTAMP_SAMPLE_RATE", std::to_string(timestampRate(recording))) + "  </SPEED>\n";
    text += trackList(recording) + "</BWFXML>\n";
    text.resize(5000, ' ');
    return text;
}

// A phrase-like signal: a tone with a few harmonics, gated in syllables of its own for each track.
double sampleAt(double time, size_t track)
{
    constexpr double kTurn = 2.0 * std::numbers::pi;
    const double base = 110.0 * std::pow(1.26, static_cast<double>(track));
    const double syllable = std::max(0.0, std::sin(kTurn * (1.1 + 0.23 * static_cast<double>(track)) * time));
    const double phrase = 0.55 + 0.45 * std::sin(kTurn * 0.17 * time + static_cast<double>(track));
    const double tone = std::sin(kTurn * base * time) + 0.5 * std::sin(2.0 * kTurn * base * time)
        + 0.25 * std::sin(3.0 * kTurn * base * time);
    return 0.42 * syllable * phrase * tone / 1.75;
}

std::string audioPayload(const Recording& recording)
{
    const auto frames = static_cast<size_t>(recording.seconds * recording.rate);
    const int width = recording.bits / 8;
    const double scale = std::pow(2.0, recording.bits - 1) - 1.0;
    std::string out;
    out.reserve(frames * recording.tracks.size() * static_cast<size_t>(width));
    for (size_t frame = 0; frame < frames; ++frame) {
        const double time = static_cast<double>(frame) / recording.rate;
        for (size_t track = 0; track < recording.tracks.size(); ++track) {
            const auto value = static_cast<int32_t>(std::lround(scale * sampleAt(time, track)));
            putNumber(out, static_cast<uint32_t>(value), width);
        }
    }
    return out;
}

std::string formatPayload(const Recording& recording)
{
    const uint64_t align = recording.tracks.size() * (recording.bits / 8u);
    std::string out;
    putNumber(out, 1, 2);
    putNumber(out, recording.tracks.size(), 2);
    putNumber(out, recording.rate, 4);
    putNumber(out, recording.rate * align, 4);
    putNumber(out, align, 2);
    putNumber(out, recording.bits, 2);
    return out;
}

bool writeRecording(const std::filesystem::path& folder, const Recording& recording)
{
    std::string body = "WAVE";
    putChunk(body, "bext", bextPayload(recording));
    putChunk(body, "iXML", ixmlPayload(recording));
    putChunk(body, "fmt ", formatPayload(recording));
    putChunk(body, "data", audioPayload(recording));
    std::string head = "RIFF";
    putNumber(head, body.size(), 4);
    std::ofstream out(folder / recording.file, std::ios::binary | std::ios::trunc);
    out << head << body;
    out.close();
    return !out.fail();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    const std::filesystem::path folder = argv[1];
    std::error_code failed;
    std::filesystem::create_directories(folder, failed);
    for (const Recording& recording : kDay) {
        if (!writeRecording(folder, recording))
            return 1;
    }
    return 0;
}
