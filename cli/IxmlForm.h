#pragma once

#include <string>
#include <string_view>

/// What an XML parser has to say against an iXML payload that takes the place of another: that it no longer parses,
/// that it is too large or carries a DOCTYPE and so isn't parsed at all, or that its encoding isn't UTF-8 and yet bytes
/// beyond ASCII were put in. Empty if nothing. A text that didn't parse before may go on not to. Any thread.
std::string ixmlFormComplaint(std::string_view before, std::string_view after);
