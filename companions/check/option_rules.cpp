#include "companions/check/option_rules.h"

#include "companions/check/traced.h"
#include "companions/shared/wires.h"
#include "passivity/passivity_grid.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double CLOSEDFORMLIMIT = 1e4; // Hz: closed form between buried cables
constexpr double AERIALLEAST = 0.01;    // Hz: formula 2 for aerial bodies
constexpr double DCFREQUENCY = 1e-6;    // Hz, at which the DC correction evaluates the line
constexpr int STEPSBELOW = 5;           // grid points below the fit range

// Line of a key, or else heading of the model section.
int optionLine(const void* target) {
  const int line = lineOf(target);
  if (line != 0) return line;
  return std::max(headingLine("Frequency Dep."), headingLine("MFDTD Model Options"));
}

void weights(Findings& findings) {
  const FitOptions& F = RUNDATA.fit;
  struct Weight {
    const double& value;
    std::string_view key, where;
  };
  for (const Weight& w : {Weight{F.WF1, "Weighting Factor 1", "below"},
                          Weight{F.WF2, "Weighting Factor 2", "just below or at"},
                          Weight{F.WF3, "Weighting Factor 3", "above"}}) {
    if (w.value == 0) add(findings, optionLine(&w.value), Kind::ZeroWeight, w.key, w.where);
  }
}

void fitRange(Findings& findings) {
  const FitOptions& F = RUNDATA.fit;
  if (F.FEND < F.FSTART) {
    add(findings, optionLine(&F.FEND), Kind::FallingGrid, fmt::format("{:.4g}", F.FEND),
        fmt::format("{:.4g}", F.FSTART));
  }
}

// --- DC correction

void dcOfWires(Findings& findings, int line) {
  const ConductorTable& C = RUNDATA.cond;
  for (int i = 1; i <= C.NCOND; ++i) {
    const int role = roleOfWire(i);
    if ((role == MAPMAIN || role == MAPKEPT) && C.CSHUNT[i] <= 0)
      return add(findings, line, Kind::DcConductance, nameOfWire(i));
  }
}

void dcOfCables(Findings& findings, int line) {
  const CableTable& T = RUNDATA.cable;
  if (RUNDATA.run.ISCABLE == FOURWIRECABLE)
    return add(findings, line, Kind::DcConductance, "a four-wire cable");
  for (int n = 1; n <= T.NCABLE - T.overhead && RUNDATA.fit.DIELM == 1; ++n) {
    for (int k = 1; k <= T.CB[n].CBNLAY / 2; ++k) {
      if (T.CB[n].CBTAND[static_cast<std::size_t>(k - 1)] > 0) continue;
      return add(
          findings, line, Kind::DcConductance,
          fmt::format("insulator {} of cable {}, whose loss tangent or its frequency is 0", k, n));
    }
  }
}

void dcCorrection(Findings& findings) {
  const int line = optionLine(&RUNDATA.fit.DCCORR);
  if (RUNDATA.run.DATAFMT != ROUTECONSTANTS || RUNDATA.fit.DCCORR < 1) return;
  dcOfWires(findings, line);
  if (RUNDATA.run.ISCABLE != OVERHEADLINE) dcOfCables(findings, line);
}

// --- passivity

void passivityGrid(Findings& findings) {
  const PassivityOptions& P = RUNDATA.passivity;
  const bool known = P.PFDIST >= GRIDLOGARITHMIC && P.PFDIST <= GRIDDECADES;
  const int least = P.PFDIST == GRIDDECADES ? 0 : 1; // there is at least one point per decade
  if (!known) {
    add(findings, optionLine(&P.PFDIST), Kind::NoPassivityGrid,
        "Frequency distribution for passivity check", std::to_string(P.PFDIST));
  } else if (P.NPFINC < least) {
    add(findings, optionLine(&P.NPFINC), Kind::NoPassivityGrid,
        "Frequency increments for passivity check", std::to_string(P.NPFINC));
  }
}

void passivity(Findings& findings) {
  const PassivityOptions& P = RUNDATA.passivity;
  if (P.PFLOSET || P.PITERSET) passivityGrid(findings);
  if (!P.PITERSET) return;
  if (P.PMAXERR <= 0) add(findings, optionLine(&P.PMAXERR), Kind::ZeroPassivityError);
  if (P.PEIGTOL <= 0) add(findings, optionLine(&P.PEIGTOL), Kind::ZeroTolerance);
}

// --- formulas

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

void formulas(Findings& findings) {
  const Ground& G = RUNDATA.ground;
  illegalFormulas(findings);
  if (RUNDATA.run.ISCABLE == OVERHEADLINE) return;
  const double high = highestFrequency(), low = lowestFrequency();
  if (G.EARTHFU == EARTHCLOSED && bodies(false) > 1 && high > CLOSEDFORMLIMIT)
    add(findings, formulaLine(&G.EARTHFU), Kind::BuriedClosedForm, fmt::format("{:.6g}", high));
  if (G.EARTHF == EARTHINTEGRAL && bodies(true) > 0 && low < AERIALLEAST)
    add(findings, lineOf(&G.EARTHF), Kind::AerialLowFrequency, fmt::format("{:.2g}", low));
}

} // namespace

void optionRules(Findings& findings) {
  const ModelChoice& M = RUNDATA.model;
  if (M.MODEL == ModelKind::None || M.MODEL == ModelKind::Halo) add(findings, 0, Kind::NoModel);
  if (M.fitted()) weights(findings);
  if (M.fitted() && RUNDATA.run.DATAFMT == ROUTECONSTANTS) fitRange(findings);
  if (M.fitsPhases()) dcCorrection(findings);
  if (M.fitsPhases()) passivity(findings);
  if (RUNDATA.run.ISCABLE != FOURWIRECABLE && RUNDATA.run.DATAFMT == ROUTECONSTANTS)
    formulas(findings);
}

} // namespace lcp::companions
