#include "cable/layer_checks.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "store/rundata.h"

#include <cstddef>

namespace lcp {

namespace {

// Layers from the core outwards: conductors at even places, insulators at odd ones.
bool hasMaterials(const Cable& C) {
  for (std::size_t k = 0; k < static_cast<std::size_t>(C.CBNLAY); ++k) {
    const double own = k % 2 == 0 ? C.CBRHO[k / 2] : C.CBEPS[k / 2];
    if (!(C.CBMU[k] > 0.0 && own > 0.0)) return false;
  }
  return true;
}

bool pipeHasMaterials(const PipeRecord& P, bool filled) {
  const bool wall = P.PIPERHO > 0.0 && P.PIPEMU > 0.0;
  const bool inside = !filled || (P.PIPEEPSI > 0.0 && P.PIPEMUI > 0.0);
  const bool outside = P.PIPEOUTL != 1 || (P.PIPEEPSO > 0.0 && P.PIPEMUO > 0.0);
  return wall && inside && outside;
}

bool pipeRadiiGrow(const PipeRecord& P) {
  return P.PIPERI > 0.0 && P.PIPERC > P.PIPERI && (P.PIPEOUTL != 1 || P.PIPERO > P.PIPERC);
}

bool pipeIsFilled() {
  for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) {
    if (RUNDATA.cable.CB[c].CBPIPE != 0) return true;
  }
  return false;
}

void checkPipe() {
  const PipeRecord& P = RUNDATA.cable.pipe;
  if (pipeHasMaterials(P, pipeIsFilled()) && pipeRadiiGrow(P)) return;
  console::openStars();
  console::line("Pipe 1: Radii Must Grow Outwards, and the Resistivity,");
  console::line("Relative Permeabilities and Permittivities Must be > 0!");
  stopInStars();
}

} // namespace

void checkLayers() {
  const CableTable& T = RUNDATA.cable;
  for (int c = 1; c <= T.NCABLE; ++c) {
    if (hasMaterials(T.CB[c])) continue;
    console::openStars();
    console::print("Cable {}: Resistivities, Relative Permeabilities and", c);
    console::line("Permittivities of its Layers Must be > 0!");
    stopInStars();
  }
  if (T.NPIPE > 0) checkPipe();
}

} // namespace lcp
