#include "input/post_read.h"

#include "base/console.h"
#include "base/stop.h"
#include "input/cable_checks.h"
#include "input/cable_data.h"
#include "input/cable_hints.h"
#include "input/conductor_order.h"
#include "input/rule_frame.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double SAMEPLACE = 1e-10;   // m
constexpr double LEASTLENGTH = 1e-10; // m
constexpr double EVENWEIGHT = 1.0;

// A weight that was not given is 1 for the improved fits and 0 for the default ones.
void takeEvenWeights() {
  FitOptions& F = RUNDATA.fit;
  if (!RUNDATA.numerics.IMPROVEDFITS) return;
  if (!F.WF1SET) F.WF1 = EVENWEIGHT;
  if (!F.WF2SET) F.WF2 = EVENWEIGHT;
  if (!F.WF3SET) F.WF3 = EVENWEIGHT;
}

void checkLength() {
  if (RUNDATA.run.LINELEN >= LEASTLENGTH) return;
  openRules();
  console::line("Line length is very small. Ensure correct line length");
  stopWithRules();
}

[[noreturn]] void samePosition(int i, int j) {
  openRules();
  console::print("Conductors {} and {} have identical positions.", i, j);
  console::line("If you are using multiple tower components, ensure");
  console::line("the x-coordinate of each tower centre in the right-");
  console::line("of-way is properly entered.");
  stopWithRules();
}

// The travelling waves of a Bergeron model need a single Y and Z, not a table over frequency.
void checkMultipleRoute() {
  if (!RUNDATA.model.atTwoFrequencies() || RUNDATA.run.DATAFMT != ROUTEMULTIPLE) return;
  console::rule('*', 45);
  console::line("Corvo.exe: ERROR");
  console::print("Line Name: {}", RUNDATA.line.LNAME.text());
  console::line("Manual entry of multiple Y and Z data is");
  console::line("supported only when using the Frequency-");
  console::line("Dependent models.");
  console::rule('*', 45);
  stop(1);
}

void checkGeometry() {
  if (RUNDATA.run.ISCABLE == OVERHEADLINE) {
    checkConductorPositions();
  } else {
    checkCables();
    checkPipes();
    noteCableHints();
  }
}

void checkAndOrder() {
  const RunControl& R = RUNDATA.run;
  if (R.ISCABLE == CABLESYSTEM) deriveCableData();
  if (R.DATAFMT == ROUTECONSTANTS) checkGeometry();
  if (RUNDATA.model.MODHALO) return;
  orderConductors();
  if (R.ISCABLE == OVERHEADLINE) orderNodes();
}

// Turns overhead conductors in a cable system into aerial cables.
void takeOverheadConductors() {
  const RunControl& R = RUNDATA.run;
  if (R.DATAFMT != ROUTECONSTANTS || R.ISCABLE != CABLESYSTEM || RUNDATA.cond.NCOND == 0) return;
  RUNDATA.cable.MIXEDOH = true;
  if (RUNDATA.cable.NCABLE == 0) {
    console::print("{}: If there are only overhead lines,it is ", console::WARNINGMARK);
    console::line("better to model using overhead line model ");
  }
  checkConductorPositions();
  orderNodes();
  convertOverheadConductors();
}

} // namespace

void checkConductorPositions() {
  const ConductorTable& C = RUNDATA.cond;
  for (int i = 2; i <= C.NCOND; ++i) {
    for (int j = 1; j <= i - 1; ++j) {
      const double apart = std::fabs(C.CX[i] - C.CX[j]) + std::fabs(C.CY[i] - C.CY[j]);
      if (apart <= SAMEPLACE) samePosition(i, j);
    }
  }
}

void postReadPass() {
  checkLength();
  if (RUNDATA.run.DATAFMT == ROUTEMANUAL || RUNDATA.run.fromTable()) {
    checkMultipleRoute();
  } else {
    checkAndOrder();
  }
  if (RUNDATA.bergeron.HFAPPROX == 0) RUNDATA.bergeron.FLOSS = RUNDATA.line.SSFREQ;
  takeEvenWeights();
  takeOverheadConductors();
}

} // namespace lcp
