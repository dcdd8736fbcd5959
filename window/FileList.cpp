#include "window/FileList.h"

#include "core/BwfMetadataReader.h"

#include <algorithm>
#include <utility>

namespace {

/// `list` without the entries at `rows`, which are ascending and different.
template <typename Entry> void eraseRows(QList<Entry>& list, const QList<int>& rows)
{
    auto nextErased = std::lower_bound(rows.begin(), rows.end(), 0);
    auto kept = list.begin();
    for (qsizetype row = 0; row < list.size(); ++row) {
        if (nextErased != rows.end() && *nextErased == row) {
            ++nextErased;
            continue;
        }
        // An entry moved onto itself would lose its texts.
        if (&*kept != &list[row])
            *kept = std::move(list[row]);
        ++kept;
    }
    list.erase(kept, list.end());
}

} // namespace

bool FileList::add(const QString& path)
{
    if (listed.contains(path))
        return false;
    // The only step that can fail comes before the first change.
    BwfMetadata record = BwfMetadataReader::readMetadata(path.toStdString());
    records.append(std::move(record));
    filePaths.append(path);
    listed.insert(path);
    return true;
}

void FileList::remove(const QList<int>& ascendingRows)
{
    for (const int row : ascendingRows) {
        if (contains(row))
            listed.remove(filePaths.at(row));
    }
    eraseRows(records, ascendingRows);
    eraseRows(filePaths, ascendingRows);
}

void FileList::clear()
{
    records.clear();
    filePaths.clear();
    listed.clear();
}

void FileList::readAgain(int row)
{
    records[row] = BwfMetadataReader::readMetadata(filePaths.at(row).toStdString());
}

std::vector<const BwfMetadata*> FileList::recordsOf(const QList<int>& rows) const
{
    std::vector<const BwfMetadata*> found;
    found.reserve(static_cast<size_t>(rows.size()));
    for (const int row : rows) {
        if (contains(row))
            found.push_back(&records.at(row));
    }
    return found;
}
