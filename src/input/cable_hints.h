// Keys of cables and pipe that count for nothing, since the sections say otherwise.
#pragma once

#include <string_view>
#include <vector>

namespace lcp {

// A flag that grounds a layer which its cable does not have.
struct LayerFlag {
  int cable;            // number
  std::string_view key; // of the flag
  const void* target;   // where the key stores
};

// Such flags do nothing: in the numbers of the system the layer behind the last one would be the
// core of the next cable.
std::vector<LayerFlag> flagsWithoutLayer();

// Cables that lie in the pipe, by their sections.
int cablesInPipe();

// Tells of both on the error stream, unless the reader is traced: who traces it tells them itself.
void noteCableHints();

} // namespace lcp
