// Cable systems for tests: a deterministic generator of cable tables, and a solve at one frequency.
#pragma once

#include "support/overhead_lines.h"

namespace lcp::test {

struct SystemWish {
  int mostCables = 6;
  double aerial = 0.2;    // share of aerial cables
  double pipe = 0.3;      // share of systems with a pipe
  double grounding = 0.5; // share of cables that ground something
};

// One buried single-core cable: core, insulation, sheath, jacket; its outer radius is 0.04 m.
void setSingleCore(int c, double x, double depth);

// Fills the run store with a system of coaxial cables of one to eight layers, aerial and buried,
// with or without a pipe around the last of them.
void makeCables(std::uint64_t seed, const SystemWish& wish = {});

// CBZY at the frequency f, with ISTATUS set unless told otherwise.
LineResult solveCables(double f, bool first = true);

} // namespace lcp::test
