// Entered data against matrices built from the sequences, and against lines computed from geometry.
#include "modal/manual_modes.h"

#include "base/constants.h"
#include "modal/long_line.h"
#include "run/manual_driver.h"
#include "store/rundata.h"
#include "support/dense_functions.h"
#include "support/description.h"
#include "support/solve.h"

#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp;
using namespace lcp::test;

namespace {

constexpr double LENGTH = 8e4;

LineMatrix Y, Z;

void enter(int n, const std::string& keys, double length = LENGTH) {
  readHere(description(manualLineOf(n, keys, bergeronModel())));
  RUNDATA.run.LINELEN = length;
  MANLINE(Y, Z, 170, MANUALMATRICES);
}

struct Mode {
  double R, L, C; // per metre

  Mode added(const Mode& b, double sign) const {
    return {R + sign * b.R, L + sign * b.L, C + sign * b.C};
  }
};

constexpr Mode POSITIVE{2e-5, 0.9e-6, 12e-12}, ZERO{25e-5, 3.1e-6, 8e-12},
    MUTUAL{18e-5, 0.5e-6, 2e-12};

// Keys of one sequence in the format MANFMT, at 60 Hz.
std::string keysOf(const char* name, const Mode& m, int MANFMT) {
  if (MANFMT == MANSURGE) {
    return fmt::format("{0}Resistance: {1}\n{0}Travel Time: {2}\n{0}Surge Impedance: {3}\n", name,
                       m.R, std::sqrt(m.L * m.C), std::sqrt(m.L / m.C));
  }
  const double w = TWOPI * 60, Zb = MANFMT == MANPERUNIT ? 345.0 * 345.0 / 200.0 : 1.0;
  const double XC = MANFMT == MANPERUNIT ? 1 / (w * m.C * Zb) : 1e-6 / (w * m.C);
  return fmt::format("{0}Resistance: {1}\n{0}Inductive Reactance: {2}\n"
                     "{0}Capacitive Reactance: {3}\n",
                     name, m.R / Zb, w * m.L / Zb, XC);
}

// The phase matrix of n conductors from a positive-sequence value and zero-sequence values of the
// sum and the difference of two circuits.
Dense phases(std::size_t n, Wide positive, Wide sum, Wide difference) {
  if (n == 1) return {{positive}};
  const Wide zero = n == 6 ? (sum + difference) / 2.0L : sum;
  return formed(n, [&](std::size_t i, std::size_t j) {
    if (i / 3 != j / 3) return (sum - difference) / 6.0L;
    return (zero - positive) / 3.0L + (i == j ? positive : 0);
  });
}

void checkSequences(int MANFMT, int n, int ESTZERO) {
  const char* const formats[] = {"p.u./m", "ohms/m", "Surge Impedance and Travel Time"};
  const std::string zeroKeys = ESTZERO == ZEROENTERED ? keysOf("0 Sequence ", ZERO, MANFMT) : "";
  enter(n, fmt::format("Data Entry Format:  {}\nVoltage Rating (kV L-L RMS): 345\n"
                       "Total MVA Rating: 200\nEstimate Zero Sequence: {}\n"
                       "Estimation Ratio for 0-Seq.-R/+ve-Seq.-R: 9\n"
                       "Estimation Ratio for 0-Seq.-Z/+ve-Seq.-Z: 2.5\n"
                       "Estimation Ratio for 0-Seq.-T/+ve-Seq.-T: 1.4\n{}{}{}",
                       formats[MANFMT], ESTZERO, keysOf("+ve Sequence ", POSITIVE, MANFMT),
                       zeroKeys, keysOf("0 Sequence Mutual ", MUTUAL, MANFMT)));
  Mode zero = ESTZERO == ZEROENTERED ? ZERO : POSITIVE;
  if (ESTZERO == ZERORATIOS) zero = {9 * zero.R, 2.5 * 1.4 * zero.L, 1.4 / 2.5 * zero.C};
  // the sum of the circuits includes the mutual values only for entered reactances
  const bool sums = n == 6 && ESTZERO == ZEROENTERED && MANFMT != MANSURGE;
  const Mode sum = zero.added(MUTUAL, sums ? 1 : 0), difference = zero.added(MUTUAL, -1);
  const double w = TWOPI * 170;
  for (const bool ofZ : {false, true}) {
    const auto x = [&](const Mode& m) { return ofZ ? Wide(m.R, w * m.L) : Wide(0, w * m.C); };
    const Dense wanted = phases(static_cast<std::size_t>(n), x(POSITIVE), x(sum), x(difference));
    EXPECT_LT(distance(corner(ofZ ? Z : Y, n), wanted), 1e-13) << MANFMT << n << ESTZERO;
  }
}

} // namespace

