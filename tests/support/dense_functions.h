// Dense matrices and functions of them, by ways of their own: what results are checked against.
#pragma once

#include "base/matrix.h"

#include <complex>
#include <vector>

namespace lcp::test {

using Wide = std::complex<long double>;
using Dense = std::vector<std::vector<Wide>>; // first index 0

Dense inverse(Dense A); // partial pivoting
Dense product(const Dense& A, const Dense& B);
double distance(const Dense& A, const Dense& B); // largest difference over the largest element
Dense identity(std::size_t n);
Dense sum(const Dense& A, const Dense& B, Wide factor = 1); // A + factor B
Dense times(Wide factor, Dense A);
Dense exponential(const Dense& A);        // scaling, Taylor series, squaring
Dense exponentialLessOne(const Dense& A); // without cancellation at small A
Dense squareRoot(const Dense& A);         // Denman-Beavers iteration, principal root
Dense corner(CConstView A, int n);        // out of a view
Dense block(const Dense& A, std::size_t row, std::size_t column, std::size_t n); // from 0

// The exact pi circuit of a line: series impedance and total shunt admittance (half at each end),
// from the matrix exponential of the line equations. Y, Z per metre.
struct PiCircuit {
  Dense Z, Y;
};
PiCircuit exactPi(const Dense& Y, const Dense& Z, long double length);

} // namespace lcp::test
