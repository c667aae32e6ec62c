// The error of a formula is measured against the exact integrals, for pairs of the description at
// five frequencies of its range.
#include "companions/check/earth_rules.h"

#include "base/constants.h"
#include "cable/earth_pairs.h"
#include "cable/exact_earth.h"
#include "companions/check/traced.h"
#include "companions/shared/wires.h"
#include "overhead/earth_return.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <vector>

namespace lcp::companions {

namespace {

constexpr double CLOSEDFORMLIMIT = 1e4; // Hz: closed form between buried cables
constexpr double AERIALLEAST = 0.01;    // Hz: formula 2 for aerial bodies
constexpr double DCFREQUENCY = 1e-6;    // Hz, at which the DC correction evaluates the line
constexpr int STEPSBELOW = 5;           // grid points below the fit range

// --- formulas of the description

// First frequency of the fit grid, which starts below the fit range.
double gridBegin() {
  const FitOptions& F = RUNDATA.fit;
  return F.FSTART * std::pow(F.FEND / F.FSTART, -STEPSBELOW / double(F.NFINC));
}

double highestFrequency() {
  const double fixed = std::max(RUNDATA.bergeron.FLOSS, RUNDATA.line.SSFREQ);
  if (RUNDATA.model.atTwoFrequencies()) return fixed;
  return RUNDATA.model.fitted() ? std::max(gridBegin(), RUNDATA.fit.FEND) : RUNDATA.line.SSFREQ;
}

double lowestFrequency() {
  const FitOptions& F = RUNDATA.fit;
  if (!RUNDATA.model.fitted()) return RUNDATA.line.SSFREQ;
  const double grid = std::min(gridBegin(), F.FEND);
  return RUNDATA.model.fitsPhases() && F.DCCORR > 0 ? std::min(grid, DCFREQUENCY) : grid;
}

// Number of cables and pipes side by side, aerial or buried.
int bodies(bool aerial) {
  const CableTable& T = RUNDATA.cable;
  int n = T.PIPEF && T.pipe.PIPEOVHD == aerial ? 1 : 0;
  for (int i = 1; i <= T.NCABLE; ++i) n += T.CB[i].CBPIPE == 0 && T.CB[i].CBOVHD == aerial ? 1 : 0;
  return n;
}

int formulaLine(const int* own) { return std::max(lineOf(own), lineOf(&RUNDATA.ground.EARTHF)); }

// Whether any body with an earth return is aerial, or buried.
bool anyBody(bool aerial) {
  const CableTable& T = RUNDATA.cable;
  if (RUNDATA.run.ISCABLE == OVERHEADLINE) return aerial;
  for (int i = 1; i <= T.NCABLE; ++i) {
    if (T.CB[i].CBOVHD == aerial) return true;
  }
  return T.PIPEF && T.pipe.PIPEOVHD == aerial;
}

void illegalFormulas(Findings& findings) {
  const Ground& G = RUNDATA.ground;
  const bool air = anyBody(true), earth = anyBody(false);
  const struct {
    bool needed;
    const int& formula;
    bool series;
    std::string_view key, bodies;
  } choices[] = {
      {air, G.EARTHF, false, "EarthImpedanceFormula", "aerial conductors"},
      {earth, G.EARTHFU, true, "EarthUImpedanceFormula", "buried cables"},
      {air && earth, G.EARTHFM, false, "EarthMImpedanceFormula", "an aerial and a buried cable"},
  };
  for (const auto& c : choices) {
    const bool known = c.formula == EARTHCLOSED || c.formula == EARTHINTEGRAL ||
                       (c.series && c.formula == EARTHSERIES);
    if (c.needed && !known) {
      add(findings, formulaLine(&c.formula), Kind::EarthFormula, c.key, std::to_string(c.formula),
          c.bodies);
    }
  }
}

void fixedLimits(Findings& findings) {
  const Ground& G = RUNDATA.ground;
  if (RUNDATA.run.ISCABLE == OVERHEADLINE) return;
  const double high = highestFrequency(), low = lowestFrequency();
  if (G.EARTHFU == EARTHCLOSED && bodies(false) > 1 && high > CLOSEDFORMLIMIT)
    add(findings, formulaLine(&G.EARTHFU), Kind::BuriedClosedForm, fmt::format("{:.6g}", high));
  if (G.EARTHF == EARTHINTEGRAL && bodies(true) > 0 && low < AERIALLEAST)
    add(findings, lineOf(&G.EARTHF), Kind::AerialLowFrequency, fmt::format("{:.2g}", low));
}

// --- errors

constexpr double LARGEERROR = 0.03;   // relative, of an element of the series impedance
constexpr double SMALLELEMENT = 1e-2; // relative to the largest one; smaller ones do not count
constexpr int FREQUENCIES = 5;
constexpr int MOSTBODIES = 30; // further ones are left out

struct Named {
  Body body;
  std::string name;
};

bool isWhole(const Body& b) { return b.y > 0.0 && b.r > 0.0; }

std::vector<Named> wires() {
  const ConductorTable& C = RUNDATA.cond;
  std::vector<Named> all;
  for (int i = 1; i <= std::min(C.NCOND, MOSTBODIES); ++i)
    all.push_back({{C.CX[i], C.CYAVG[i], C.CRAD[i], true}, nameOfWire(i)});
  return all;
}

std::vector<Named> cableBodies() {
  const CableTable& T = RUNDATA.cable;
  std::vector<Named> all;
  for (int i = 1; i <= std::min(T.NCABLE, MOSTBODIES); ++i)
    if (T.CB[i].CBPIPE == 0) all.push_back({cableBody(i), cableName(i)});
  if (T.PIPEF) all.push_back({pipeBody(), "the pipe"});
  return all;
}

Complex exactElement(double w, const Body& i, const Body& j, bool self) {
  const Complex p(0.0, w);
  const BodyPair g = self ? pairOf(i) : pairOf(i, j);
  if (i.aerial != j.aerial)
    return (i.aerial ? EXACTMIXED(p, i.y, j.y, g.x) : EXACTMIXED(p, j.y, i.y, g.x)).value;
  if (!i.aerial) return EXACTBURIED(p, g).value;
  if (RUNDATA.run.ISCABLE != OVERHEADLINE) return EXACTAERIAL(p, g).Z.value;
  const double x = self ? 0.0 : g.x;
  return std::log(std::hypot(x, g.H) / g.d) + EXACTCARSON(p, g.H, x).value;
}

// The element by the formula chosen. Overhead conductors have the closed form of aerial cables.
Complex element(double w, const Body& i, const Body& j, bool self) {
  const Ground& G = RUNDATA.ground;
  const Complex m = 1.0 / GRDDEPTH(w);
  LastKexpone last;
  if (i.aerial != j.aerial) return EMIX(G.EARTHFM, i, j, m);
  if (i.aerial) return (self ? EASELF(G.EARTHF, i, m, w) : EAMUT(G.EARTHF, i, j, m, w)).Z;
  return self ? EBSELF(G.EARTHFU, i, m, last) : EBMUT(G.EARTHFU, i, j, m, last);
}

struct Choice {
  const int& formula;
  bool series; // formula 3 exists
  std::string_view words;
};

// Which choice a pair falls under; -1 if the formula does not exist or integrates well enough.
int choiceOf(const Choice (&choices)[3], const Body& i, const Body& j) {
  const int n = i.aerial != j.aerial ? 2 : i.aerial ? 0 : 1;
  const int formula = choices[n].formula;
  const bool panels = n == 1 || (n == 0 && RUNDATA.run.ISCABLE == OVERHEADLINE);
  if (formula == EARTHCLOSED || (formula == EARTHINTEGRAL && !panels)) return n;
  return formula == EARTHSERIES && choices[n].series ? n : -1;
}

struct Worst {
  double off = 0.0, f = 0.0;
  std::string pair;
};

void measure(const std::vector<Named>& all, const Choice (&choices)[3], double f,
             Worst (&worst)[3]) {
  const double w = TWOPI * f;
  double largest = 0.0;
  for (const Named& b : all)
    largest = std::max(largest, std::abs(exactElement(w, b.body, b.body, true)));
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      const int n = choiceOf(choices, all[i].body, all[j].body);
      if (n < 0) continue;
      const Complex exact = exactElement(w, all[i].body, all[j].body, i == j);
      if (std::abs(exact) < SMALLELEMENT * largest) continue;
      const Complex is = element(w, all[i].body, all[j].body, i == j);
      const double off = std::abs(is - exact) / std::abs(exact);
      if (off <= worst[n].off) continue;
      worst[n] = {off, f, i == j ? all[i].name : all[j].name + " and " + all[i].name};
    }
  }
}

