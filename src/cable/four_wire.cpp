// Four-wire cable in closed formulas; all lengths in m, results per km.
//
// Geometry from the nominal area A of a conductor in mm^2: D is the diameter of a round conductor
// of that area, re and ri are the equivalent radii of its copper and its outline, Dg is the width
// of the sector, W and G are the distances of the fields between neighbours, S is the side of the
// square. From these follow the flux of a current in one conductor through another, per length: Lx
// tangential, Ly radial.
//
//   Cg  layers in series: insulator, tape, mantle    conductor to ground, a quarter cylinder
//   Ca  plates of width W, two insulators apart      adjacent conductors
//   Cd  the gap in the middle and two insulators     opposite conductors
//
// Conductor with skin depth delta = sqrt(rho / (pi f mu0)): above the frequency ft the current
// leaves the middle. With a(x) = (b x + 1.27) x^2 the area inside radius x, So = a(ri) and v = u
// q^2 = a(q) the area free of current, q = ri - delta,
//
//   L0i = mu0 / (4 pi c^2) T,   T = integral of (s - v)^2 / s ds from v to So
//                                 = (So - v) (So - 3 v) / 2 + v^2 log(So / v)
//
// Losses in the fields of the neighbours grow with f^2 and, when the skin depth is small against
// the conductor (F below 1), with sqrt(f); they displace the current by s1 and s2.
//
// Earth return with complex depth P = sqrt(GRHO / (j w mu0)): log(H / X) for each separation X.
#include "cable/four_wire.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/solve_error.h"
#include "kernels/matrix_kernels.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <cmath>
#include <cstdlib>

