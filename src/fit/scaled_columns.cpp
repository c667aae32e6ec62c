#include "fit/scaled_columns.h"

#include <cmath>

namespace lcp {

void scaleColumns(RView A, int m, int n, ColumnReals& SCALE) {
  for (int c = 1; c <= n; ++c) {
    double* a = A.column(c);
    double sum = 0;
    for (int r = 0; r < m; ++r) sum += a[r] * a[r];
    const double e = sum == 0 ? 1.0 : std::sqrt(sum);
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
