#pragma once

#include "core/BwfMetadata.h"

#include <QList>
#include <QSet>
#include <QString>

#include <vector>

/// The listed files: the path of each and the record that was last read from it, in the order of adding.
///
/// After every call, one that throws too, there are as many records as paths, all paths are different, and the record
/// at a row is that of the path at this row.
///
/// Thread: main only. Reading a file blocks.
class FileList {
public:
    /// Reads the file at `path`, an existing one of any kind, and puts it at the end. False, and nothing is read, if
    /// exactly this path is listed. Throws std::filesystem::filesystem_error if the file can't be sized; the list is
    /// untouched then.
    bool add(const QString& path);

    /// Takes the rows out; those below move up. `ascendingRows` are different; what is out of range is passed over.
    void remove(const QList<int>& ascendingRows);

    void clear();

    /// Replaces the record of `row`, which is in range, by what its file says now. Throws as `add` does, and the old
    /// record stays then.
    void readAgain(int row);

    bool isEmpty() const { return filePaths.isEmpty(); }
    int size() const { return static_cast<int>(filePaths.size()); }

    /// Whether `row` is in range; any number may be asked for.
    bool contains(int row) const { return row >= 0 && row < filePaths.size(); }

    /// `row` is in range. The record lives until the next call that changes the list.
    const BwfMetadata& record(int row) const { return records.at(row); }
    /// As it was added. `row` is in range.
    const QString& path(int row) const { return filePaths.at(row); }
    const QList<QString>& paths() const { return filePaths; }

    /// The records of `rows`, in their order; a row that is out of range is skipped. They live until the next call
    /// that changes the list.
    std::vector<const BwfMetadata*> recordsOf(const QList<int>& rows) const;

private:
    QList<BwfMetadata> records;
    QList<QString> filePaths;
    QSet<QString> listed; ///< The entries of `filePaths`, so that one is found without a search.
};
