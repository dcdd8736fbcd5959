#pragma once

#include <vector>

class QString;
class QTextStream;
struct TakeInfo;

/// Writes the takes in their order as an Avid Log Exchange text, whose heading describes the roll by its first take.
/// The caller owns the stream and sees to its encoding, UTF-8 unless it was changed; what went wrong while writing
/// stands in its status once it is flushed.
void writeAle(QTextStream& out, const std::vector<TakeInfo>& takes);

/// Writes the same to a file, replacing what stood there. False if it can't be opened for writing; errors while
/// writing are not looked at.
bool writeAleReport(const QString& path, const std::vector<TakeInfo>& takes);
