// Functions of numbers against values found in other ways.
//
// Each file tests/values/SUBJECT.txt explains how, before its first blank line; then each line
// holds
//   NAME LIMIT RE IM ARGUMENTS
// the value of the function of that name, and the allowed relative difference.
#include "base/constants.h"
#include "cable/aerial_integral.h"
#include "cable/coax_layers.h"
#include "cable/complex_root.h"
#include "cable/earth_functions.h"
#include "cable/earth_integrals.h"
#include "cable/earth_pairs.h"
#include "cable/exact_earth.h"
#include "cable/four_wire.h"
#include "kernels/bessel_k.h"
#include "kernels/exponential_integral.h"
#include "kernels/hyperbolic.h"
#include "overhead/carson_integral.h"
#include "overhead/earth_return.h"
#include "overhead/internal_impedance.h"
#include "store/rundata.h"
#include "support/overhead_lines.h"
#include "support/scratch.h"
#include <cmath>
#include <functional>
#include <map>
#include <sstream>
using namespace lcp;
using namespace lcp::test;
namespace {
using Arguments = std::vector<double>;
using Function = std::function<Complex(const Arguments&)>;
Complex z(const Arguments& a) { return {a.at(0), a.at(1)}; }
// a routine of a complex number
Function of(Complex (*f)(Complex)) {
  return [f](const Arguments& a) { return f(z(a)); };
}
void setGround(double rho, double eps, double mu) {
  RUNDATA.ground = {};
  RUNDATA.ground.GRHO = rho;
  RUNDATA.ground.GEPSR = eps;
  RUNDATA.ground.GMUR = mu;
}
// Formula, w, ground as above; then position, distance from the surface and radius of one body,
// aerial or not, and optionally the same of another one.
EarthValue earthOf(const Arguments& a) {
  setGround(a.at(2), a.at(3), a.at(4));
  const int formula = static_cast<int>(a[0]);
  const Complex m = 1.0 / GRDDEPTH(a[1]);
  const Body i{a.at(5), a.at(6), a.at(7), a.at(8) == 1};
  LastKexpone last;
  if (a.size() < 13) {
    return i.aerial ? EASELF(formula, i, m, a[1]) : EarthValue{EBSELF(formula, i, m, last), 0.0};
  }
  const Body j{a[9], a[10], a[11], a[12] == 1};
  if (i.aerial != j.aerial) return {EMIX(formula, i, j, m), 0.0};
  return i.aerial ? EAMUT(formula, i, j, m, a[1]) : EarthValue{EBMUT(formula, i, j, m, last), 0.0};
}
// X, H, w, ground.
AerialSums aerialOf(const Arguments& a) {
  setGround(a.at(3), a.at(4), 1);
  return AERIALSUM(a[0], a[1], a[2]);
}
// The earth term of overhead conductors: formula, w, rho, mu; height and position of each.
Complex overheadEarth(const Arguments& a) {
  RUNDATA = {};
  const int n = RUNDATA.cond.NCOND = RUNDATA.line.NC = a.size() > 6 ? 2 : 1;
  setGround(a.at(2), 1, a.at(3));
  for (std::size_t i = 4; i < a.size(); i += 2)
    setConductor(static_cast<int>(i / 2) - 1, a[i + 1], a[i], 0.01, 1e-4);
  solveLine(a[1] / TWOPI);
  RUNDATA.ground.EARTHF = static_cast<int>(a[0]);
  return EARTHTERM(n, 1);
}
// w, radius, resistance, permeability; wall of a tube; radius and number of strands, outer ones.
Complex conductor(const Arguments& a) {
  RUNDATA = {};
  setConductor(1, 0, 1, a.at(1), a.at(2));
  ConductorTable& C = RUNDATA.cond;
  C.CMUR[1] = a.at(3);
  C.CTUBE[1] = (C.CTHICK[1] = a.at(4)) > 0;
  C.CSTRND[1] = (C.CSTRAD[1] = a.at(5)) > 0;
  C.CNTOT[1] = a.at(6);
  C.CNOUT[1] = a.at(7);
  return ZINT(a[0], 1);
}
// An element of the series block, divided by j w mu0 / (2 pi), of a cable whose layers have
// different data: w, layers, whether the core is solid, row, column.
Complex layered(const Arguments& a) {
  static SquareStore<Complex, LDMAT> A;
  RUNDATA.resetInput();
  Cable& C = RUNDATA.cable.CB[7];
  C.CBNLAY = static_cast<int>(a.at(1));
  C.CBSOLID = a.at(2) == 1;
  C.CBRAD = {C.CBSOLID ? 0.0 : 0.006, 0.02, 0.035, 0.037, 0.042, 0.046, 0.05, 0.053, 0.058};
  C.CBRHO = {1.7e-8, 2.8e-8, 1.4e-7, 2.2e-7};
  C.CBMU = {1.0, 1.1, 1.2, 1.3, 3.0, 1.4, 2.0, 1.5};
  A = {};
  CBLAYZ(a[0], 7, 30, A);
  return A(31 + static_cast<int>(a.at(3)), 31 + static_cast<int>(a.at(4)));
}
// The four-wire cable: series impedance or shunt admittance at f of two conductors so far apart on
// the square; resistivity.
Complex fourWire(const Arguments& a, bool series) {
  RUNDATA = {};
  const double rho = a.size() > 2 ? a[2] : 1.7241e-8;
  RUNDATA.cable.fourWire = {95, 1.1e-3, 2e-4, 2e-3, rho, 2.4, 3.3, 6.0};
  const LineResult r = solveWith(FWZY, a.at(0));
  return Complex((series ? r.Z : r.Y)[3][3 - static_cast<std::size_t>(a.at(1))]);
}
Complex bessel(const Arguments& a) {
  KSeries K;
  ZBESK({a.at(1), a.at(2)}, K);
  return KRATIO(K, static_cast<int>(a[0]));
}
Complex soil(const Arguments& a) {
  RUNDATA.ground = {.GRTYPE = true, .GSIGLF = a.at(1), .GFDSIG = a.at(2), .GFDFAC = a.at(3)};
  return soilAdmittivity(a[0]);
}
// Complex frequency, resistivity, permittivity and permeability of the soil, whether it depends on
// frequency; then the geometry.
Complex exactSoil(const Arguments& a) {
  setGround(a.at(2), a.at(3), a.at(4));
  RUNDATA.ground.GRTYPE = a.at(5) == 1;
  RUNDATA.ground.GSIGLF = 1.0 / a[2];
  return {a[0], a[1]};
}
// Distances from the surface (the second below 0 for one body by itself), radius, distance.
BodyPair exactPair(const Arguments& a) {
  const Body b{0, a.at(6), a.at(8), false};
  return a[7] < 0 ? pairOf(b) : pairOf(b, {a.at(9), a[7], a[8], false});
}
using Tube = Complex (*)(double w, double q, double r, double rho, double mur);
Function ofTube(Tube f) {
  return [f](const Arguments& a) { return f(a.at(0), a.at(1), a.at(2), a.at(3), a.at(4)); };
}
const std::map<std::string, Function> FUNCTIONS = {
    {"sinh", of(CSINH)},
    {"tanh", of(CTANH)},
    {"coth", of(CCOTH)},
    {"phase", [](auto& a) { return PHASE2(a.at(0), a.at(1)); }},
    {"root", of(ROOT)},
    {"log1p", of(LOG1P)},
    {"log1ps", of(LOG1PS)},
    {"K0", of(KZERO)},
    {"Kratio", bessel},
    {"kexpint", of(KEXPINT)},
    {"kexpone", of(KEXPONE)},
    {"kexpint8", [](auto& a) { return kexpintPanels(z(a), 8).S; }},
    {"kexpone8", [](auto& a) { return kexponePanels(z(a), 8).S; }},
    {"cbmut", [](auto& a) { return CBMUT(z(a), a.at(2)); }},
    {"cbmut8", [](auto& a) { return cbmutPanels(z(a), a.at(2), 8).S; }},
    {"carson", [](auto& a) { return CARSINT(z(a), a.at(2)); }},
    {"carson10", [](auto& a) { return carsonPanels(z(a), a.at(2), 10).A; }},
    {"earth", overheadEarth},
    {"soil", soil},
    {"soilDepth", [](auto& a) { return soil(a), RUNDATA.ground.GMUR = a.at(4), GRDDEPTH(a[0]); }},
    {"depth", [](auto& a) { return setGround(a.at(1), 1, a.at(2)), GRDDEPTH(a[0]); }},
    {"cableZ", [](auto& a) { return earthOf(a).Z; }},
    {"cableP", [](auto& a) { return earthOf(a).P; }},
    {"aerialZ", [](auto& a) { return aerialOf(a).SZ; }},
    {"aerialP", [](auto& a) { return aerialOf(a).SQ; }},
    {"exactCarson", [](auto& a) { return EXACTCARSON(exactSoil(a), a.at(6), a.at(7)).value; }},
    {"exactMixed",
     [](auto& a) { return EXACTMIXED(exactSoil(a), a.at(6), a.at(7), a.at(8)).value; }},
    {"exactBuried", [](auto& a) { return EXACTBURIED(exactSoil(a), exactPair(a)).value; }},
    {"exactAerialZ", [](auto& a) { return EXACTAERIAL(exactSoil(a), exactPair(a)).Z.value; }},
    {"exactAerialP", [](auto& a) { return EXACTAERIAL(exactSoil(a), exactPair(a)).P.value; }},
    {"expE1", [](auto& a) { return EXPE1(a.at(0), a.at(1)); }},
    {"conductor", conductor},
    {"tubeOut", ofTube(tubeImpedance)},
    {"tubeIn", ofTube(tubeInnerImpedance)},
    {"tubeTransfer", ofTube(tubeTransferImpedance)},
    {"layered", layered},
    {"fourwireZ", [](auto& a) { return fourWire(a, true); }},
    {"fourwireY", [](auto& a) { return fourWire(a, false); }},
};
} // namespace
TEST(Values, AreThoseFoundInOtherWays) {
  for (const auto& file : std::filesystem::directory_iterator(CORVO_TEST_DATA "/values")) {
    std::istringstream in(contentOf(file.path()).substr(contentOf(file.path()).find("\n\n") + 2));
    for (std::string row; std::getline(in, row);) {
      std::istringstream words(row);
      std::string name;
      double limit = 0, re = 0, im = 0;
      words >> name >> limit >> re >> im;
      const Complex wanted(re, im),
          is = FUNCTIONS.at(name)({std::istream_iterator<double>(words), {}});
      EXPECT_LE(std::abs(is - wanted), limit * std::abs(wanted)) << row << ": " << is;
    }
  }
}
