#include "app/look/TableKeys.h"

#include <QAbstractItemView>
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

/// Installed on a view.
class FirstRowFilter : public QObject {
public:
    explicit FirstRowFilter(QAbstractItemView& owner) : QObject(&owner), view(owner) { }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        // Without a current row the next move of the view goes to its first one.
        if (event->type() == QEvent::KeyPress && movesByRows(*static_cast<QKeyEvent*>(event))
            && view.currentIndex().row() == 0 && !view.selectionModel()->hasSelection())
            view.selectionModel()->clearCurrentIndex();
        return QObject::eventFilter(watched, event);
    }

private:
    QAbstractItemView& view;
};

} // namespace

void beginAtFirstRow(QAbstractItemView& view)
{
    view.installEventFilter(new FirstRowFilter(view));
}

void setUpTableKeys(QTableWidget& table)
{
    table.setTabKeyNavigation(false);
    beginAtFirstRow(table);
}
