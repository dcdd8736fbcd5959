// The one table of the report's settings, without a window.

#include "report/ReportSettings.h"

#include "app/settings/ConfigManager.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>
#include <string>
#include <vector>

namespace {

class OwnSettings : public ConfigManager { };

class ReportSettingsTable : public testing::Test {
protected:
    void SetUp() override { setenv("HOME", home.path().c_str(), 1); }

    TempFolder home;
};

} // namespace

TEST_F(ReportSettingsTable, theTextsStandInTheirFixedOrder)
{
    std::vector<std::string> keys;
    std::vector<std::string> captions;
    for (const ReportField& field : kReportFields) {
        keys.emplace_back(field.key);
        captions.emplace_back(field.caption);
    }
    EXPECT_EQ(keys,
        (std::vector<std::string>{ "soundreport.productionCompany", "soundreport.projectName", "soundreport.director",
            "soundreport.soundMixer", "soundreport.mixerPhone", "soundreport.mixerEmail",
            "soundreport.companyLogoPath" }));
    EXPECT_EQ(captions,
        (std::vector<std::string>{ "Production Company:", "Project/Show Name:", "Director:", "Sound Mixer:",
            "Mixer Phone:", "Mixer Email:", "Company Logo:" }));
}

TEST_F(ReportSettingsTable, noKeyPlaceOrRowStandsTwice)
{
    std::set<std::string> names;
    ReportSettings settings;
    std::set<const std::string*> places;
    for (const ReportField& field : kReportFields) {
        EXPECT_TRUE(names.insert(field.key).second) << field.key;
        EXPECT_TRUE(names.insert(field.editName).second) << field.editName;
        EXPECT_TRUE(places.insert(&(settings.*field.value)).second) << field.key;
    }
}

TEST_F(ReportSettingsTable, whatWasStoredIsLoadedAgain)
{
    OwnSettings config;
    ReportSettings stored{ "A", "B", "C", "J\xC3\xBCrgen", "+49 30", "", "/logo.png", 2 };
    storeReportSettings(stored, config);
    const ReportSettings loaded = loadReportSettings(config);
    for (const ReportField& field : kReportFields)
        EXPECT_EQ(loaded.*field.value, stored.*field.value) << field.key;
    EXPECT_EQ(loaded.outputFormat, 2);
    EXPECT_EQ(config.getString("soundreport.soundMixer", ""), "J\xC3\xBCrgen");
    EXPECT_EQ(config.getString("soundreport.companyLogoPath", ""), "/logo.png");
    EXPECT_EQ(config.getInt("soundreport.outputFormat", 0), 2);
}

TEST_F(ReportSettingsTable, emptySettingsGiveEmptyTextsAndPdf)
{
    const OwnSettings config;
    const ReportSettings loaded = loadReportSettings(config);
    for (const ReportField& field : kReportFields)
        EXPECT_EQ(loaded.*field.value, "") << field.key;
    EXPECT_EQ(loaded.outputFormat, 0);
}

TEST_F(ReportSettingsTable, theFormatIsLoadedUncheckedAndAnyUnknownOneIsPdf)
{
    OwnSettings config;
    config.setInt("soundreport.outputFormat", -7);
    EXPECT_EQ(loadReportSettings(config).outputFormat, -7);
    EXPECT_STREQ(reportFormat(0).name, "PDF");
    EXPECT_STREQ(reportFormat(1).name, "CSV");
    EXPECT_STREQ(reportFormat(2).name, "ALE");
    for (const int unknown : { -7, -1, 3, 7 })
        EXPECT_STREQ(reportFormat(unknown).extension, ".pdf") << unknown;
}
