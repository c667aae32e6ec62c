// Dense matrices and functions of them, independent of the program, to check results against.
#pragma once

#include "base/matrix.h"

#include <complex>
#include <vector>

namespace lcp::test {

using Wide = std::complex<long double>;
using Dense = std::vector<std::vector<Wide>>; // first index 0

// The n by n matrix of element(i, j).
template <class Element> Dense formed(std::size_t n, Element element) {
  Dense A(n, std::vector<Wide>(n));
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t j = 0; j < n; ++j) A[i][j] = element(i, j);
  }
  return A;
}

Dense inverse(Dense A); // partial pivoting
Dense product(const Dense& A, const Dense& B);
double largest(const Dense& A);                  // magnitude of an element; NaN when one is NaN
double distance(const Dense& A, const Dense& B); // largest difference over the largest element of B
Dense identity(std::size_t n);
Dense sum(const Dense& A, const Dense& B, Wide factor = 1); // A + factor B
Dense times(Wide factor, const Dense& A);
Dense exponential(const Dense& A); // scaling, Taylor series, squaring
Dense squareRoot(const Dense& A);  // Denman-Beavers iteration, principal root
Dense corner(CConstView A, int n); // out of a view
Dense block(const Dense& A, std::size_t row, std::size_t column, std::size_t n); // from 0

// Puts an admittance between two nodes of a nodal matrix, counted from 1; 0 is the earth.
void join(Dense& Y, std::size_t i, std::size_t j, Wide y);

// Whether the real part is positive definite; whether it is a matrix of capacitances (positive
// diagonal, no positive off-diagonal element, no negative row sum).
bool hasPositiveRealPart(Dense A);
bool isOfCapacitances(const Dense& A);

// The exact pi circuit of a line: series impedance and total shunt admittance (half at each end),
// from the matrix exponential of the line equations. Y, Z per metre.
struct PiCircuit {
  Dense Z, Y;
};
PiCircuit exactPi(const Dense& Y, const Dense& Z, long double length);

} // namespace lcp::test
