#pragma once

#include <vector>

class QString;
class QTextStream;
struct TakeInfo;

/// Writes the takes in their order as comma-separated lines below a line of titles, each closed by a line feed. The
/// caller owns the stream and sees to its encoding, UTF-8 unless it was changed; what went wrong while writing stands
/// in its status once it is flushed.
void writeCsv(QTextStream& out, const std::vector<TakeInfo>& takes);

/// The same with two more columns behind the others, "Circled" and "Wild", each "yes" or "no".
void writeCsvWithFlags(QTextStream& out, const std::vector<TakeInfo>& takes);

/// Writes what `writeCsv` gives to a file, replacing what stood there. False if it can't be opened for writing; errors
/// while writing are not looked at.
bool writeCsvReport(const QString& path, const std::vector<TakeInfo>& takes);
