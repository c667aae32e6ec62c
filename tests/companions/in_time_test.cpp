// Simulations against what is known by hand: a lattice of reflections, a cable of resistance and
// capacitance alone, a stepped model against a loop over its steps, roots of one equation.
#include "base/constants.h"
#include "companions/shared/growth.h"
#include "companions/shared/transients.h"
#include "run/lcpmain.h"
#include "store/rundata.h"
#include "support/description.h"

#include <cmath>
#include <fmt/format.h>
#include <gtest/gtest.h>

using namespace lcp::companions;
using namespace lcp::test;

namespace {

// One conductor with constant values per metre: ohm, ohm and ohm m at 50 Hz.
ContinuedLine constantLine(double R, double X, double XC, double length, double until) {
  readHere(description(fmt::format(
      "Line Summary\n{{\nNumber of Conductors: 1\nSteady State Frequency: 50\n}}\nManual Data "
      "Entry\n{{\nNumber of Conductors: 1\nData Entry Format : ohms/m\n+ve Sequence Resistance: "
      "{}\n+ve Sequence Inductive Reactance: {}\n+ve Sequence Capacitive Reactance: {} "
      "[Mohm*m]\n}}\nBergeron Line Model Options\n{{\n}}\n",
      R, X, 1e-6 * XC)));
  lcp::RUNDATA.run.LINELEN = length;
  return continueLine(0.01 / until, 1e9);
}

double rise(double t, double front) {
  if (t >= front) return 1;
  return t <= 0 ? 0 : (1 - std::cos(lcp::PI * t / front)) / 2;
}

// Yc = 1 / Z, H = gain a / (s + a) after a delay.
ModelFile oneWave(double Z, double gain, double a, double delay) {
  ModelFile file;
  file.kind = lcp::ModelKind::Phase;
  file.n = 1;
  file.Yc = {oneByOne(1 / Z), {}, {}, {}};
  file.H = {{delay}, {{{}, {}, {-a}, {oneByOne(gain * a)}}}};
  return file;
}

TEST(Transients, ALosslessLineGivesTheLatticeOfItsReflections) {
  constexpr double L = 1e-6, C = 1 / (9e16 * L), LENGTH = 60e3, FRONT = 40e-6; // 200 us
  const double w = lcp::TWOPI * 50, T = LENGTH * std::sqrt(L * C);
  const ContinuedLine line = constantLine(1e-15, w * L, 1 / (w * C), LENGTH, 2e-3);
  TransientSetup setup{{true}, 50, FRONT, 2e-3, 0, 0};
  const ModelFile none;
  const TransientRequest ask{line, none, LENGTH, setup};
  const Response R = transients(ask, Source::Line, {TransientCase::Step}, 8000)[0];
  for (std::size_t k = 0; k < R.values[0].size(); k += 7) {
    const double t = R.step * static_cast<double>(k);
    double v = 0;
    for (int i = 0; i < 8; ++i) v += 2 * (i % 2 == 0 ? 1 : -1) * rise(t - (2 * i + 1) * T, FRONT);
    ASSERT_NEAR(R.values[0][k], v, 2e-3) << t;
  }
}

// Diffusion into an open cable: 1 - 4/pi sum (-1)^k / (2 k + 1) exp(-((2 k + 1) pi / 2)^2 t / (R
// C)).
TEST(Transients, ACableOfResistanceAndCapacitanceDiffuses) {
  constexpr double R = 1e-2, C = 1e-10, LENGTH = 1e4, RC = R * C * LENGTH * LENGTH;
  const double w = lcp::TWOPI * 50;
  const ContinuedLine line = constantLine(R, 1e-12, 1 / (w * C), LENGTH, 2 * RC);
  TransientSetup setup{{true}, 50, 1e-4 * RC, 2 * RC, 0, 0};
  const ModelFile none;
  const Response found =
      transients({line, none, LENGTH, setup}, Source::Line, {TransientCase::Step}, 8000)[0];
  for (const double part : {0.02, 0.05, 0.1, 0.3, 1.0, 1.9}) {
    const auto k = static_cast<std::size_t>(std::lround(part * RC / found.step));
    double v = 1;
    for (int i = 0; i < 200; ++i) {
      const double odd = 2 * i + 1;
      v -= 4 / lcp::PI * (i % 2 == 0 ? 1 : -1) / odd *
           std::exp(-std::pow(odd * lcp::PI / 2, 2) * part);
    }
    EXPECT_NEAR(found.values[0][k], v, 2e-4) << part;
  }
}

// The same recursion as a loop: trapezoidal rule for the pole, history between two steps.
TEST(Transients, AStepOfAModelIsThatOfASimulator) {
  constexpr double Z = 400, a = 2e4, DELAY = 0.337e-3, STEP = 25e-6, FRONT = 60e-6;
  const ModelFile file = oneWave(Z, 0.98, a, DELAY);
  const ContinuedLine none{};
  TransientSetup setup{{true}, 50, FRONT, 400 * STEP, STEP, 0};
  const Response R =
      transients({none, file, 1e5, setup}, Source::Stepped, {TransientCase::Step}, 400)[0];
  std::vector<double> sent(401), back(401); // waves of current that leave the two ends
  double x[2] = {}, before[2] = {};         // pole and input at the far end, at the near one
  const auto arriving = [&](const std::vector<double>& wave, int k, int end) {
    const double place = k - DELAY / STEP, low = std::floor(place);
    const auto at = [&](double i) { return i < 0 ? 0 : wave[static_cast<std::size_t>(i)]; };
    const double u = at(low) * (1 - place + low) + at(low + 1) * (place - low);
    const double h = a * STEP / 2;
    x[end] = ((1 - h) * x[end] + 0.98 * h * (u + before[end])) / (1 + h);
    before[end] = u;
    return x[end];
  };
  for (int k = 0; k <= 400; ++k) {
    const auto i = static_cast<std::size_t>(k);
    const double here = arriving(sent, k, 0); // far end, open: all of it comes back
    back[i] = here;
    sent[i] = rise(STEP * k, FRONT) / Z - arriving(back, k, 1);
    ASSERT_NEAR(R.values[0][i], 2 * here * Z, 1e-6) << k;
  }
}

TEST(Growth, RootsAreThoseOfTheEquation) {
  constexpr double a = 1e3, DELAY = 1e-3;
  const std::vector<Ends> ends = {{"open", OPENEND, OPENEND}, {"10 ohm", 10, 10}};
  for (const double gain : {0.999, 1.02, 1.5}) {
    const std::vector<Growth> found =
        growthOf(oneWave(400, gain, a, DELAY), 1e5, {true}, ends, 1e6, {});
    // gain a / (s + a) exp(-s delay) = 1, or -1 with a turn
    double s = 0;
    for (int k = 0; k < 200; ++k) s += 0.3 * (gain * a * std::exp(-s * DELAY) - a - s);
    if (gain < 1) s = 0;
    EXPECT_NEAR(found[0].rate, s, 1e-4 * s) << gain;
    EXPECT_EQ(found[0].zeros > 0, gain > 1) << gain;
    EXPECT_EQ(found[1].zeros > 0, gain > 1.06) << gain; // 390 / 410 comes back
  }
}

// A line that passes more at one frequency than it is sent grows there, and nowhere else.
TEST(Growth, APairOfRootsIsFoundWhereTheLoopGains) {
  ModelFile file = oneWave(400, 0.9, 1e4, 1.2e-3);
  const Complex p(-5, lcp::TWOPI * 800);
  Rational& H = file.H.groups[0];
  for (const Complex& pole : {p, std::conj(p)}) {
    H.poles.push_back(pole);
    H.residues.push_back(oneByOne(2));
  }
  const Growth g = growthOf(file, 1e5, {true}, {{"open", OPENEND, OPENEND}}, 1e6, {})[0];
  ASSERT_GT(g.zeros, 0);
  EXPECT_EQ(g.zeros % 2, 0);
  EXPECT_NEAR(g.frequency, 800, 5);
  const Complex s(g.rate, lcp::TWOPI * g.frequency);
  const Complex h = file.H.at(s)(0, 0);
  EXPECT_NEAR(std::abs(h * h - 1.0), 0, 1e-5);
}

} // namespace
