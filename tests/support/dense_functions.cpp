#include "support/dense_functions.h"

#include <algorithm>
#include <cmath>

namespace lcp::test {

namespace {

long double norm(const Dense& A) {
  long double largest = 0;
  for (const auto& row : A) {
    long double s = 0;
    for (const Wide& a : row) s += std::abs(a);
    largest = std::max(largest, s);
  }
  return largest;
}

} // namespace

Dense inverse(Dense A) {
  const std::size_t n = A.size();
  Dense B(n, std::vector<Wide>(n));
  for (std::size_t i = 0; i < n; ++i) B[i][i] = 1;
  for (std::size_t k = 0; k < n; ++k) {
    std::size_t p = k;
    for (std::size_t i = k; i < n; ++i) {
      if (std::abs(A[i][k]) > std::abs(A[p][k])) p = i;
    }
    std::swap(A[k], A[p]);
    std::swap(B[k], B[p]);
    const Wide v = 1.0L / A[k][k];
    for (std::size_t j = 0; j < n; ++j) {
      A[k][j] *= v;
      B[k][j] *= v;
    }
    for (std::size_t i = 0; i < n; ++i) {
      const Wide t = A[i][k];
      for (std::size_t j = 0; i != k && j < n; ++j) {
        A[i][j] -= t * A[k][j];
        B[i][j] -= t * B[k][j];
      }
    }
  }
  return B;
}

Dense product(const Dense& A, const Dense& B) {
  const std::size_t n = A.size();
  Dense C(n, std::vector<Wide>(n));
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t k = 0; k < n; ++k) {
      for (std::size_t j = 0; j < n; ++j) C[i][j] += A[i][k] * B[k][j];
    }
  }
  return C;
}

double distance(const Dense& A, const Dense& B) {
  long double largest = 0;
  long double difference = 0;
  for (std::size_t i = 0; i < A.size(); ++i) {
    for (std::size_t j = 0; j < A.size(); ++j) {
      largest = std::max(largest, std::abs(B[i][j]));
      const long double d = std::abs(A[i][j] - B[i][j]);
      if (!(d <= difference)) difference = d; // NaN stays
    }
  }
  return static_cast<double>(difference / largest);
}

Dense identity(std::size_t n) {
  Dense I(n, std::vector<Wide>(n));
  for (std::size_t i = 0; i < n; ++i) I[i][i] = 1;
  return I;
}

Dense sum(const Dense& A, const Dense& B, Wide factor) {
  Dense C = A;
  for (std::size_t i = 0; i < C.size(); ++i) {
    for (std::size_t j = 0; j < C.size(); ++j) C[i][j] += factor * B[i][j];
  }
  return C;
}

Dense times(Wide factor, Dense A) {
  for (auto& row : A) {
    for (Wide& a : row) a *= factor;
  }
  return A;
}

Dense exponential(const Dense& A) { return sum(exponentialLessOne(A), identity(A.size())); }

Dense exponentialLessOne(const Dense& A) {
  const int squarings = std::max(0, static_cast<int>(std::ceil(std::log2(norm(A) + 1e-30L))) + 4);
  const Dense small = times(std::pow(2.0L, -squarings), A);
  Dense term = small;
  Dense X = term;
  for (int n = 2; n <= 30; ++n) {
    term = times(1.0L / n, product(term, small));
    X = sum(X, term);
  }
  for (int s = 0; s < squarings; ++s) X = sum(product(X, X), X, 2); // (1 + X)^2 = 1 + X X + 2 X
  return X;
}

Dense squareRoot(const Dense& A) {
  // Scaled so that the iteration starts near 1.
  const long double scale = norm(A);
  Dense Y = times(1 / scale, A);
  Dense Z = identity(A.size());
  for (int n = 0; n < 60; ++n) {
    const Dense Yi = inverse(Y);
    const Dense Zi = inverse(Z);
    Y = times(0.5L, sum(Y, Zi));
    Z = times(0.5L, sum(Z, Yi));
  }
  return times(std::sqrt(scale), Y);
}

Dense corner(CConstView A, int n) {
  const auto size = static_cast<std::size_t>(n);
  Dense D(size, std::vector<Wide>(size));
  for (std::size_t i = 0; i < size; ++i) {
    for (std::size_t j = 0; j < size; ++j) {
      D[i][j] = Wide(A(static_cast<int>(i) + 1, static_cast<int>(j) + 1));
    }
  }
  return D;
}

Dense block(const Dense& A, std::size_t row, std::size_t column, std::size_t n) {
  Dense B(n, std::vector<Wide>(n));
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) B[i][j] = A[row + i][column + j];
  }
  return B;
}

// d/dx [v; i] = -[0 Z; Y 0] [v; i]. Sending end from receiving end: [v1; i1] = [A B; C D] [v2; i2],
// i2 flowing out. A pi circuit has B = Z and A = 1 + Z Y / 2.
PiCircuit exactPi(const Dense& Y, const Dense& Z, long double length) {
  const std::size_t n = Y.size();
  Dense line(2 * n, std::vector<Wide>(2 * n));
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) {
      line[i][n + j] = length * Z[i][j];
      line[n + i][j] = length * Y[i][j];
    }
  }
  const Dense chain = exponentialLessOne(line); // A - 1 and B stand in its upper half
  PiCircuit pi;
  pi.Z = block(chain, 0, n, n);
  pi.Y = times(2, product(inverse(pi.Z), block(chain, 0, 0, n)));
  return pi;
}

} // namespace lcp::test
