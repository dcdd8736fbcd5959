#pragma once

#include <QTableWidgetItem>

/// The item under a play button: no text, and a note whether its row is about to leave the table. Sorted by it, the
/// rows that leave come first, and all others keep their order.
class PlayColumnItem : public QTableWidgetItem {
public:
    /// Any value there stands for a row that is about to leave.
    static constexpr int kLeavingRole = Qt::UserRole;

    bool operator<(const QTableWidgetItem& other) const override
    {
        return data(kLeavingRole).isValid() && !other.data(kLeavingRole).isValid();
    }
};
