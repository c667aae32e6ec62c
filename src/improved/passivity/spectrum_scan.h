// Scans the whole spectrum of the nodal admittance of both ends over all frequencies.
//
// It finds where the model in the enforcement store generates power.
#pragma once

#include "improved/passivity/wave_power.h"

#include <vector>

namespace lcp {

// A frequency at which the model has been looked at.
struct SpectrumPoint {
  double f; // Hz
  bool negative[HALVES];
};

// A point where a half is negative.
struct NegativePoint {
  double f; // Hz
  Half half;
  double depth; // smallest eigenvalue of its test matrix, over the size of Yc; below 0
};

struct Spectrum {
  std::vector<SpectrumPoint> points;   // rising, from 0 Hz
  std::vector<NegativePoint> negative; // those of a half rising
  bool resolved = true;                // false when points ran out before all was decided
};

struct SpectrumRange {
  double low, high; // Hz
};

// Range of a scan besides zero frequency: from two decades below the fitted band to two decades
// above it, extended to the range of the passivity options if that is wider.
[[nodiscard]] SpectrumRange spectrumRange();

// Looks at zero and at a grid that follows the travelling waves. A full scan halves every stretch
// until what lies between its points is decided; a rough one takes some points in each period and
// closes in on what it finds negative.
enum class Scan { Rough, Full };
[[nodiscard]] Spectrum scanSpectrum(SpectrumRange range, Scan how);

// The minima among the negative points, and points between them where a stretch is wide.
[[nodiscard]] std::vector<NegativePoint> negativeMinima(const Spectrum& spectrum);

// The smallest eigenvalue of the Hermitian parts of both halves at f, S; minus infinity where the
// model has no finite admittance.
[[nodiscard]] double smallestEigenvalueAt(double f);

// A range of points with a negative eigenvalue in either half.
struct NegativeBand {
  double from, to; // first and last such point, Hz
  double worst;    // smallest eigenvalue, S
};

[[nodiscard]] std::vector<NegativeBand> negativeBands(const Spectrum& spectrum); // ascending

} // namespace lcp
