// Sums of partial fractions with matrix residues, as contained in model files:
//
//   F(s) = D + s E + sum over m of R[m] / (s - p[m])
#pragma once

#include <complex>
#include <cstddef>
#include <vector>

namespace lcp::companions {

using Complex = std::complex<double>;

// A dense matrix in column order, with 0-based indices.
struct Matrix {
  std::size_t rows = 0, columns = 0;
  std::vector<Complex> elements;

  Matrix() = default;
  Matrix(std::size_t m, std::size_t n) : rows(m), columns(n), elements(m * n) {}
  Complex& operator()(std::size_t i, std::size_t j) { return elements[j * rows + i]; }
  const Complex& operator()(std::size_t i, std::size_t j) const { return elements[j * rows + i]; }
};

Matrix oneByOne(Complex z);

struct Rational {
  Matrix D, E; // no rows if the function has no such term
  std::vector<Complex> poles;
  std::vector<Matrix> residues; // one per pole

  Matrix at(Complex s) const;
};

// H of a phase model: a rational function for each delay.
struct DelayedRational {
  std::vector<double> delays; // s
  std::vector<Rational> groups;

  Matrix at(Complex s) const;
};

} // namespace lcp::companions
