#include "app/files/FolderWalk.h"

#include "app/files/WavSuffix.h"

#include <QByteArrayView>
#include <QFile>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
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
    /// `rootPath` stands in front of all folders and files, and ends in "/" unless it is empty.
    explicit Walk(std::string rootPath = {}) : root(std::move(rootPath)) { }

    QStringList files;
    std::vector<std::string> unreadable;
    std::vector<std::string> unnamed;
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
        const fs::path path(root + QFile::encodeName(folder).toStdString());
        fs::directory_iterator each(path, error);
        for (; !error && each != fs::directory_iterator(); each.increment(error))
            addEntry(entries, *each);
        if (error)
            unreadable.push_back(path.string());
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

    void addEntry(std::vector<Entry>& entries, const fs::directory_entry& entry)
    {
        const std::string& path = entry.path().native();
        const std::string_view bytes = std::string_view(path).substr(path.rfind('/') + 1);
        const QByteArrayView name(bytes.data(), static_cast<qsizetype>(bytes.size()));
        if (name.startsWith('.'))
            return;

        std::error_code error;
        const bool isFile = hasWavSuffix(bytes) && entry.is_regular_file(error);
        const bool isFolder = !isFile && !entry.is_symlink(error) && entry.is_directory(error);
        if ((isFile || isFolder) && !name.isValidUtf8()) {
            unnamed.push_back(path);
            return;
        }
        if (isFile)
            entries.push_back({ QString::fromUtf8(name), false });
        if (isFolder)
            entries.push_back({ QString::fromUtf8(name) + u'/', true });
    }

    std::string root;
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

// What stands in front is the same for all, so the order of the rest is the order of the whole paths.
FolderWalkResult walkFolder(const std::string& dir)
{
    if (dir.empty())
        return {};
    const std::string root = dir.ends_with('/') ? dir : dir + '/';
    Walk walk(root);
    walk.visit({});
    if (walk.needsFullSort)
        walk.files.sort(Qt::CaseInsensitive);
    FolderWalkResult result{ {}, std::move(walk.unreadable), std::move(walk.unnamed) };
    result.files.reserve(static_cast<std::size_t>(walk.files.size()));
    for (const QString& file : walk.files)
        result.files.push_back(root + QFile::encodeName(file).toStdString());
    return result;
}
