#pragma once

class QTableWidget;

/// Makes a table of rows behave under the keyboard as a list does: Tab leaves it instead of walking through its cells
/// for ever, and the first arrow or page key goes to its first row. Qt puts the keyboard on the first row without
/// selecting it, and the first Down would pass it by.
/// Thread: main only.
void setUpTableKeys(QTableWidget& table);
