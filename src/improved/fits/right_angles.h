// Columns of real numbers brought to right angles, one after the other.
#pragma once

#include "base/big_store.h"
#include "base/matrix.h"

namespace lcp {

// Columns of complex samples as pairs of reals, side by side; what is beyond the samples is 0.
struct SampleColumns {
  MappedArray<double> numbers;
  int ld;

  // Room for so many columns of NS samples. What stood there is lost.
  void lay(int NS, int columns);
  double* column(int c) { return numbers.numbers + static_cast<std::ptrdiff_t>(c - 1) * ld; }
  Complex* samples(int c) { return reinterpret_cast<Complex*>(column(c)); }
};

// Modified Gram-Schmidt: of the first `pivots` columns each gets unit length and is taken out of
// the columns after it up to `all`; R(c, j) is what column c had of column j. A column that the
// ones before it span becomes 0, with a 0 in its R(j, j). What is left of the columns after the
// pivots stands at right angles to all of them.
void bringToRightAngles(SampleColumns& A, int pivots, int all, RView R);

// The same for the columns from first to last alone, after pivots that stay.
void takePivotsOut(SampleColumns& A, int pivots, int first, int last, RView R);

// The factors x of the pivots that give what was taken out of column c; 0 for one that became 0.
void solveTriangle(RConstView R, int pivots, int c, double* x);

// Products of the columns a1 to a2 with b1 to b2: P(1, 1) is that of a1 and b1.
void formProducts(SampleColumns& A, int a1, int a2, int b1, int b2, RView P);

// Solves (M + D) x = b of order n for a symmetric positive definite M with the numbers d on the
// diagonal of D. M, of which the lower triangle counts, is overwritten; false when it is not
// positive definite.
bool solvePositive(RView M, const double* d, double* x, int n);

} // namespace lcp
