// Looks up conductors and ground wires in libraries: text files with one row per conductor.
#pragma once

#include "input/key_rows.h"

#include <string_view>

namespace lcp {

// Word n of a text with words separated by blanks; the last word if there are fewer.
std::string_view LIBWORD(std::string_view text, int n);

// First line of the warning about a row without permeability and inner radius.
constexpr std::string_view LIBRARYWARNING = "Warning:  Conductor permeability and inner radius";

// Looks up a name in READER.LIBPATH and fills an entry of the open group with the values of its
// row. A missing file or name prints its own lines and ends the run through the common error exit.
void lookUpConductor(std::string_view name);
void lookUpGroundWire(std::string_view name, Entry target);

} // namespace lcp
