#include "window/FileList.h"

#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

class FileListTest : public testing::Test {
protected:
    /// A recording whose scene is `scene`, in place of what is there.
    QString write(const std::string& name, const std::string& scene) const
    {
        WavBuilder file;
        file.ixml("<BWFXML><SCENE>" + scene + "</SCENE></BWFXML>").fmt(48000, 1, 16).dataFrames(1);
        file.write(folder.file(name));
        return path(name);
    }

    QString path(const std::string& name) const { return QString::fromStdString(folder.file(name)); }

    void removeFromDisk(const std::string& name) const { std::filesystem::remove(folder.file(name)); }

    std::vector<std::string> scenes(const QList<int>& rows) const
    {
        std::vector<std::string> found;
        for (const BwfMetadata* record : list.recordsOf(rows))
            found.push_back(record->scene);
        return found;
    }

    void addFive()
    {
        for (const char* name : { "a", "b", "c", "d", "e" })
            ASSERT_TRUE(list.add(write(name, name)));
    }

    TempFolder folder;
    FileList list;
};

TEST_F(FileListTest, startsEmpty)
{
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(list.size(), 0);
    EXPECT_FALSE(list.contains(0));
    EXPECT_TRUE(list.paths().isEmpty());
}

TEST_F(FileListTest, keepsTheOrderOfAdding)
{
    list.add(write("b", "2"));
    list.add(write("a", "1"));
    EXPECT_EQ(list.paths(), (QList<QString>{ path("b"), path("a") }));
    EXPECT_EQ(scenes({ 0, 1 }), (std::vector<std::string>{ "2", "1" }));
}

TEST_F(FileListTest, aListedPathIsNeitherAddedNorReadAgain)
{
    EXPECT_TRUE(list.add(write("a", "old")));
    EXPECT_FALSE(list.add(write("a", "new")));
    EXPECT_EQ(list.size(), 1);
    EXPECT_EQ(list.record(0).scene, "old");
}

TEST_F(FileListTest, pathsAreComparedAsTheyAreWritten)
{
    EXPECT_TRUE(list.add(write("a", "1")));
    EXPECT_TRUE(list.add(write("A", "2")));
    EXPECT_TRUE(list.add(path("./a")));
    EXPECT_EQ(list.size(), 3);
}

TEST_F(FileListTest, aFileThatHasGoneThrowsAndLeavesTheListAsItWas)
{
    list.add(write("a", "1"));
    EXPECT_THROW(list.add(path("gone")), std::filesystem::filesystem_error);
    EXPECT_EQ(list.paths(), QList<QString>{ path("a") });
    EXPECT_EQ(scenes({ 0, 1 }), std::vector<std::string>{ "1" });
    EXPECT_TRUE(list.add(write("gone", "back")));
    EXPECT_EQ(scenes({ 0, 1 }), (std::vector<std::string>{ "1", "back" }));
}

TEST_F(FileListTest, readingAgainFollowsTheFile)
{
    list.add(write("a", "old"));
    list.add(write("b", "other"));
    write("a", "new");
    list.readAgain(0);
    EXPECT_EQ(scenes({ 0, 1 }), (std::vector<std::string>{ "new", "other" }));
}

TEST_F(FileListTest, readingAFileThatHasGoneKeepsItsRecord)
{
    list.add(write("a", "old"));
    removeFromDisk("a");
    EXPECT_THROW(list.readAgain(0), std::filesystem::filesystem_error);
    EXPECT_EQ(scenes({ 0 }), std::vector<std::string>{ "old" });
}

TEST_F(FileListTest, removedRowsLeaveTheOthersInStep)
{
    addFive();
    list.remove({ 1, 3 });
    EXPECT_EQ(list.paths(), (QList<QString>{ path("a"), path("c"), path("e") }));
    EXPECT_EQ(scenes({ 0, 1, 2 }), (std::vector<std::string>{ "a", "c", "e" }));
    EXPECT_TRUE(list.add(path("b")));
    EXPECT_FALSE(list.add(path("c")));
}

TEST_F(FileListTest, rowsThatAreNotThereAreNotRemoved)
{
    addFive();
    list.remove({ -7, -1, 4, 5, std::numeric_limits<int>::max() });
    EXPECT_EQ(scenes({ 0, 1, 2, 3 }), (std::vector<std::string>{ "a", "b", "c", "d" }));
    EXPECT_EQ(list.size(), 4);
    list.remove({});
    EXPECT_EQ(list.size(), 4);
}

TEST_F(FileListTest, clearedPathsMayComeBack)
{
    addFive();
    list.clear();
    EXPECT_TRUE(list.isEmpty());
    EXPECT_TRUE(list.paths().isEmpty());
    EXPECT_TRUE(list.add(path("c")));
    EXPECT_EQ(scenes({ 0 }), std::vector<std::string>{ "c" });
}

