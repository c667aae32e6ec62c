// Simulations of a line and of its models: voltages and currents at both ends over time.
#pragma once

#include "companions/shared/two_port.h"

#include <array>
#include <string_view>
#include <vector>

namespace lcp::companions {

enum class TransientCase { Energise, Step, Short, Ground, Dc };

struct CaseRow {
  TransientCase which;
  std::string_view name; // on the command line
  std::string_view what;
};

constexpr std::array<CaseRow, 5> TRANSIENTCASES = {{
    {TransientCase::Energise, "energise", "sources on all phases, far end open: its voltages"},
    {TransientCase::Step, "step", "a step on the first phase, far end open: its voltages"},
    {TransientCase::Short, "short", "sources on all phases into a short: its currents"},
    {TransientCase::Ground, "ground",
     "sources on all phases, far end of the first grounded: voltages of the others"},
    {TransientCase::Dc, "dc", "direct voltage on the first phase into a short: its current"},
}};

// Conductors that carry load are phases; sheaths, pipes and kept ground wires are grounded at both
// ends.
struct TransientSetup {
  std::vector<bool> phase;
  double frequency = 50; // of the sources, Hz
  double front = 50e-6;  // s: a voltage rises along half a cosine
  double until = 0.02;   // s
  double step = 0;       // s, of the simulator
  double growth = 0;     // 1/s, of what grows in the model; 0 for nothing
};

// One of the observed quantities of a case at equal steps of time from 0 on, V or A for sources of
// 1 V.
struct Response {
  double step = 0;                         // s
  std::vector<std::vector<double>> values; // by quantity
};

// How the response of one case is found.
enum class Source { Line, Functions, Stepped }; // exact line; the model's functions; as simulated

struct TransientRequest {
  const ContinuedLine& line;
  const ModelFile& model;
  double length; // m
  const TransientSetup& setup;
};

// All cases of the list by numerical inverse Laplace transform (of the stepped model: inverse
// z-transform, which has no error but rounding), each with so many steps up to setup.until. Of
// Source::Stepped the step is setup.step.
std::vector<Response> transients(const TransientRequest& ask, Source of,
                                 const std::vector<TransientCase>& cases, std::size_t steps);

} // namespace lcp::companions
