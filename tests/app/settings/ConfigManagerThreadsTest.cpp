#include "app/settings/ConfigManager.h"

#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

struct OwnSettings : ConfigManager { };

constexpr int kWriters = 4;
constexpr int kRounds = 500;
constexpr int kFileRounds = 40;

std::string keyOf(int writer)
{
    return "writer." + std::to_string(writer);
}

} // namespace

TEST(ConfigManagerThreads, everyWriterReadsBackItsOwnValuesWhileOthersSaveAndLoad)
{
    TempFolder folder;
    setenv("HOME", folder.path().c_str(), 1);
    OwnSettings settings;
    writeBytes(folder.file("other.ini"), "from.file=1\n");
    std::atomic<int> wrong{ 0 };

    std::vector<std::thread> threads;
    for (int writer = 0; writer < kWriters; ++writer) {
        threads.emplace_back([&, writer] {
            for (int round = 0; round < kRounds; ++round) {
                settings.setInt(keyOf(writer), round);
                wrong += settings.getInt(keyOf(writer), -1) != round;
                settings.setFloat(keyOf(writer) + ".f", static_cast<float>(round) + 0.5f);
                wrong += settings.getFloat(keyOf(writer) + ".f", -1.0f) != static_cast<float>(round) + 0.5f;
                settings.setBool(keyOf(writer) + ".b", round % 2 == 0);
                wrong += settings.getBool(keyOf(writer) + ".b", round % 2 != 0) != (round % 2 == 0);
            }
        });
    }
    for (int saver = 0; saver < 2; ++saver) {
        threads.emplace_back([&] {
            for (int round = 0; round < kFileRounds; ++round) {
                wrong += !settings.saveConfig("");
                wrong += !settings.saveConfig(folder.file("shared.ini"));
                wrong += !settings.loadConfig(folder.file("other.ini"));
                wrong += settings.getConfigPath().empty() || settings.getConfigDirectory().empty();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    EXPECT_EQ(wrong, 0);
    for (int writer = 0; writer < kWriters; ++writer)
        EXPECT_EQ(settings.getInt(keyOf(writer), -1), kRounds - 1);
}

TEST(ConfigManagerThreads, theOneObjectIsMadeOnceByWhoeverComesFirst)
{
    TempFolder folder;
    setenv("HOME", folder.path().c_str(), 1);
    std::vector<ConfigManager*> seen(8);
    std::vector<std::thread> threads;
    for (ConfigManager*& each : seen)
        threads.emplace_back([&each] { each = &ConfigManager::getInstance(); });
    for (std::thread& thread : threads)
        thread.join();
    for (ConfigManager* each : seen)
        EXPECT_EQ(each, seen.front());
}
