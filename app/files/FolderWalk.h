#pragma once

#include <QStringList>

#include <string>
#include <vector>

/// The paths of all WAV files (suffix "wav" in any case) in the tree under `dir`, each beginning with `dir`, sorted
/// over the whole path without regard to case. Hidden files and folders, symbolic links to folders, what is no regular
/// file and what can't be read are passed over, so are names that are no UTF-8. Empty if `dir` is no folder.
/// Thread: any.
QStringList wavFilesUnder(const QString& dir);

/// What a walk met, for callers that answer for what they pass over. All paths are bytes as the system has them, each
/// beginning with the folder that was asked for.
struct FolderWalkResult {
    /// The files that `wavFilesUnder` gives, in its order.
    std::vector<std::string> files;
    /// Folders that could not be listed, or not to their end.
    std::vector<std::string> unreadable;
    /// Folders and WAV files that were passed over since their name is no UTF-8.
    std::vector<std::string> unnamed;
};

/// Walks as `wavFilesUnder`, but `dir` itself may have any name. Thread: any.
FolderWalkResult walkFolder(const std::string& dir);
