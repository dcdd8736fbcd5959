#pragma once

#include <map>
#include <mutex>
#include <set>
#include <string>

/// The program's settings: one map of texts to texts, kept in a plain file of `key=value` lines that other
/// programs of the family share. All texts are bytes, taken to be UTF-8 by those who show them; nothing is
/// escaped or quoted, so a line feed inside a value does not survive a save and a load.
/// Setters change the map alone; only `saveConfig` and the destructor write the file.
/// Thread: any; every operation holds one mutex for its whole length, file work included. No operation throws
/// because of what a file or an entry holds.
class ConfigManager {
public:
    /// The one object of the process, made by the first call and destroyed at process exit.
    static ConfigManager& getInstance();

    ConfigManager(const ConfigManager&) = delete;
    ConfigManager& operator=(const ConfigManager&) = delete;

    /// Lays the entries of the file over the map: the file beats what is there, a later line an earlier one, and
    /// entries that the file lacks stay. An empty `path` means `getConfigPath()`. There is nothing unsaved afterwards.
    /// False if the file can't be read; map and unsaved state are then untouched.
    bool loadConfig(const std::string& path);

    /// Writes all entries in byte order of their keys, making missing folders. An empty `path` means
    /// `getConfigPath()` and writes only if something is unsaved; any other path is always written.
    /// The file is replaced as a whole: at every moment, also across a power cut, it is the old or the new one, also
    /// when several processes save at once.
    /// A file that is there but can't be read, or was not read whole by the last `loadConfig` of it, is never replaced:
    /// it holds entries of other programs that the map has not.
    /// False if it can't be written; the file that was there and the unsaved state are then untouched.
    [[nodiscard]] bool saveConfig(const std::string& path);

    /// As `saveConfig` with an empty path, without waiting for the disk; for saves that follow each other faster than
    /// a slow disk keeps up. The end of the process at any moment leaves the old or the new file whole. Until the next
    /// `flushConfig` it is up to the file system whether a power cut does so too: most bring the bytes to the disk
    /// ahead of such a change of name by themselves.
    [[nodiscard]] bool saveConfigUnflushed();
    /// Waits until what `saveConfigUnflushed` wrote last is on the disk; nothing to do otherwise. False if that failed.
    bool flushConfig();

    void setString(const std::string& key, const std::string& value);
    /// The value, which may be empty; `defaultValue` only if there is no such key.
    std::string getString(const std::string& key, const std::string& defaultValue) const;

    /// Stores plain decimal text.
    void setInt(const std::string& key, int value);
    /// The integer at the start of the value by the rules of std::stoi: blanks and a sign may stand before the
    /// digits, anything behind them. `defaultValue` if the key is absent, there is no number, or it does not fit.
    int getInt(const std::string& key, int defaultValue) const;

    /// Stores six decimals behind a point, whatever the locale.
    void setFloat(const std::string& key, float value);
    /// The number at the start of the value by the rules of std::stof, with a decimal point whatever the locale.
    /// `defaultValue` if the key is absent, there is no number, or it does not fit.
    float getFloat(const std::string& key, float defaultValue) const;

    /// Stores "true" or "false".
    void setBool(const std::string& key, bool value);
    /// True for exactly "true", "1" and "yes", false for any other value; `defaultValue` if the key is absent.
    bool getBool(const std::string& key, bool defaultValue) const;

    /// Folder of the shared settings under the user's home as the environment names it now; it may not exist.
    /// Empty if "HOME" isn't set.
    std::string getConfigDirectory() const;
    /// Default path of the settings file as it was found at construction. Empty if "HOME" wasn't set then.
    std::string getConfigPath() const;

    std::string getAsioDriverName() const;
    void setAsioDriverName(const std::string& name);
    /// Samples per second, 48000 if unset.
    int getSampleRate() const;
    void setSampleRate(int rate);
    /// Frames, 256 if unset.
    int getBufferSize() const;
    void setBufferSize(int frames);
    /// Number of the recording format, 0 if unset.
    int getMediaFormat() const;
    /// Bits per sample, 24 if unset.
    int getMediaBitDepth() const;
    void setMediaFormat(int format, int bitDepth);
    /// Empty if unset.
    std::string getRecordingDirectory() const;
    void setRecordingDirectory(const std::string& directory);

protected:
    // Within reach of a derived class, so that a test can have an object of its own in a known state.
    ConfigManager();
    /// Saves to the default path if anything is unsaved, and flushes what was saved. Never throws; what can't be saved
    /// for want of memory is lost.
    ~ConfigManager();

private:
    // Null if there is no such key. The mutex must be held, also while the result is used.
    const std::string* find(const std::string& key) const;
    void store(const std::string& key, std::string value);
    std::string fileText() const;
    // False if the file at `target` holds what this process could not read. The mutex must be held.
    bool mayReplace(const std::string& target) const;
    // `saveConfig` with the mutex held; `flushed` waits for the disk.
    bool save(const std::string& path, bool flushed);

    std::map<std::string, std::string> entries;
    std::string configPath;
    bool dirty = false; // The map has changed since the last load or save.
    bool unflushed = false; // The file at `configPath` may not be on the disk yet.
    std::set<std::string> unread; // Files that were there and could not be read whole, as they were named to us.
    mutable std::mutex mutex; // Guards all of the above.
};
