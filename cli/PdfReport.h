#pragma once

#include <string>
#include <vector>

class QString;
struct ReportSettings;
struct TakeInfo;

/// The bytes of the PDF report over takes, of which there is one at least: what the window writes. Loads the part that
/// prints, which needs no display. Throws RunError, with `target` as its path, if that part is missing or fails.
/// Main thread only; the process must have no application object of its own.
std::string printPdfReport(const std::string& target, const std::vector<TakeInfo>& takes,
    const ReportSettings& settings, const QString& soundRoll);
