// Scans the smallest eigenvalue of the nodal admittance of a phase model over frequency.
#pragma once

#include "companions/shared/adaptive_scan.h"
#include "companions/shared/model_file.h"

#include <vector>

namespace lcp::companions {

// Halves of the nodal admittance, for ends driven in phase and in opposition.
struct NodalHalves {
  Matrix alike, against;
};
NodalHalves nodalHalves(const Matrix& Yc, const Matrix& H);

// Smallest eigenvalue of the Hermitian parts of some matrices, and the largest in magnitude as its
// scale.
ScanPoint extremes(double f, const std::vector<Matrix>& matrices);

// These for the nodal admittance of both ends, S, over the band of the fit and two decades beyond
// it on both sides.
Scan nodalScan(const ModelFile& file);

// The value below which an eigenvalue counts as negative: rounding errors of the largest one.
double negativeBelow(const ScanPoint& p);

} // namespace lcp::companions
