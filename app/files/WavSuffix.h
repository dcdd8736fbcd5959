#pragma once

#include <QFileInfo>
#include <QLatin1String>

/// True if the file's name ends in the suffix "wav" in any case. Only the name is looked at; the file need not exist.
inline bool hasWavSuffix(const QFileInfo& file)
{
    return file.suffix().compare(QLatin1String("wav"), Qt::CaseInsensitive) == 0;
}
