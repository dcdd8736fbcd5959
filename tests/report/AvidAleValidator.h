#pragma once

#include <string>
#include <vector>

/// What is wrong with a text as an Avid Log Exchange file that an editing system imports, one line each; empty if
/// nothing is. Knows the rules by itself and shares no code with the writer.
std::vector<std::string> avidAleComplaints(const std::string& text);

/// The values of a column, a row each; empty if there is no such column. For valid texts.
std::vector<std::string> avidAleColumn(const std::string& text, const std::string& name);
