#pragma once

#include <QList>
#include <QString>

struct BwfMetadata;

/// One name for each channel of the file, at least one: the names of its track list by their channel numbers, or in
/// their order if no number fits, and "Track n" wherever that leaves a gap. Trimmed, so none is empty.
QList<QString> mixerTrackNames(const BwfMetadata& record);
