#include "tests/support/PlainReader.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <functional>
#include <limits>
#include <sstream>
#include <stdexcept>

namespace {

constexpr uint32_t kMostTaken = 1u << 17;

uint64_t readNumber(std::istream& stream, int width)
{
    unsigned char bytes[8] = {};
    stream.read(reinterpret_cast<char*>(bytes), width);
    uint64_t value = 0;
    for (int i = 7; i >= 0; --i)
        value = (value << 8) | bytes[i];
    return value;
}

std::string readText(std::istream& stream, size_t size)
{
    std::string text(size, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(size));
    return text;
}

std::string upToNul(const std::string& text)
{
    return text.substr(0, text.find('\0'));
}

// A field that the end of the file cuts is empty.
std::string readField(std::istream& stream, size_t size)
{
    const std::string text = readText(stream, size);
    return stream ? upToNul(text) : std::string();
}

bool openWave(std::ifstream& stream, const std::string& path, std::string& id)
{
    stream.open(path, std::ios::binary);
    if (!stream)
        return false;
    id = readText(stream, 4);
    if (id != "RIFF" && id != "RF64")
        return false;
    readNumber(stream, 4);
    return readText(stream, 4) == "WAVE";
}

void readFileInfo(const std::string& path, BwfMetadata& record)
{
    record.fileName = std::filesystem::path(path).filename().string();
    record.fileSize = std::filesystem::file_size(path);
    std::ifstream stream;
    std::string id;
    const bool wave = openWave(stream, path, id);
    record.isRF64 = id == "RF64";
    if (!wave)
        return;
    uint64_t dataSize = 0;
    uint32_t size = 0;
    uint32_t position = 0;
    if (!record.isRF64) {
        if (PlainReader::findChunk(stream, "data", size, position))
            dataSize = size;
    } else if (PlainReader::findChunk(stream, "ds64", size, position)) {
        stream.seekg(position);
        readNumber(stream, 8);
        dataSize = readNumber(stream, 8);
    }
    if (PlainReader::findChunk(stream, "fmt ", size, position)) {
        stream.seekg(position);
        readNumber(stream, 2);
        record.channels = static_cast<uint16_t>(readNumber(stream, 2));
        record.sampleRate = static_cast<uint32_t>(readNumber(stream, 4));
        readNumber(stream, 4);
        readNumber(stream, 2);
        record.bitsPerSample = static_cast<uint16_t>(readNumber(stream, 2));
    }
    const uint64_t frame = record.bitsPerSample / 8u * record.channels;
    if (dataSize != 0 && frame != 0 && record.sampleRate != 0)
        record.duration = static_cast<double>(dataSize / frame) / record.sampleRate;
}

bool timeOfDay(const std::string& text)
{
    if (text.size() != 8 || text[2] != ':' || text[5] != ':')
        return false;
    return std::count_if(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; }) == 6;
}

std::string hexOf(const std::string& bytes)
{
    std::ostringstream out;
    for (char byte : bytes)
        out << std::hex << ((byte >> 4) & 15) << (byte & 15);
    return out.str();
}

void readBextChunk(const std::string& path, BwfMetadata& record)
{
    std::ifstream stream;
    std::string id;
    uint32_t size = 0;
    uint32_t position = 0;
    if (!openWave(stream, path, id) || !PlainReader::findChunk(stream, "bext", size, position))
        return;
    stream.seekg(position - 8);
    readText(stream, 4);
    readNumber(stream, 4);
    record.description = readField(stream, 256);
    record.originator = readField(stream, 32);
    record.originatorReference = readField(stream, 32);
    record.originationDate = readField(stream, 10);
    record.originationTime = readField(stream, 8);
    if (!timeOfDay(record.originationTime))
        record.originationTime.clear();
    uint64_t time = readNumber(stream, 4);
    time |= readNumber(stream, 4) << 32;
    if (stream && time >= 1 && time <= 20000000000u)
        record.timeReference = time;
    const uint64_t version = readNumber(stream, 2);
    record.bextVersion = stream ? static_cast<uint16_t>(version) : uint16_t{ 0 };
    const std::string umid = readText(stream, 64);
    record.umid = stream ? hexOf(umid) : std::string();
    readText(stream, 190);
    if (size >= 611)
        record.codingHistory = upToNul(readText(stream, std::min(size - 610, kMostTaken)));
}

