#pragma once

#include <vector>

class QTableWidget;
struct BwfTrack;

// The table of a file's tracks. Thread: main only.

/// Without rows. The caller owns it.
QTableWidget* makeTrackTable();

/// Shows the tracks, one a row. Interleave and channel are facts of the file and can't be edited. Only a text that
/// differs from the one shown so far counts as a change.
void showTracks(QTableWidget* table, const std::vector<BwfTrack>& tracks);

/// The tracks as they stand in the table, which was filled from `filled`: a text that still is what it was filled with
/// keeps its own bytes, another one comes as UTF-8. A channel that is no number counts as 0.
std::vector<BwfTrack> tracksInTable(const QTableWidget* table, const std::vector<BwfTrack>& filled);
