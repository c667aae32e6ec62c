// Several complex vectors side by side and matrices times them: columns of a product, or modes
// followed together.
//
// Each lane has the bits that it would have on its own.
#pragma once

#include "base/matrix.h"
#include "base/register_widths.h"
#include "store/capacities.h"

namespace lcp {

// Complex numbers, one per lane.
struct ComplexLanes {
  Lanes re, im;

  Complex lane(int c) const { return {re[c], im[c]}; }
  void set(int c, Complex z) {
    re[c] = z.real();
    im[c] = z.imag();
  }
  void fill(Complex z) {
    re = z.real() - Lanes{};
    im = z.imag() - Lanes{};
  }
};

using LaneChoice = decltype(Lanes{} < Lanes{}); // a condition per lane

inline ComplexLanes operator+(const ComplexLanes& a, const ComplexLanes& b) {
  return {a.re + b.re, a.im + b.im};
}
inline ComplexLanes operator-(const ComplexLanes& a) { return {-a.re, -a.im}; }
inline ComplexLanes operator-(const ComplexLanes& a, const ComplexLanes& b) {
  return {a.re - b.re, a.im - b.im};
}
inline ComplexLanes operator*(const ComplexLanes& a, const ComplexLanes& b) {
  return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

inline ComplexLanes operator*(const Lanes& a, const ComplexLanes& z) {
  return {a * z.re, a * z.im};
}
inline ComplexLanes operator*(double a, const ComplexLanes& z) { return {a * z.re, a * z.im}; }
inline ComplexLanes operator/(const ComplexLanes& z, const Lanes& a) {
  return {z.re / a, z.im / a};
}
inline ComplexLanes operator/(const ComplexLanes& z, double a) { return {z.re / a, z.im / a}; }

// |Re z| and |Im z|.
inline ComplexLanes magnitudes(const ComplexLanes& z) {
  return {z.re < 0.0 ? -z.re : z.re, z.im < 0.0 ? -z.im : z.im};
}

// a / b by the ratio of the smaller to the larger part of b, as the compiler divides complex
// numbers.
inline ComplexLanes operator/(const ComplexLanes& a, const ComplexLanes& b) {
  const ComplexLanes size = magnitudes(b);
  const LaneChoice steep = size.re < size.im;
  const Lanes small = steep ? b.re : b.im, large = steep ? b.im : b.re;
  const Lanes ratio = small / large, divisor = small * ratio + large;
  const Lanes re = steep ? a.re * ratio + a.im : a.im * ratio + a.re;
  const Lanes im = steep ? a.im * ratio - a.re : a.im - a.re * ratio;
  return {re / divisor, im / divisor};
}

inline ComplexLanes reciprocal(const ComplexLanes& z) {
  const Lanes zero{};
  return ComplexLanes{1.0 - zero, zero} / z;
}

inline ComplexLanes chosen(const LaneChoice& choice, const ComplexLanes& a, const ComplexLanes& b) {
  return {choice ? a.re : b.re, choice ? a.im : b.im};
}

// Exchanges a and b in the lanes where the choice is true.
inline void exchange(ComplexLanes& a, ComplexLanes& b, const LaneChoice& choice) {
  const ComplexLanes first = a;
  a = {choice ? b.re : a.re, choice ? b.im : a.im};
  b = {choice ? first.re : b.re, choice ? first.im : b.im};
}

// The sum a(1) b(1) + a(2) b(2) + ... as four real sums.
struct SumOfProducts {
  Lanes rere{}, imim{}, reim{}, imre{};

  void add(const ComplexLanes& a, const ComplexLanes& b) {
    rere += a.re * b.re;
    imim += a.im * b.im;
    reim += a.re * b.im;
    imre += a.im * b.re;
  }
  ComplexLanes total() const { return {rere - imim, reim + imre}; }
};

// Vectors of up to MAXINV elements, one per lane.
struct LaneVectors {
  ComplexLanes elements[MAXINV];

  ComplexLanes& operator[](int i) {
    checkIndex(i, MAXINV);
    return elements[i - 1];
  }
  const ComplexLanes& operator[](int i) const {
    checkIndex(i, MAXINV);
    return elements[i - 1];
  }
  void setLane(int c, const Complex* x, int n) {
    for (int i = 1; i <= n; ++i) (*this)[i].set(c, x[i - 1]);
  }
  void getLane(int c, Complex* x, int n) const {
    for (int i = 1; i <= n; ++i) x[i - 1] = (*this)[i].lane(c);
  }
};

// The left factor of many products, packed in the order in which it is read: panels of PANELROWS
// rows, and in each, column by column, the real parts followed by the imaginary parts. Rows beyond
// the order are 0.
constexpr int PANELROWS = 4;
static_assert(MAXINV % PANELROWS == 0);
struct LeftFactor {
  int n = 0;
  double panels[2 * MAXINV * MAXINV];
};

// Packs the leading n by n corner of A; n up to MAXINV.
void prepare(LeftFactor& F, CConstView A, int n);

// y = A x. Each element is summed in the order of the columns. y must not be x. Elements of y
// beyond n, up to a whole panel, become 0 or NaN.
void multiply(LaneVectors& y, const LeftFactor& F, const LaneVectors& x);

// Sums of the squared moduli of n elements, in order.
void sumOfSquares(double (&sums)[LANES], const LaneVectors& x, int n);

// Sums of the moduli of n elements: right to rounding unless their squares overflow or underflow.
void sumOfModuli(double (&sums)[LANES], const LaneVectors& x, int n);

// Copies columns j to j + count - 1 of A, n rows, to the lanes; lanes beyond count become 0.
void takeColumns(LaneVectors& x, CConstView A, int j, int count, int n);

// Copies lanes back to columns j to j + count - 1 of A.
void putColumns(CView A, int j, const LaneVectors& x, int count, int n);

} // namespace lcp
