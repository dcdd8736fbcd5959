#include "app/settings/ConfigManager.h"

#include "tests/support/TempFolder.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <limits>
#include <optional>

namespace {

/// Settings of its own, so that no test sees another's entries.
class OwnSettings : public ConfigManager { };

/// A home folder of its own for each test, and settings made in it.
class ConfigManagerTest : public testing::Test {
protected:
    ConfigManagerTest() { setenv("HOME", home.path().c_str(), 1); }

    OwnSettings& settings()
    {
        if (!own)
            own.emplace();
        return *own;
    }

    std::string defaultPath() const { return home.file(".config/Vorlund/config.ini"); }

    /// Puts `text` into a settings file and loads it.
    OwnSettings& load(const std::string& text)
    {
        writeBytes(home.file("given.ini"), text);
        EXPECT_TRUE(settings().loadConfig(home.file("given.ini")));
        return settings();
    }

    /// Saves to a file of its own and gives its bytes.
    std::string saved()
    {
        EXPECT_TRUE(settings().saveConfig(home.file("saved.ini")));
        return readBytes(home.file("saved.ini"));
    }

    std::string valueOf(const std::string& key) { return settings().getString(key, "absent"); }

    TempFolder home;
    std::optional<OwnSettings> own;
};

constexpr char kDefaultFile[] = "# Vorlund Configuration\n\n"
                                "audio.buffersize=256\n"
                                "audio.driver=\n"
                                "audio.samplerate=48000\n"
                                "media.bitdepth=24\n"
                                "media.format=0\n"
                                "recording.directory=\n";

} // namespace

TEST_F(ConfigManagerTest, blanksAroundTheEqualsSignAreTakenOff)
{
    load("key = value\nother\t \t=\t value");
    EXPECT_EQ(valueOf("key"), "value");
    EXPECT_EQ(valueOf("other"), "value");
}

TEST_F(ConfigManagerTest, blanksBeforeTheKeyStay)
{
    load("  key=value\n");
    EXPECT_EQ(valueOf("  key"), "value");
    EXPECT_EQ(valueOf("key"), "absent");
}

TEST_F(ConfigManagerTest, blanksAndCarriageReturnBehindTheValueStay)
{
    load("a=one \t\nb=two\r\n");
    EXPECT_EQ(valueOf("a"), "one \t");
    EXPECT_EQ(valueOf("b"), "two\r");
}

TEST_F(ConfigManagerTest, aBlankBeforeTheHashMakesItAKey)
{
    load(" # note = text\n ;x=1\n");
    EXPECT_EQ(valueOf(" # note"), "text");
    EXPECT_EQ(valueOf(" ;x"), "1");
}

TEST_F(ConfigManagerTest, linesThatBeginWithHashOrSemicolonAreComments)
{
    load("#a=1\n;b=2\n\nc=3\n");
    EXPECT_EQ(valueOf("#a"), "absent");
    EXPECT_EQ(valueOf("a"), "absent");
    EXPECT_EQ(valueOf(";b"), "absent");
    EXPECT_EQ(valueOf("c"), "3");
}

TEST_F(ConfigManagerTest, furtherEqualsSignsBelongToTheValue)
{
    load("a=b=c\nd==\n");
    EXPECT_EQ(valueOf("a"), "b=c");
    EXPECT_EQ(valueOf("d"), "=");
}

TEST_F(ConfigManagerTest, aLineWithoutEqualsSignIsIgnored)
{
    const std::string before = saved();
    load("just words\n");
    EXPECT_EQ(saved(), before);
}

TEST_F(ConfigManagerTest, aLineThatEndsBehindTheEqualsSignGivesAnEmptyValue)
{
    load("a=\nb= \t \n");
    EXPECT_EQ(valueOf("a"), "");
    EXPECT_EQ(valueOf("b"), "");
}

TEST_F(ConfigManagerTest, anEmptyKeyIsStoredLikeAnyOther)
{
    load("=nameless\n");
    EXPECT_EQ(valueOf(""), "nameless");
    EXPECT_NE(saved().find("\n=nameless\n"), std::string::npos);
}

TEST_F(ConfigManagerTest, quotesArePartOfTheValue)
{
    load("a=\"x\"\n");
    EXPECT_EQ(valueOf("a"), "\"x\"");
}

