#include "app/settings/ConfigManager.h"
#include "report/SoundReportDialog.h"
#include "tests/report/ReportFixture.h"

#include <QAccessible>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QtTest>

namespace {

struct Field {
    const char* key;
    const char* edit;
    const char* caption;
};

const Field kFields[] = {
    { "soundreport.productionCompany", "productionCompanyEdit", "Production Company:" },
    { "soundreport.projectName", "projectNameEdit", "Project/Show Name:" },
    { "soundreport.director", "directorEdit", "Director:" },
    { "soundreport.soundMixer", "soundMixerEdit", "Sound Mixer:" },
    { "soundreport.mixerPhone", "mixerPhoneEdit", "Mixer Phone:" },
    { "soundreport.mixerEmail", "mixerEmailEdit", "Mixer Email:" },
};

QString text(const QDialog& dialog, const char* name)
{
    return childOf<QLineEdit>(dialog, name).text();
}

QLabel& preview(const QDialog& dialog)
{
    return childOf<QLabel>(dialog, "logoPreview");
}

QSize pictureSize(const QDialog& dialog)
{
    return preview(dialog).pixmap(Qt::ReturnByValue).size();
}

class ReportConfiguration : public ReportFixture {
protected:
    /// Presses "Configure..." and lets `act` work on the dialog, which it has to end.
    static void configure(SoundReportDialog& dialog, const std::function<void(QDialog&)>& act)
    {
        bool came = false;
        whenModal<QDialog>([&came, &act](QDialog& configuration) {
            came = true;
            act(configuration);
        });
        click(dialog, "configureButton");
        EXPECT_TRUE(came);
    }

    static void cancel(QDialog& dialog) { click(dialog, "cancelButton"); }
    static void accept(QDialog& dialog) { click(dialog, "okButton"); }

    static void browse(const QDialog& dialog, const QString& file)
    {
        whenModal<QFileDialog>([file](QFileDialog& chooser) { pickPath(chooser, file); });
        click(dialog, "browseLogoButton");
    }

    QString picture(const char* name, int width, int height)
    {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(Qt::red);
        EXPECT_TRUE(image.save(path(name)));
        return path(name);
    }

    static std::string settingsOnDisk() { return readBytes(ConfigManager::getInstance().getConfigPath()); }
};

} // namespace

TEST_F(ReportConfiguration, aFirstRunIsEmptyWithPdfAndNoLogo)
{
    SoundReportDialog dialog(nullptr);
    configure(dialog, [](QDialog& form) {
        for (const Field& field : kFields)
            EXPECT_EQ(text(form, field.edit), "") << field.edit;
        EXPECT_EQ(text(form, "companyLogoEdit"), "");
        EXPECT_EQ(childOf<QComboBox>(form, "outputFormatCombo").currentText(), "PDF (Sound Report)");
        EXPECT_EQ(preview(form).text(), "No logo");
        cancel(form);
    });
}

TEST_F(ReportConfiguration, nineRowsStandInOrderAndTheLogoIsReadOnly)
{
    SoundReportDialog dialog(nullptr);
    configure(dialog, [&dialog](QDialog& form) {
        EXPECT_EQ(form.windowTitle(), "Sound Report Configuration");
        EXPECT_EQ(form.minimumWidth(), 500);
        EXPECT_EQ(form.parentWidget(), &dialog);
        QStringList captions;
        const auto& rows = *form.findChild<QFormLayout*>();
        ASSERT_EQ(rows.rowCount(), 9);
        for (int row = 0; row < 8; ++row)
            captions << qobject_cast<QLabel*>(rows.itemAt(row, QFormLayout::LabelRole)->widget())->text();
        EXPECT_EQ(captions,
            (QStringList{ "Production Company:", "Project/Show Name:", "Director:", "Sound Mixer:", "Mixer Phone:",
                "Mixer Email:", "Output Format:", "Company Logo:" }));
        EXPECT_EQ(rows.itemAt(8, QFormLayout::FieldRole)->widget(), &preview(form));

        const auto& combo = childOf<QComboBox>(form, "outputFormatCombo");
        ASSERT_EQ(combo.count(), 3);
        EXPECT_EQ(combo.itemText(1), "CSV");
        EXPECT_EQ(combo.itemText(2), "ALE (Avid Log Exchange)");
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(combo.itemData(i).toInt(), i);

        const auto& logo = childOf<QLineEdit>(form, "companyLogoEdit");
        EXPECT_TRUE(logo.isReadOnly());
        EXPECT_EQ(logo.placeholderText(), "No logo selected");
        EXPECT_EQ(childOf<QPushButton>(form, "browseLogoButton").text(), "Browse...");
        EXPECT_EQ(childOf<QPushButton>(form, "clearLogoButton").text(), "Clear");
        EXPECT_EQ(preview(form).size(), QSize(150, 75));
        EXPECT_EQ(preview(form).alignment(), Qt::AlignCenter);
        EXPECT_EQ(preview(form).styleSheet(), "QLabel { border: 1px solid #ccc; background: #f5f5f5; }");
        cancel(form);
    });
}

