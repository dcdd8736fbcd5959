#include "app/files/FolderModel.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QHash>
#include <QLocale>
#include <QStyle>

#include <algorithm>

namespace {

constexpr const char* kTitles[FolderModel::ColumnCount] = { "Name", "Size", "Modified" };

/// The run of ASCII digits at `start`, and its part without leading zeros.
struct DigitRun {
    DigitRun(const QString& text, qsizetype start) : end(start)
    {
        while (end < text.size() && text[end] >= u'0' && text[end] <= u'9')
            ++end;
        qsizetype first = start;
        while (first + 1 < end && text[first] == u'0')
            ++first;
        digits = QStringView(text).mid(first, end - first);
    }

    qsizetype end;
    QStringView digits;
};

int compareNumbers(QStringView first, QStringView second)
{
    if (first.size() != second.size())
        return first.size() < second.size() ? -1 : 1;
    return first.compare(second);
}

/// Below, at or above 0 as `first` stands before, with or behind `second`.
int compareNaturally(const QString& first, const QString& second)
{
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < first.size() && j < second.size()) {
        const DigitRun left(first, i);
        const DigitRun right(second, j);
        if (!left.digits.isEmpty() && !right.digits.isEmpty()) {
            if (const int order = compareNumbers(left.digits, right.digits))
                return order;
            i = left.end;
            j = right.end;
            continue;
        }
        const QChar a = first[i++].toCaseFolded();
        const QChar b = second[j++].toCaseFolded();
        if (a != b)
            return a < b ? -1 : 1;
    }
    return static_cast<int>((first.size() - i > 0) - (second.size() - j > 0));
}

bool valueBefore(const QFileInfo& first, const QFileInfo& second, int column)
{
    if (column == FolderModel::SizeColumn && first.size() != second.size())
        return first.size() < second.size();
    if (column == FolderModel::ModifiedColumn && first.lastModified() != second.lastModified())
        return first.lastModified() < second.lastModified();
    return naturallyBefore(first.fileName(), second.fileName());
}

QString textOf(const QFileInfo& entry, int column)
{
    switch (column) {
    case FolderModel::NameColumn:
        return entry.fileName();
    case FolderModel::SizeColumn:
        return entry.isDir() ? QString() : QLocale().formattedDataSize(entry.size());
    case FolderModel::ModifiedColumn:
        return QLocale().toString(entry.lastModified(), QLocale::ShortFormat);
    default:
        return {};
    }
}

QIcon iconOf(const QFileInfo& entry)
{
    const QStyle* style = QApplication::style();
    if (entry.isDir())
        return style->standardIcon(entry.isSymLink() ? QStyle::SP_DirLinkIcon : QStyle::SP_DirIcon);
    return style->standardIcon(entry.isSymLink() ? QStyle::SP_FileLinkIcon : QStyle::SP_FileIcon);
}

} // namespace

bool naturallyBefore(const QString& first, const QString& second)
{
    const int order = compareNaturally(first, second);
    return order != 0 ? order < 0 : first < second;
}

FolderModel::FolderModel(QObject* parent) : QAbstractTableModel(parent) { }

bool FolderModel::showFolder(const QString& path)
{
    const QFileInfo wanted(path);
    if (!wanted.isDir() || !wanted.isReadable())
        return false;
    beginResetModel();
    listedFolder = QDir::cleanPath(wanted.absoluteFilePath());
    entries = QDir(listedFolder).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::NoSort);
    sortEntries();
    endResetModel();
    return true;
}

QFileInfo FolderModel::entry(int row) const
{
    return row >= 0 && row < entries.size() ? entries[row] : QFileInfo();
}

int FolderModel::rowOf(const QString& name) const
{
    const auto found = std::ranges::find(entries, name, [](const QFileInfo& each) { return each.fileName(); });
    return found == entries.end() ? -1 : static_cast<int>(found - entries.begin());
}

int FolderModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(entries.size());
}

int FolderModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant FolderModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= entries.size())
        return {};
    const QFileInfo& shown = entries[index.row()];
    if (role == Qt::DisplayRole)
        return textOf(shown, index.column());
    if (role == Qt::DecorationRole && index.column() == NameColumn)
        return iconOf(shown);
    if (role == Qt::TextAlignmentRole && index.column() == SizeColumn)
        return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
    return {};
}

QVariant FolderModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= ColumnCount)
        return {};
    return QString::fromLatin1(kTitles[section]);
}

void FolderModel::sort(int column, Qt::SortOrder order)
{
    sortColumn = column;
    sortOrder = order;
    // Selected rows follow their entries to where these now stand.
    emit layoutAboutToBeChanged({}, QAbstractItemModel::VerticalSortHint);
    const QList<QFileInfo> before = entries;
    sortEntries();
    QHash<QString, int> rows;
    for (qsizetype row = 0; row < entries.size(); ++row)
        rows.insert(entries[row].fileName(), static_cast<int>(row));
    const QModelIndexList old = persistentIndexList();
    for (const QModelIndex& kept : old)
        changePersistentIndex(kept, index(rows.value(before[kept.row()].fileName()), kept.column()));
    emit layoutChanged({}, QAbstractItemModel::VerticalSortHint);
}

void FolderModel::sortEntries()
{
    std::ranges::stable_sort(entries, [this](const QFileInfo& first, const QFileInfo& second) {
        if (first.isDir() != second.isDir())
            return first.isDir();
        return sortOrder == Qt::AscendingOrder ? valueBefore(first, second, sortColumn)
                                               : valueBefore(second, first, sortColumn);
    });
}