TEST_F(ConfigManagerTest, theLastLineNeedsNoLineFeed)
{
    load("a=1\nb=2");
    EXPECT_EQ(valueOf("b"), "2");
}

TEST_F(ConfigManagerTest, bytesOfAnyKindSurviveLoadAndSave)
{
    const std::string odd("k\0\xFF=v\0\x80\xE2\x80\x94", 10);
    load(odd + "\n");
    EXPECT_EQ(valueOf(odd.substr(0, 3)), odd.substr(4));
    EXPECT_NE(saved().find("\n" + odd + "\n"), std::string::npos);
}

TEST_F(ConfigManagerTest, theFileBeatsTheMapAndALaterLineAnEarlierOne)
{
    settings().setString("a", "mine");
    settings().setString("b", "kept");
    load("a=first\naudio.samplerate=96000\na=second\n");
    EXPECT_EQ(valueOf("a"), "second");
    EXPECT_EQ(valueOf("b"), "kept");
    EXPECT_EQ(settings().getSampleRate(), 96000);
    EXPECT_EQ(settings().getBufferSize(), 256);
}

TEST_F(ConfigManagerTest, aNewObjectHoldsTheSixDefaults)
{
    EXPECT_EQ(saved(), kDefaultFile);
    EXPECT_EQ(settings().getAsioDriverName(), "");
    EXPECT_EQ(settings().getSampleRate(), 48000);
    EXPECT_EQ(settings().getBufferSize(), 256);
    EXPECT_EQ(settings().getMediaFormat(), 0);
    EXPECT_EQ(settings().getMediaBitDepth(), 24);
    EXPECT_EQ(settings().getRecordingDirectory(), "");
}

TEST_F(ConfigManagerTest, typedAccessorsWriteTheirKeys)
{
    settings().setAsioDriverName("Rack");
    settings().setSampleRate(96000);
    settings().setBufferSize(512);
    settings().setMediaFormat(3, 32);
    settings().setRecordingDirectory("/takes");
    EXPECT_EQ(valueOf("audio.driver"), "Rack");
    EXPECT_EQ(valueOf("audio.samplerate"), "96000");
    EXPECT_EQ(valueOf("audio.buffersize"), "512");
    EXPECT_EQ(valueOf("media.format"), "3");
    EXPECT_EQ(valueOf("media.bitdepth"), "32");
    EXPECT_EQ(valueOf("recording.directory"), "/takes");
    EXPECT_EQ(settings().getAsioDriverName(), "Rack");
    EXPECT_EQ(settings().getSampleRate(), 96000);
    EXPECT_EQ(settings().getBufferSize(), 512);
    EXPECT_EQ(settings().getMediaFormat(), 3);
    EXPECT_EQ(settings().getMediaBitDepth(), 32);
    EXPECT_EQ(settings().getRecordingDirectory(), "/takes");
}

TEST_F(ConfigManagerTest, typedGettersHaveDefaultsForValuesThatDoNotConvert)
{
    load("audio.samplerate=fast\naudio.buffersize=\nmedia.format=x\nmedia.bitdepth=-\n");
    EXPECT_EQ(settings().getSampleRate(), 48000);
    EXPECT_EQ(settings().getBufferSize(), 256);
    EXPECT_EQ(settings().getMediaFormat(), 0);
    EXPECT_EQ(settings().getMediaBitDepth(), 24);
}

TEST_F(ConfigManagerTest, anUnknownKeySurvivesLoadAndSaveAndACommentDoesNot)
{
    load("# mine\nfamily.other=7\n; yours\n");
    const std::string text = saved();
    EXPECT_NE(text.find("\nfamily.other=7\n"), std::string::npos);
    EXPECT_EQ(text.find("mine"), std::string::npos);
    EXPECT_EQ(text.find("yours"), std::string::npos);
}

TEST_F(ConfigManagerTest, aProcessThatDiesBehindASetterLeavesTheFileAsItWas)
{
    std::filesystem::create_directories(home.file(".config/Vorlund"));
    writeBytes(defaultPath(), "a = old\n");
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        settings().setString("a", "new");
        _exit(0);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(readBytes(defaultPath()), "a = old\n");
}

