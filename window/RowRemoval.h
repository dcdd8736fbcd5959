#pragma once

#include <QList>

class QTableWidget;

/// Takes out `rows`, which are ascending, different and in range, and whose play column holds PlayColumnItem. The
/// time is in proportion to the rows of the table however scattered they are. The current row goes where removals one
/// by one from the bottom up would have moved it: to the nearest row above that stays, else to the first one that
/// does. Main thread only.
void removeTableRows(QTableWidget* table, const QList<int>& rows);
