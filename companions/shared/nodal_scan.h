// The smallest eigenvalue of a phase model between its two ends, over frequency.
#pragma once

#include "companions/shared/adaptive_scan.h"
#include "companions/shared/model_file.h"

#include <vector>

namespace lcp::companions {

// The halves of the nodal admittance of both ends, for ends driven alike and against each other.
struct NodalHalves {
  Matrix alike, against;
};
NodalHalves nodalHalves(const Matrix& Yc, const Matrix& H);

// Smallest eigenvalue, and by magnitude the largest, of the Hermitian parts of some matrices.
ScanPoint extremes(double f, const std::vector<Matrix>& matrices);

// Those of the nodal admittance of both ends, S, over the band of the fit and two decades beyond it
// on both sides.
Scan nodalScan(const ModelFile& file);

// Where a value counts as negative: below the rounding of the largest.
double negativeBelow(const ScanPoint& p);

} // namespace lcp::companions
