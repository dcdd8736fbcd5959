#include "app/settings/ConfigManager.h"

#include "app/settings/ReplacementFile.h"

#include <fcntl.h>
#include <locale.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>

namespace {

constexpr char kFolderUnderHome[] = "/.config/Vorlund";
constexpr char kFileName[] = "/config.ini";
constexpr char kHeader[] = "# Vorlund Configuration\n\n";
constexpr char kBlanks[] = " \t";

constexpr mode_t kFolderMode = 0755;

constexpr char kDriverKey[] = "audio.driver";
constexpr char kSampleRateKey[] = "audio.samplerate";
constexpr char kBufferSizeKey[] = "audio.buffersize";
constexpr char kFormatKey[] = "media.format";
constexpr char kBitDepthKey[] = "media.bitdepth";
constexpr char kRecordingKey[] = "recording.directory";

constexpr std::pair<const char*, const char*> kDefaults[] = {
    { kDriverKey, "" },
    { kSampleRateKey, "48000" },
    { kBufferSizeKey, "256" },
    { kFormatKey, "0" },
    { kBitDepthKey, "24" },
    { kRecordingKey, "" },
};

// The calling thread reads and writes numbers in the C locale while this lives. The process's own locale is the
// user's, where a decimal comma would turn 1.5 into 1. core/NumberText does it for what stands in recordings; settings
// stand on no other folder, so they have this of their own.
class PlainNumbers {
public:
    PlainNumbers()
    {
        static const locale_t plain = newlocale(LC_ALL_MASK, "C", locale_t{});
        previous = uselocale(plain);
    }
    ~PlainNumbers() { uselocale(previous); }
    PlainNumbers(const PlainNumbers&) = delete;
    PlainNumbers& operator=(const PlainNumbers&) = delete;

private:
    locale_t previous;
};

// What `parse` makes of the value; `fallback` without one, and where it is no number or one out of range.
template <typename Number, typename Parse> Number numberOr(Number fallback, const std::string* value, Parse parse)
{
    if (!value)
        return fallback;
    const PlainNumbers plain;
    try {
        return parse(*value);
    } catch (const std::logic_error&) {
        return fallback;
    }
}

std::string directoryUnderHome()
{
    const char* home = std::getenv("HOME");
    return home ? home + std::string(kFolderUnderHome) : std::string();
}

bool isComment(const std::string& line)
{
    return line.empty() || line[0] == '#' || line[0] == ';';
}

// Takes one line of a settings file apart and keeps it in `target`; comments and lines without "=" leave no trace.
void parseLine(const std::string& line, std::map<std::string, std::string>& target)
{
    if (isComment(line))
        return;
    const size_t equals = line.find('=');
    if (equals == std::string::npos)
        return;
    const size_t keyEnd = line.substr(0, equals).find_last_not_of(kBlanks) + 1; // npos + 1 is 0: an empty key.
    const size_t valueStart = line.find_first_not_of(kBlanks, equals + 1);
    target[line.substr(0, keyEnd)] = valueStart == std::string::npos ? std::string() : line.substr(valueStart);
}

// Makes the folder of `target` and all folders above it. Failures show when the file itself can't be opened.
void makeFolders(const std::string& target)
{
    const size_t folderEnd = target.rfind('/');
    if (folderEnd == std::string::npos)
        return;
    const std::string folder = target.substr(0, folderEnd);
    for (size_t slash = folder.find('/'); slash != std::string::npos; slash = folder.find('/', slash + 1))
        mkdir(folder.substr(0, slash + 1).c_str(), kFolderMode);
    mkdir(folder.c_str(), kFolderMode);
}

} // namespace

ConfigManager& ConfigManager::getInstance()
{
    static ConfigManager instance;
    return instance;
}

ConfigManager::ConfigManager()
{
    const std::string directory = directoryUnderHome();
    if (!directory.empty())
        configPath = directory + kFileName;
    for (const auto& [key, value] : kDefaults)
        entries[key] = value;
}

ConfigManager::~ConfigManager()
{
    // Nobody is left who could be told, and a process that ends well must not be aborted here for want of memory.
    try {
        (void)saveConfig({});
        (void)flushConfig();
    } catch (...) {
    }
}

bool ConfigManager::loadConfig(const std::string& path)
{
    const std::lock_guard lock(mutex);
    const std::string& source = path.empty() ? configPath : path;
    std::error_code unreadable;
    const std::filesystem::file_status status = std::filesystem::status(source, unreadable);
    if (status.type() == std::filesystem::file_type::not_found)
        return false;
    // It counts as unread until the last line is in, whatever puts an end to this before.
    unread.insert(source);
    // A pipe or a device of that name could keep the program waiting or never end.
    if (!std::filesystem::is_regular_file(status))
        return false;
    std::ifstream in(source, std::ios::binary);
    if (!in)
        return false;

    std::map<std::string, std::string> loaded;
    for (std::string line; std::getline(in, line);)
        parseLine(line, loaded);
    if (in.bad())
        return false;

    loaded.merge(entries); // Adds what the file lacks.
    entries.swap(loaded);
    dirty = false;
    unread.erase(source);
    return true;
}

