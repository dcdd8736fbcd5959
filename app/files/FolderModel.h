#pragma once

#include <QAbstractTableModel>
#include <QFileInfo>
#include <QList>

/// What lies in one folder, one row each: folders first, then files, hidden entries left out.
/// Read once by `showFolder`; what happens in the folder later is seen by the next call only.
/// Thread: main only.
class FolderModel : public QAbstractTableModel {
    Q_OBJECT

public:
    enum Column { NameColumn, SizeColumn, ModifiedColumn, ColumnCount };

    explicit FolderModel(QObject* parent);

    /// Lists `path`, in the order that was asked for last. False if it is no folder or can't be read; what was
    /// shown before then stays.
    bool showFolder(const QString& path);

    /// Absolute path of the folder listed; empty before the first.
    const QString& folder() const { return listedFolder; }

    /// The entry of a row, whose path is inside `folder()`, links not followed. Empty for a row that isn't there.
    QFileInfo entry(int row) const;

    /// Row of the entry called `name`, -1 if there is none.
    int rowOf(const QString& name) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    /// Folders stay in front, whatever the column and the order.
    void sort(int column, Qt::SortOrder order) override;

private:
    void sortEntries();

    QString listedFolder;
    QList<QFileInfo> entries;
    int sortColumn = NameColumn;
    Qt::SortOrder sortOrder = Qt::AscendingOrder;
};

/// True if `first` stands before `second` where people look for it: letters of any case alike, and runs of digits by
/// their number, so T2 stands before T10. Different texts are never equal.
bool naturallyBefore(const QString& first, const QString& second);
