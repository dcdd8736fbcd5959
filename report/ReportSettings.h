#pragma once

#include <array>
#include <string>

class ConfigManager;

/// The production details of a report, texts in UTF-8 that may each be empty, and the chosen format.
struct ReportSettings {
    /// Edited and stored; no report shows it.
    std::string productionCompany = {};
    std::string projectName = {};
    std::string director = {};
    std::string soundMixer = {};
    std::string mixerPhone = {};
    std::string mixerEmail = {};
    /// Picture file for the title of the PDF report; one that can't be read is left out.
    std::string companyLogoPath = {};
    /// Index into `kReportFormats`; any other value counts as PDF. As it stands in the settings, unchecked.
    int outputFormat = 0;
};

/// One text of the settings: its key in the settings file, its place, and its row in the configuration dialog.
struct ReportField {
    const char* key;
    std::string ReportSettings::*value;
    const char* caption;
    /// The line edit's objectName.
    const char* editName;
};

/// All texts, in the order in which they are stored and edited. The logo is the last: the dialog has more than a line
/// for it.
inline constexpr std::array<ReportField, 7> kReportFields{ {
    { "soundreport.productionCompany", &ReportSettings::productionCompany,
        "Production Company:", "productionCompanyEdit" },
    { "soundreport.projectName", &ReportSettings::projectName, "Project/Show Name:", "projectNameEdit" },
    { "soundreport.director", &ReportSettings::director, "Director:", "directorEdit" },
    { "soundreport.soundMixer", &ReportSettings::soundMixer, "Sound Mixer:", "soundMixerEdit" },
    { "soundreport.mixerPhone", &ReportSettings::mixerPhone, "Mixer Phone:", "mixerPhoneEdit" },
    { "soundreport.mixerEmail", &ReportSettings::mixerEmail, "Mixer Email:", "mixerEmailEdit" },
    { "soundreport.companyLogoPath", &ReportSettings::companyLogoPath, "Company Logo:", "companyLogoEdit" },
} };

/// A format of reports as the dialogs name it.
struct ReportFormat {
    const char* name;
    /// With its dot.
    const char* extension;
    /// Name filter of the save dialog.
    const char* filter;
    /// Item in the configuration dialog.
    const char* title;
};

/// Item i stands for output format i.
inline constexpr std::array<ReportFormat, 3> kReportFormats{ {
    { "PDF", ".pdf", "PDF Files (*.pdf)", "PDF (Sound Report)" },
    { "CSV", ".csv", "CSV Files (*.csv)", "CSV" },
    { "ALE", ".ale", "ALE Files (*.ale)", "ALE (Avid Log Exchange)" },
} };
inline constexpr int kCsvFormat = 1;
inline constexpr int kAleFormat = 2;

/// The format for a value of `outputFormat`, PDF for one that stands for none.
const ReportFormat& reportFormat(int outputFormat);

/// What the settings hold, unchecked; empty texts and PDF where they hold nothing.
ReportSettings loadReportSettings(const ConfigManager& config);

/// Puts all texts and the format into the settings in the table's order. Doesn't save them to their file.
void storeReportSettings(const ReportSettings& settings, ConfigManager& config);
