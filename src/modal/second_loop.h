// Second frequency loop: modal and phase-domain functions at every step of the grid.
#pragma once

namespace lcp {

// Rotates each stored vector so that the element in the row of its largest element at the last full
// solution is real and positive. Does nothing for an ideally transposed line or for MFDTD.
void alignVectors();

// Fills the second loop's store at step k from YSTORE, ZSTORE, MEIG and MTI. MEIG becomes the
// squared propagation constant in 1/m^2; TI and TIINV become those of the step, with unit columns.
void secondLoopStep(int k);

// Sets NFUSE and the fit weights: WF1 below the steady-state frequency, WF2 at the step at or just
// below it, WF3 above.
void formFitWeights();

} // namespace lcp
