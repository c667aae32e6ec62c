// There are two errors: that of the model, its functions against the line, and that of the
// step, the stepped model against its own functions. The first stays however small the step is.
#include "companions/verify/in_time.h"

#include "base/constants.h"
#include "companions/shared/captured_run.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/growth.h"
#include "companions/shared/progress.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace lcp::companions {

namespace {

constexpr double FRONT = 50e-6;      // s
constexpr double DCUNTIL = 25;       // of the other cases' time
constexpr double FRONTSTEPS = 16;    // exact points of a front
constexpr double LEASTPOINTS = 4000; // of a case
constexpr double DCFRONT = 1e-3;     // of the time: a direct voltage rises at least so slowly
constexpr double DCSTEPS = 1e4;      // at most, ten along the front, when no step is given
constexpr double STEPSOFADELAY = 10;
constexpr double HIGHEST = 1e8; // Hz, up to which growth is looked for
constexpr double SLOW = 1000;   // s to grow e-fold that a simulation does not see
constexpr int HALVINGS = 6;     // of a step that lets a model grow
constexpr double BEYOND = 30;   // band of the exact line over that of the transforms

double shortestDelay(const ModelFile& file, double length) {
  std::vector<double> delays = file.H.delays;
  for (const ModeFit& m : file.modes) delays.push_back(MILLI * m.delay);
  for (const BergeronMode& m : file.bergeron.modes) delays.push_back(MILLI * m.T);
  return delays.empty() ? length / LIGHTSPEED : *std::min_element(delays.begin(), delays.end());
}

TransientSetup setupOf(const ModelFile& file, double length, const TimeOptions& options) {
  TransientSetup S;
  S.phase = phaseConductors(file.n);
  S.frequency = RUNDATA.line.SSFREQ;
  S.front = options.front > 0 ? options.front : FRONT;
  S.step = options.step > 0 ? options.step : recommendedStep(file, length);
  const double until = options.until > 0 ? options.until : 1 / S.frequency;
  S.until = std::max(1.0, std::round(until / S.step)) * S.step;
  return S;
}

// Direct currents take their time.
TransientSetup directSetup(TransientSetup S, const TimeOptions& options) {
  if (options.until == 0) S.until *= DCUNTIL;
  S.front = std::max(S.front, DCFRONT * S.until);
  if (options.step == 0 && S.step < S.until / DCSTEPS) S.step = S.until / DCSTEPS;
  return S;
}

// Exact points in a step of the simulator.
std::size_t pointsOfAStep(const TransientSetup& S) {
  const double steps = S.until / S.step;
  const double wanted = std::max(LEASTPOINTS, FRONTSTEPS * S.until / S.front);
  return static_cast<std::size_t>(std::ceil(std::max(1.0, wanted / steps)));
}

// Every so many points of a response.
Response thinned(const Response& R, std::size_t every) {
  Response T{R.step * static_cast<double>(every), {}};
  for (const std::vector<double>& values : R.values) {
    std::vector<double>& kept = T.values.emplace_back();
    for (std::size_t k = 0; k < values.size(); k += every) kept.push_back(values[k]);
  }
  return T;
}

// Of two responses at the same steps, over the largest magnitude of the exact one.
struct Difference {
  double most = 0, rms = 0, late = 0; // late: rms over the last quarter
};

double peakOf(const Response& R) {
  double peak = 0;
  for (const auto& values : R.values) {
    for (const double v : values) peak = std::max(peak, std::fabs(v));
  }
  return peak;
}

Difference differenceOf(const Response& a, const Response& b, double peak) {
  Difference d;
  std::size_t count = 0, last = 0;
  for (std::size_t q = 0; q < a.values.size(); ++q) {
    const std::size_t n = std::min(a.values[q].size(), b.values[q].size());
    for (std::size_t k = 0; k < n; ++k) {
      const double e = (a.values[q][k] - b.values[q][k]) / peak;
      if (!(std::fabs(e) <= d.most)) d.most = std::fabs(e); // NaN stays
      d.rms += e * e;
      ++count;
      if (4 * k < 3 * n) continue;
      d.late += e * e;
      ++last;
    }
  }
  d.rms = std::sqrt(d.rms / static_cast<double>(std::max<std::size_t>(count, 1)));
  d.late = std::sqrt(d.late / static_cast<double>(std::max<std::size_t>(last, 1)));
  return d;
}

std::string words(const Difference& d) {
  return fmt::format("{:.3g} %, rms {:.3g} %, rms at the end {:.3g} %", 100 * d.most, 100 * d.rms,
                     100 * d.late);
}

Finding modelFinding(const CaseCurves& C, double peak, const Limits& limits) {
  const Difference d = differenceOf(C.functions, C.line, peak);
  Finding f{"in time", fmt::format("{}, of the model", C.row.name)};
  f.value = 100 * d.most;
  f.unit = "%";
  f.words = fmt::format(
      "{} of {:.4g} {}", words(d), peak,
      C.row.which == TransientCase::Short || C.row.which == TransientCase::Dc ? "A" : "V");
  f.verdict = limits.judge("time", f.value);
  return f;
}

Finding stepFinding(const CaseCurves& C, double peak, const Limits& limits) {
  const Difference d = differenceOf(C.stepped, C.functions, peak);
  Finding f{"in time", fmt::format("{}, of the step", C.row.name)};
  f.value = 100 * d.most;
  f.unit = "%";
  f.words = words(d);
  f.verdict = limits.judge("step", f.value);
  if (f.verdict == Verdict::GOOD || !std::isfinite(f.value)) return f;
  // The error falls with the square of the step.
  const double enough = C.step * std::sqrt(limits.doubtfulAbove("step") / f.value);
  f.words += fmt::format("; a step of some {:.2g} us is good", 1e6 * enough);
  return f;
}

// ---- Growth

Finding growthFinding(const Growth& g, std::string_view of) {
  Finding f{"growth", fmt::format("{}{}", g.ends.name, of)};
  f.value = g.rate;
  f.unit = "1/s";
  if (g.rate > 0) {
    f.words = fmt::format("grows e-fold in {:.3g} s", 1 / g.rate);
    if (g.frequency > 0) f.words += fmt::format(" at {:.4g} Hz", g.frequency);
  } else {
    f.words = fmt::format("grows: {} roots to the right, not located", g.zeros);
  }
  const bool slow = g.rate > 0 && g.rate * SLOW < 1;
  f.verdict = slow ? Verdict::DOUBTFUL : Verdict::BAD;
  return f;
}

bool grows(const Growth& g) { return g.zeros > 0 || g.rate > 0; }

struct GrowthSearch {
  const ModelFile& file;
  double length;
  const TransientSetup& setup;

