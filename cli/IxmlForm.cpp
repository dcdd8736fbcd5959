#include "cli/IxmlForm.h"

#include <QByteArray>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

struct Form {
    bool parses = false;
    bool hasDoctype = false;
    bool isUtf8 = true;
};

Form formOf(std::string_view payload)
{
    constexpr std::string_view kBlank("\x20\x09\x0D\x0A\0", 5);
    payload = payload.substr(0, payload.find_last_not_of(kBlank) + 1);
    QXmlStreamReader reader(QByteArray::fromRawData(payload.data(), static_cast<qsizetype>(payload.size())));
    Form form;
    while (!reader.atEnd()) {
        reader.readNext();
        form.hasDoctype = form.hasDoctype || reader.isDTD();
        if (reader.isStartDocument() && !reader.documentEncoding().isEmpty())
            form.isUtf8 = reader.documentEncoding().compare(QLatin1String("UTF-8"), Qt::CaseInsensitive) == 0;
    }
    form.parses = !reader.hasError();
    return form;
}

std::size_t foreignBytes(std::string_view text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char each) { return static_cast<unsigned char>(each) >= 0x80; }));
}

} // namespace

std::string ixmlFormComplaint(std::string_view before, std::string_view after)
{
    const Form old = formOf(before);
    const Form edited = formOf(after);
    if (edited.hasDoctype)
        return "its iXML has a DOCTYPE";
    if (old.parses && !edited.parses)
        return "its iXML would no longer be well-formed XML";
    if (!edited.isUtf8 && foreignBytes(after) > foreignBytes(before))
        return "its iXML is in another encoding than UTF-8";
    return {};
}
