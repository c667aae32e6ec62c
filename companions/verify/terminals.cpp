// Both ends alike, with the halves Ya and Yb of the nodal admittance for ends driven alike and
// against each other: the exact pi circuit has the series admittance (Yb - Ya) / 2 and Ya at each
// end.
#include "companions/verify/terminals.h"

#include "base/constants.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/two_port.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double ZEROFREQUENCY = 1e-6; // Hz
constexpr std::size_t PHASES = 3;

struct Sequence {
  std::string_view index; // "1", "0", or empty for own values
  Complex Z;              // ohm
  double B = 0;           // S
};

Matrix ofPhases(const Matrix& A, const std::vector<bool>& phase) {
  std::vector<std::size_t> rows;
  for (std::size_t i = 0; i < phase.size(); ++i) {
    if (phase[i]) rows.push_back(i);
  }
  Matrix P(rows.size(), rows.size());
  for (std::size_t j = 0; j < rows.size(); ++j) {
    for (std::size_t i = 0; i < rows.size(); ++i) P(i, j) = A(rows[i], rows[j]);
  }
  return P;
}

// Means of the diagonal and of the rest over the first conductors.
struct Means {
  Complex own, mutual;
};

Means meansOf(const Matrix& A, std::size_t count) {
  Means m;
  const double n = static_cast<double>(count);
  for (std::size_t j = 0; j < count; ++j) {
    m.own += A(j, j) / n;
    for (std::size_t i = 0; i < count && count > 1; ++i)
      m.mutual += i == j ? 0.0 : A(i, j) / (n * (n - 1));
  }
  return m;
}

std::vector<Sequence> sequencesOf(const NodalHalves& Y, const std::vector<bool>& phase) {
  const Matrix alike = ofPhases(Y.alike, phase);
  Matrix series = combined(ofPhases(Y.against, phase), -1, alike);
  for (Complex& e : series.elements) e *= 0.5;
  const std::size_t count = std::min(alike.rows, PHASES);
  const Means Z = meansOf(inverse(series), count), B = meansOf(alike, count);
  if (count < PHASES) return {{"", Z.own, 2 * B.own.imag()}};
  return {{"1", Z.own - Z.mutual, 2 * (B.own - B.mutual).imag()},
          {"0", Z.own + 2.0 * Z.mutual, 2 * (B.own + 2.0 * B.mutual).imag()}};
}

struct Quantity {
  std::string_view letter;
  std::string_view unit;
  Complex model, line;
};

Finding findingOf(const Quantity& q, std::string_view index, std::string_view where, double f,
                  Verdict (*judge)(const Limits&, double), const Limits& limits) {
  Finding found{"terminals", fmt::format("{}{}, {}", q.letter, index, where)};
  found.value = 100 * std::abs(q.model - q.line) / std::abs(q.line);
  found.unit = "%";
  found.words = fmt::format("{:.4g} %, {:.5g} {} of {:.5g} {}", found.value, std::abs(q.model),
                            q.unit, std::abs(q.line), q.unit);
  found.frequency = f;
  found.verdict = judge(limits, found.value);
  return found;
}

Verdict atSteadyState(const Limits& limits, double value) {
  return limits.judge("terminal", value);
}
// A model of one or two frequencies is not made for direct current: stated, not judged.
Verdict atZero(const Limits& limits, double value) {
  return limits.judge(RUNDATA.model.fitted() ? "zero" : "", value);
}

NodalHalves lineHalves(double f, double length) {
  const LinePoint point = constantsOf(f);
  const PhaseFunctions F = phaseFunctionsOf(point, modesOf(point), length);
  return nodalHalves(F.Yc, F.H);
}

} // namespace

std::vector<Finding> compareTerminals(const ModelFile& file, double length, const Limits& limits) {
  std::vector<Finding> found;
  const double f = RUNDATA.line.SSFREQ;
  const NodalHalves exact = lineHalves(f, length);
  const std::vector<bool> phase = phaseConductors(file.n);
  const auto modelAt = [&](double at) {
    return sequencesOf(modelHalves(file, Complex(0, TWOPI * at), length, Stepping{}), phase);
  };
  const std::vector<Sequence> line = sequencesOf(exact, phase), model = modelAt(f);
  for (std::size_t k = 0; k < line.size(); ++k) {
    for (const Quantity& q : {Quantity{"Z", "ohm", model[k].Z, line[k].Z},
                              Quantity{"R", "ohm", model[k].Z.real(), line[k].Z.real()},
                              Quantity{"B", "S", model[k].B, line[k].B}})
      found.push_back(findingOf(q, line[k].index, "steady state", f, atSteadyState, limits));
  }
  if (RUNDATA.run.fromTable()) return found;
  const std::vector<Sequence> direct = sequencesOf(lineHalves(ZEROFREQUENCY, length), phase);
  const std::vector<Sequence> still = modelAt(ZEROFREQUENCY);
  for (std::size_t k = 0; k < direct.size(); ++k)
    found.push_back(findingOf({"R", "ohm", still[k].Z.real(), direct[k].Z.real()}, direct[k].index,
                              "zero frequency", ZEROFREQUENCY, atZero, limits));
  return found;
}

} // namespace lcp::companions