TEST_F(ReportConfiguration, everyControlHasAnAccessibleName)
{
    SoundReportDialog dialog(nullptr);
    configure(dialog, [](QDialog& form) {
        for (QWidget* control : form.findChildren<QWidget*>()) {
            if (control->focusPolicy() == Qt::NoFocus || !control->isVisible())
                continue;
            EXPECT_FALSE(QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name).isEmpty())
                << control->objectName().toStdString();
        }
        cancel(form);
    });
}

TEST_F(ReportConfiguration, okKeepsEveryFieldAndSavesAtOnce)
{
    SoundReportDialog dialog(nullptr);
    configure(dialog, [](QDialog& form) {
        for (const Field& field : kFields)
            typeInto(form, field.edit, QString("v=") + field.edit);
        QTest::keyClick(&childOf<QComboBox>(form, "outputFormatCombo"), Qt::Key_Down);
        accept(form);
    });
    const std::string disk = settingsOnDisk();
    for (const Field& field : kFields) {
        EXPECT_EQ(getSetting(field.key), std::string("v=") + field.edit);
        EXPECT_NE(disk.find(std::string(field.key) + "=v=" + field.edit + "\n"), std::string::npos) << field.key;
    }
    EXPECT_NE(disk.find("soundreport.outputFormat=1\n"), std::string::npos);
}

TEST_F(ReportConfiguration, whatWasKeptIsShownAgainAndInTheNextDialog)
{
    SoundReportDialog dialog(nullptr);
    configure(dialog, [](QDialog& form) {
        typeInto(form, "directorEdit", "Ada");
        accept(form);
    });
    configure(dialog, [](QDialog& form) {
        EXPECT_EQ(text(form, "directorEdit"), "Ada");
        cancel(form);
    });
    SoundReportDialog next(nullptr);
    configure(next, [](QDialog& form) {
        EXPECT_EQ(text(form, "directorEdit"), "Ada");
        cancel(form);
    });
}

TEST_F(ReportConfiguration, cancelKeepsNothing)
{
    setSetting("soundreport.director", "Ada");
    SoundReportDialog dialog(nullptr);
    configure(dialog, [](QDialog& form) {
        typeInto(form, "directorEdit", "Bob");
        QTest::keyClick(&childOf<QComboBox>(form, "outputFormatCombo"), Qt::Key_Down);
        cancel(form);
    });
    EXPECT_EQ(getSetting("soundreport.director"), "Ada");
    EXPECT_EQ(getSetting("soundreport.outputFormat"), "0");
}

TEST_F(ReportConfiguration, aFieldCanBeEmptied)
{
    setSetting("soundreport.director", "Ada");
    SoundReportDialog dialog(nullptr);
    configure(dialog, [](QDialog& form) {
        typeInto(form, "directorEdit", "");
        accept(form);
    });
    EXPECT_EQ(getSetting("soundreport.director"), "");
}

TEST_F(ReportConfiguration, textsBeyondAsciiAreKeptAsUtf8)
{
    setSetting("soundreport.soundMixer", "J\xC3\xBCrgen");
    SoundReportDialog dialog(nullptr);
    configure(dialog, [](QDialog& form) {
        EXPECT_EQ(text(form, "soundMixerEdit"), QString::fromUtf8("J\xC3\xBCrgen"));
        childOf<QLineEdit>(form, "directorEdit").insert(QString::fromUtf8("\xE6\x97\xA5"));
        accept(form);
    });
    EXPECT_EQ(getSetting("soundreport.soundMixer"), "J\xC3\xBCrgen");
    EXPECT_EQ(getSetting("soundreport.director"), "\xE6\x97\xA5");
}

