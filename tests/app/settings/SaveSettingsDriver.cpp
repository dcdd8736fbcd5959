// Loads the settings file named first, sets one entry and saves to the same file. Its test stops it on the way.

#include "app/settings/ConfigManager.h"

#include <unistd.h>

namespace {

struct OwnSettings : ConfigManager { };

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
        return 2;
    OwnSettings settings;
    if (!settings.loadConfig(argv[1]))
        return 3;
    settings.setString("new", argv[2]);
    // The trace shows where the save begins and ends by these two names, which don't exist.
    (void)access("/save-begins", F_OK);
    const bool saved = settings.saveConfig(argv[1]);
    (void)access("/save-ends", F_OK);
    return saved ? 0 : 1;
}
