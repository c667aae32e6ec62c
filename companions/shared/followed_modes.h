// Follows the modes of the line over frequency.
#pragma once

#include "companions/shared/direct_line.h"
#include "companions/shared/model_file.h"

#include <vector>

namespace lcp::companions {

// Reorders modes so that column j is the one with the largest share in column j of the reference.
LineModes inOrderOf(const LineModes& modes, const Matrix& reference);

// Modes at a point of the line, in the order and basis of the reference.
LineModes modesLike(const LinePoint& point, const Matrix& reference);

// Transformation of a mode model at a frequency, conductor by mode: fitted or constant.
Matrix writtenTransformation(const ModelFile& file, double f);

// Modes at points of ascending frequency, each in the order of its neighbour, starting from the
// point nearest to frequency `from`, Hz, which takes the order of the reference.
std::vector<LineModes> followed(const std::vector<LinePoint>& line, const Matrix& reference,
                                double from);

// Row of the largest element of each vector.
std::vector<std::size_t> largestRows(const Matrix& TI);

// Rotates each vector so that its element in the given row, the same at all frequencies, is real
// and positive, as the program does, and updates the surge impedances.
void holdRows(std::vector<LineModes>& modes, const std::vector<std::size_t>& rows);

} // namespace lcp::companions
