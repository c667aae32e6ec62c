#include "fit/scaled_columns.h"

#include "base/register_widths.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

// Length of a column from its sum of squares. Large weights can make squares overflow although
// lengths do not.
double lengthOf(const double* a, int m, double squares) {
  if (std::isfinite(squares)) return std::sqrt(squares);
  double largest = 0, sum = 0;
  for (int r = 0; r < m; ++r) largest = std::max(largest, std::fabs(a[r]));
  if (!std::isfinite(largest)) return squares;
  const double unit = std::exp2(std::ilogb(largest));
  for (int r = 0; r < m; ++r) sum += (a[r] / unit) * (a[r] / unit);
  return unit * std::sqrt(sum);
}

// C columns per sweep, each summed in its own order.
template <int C> void scale(double* a, std::ptrdiff_t ld, int m, double* SCALE) {
  double sums[C] = {};
  for (int r = 0; r < m; ++r) {
    for (int c = 0; c < C; ++c) sums[c] += a[c * ld + r] * a[c * ld + r];
  }
  for (int c = 0; c < C; ++c) {
    const double length = lengthOf(a + c * ld, m, sums[c]);
    const double e = length == 0 ? 1.0 : length;
    for (int r = 0; r < m; ++r) a[c * ld + r] /= e;
    SCALE[c] = e;
  }
}

} // namespace

LCP_WIDTHS("avx2") void scaleColumns(RView A, int m, int n, ColumnReals& SCALE) {
  constexpr int COLUMNS = 4;
  int c = 1;
  for (; c + COLUMNS - 1 <= n; c += COLUMNS) scale<COLUMNS>(A.column(c), A.ld, m, &SCALE[c]);
  for (; c <= n; ++c) scale<1>(A.column(c), A.ld, m, &SCALE[c]);
}

void unscaleRows(RView X, int n, int nrhs, const ColumnReals& SCALE) {
  for (int c = 1; c <= nrhs; ++c) {
    for (int r = 1; r <= n; ++r) X(r, c) /= SCALE[r];
  }
}

} // namespace lcp