TEST(ManualModes, SequenceDataGiveTheirPhaseMatrices) {
  for (int i = 0; i < 27; ++i) checkSequences(i / 9, i % 3 == 0 ? 1 : i % 3 * 3, i / 3 % 3);
}

TEST(ManualModes, TakesTheLongLineCorrectionOut) {
  const double w = TWOPI * 60;
  LineMatrix plainY, plainZ, YLC, ZLC;
  const Complex y = plainY(1, 1) = {0, w * POSITIVE.C};
  const Complex z = plainZ(1, 1) = {POSITIVE.R, w * POSITIVE.L};
  for (const double length : {5e4, 4e5}) {
    bool shown = false;
    LONGCOR(plainY, plainZ, length, YLC, ZLC, 1, shown);
    const Mode corrected{ZLC(1, 1).real(), ZLC(1, 1).imag() / w, YLC(1, 1).imag() / w};
    const std::string keys = keysOf("+ve Sequence ", corrected, MANOHMS);
    enter(1, "Data Entry Format:  ohms/m\nLong Line Corrected: 1\n" + keys, length);
    // u^2 of the corrected values has a relative error of u^2 / 12, which changes the factors of Z
    // and Y, 1 + u^2 / 6 and 1 - u^2 / 12, by u^4 / 72 and u^4 / 144
    const double u4 = std::pow(length * std::abs(std::sqrt(y * z)), 4);
    const double offX = Z(1, 1).imag() / 170 * 60 / z.imag() - 1;
    const double offB = Y(1, 1).imag() / 170 * 60 / y.imag() - 1;
    EXPECT_NEAR(std::fabs(offX), u4 / 72, 0.3 * u4 / 72) << length;
    EXPECT_NEAR(std::fabs(offB), u4 / 144, 0.3 * u4 / 144) << length;
  }
}

TEST(ManualModes, AComputedLineComesBackFromItsPair) {
  solveBothLoops(doubleCircuit(bergeronModel("High Frequency Approximation: 0\n")), LENGTH);
  std::string file;
  for (int i = 0; i < 72; ++i) {
    const LineMatrix& A = i < 36 ? SOLVEDATA.first.ZMAT : SOLVEDATA.first.YMAT;
    const Complex a = A(1 + i % 36 / 6, 1 + i % 6);
    file += (i % 36 == 0 ? (i == 0 ? "Z:\n" : "Y:\n") : "") +
            fmt::format("{} {}\n", a.real(), a.imag());
  }
  enter(6, fmt::format("Data Entry Format:  Y and Z\nY,Z Input File Name: '{}'\n",
                       scratchFile("pair.txt", file)));
  formManualTransformation();
  const SecondLoopStore& T = SOLVEDATA.second;
  for (int k = 1; k <= 6; ++k) {
    double nearest = 1;
    for (int i = 1; i <= 6; ++i) {
      const ManualMode m = manualMode(i);
      nearest =
          std::min(nearest, std::fabs(m.T / T.TAUMS[k] - 1) + std::fabs(m.Zc / T.ZSURGER[k] - 1) +
                                std::fabs(m.R / T.RLOSS2[k] - 1));
    }
    EXPECT_LT(nearest, 1e-9) << k;
  }
}
