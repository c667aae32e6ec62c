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

} // namespace

void optionRules(Findings& findings) {
  const ModelChoice& M = RUNDATA.model;
  if (M.MODEL == ModelKind::None || M.MODEL == ModelKind::Halo) add(findings, 0, Kind::NoModel);
  if (M.fitted()) weights(findings);
  if (M.fitted() && RUNDATA.run.DATAFMT == ROUTECONSTANTS) fitRange(findings);
  if (M.fitsPhases()) dcCorrection(findings);
  if (M.fitsPhases()) passivity(findings);
}

} // namespace lcp::companions