TEST_F(ConfigManagerTest, keysComeOutInByteOrder)
{
    load("b=1\nB=2\n\xC3\xA4=3\na.b=4\naB=5\n");
    const std::string expected = "# Vorlund Configuration\n\nB=2\na.b=4\naB=5\naudio.buffersize=256\naudio.driver=\n"
                                 "audio.samplerate=48000\nb=1\nmedia.bitdepth=24\nmedia.format=0\n"
                                 "recording.directory=\n\xC3\xA4=3\n";
    EXPECT_EQ(saved(), expected);
}

TEST_F(ConfigManagerTest, settersAloneNeverWrite)
{
    settings().setString("a", "b");
    EXPECT_FALSE(std::filesystem::exists(home.file(".config")));
}

TEST_F(ConfigManagerTest, aSaveWithoutChangesTouchesNothing)
{
    EXPECT_TRUE(settings().saveConfig(""));
    EXPECT_FALSE(std::filesystem::exists(home.file(".config")));
}

TEST_F(ConfigManagerTest, afterASaveToAnotherPathTheDefaultPathIsNotWritten)
{
    settings().setString("a", "b");
    load("x=y\n");
    settings().setString("c", "d");
    EXPECT_TRUE(settings().saveConfig(home.file("other.ini")));
    EXPECT_TRUE(settings().saveConfig(""));
    EXPECT_FALSE(std::filesystem::exists(defaultPath()));
}

TEST_F(ConfigManagerTest, afterALoadNothingIsUnsaved)
{
    settings().setString("a", "b");
    load("x=y\n");
    EXPECT_TRUE(settings().saveConfig(""));
    EXPECT_FALSE(std::filesystem::exists(defaultPath()));
}

TEST_F(ConfigManagerTest, setterWithAnEqualValueStillCountsAsAChange)
{
    settings().setInt("audio.samplerate", 48000);
    EXPECT_TRUE(settings().saveConfig(""));
    EXPECT_EQ(readBytes(defaultPath()), kDefaultFile);
}

TEST_F(ConfigManagerTest, anExplicitPathIsWrittenWithoutChanges)
{
    EXPECT_TRUE(settings().saveConfig(home.file("copy.ini")));
    EXPECT_EQ(readBytes(home.file("copy.ini")), kDefaultFile);
}

TEST_F(ConfigManagerTest, missingFoldersAreMade)
{
    EXPECT_TRUE(settings().saveConfig(home.file("one/two//three/copy.ini")));
    EXPECT_EQ(readBytes(home.file("one/two/three/copy.ini")), kDefaultFile);
}

TEST_F(ConfigManagerTest, madeFoldersCanBeEnteredByAllAndWrittenByTheOwner)
{
    const mode_t before = umask(0);
    EXPECT_TRUE(settings().saveConfig(home.file("made/copy.ini")));
    umask(before);
    const auto permissions = std::filesystem::status(home.file("made")).permissions();
    EXPECT_EQ(permissions, std::filesystem::perms(0755));
}

TEST_F(ConfigManagerTest, aPathWithoutFolderGoesToTheCurrentFolder)
{
    std::filesystem::current_path(home.path());
    EXPECT_TRUE(settings().saveConfig("here.ini"));
    EXPECT_TRUE(settings().loadConfig("here.ini"));
    EXPECT_EQ(readBytes(home.file("here.ini")), kDefaultFile);
}

TEST_F(ConfigManagerTest, noTemporaryFileIsLeft)
{
    EXPECT_TRUE(settings().saveConfig(home.file("only/copy.ini")));
    size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(home.file("only")))
        ++count;
    EXPECT_EQ(count, 1u);
}

TEST_F(ConfigManagerTest, theDestructorSavesWhatIsUnsaved)
{
    settings().setString("a", "b");
    own.reset();
    EXPECT_NE(readBytes(defaultPath()).find("\na=b\n"), std::string::npos);
}

TEST_F(ConfigManagerTest, theDestructorWritesNothingWithoutChanges)
{
    settings();
    own.reset();
    EXPECT_FALSE(std::filesystem::exists(home.file(".config")));
}

