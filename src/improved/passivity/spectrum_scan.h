// Scans the whole spectrum of the nodal admittance of both ends over all frequencies.
//
// It finds where the model in the enforcement store generates power.
#pragma once

#include "passivity/enforcement_store.h"

#include <vector>

namespace lcp {

// The halves into which equal ends split the nodal admittance, see passivity/nodal_admittance.
enum Half { AGAINST, ALIKE, HALVES };

// The spectrum at one frequency: smallest eigenvalue of each half and largest magnitude of all, S;
// minus infinity if the model has no finite admittance.
struct SpectrumPoint {
  double f; // Hz
  double smallest[HALVES];
  double size;
};

struct Spectrum {
  std::vector<SpectrumPoint> points; // ascending, from 0 Hz
  bool resolved = true; // false if the points ran out before every minimum was resolved
};

struct SpectrumRange {
  double low, high; // Hz
};

// Range of a scan besides zero frequency: from two decades below the fitted band to two decades
// above it, extended to the range of the passivity options if that is wider.
[[nodiscard]] SpectrumRange spectrumRange();

// Hermitian parts of the halves at f, from the residues RES of H and the Yc of the store.
[[nodiscard]] SpectrumPoint spectrumAt(const ResidueList& RES, double f);

// Samples zero frequency and a grid that follows the travelling waves, and bisects every interval
// that could hide a negative eigenvalue until it is resolved. A rough scan uses at most a tenth of
// the points of a full one.
enum class Scan { Rough, Full };
[[nodiscard]] Spectrum scanSpectrum(const ResidueList& RES, SpectrumRange range, Scan how);

// Whether an eigenvalue of this half is negative by more than the rounding of its matrix.
[[nodiscard]] bool isNegative(const SpectrumPoint& p, Half half);

// A point at which a half is negative.
struct NegativePoint {
  double f; // Hz
  Half half;
  double value; // S
  double size;  // largest magnitude of an eigenvalue at that frequency, S
};

// The minima among the negative points, and points between them where a negative interval is wide.
[[nodiscard]] std::vector<NegativePoint> negativePoints(const Spectrum& spectrum);

// A range of points with a negative eigenvalue in either half.
struct NegativeBand {
  double from, to; // first and last such point, Hz
  double worst;    // smallest eigenvalue, S
};

[[nodiscard]] std::vector<NegativeBand> negativeBands(const Spectrum& spectrum); // ascending

} // namespace lcp
