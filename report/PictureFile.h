#pragma once

#include <QImage>
#include <QString>

/// The picture in the file at `path`, by its content whatever its suffix. Null if there is none, or if it is damaged,
/// too large or of a kind that can't be read; nothing is printed then.
/// Thread: main thread only, as it holds back the messages of the whole process while it reads.
QImage loadPicture(const QString& path);
