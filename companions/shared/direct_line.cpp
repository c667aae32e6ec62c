#include "companions/shared/direct_line.h"

#include "base/constants.h"
#include "cable/cable_store.h"
#include "kernels/lapack.h"
#include "modal/line_constants.h"
#include "run/manual_driver.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <unordered_map>

namespace lcp::companions {

namespace {

constexpr std::size_t MOSTKEPT = 2'500'000; // elements, 40 MB

std::optional<std::unordered_map<double, LinePoint>> keptPoints;

CView view(Matrix& A) { return {A.elements.data(), static_cast<int>(A.rows)}; }

Matrix cornerOf(const LineMatrix& A, std::size_t n) {
  Matrix M(n, n);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i < n; ++i)
      M(i, j) = A(static_cast<int>(i) + 1, static_cast<int>(j) + 1);
  }
  return M;
}

double columnSum(const Matrix& A) {
  double most = 0;
  for (std::size_t j = 0; j < A.columns; ++j) {
    double sum = 0;
    for (std::size_t i = 0; i < A.rows; ++i) sum += std::abs(A(i, j));
    most = std::max(most, sum);
  }
  return most;
}

Matrix transposed(const Matrix& A) {
  Matrix T(A.columns, A.rows);
  for (std::size_t j = 0; j < T.columns; ++j) {
    for (std::size_t i = 0; i < T.rows; ++i) T(i, j) = A(j, i);
  }
  return T;
}

// A with its columns multiplied by factors.
Matrix scaled(Matrix A, const std::vector<Complex>& factors) {
  for (std::size_t j = 0; j < A.columns; ++j) {
    for (std::size_t i = 0; i < A.rows; ++i) A(i, j) *= factors[j];
  }
  return A;
}

LinePoint computedAt(double f) {
  if (RUNDATA.run.DATAFMT == ROUTEMANUAL) { // for data entered by hand
    MANLINE(SOLVEDATA.first.YMAT, SOLVEDATA.first.ZMAT, f, MANUALMATRICES);
  } else {
    constantsAt(f);
  }
  return {f, cornerOf(SOLVEDATA.first.YMAT, lineOrder()),
          cornerOf(SOLVEDATA.first.ZMAT, lineOrder())};
}

} // namespace

std::size_t lineOrder() { return static_cast<std::size_t>(RUNDATA.line.NC); }

std::vector<bool> phaseConductors(std::size_t n) {
  std::vector<bool> phase(n, true);
  if (RUNDATA.run.ISCABLE != CABLESYSTEM || RUNDATA.run.fromTable()) return phase;
  for (std::size_t i = 0; i < n; ++i) {
    const int row = CABLE.order.order[static_cast<int>(i) + 1];
    bool core = false;
    for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) core = core || CABLE.numbering.first(c) == row;
    phase[i] = core;
  }
  return phase;
}

KeptConstants::KeptConstants() { keptPoints.emplace(); }
KeptConstants::~KeptConstants() { keptPoints.reset(); }

LinePoint constantsOf(double f) {
  if (!keptPoints) return computedAt(f);
  if (const auto known = keptPoints->find(f); known != keptPoints->end()) return known->second;
  LinePoint point = computedAt(f);
  if ((keptPoints->size() + 1) * 2 * point.Y.elements.size() < MOSTKEPT)
    keptPoints->emplace(f, point);
  return point;
}

LineModes modesOf(const LinePoint& point) {
  static ModeComplex squares;
  const std::size_t n = point.Y.rows;
  LineModes M;
  Matrix YZ = product(point.Y, point.Z);
  // Scaled so that the largest element has magnitude 1.
  const double size = largest(YZ);
  for (Complex& e : YZ.elements) e /= size;
  M.TI = Matrix(n, n);
  ZGEEV(view(YZ), squares, view(M.TI), static_cast<int>(n), BackSubstitution::ByColumns);
  M.TIINV = inverse(M.TI);
  M.condition = columnSum(M.TI) * columnSum(M.TIINV);
  for (std::size_t i = 0; i < n; ++i)
    M.gamma.push_back(std::sqrt(squares[static_cast<int>(i) + 1] * size));
  formSurgeImpedances(M, point);
  return M;
}

void formSurgeImpedances(LineModes& modes, const LinePoint& point) {
  const Matrix YM = product(product(modes.TIINV, point.Y), transposed(modes.TIINV));
  modes.Zc.clear();
  for (std::size_t i = 0; i < YM.rows; ++i) modes.Zc.push_back(modes.gamma[i] / YM(i, i));
}

std::vector<double> travelTimes(const LineModes& modes, double f, double length) {
  std::vector<double> times;
  for (const Complex& gamma : modes.gamma) times.push_back(length * gamma.imag() / (TWOPI * f));
  return times;
}

double nearestTo(double delay, const std::vector<double>& times) {
  const auto nearer = [delay](double a, double b) {
    return std::fabs(a - delay) < std::fabs(b - delay);
  };
  return *std::min_element(times.begin(), times.end(), nearer);
}

PhaseFunctions phaseFunctionsOf(const LinePoint& point, const LineModes& modes, double length) {
  std::vector<Complex> slow, wave;
  for (const Complex& g : modes.gamma) {
    slow.push_back(1.0 / g);
    wave.push_back(std::exp(-g * length));
  }
  return {product(product(scaled(modes.TI, slow), modes.TIINV), point.Y),
          product(scaled(modes.TI, wave), modes.TIINV)};
}

Matrix product(const Matrix& A, const Matrix& B) {
  Matrix C(A.rows, B.columns);
  for (std::size_t j = 0; j < B.columns; ++j) {
    for (std::size_t k = 0; k < A.columns; ++k) {
      for (std::size_t i = 0; i < A.rows; ++i) C(i, j) += A(i, k) * B(k, j);
    }
  }
  return C;
}

Matrix inverse(const Matrix& A) {
  static ModeInts pivots;
  const int n = static_cast<int>(A.rows);
  Matrix R = A;
  const double none = std::numeric_limits<double>::quiet_NaN();
  if (!std::isfinite(columnSum(A)) || !ZGETRF(view(R), n, pivots) || !ZGETRI(view(R), n, pivots))
    std::fill(R.elements.begin(), R.elements.end(), Complex(none, none));
  return R;
}

Matrix identity(std::size_t n) {
  Matrix I(n, n);
  for (std::size_t i = 0; i < n; ++i) I(i, i) = 1;
  return I;
}

Matrix combined(const Matrix& A, Complex factor, const Matrix& B) {
  Matrix C = A;
  for (std::size_t e = 0; e < C.elements.size(); ++e) C.elements[e] += factor * B.elements[e];
  return C;
}

double largest(const Matrix& A) {
  double most = 0;
  for (const Complex& e : A.elements) {
    if (!(std::abs(e) <= most)) most = std::abs(e);
    if (std::isnan(most)) return most;
  }
  return most;
}

std::vector<double> hermitianEigenvalues(const Matrix& A) {
  const std::size_t n = A.rows;
  Matrix S(n, n);
  for (std::size_t j = 0; j < n; ++j) {
    for (std::size_t i = 0; i < n; ++i) S(i, j) = 0.5 * (A(i, j) + std::conj(A(j, i)));
  }
  std::vector<double> values(n);
  ZHEEV(view(S), values.data(), static_cast<int>(n));
  return values;
}

} // namespace lcp::companions
