#include "app/files/FolderWalk.h"

#include <QByteArrayView>
#include <QFile>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;

/// A WAV file, or a folder, whose name then ends in "/" as it does inside the paths below it.
struct Entry {
    QString name;
    bool isFolder = false;
};

/// Walks folder by folder and sorts each folder's entries by themselves: names can't hold a "/", so the order of two
/// paths is settled by the first entries in which they part, and one sort over all long paths is saved.
/// The exception is a pair of folders whose names differ in case only: what they hold interleaves.
class Walk {
public:
    QStringList files;
    bool needsFullSort = false;

    void visit(const QString& folder)
    {
        const std::vector<Entry> entries = sortedEntries(folder);
        for (const Entry& entry : entries) {
            if (entry.isFolder)
                visit(folder + entry.name);
            else
                files.append(folder + entry.name);
        }
    }

private:
    std::vector<Entry> sortedEntries(const QString& folder)
    {
        std::vector<Entry> entries;
        std::error_code error;
        const fs::path path(QFile::encodeName(folder).toStdString());
        fs::directory_iterator each(path, fs::directory_options::skip_permission_denied, error);
        for (; !error && each != fs::directory_iterator(); each.increment(error))
            addEntry(entries, *each);
        std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.name.compare(b.name, Qt::CaseInsensitive) < 0; });
        needsFullSort = needsFullSort
            || std::adjacent_find(entries.begin(), entries.end(), sameFolderButForCase) != entries.end();
        return entries;
    }

    static bool sameFolderButForCase(const Entry& a, const Entry& b)
    {
        return a.isFolder && b.isFolder && a.name.compare(b.name, Qt::CaseInsensitive) == 0;
    }

    static void addEntry(std::vector<Entry>& entries, const fs::directory_entry& entry)
    {
        const std::string& path = entry.path().native();
        const std::string_view bytes = std::string_view(path).substr(path.rfind('/') + 1);
        const QByteArrayView name(bytes.data(), static_cast<qsizetype>(bytes.size()));
        if (name.startsWith('.') || !name.isValidUtf8())
            return;

        std::error_code error;
        if (isWavName(bytes)) {
            if (entry.is_regular_file(error))
                entries.push_back({ QString::fromUtf8(name), false });
        }
        if (!entry.is_symlink(error) && entry.is_directory(error))
            entries.push_back({ QString::fromUtf8(name) + u'/', true });
    }

    static bool isWavName(std::string_view name)
    {
        constexpr std::string_view kSuffix = ".wav";
        if (name.size() < kSuffix.size())
            return false;
        const std::string_view end = name.substr(name.size() - kSuffix.size());
        return std::equal(end.begin(), end.end(), kSuffix.begin(), [](char byte, char wanted) {
            const bool upper = byte >= 'A' && byte <= 'Z';
            return (upper ? static_cast<char>(byte - 'A' + 'a') : byte) == wanted;
        });
    }
};

} // namespace

QStringList wavFilesUnder(const QString& dir)
{
    // With a "/" behind it no name at all would mean the root.
    if (dir.isEmpty())
        return {};
    Walk walk;
    walk.visit(dir.endsWith(u'/') ? dir : dir + u'/');
    if (walk.needsFullSort)
        walk.files.sort(Qt::CaseInsensitive);
    return walk.files;
}
