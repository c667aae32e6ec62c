// Changes of residues as real variables that keep the model real.
//
// A real pole has a real change of its residue, the two poles of a pair have conjugate ones. All
// elements of a matrix share the basis functions phi of their poles,
//
//   change of F(r,c) = sum over k of x_k(r,c) phi_k(s)
//
// with one real x_k for a real pole, two for a pair (real and imaginary part) and one for a
// constant term. The change is measured by x^T G x, summed over the elements, where G = U^T U is
// the mean over weighted frequencies of Re(phi phi^H); in the whitened basis U^-T phi this is |y|^2
// with y = U x.
//
// A linear condition on the change at one frequency, Re(l^T dF(s) q) with vectors l and q, has rank
// one in the elements and a single vector of basis values, so the scalar product of two conditions
// is
//
//   a_i a_j = 1/2 Re((l_i l_j)(q_i q_j)(phi_i phi_j) + (l_i l_j*)(q_i q_j*)(phi_i phi_j*))
//
// independent of the order of the matrices and the number of poles.
#pragma once

#include "fit/partial_fractions.h"
#include "improved/passivity/planar_matrix.h"
#include "passivity/enforcement_store.h"

#include <vector>

namespace lcp {

using Complexes = std::vector<Complex>;

struct TiedBasis {
  Complexes pole;            // rad/s; the two of a pair side by side
  std::vector<int> kind;     // of each: REALPOLE, PAIRFIRST, PAIRSECOND
  std::vector<double> tau;   // delay of each, s
  bool constant = false;     // a constant term after the poles
  int N = 0;                 // basis functions
  std::vector<double> scale; // 1 over the norm of each
  std::vector<double> U;     // factor of G of the scaled basis, N by N, upper triangle in columns
};

// The bases of H and Yc in the enforcement store, not yet whitened.
[[nodiscard]] TiedBasis propagationBasis();
[[nodiscard]] TiedBasis admittanceBasis();

// Sets scale and U from frequencies, Hz, and their weights.
void whiten(TiedBasis& B, const std::vector<double>& f, const std::vector<double>& weight);

// The basis at s: as it is, and whitened.
[[nodiscard]] Complexes plainBasis(const TiedBasis& B, Complex s);
[[nodiscard]] Complexes basisAt(const TiedBasis& B, Complex s);

// A condition Re(l^T dF q) >= b or = b on a change of F at one frequency.
struct RankOneRow {
  Complexes l, q; // empty: the condition does not involve F
  Complexes phi;  // whitened basis at that frequency
};

// Rows in groups of LANES, a lane each, element by element.
struct PackedRows {
  bool symmetric;   // changes are, and rows count with their symmetric parts
  std::size_t n, N; // length of l and q, and of phi
  std::size_t rows = 0;
  std::vector<StoredLanes> elements{}; // of each group those of l, q and phi

  void add(const RankOneRow& row);
};

// Adds the scalar products of the row with the first of the others, so many, to products, which has
// room for whole groups.
void addRowProducts(const RankOneRow& row, const PackedRows& others, std::size_t count,
                    double* products);

// The changes x of element (r,c) for y = sum of u_i times row i, in the order of the basis.
[[nodiscard]] std::vector<double> changeOf(const TiedBasis& B, const std::vector<RankOneRow>& rows,
                                           const std::vector<double>& u, int r, int c,
                                           bool symmetric);

// The change of the residue of pole m (0-based) from x; the changes of a pair are exact conjugates.
[[nodiscard]] Complex residueChange(const TiedBasis& B, const std::vector<double>& x,
                                    std::size_t m);

} // namespace lcp
