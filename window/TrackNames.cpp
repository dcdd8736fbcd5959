#include "window/TrackNames.h"

#include "core/BwfMetadata.h"

#include <algorithm>

namespace {

QString trimmedName(const BwfTrack& track)
{
    return QString::fromStdString(track.name).trimmed();
}

/// Later tracks of the same channel win. False if no track has both a name and a channel of the file.
bool placeByChannel(const BwfMetadata& record, QList<QString>& names)
{
    bool placed = false;
    for (const BwfTrack& track : record.tracks) {
        if (track.channelIndex < 1 || track.channelIndex > names.size())
            continue;
        const QString name = trimmedName(track);
        if (name.isEmpty())
            continue;
        names[track.channelIndex - 1] = name;
        placed = true;
    }
    return placed;
}

void placeByPosition(const BwfMetadata& record, QList<QString>& names)
{
    const qsizetype count = std::min(names.size(), static_cast<qsizetype>(record.tracks.size()));
    for (qsizetype position = 0; position < count; ++position)
        names[position] = trimmedName(record.tracks[static_cast<size_t>(position)]);
}

} // namespace

QList<QString> mixerTrackNames(const BwfMetadata& record)
{
    QList<QString> names(std::max<qsizetype>(record.channels, 1));
    if (!placeByChannel(record, names))
        placeByPosition(record, names);
    for (qsizetype position = 0; position < names.size(); ++position) {
        if (names.at(position).isEmpty())
            names[position] = QStringLiteral("Track %1").arg(position + 1);
    }
    return names;
}
