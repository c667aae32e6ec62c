// The least change of a fitted model that removes negative eigenvalues: cuts and their quadratic
// program.
#pragma once

#include "improved/passivity/active_set_program.h"
#include "improved/passivity/spectrum_scan.h"
#include "improved/passivity/tied_residues.h"

#include <cstddef>
#include <vector>

namespace lcp {

// A condition on the model at one frequency, for one vector of waves.
struct Cut {
  double f; // Hz
  Half half;
  Complexes x;  // unit length
  int idle = 0; // successive programs in which it was inactive
};

// The data of the programs of one enforcement.
struct LeastChange {
  TiedBasis ofH, ofYc;
  bool freeYc = false;     // Yc changes as well as H
  double margin = 0;       // to which cuts are lifted, of the size of their terms
  PackedModel model, base; // as it stands, and what changes count from
  std::vector<Cut> cuts;
  std::vector<RankOneRow> rowsH, rowsYc; // of the program: equalities, rows kept, cuts
  LeastVectorProgram program;
  std::size_t known = 0; // number of leading rows whose scalar products are known
};

// From the enforcement store as it was filled: bases, and weights of the frequencies of the fit and
// of a decade outside it, there times a factor. H alone is free.
[[nodiscard]] LeastChange startLeastChange(double outside);

// Restores the store and sets which terms are free from now on; the cuts are kept.
void restartLeastChange(LeastChange& C, bool freeYc);

// Measures changes from the current model from now on: the steps become small, and with them the
// error of the linearised conditions. Rows kept from earlier programs are dropped.
void rebaseLeastChange(LeastChange& C);

// Adds cuts for the deepest minima of a scan of the current model.
void addCuts(LeastChange& C, std::vector<NegativePoint> minima);

// Linearises the cuts around the current model, solves the program and stores the resulting model
// in FRES, ERY and EDY. Returns false if a cut contradicts the others.
[[nodiscard]] bool solveLeastChange(LeastChange& C);

// Largest change of an element of Yc over NS frequencies, rad/s, relative to the largest element of
// the fitted Yc.
[[nodiscard]] double changeOfAdmittance(const FreqCurve& WFREQ, int NS);

} // namespace lcp