TEST_F(ConfigManagerTest, theOneObjectIsAlwaysTheSame)
{
    EXPECT_EQ(&ConfigManager::getInstance(), &ConfigManager::getInstance());
}

TEST_F(ConfigManagerTest, folderAndPathLieUnderTheHomeFolder)
{
    EXPECT_EQ(settings().getConfigDirectory(), home.file(".config/Vorlund"));
    EXPECT_EQ(settings().getConfigPath(), defaultPath());
    EXPECT_FALSE(std::filesystem::exists(home.file(".config")));
}

TEST_F(ConfigManagerTest, loadingAnotherPathLeavesTheDefaultPath)
{
    load("a=b\n");
    EXPECT_EQ(settings().getConfigPath(), defaultPath());
    settings().setString("c", "d");
    EXPECT_TRUE(settings().saveConfig(""));
    EXPECT_TRUE(std::filesystem::exists(defaultPath()));
}

TEST_F(ConfigManagerTest, anEmptyPathLoadsTheDefaultFile)
{
    std::filesystem::create_directories(home.file(".config/Vorlund"));
    writeBytes(defaultPath(), "a=b\n");
    EXPECT_TRUE(settings().loadConfig(""));
    EXPECT_EQ(valueOf("a"), "b");
}

// Numbers and truth values.

TEST_F(ConfigManagerTest, leadingDigitsAreEnoughForAnInteger)
{
    load("a=12abc\nb= -7 \nc=+5\nd=0x10\ne=1.9\nf=007\n");
    EXPECT_EQ(settings().getInt("a", 99), 12);
    EXPECT_EQ(settings().getInt("b", 99), -7);
    EXPECT_EQ(settings().getInt("c", 99), 5);
    EXPECT_EQ(settings().getInt("d", 99), 0);
    EXPECT_EQ(settings().getInt("e", 99), 1);
    EXPECT_EQ(settings().getInt("f", 99), 7);
}

TEST_F(ConfigManagerTest, anIntegerThatDoesNotConvertOrFitGivesTheDefault)
{
    load("a=abc\nb=\nc=2147483648\nd=-2147483649\ne=99999999999999999999\nf=-\n");
    for (const char* key : { "a", "b", "c", "d", "e", "f", "absent" })
        EXPECT_EQ(settings().getInt(key, 99), 99) << key;
}

TEST_F(ConfigManagerTest, integersRoundTripToTheirLimits)
{
    for (int value : { std::numeric_limits<int>::min(), -1, 0, 1, std::numeric_limits<int>::max() }) {
        settings().setInt("a", value);
        EXPECT_EQ(valueOf("a"), std::to_string(value));
        EXPECT_EQ(settings().getInt("a", 99), value);
    }
}

TEST_F(ConfigManagerTest, floatsAreStoredWithSixDecimals)
{
    settings().setFloat("a", 1.5f);
    settings().setFloat("b", -0.0000004f);
    settings().setFloat("c", 23.976f);
    settings().setFloat("d", std::numeric_limits<float>::max());
    EXPECT_EQ(valueOf("a"), "1.500000");
    EXPECT_EQ(valueOf("b"), "-0.000000");
    EXPECT_EQ(valueOf("c"), "23.976000");
    EXPECT_EQ(valueOf("d"), "340282346638528859811704183484516925440.000000");
    EXPECT_EQ(settings().getFloat("d", 0.0f), std::numeric_limits<float>::max());
}

TEST_F(ConfigManagerTest, aFloatIsReadFromTheStartOfTheValue)
{
    load("a=1.5x\nb= -2e3\nc=.25\nd=7\ne=1,5\n");
    EXPECT_EQ(settings().getFloat("a", 99.0f), 1.5f);
    EXPECT_EQ(settings().getFloat("b", 99.0f), -2000.0f);
    EXPECT_EQ(settings().getFloat("c", 99.0f), 0.25f);
    EXPECT_EQ(settings().getFloat("d", 99.0f), 7.0f);
    EXPECT_EQ(settings().getFloat("e", 99.0f), 1.0f);
}

TEST_F(ConfigManagerTest, aFloatThatDoesNotConvertOrFitGivesTheDefault)
{
    load("a=abc\nb=\nc=1e39\nd=-1e39\ne=1e-60\n");
    for (const char* key : { "a", "b", "c", "d", "e", "absent" })
        EXPECT_EQ(settings().getFloat(key, 99.0f), 99.0f) << key;
}

