// Loads the settings file named first, sets one entry and saves to the same file. Its test stops it on the way.
// A third argument says what else to do:
//   unread      the load may fail
//   many        saves as often as the fourth argument says
//   unflushed   saves without waiting for the disk, and waits for it afterwards
//   last        saves without waiting for the disk, and ends
//   exhausted   leaves the save to the end of the settings, whose allocations fail from the one on that the fourth
//               argument names, counted from 0

#include "app/settings/ConfigManager.h"

#include <unistd.h>

#include <cstdlib>
#include <new>
#include <optional>
#include <string>

namespace {

struct OwnSettings : ConfigManager { };

constexpr int kEndless = -1;
int allocationsLeft = kEndless;

// The trace shows where the save begins and ends by these two names, which don't exist.
void markBegin()
{
    (void)access("/save-begins", F_OK);
}

void markEnd()
{
    (void)access("/save-ends", F_OK);
}

int saveOnce(ConfigManager& settings, const std::string& path)
{
    markBegin();
    const bool saved = settings.saveConfig(path);
    markEnd();
    return saved ? 0 : 1;
}

int saveMany(ConfigManager& settings, const std::string& path, int count)
{
    int saved = 0;
    for (int i = 0; i < count; ++i)
        saved += settings.saveConfig(path);
    return saved > 0 ? 0 : 1; // On a slow disk another may hold the lock almost always.
}

int saveUnflushed(ConfigManager& settings)
{
    markBegin();
    const bool saved = settings.saveConfigUnflushed();
    markEnd();
    return saved && settings.flushConfig() && settings.flushConfig() ? 0 : 1;
}

int endUnflushed(std::optional<OwnSettings>& settings)
{
    const bool saved = settings->saveConfigUnflushed();
    settings.reset();
    return saved ? 0 : 1;
}

int endExhausted(std::optional<OwnSettings>& settings, int allocations)
{
    allocationsLeft = allocations;
    settings.reset();
    allocationsLeft = kEndless;
    return 0;
}

} // namespace

void* operator new(std::size_t size)
{
    if (allocationsLeft == 0)
        throw std::bad_alloc();
    if (allocationsLeft > 0)
        --allocationsLeft;
    if (void* memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

int main(int argc, char** argv)
{
    if (argc < 3)
        return 2;
    const std::string path = argv[1];
    const std::string what = argc > 3 ? argv[3] : "";
    const int number = argc > 4 ? std::atoi(argv[4]) : 0;
    std::optional<OwnSettings> settings(std::in_place);
    if (!settings->loadConfig(path) && what != "unread")
        return 3;
    settings->setString("new", argv[2]);
    if (what == "exhausted")
        return endExhausted(settings, number);
    if (what == "last")
        return endUnflushed(settings);
    int status = 0;
    if (what == "many")
        status = saveMany(*settings, path, number);
    else if (what == "unflushed")
        status = saveUnflushed(*settings);
    else
        status = saveOnce(*settings, path);
    _exit(status); // The settings would save once more at their end what could not be saved here.
}
