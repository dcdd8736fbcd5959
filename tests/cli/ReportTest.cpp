#include "tests/cli/CliRun.h"

#include "app/settings/ConfigManager.h"
#include "report/SoundReportDialog.h"
#include "tests/report/AvidAleValidator.h"
#include "tests/report/ReportFixture.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/RunProcess.h"
#include "tests/support/WavBuilder.h"

#include <QHashFunctions>
#include <QImage>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <utility>

namespace {

namespace fs = std::filesystem;

using Strings = std::vector<std::string>;

/// A PDF without what Qt writes anew each time: the moment, and on newer lines a random number of the document.
std::string withoutMoment(std::string pdf)
{
    const std::pair<const char*, const char*> changing[] = {
        { "/(Creation|Mod)Date \\(D:[^)]*\\)", "/$1Date ()" },
        { "xmp:(Create|Modify|Metadata)Date=\"[^\"]*\"", "xmp:$1Date=\"\"" },
        { "xmpMM:DocumentID=\"uuid:[^\"]*\"", "xmpMM:DocumentID=\"\"" },
        { "/ID \\[ <[0-9a-f]*> <[0-9a-f]*> \\]", "/ID []" },
    };
    for (const auto& [pattern, instead] : changing)
        pdf = std::regex_replace(pdf, std::regex(pattern), instead);
    return pdf;
}

class Report : public ReportFixture {
protected:
    void SetUp() override
    {
        ReportFixture::SetUp();
        // Qt writes the fonts of a PDF in the order of a hash, which is another one in each process: two PDFs of the
        // window differ by that, too.
        QHashSeed::setDeterministicGlobalSeed();
        Recording take{ .scene = "12", .take = "2", .tape = "R1", .note = "first, \"loud\"\nthen soft" };
        take.trackNames = { "Boom", "Lav; spare" };
        take.frameRate = "25/1";
        take.timestampRate = 48000;
        take.timeReference = uint64_t{ 48000 } * 3600;
        take.seconds = 3;
        files.append(addTake("b.wav", take));
        take.take = "1";
        take.timeReference += 48000 * 10;
        take.frameRate = "24000/1001";
        files.append(addTake("AAD0002_1.wav", take));
        take.scene = "";
        take.frameRate = "";
        files.append(addTake("c.wav", take));
    }

    Strings command(const std::string& format, const Strings& more = {}) const
    {
        Strings arguments = { "report", "--format", format, "-o", out };
        arguments.insert(arguments.end(), more.begin(), more.end());
        for (const QString& file : files)
            arguments.push_back(file.toStdString());
        return arguments;
    }

    /// The program itself: printing makes an application object, and this process has one.
    ProcessResult program(const Strings& arguments, const Strings& environment = {})
    {
        Strings whole = { TAGWELL_CLI };
        whole.insert(whole.end(), arguments.begin(), arguments.end());
        Strings surroundings = { "HOME=" + folder.path().string(), "DISPLAY=", "WAYLAND_DISPLAY=", "QT_HASH_SEED=0" };
        surroundings.insert(surroundings.end(), environment.begin(), environment.end());
        return runProcess(whole, surroundings);
    }

    /// Nothing but what the test knows of lies in the folder.
    int entriesThere() const
    {
        return static_cast<int>(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()));
    }

    QList<QString> files;
    std::string out = folder.file("report.out");
    std::string shown = folder.file("dialog.out");
};

TEST_F(Report, csvAndAleAreTheBytesOfTheDialog)
{
    SoundReportDialog dialog(files, nullptr);
    ASSERT_TRUE(dialog.generateCsvReport(QString::fromStdString(shown)));
    EXPECT_EQ(Exit::Ok, runCli(command("csv")).exit);
    EXPECT_EQ(readBytes(shown), readBytes(out));
    EXPECT_NE("", readBytes(out));
    ASSERT_TRUE(dialog.generateAleReport(QString::fromStdString(shown)));
    EXPECT_EQ(Exit::Ok, runCli(command("ale")).exit);
    EXPECT_EQ(readBytes(shown), readBytes(out));
}

TEST_F(Report, pdfIsThatOfTheDialogButForItsMoment)
{
    QImage logo(200, 50, QImage::Format_RGB32);
    logo.fill(Qt::red);
    ASSERT_TRUE(logo.save(path("logo.png")));
    setSetting("soundreport.projectName", "A \xC3\xA9tude");
    setSetting("soundreport.soundMixer", "M. Ixer");
    setSetting("soundreport.companyLogoPath", folder.file("logo.png"));
    ASSERT_TRUE(ConfigManager::getInstance().saveConfig(folder.file("settings")));
    SoundReportDialog dialog(files, nullptr);
    ASSERT_TRUE(dialog.generatePdfReport(QString::fromStdString(shown)));
    const std::string settings = readBytes(folder.file("settings"));
    const ProcessResult result = program(command("pdf", { "--settings", folder.file("settings") }));
    EXPECT_EQ(0, result.exitCode);
    EXPECT_EQ("", result.output);
    EXPECT_TRUE(withoutMoment(readBytes(shown)) == withoutMoment(readBytes(out)));
    EXPECT_NE(std::string::npos, readBytes(out).find("%%EOF"));
    EXPECT_EQ(settings, readBytes(folder.file("settings")));
}

