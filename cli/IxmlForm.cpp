#include "cli/IxmlForm.h"

#include "cli/IxmlDocument.h"

#include <algorithm>

namespace {

using Form = IxmlDocument::Form;

std::ptrdiff_t foreignBytes(std::string_view text)
{
    return std::count_if(text.begin(), text.end(), [](char each) { return static_cast<unsigned char>(each) >= 0x80; });
}

} // namespace

std::string ixmlFormComplaint(std::string_view before, std::string_view after)
{
    const Form old = parseIxmlDocument(before).form;
    const Form edited = parseIxmlDocument(after).form;
    if (edited == Form::HasDoctype)
        return "its iXML has a DOCTYPE";
    if (edited == Form::TooLarge)
        return "its iXML is too large to be parsed";
    if (old == Form::WellFormed && edited != Form::WellFormed)
        return "its iXML would no longer be well-formed XML";
    if (edited == Form::OtherEncoding && foreignBytes(after) > foreignBytes(before))
        return "its iXML is in another encoding than UTF-8";
    return {};
}
