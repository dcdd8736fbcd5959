#include "core/MetadataChanges.h"

#include "core/BwfMetadata.h"
#include "core/CantarMetadataParser.h"

#include <algorithm>

namespace {

constexpr double kDefaultFrameRate = 24.0; // For the rate line of a Description whose file tells no rate.

/// An empty text stands for "leave it as it is".
bool textChanged(const std::string& updated, const std::string& current)
{
    return !updated.empty() && updated != current;
}

/// Entries that only the file has do not count, and neither does the channel number.
bool anyTrackChanged(const std::vector<BwfTrack>& updated, const std::vector<BwfTrack>& current)
{
    if (updated.size() > current.size())
        return true;
    return !std::equal(updated.begin(), updated.end(), current.begin(),
        [](const BwfTrack& a, const BwfTrack& b) { return a.name == b.name && a.function == b.function; });
}

} // namespace

MetadataChanges changesBetween(const BwfMetadata& current, const BwfMetadata& updated)
{
    const bool sharedText = textChanged(updated.note, current.note) || textChanged(updated.scene, current.scene)
        || textChanged(updated.tape, current.tape) || textChanged(updated.take, current.take)
        || textChanged(updated.project, current.project);

    MetadataChanges changes;
    changes.timeReference = updated.timeReference != 0 && updated.timeReference != current.timeReference;
    // User bits go to the Description only, the two flags and the tracks to the iXML only.
    changes.bext = sharedText || textChanged(updated.ubits, current.ubits);
    changes.ixml = sharedText || updated.circled != current.circled || updated.wildTrack != current.wildTrack;
    changes.tracks = anyTrackChanged(updated.tracks, current.tracks);
    return changes;
}

std::string editedDescription(const BwfMetadata& current, const BwfMetadata& updated)
{
    CantarMetadata wanted;
    if (!current.description.empty())
        wanted = CantarMetadataParser::parseDescription(current.description);

    const auto overlay = [](std::string& field, const std::string& newValue, const std::string& oldValue) {
        if (textChanged(newValue, oldValue))
            field = newValue;
    };
    overlay(wanted.scene, updated.scene, current.scene);
    overlay(wanted.tape, updated.tape, current.tape);
    overlay(wanted.take, updated.take, current.take);
    overlay(wanted.note, updated.note, current.note);
    overlay(wanted.ubits, updated.ubits, current.ubits);
    overlay(wanted.tag, updated.project, current.project); // The tag line carries the project.

    const double rate = current.frameRate > 0.0 ? current.frameRate : kDefaultFrameRate;
    return CantarMetadataParser::buildDescription(wanted, rate);
}

std::vector<std::string BwfMetadata::*> textsLostInDescription(const BwfMetadata& current, const BwfMetadata& updated)
{
    struct Text {
        std::string BwfMetadata::*field;
        std::string CantarMetadata::*line;
    };
    static constexpr Text kTexts[] = {
        { &BwfMetadata::scene, &CantarMetadata::scene },
        { &BwfMetadata::take, &CantarMetadata::take },
        { &BwfMetadata::tape, &CantarMetadata::tape },
        { &BwfMetadata::project, &CantarMetadata::tag },
        { &BwfMetadata::note, &CantarMetadata::note },
    };
    const CantarMetadata said = CantarMetadataParser::parseDescription(editedDescription(current, updated));
    std::vector<std::string BwfMetadata::*> lost;
    for (const Text& text : kTexts) {
        const std::string& value = updated.*text.field;
        if (textChanged(value, current.*text.field) && said.*text.line != value)
            lost.push_back(text.field);
    }
    return lost;
}