void errors(Findings& findings) {
  const Ground& G = RUNDATA.ground;
  const Choice choices[3] = {{G.EARTHF, false, "aerial conductors"},
                             {G.EARTHFU, true, "buried cables"},
                             {G.EARTHFM, false, "aerial over buried cables"}};
  std::vector<Named> all = RUNDATA.run.ISCABLE == OVERHEADLINE ? wires() : cableBodies();
  std::erase_if(all, [](const Named& b) { return !isWhole(b.body); });
  const double low = lowestFrequency(), high = highestFrequency();
  if (!(low > 0.0 && high >= low && G.GRHO > 0.0)) return;
  Worst worst[3];
  for (int k = 0; k < FREQUENCIES; ++k)
    measure(all, choices, low * std::pow(high / low, k / (FREQUENCIES - 1.0)), worst);
  for (int n = 0; n < 3; ++n) {
    const Worst& at = worst[n];
    if (at.off < LARGEERROR) continue;
    add(findings, formulaLine(&choices[n].formula), Kind::EarthError,
        fmt::format("{} of {}", choices[n].formula, choices[n].words),
        fmt::format("{:.2g} %", INPERCENT * at.off), fmt::format("{:.3g} Hz, {}", at.f, at.pair));
  }
}

} // namespace

void earthRules(Findings& findings) {
  if (RUNDATA.run.ISCABLE == FOURWIRECABLE || RUNDATA.run.DATAFMT != ROUTECONSTANTS) return;
  if (RUNDATA.numerics.IMPROVEDEARTH) return;
  illegalFormulas(findings);
  fixedLimits(findings);
  errors(findings);
}

} // namespace lcp::companions
