// What grows without end in a simulation: zeros of a model's equations in the right half plane, for
// the ends of the line left open, shorted, or closed by resistances.
#pragma once

#include "companions/shared/two_port.h"

#include <string_view>
#include <vector>

namespace lcp::companions {

// Resistances from the phases, and from the other conductors, to ground at both ends, ohm.
struct Ends {
  std::string_view name; // "all ends at 0.1 ohm"
  double phases, others;
};

constexpr double OPENEND = -1; // no resistance

struct Growth {
  Ends ends;
  int zeros = 0;        // in the right half plane
  double rate = 0;      // 1/s, of the fastest one that was found; 0 when none was found
  double frequency = 0; // Hz, of that one
};

// The usual ends: open, shorted, 0.1 ohm, 10 ohm; with other conductors beside the phases
// also phases and others apart.
std::vector<Ends> usualEnds(const std::vector<bool>& phase);

// Of a model with Yc and H, up to a frequency in Hz at which nothing comes back, or of its
// stepping. Zeros are counted along the imaginary axis (argument principle, of a stepped model
// along the unit circle), real ones found by their change of sign, others from where the loop
// around the line comes nearest to 1.
std::vector<Growth> growthOf(const ModelFile& file, double length, const std::vector<bool>& phase,
                             const std::vector<Ends>& ends, double highest, Stepping how);

} // namespace lcp::companions
