#include "support/dense_functions.h"

#include <algorithm>
#include <cmath>

namespace lcp::test {

// Gauss-Jordan elimination on the rows of [A 1].
Dense inverse(Dense A) {
  const std::size_t n = A.size();
  for (std::size_t i = 0; i < n; ++i) {
    A[i].resize(2 * n);
    A[i][n + i] = 1;
  }
  for (std::size_t k = 0; k < n; ++k) {
    const auto smaller = [k](const auto& a, const auto& b) {
      return std::abs(a[k]) < std::abs(b[k]);
    };
    std::swap(A[k],
              *std::max_element(A.begin() + static_cast<std::ptrdiff_t>(k), A.end(), smaller));
    const Wide pivot = A[k][k];
    for (Wide& a : A[k]) a /= pivot;
    for (auto& row : A) {
      const Wide t = &row == &A[k] ? 0 : row[k];
      for (std::size_t j = k; j < 2 * n; ++j) row[j] -= t * A[k][j];
    }
  }
  return block(A, 0, n, n);
}

Dense product(const Dense& A, const Dense& B) {
  return formed(A.size(), [&](std::size_t i, std::size_t j) {
    Wide s = 0;
    for (std::size_t k = 0; k < A.size(); ++k) s += A[i][k] * B[k][j];
    return s;
  });
}

double largest(const Dense& A) {
  long double most = 0;
  for (const auto& row : A) {
    for (const Wide& a : row) most = std::abs(a) <= most || std::isnan(most) ? most : std::abs(a);
  }
  return static_cast<double>(most);
}

double distance(const Dense& A, const Dense& B) { return largest(sum(A, B, -1)) / largest(B); }

Dense identity(std::size_t n) {
  return formed(n, [](std::size_t i, std::size_t j) { return i == j ? 1 : 0; });
}

Dense sum(const Dense& A, const Dense& B, Wide factor) {
  return formed(A.size(), [&](std::size_t i, std::size_t j) { return A[i][j] + factor * B[i][j]; });
}

Dense times(Wide factor, const Dense& A) {
  return formed(A.size(), [&](std::size_t i, std::size_t j) { return factor * A[i][j]; });
}

namespace {

// exp(A) - 1 without cancellation for small A.
Dense exponentialLessOne(const Dense& A) {
  const double norm = static_cast<double>(A.size()) * largest(A);
  const int squarings = std::max(0, static_cast<int>(std::ceil(std::log2(norm + 1e-30))) + 4);
  const Dense small = times(std::pow(2.0L, -squarings), A);
  Dense term = small, X = term;
  for (int n = 2; n <= 30; ++n) {
    term = times(1.0L / n, product(term, small));
    X = sum(X, term);
  }
  for (int s = 0; s < squarings; ++s) X = sum(product(X, X), X, 2); // (1 + X)^2 = 1 + X X + 2 X
  return X;
}

} // namespace

Dense exponential(const Dense& A) { return sum(exponentialLessOne(A), identity(A.size())); }

Dense squareRoot(const Dense& A) {
  const long double scale = largest(A); // so that the iteration starts near 1
  Dense Y = times(1 / scale, A), Z = identity(A.size());
  for (int n = 0; n < 60; ++n) {
    const Dense Yi = inverse(Y);
    Y = times(0.5L, sum(Y, inverse(Z)));
    Z = times(0.5L, sum(Z, Yi));
  }
  return times(std::sqrt(scale), Y);
}

Dense corner(CConstView A, int n) {
  return formed(static_cast<std::size_t>(n), [&](std::size_t i, std::size_t j) {
    return Wide(A(static_cast<int>(i) + 1, static_cast<int>(j) + 1));
  });
}

Dense block(const Dense& A, std::size_t row, std::size_t column, std::size_t n) {
  return formed(n, [&](std::size_t i, std::size_t j) { return A[row + i][column + j]; });
}

void join(Dense& Y, std::size_t i, std::size_t j, Wide y) {
  if (i > 0) Y[i - 1][i - 1] += y;
  if (j > 0) Y[j - 1][j - 1] += y;
  if (i > 0 && j > 0) Y[i - 1][j - 1] = Y[j - 1][i - 1] -= y;
}

// Determined from the signs of the pivots.
bool hasPositiveRealPart(Dense A) {
  for (std::size_t k = 0; k < A.size(); ++k) {
    if (!(A[k][k].real() > 0)) return false;
    for (std::size_t i = k + 1; i < A.size(); ++i) {
      const long double t = A[i][k].real() / A[k][k].real();
      for (std::size_t j = k; j < A.size(); ++j) A[i][j] -= t * A[k][j].real();
    }
  }
  return true;
}

bool isOfCapacitances(const Dense& A) {
  for (std::size_t i = 0; i < A.size(); ++i) {
    const long double own = A[i][i].real();
    long double sum = 0;
    for (std::size_t j = 0; j < A.size(); ++j) {
      if (i == j ? !(own > 0) : !(A[i][j].real() <= 1e-12L * own)) return false;
      sum += A[i][j].real();
    }
    if (sum < -1e-12L * own) return false;
  }
  return true;
}

// d/dx [v; i] = -[0 Z; Y 0] [v; i]. Sending end from receiving end: [v1; i1] = [A B; C D] [v2; i2],
// i2 flowing out. A pi circuit has B = Z and A = 1 + Z Y / 2.
PiCircuit exactPi(const Dense& Y, const Dense& Z, long double length) {
  const std::size_t n = Y.size();
  const Dense chain = exponentialLessOne(formed(2 * n, [&](std::size_t i, std::size_t j) {
    if ((i < n) == (j < n)) return Wide(0);
    return length * (i < n ? Z[i][j - n] : Y[i - n][j]);
  })); // A - 1 and B are in its upper half
  PiCircuit pi{block(chain, 0, n, n), {}};
  pi.Y = times(2, product(inverse(pi.Z), block(chain, 0, 0, n)));
  return pi;
}

} // namespace lcp::test