TEST_F(Report, productionDetailsComeFromOptionsBeforeTheSettings)
{
    const std::string file = folder.file("settings");
    writeBytes(file, "soundreport.projectName=Stored\nsoundreport.director=Stored\n");
    setSetting("soundreport.projectName", "Given");
    setSetting("soundreport.director", "Stored");
    SoundReportDialog dialog(files, nullptr);
    ASSERT_TRUE(dialog.generatePdfReport(QString::fromStdString(shown)));
    EXPECT_EQ(0, program(command("pdf", { "--settings", file, "--project", "Given" })).exitCode);
    EXPECT_TRUE(withoutMoment(readBytes(shown)) == withoutMoment(readBytes(out)));
    // Those of the window where no file is named, and no file comes of it where it has none.
    EXPECT_EQ(0, program(command("pdf", { "--project", "Given", "--director", "Stored" })).exitCode);
    EXPECT_TRUE(withoutMoment(readBytes(shown)) == withoutMoment(readBytes(out)));
    EXPECT_FALSE(fs::exists(folder.path() / ".config"));
    const ProcessResult none = program(command("pdf", { "--settings", folder.file("none") }));
    EXPECT_EQ(1, none.exitCode);
    EXPECT_EQ("tagwell-cli: " + folder.file("none") + ": these settings can't be read\n", none.output);
}

TEST_F(Report, pdfNeedsNoDisplayWhateverTheEnvironmentSays)
{
    const ProcessResult result = program(
        command("pdf"), { "QT_QPA_PLATFORM=xcb", "DISPLAY=:97", "QT_QPA_PLATFORMTHEME=gtk3", "QT_SCALE_FACTOR=3" });
    EXPECT_EQ(0, result.exitCode) << result.output;
    SoundReportDialog dialog(files, nullptr);
    ASSERT_TRUE(dialog.generatePdfReport(QString::fromStdString(shown)));
    EXPECT_TRUE(withoutMoment(readBytes(shown)) == withoutMoment(readBytes(out)));
}

TEST_F(Report, csvCanHaveCircledAndWild)
{
    const std::string path = folder.file("circled.wav");
    WavBuilder().ixml("<BWFXML><CIRCLED>TRUE</CIRCLED></BWFXML>").fmt(48000, 1, 24).dataFrames(1).write(path);
    ASSERT_EQ(Exit::Ok, runCli({ "report", "--format", "csv", "--circled", "-o", out, path }).exit);
    const std::string text = readBytes(out);
    EXPECT_NE(std::string::npos, text.find(",Track Names,Notes,Circled,Wild\n")) << text;
    EXPECT_TRUE(text.ends_with(",yes,no\n")) << text;
}

TEST_F(Report, avidAleIsValidAndTellsWhatItLeavesOut)
{
    const CliResult result = runCli(command("avid-ale", { "--video-format=PAL" }));
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("tagwell-cli: " + files[2].toStdString() + ": left out, since it names no frame rate\n", result.err);
    const std::string text = readBytes(out);
    EXPECT_EQ(Strings(), avidAleComplaints(text)) << text;
    EXPECT_NE(std::string::npos, text.find("VIDEO_FORMAT\tPAL\r\n"));
    EXPECT_EQ((Strings{ "b", "AAD0002_1" }), avidAleColumn(text, "Name"));
    EXPECT_EQ((Strings{ "01:00:00:00", "01:00:06:09" }), avidAleColumn(text, "Start"));
    EXPECT_EQ((Strings{ "25", "23.98" }), avidAleColumn(text, "FPS"));
}

TEST_F(Report, nothingToReportLeavesNoFile)
{
    const std::string none = files[2].toStdString();
    EXPECT_EQ(Exit::Found, runCli({ "report", "--format", "avid-ale", "-o", out, none }).exit);
    const CliResult pdf = runCli({ "report", "--format", "pdf", "-o", out, folder.file("gone.wav") });
    EXPECT_EQ(Exit::Found, pdf.exit);
    EXPECT_NE(std::string::npos, pdf.err.find(out + ": there is no take for it\n")) << pdf.err;
    EXPECT_FALSE(fs::exists(out));
    EXPECT_EQ(3, entriesThere());
}

TEST_F(Report, filesThatFailAreToldAndLeftOut)
{
    writeBytes(folder.file("no.wav"), "no WAV file");
    files.append(path("no.wav"));
    const CliResult result = runCli(command("csv"));
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("tagwell-cli: " + folder.file("no.wav") + ": it is no WAV file\n", result.err);
    const std::string text = readBytes(out);
    EXPECT_EQ(std::string::npos, text.find("no.wav"));
    EXPECT_NE(std::string::npos, text.find("b.wav"));
}