void readIxmlChunk(const std::string& path, BwfMetadata& record)
{
    std::ifstream stream;
    std::string id;
    uint32_t size = 0;
    uint32_t position = 0;
    if (!openWave(stream, path, id) || !PlainReader::findChunk(stream, "iXML", size, position))
        return;
    stream.seekg(position);
    PlainReader::parseIxml(readText(stream, std::min(size, kMostTaken)), record);
}

std::string trim(const std::string& text)
{
    const size_t begin = text.find_first_not_of(" \t\r\n");
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(" \t\r\n") - begin + 1);
}

std::string folded(std::string text, int (*fold)(int))
{
    for (char& c : text)
        c = static_cast<char>(fold(static_cast<unsigned char>(c)));
    return text;
}

std::string extractTag(const std::string& text, const std::string& name)
{
    const auto find
        = [&text](const std::string& spelling) { return text.find(std::string("<").append(spelling) + ">"); };
    size_t begin = find(name);
    if (begin == std::string::npos)
        begin = find(folded(name, std::tolower));
    if (begin == std::string::npos)
        return "";
    begin += name.size() + 2;
    const size_t end = text.find('<', begin);
    return end == std::string::npos ? "" : trim(text.substr(begin, end - begin));
}

// Does what needs a conversion, and nothing if that fails.
void guarded(const std::function<void()>& assignment)
{
    try {
        assignment();
    } catch (const std::invalid_argument&) {
        return;
    } catch (const std::out_of_range&) {
        return;
    }
}

size_t findEither(const std::string& text, const std::string& one, const std::string& other, size_t from)
{
    const size_t found = text.find(one, from);
    return found != std::string::npos ? found : text.find(other, from);
}

uint32_t pulled(uint32_t rate)
{
    return static_cast<uint32_t>(std::min(rate * 1.001 + 0.5, 4294967295.0));
}

void parseFrameRate(const std::string& value, BwfMetadata& record)
{
    const size_t slash = value.find('/');
    if (slash == std::string::npos) {
        record.frameRate = std::stod(value);
        return;
    }
    const double numerator = std::stod(value.substr(0, slash));
    const double denominator = std::stod(value.substr(slash + 1));
    if (denominator > 0.0)
        record.frameRate = numerator / denominator;
    if (record.timestampSampleRate == 0 && record.sampleRate != 0 && denominator == 1001.0)
        record.timestampSampleRate = pulled(record.sampleRate);
}

void parseSpeed(const std::string& text, BwfMetadata& record)
{
    const size_t begin = findEither(text, "<SPEED>", "<Speed>", 0);
    if (begin == std::string::npos)
        return;
    const size_t end = findEither(text, "</SPEED>", "</Speed>", begin);
    const std::string block = text.substr(begin, end == std::string::npos ? end : end - begin);
    guarded([&] {
        const unsigned long rate = std::stoul(extractTag(block, "TIMESTAMP_SAMPLE_RATE"));
        if (rate != 0 && rate <= 0xFFFFFFFFu)
            record.timestampSampleRate = static_cast<uint32_t>(rate);
    });
    guarded([&] {
        const unsigned long high = std::stoul(extractTag(block, "TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI"));
        const unsigned long low = std::stoul(extractTag(block, "TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO"));
        if ((low | (high << 32)) < 20000000001u)
            record.timeReference = low | (high << 32);
    });
    guarded([&] { parseFrameRate(extractTag(block, "TIMECODE_RATE"), record); });
    const std::string flag = extractTag(block, "TIMECODE_FLAG");
    if (!flag.empty())
        record.dropFrame = flag == "DF" || flag == "df";
}

void parseBext(const std::string& text, BwfMetadata& record)
{
    const size_t begin = findEither(text, "<BEXT>", "<Bext>", 0);
    if (begin == std::string::npos)
        return;
    const size_t end = findEither(text, "</BEXT>", "</Bext>", begin);
    if (end == std::string::npos)
        return;
    const std::string block = text.substr(begin, end - begin);
    std::string time = extractTag(block, "BWF_ORIGINATION_TIME");
    std::replace(time.begin(), time.end(), '-', ':');
    if (record.originationTime.empty())
        record.originationTime = time;
    guarded([&] {
        const std::string high = extractTag(block, "BWF_TIME_REFERENCE_HIGH");
        const uint64_t highPart = high.empty() ? 0 : std::stoul(high) << 32;
        const uint64_t value = std::stoul(extractTag(block, "BWF_TIME_REFERENCE_LOW")) | highPart;
        if (value >= 1 && value <= 20000000000u)
            record.timeReference = value;
    });
}

