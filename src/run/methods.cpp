#include "run/methods.h"

#include "fit/fit_driver.h"
#include "fit/mode_model.h"
#include "fit/series_fit.h"
#include "improved/fits/matrix_fits.h"
#include "improved/fits/mode_fits.h"
#include "improved/fits/propagation_fits.h"
#include "improved/modes/forward_waves.h"
#include "improved/modes/subspace_walk.h"
#include "improved/passivity/spectrum_enforcement.h"
#include "modal/first_loop.h"
#include "modal/report_modes.h"
#include "modal/second_loop.h"
#include "passivity/enforcement.h"
#include "passivity/passivity_check.h"
#include "store/rundata.h"
#include "store/solvedata.h"

namespace lcp {

namespace {

bool improvedModes() { return RUNDATA.numerics.IMPROVEDMODES; }
bool improvedFits() { return RUNDATA.numerics.IMPROVEDFITS; }
bool improvedPassivity() { return RUNDATA.numerics.IMPROVEDPASSIVITY; }

} // namespace

void runFirstLoop() {
  const bool followed = RUNDATA.model.needsModes() && !SOLVEDATA.first.IDEALT;
  improvedModes() && followed ? firstFrequencyLoopImproved() : firstFrequencyLoop();
}

void takeSecondStep(int k, LostModes& lost) {
  secondLoopStep(k);
  if (!improvedModes()) return lost.look(k);
  if (RUNDATA.model.fitted()) formSurgeImpedancesImproved(k);
}

void runReportModes() { improvedModes() ? formReportModesImproved() : formReportModes(); }

void runModeFits() { improvedFits() ? fitModesImproved() : fitModes(); }
void runAdmittanceFit() { improvedFits() ? fitAdmittanceImproved() : fitAdmittance(); }
void runPropagationFit() { improvedFits() ? fitPropagationImproved() : fitPropagation(); }
void runSeriesFit() { improvedFits() ? fitSeriesImproved() : fitSeriesImpedance(); }

void runEnforcement() { improvedPassivity() ? enforcePassivityImproved() : enforcePassivity(); }
void runPassivityCheck() { improvedPassivity() ? checkPassivityImproved() : PASSCHK(); }
bool enforcementChangesYc() { return improvedPassivity(); }
bool checksOnGrid() { return !improvedPassivity(); }

std::string_view passivityRemedy() {
  if (!RUNDATA.passivity.PITERSET)
    return "Maximum iterations for passivity asks for its mending, Improved Passivity : 1 for one "
           "at "
           "all frequencies";
  if (!improvedPassivity()) return "Improved Passivity : 1 mends it at all frequencies";
  return "fits of more poles, or a larger Maximum relative error for passivity, can mend it";
}

} // namespace lcp
