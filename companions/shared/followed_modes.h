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

// The transformation of a mode model at a frequency, conductor by mode: fitted, or constant.
Matrix writtenTransformation(const ModelFile& file, double f);

// Modes at points of rising frequency, each in the order of the one before, beginning at the point
// nearest to a frequency, Hz, which takes the order of the reference.
std::vector<LineModes> followed(const std::vector<LinePoint>& line, const Matrix& reference,
                                double from);

// The row of the largest element of each vector.
std::vector<std::size_t> largestRows(const Matrix& TI);

// Each vector is turned so that its element in that row is real and positive, at all frequencies
// the same row, as the program turns them; surge impedances follow.
void holdRows(std::vector<LineModes>& modes, const std::vector<std::size_t>& rows);

} // namespace lcp::companions