TEST_F(ConfigManagerTest, onlyThreeValuesAreTrue)
{
    load("a=true\nb=1\nc=yes\nd=TRUE\ne=on\nf=0\ng=Yes\nh=\ni=true \nj=false\n");
    for (const char* key : { "a", "b", "c" })
        EXPECT_TRUE(settings().getBool(key, false)) << key;
    for (const char* key : { "d", "e", "f", "g", "h", "i", "j" })
        EXPECT_FALSE(settings().getBool(key, true)) << key;
    EXPECT_TRUE(settings().getBool("absent", true));
    EXPECT_FALSE(settings().getBool("absent", false));
}

TEST_F(ConfigManagerTest, truthValuesAreStoredAsWords)
{
    settings().setBool("a", true);
    settings().setBool("b", false);
    EXPECT_EQ(valueOf("a"), "true");
    EXPECT_EQ(valueOf("b"), "false");
}

TEST_F(ConfigManagerTest, anEmptyValueIsNotTheDefault)
{
    settings().setString("a", "");
    EXPECT_EQ(settings().getString("a", "default"), "");
    EXPECT_EQ(settings().getString("b", "default"), "default");
}

// What can't be read or written.

TEST_F(ConfigManagerTest, aMissingFileIsAFalseResultAndChangesNothing)
{
    settings().setString("a", "b");
    EXPECT_FALSE(settings().loadConfig(home.file("missing.ini")));
    EXPECT_FALSE(settings().loadConfig(""));
    EXPECT_EQ(valueOf("a"), "b");
    EXPECT_TRUE(settings().saveConfig(""));
    EXPECT_TRUE(std::filesystem::exists(defaultPath())) << "the change counted as saved";
}

