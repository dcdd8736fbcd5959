#include "report/ReportSettings.h"

#include "app/settings/ConfigManager.h"

namespace {

constexpr char kFormatKey[] = "soundreport.outputFormat";

} // namespace

const ReportFormat& reportFormat(int outputFormat)
{
    const bool known = outputFormat == kCsvFormat || outputFormat == kAleFormat;
    return kReportFormats[known ? static_cast<size_t>(outputFormat) : 0];
}

ReportSettings loadReportSettings(const ConfigManager& config)
{
    ReportSettings settings;
    for (const ReportField& field : kReportFields)
        settings.*field.value = config.getString(field.key, "");
    settings.outputFormat = config.getInt(kFormatKey, 0);
    return settings;
}

void storeReportSettings(const ReportSettings& settings, ConfigManager& config)
{
    for (const ReportField& field : kReportFields)
        config.setString(field.key, settings.*field.value);
    config.setInt(kFormatKey, settings.outputFormat);
}