TEST_F(ReportConfiguration, returnInATextFieldAccepts)
{
    SoundReportDialog dialog(nullptr);
    configure(dialog, [](QDialog& form) {
        typeInto(form, "directorEdit", "Ada");
        QTest::keyClick(&childOf<QLineEdit>(form, "directorEdit"), Qt::Key_Return);
    });
    EXPECT_EQ(getSetting("soundreport.director"), "Ada");
}

TEST_F(ReportConfiguration, aChosenFormatHoldsForTheNextReport)
{
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    configure(dialog, [](QDialog& form) {
        QTest::keyClick(&childOf<QComboBox>(form, "outputFormatCombo"), Qt::Key_End);
        accept(form);
    });
    whenModal<QFileDialog>([](QFileDialog& chooser) {
        EXPECT_EQ(chooser.nameFilters(), QStringList("ALE Files (*.ale)"));
        cancelChooser(chooser);
    });
    click(dialog, "createReportButton");
}

TEST_F(ReportConfiguration, aStoredFormatOutsideTheListSelectsNoItemAndIsStoredAsMinusOne)
{
    for (const char* stored : { "7", "-3", "3" }) {
        setSetting("soundreport.outputFormat", stored);
        SoundReportDialog dialog(nullptr);
        configure(dialog, [](QDialog& form) {
            EXPECT_EQ(childOf<QComboBox>(form, "outputFormatCombo").currentIndex(), -1);
            accept(form);
        });
        EXPECT_EQ(getSetting("soundreport.outputFormat"), "-1");
    }
}

TEST_F(ReportConfiguration, aStoredLogoIsPreviewedAtItsProportions)
{
    setSetting("soundreport.companyLogoPath", picture("logo.png", 600, 200).toStdString());
    SoundReportDialog dialog(nullptr);
    configure(dialog, [](QDialog& form) {
        EXPECT_EQ(pictureSize(form), QSize(150, 50));
        EXPECT_EQ(preview(form).text(), "");
        cancel(form);
    });
}

TEST_F(ReportConfiguration, aSmallLogoIsEnlargedInThePreview)
{
    setSetting("soundreport.companyLogoPath", picture("logo.png", 10, 10).toStdString());
    SoundReportDialog dialog(nullptr);
    configure(dialog, [](QDialog& form) {
        EXPECT_EQ(pictureSize(form), QSize(75, 75));
        cancel(form);
    });
}

TEST_F(ReportConfiguration, aVanishedLogoIsCalledInvalidAndItsPathStays)
{
    setSetting("soundreport.companyLogoPath", folder.file("gone.png"));
    SoundReportDialog dialog(nullptr);
    configure(dialog, [this](QDialog& form) {
        EXPECT_EQ(preview(form).text(), "Invalid image");
        EXPECT_EQ(text(form, "companyLogoEdit"), path("gone.png"));
        accept(form);
    });
    EXPECT_EQ(getSetting("soundreport.companyLogoPath"), folder.file("gone.png"));
}

TEST_F(ReportConfiguration, aBrowsedLogoIsShownAndKeptOnOk)
{
    const QString file = picture("logo.png", 300, 300);
    SoundReportDialog dialog(nullptr);
    configure(dialog, [&file](QDialog& form) {
        whenModal<QFileDialog>([&file](QFileDialog& chooser) {
            EXPECT_EQ(chooser.windowTitle(), "Select Company Logo");
            EXPECT_EQ(chooser.nameFilters(), QStringList("Images (*.png *.jpg *.jpeg *.bmp *.gif)"));
            EXPECT_EQ(chooser.fileMode(), QFileDialog::ExistingFile);
            EXPECT_TRUE(chooser.testOption(QFileDialog::DontUseNativeDialog));
            pickPath(chooser, file);
        });
        click(form, "browseLogoButton");
        EXPECT_EQ(text(form, "companyLogoEdit"), file);
        EXPECT_EQ(pictureSize(form), QSize(75, 75));
        accept(form);
    });
    EXPECT_EQ(getSetting("soundreport.companyLogoPath"), file.toStdString());
}

TEST_F(ReportConfiguration, aBrowsedLogoIsForgottenOnCancel)
{
    setSetting("soundreport.companyLogoPath", "before.png");
    const QString file = picture("logo.png", 10, 10);
    SoundReportDialog dialog(nullptr);
    configure(dialog, [&file](QDialog& form) {
        browse(form, file);
        EXPECT_EQ(text(form, "companyLogoEdit"), file);
        cancel(form);
    });
    EXPECT_EQ(getSetting("soundreport.companyLogoPath"), "before.png");
    configure(dialog, [](QDialog& form) {
        EXPECT_EQ(text(form, "companyLogoEdit"), "before.png");
        cancel(form);
    });
}