void parseProduction(const std::string& text, BwfMetadata& record)
{
    const auto take = [&text](const char* name, std::string& field) {
        const std::string value = extractTag(text, name);
        if (!value.empty())
            field = value;
    };
    take("SCENE", record.scene);
    take("PROJECT", record.project);
    take("TAPE", record.tape);
    take("TAKE", record.take);
    take("NOTE", record.note);
    const auto flag = [&text](const char* name, bool& field) {
        const std::string value = folded(extractTag(text, name), std::toupper);
        if (!value.empty())
            field = value == "TRUE" || value == "1";
    };
    flag("CIRCLED", record.circled);
    flag("WILD_TRACK", record.wildTrack);
}

void parseTracks(const std::string& text, BwfMetadata& record)
{
    const size_t begin = findEither(text, "<TRACK_LIST>", "<TrackList>", 0);
    if (begin == std::string::npos)
        return;
    const size_t end = findEither(text, "</TRACK_LIST>", "</TrackList>", begin);
    if (end == std::string::npos)
        return;
    size_t from = begin;
    for (int32_t counter = 1;; ++counter) {
        const size_t track = text.find("<TRACK>", from);
        if (track == std::string::npos || track >= end)
            return;
        const std::string part = text.substr(track, end - track);
        BwfTrack entry{ counter, extractTag(part, "NAME"), extractTag(part, "FUNCTION") };
        guarded([&] { entry.channelIndex = std::stoi(extractTag(part, "CHANNEL_INDEX")); });
        record.tracks.push_back(entry);
        const size_t close = text.find("</TRACK>", track);
        if (close == std::string::npos)
            return;
        from = close + 8;
    }
}

void fallBack(BwfMetadata& record)
{
    if (record.description.empty())
        return;
    const CantarMetadata said = PlainReader::parseDescription(record.description);
    const auto fill = [](std::string& field, const std::string& value) { field = field.empty() ? value : field; };
    fill(record.scene, said.scene);
    fill(record.tape, said.tape);
    fill(record.take, said.take);
    fill(record.note, said.note);
    fill(record.ubits, said.ubits);
    if (record.frameRate == 0.0)
        guarded([&] { record.frameRate = std::stod(said.frameRate); });
    if (record.tracks.empty()) {
        for (const auto& [index, name] : said.trackNames.named())
            record.tracks.push_back({ static_cast<int32_t>(index) + 1, name, "" });
    }
    if (!said.digitalKeys || record.sampleRate == 0 || record.timestampSampleRate != 0 || !(record.frameRate > 0.0))
        return;
    const auto near = [&record](double rate) { return std::abs(record.frameRate - rate) < 0.001; };
    const bool slow = near(23.976) || near(29.97) || near(59.94);
    record.timestampSampleRate = slow ? pulled(record.sampleRate) : record.sampleRate;
}

void parseField(const std::string& raw, CantarMetadata& record)
{
    const std::string line = trim(raw);
    const size_t equals = line.find('=');
    if (equals == std::string::npos)
        return;
    const std::string key = folded(trim(line.substr(0, equals)), std::toupper);
    std::string value = trim(line.substr(equals + 1));
    if (key == "TS" || key == "DUBITS") {
        record.ubits = value;
        record.digitalKeys = true;
    } else if (key == "DSCENE" || key == "ASCENE" || key == "SCENE") {
        record.scene = value;
        record.digitalKeys = record.digitalKeys || key == "DSCENE";
    } else if (key == "DTAKE" || key == "ATAKE" || key == "TAKE") {
        record.take = value;
    } else if (key == "DTAPE" || key == "ATAPE" || key == "TAPE") {
        record.tape = value;
    } else if (key == "DFRAMERATE" || key == "ASPEED" || key == "SPEED") {
        if (value.size() >= 2 && value.substr(value.size() - 2) == "FF")
            value.resize(value.size() - 2);
        record.frameRate = value.substr(0, value.find('-'));
    } else if (key == "ATAG" || key == "TAG") {
        record.tag = value;
    } else if (key == "ANOTE" || key == "NOTE") {
        record.note = value;
    } else {
        const size_t prefix = key.rfind("TRK", 0) == 0               ? 3
            : key.rfind("ATRK", 0) == 0 || key.rfind("DTRK", 0) == 0 ? 4
                                                                     : 0;
        if (prefix == 0 || value.empty())
            return;
        guarded([&] {
            const int number = std::stoi(key.substr(prefix));
            if (number > 0)
                record.trackNames.set(static_cast<size_t>(number) - 1, value);
        });
    }
}

} // namespace