  std::vector<Growth> at(double step) const {
    return growthOf(file, length, setup.phase, usualEnds(setup.phase), HIGHEST, {step});
  }
};

// What only the stepping lets grow, with the largest of some halved steps at which it does not.
std::vector<Finding> steppedGrowth(const GrowthSearch& search, const std::vector<Growth>& own) {
  const std::vector<Growth> stepped = search.at(search.setup.step);
  std::vector<Finding> found;
  for (std::size_t e = 0; e < own.size(); ++e) {
    if (grows(own[e]) || !grows(stepped[e])) continue;
    Finding f = growthFinding(stepped[e], ", stepped");
    double step = search.setup.step;
    for (int k = 0; k < HALVINGS; ++k) {
      step /= 2;
      if (grows(search.at(step)[e])) continue;
      f.words += fmt::format("; not with a step of {:.3g} us", 1e6 * step);
      break;
    }
    found.push_back(f);
  }
  return found;
}

std::vector<Finding> checkGrowth(const GrowthSearch& search, double& fastest) {
  const std::vector<Growth> own = search.at(0);
  std::vector<Finding> found;
  for (const Growth& g : own) {
    if (!grows(g)) continue;
    found.push_back(growthFinding(g, ""));
    fastest = std::max(fastest, g.rate);
  }
  const std::vector<Finding> stepped = steppedGrowth(search, own);
  found.insert(found.end(), stepped.begin(), stepped.end());
  if (!found.empty()) return found;
  Finding f{"growth", fmt::format("{} kinds of ends", own.size())};
  f.words = fmt::format("none, nor with a step of {:.4g} us", 1e6 * search.setup.step);
  f.verdict = Verdict::GOOD;
  return {f};
}

// ---- Cases

std::vector<CaseCurves> curvesOf(const TransientRequest& ask,
                                 const std::vector<TransientCase>& cases) {
  if (cases.empty()) return {};
  const std::size_t every = pointsOfAStep(ask.setup);
  const auto steps = static_cast<std::size_t>(std::lround(ask.setup.until / ask.setup.step));
  const std::vector<Response> line = transients(ask, Source::Line, cases, steps * every);
  const std::vector<Response> functions = transients(ask, Source::Functions, cases, steps * every);
  const std::vector<Response> stepped = transients(ask, Source::Stepped, cases, steps);
  std::vector<CaseCurves> found;
  for (std::size_t k = 0; k < cases.size(); ++k) {
    const auto row = std::find_if(TRANSIENTCASES.begin(), TRANSIENTCASES.end(),
                                  [&](const CaseRow& r) { return r.which == cases[k]; });
    found.push_back(
        {*row, ask.setup.step, thinned(line[k], every), thinned(functions[k], every), stepped[k]});
  }
  return found;
}

// An integral that is summed in steps at real frequencies has no value at complex ones.
bool summedEarthReturn() {
  const Ground& G = RUNDATA.ground;
  if (RUNDATA.numerics.IMPROVEDEARTH || RUNDATA.run.DATAFMT != ROUTECONSTANTS) return false;
  if (RUNDATA.run.ISCABLE == OVERHEADLINE) return G.EARTHF == EARTHINTEGRAL;
  const bool aerial = RUNDATA.cable.ANYOVHD && G.EARTHF == EARTHINTEGRAL;
  return RUNDATA.run.ISCABLE == CABLESYSTEM && (aerial || G.EARTHFU == EARTHINTEGRAL);
}

ContinuedLine exactLine(double low, double high, bool exactEarth) {
  const Restored numerics(RUNDATA.numerics);
  RUNDATA.numerics.IMPROVEDEARTH = RUNDATA.numerics.IMPROVEDEARTH || exactEarth;
  return continueLine(low, high);
}

std::vector<Finding> lineFindings(const ContinuedLine& line, bool exactEarth) {
  constexpr double SEEN = 1e-4;
  Finding f{"in time", "of the line, at complex frequencies"};
  f.value = 100 * line.error;
  f.unit = "%";
  if (exactEarth)
    f.words = fmt::format("{:.4g} %, with the exact earth return for formula 2", f.value);
  if (line.error > SEEN) f.verdict = Verdict::DOUBTFUL;
  return {f};
}

} // namespace

