#pragma once

#include <QStringList>

/// The paths of all WAV files (suffix "wav" in any case) in the tree under `dir`, each beginning with `dir`, sorted
/// over the whole path without regard to case. Hidden files and folders, symbolic links to folders, what is no regular
/// file and what can't be read are passed over, so are names that are no UTF-8. Empty if `dir` is no folder.
/// Thread: any.
QStringList wavFilesUnder(const QString& dir);
