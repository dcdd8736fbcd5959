#pragma once

class QTableWidget;

/// Gives each column the width of its heading or of its widest text, whichever is wider, in the fonts that the table
/// has by now. The last column takes what is left of the table, and no column becomes narrower than that one's heading:
/// a stretched one would otherwise be cut when little is left. Thread: main only.
void fitColumns(QTableWidget& table);
