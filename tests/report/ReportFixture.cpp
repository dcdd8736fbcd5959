#include "tests/report/ReportFixture.h"

#include "app/settings/ConfigManager.h"
#include "report/SoundReportDialog.h"
#include "tests/support/WavBuilder.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

#include <unistd.h>

void ReportFixture::SetUp()
{
    for (const char* key : { "lastRecording.folderPath", "media.saveLocation", "metadata.project",
             "lastRecording.soundRoll", "soundreport.productionCompany", "soundreport.projectName",
             "soundreport.director", "soundreport.soundMixer", "soundreport.mixerPhone", "soundreport.mixerEmail",
             "soundreport.companyLogoPath" })
        setSetting(key, "");
    setSetting("soundreport.outputFormat", "0");
}

QString ReportFixture::addTake(const std::string& name, const Recording& recording)
{
    recording.fileWithoutAudio().write(folder.file(name));
    return path(name);
}

void ReportFixture::withReadOnlyTargets(const std::function<void(const QString& inFolder, const QString& file)>& act)
{
    namespace fs = std::filesystem;
    const fs::path locked = folder.path() / "locked";
    fs::create_directory(locked);
    writeBytes(locked / "old", "old");
    constexpr auto readable = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
    constexpr auto enterable = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    fs::permissions(locked / "old", readable);
    fs::permissions(locked, readable | enterable);
    fs::permissions(folder.path(), fs::perms::all);
    {
        const OrdinaryUser user;
        act(path("locked/new"), path("locked/old"));
    }
    EXPECT_FALSE(fs::exists(locked / "new"));
    EXPECT_EQ(readBytes(locked / "old"), "old");
    fs::permissions(locked, fs::perms::all);
}

void setSetting(const std::string& key, const std::string& value)
{
    ConfigManager::getInstance().setString(key, value);
}

std::string getSetting(const std::string& key)
{
    return ConfigManager::getInstance().getString(key, "(absent)");
}

void click(const QWidget& parent, const char* name)
{
    QTest::mouseClick(&childOf<QPushButton>(parent, name), Qt::LeftButton);
}

void typeInto(const QWidget& parent, const char* name, const QString& text)
{
    QLineEdit& edit = childOf<QLineEdit>(parent, name);
    edit.setFocus();
    QTest::keyClick(&edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&edit, Qt::Key_Delete);
    QTest::keyClicks(&edit, text);
}

QString proposedName(const QFileDialog& chooser)
{
    return childOf<QLineEdit>(chooser, "fileNameEdit").text();
}

void pickPath(QFileDialog& chooser, const QString& path)
{
    // An inactive dialog overwrites what is typed with what its list selects.
    EXPECT_TRUE(QTest::qWaitForWindowActive(&chooser));
    typeInto(chooser, "fileNameEdit", path);
    EXPECT_EQ(proposedName(chooser), path);
    const auto& box = childOf<QDialogButtonBox>(chooser, "buttonBox");
    const bool saving = chooser.acceptMode() == QFileDialog::AcceptSave;
    QPushButton* button = box.button(saving ? QDialogButtonBox::Save : QDialogButtonBox::Open);
    EXPECT_TRUE(QTest::qWaitFor([button] { return button->isEnabled(); }, 10000));
    // The list of completions would take the click for itself.
    QWidget* completions = childOf<QLineEdit>(chooser, "fileNameEdit").completer()->popup();
    if (completions->isVisible())
        QTest::keyClick(completions, Qt::Key_Escape);
    QTest::mouseClick(button, Qt::LeftButton);
    if (chooser.isVisible()) {
        ADD_FAILURE() << "the file dialog refused " << path.toStdString();
        chooser.reject();
    }
}

void cancelChooser(QFileDialog& chooser)
{
    QTest::mouseClick(childOf<QDialogButtonBox>(chooser, "buttonBox").button(QDialogButtonBox::Cancel), Qt::LeftButton);
}

QStringList rowTexts(const SoundReportDialog& dialog, int row)
{
    const auto& table = childOf<QTableWidget>(dialog, "takeTable");
    QStringList texts;
    for (int column = 0; column < table.columnCount(); ++column)
        texts << table.item(row, column)->text();
    return texts;
}

int rowCount(const SoundReportDialog& dialog)
{
    return childOf<QTableWidget>(dialog, "takeTable").rowCount();
}

QString labelText(const SoundReportDialog& dialog, const char* name)
{
    return childOf<QLabel>(dialog, name).text();
}

CommandResult runCommand(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted() || !process.waitForFinished(120000))
        return {};
    return { process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
        QString::fromUtf8(process.readAllStandardError()) };
}

OrdinaryUser::OrdinaryUser()
{
    constexpr uid_t kNobody = 65534;
    if (geteuid() == 0) {
        EXPECT_EQ(seteuid(kNobody), 0);
    }
}

OrdinaryUser::~OrdinaryUser()
{
    if (getuid() == 0) {
        EXPECT_EQ(seteuid(0), 0);
    }
}
