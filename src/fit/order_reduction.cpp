#include "fit/order_reduction.h"

#include "fit/dc_values.h"
#include "fit/propagation_tables.h"

namespace lcp {

void PRUNEPOLE(double RATIOMAX, bool& DONE) {
  GroupInts KILL;
  const double Q = POLERATIO(KILL);
  DONE = true;
  if (Q <= RATIOMAX) return;
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    if (KILL[g] == 0) continue;
    REMOVEPOLE(g, KILL[g]);
    DONE = false; // so a negative limit ends too, when no real pole is left
  }
}

PhaseFit REDUCEORDER(double RATIOMAX) {
  printReductionHeading();
  HPHASEFIT(DCNONE, nullptr, true);
  PhaseFit fit{};
  for (bool DONE = false; !DONE;) {
    fit = HPHASEFIT(DCNONE, nullptr, false);
    PRUNEPOLE(RATIOMAX, DONE);
  }
  printReducedGroups();
  printPhaseFit(fit);
  return fit;
}

} // namespace lcp