TEST_F(FileListTest, containsItsRowsOnly)
{
    addFive();
    for (const int row : { -1, 5, 6, std::numeric_limits<int>::min(), std::numeric_limits<int>::max() })
        EXPECT_FALSE(list.contains(row)) << row;
    for (int row = 0; row < 5; ++row)
        EXPECT_TRUE(list.contains(row)) << row;
}

TEST_F(FileListTest, recordsAreAskedForInAnyOrderAndRowsThatAreNotThereAreSkipped)
{
    addFive();
    EXPECT_EQ(scenes({ 3, -1, 0, 5, 3 }), (std::vector<std::string>{ "d", "a", "d" }));
    EXPECT_TRUE(list.recordsOf({}).empty());
    EXPECT_TRUE(list.recordsOf({ -1, 5 }).empty());
}

/// A list and what it should hold, pair by pair, with files that come, change and go under it.
class RandomFileListTest : public FileListTest {
protected:
    static constexpr int kFiles = 24;

    int upTo(int last) { return std::uniform_int_distribution(0, last)(random); }
    static std::string nameOf(int file) { return "take" + std::to_string(file); }

    /// One file appears or gets another scene, or goes.
    void changeTheDisk()
    {
        const int file = upTo(kFiles - 1);
        std::string& scene = onDisk[static_cast<size_t>(file)];
        if (upTo(2) == 0) {
            removeFromDisk(nameOf(file));
            scene.clear();
        } else {
            scene = std::to_string(++scenesWritten);
            write(nameOf(file), scene);
        }
    }

    void add()
    {
        const int file = upTo(kFiles - 1);
        const QString wanted = path(nameOf(file));
        const std::string& scene = onDisk[static_cast<size_t>(file)];
        for (const auto& [each, unused] : expected) {
            if (each == wanted) {
                EXPECT_FALSE(list.add(wanted));
                return;
            }
        }
        if (scene.empty()) {
            EXPECT_THROW(list.add(wanted), std::filesystem::filesystem_error);
            return;
        }
        EXPECT_TRUE(list.add(wanted));
        expected.emplace_back(wanted, scene);
    }

    void readAgain()
    {
        if (expected.empty())
            return;
        const int row = upTo(static_cast<int>(expected.size()) - 1);
        auto& [wanted, known] = expected[static_cast<size_t>(row)];
        for (int file = 0; file < kFiles; ++file) {
            if (path(nameOf(file)) != wanted)
                continue;
            const std::string& scene = onDisk[static_cast<size_t>(file)];
            if (scene.empty()) {
                EXPECT_THROW(list.readAgain(row), std::filesystem::filesystem_error);
            } else {
                list.readAgain(row);
                known = scene;
            }
        }
    }

    void remove()
    {
        QList<int> rows;
        for (int row = -1; row <= static_cast<int>(expected.size()); ++row) {
            if (upTo(7) == 0)
                rows.append(row);
        }
        list.remove(rows);
        for (auto row = rows.crbegin(); row != rows.crend(); ++row) {
            if (*row >= 0 && *row < static_cast<int>(expected.size()))
                expected.erase(expected.begin() + *row);
        }
    }

    void step()
    {
        switch (const int kind = upTo(99); kind) {
        case 0:
            list.clear();
            expected.clear();
            break;
        default:
            if (kind < 25)
                changeTheDisk();
            else if (kind < 70)
                add();
            else if (kind < 90)
                readAgain();
            else
                remove();
        }
    }

    void compare() const
    {
        ASSERT_EQ(static_cast<size_t>(list.size()), expected.size());
        ASSERT_EQ(list.paths().size(), list.size());
        for (int row = 0; row < list.size(); ++row) {
            const auto& [wanted, scene] = expected[static_cast<size_t>(row)];
            ASSERT_EQ(list.path(row), wanted);
            ASSERT_EQ(list.paths().at(row), wanted);
            ASSERT_EQ(list.record(row).scene, scene);
        }
    }

    std::mt19937 random{ 12 };
    std::vector<std::string> onDisk = std::vector<std::string>(kFiles); ///< The scene by file; empty if it isn't there.
    std::vector<std::pair<QString, std::string>> expected; ///< Path and scene by row.
    int scenesWritten = 0;
};

TEST_F(RandomFileListTest, tenThousandStepsKeepPathsAndRecordsInStep)
{
    size_t longest = 0;
    for (int i = 0; i < 10000 && !HasFailure(); ++i) {
        SCOPED_TRACE(i);
        step();
        compare();
        longest = std::max(longest, expected.size());
    }
    EXPECT_GT(longest, 8u);
    EXPECT_GT(scenesWritten, 1000);
}

} // namespace
