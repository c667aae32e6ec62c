#include "companions/verify/poles.h"

#include "base/constants.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/fit_ranges.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double SAME = 1e-9; // relative difference of numbers that count as equal

bool conjugate(Complex a, Complex b) { return std::abs(a - std::conj(b)) <= SAME * std::abs(a); }

// Number of residue elements of a pair that are not conjugate, or of a real pole that are not real.
std::size_t brokenResidues(const Matrix& a, const Matrix& b) {
  const double size = std::max(largest(a), largest(b));
  std::size_t broken = 0;
  for (std::size_t e = 0; e < a.elements.size(); ++e) {
    if (!(std::abs(a.elements[e] - std::conj(b.elements[e])) <= SAME * size)) ++broken;
  }
  return broken;
}

struct PoleCounts {
  std::size_t unstable = 0, unpaired = 0, broken = 0;
  double ratio = 0;
  std::string ratioWhere;
};

void count(const NamedFunction& f, PoleCounts& c) {
  const auto& P = f.function->poles;
  const auto& R = f.function->residues;
  for (std::size_t m = 0; m < P.size(); ++m) {
    if (!(P[m].real() <= 0)) ++c.unstable;
    const double ratio = largest(R[m]) / std::abs(P[m]);
    if (!(ratio <= c.ratio)) {
      c.ratio = ratio;
      c.ratioWhere = f.name;
    }
    if (P[m].imag() == 0) {
      c.broken += brokenResidues(R[m], R[m]);
    } else if (m + 1 < P.size() && conjugate(P[m], P[m + 1])) {
      c.broken += brokenResidues(R[m], R[m + 1]);
      ++m;
    } else {
      ++c.unpaired;
    }
  }
}

Finding counted(std::string_view what, std::size_t n) {
  Finding f{"poles", std::string(what)};
  f.value = static_cast<double>(n);
  f.verdict = n == 0 ? Verdict::GOOD : Verdict::BAD;
  return f;
}

// Longest simulation step: a tenth of the shortest delay of the line.
Finding longestStep(double delay) {
  constexpr double STEPSOFADELAY = 10;
  Finding step{"step", "of the simulation, at most"};
  step.value = 1e6 * delay / STEPSOFADELAY;
  step.unit = "us";
  return step;
}

// A Bergeron file has travel times; for an MFDTD file the speed of light gives the shortest
// possible.
std::vector<Finding> stepWithoutDelays(const ModelFile& file, double length) {
  if (file.kind == ModelKind::Pi) return {};
  double shortest = length / LIGHTSPEED;
  const auto& modes = file.bergeron.modes;
  const auto quicker = [](const BergeronMode& a, const BergeronMode& b) { return a.T < b.T; };
  if (!modes.empty()) shortest = 1e-3 * std::min_element(modes.begin(), modes.end(), quicker)->T;
  return {longestStep(shortest)};
}

} // namespace

std::vector<Finding> checkPoles(const ModelFile& file, const Limits& limits) {
  PoleCounts c;
  const std::vector<NamedFunction> functions = functionsOf(file);
  if (functions.empty()) return {};
  for (const NamedFunction& f : functions) count(f, c);
  Finding ratio{"poles", fmt::format("largest residue over pole, {}", c.ratioWhere)};
  ratio.value = c.ratio;
  // Residues of H are of order 1; those of other functions have units.
  ratio.verdict = file.kind == ModelKind::Phase ? limits.judge("ratio", c.ratio) : Verdict::TOLD;
  return {counted("with a positive real part", c.unstable),
          counted("without their conjugate", c.unpaired),
          counted("residues that are not conjugate", c.broken), ratio};
}

std::vector<Finding> checkDelays(const ModelFile& file, double length) {
  std::vector<double> delays = file.H.delays; // s
  for (const ModeFit& m : file.modes) delays.push_back(1e-3 * m.delay);
  if (delays.empty()) return stepWithoutDelays(file, length);
  const double top = fitRanges()[0].f.back();
  const std::vector<double> travel = travelTimes(modesOf(constantsOf(top)), top, length);
  std::vector<Finding> found;
  std::sort(delays.begin(), delays.end());
  for (std::size_t g = 0; g < delays.size(); ++g) {
    // A delay is compared with the nearest travel time and must not exceed it: a fitted function
    // cannot advance a wave.
    const double nearest = nearestTo(delays[g], travel);
    const double late = 100 * (delays[g] / nearest - 1);
    Finding f{"delay", fmt::format("{} of {}, behind the travel time", g + 1, delays.size())};
    f.words =
        fmt::format("{:.6g} ms, nearest travel time {:.6g} ms", 1e3 * delays[g], 1e3 * nearest);
    f.value = late;
    f.unit = "%";
    if (delays[g] < length / LIGHTSPEED * (1 - SAME)) {
      f.words.append(", faster than light");
      f.verdict = Verdict::DOUBTFUL;
    }
    found.push_back(f);
  }
  found.push_back(longestStep(delays.front()));
  return found;
}

} // namespace lcp::companions
