// Modes over frequency, each in the order of the ones before.
#pragma once

#include "companions/shared/direct_line.h"
#include "companions/shared/model_file.h"

#include <vector>

namespace lcp::companions {

// Column j of the modes is that of the reference with which it shares most; in its order.
LineModes inOrderOf(const LineModes& modes, const Matrix& reference);

// The modes at a point of the line, in order and basis of the reference.
LineModes modesLike(const LinePoint& point, const Matrix& reference);

// The transformation that the mode model was written with, at its frequency: conductor by mode.
Matrix writtenTransformation(const ModelFile& file);

// Modes at points of rising frequency, each in the order of the one before, beginning at the point
// nearest to a frequency, Hz, which takes the order of the reference.
std::vector<LineModes> followed(const std::vector<LinePoint>& line, const Matrix& reference,
                                double from);

} // namespace lcp::companions
