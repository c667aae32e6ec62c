#include "companions/verify/compare_modes.h"

#include "companions/shared/direct_line.h"
#include "companions/shared/fit_ranges.h"
#include "companions/shared/followed_modes.h"
#include "store/rundata.h"

#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double TWOPI = 6.283185307179586;
constexpr double MILLI = 1e-3;
constexpr double MICRO = 1e-6;

struct Worst {
  double value = 0, frequency = 0, squares = 0;
  std::size_t count = 0;

  void take(double e, double f) {
    squares += e * e;
    ++count;
    if (e <= value || std::isnan(value)) return;
    value = e;
    frequency = f;
  }
};

Finding findingOf(const Worst& w, std::string subject, std::string where, Verdict verdict) {
  Finding f{std::move(subject), std::move(where)};
  f.value = 100 * w.value;
  f.unit = "%";
  f.frequency = w.frequency;
  if (w.count > 1) f.rms = 100 * std::sqrt(w.squares / static_cast<double>(w.count));
  f.verdict = verdict;
  return f;
}

Finding percent(std::string subject, std::string where, double e, double f, const Limits& limits) {
  Worst w;
  w.take(e, f);
  return findingOf(w, std::move(subject), std::move(where), limits.judge("exact", 100 * e));
}

double off(Complex a, Complex b) { return std::abs(a - b) / std::abs(b); }

double offBy(const Matrix& model, const Matrix& line) {
  return largest(combined(model, -1, line)) / largest(line);
}

} // namespace

std::vector<Finding> compareModeFits(const ModelFile& file, double length, const Limits& limits) {
  std::vector<Finding> found;
  const Matrix written = writtenTransformation(file);
  for (const FrequencyRange& range : fitRanges()) {
    std::vector<LinePoint> points;
    for (const double f : range.f) points.push_back(constantsOf(f));
    const std::vector<LineModes> line = followed(points, written, RUNDATA.fit.FCT);
    for (std::size_t m = 0; m < file.n; ++m) {
      Worst ofZc, ofA;
      for (std::size_t k = 0; k < range.f.size(); ++k) {
        const Complex s(0, TWOPI * range.f[k]);
        const Complex lag = std::exp(-s * MILLI * file.modes[m].delay);
        ofZc.take(off(file.modes[m].Zc.at(s)(0, 0), line[k].Zc[m]), range.f[k]);
        ofA.take(std::abs(file.modes[m].A.at(s)(0, 0) * lag - std::exp(-line[k].gamma[m] * length)),
                 range.f[k]);
      }
      const std::string where = fmt::format("mode {}, {}", m + 1, range.name);
      const std::string_view limit = range.limit.empty() ? "mode" : range.limit;
      found.push_back(findingOf(ofZc, "Zc", where, limits.judge(limit, 100 * ofZc.value)));
      found.push_back(findingOf(ofA, "H", where, limits.judge(limit, 100 * ofA.value)));
    }
  }
  return found;
}

std::vector<Finding> compareBergeron(const ModelFile& file, double length, const Limits& limits) {
  const BergeronFile& B = file.bergeron;
  const LineModes at = modesLike(constantsOf(B.SSFREQ), B.TI);
  const LineModes loss = modesLike(constantsOf(B.FLOSS), at.TI);
  std::vector<Finding> found;
  for (std::size_t m = 0; m < file.n; ++m) {
    const std::string mode = fmt::format("mode {}", m + 1);
    const double T = length * at.gamma[m].imag() / (TWOPI * B.SSFREQ);
    const double R = (at.gamma[m] * at.Zc[m]).real(), Rloss = (loss.gamma[m] * loss.Zc[m]).real();
    found.push_back(percent("T", mode, off(MILLI * B.modes[m].T, T), B.SSFREQ, limits));
    found.push_back(percent("Zc", mode, off(B.modes[m].Zc, at.Zc[m].real()), B.SSFREQ, limits));
    found.push_back(percent("R", mode, off(B.modes[m].R, R), B.SSFREQ, limits));
    found.push_back(percent("R loss", mode, off(B.modes[m].Rloss, Rloss), B.FLOSS, limits));
  }
  return found;
}

std::vector<Finding> comparePi(const ModelFile& file, double length, const Limits& limits) {
  const double f = RUNDATA.line.SSFREQ;
  const Complex s(0, TWOPI * f);
  const LinePoint point = constantsOf(f);
  const PhaseFunctions line = phaseFunctionsOf(point, modesOf(point), length);
  const Matrix I = identity(file.n);
  const Matrix plus = combined(I, 1, line.H), minus = combined(I, -1, line.H);
  const Matrix alike = product(inverse(plus), product(minus, line.Yc));
  const Matrix against = product(inverse(minus), product(plus, line.Yc));
  Matrix series = combined(against, -1, alike); // twice the series admittance
  for (Complex& e : series.elements) e *= 0.5;
  Matrix shunt(file.n, file.n), Z = file.pi.R;
  for (std::size_t j = 0; j < file.n; ++j) {
    for (std::size_t i = 0; i < file.n; ++i) {
      const double R = file.pi.shuntR(i, j).real();
      const Complex y = s * MICRO * file.pi.shuntC(i, j) + (R == 0 ? 0.0 : 1 / R);
      shunt(i, i) += y;
      if (i != j) shunt(i, j) = -y;
      Z(i, j) += s * file.pi.L(i, j);
    }
  }
  return {percent("shunt", "both halves", offBy(shunt, alike), f, limits),
          percent("series", "impedance", offBy(Z, inverse(series)), f, limits)};
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
