// Model and line are compared mode by mode: the modes of the line are computed directly and put
// into the order of the transformation in the model file. Travel times, surge impedances and
// resistances are compared relatively, propagation functions absolutely, vectors after a common
// rotation.
#include "companions/verify/compare_modes.h"

#include "base/constants.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/fit_ranges.h"
#include "companions/shared/followed_modes.h"
#include "companions/shared/nodal_scan.h"
#include "companions/shared/two_port.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>

namespace lcp::companions {

namespace {

constexpr double ROUNDING = 1e-18; // of squares of unit vectors in a file with 15 digits
constexpr double CLOSER = 1e-6;    // relative; distances closer than this are equal

constexpr double SMALLTURN = 0.05; // of the largest element: too small to rotate a vector by
constexpr double MERGED = 1e-9;    // 1 minus the squared cosine of two vectors that count as one
constexpr int AROUND = 10;         // points per decade around the steady-state frequency

Finding percent(std::string subject, std::string where, double e, double f, const Limits& limits) {
  Deviation d;
  d.take(e, f);
  return d.finding(std::move(subject), std::move(where), limits.judge("exact", 100 * e));
}

double off(Complex a, Complex b) { return std::abs(a - b) / std::abs(b); }

double offBy(const Matrix& model, const Matrix& line) {
  return largest(combined(model, -1, line)) / largest(line);
}

// Compares a column of a transformation with the vector of the mode, both scaled to unit length; a
// vector may be rotated as a whole in the complex plane.
void takeVector(Deviation& d, const Matrix& T, const Matrix& line, std::size_t m, double f) {
  double length = 0;
  Complex turned = 0;
  for (std::size_t i = 0; i < T.rows; ++i) {
    length += std::norm(T(i, m));
    turned += std::conj(T(i, m)) * line(i, m);
  }
  const Complex factor = turned / std::abs(turned) / std::sqrt(length);
  for (std::size_t i = 0; i < T.rows; ++i) d.take(std::abs(factor * T(i, m) - line(i, m)), f, i, m);
}

// Counts the pairs of identical vectors in a written transformation: two modes on one solution.
Finding onOneSolution(const Matrix& T) {
  Finding f{"modes", "pairs that are on one solution"};
  for (std::size_t a = 0; a < T.columns; ++a) {
    for (std::size_t b = a + 1; b < T.columns; ++b) {
      Complex dot = 0;
      double aa = 0, bb = 0;
      for (std::size_t i = 0; i < T.rows; ++i) {
        dot += std::conj(T(i, a)) * T(i, b);
        aa += std::norm(T(i, a));
        bb += std::norm(T(i, b));
      }
      if (!(std::norm(dot) <= (1 - MERGED) * aa * bb)) f.value += 1;
    }
  }
  f.verdict = f.value == 0 ? Verdict::GOOD : Verdict::BAD;
  return f;
}

// A vector in the file is the real part of one that was rotated so that one of its elements is
// real. Finds that element by comparison; rotating by a small one turns the other elements at
// random.
Finding turnOf(const ModelFile& file, const LineModes& at, std::size_t m) {
  const std::size_t n = file.n;
  double most = 0, best = std::numeric_limits<double>::infinity();
  std::size_t by = 0;
  for (std::size_t i = 0; i < n; ++i) most = std::max(most, std::abs(at.TI(i, m)));
  for (std::size_t r = 0; r < n; ++r) {
    const Complex turn = std::conj(at.TI(r, m)) / std::abs(at.TI(r, m));
    double alike = 0, against = 0;
    for (std::size_t i = 0; i < n; ++i) {
      const double e = (at.TI(i, m) * turn).real(), w = file.bergeron.TI(i, m).real();
      alike += (e - w) * (e - w);
      against += (e + w) * (e + w);
    }
    // Elements that rotate to the same numbers are distinguished by size.
    const double distance = std::min(alike, against);
    const bool larger = std::abs(at.TI(r, m)) > std::abs(at.TI(by, m));
    if (distance < best * (1 - CLOSER) - ROUNDING || (larger && distance < best + ROUNDING)) {
      best = distance;
      by = r;
    }
  }
  const double share = std::abs(at.TI(by, m)) / most;
  Finding f{"vector", fmt::format("mode {}, turned by element {}", m + 1, by + 1)};
  f.value = 100 * share;
  f.unit = "%";
  f.words = fmt::format("{:.3g} % of its largest", f.value);
  f.verdict = share < SMALLTURN ? Verdict::DOUBTFUL : Verdict::GOOD;
  return f;
}

// Models of a single frequency are also compared a decade below and above it, without a verdict, if
// the line can be computed there.
std::vector<std::pair<std::string, double>> aroundSteadyState(double f) {
  if (RUNDATA.run.DATAFMT != ROUTECONSTANTS) return {};
  return {{"a decade below", f / 10}, {"a decade above", 10 * f}};
}

struct PiDeviation {
  double shunt, series;
};

PiDeviation piAt(const ModelFile& file, double length, double f) {
  const LinePoint point = constantsOf(f);
  const PhaseFunctions line = phaseFunctionsOf(point, modesOf(point), length);
  const auto [alike, against] = nodalHalves(line.Yc, line.H);
  Matrix series = combined(against, -1, alike); // twice the series admittance
  for (Complex& e : series.elements) e *= 0.5;
  const PiMatrices pi = piMatrices(file, Complex(0, TWOPI * f));
  return {offBy(pi.shunt, alike), offBy(pi.series, inverse(series))};
}

} // namespace

std::vector<Finding> compareModeFits(const ModelFile& file, double length, const Limits& limits) {
  std::vector<Finding> found;
  const Matrix written = writtenTransformation(file, RUNDATA.fit.FCT);
  std::vector<std::size_t> rows;
  for (const FrequencyRange& range : fitRanges()) {
    std::vector<LinePoint> points;
    for (const double f : range.f) points.push_back(constantsOf(f));
    std::vector<LineModes> line = followed(points, written, RUNDATA.fit.FCT);
    const bool falls = RUNDATA.fit.FEND < RUNDATA.fit.FSTART;
    if (rows.empty())
      rows = largestRows((falls ? line.back() : line[0]).TI); // where the grid starts
    holdRows(line, rows);
    std::vector<Deviation> ofZc(file.n), ofA(file.n), ofT(file.n);
    for (std::size_t k = 0; k < range.f.size(); ++k) {
      const double f = range.f[k];
      const Complex s(0, TWOPI * f);
      const Matrix T = writtenTransformation(file, f);
      for (std::size_t m = 0; m < file.n; ++m) {
        const Complex lag = std::exp(-s * MILLI * file.modes[m].delay);
        ofZc[m].take(off(file.modes[m].Zc.at(s)(0, 0), line[k].Zc[m]), f);
        ofA[m].take(
            std::abs(file.modes[m].A.at(s)(0, 0) * lag - std::exp(-line[k].gamma[m] * length)), f);
        takeVector(ofT[m], T, line[k].TI, m, f);
      }
    }
    for (std::size_t m = 0; m < file.n; ++m) {
      const auto add = [&](std::string_view what, const Deviation& d, std::string element) {
        found.push_back(d.finding(std::string(what),
                                  fmt::format("mode {}{}, {}", m + 1, element, range.name),
                                  limits.judge(range.limitOf("mode"), 100 * d.worst)));
      };
      add("Zc", ofZc[m], "");
      add("H", ofA[m], "");
      add("T", ofT[m], fmt::format(" ({},{})", ofT[m].row + 1, m + 1));
    }
  }
  found.push_back(onOneSolution(written));
  return found;
}

std::vector<Finding> compareBergeron(const ModelFile& file, double length, const Limits& limits) {
  const BergeronFile& B = file.bergeron;
  const LineModes at = modesLike(constantsOf(B.SSFREQ), B.TI);
  const LineModes loss = modesLike(constantsOf(B.FLOSS), at.TI);
  const std::vector<double> T = travelTimes(at, B.SSFREQ, length);
  std::vector<Finding> found;
  for (std::size_t m = 0; m < file.n; ++m) {
    const std::string mode = fmt::format("mode {}", m + 1);
    const double R = (at.gamma[m] * at.Zc[m]).real(), Rloss = (loss.gamma[m] * loss.Zc[m]).real();
    found.push_back(percent("T", mode, off(MILLI * B.modes[m].T, T[m]), B.SSFREQ, limits));
    found.push_back(percent("Zc", mode, off(B.modes[m].Zc, at.Zc[m].real()), B.SSFREQ, limits));
    found.push_back(percent("R", mode, off(B.modes[m].R, R), B.SSFREQ, limits));
    found.push_back(percent("R loss", mode, off(B.modes[m].Rloss, Rloss), B.FLOSS, limits));
    found.push_back(turnOf(file, at, m));
  }
  found.push_back(onOneSolution(B.TI));
  for (const auto& [name, to] : aroundSteadyState(B.SSFREQ)) {
    const std::vector<double> f = ratios(B.SSFREQ, to, AROUND);
    for (std::size_t m = 0; m < file.n; ++m) {
      Deviation ofT, ofZc;
      for (const double g : f) {
        const LineModes line = modesLike(constantsOf(g), at.TI);
        ofT.take(off(MILLI * B.modes[m].T, travelTimes(line, g, length)[m]), g);
        ofZc.take(off(B.modes[m].Zc, line.Zc[m].real()), g);
      }
      const std::string where = fmt::format("mode {}, {}", m + 1, name);
      found.push_back(ofT.finding("T", where));
      found.push_back(ofZc.finding("Zc", where));
    }
  }
  return found;
}

std::vector<Finding> comparePi(const ModelFile& file, double length, const Limits& limits) {
  const double f = RUNDATA.line.SSFREQ;
  const PiDeviation exact = piAt(file, length, f);
  std::vector<Finding> found = {percent("shunt", "both halves", exact.shunt, f, limits),
                                percent("series", "impedance", exact.series, f, limits)};
  for (const auto& [name, to] : aroundSteadyState(f)) {
    Deviation ofShunt, ofSeries;
    for (const double g : ratios(f, to, AROUND)) {
      const PiDeviation d = piAt(file, length, g);
      ofShunt.take(d.shunt, g);
      ofSeries.take(d.series, g);
    }
    found.push_back(ofShunt.finding("shunt", name));
    found.push_back(ofSeries.finding("series", name));
  }
  return found;
}

std::vector<Finding> checkTransformation(const Limits& limits) {
  const std::vector<double> f = fitRanges()[0].f;
  Finding condition{"modes", "condition of the transformation"};
  Finding share{"modes", "smallest share in the mode before"};
  Matrix before;
  share.value = 1;
  for (const double at : f) {
    LineModes modes = modesOf(constantsOf(at));
    if (!before.elements.empty()) {
      modes = inOrderOf(modes, before);
      const Matrix own = product(modes.TIINV, before);
      for (std::size_t i = 0; i < own.rows; ++i) {
        if (std::abs(own(i, i)) >= share.value) continue;
        share.value = std::abs(own(i, i));
        share.frequency = at;
      }
    }
    before = modes.TI;
    if (!(modes.condition <= condition.value)) {
      condition.value = modes.condition;
      condition.frequency = at;
    }
  }
  condition.verdict = limits.judge("condition", condition.value);
  return {condition, share};
}

} // namespace lcp::companions
