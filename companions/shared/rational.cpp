#include "companions/shared/rational.h"

namespace lcp::companions {

namespace {

void addTimes(Matrix& sum, const Matrix& term, Complex factor) {
  if (sum.elements.empty()) sum = Matrix(term.rows, term.columns);
  for (std::size_t e = 0; e < term.elements.size(); ++e)
    sum.elements[e] += factor * term.elements[e];
}

} // namespace

Matrix oneByOne(Complex z) {
  Matrix m(1, 1);
  m(0, 0) = z;
  return m;
}

Matrix Rational::at(Complex s) const {
  Matrix F = D;
  if (!E.elements.empty()) addTimes(F, E, s);
  for (std::size_t m = 0; m < poles.size(); ++m) addTimes(F, residues[m], 1.0 / (s - poles[m]));
  return F;
}

Matrix DelayedRational::at(Complex s) const {
  Matrix H;
  for (std::size_t g = 0; g < groups.size(); ++g) {
    if (!groups[g].poles.empty()) addTimes(H, groups[g].at(s), std::exp(-s * delays[g]));
  }
  return H;
}

} // namespace lcp::companions
