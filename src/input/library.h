// Conductor and ground wire libraries: text files of one row a conductor.
#pragma once

#include "input/key_rows.h"

#include <string_view>

namespace lcp {

// Word n of a text, words being separated by blanks; its last word when it has fewer.
std::string_view LIBWORD(std::string_view text, int n);

// The warning of a row without permeability and inner radius: its first line.
constexpr std::string_view LIBRARYWARNING = "Warning:  Conductor permeability and inner radius";

// Looks a name up in READER.LIBPATH and fills an entry of the open group with the row's values. A
// missing file or name takes the common error exit behind its own lines.
void lookUpConductor(std::string_view name);
void lookUpGroundWire(std::string_view name, Entry target);

} // namespace lcp
