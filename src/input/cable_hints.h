// Finds keys of cables and pipe that have no effect because of other data.
#pragma once

#include <string_view>
#include <vector>

namespace lcp {

// A flag that grounds a layer its cable does not have.
struct LayerFlag {
  int cable;            // number
  std::string_view key; // key of the flag
  const void* target;   // where the key stores its value
};

// Returns these flags. They have no effect: in the numbering of the system, the layer after the
// last one of a cable would be the core of the next cable.
std::vector<LayerFlag> flagsWithoutLayer();

// Number of cables whose sections place them in the pipe.
int cablesInPipe();

// Reports both on the error stream, unless the reader is traced: the tracing program reports them
// itself.
void noteCableHints();

} // namespace lcp
