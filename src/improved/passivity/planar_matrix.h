// Small complex matrices with real and imaginary parts apart, so that columns go through the vector
// unit: products, Cholesky factors and solutions with them.
#pragma once

#include "base/matrix.h"
#include "kernels/lane_vectors.h"

#include <cstddef>
#include <vector>

namespace lcp {

// In the store as the widest registers load them.
struct alignas(sizeof(Lanes)) StoredLanes : ComplexLanes {
  StoredLanes() : ComplexLanes{} {}
  StoredLanes(const ComplexLanes& z) : ComplexLanes(z) {} // NOLINT(*-explicit-*)
};
struct alignas(sizeof(Lanes)) RealLanes {
  Lanes x;
};

// Order n, columns of so many lanes; the rows beyond n stay zero.
class PlanarMatrix {
public:
  PlanarMatrix() = default;
  explicit PlanarMatrix(int order)
      : n(order), lanes((order + LANES - 1) / LANES),
        elements(static_cast<std::size_t>(n) * static_cast<std::size_t>(lanes)) {}

  int order() const { return n; }
  int columnLanes() const { return lanes; }
  std::size_t allLanes() const { return elements.size(); }
  Complex operator()(int r, int c) const {
    return column(c)[(r - 1) / LANES].lane((r - 1) % LANES);
  }
  void set(int r, int c, Complex z) { column(c)[(r - 1) / LANES].set((r - 1) % LANES, z); }
  StoredLanes* column(int c) { return elements.data() + (c - 1) * lanes; }
  const StoredLanes* column(int c) const { return elements.data() + (c - 1) * lanes; }
  void copyTo(CView A) const;

private:
  int n = 0, lanes = 0;
  std::vector<StoredLanes> elements;
};

// C = A B. C is neither of the two.
void multiply(PlanarMatrix& C, const PlanarMatrix& A, const PlanarMatrix& B);

// B = A^H. B is not A.
void adjoint(PlanarMatrix& B, const PlanarMatrix& A);

// Frobenius norm.
[[nodiscard]] double normOf(const PlanarMatrix& A);

// L with L L^H = A + shift I, from the lower triangle of the Hermitian A; what is above the
// diagonal of L has no meaning. False when the sum is not positive definite, or not finite. L may
// be A.
[[nodiscard]] bool factorise(PlanarMatrix& L, const PlanarMatrix& A, double shift);

// B = L^-1 B.
void solveLower(const PlanarMatrix& L, PlanarMatrix& B);

// F = sum of x_k phi_k over real matrices x_k, as many lanes each as F has, side by side.
void addWeighted(PlanarMatrix& F, const std::vector<RealLanes>& x, const std::vector<Complex>& phi);

} // namespace lcp
