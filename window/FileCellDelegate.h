#pragma once

#include <QHash>
#include <QSize>
#include <QString>
#include <QStyledItemDelegate>

#include <optional>

/// Draws the cells of the file table as those of any table. While columns are fitted it measures each text once: most
/// cells of a shoot say what others say too, and to lay out a text takes as long as to read a small file.
/// All cells have one font and no picture, so that the text alone settles the room that a cell needs.
/// Thread: main only.
class FileCellDelegate : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// From here to `endFitting` fonts and styles don't change.
    void beginFitting() { knownHints.emplace(); }
    void endFitting() { knownHints.reset(); }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        if (!knownHints)
            return QStyledItemDelegate::sizeHint(option, index);
        const QString text = index.data().toString();
        const auto known = knownHints->constFind(text);
        if (known != knownHints->constEnd())
            return *known;
        return *knownHints->insert(text, QStyledItemDelegate::sizeHint(option, index));
    }

private:
    mutable std::optional<QHash<QString, QSize>> knownHints; ///< By text. None outside of a fit.
};