namespace PlainReader {

BwfMetadata readMetadata(const std::string& path)
{
    BwfMetadata record;
    readFileInfo(path, record);
    readBextChunk(path, record);
    readIxmlChunk(path, record);
    return record;
}

void parseIxml(const std::string& text, BwfMetadata& record)
{
    parseSpeed(text, record);
    const std::string ubits = extractTag(text, "UBITS");
    if (!ubits.empty())
        record.ubits = (ubits[0] == '$' ? std::string() : std::string(1, '$')).append(ubits);
    parseBext(text, record);
    parseProduction(text, record);
    parseTracks(text, record);
    fallBack(record);
}

CantarMetadata parseDescription(const std::string& text)
{
    CantarMetadata record;
    std::istringstream lines(text);
    std::string line;
    while (std::getline(lines, line, '\n'))
        parseField(line, record);
    return record;
}

bool findChunk(std::istream& stream, const std::string& id, uint32_t& size, uint32_t& position)
{
    stream.seekg(12);
    if (!stream)
        return false;
    do {
        const std::string found = readText(stream, 4);
        if (!stream)
            return false;
        const auto bytes = static_cast<uint32_t>(readNumber(stream, 4));
        if (found == id) {
            size = bytes;
            position = static_cast<uint32_t>(static_cast<std::streamoff>(stream.tellg()));
            return true;
        }
        const uint32_t step = bytes + bytes % 2;
        stream.seekg(step, std::ios::cur);
    } while (stream);
    return false;
}

} // namespace PlainReader

std::string recordText(const BwfMetadata& record)
{
    std::ostringstream out;
    out.precision(std::numeric_limits<double>::max_digits10);
    out << "sampleRate " << record.sampleRate << "\nchannels " << record.channels << "\nbitsPerSample "
        << record.bitsPerSample << "\ntimeReference " << record.timeReference << "\ntimestampSampleRate "
        << record.timestampSampleRate << "\nframeRate " << record.frameRate << "\ndropFrame " << record.dropFrame
        << "\nisRF64 " << record.isRF64 << "\ndescription " << record.description << "\noriginator "
        << record.originator << "\noriginatorReference " << record.originatorReference << "\noriginationDate "
        << record.originationDate << "\noriginationTime " << record.originationTime << "\nbextVersion "
        << record.bextVersion << "\numid " << record.umid << "\ncodingHistory " << record.codingHistory << "\nubits "
        << record.ubits << "\ncircled " << record.circled << "\nwildTrack " << record.wildTrack << "\nscene "
        << record.scene << "\nproject " << record.project << "\ntape " << record.tape << "\ntake " << record.take
        << "\nnote " << record.note << "\nduration " << record.duration << "\nfileName " << record.fileName
        << "\nfileSize " << record.fileSize << "\n";
    for (const BwfTrack& track : record.tracks)
        out << "track " << track.channelIndex << " " << track.name << " / " << track.function << "\n";
    return out.str();
}

std::string recordText(const CantarMetadata& record)
{
    std::ostringstream out;
    out << "ubits " << record.ubits << "\nscene " << record.scene << "\ntake " << record.take << "\ntape "
        << record.tape << "\nframeRate " << record.frameRate << "\ntag " << record.tag << "\nnote " << record.note
        << "\ndigitalKeys " << record.digitalKeys << "\ntracks " << record.trackNames.size() << "\n";
    for (const auto& [index, name] : record.trackNames.named())
        out << index << " " << name << "\n";
    return out.str();
}