namespace lcp {

namespace {

// Resistance, inductance and capacitance of the last call, with the symmetry of the square: one
// value for a conductor itself, one for its two neighbours, one for the opposite conductor.
struct FourWireStore {
  SquareStore<double, FOURWIRES> FWR; // ohm/km
  SquareStore<double, FOURWIRES> FWL; // H/km
  SquareStore<double, FOURWIRES> FWC; // F/km
};

FourWireStore FOURWIRE{};

constexpr double KILO = 1000.0;     // m per km
constexpr double SQUAREMILLI = 1e6; // mm^2 per m^2
constexpr double SQRT2 = 1.4142135623730951;
constexpr double LOSSLESS = 1e-15;                  // ohm m; below it a conductor is lossless
constexpr double INNERL = 4.999999999999999e-05;    // mu0 / (8 pi) in H/km
constexpr double QUARTERC = 1.3908125701266521e-11; // 2 pi e0 / 4, F/m
constexpr double PIMU0 = 3.947841760435743e-06;     // pi mu0
constexpr double TWOPIMU0 = 7.895683520871486e-06;

struct Geometry {
  double A; // mm^2
  double D, re, ri, Dg, W, G, S;
  double Lx, Ly; // H/m^2
};

// Contribution of the resistivity of the conductors; a lossless one has only inductance.
struct Series {
  double R0 = 0;                 // ohm/km
  double L0i = INNERL;           // H/km
  double E1 = 0, E2 = 0, E3 = 0; // losses, ohm/km
  double s1 = 0, s2 = 0;         // displacement across and between neighbours
};

// The area is under a root, and the formulas divide by it and by the insulator thickness. All other
// values are harmless: the other dimensions are summands, and a permittivity of 0 removes a
// capacitance.
void checkRecord(const FourWireRecord& cable) {
  if (!(cable.FWAREA > 0.0) || cable.FWTINS == 0.0) {
    console::openStars();
    console::line("Four-Wire Cable: Nominal Conductor Area and");
    console::line("Insulator Thickness Must be > 0!");
    stopInStars();
  }
  const struct {
    bool likely;
    double value;
    const char* key;
  } entries[] = {
      {cable.FWTINS > 0.0, cable.FWTINS, "Insulator Thickness"},
      {cable.FWTTAPE >= 0.0, cable.FWTTAPE, "Polyester Tape Thickness"},
      {cable.FWTMANT >= 0.0, cable.FWTMANT, "Outer Mantle Thickness"},
      {cable.FWEPSI > 0.0, cable.FWEPSI, "Insulator Relative Permittivity"},
      {cable.FWEPST > 0.0, cable.FWEPST, "Polyester Tape Relative Permittivity"},
      {cable.FWEPSM > 0.0, cable.FWEPSM, "Outer Mantle Relative Permittivity"},
  };
  for (const auto& e : entries) {
    if (e.likely) continue;
    console::warning(
        fmt::format("{} is {:.4g} and counts as it stands: Four-Wire Cable", e.key, e.value));
  }
}

Geometry geometryOf(const FourWireRecord& cable) {
  Geometry g{};
  const double ti = cable.FWTINS;
  g.A = cable.FWAREA;
  g.D = std::sqrt(4.0 * g.A / PI) / KILO;
  g.re = 0.469041575982343 * g.D;  // sqrt(0.22) D
  g.ri = 0.4142135623730951 * g.D; // (sqrt(2) - 1) D
  g.Dg = std::sqrt(1.38 * g.A / 1.2) / KILO;
  g.W = 0.87 * g.D;
  g.G = 2.0 * (((2.0 * ti + g.W) * 1.1494252873563218 - g.W) - 2.0 * ti);
  g.S = 2.0 * (ti + 0.43 * g.D);
  g.Lx = MU0 / (TWOPI * g.Dg) * std::log((g.Dg + 0.43 * g.D + 2.0 * ti) / (2.0 * ti + 0.43 * g.D));
  g.Ly = MU0 / (TWOPI * g.W) *
         std::log((g.W + 0.48 * g.D + g.G + 2.0 * ti) / (2.0 * ti + g.G + 0.48 * g.D));
  return g;
}

void fill(SquareStore<double, FOURWIRES>& M, double self, double adjacent, double diagonal) {
  const double byDistance[] = {self, adjacent, diagonal, adjacent};
  for (int j = 1; j <= FOURWIRES; ++j) {
    for (int i = 1; i <= FOURWIRES; ++i) M(i, j) = byDistance[std::abs(i - j)];
  }
}

void fillCapacitances(const Geometry& g, const FourWireRecord& cable) {
  const double ti = cable.FWTINS;
  const double q1 = ti + g.D;
  const double q2 = cable.FWTTAPE + q1;
  const double Cg =
      KILO * QUARTERC /
      (std::log(q2 / q1) / cable.FWEPST + std::log((cable.FWTMANT + q2) / q2) / cable.FWEPSM +
       std::log(q1 / g.D) / cable.FWEPSI);
  const double Ca = KILO * g.W * EPS0 * cable.FWEPSI / (2.0 * ti);
  const double Cd = KILO * EPS0 / (2.0 / cable.FWEPSI * ti / g.G + 1.0);
  fill(FOURWIRE.FWC, Cg + 2.0 * Ca + Cd, -Ca, -Cd);
}

// Resistance and internal inductance. Just above ft the skin depth still exceeds ri by up to 0.1 %,
// and no area is free of current: the DC values are used until it is smaller than ri.
void addSkinEffect(Series& s, double f, double rho, double delta, const Geometry& g) {
  const double ft = 1.28 * rho / (g.A * 1.105840614063607e-06 / SQUAREMILLI); // 0.88 mu0
  const double q = g.ri - delta;
  const double copper = PI * g.re * g.re;
  if (!(f >= ft && q > 0.0)) {
    s.R0 = KILO * rho / copper;
    return;
  }
  const double b = -0.39 / (0.41 * g.D);
  const double u = b * q + 1.27;
  const double v = u * q * q;
  const double So = (b * g.ri + 1.27) * g.ri * g.ri;
  const double c = 0.88 * g.ri * g.ri - v;
  const double width = 2.414213562373095 * q; // (1 + sqrt(2)) q
  s.R0 = KILO * rho / (copper - u * (PI / 4.0) * width * width);
  const double T = 0.5 * (So - v) * (So - 3.0 * v) + v * v * std::log(So / v);
  s.L0i = KILO * MU0 / (4.0 * PI * c * c) * T;
}

// Losses due to the fields of the neighbours, and the displacement of the current by them.
void addProximity(Series& s, double f, double rho, double delta, const Geometry& g) {
  const double d = 2.0 * g.re;
  const double core = g.re - 2.0 * delta; // radius free of current, if positive
  const double square = g.re * g.re - (4.0 * delta <= d ? core * core : 0.0);
  const double Ae = 0.5 * PI * square;
  const double m = std::hypot(3.17, d / delta);
  const double F = 31.855013 / (m * m * m); // 3.17^3: 1 at f = 0
  const double E0 = F * 31006.276680299816 / (128.0 * rho) * (4.0 * f * f) * d * d; // 1000 pi^3
  const double u1 = g.W * g.Ly;
  const double u2 = g.Dg * g.Lx;
  s.E1 = (u1 * u1 + 2.0 * u2 * u2) * E0;
  s.E2 = 2.0 * u2 * u2 * E0;
  s.E3 = g.Dg * g.Dg * (4.0 * g.Lx * g.Lx + g.Ly * g.Ly) * E0;
  const double t = std::sqrt(E0 / (2.0 * KILO * rho / Ae));
  const double y = 0.8 * g.re;
  s.s1 = t * (2.0 * u2 + u1) * y;
  s.s2 = (g.Ly / 2.0 + g.Lx) * g.Dg * y * t;
}

Series seriesTerms(double f, double rho, const Geometry& g) {
  Series s;
  if (rho < LOSSLESS) return s;
  const double delta = std::sqrt(rho / (f * PIMU0));
  addSkinEffect(s, f, rho, delta, g);
  addProximity(s, f, rho, delta, g);
  return s;
}

// Twice the complex distance to the image of the cable in the soil.
Complex earthLength(double f, const Geometry& g, const FourWireRecord& cable) {
  const double p = std::sqrt(RUNDATA.ground.GRHO / (f * TWOPIMU0));
  const double part = p * 0.7071067811865476 * 0.9999999999999998;
  const double inside = 2.0 * cable.FWTINS + g.G / 2.0 + g.W + cable.FWTTAPE + cable.FWTMANT;
  return 2.0 * inside + 2.0 * Complex(part, -part);
}

void fillSeries(double f, const Geometry& g, const FourWireRecord& cable) {
  const Series s = seriesTerms(f, cable.FWRHO, g);
  const Complex H = earthLength(f, g, cable);
  const Complex scale(0.0, f * (KILO * MU0)); // j w mu0 / (2 pi), ohm/km
  const Complex own = scale * std::log(H / g.re);
  const Complex adjacent = scale * std::log(H / (g.S - 2.0 * s.s2));
  const Complex diagonal = scale * std::log(H / (SQRT2 * g.S - 2.0 * s.s1));
  const double w = TWOPI * f;
  fill(FOURWIRE.FWR, own.real() + s.R0 + s.E1, adjacent.real() + (s.E1 - s.E2),
       diagonal.real() + (s.E1 - s.E3));
  fill(FOURWIRE.FWL, own.imag() / w + s.L0i, adjacent.imag() / w, diagonal.imag() / w);
}

} // namespace

void FWZY(double f, CView YMAT, CView ZMAT, CView PMAT) {
  const FourWireRecord& cable = RUNDATA.cable.fourWire;
  const FourWireStore& S = FOURWIRE;
  const double w = TWOPI * f;
  if (SOLVEDATA.first.ISTATUS) checkRecord(cable);
  RUNDATA.setConductors(FOURWIRES, FOURWIRES);
  const Geometry g = geometryOf(cable);
  fillCapacitances(g, cable);
  fillSeries(f, g, cable);
  for (int j = 1; j <= FOURWIRES; ++j) {
    for (int i = 1; i <= FOURWIRES; ++i) {
      ZMAT(i, j) = Complex(S.FWR(i, j), w * S.FWL(i, j)) / KILO;
      YMAT(i, j) = Complex(0.0, w * S.FWC(i, j) / KILO);
    }
  }
  CMATMUL(PMAT, YMAT, ZMAT, FOURWIRES);
}

} // namespace lcp