TEST_F(ConfigManagerTest, aFolderOrAPipeIsNotRead)
{
    settings().setString("a", "b");
    EXPECT_FALSE(settings().loadConfig(home.path().string()));
    ASSERT_EQ(mkfifo(home.file("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(settings().loadConfig(home.file("pipe")));
    EXPECT_FALSE(settings().loadConfig("/dev/zero"));
    EXPECT_TRUE(settings().saveConfig(""));
    EXPECT_TRUE(std::filesystem::exists(defaultPath())) << "the change counted as saved";
}

TEST_F(ConfigManagerTest, whatIsThereAndCannotBeReadIsNotReplacedUntilItIsGone)
{
    const std::string pipe = home.file("settings.ini");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(settings().loadConfig(pipe));
    EXPECT_FALSE(settings().saveConfig(pipe));
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
    std::filesystem::remove(pipe);
    EXPECT_TRUE(settings().saveConfig(pipe));
    EXPECT_TRUE(settings().saveConfig(pipe)) << "it is our own file now";
    EXPECT_EQ(readBytes(pipe), kDefaultFile);
}

TEST_F(ConfigManagerTest, aFileThatIsReadAtLastIsReplacedAgain)
{
    const std::string path = home.file("settings.ini");
    std::filesystem::create_directory(path);
    EXPECT_FALSE(settings().loadConfig(path));
    std::filesystem::remove(path);
    writeBytes(path, "theirs=1\n");
    EXPECT_FALSE(settings().saveConfig(path)) << "its entries are not in the map";
    EXPECT_EQ(readBytes(path), "theirs=1\n");
    EXPECT_TRUE(settings().loadConfig(path));
    EXPECT_TRUE(settings().saveConfig(path));
    EXPECT_NE(readBytes(path).find("theirs=1\n"), std::string::npos);
}

TEST_F(ConfigManagerTest, aFileThatWasMissingAtTheLoadIsMadeAndReplacedAsEver)
{
    EXPECT_FALSE(settings().loadConfig(""));
    for (const char* value : { "1", "2" }) {
        settings().setString("a", value);
        EXPECT_TRUE(settings().saveConfig(""));
        EXPECT_NE(readBytes(defaultPath()).find(std::string("\na=") + value + "\n"), std::string::npos);
    }
}

TEST_F(ConfigManagerTest, withoutHomeNothingIsLoadedAndOnlyAnUnchangedMapIsSaved)
{
    unsetenv("HOME");
    std::filesystem::current_path(home.path());
    writeBytes(home.file(".tmp"), "precious");
    EXPECT_EQ(settings().getConfigPath(), "");
    EXPECT_EQ(settings().getConfigDirectory(), "");
    EXPECT_FALSE(settings().loadConfig(""));
    EXPECT_TRUE(settings().saveConfig(""));
    settings().setString("a", "b");
    EXPECT_FALSE(settings().saveConfig(""));
    EXPECT_EQ(readBytes(home.file(".tmp")), "precious");
}

TEST_F(ConfigManagerTest, withoutHomeAnExplicitPathWorks)
{
    unsetenv("HOME");
    EXPECT_TRUE(settings().saveConfig(home.file("copy.ini")));
    EXPECT_TRUE(settings().loadConfig(home.file("copy.ini")));
}

TEST_F(ConfigManagerTest, aHomeSetLaterMovesTheFolderButNotThePath)
{
    settings();
    TempFolder elsewhere;
    setenv("HOME", elsewhere.path().c_str(), 1);
    EXPECT_EQ(settings().getConfigDirectory(), elsewhere.file(".config/Vorlund"));
    EXPECT_EQ(settings().getConfigPath(), defaultPath());
}

TEST_F(ConfigManagerTest, aFolderThatCannotBeMadeIsAFalseResult)
{
    writeBytes(home.file(".config"), "a file in the way");
    settings().setString("a", "b");
    EXPECT_FALSE(settings().saveConfig(""));
    EXPECT_EQ(readBytes(home.file(".config")), "a file in the way");
}

TEST_F(ConfigManagerTest, aFullDiskLeavesTheOldFileAndNoTemporaryOne)
{
    writeBytes(home.file("copy.ini"), "old=1\n");
    std::filesystem::create_symlink("/dev/full", home.file("copy.ini.tmp"));
    settings().setString("a", "b");
    EXPECT_FALSE(settings().saveConfig(home.file("copy.ini")));
    EXPECT_EQ(readBytes(home.file("copy.ini")), "old=1\n");
    EXPECT_FALSE(std::filesystem::is_symlink(home.file("copy.ini.tmp")));
    EXPECT_TRUE(settings().saveConfig(""));
    EXPECT_TRUE(std::filesystem::exists(defaultPath())) << "the change counted as saved";
}

TEST_F(ConfigManagerTest, aFolderInPlaceOfTheTemporaryFileIsAFalseResult)
{
    writeBytes(home.file("copy.ini"), "old=1\n");
    std::filesystem::create_directory(home.file("copy.ini.tmp"));
    EXPECT_FALSE(settings().saveConfig(home.file("copy.ini")));
    EXPECT_EQ(readBytes(home.file("copy.ini")), "old=1\n");
}

TEST_F(ConfigManagerTest, aPipeInPlaceOfTheTemporaryFileDoesNotHoldTheProgram)
{
    writeBytes(home.file("copy.ini"), "old=1\n");
    ASSERT_EQ(mkfifo(home.file("copy.ini.tmp").c_str(), 0600), 0);
    EXPECT_FALSE(settings().saveConfig(home.file("copy.ini")));
    EXPECT_EQ(readBytes(home.file("copy.ini")), "old=1\n");
}

TEST_F(ConfigManagerTest, aFailedRenameLeavesNoTemporaryFile)
{
    std::filesystem::create_directories(home.file("copy.ini/inside"));
    settings().setString("a", "b");
    EXPECT_FALSE(settings().saveConfig(home.file("copy.ini")));
    EXPECT_FALSE(std::filesystem::exists(home.file("copy.ini.tmp")));
    EXPECT_TRUE(settings().saveConfig(""));
    EXPECT_TRUE(std::filesystem::exists(defaultPath())) << "the change counted as saved";
}

TEST_F(ConfigManagerTest, anOldTemporaryFileIsReplaced)
{
    writeBytes(home.file("copy.ini.tmp"), std::string(5000, 'x'));
    EXPECT_TRUE(settings().saveConfig(home.file("copy.ini")));
    EXPECT_EQ(readBytes(home.file("copy.ini")), kDefaultFile);
}
