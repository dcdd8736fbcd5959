#include "cli/Progress.h"

#include <algorithm>
#include <ostream>

namespace {

constexpr int64_t kQuietMillis = 500;
constexpr int64_t kRefreshMillis = 167;
constexpr int64_t kMillisPerSecond = 1000;
constexpr int64_t kSecondsPerMinute = 60;

} // namespace

std::string progressLine(size_t done, size_t total, int64_t millis, int columns)
{
    std::string line = std::to_string(done) + " of " + std::to_string(total) + " files";
    if (done > 0) {
        const double left = static_cast<double>(millis) / static_cast<double>(done) * static_cast<double>(total - done);
        const auto seconds = (static_cast<int64_t>(left) + kMillisPerSecond - 1) / kMillisPerSecond;
        const std::string rest = std::to_string(seconds % kSecondsPerMinute);
        line
            += ", " + std::to_string(seconds / kSecondsPerMinute) + ":" + (rest.size() < 2 ? "0" : "") + rest + " left";
    }
    return line.substr(0, static_cast<size_t>(std::max(columns - 1, 0)));
}

Progress::Progress(Io& used, size_t totalFiles) : io(used), total(totalFiles)
{
    if (!io.errIsTerminal)
        return;
    begin = io.millis();
    nextMillis = begin + kQuietMillis;
}

Progress::~Progress()
{
    clear();
}

void Progress::step(size_t done)
{
    if (!io.errIsTerminal)
        return;
    const int64_t now = io.millis();
    if (now < nextMillis)
        return;
    nextMillis = now + kRefreshMillis;
    std::string line = progressLine(done, total, now - begin, io.errColumns);
    const size_t before = shownBytes;
    shownBytes = line.size();
    // Blanks cover what was longer before; no escape sequence is needed for that.
    if (line.size() < before)
        line.append(before - line.size(), ' ');
    io.err << '\r' << line << std::flush;
}

void Progress::clear()
{
    if (shownBytes == 0)
        return;
    io.err << '\r' << std::string(shownBytes, ' ') << '\r' << std::flush;
    shownBytes = 0;
    nextMillis = 0;
}
