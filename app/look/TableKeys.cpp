#include "app/look/TableKeys.h"

#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QTableWidget>

namespace {

bool movesByRows(const QKeyEvent& event)
{
    const bool moves = event.key() == Qt::Key_Down || event.key() == Qt::Key_Up || event.key() == Qt::Key_PageDown
        || event.key() == Qt::Key_PageUp;
    // With Control the keyboard goes from row to row and selects nothing.
    return moves && !(event.modifiers() & Qt::ControlModifier);
}

/// Installed on a table.
class FirstRowFilter : public QObject {
public:
    explicit FirstRowFilter(QTableWidget& owner) : QObject(&owner), table(owner) { }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        // Without a current row the next move of the table goes to its first one.
        if (event->type() == QEvent::KeyPress && movesByRows(*static_cast<QKeyEvent*>(event)) && table.currentRow() == 0
            && !table.selectionModel()->hasSelection())
            table.selectionModel()->clearCurrentIndex();
        return QObject::eventFilter(watched, event);
    }

private:
    QTableWidget& table;
};

} // namespace

void setUpTableKeys(QTableWidget& table)
{
    table.setTabKeyNavigation(false);
    table.installEventFilter(new FirstRowFilter(table));
}
