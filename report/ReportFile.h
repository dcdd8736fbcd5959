#pragma once

#include <vector>

class QFile;
class QString;
class QTextStream;
struct TakeInfo;

/// Opens a report's target as text, replacing what stood there. False if it can't be opened for writing; an empty name
/// counts as that without being tried, since Qt would print a warning.
[[nodiscard]] bool openReportFile(QFile& file);

/// Lets `write` fill a file of UTF-8 text at `path`, replacing what stood there. False if it can't be opened for
/// writing; errors while writing are not looked at.
[[nodiscard]] bool writeReportFile(const QString& path, const std::vector<TakeInfo>& takes,
    void (*write)(QTextStream& out, const std::vector<TakeInfo>& takes));
