// Numbers that may be infinite or NaN.
#pragma once

#include <algorithm>
#include <cmath>

namespace lcp {

// The larger of two; NaN if one of them is NaN.
inline double larger(double a, double b) { return b > a || std::isnan(b) ? b : a; }

inline bool allFinite(const double* x, int n) {
  return std::all_of(x, x + n, [](double v) { return std::isfinite(v); });
}

inline bool anyNaN(const double* x, int n) {
  return std::any_of(x, x + n, [](double v) { return std::isnan(v); });
}

} // namespace lcp
