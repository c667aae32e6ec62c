// An artificial fitted model in the enforcement store.
//
// Two delay groups, real poles and conjugate pairs, residues that are not symmetric, numbers of
// similar size.
#pragma once

#include "base/matrix.h"
#include "passivity/enforcement_store.h"
#include "store/fitmodel.h"

#include <cmath>
#include <random>

namespace lcp::test {

// n conductors; the given number of poles in each of the two groups, the first third of them real.
// With larger diagonal elements the model is not passive.
inline void setMadeUpModel(int n, int first, int second, double own = 0.3) {
  std::mt19937 random(static_cast<unsigned>(n + first));
  const auto between = [&](double lo, double hi) {
    return lo + (hi - lo) * (static_cast<double>(random()) / 0x1p32);
  };
  FitModel& M = FITMODEL;
  M.NC = n;
  M.NPY = 2;
  M.YPOLE[1] = -300;
  M.YPOLE[2] = -2e4;
  M.NGROUP = 2;
  M.NH[1] = first;
  M.NH[2] = second;
  for (int g = 1; g <= 2; ++g) {
    M.TAU[g] = 3e-4 + 1e-5 * g;
    for (int m = 1; m <= M.NH[g]; ++m) {
      const bool real = 3 * m <= M.NH[g] || (M.NH[g] - M.NH[g] / 3) % 2 != 0;
      const bool again = !real && (m - M.NH[g] / 3) % 2 == 0;
      const double size = std::pow(10.0, between(1.5, 4.5));
      M.HPOLE[g][m] = again ? std::conj(M.HPOLE[g][m - 1]) : Complex(-size, real ? 0 : 2 * size);
      for (int i = 0; i < n * n; ++i) {
        PoleTable& R = M.HRES[g](i % n + 1, i / n + 1);
        const double share = size * (i % n == i / n ? own : own / 5) / first;
        const Complex z(share * between(0.5, 1.5), real ? 0 : share * between(-1, 1));
        R[m] = again ? std::conj(R[m - 1]) : z;
      }
    }
  }
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) {
      M.YD(r, c) = single(r == c ? 2.5e-3 + 1e-4 * r : -3e-4);
      for (int m = 1; m <= 2; ++m) M.YRES(r, c)[m] = (r == c ? -0.1 : 0.01) * m;
    }
  }
  PASSSETY();
  PASSSETH();
}

} // namespace lcp::test
