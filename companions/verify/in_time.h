// A model in simulations: how far its voltages and currents are from those of the line, and what
// grows without end.
#pragma once

#include "companions/shared/model_file.h"
#include "companions/shared/transients.h"
#include "companions/shared/verdicts.h"

#include <nlohmann/json_fwd.hpp>
#include <string_view>
#include <vector>

namespace lcp::companions {

struct TimeOptions {
  std::vector<TransientCase> cases;
  double step = 0;                           // s; 0 for a tenth of the shortest delay
  double front = 0;                          // s; 0 for 50 us
  double until = 0;                          // s; 0 for a period of the steady state frequency
  std::string_view program = "corvo-verify"; // in notes on the error stream
};

// A case as curves, at steps of time: exact, of the model's functions, and as simulated.
struct CaseCurves {
  CaseRow row;
  double step; // s
  Response line, functions, stepped;
};

struct InTime {
  std::vector<Finding> findings;
  std::vector<CaseCurves> curves;
};

// The longest step of a simulation that resolves the delays of a model: a tenth of the shortest, s.
double recommendedStep(const ModelFile& file, double length);

// All of it for the run that readHere has read, over the length in metres. Notes on the error
// stream what takes longer than two seconds.
InTime checkInTime(const ModelFile& file, double length, const TimeOptions& options,
                   const Limits& limits);

// The curves as an array of cases.
nlohmann::ordered_json asJson(const std::vector<CaseCurves>& curves);

} // namespace lcp::companions