bool ConfigManager::saveConfig(const std::string& path)
{
    const std::lock_guard lock(mutex);
    return save(path, true);
}

bool ConfigManager::saveConfigUnflushed()
{
    const std::lock_guard lock(mutex);
    return save({}, false);
}

bool ConfigManager::flushConfig()
{
    const std::lock_guard lock(mutex);
    if (!unflushed)
        return true;
    const int file = open(configPath.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return false;
    unflushed = !flushToDisk(file);
    close(file);
    return !unflushed;
}

void ConfigManager::setString(const std::string& key, const std::string& value)
{
    store(key, value);
}

std::string ConfigManager::getString(const std::string& key, const std::string& defaultValue) const
{
    const std::lock_guard lock(mutex);
    const std::string* value = find(key);
    return value ? *value : defaultValue;
}

void ConfigManager::setInt(const std::string& key, int value)
{
    store(key, std::to_string(value));
}

int ConfigManager::getInt(const std::string& key, int defaultValue) const
{
    const std::lock_guard lock(mutex);
    return numberOr(defaultValue, find(key), [](const std::string& text) { return std::stoi(text); });
}

void ConfigManager::setFloat(const std::string& key, float value)
{
    constexpr size_t kLongest = 64; // The greatest float has 39 digits before the point.
    char text[kLongest];
    const PlainNumbers plain;
    std::snprintf(text, sizeof text, "%.6f", static_cast<double>(value));
    store(key, text);
}

float ConfigManager::getFloat(const std::string& key, float defaultValue) const
{
    const std::lock_guard lock(mutex);
    return numberOr(defaultValue, find(key), [](const std::string& text) { return std::stof(text); });
}

void ConfigManager::setBool(const std::string& key, bool value)
{
    store(key, value ? "true" : "false");
}

bool ConfigManager::getBool(const std::string& key, bool defaultValue) const
{
    const std::lock_guard lock(mutex);
    const std::string* value = find(key);
    if (!value)
        return defaultValue;
    return *value == "true" || *value == "1" || *value == "yes";
}

std::string ConfigManager::getConfigDirectory() const
{
    const std::lock_guard lock(mutex);
    return directoryUnderHome();
}

std::string ConfigManager::getConfigPath() const
{
    const std::lock_guard lock(mutex);
    return configPath;
}

std::string ConfigManager::getAsioDriverName() const
{
    return getString(kDriverKey, {});
}
void ConfigManager::setAsioDriverName(const std::string& name)
{
    setString(kDriverKey, name);
}

int ConfigManager::getSampleRate() const
{
    return getInt(kSampleRateKey, 48000);
}
void ConfigManager::setSampleRate(int rate)
{
    setInt(kSampleRateKey, rate);
}

int ConfigManager::getBufferSize() const
{
    return getInt(kBufferSizeKey, 256);
}
void ConfigManager::setBufferSize(int frames)
{
    setInt(kBufferSizeKey, frames);
}

int ConfigManager::getMediaFormat() const
{
    return getInt(kFormatKey, 0);
}
int ConfigManager::getMediaBitDepth() const
{
    return getInt(kBitDepthKey, 24);
}
void ConfigManager::setMediaFormat(int format, int bitDepth)
{
    setInt(kFormatKey, format);
    setInt(kBitDepthKey, bitDepth);
}

std::string ConfigManager::getRecordingDirectory() const
{
    return getString(kRecordingKey, {});
}
void ConfigManager::setRecordingDirectory(const std::string& directory)
{
    setString(kRecordingKey, directory);
}

bool ConfigManager::save(const std::string& path, bool flushed)
{
    if (path.empty() && !dirty)
        return true;
    const std::string& target = path.empty() ? configPath : path;
    if (target.empty() || !mayReplace(target))
        return false;

    makeFolders(target);
    const std::string text = fileText();
    ReplacementFile replacement(target);
    if (!replacement.isOpen() || !replacement.write(text))
        return false;
    // The bytes are on the disk before the name moves; the other way round a power cut could leave the new name
    // on an empty file.
    if (flushed && !replacement.flush())
        return false;
    if (!replacement.takeTargetsPlace())
        return false;
    unread.erase(target); // It was missing, and is ours now.
    dirty = false;
    if (target == configPath)
        unflushed = !flushed;
    return true;
}

bool ConfigManager::mayReplace(const std::string& target) const
{
    if (access(target.c_str(), R_OK) != 0)
        return errno == ENOENT || errno == ENOTDIR;
    return !unread.contains(target);
}

const std::string* ConfigManager::find(const std::string& key) const
{
    const auto entry = entries.find(key);
    return entry == entries.end() ? nullptr : &entry->second;
}

void ConfigManager::store(const std::string& key, std::string value)
{
    const std::lock_guard lock(mutex);
    entries[key] = std::move(value);
    dirty = true;
}

std::string ConfigManager::fileText() const
{
    std::string text = kHeader;
    for (const auto& [key, value] : entries)
        text.append(key).append("=").append(value).append("\n");
    return text;
}