TEST_F(Report, interruptionLeavesTheOldReport)
{
    writeBytes(out, "old");
    CliSetup setup;
    setup.interruptAfter = 1;
    EXPECT_EQ(Exit::Found, runCli(command("csv"), setup).exit);
    EXPECT_EQ("old", readBytes(out));
    EXPECT_EQ(4, entriesThere());
}

TEST_F(Report, fullDiskLeavesTheOldReport)
{
    writeBytes(out, "old");
    for (const std::string format : { "csv", "ale", "avid-ale", "pdf" }) {
        Strings shell = { "sh", "-c", "trap '' XFSZ; ulimit -f 0; exec \"$@\"", "sh", TAGWELL_CLI };
        for (const std::string& argument : command(format))
            shell.push_back(argument);
        const ProcessResult result = runProcess(shell, { "HOME=" + folder.path().string() });
        EXPECT_EQ(1, result.exitCode) << format;
        EXPECT_NE(std::string::npos, result.output.find("tagwell-cli: " + out + ": ")) << result.output;
        EXPECT_EQ("old", readBytes(out)) << format;
    }
    EXPECT_EQ(4, entriesThere());
}

TEST_F(Report, targetThatCannotBeWrittenIsTold)
{
    const CliResult result
        = runCli({ "report", "--format", "csv", "-o", folder.file("none/out"), files[0].toStdString() });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("tagwell-cli: " + folder.file("none/out") + ": there is no such file\n", result.err);
}

TEST_F(Report, noReportReplacesARecording)
{
    for (const std::string format : { "csv", "ale", "avid-ale", "pdf" }) {
        const std::string target = files[0].toStdString();
        const std::string before = readBytes(target);
        const CliResult result = runCli({ "report", "--format", format, "-o", target, files[1].toStdString() });
        EXPECT_EQ(Exit::Found, result.exit);
        EXPECT_EQ("tagwell-cli: " + target + ": it is a recording, and none is replaced\n", result.err);
        EXPECT_EQ(before, readBytes(target));
    }
}

TEST_F(Report, commaLocaleChangesNothing)
{
    ASSERT_EQ(Exit::Ok, runCli(command("csv")).exit);
    const std::string csv = readBytes(out);
    (void)runCli(command("avid-ale"));
    const std::string ale = readBytes(out);
    const CommaLocale locale;
    if (!locale.works())
        GTEST_SKIP() << "the locale can't be made here";
    ASSERT_EQ(Exit::Ok, runCli(command("csv")).exit);
    EXPECT_EQ(csv, readBytes(out));
    (void)runCli(command("avid-ale"));
    EXPECT_EQ(ale, readBytes(out));
}

TEST_F(Report, namesThatAreNoUtf8AreReported)
{
    const std::string odd = folder.file("\xFF\n.wav");
    fs::copy_file(files[0].toStdString(), odd);
    for (const std::string format : { "csv", "ale", "avid-ale" }) {
        EXPECT_EQ(Exit::Ok, runCli({ "report", "--format", format, "-o", out, odd }).exit) << format;
        EXPECT_NE(std::string::npos, readBytes(out).find(format == "csv" ? "Boom" : "R1")) << format;
    }
    EXPECT_EQ(Strings(), avidAleComplaints(readBytes(out)));
}

TEST_F(Report, wrongUsageEndsWithTwo)
{
    const std::string file = files[0].toStdString();
    for (const Strings& arguments :
        { Strings{ "report" }, { "report", "--format", "csv", file }, { "report", "-o", out, file },
            { "report", "--format", "csv", "-o", out }, { "report", "--format", "doc", "-o", out, file },
            { "report", "--format", "ale", "--circled", "-o", out, file },
            { "report", "--format", "csv", "--video-format", "PAL", "-o", out, file },
            { "report", "--format", "csv", "--mixer", "x", "-o", out, file },
            { "report", "--format", "csv", file, "-o" } })
        EXPECT_EQ(Exit::Usage, runCli(arguments).exit);
    EXPECT_FALSE(fs::exists(out));
}

TEST_F(Report, shortOptionTakesItsValueInOneOrTwoArguments)
{
    const std::string file = files[0].toStdString();
    EXPECT_EQ(Exit::Ok, runCli({ "report", "--format=csv", "-o" + out, file }).exit);
    EXPECT_TRUE(fs::exists(out));
}

TEST_F(Report, recordingsGiveAValidLog)
{
    const char* const recordings = std::getenv("TAGWELL_RECORDINGS");
    if (!recordings)
        GTEST_SKIP() << "TAGWELL_RECORDINGS is not set";
    EXPECT_EQ(Exit::Ok, runCli({ "report", "--format", "avid-ale", "-o", out, recordings }).exit);
    const std::string text = readBytes(out);
    EXPECT_EQ(Strings(), avidAleComplaints(text));
    EXPECT_NE(std::string::npos,
        text.find("A101_1\tA1A2\t12:39:59:00\t12:40:04:00\t00:00:05:00\t18Y12M31\tA101\t1\t18Y12M31\tA101_1.WAV\t"
                  "23.98\t\t48000\t24\r\n"));
}

} // namespace
