// As vector_fit, with a free constant d in the scaling function,
//
//   sigma(s) = d + sum c_m / (s - p_m),   sigma(s) F(s) = D + s E + sum r_m / (s - p_m),
//
// and one more equation that keeps sigma from vanishing: the sum of its real part over the samples
// is their number, weighted by the size of F over it. A constant of 1 instead pulls poles to where
// they were when sigma is far from 1.
//
// The unknowns r, D, E of each function go first: what is left of its columns F phi and F after
// those of phi is brought to a triangle, and the triangles of all functions stand below each other.
#include "improved/fits/relaxed_fit.h"

#include "fit/vector_fit.h"

#include <algorithm>
#include <cmath>

namespace lcp {

namespace {

constexpr double DAMPING = 0.01; // real over imaginary part of a starting pole
constexpr double LEASTD = 1e-8;
constexpr double LEASTPOLE = 1e-3; // of the lowest frequency

struct Work {
  SampleColumns A, B, C;
  MappedArray<double> R;
};
Work& WORK = bigStore<Work>();

ComplexCurve curve, lag;
PoleClasses CINDEX;

// Columns of the basis, of D and of E; returns how many.
int formShared(const PoleTargets& T, const PoleFrame& frame, double tau, int N,
               const PoleTable& P) {
  int columns = N + (frame.constant ? 1 : 0) + (frame.proportion ? 1 : 0);
  WORK.A.lay(T.NS, columns + N + 1);
  for (int k = 1; k <= T.NS; ++k) {
    const double turn = T.WFREQ[k] * tau;
    lag[k] = T.WFIT[k] * Complex(std::cos(turn), -std::sin(turn));
  }
  for (int m = 1; m <= N; ++m) {
    basisCurve(P, CINDEX, m, T.WFREQ, T.NS, curve);
    for (int k = 1; k <= T.NS; ++k) WORK.A.samples(m)[k - 1] = curve[k] * lag[k];
  }
  for (int k = 1; k <= T.NS; ++k) {
    if (frame.constant) WORK.A.samples(N + 1)[k - 1] = lag[k];
    if (frame.proportion) WORK.A.samples(columns)[k - 1] = Complex(0, T.WFREQ[k]) * lag[k];
  }
  return columns;
}

// The columns F phi and F of target i, after the shared ones.
void formScaled(const PoleTargets& T, int shared, int N, const PoleTable& P, int i) {
  const Complex* F = const_cast<PoleTargets&>(T).F.samples(i);
  for (int m = 1; m <= N; ++m) {
    basisCurve(P, CINDEX, m, T.WFREQ, T.NS, curve);
    for (int k = 1; k <= T.NS; ++k) WORK.A.samples(shared + m)[k - 1] = curve[k] * F[k - 1];
  }
  std::copy_n(F, T.NS, WORK.A.samples(shared + N + 1));
}

// The triangle of target i into rows of C.
void addTriangle(const PoleTargets& T, int shared, int N, int i, RView R) {
  takePivotsOut(WORK.A, shared, shared + 1, shared + N + 1, R);
  WORK.B.lay(T.NS, N + 1);
  for (int c = 1; c <= N + 1; ++c)
    std::copy_n(WORK.A.column(shared + c), WORK.A.ld, WORK.B.column(c));
  const RView triangle = {&R(1, shared + 1), R.ld};
  bringToRightAngles(WORK.B, N + 1, N + 1, triangle);
  for (int c = 1; c <= N + 1; ++c) {
    for (int j = 1; j <= c; ++j) WORK.C.column(c)[(i - 1) * (N + 1) + j - 1] = triangle(c, j);
  }
}

// The equation of sigma, last row of C, and the right-hand side.
void addRelaxation(const PoleTargets& T, int N, const PoleTable& P) {
  double square = 0;
  for (int i = 1; i <= T.count; ++i) {
    double own = 0;
    formProducts(const_cast<PoleTargets&>(T).F, i, i, i, i, {&own, 1});
    square += own;
  }
  const double weight = std::sqrt(square) / T.NS;
  const int row = T.count * (N + 1);
  for (int m = 1; m <= N; ++m) {
    basisCurve(P, CINDEX, m, T.WFREQ, T.NS, curve);
    double sum = 0;
    for (int k = 1; k <= T.NS; ++k) sum += curve[k].real();
    WORK.C.column(m)[row] = weight * sum;
  }
  WORK.C.column(N + 1)[row] = weight * T.NS;
  WORK.C.column(N + 2)[row] = weight * T.NS;
}

} // namespace

void spreadPoles(PoleTable& P, int N, double WLO, double WHI) {
  int m = 0;
  if (N % 2 == 1) P[++m] = -WLO;
  const int pairs = N / 2;
  for (int i = 1; i <= pairs; ++i) {
    const double part = pairs > 1 ? (i - 1.0) / (pairs - 1) : 0.5;
    const double w = WLO * std::pow(WHI / WLO, part);
    P[++m] = Complex(-DAMPING * w, w);
    P[++m] = Complex(-DAMPING * w, -w);
  }
}

void RELOCATERELAXED(const PoleTargets& T, const PoleFrame& frame, double tau, int N,
                     PoleTable& P) {
  Table<double, MAXPOLES + 1> x;
  classifyPoles(P, N, CINDEX);
  const int shared = formShared(T, frame, tau, N, P), all = shared + N + 1;
  const int rows = T.count * (N + 1) + 1;
  const RView R = {
      WORK.R.room(static_cast<std::size_t>(all + 2) * static_cast<std::size_t>(all + 2)), all + 1};
  WORK.C.lay((rows + 1) / 2, N + 2);
  for (int c = 1; c <= N + 2; ++c) std::fill_n(WORK.C.column(c), WORK.C.ld, 0.0);
  bringToRightAngles(WORK.A, shared, shared, R);
  for (int i = 1; i <= T.count; ++i) {
    formScaled(T, shared, N, P, i);
    addTriangle(T, shared, N, i, R);
  }
  addRelaxation(T, N, P);
  bringToRightAngles(WORK.C, N + 1, N + 2, R);
  solveTriangle(R, N + 1, N + 2, x.data());
  double d = x[N + 1];
  if (!(std::fabs(d) > LEASTD)) d = d < 0 ? -LEASTD : LEASTD;
  for (int m = 1; m <= N; ++m) x[m] /= d;
  TAKEZEROS(N, x.data(), FLIPUNSTABLE, P);
  const double least = LEASTPOLE * std::min(T.WFREQ[1], T.WFREQ[T.NS]);
  for (int m = 1; m <= N; ++m) {
    if (!(std::abs(P[m]) > least)) P[m] = -least; // a pole at zero has no value there
  }
}

} // namespace lcp
