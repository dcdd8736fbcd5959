#pragma once

#include <QFile>
#include <QIODevice>

/// Opens a report's target as text, replacing what stood there. False if it can't be opened for writing; an empty name
/// counts as that without being tried, since Qt would print a warning.
[[nodiscard]] inline bool openReportFile(QFile& file)
{
    return !file.fileName().isEmpty() && file.open(QIODevice::WriteOnly | QIODevice::Text);
}
