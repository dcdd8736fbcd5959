#include "cli/IxmlDocument.h"

#include "cli/PlainText.h"
#include "core/NumberText.h"
#include "core/TextTrim.h"

#include <QXmlStreamReader>

namespace {

constexpr int kMostDepth = 4; // BWFXML, TRACK_LIST, TRACK, NAME.
constexpr int kTrackDepth = 3;

std::string_view withoutPadding(std::string_view payload)
{
    const size_t last = payload.find_last_not_of('\0');
    return payload.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

// What the declaration names, in capitals; empty without one. Read by hand, since the parser gives up at a name that it
// doesn't know.
std::string declaredEncoding(std::string_view text)
{
    constexpr std::string_view kKey = "encoding";
    if (!text.starts_with("<?xml"))
        return {};
    const std::string_view declaration = text.substr(0, text.find("?>"));
    const size_t key = declaration.find(kKey);
    if (key == std::string_view::npos)
        return {};
    const size_t open = declaration.find_first_of("\"'", key + kKey.size());
    if (open == std::string_view::npos)
        return {};
    const size_t close = declaration.find(declaration[open], open + 1);
    return NumberText::toUpperAscii(
        declaration.substr(open + 1, close == std::string_view::npos ? close : close - open - 1));
}

class Parser {
public:
    Parser(std::string_view xml, IxmlDocument& target)
        : document(target), reader(QByteArray(xml.data(), static_cast<qsizetype>(xml.size())))
    {
        reader.setNamespaceProcessing(false);
    }

    void parse()
    {
        while (!reader.atEnd() && document.form == IxmlDocument::Form::WellFormed)
            take(reader.readNext());
        if (!reader.hasError())
            return;
        document.form = IxmlDocument::Form::NotWellFormed;
        document.complaint = "line " + std::to_string(reader.lineNumber()) + ": " + words();
    }

private:
    std::string words() const
    {
        std::string said = reader.errorString().toStdString();
        while (said.ends_with('.'))
            said.pop_back();
        return said;
    }

    void take(QXmlStreamReader::TokenType token)
    {
        switch (token) {
        case QXmlStreamReader::DTD:
            document.form = IxmlDocument::Form::HasDoctype;
            return;
        case QXmlStreamReader::StartElement:
            return begin();
        case QXmlStreamReader::Characters:
            text += reader.text().toString().toStdString();
            return;
        case QXmlStreamReader::EndElement:
            return end();
        default:
            return;
        }
    }

    void begin()
    {
        text.clear();
        if (++depth > kMostDepth)
            return;
        path.resize(static_cast<size_t>(depth));
        path.back() = NumberText::toUpperAscii(reader.name().toString().toStdString());
        if (depth == kTrackDepth && below(1) == "TRACK_LIST/TRACK")
            document.tracks.emplace_back();
    }

    void end()
    {
        if (depth <= kMostDepth)
            keep(std::string(trimBlanks(text)));
        text.clear();
        --depth;
    }

    void keep(std::string value)
    {
        if (depth == kMostDepth && path[1] == "TRACK_LIST" && path[2] == "TRACK")
            keepInTrack(std::move(value));
        else
            document.values.emplace(below(1), std::move(value));
    }

    void keepInTrack(std::string value)
    {
        IxmlDocument::Track& track = document.tracks.back();
        if (path[3] == "CHANNEL_INDEX")
            track.channelIndex = std::move(value);
        else if (path[3] == "INTERLEAVE_INDEX")
            track.interleaveIndex = std::move(value);
        else if (path[3] == "NAME")
            track.name = std::move(value);
    }

    /// The path from element `first` on.
    std::string below(size_t first) const
    {
        std::string joined;
        for (size_t i = first; i < static_cast<size_t>(depth) && i < path.size(); ++i)
            joined.append(joined.empty() ? "" : "/").append(path[i]);
        return joined;
    }

    IxmlDocument& document;
    QXmlStreamReader reader;
    int depth = 0;
    std::vector<std::string> path; // At most kMostDepth names.
    std::string text; // Since the last tag.
};

} // namespace

std::string_view IxmlDocument::value(std::string_view path) const
{
    const auto found = values.find(path);
    return found == values.end() ? std::string_view() : found->second;
}

IxmlDocument parseIxmlDocument(std::string_view payload)
{
    IxmlDocument document;
    const std::string_view text = withoutPadding(payload);
    const std::string encoding = declaredEncoding(text);
    if (text.size() > IxmlDocument::kMostBytes) {
        document.form = IxmlDocument::Form::TooLarge;
    } else if (!encoding.empty() && encoding != "UTF-8" && encoding != "UTF8" && encoding != "US-ASCII") {
        document.form = IxmlDocument::Form::OtherEncoding;
        document.complaint = encoding;
    } else if (!isUtf8(text)) {
        document.form = IxmlDocument::Form::NotUtf8;
    } else {
        Parser(text, document).parse();
    }
    return document;
}
