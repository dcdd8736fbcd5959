#pragma once

#include <QFileInfo>
#include <QLatin1String>
#include <QString>

#include <algorithm>
#include <string_view>

/// What `hasWavSuffix` looks for, with its dot and in small letters.
inline constexpr std::string_view kWavSuffix = ".wav";

/// True if the file's name ends in the suffix "wav" in any case. Only the name is looked at; the file need not exist.
inline bool hasWavSuffix(const QFileInfo& file)
{
    return file.suffix().compare(QLatin1String(kWavSuffix.data() + 1), Qt::CaseInsensitive) == 0;
}

/// The same for a name in the bytes that the system has it in, which need be no UTF-8.
inline bool hasWavSuffix(std::string_view name)
{
    if (name.size() < kWavSuffix.size())
        return false;
    const std::string_view end = name.substr(name.size() - kWavSuffix.size());
    return std::equal(end.begin(), end.end(), kWavSuffix.begin(), [](char byte, char wanted) {
        const bool upper = byte >= 'A' && byte <= 'Z';
        return (upper ? static_cast<char>(byte - 'A' + 'a') : byte) == wanted;
    });
}

/// The file's name less a final ".wav" in any case.
inline QString withoutWavSuffix(QString name)
{
    if (hasWavSuffix(QFileInfo(name)))
        name.chop(static_cast<qsizetype>(kWavSuffix.size()));
    return name;
}