double recommendedStep(const ModelFile& file, double length) {
  return shortestDelay(file, length) / STEPSOFADELAY;
}

InTime checkInTime(const ModelFile& file, double length, const TimeOptions& options,
                   const Limits& limits) {
  const Progress progress(options.program);
  InTime all;
  const TransientSetup setup = setupOf(file, length, options);
  const TransientSetup direct = directSetup(setup, options);
  const double top = PI * static_cast<double>(pointsOfAStep(setup)) / setup.step;
  const bool exactEarth = summedEarthReturn();
  const ContinuedLine line = exactLine(1 / (BEYOND * direct.until), BEYOND * top, exactEarth);
  all.findings = lineFindings(line, exactEarth);
  double growth = 0;
  if (hasFunctions(file)) {
    progress.note("looking for what grows");
    const std::vector<Finding> found = checkGrowth({file, length, setup}, growth);
    all.findings.insert(all.findings.end(), found.begin(), found.end());
  }
  for (const bool dc : {false, true}) {
    TransientSetup own = dc ? direct : setup;
    own.growth = growth;
    std::vector<TransientCase> cases;
    for (const TransientCase c : options.cases) {
      if ((c == TransientCase::Dc) == dc) cases.push_back(c);
    }
    progress.note("simulating");
    for (CaseCurves& C : curvesOf({line, file, length, own}, cases))
      all.curves.push_back(std::move(C));
  }
  for (const CaseCurves& C : all.curves) {
    const double peak = peakOf(C.line);
    all.findings.push_back(modelFinding(C, peak, limits));
    all.findings.push_back(stepFinding(C, peak, limits));
  }
  return all;
}

nlohmann::ordered_json asJson(const std::vector<CaseCurves>& curves) {
  nlohmann::ordered_json all = nlohmann::ordered_json::array();
  for (const CaseCurves& C : curves) {
    all.push_back({{"case", C.row.name},
                   {"step", C.step},
                   {"line", C.line.values},
                   {"model", C.functions.values},
                   {"stepped", C.stepped.values}});
  }
  return all;
}

} // namespace lcp::companions
