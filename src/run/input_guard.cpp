#include "run/input_guard.h"

#include "base/open_files.h"
#include "base/solve_error.h"
#include "output/curve_file.h"
#include "output/manual_output.h"
#include "output/pi_component.h"
#include "store/rundata.h"

#include <algorithm>
#include <string>
#include <vector>

namespace lcp {

namespace {

using Names = std::vector<std::string>;

struct Outputs {
  Names models, others;
};

Outputs outputsOf(BaseName base, int steps) {
  RunControl run = RUNDATA.run;
  Outputs out;
  if (steps < 1) return out;
  out.others = curveFileNames();
  if (RUNDATA.display.CREATEPI) out.others.push_back(componentFile());
  for (int k = 1; k <= steps; ++k) {
    nameOutputs(run, base, k, steps);
    out.models.emplace_back(run.FOUTM.text());
    if (run.DATAFMT != ROUTEMULTIPLE) out.others.emplace_back(run.FOUTR.text());
  }
  return out;
}

bool isAnInput(const std::string& name) { return isInput(name); }

void refuseInputs(const Names& names) {
  const auto input = std::find_if(names.begin(), names.end(), isAnInput);
  if (input != names.end()) stopAtInput(*input);
}

} // namespace

void guardInputs(BaseName base, int steps) {
  if (RUNDATA.run.DATAFMT == ROUTENONE) return;
  const Outputs out = outputsOf(base, steps);
  const std::string manual(RUNDATA.display.MANOUTF.text());
  refuseInputs(out.models);
  if (isModelReplaced()) protectInput(manual);
  refuseInputs(out.others);
  if (std::any_of(out.models.begin(), out.models.end(), isAnInput)) releaseInput(manual);
}

} // namespace lcp
