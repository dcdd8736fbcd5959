#pragma once

class QAbstractItemView;
class QTableWidget;

/// Makes the first arrow or page key go to the first row of a view without a selection. Qt puts the keyboard on that
/// row without selecting it, and the first Down would pass it by. Thread: main only.
void beginAtFirstRow(QAbstractItemView& view);

/// Makes a table of rows behave under the keyboard as a list does: Tab leaves it instead of walking through its cells
/// for ever, and the first arrow or page key goes to its first row.
/// Thread: main only.
void setUpTableKeys(QTableWidget& table);