TEST_F(ReportConfiguration, aFileThatIsNoPictureStaysInTheFieldAndIsKept)
{
    writeBytes(folder.file("bad.jpg"), std::string("\xFF\xD8\xFF\xE0 broken"));
    const QString file = path("bad.jpg");
    SoundReportDialog dialog(nullptr);
    configure(dialog, [&file](QDialog& form) {
        browse(form, file);
        EXPECT_EQ(preview(form).text(), "Invalid image");
        EXPECT_EQ(text(form, "companyLogoEdit"), file);
        accept(form);
    });
    EXPECT_EQ(getSetting("soundreport.companyLogoPath"), file.toStdString());
}

TEST_F(ReportConfiguration, aPictureReplacedByAnInvalidOneLeavesNoPicture)
{
    setSetting("soundreport.companyLogoPath", picture("logo.png", 10, 10).toStdString());
    writeBytes(folder.file("bad.png"), "no picture");
    SoundReportDialog dialog(nullptr);
    configure(dialog, [this](QDialog& form) {
        browse(form, path("bad.png"));
        EXPECT_TRUE(pictureSize(form).isEmpty());
        EXPECT_EQ(preview(form).text(), "Invalid image");
        cancel(form);
    });
}

TEST_F(ReportConfiguration, cancellingTheBrowserLeavesFieldAndPreview)
{
    setSetting("soundreport.companyLogoPath", picture("logo.png", 10, 10).toStdString());
    SoundReportDialog dialog(nullptr);
    configure(dialog, [this](QDialog& form) {
        whenModal<QFileDialog>([](QFileDialog& chooser) { cancelChooser(chooser); });
        click(form, "browseLogoButton");
        EXPECT_EQ(text(form, "companyLogoEdit"), path("logo.png"));
        EXPECT_EQ(pictureSize(form), QSize(75, 75));
        cancel(form);
    });
}

TEST_F(ReportConfiguration, theBrowserStartsAtTheStoredPathAndNotAtTheFieldsText)
{
    TempFolder other;
    const std::string elsewhere = other.file("x.png");
    writeBytes(elsewhere, "no picture");
    setSetting("soundreport.companyLogoPath", picture("logo.png", 10, 10).toStdString());
    SoundReportDialog dialog(nullptr);
    configure(dialog, [this, &elsewhere](QDialog& form) {
        browse(form, QString::fromStdString(elsewhere));
        whenModal<QFileDialog>([this](QFileDialog& chooser) {
            EXPECT_EQ(chooser.directory().absolutePath(), QString::fromStdString(folder.path()));
            cancelChooser(chooser);
        });
        click(form, "browseLogoButton");
        cancel(form);
    });
}

TEST_F(ReportConfiguration, clearThenOkStoresAnEmptyLogo)
{
    setSetting("soundreport.companyLogoPath", picture("logo.png", 10, 10).toStdString());
    SoundReportDialog dialog(nullptr);
    configure(dialog, [](QDialog& form) {
        click(form, "clearLogoButton");
        EXPECT_EQ(text(form, "companyLogoEdit"), "");
        EXPECT_EQ(preview(form).text(), "No logo");
        EXPECT_TRUE(pictureSize(form).isEmpty());
        accept(form);
    });
    EXPECT_EQ(getSetting("soundreport.companyLogoPath"), "");
    EXPECT_NE(settingsOnDisk().find("soundreport.companyLogoPath=\n"), std::string::npos);
}

TEST_F(ReportConfiguration, aSaveThatFailsIsSilentAndTheValuesHold)
{
    const std::string config = ConfigManager::getInstance().getConfigPath();
    std::filesystem::remove_all(std::filesystem::path(config).parent_path().parent_path());
    writeBytes(std::filesystem::path(config).parent_path().parent_path(), "a file in the way");
    SoundReportDialog dialog(nullptr);
    configure(dialog, [](QDialog& form) {
        typeInto(form, "directorEdit", "Ada");
        accept(form);
    });
    EXPECT_EQ(getSetting("soundreport.director"), "Ada");
    configure(dialog, [](QDialog& form) {
        EXPECT_EQ(text(form, "directorEdit"), "Ada");
        cancel(form);
    });
    std::filesystem::remove(std::filesystem::path(config).parent_path().parent_path());
}
