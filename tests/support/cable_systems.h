// Cable systems for tests: a deterministic generator of cable tables, and a solve at one frequency.
#pragma once

#include "support/overhead_lines.h"

namespace lcp::test {

// One buried single-core cable: core, insulation, sheath, jacket; its outer radius is 0.04 m.
void setSingleCore(int c, double x, double depth);

// Fills the run store with a system of coaxial cables of one to eight layers, aerial and buried,
// with or without a pipe around the last of them.
void makeCables(std::uint64_t seed);

// CBZY at the frequency f, with ISTATUS set.
LineResult solveCables(double f);

} // namespace lcp::test
