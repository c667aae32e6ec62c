// Rational fits of symmetric matrices of the phases that grow until the error is small enough.
#pragma once

#include "fit/matrix_fit.h"

namespace lcp {

using MatrixSamples = CurveMatrix<Complex, MAXFREQ>;

// The fewest poles, up to limit, that meet TARGET at the points and between them, or the best of
// all numbers tried. The lower elements stand for both. Leaves P, R, D, E and FIT of Q.
MatrixFitResult GROWMATRIX(const MatrixFit& Q, const MatrixSamples& between, int limit,
                           double TARGET);

// Largest deviation over the largest magnitude of a model of N poles, at the points and between
// them; forms FIT.
double wholeError(const MatrixFit& Q, const MatrixSamples& between, int N);

// The elements below the diagonal stand for both, as in the file.
void mirrorLower(const MatrixFit& Q, int N);

} // namespace lcp
