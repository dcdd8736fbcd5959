#include "app/look/TableColumns.h"

#include <QHeaderView>
#include <QTableWidget>

void fitColumns(QTableWidget& table)
{
    QHeaderView& header = *table.horizontalHeader();
    // The sheet sets the headings in a font of its own, which a header that was never shown doesn't know yet.
    table.ensurePolished();
    header.ensurePolished();
    header.setMinimumSectionSize(header.sectionSizeHint(table.columnCount() - 1));
    table.resizeColumnsToContents();
}
