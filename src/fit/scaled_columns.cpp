#include "fit/scaled_columns.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

// Weights can be so large that squares overflow, though lengths do not.
double lengthOf(const double* a, int m) {
  double sum = 0, largest = 0;
  for (int r = 0; r < m; ++r) sum += a[r] * a[r];
  if (std::isfinite(sum)) return std::sqrt(sum);
  for (int r = 0; r < m; ++r) largest = std::max(largest, std::fabs(a[r]));
  if (!std::isfinite(largest)) return sum;
  const double unit = std::exp2(std::ilogb(largest));
  sum = 0;
  for (int r = 0; r < m; ++r) sum += (a[r] / unit) * (a[r] / unit);
  return unit * std::sqrt(sum);
}

} // namespace

void scaleColumns(RView A, int m, int n, ColumnReals& SCALE) {
  for (int c = 1; c <= n; ++c) {
    double* a = A.column(c);
    const double length = lengthOf(a, m);
    const double e = length == 0 ? 1.0 : length;
    for (int r = 0; r < m; ++r) a[r] /= e;
    SCALE[c] = e;
  }
}

void unscaleRows(RView X, int n, int nrhs, const ColumnReals& SCALE) {
  for (int c = 1; c <= nrhs; ++c) {
    for (int r = 1; r <= n; ++r) X(r, c) /= SCALE[r];
  }
}

} // namespace lcp
