// Any bytes as a settings file: what was loaded comes back the same from the file that a save makes of it.

#include "app/settings/ConfigManager.h"

#include "tests/support/TempFolder.h"

#include <cstdint>
#include <cstdlib>

namespace {

/// Settings whose destructor has nothing left to save.
struct OwnSettings : ConfigManager { };

void require(bool holds)
{
    if (!holds)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // Every input is flushed to a disk twice, which takes most of the time where the disk is a real one.
    setenv("TMPDIR", "/dev/shm", 0);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TempFolder folder;
    static const std::string given = folder.file("given.ini");
    static const std::string first = folder.file("first.ini");
    static const std::string second = folder.file("second.ini");

    writeBytes(given, std::string(data, data + size));
    OwnSettings loaded;
    require(loaded.loadConfig(given));
    require(loaded.saveConfig(first));
    (void)loaded.getInt("audio.samplerate", 0);
    (void)loaded.getFloat("audio.samplerate", 0.0f);
    (void)loaded.getBool("audio.samplerate", false);

    OwnSettings again;
    require(again.loadConfig(first));
    require(again.saveConfig(second));
    require(readBytes(first) == readBytes(second));
    return 0;
}
