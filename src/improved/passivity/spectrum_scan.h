// The whole spectrum of the nodal admittance of both ends over all frequencies: where the model in
// the enforcement store gives power.
#pragma once

#include "passivity/enforcement_store.h"

#include <vector>

namespace lcp {

// The halves into which equal ends split the nodal admittance, see passivity/nodal_admittance.
enum Half { AGAINST, ALIKE, HALVES };

// The spectrum at one frequency: smallest eigenvalue of each half and the largest magnitude of all,
// S; minus infinity where the model has no finite admittance.
struct SpectrumPoint {
  double f; // Hz
  double smallest[HALVES];
  double size;
};

struct Spectrum {
  std::vector<SpectrumPoint> points; // rising, from 0 Hz
  bool resolved = true;              // false when points ran out before every minimum was resolved
};

struct SpectrumRange {
  double low, high; // Hz
};

// What a scan has to cover: from zero, the points of a logarithmic grid from two decades below the
// fitted band on, to two decades above it, and the range of the passivity options where it is
// wider.
[[nodiscard]] SpectrumRange spectrumRange();

// Hermitian parts of the halves at f, from the residues RES of H and the Yc of the store.
[[nodiscard]] SpectrumPoint spectrumAt(const ResidueList& RES, double f);

// Samples zero and a grid that follows the travelling waves, and bisects every stretch that could
// hide a negative eigenvalue until what lies between its points is resolved.
// A rough scan may take a tenth of the points of a full one.
enum class Scan { Rough, Full };
[[nodiscard]] Spectrum scanSpectrum(const ResidueList& RES, SpectrumRange range, Scan how);

// Whether an eigenvalue of this half is negative beyond the rounding of its matrix.
[[nodiscard]] bool isNegative(const SpectrumPoint& p, Half half);

// A point where a half is negative.
struct NegativePoint {
  double f; // Hz
  Half half;
  double value; // S
  double size;  // largest magnitude of an eigenvalue there, S
};

// The minima among them, and points between them where a negative stretch is wide.
[[nodiscard]] std::vector<NegativePoint> negativePoints(const Spectrum& spectrum);

// A stretch of points with a negative eigenvalue of either half.
struct NegativeBand {
  double from, to; // first and last such point, Hz
  double worst;    // smallest eigenvalue, S
};

[[nodiscard]] std::vector<NegativeBand> negativeBands(const Spectrum& spectrum);

} // namespace lcp
