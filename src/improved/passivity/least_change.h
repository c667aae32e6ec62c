// The least change of a fitted model that lifts what was found negative: the cuts of an enforcement
// and the quadratic program that they make.
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
  int idle = 0; // programs in a row that it did not hold
};

// What the programs of one enforcement are made of.
struct LeastChange {
  TiedBasis ofH, ofYc;
  bool freeYc = false; // Yc changes as well as H
  double margin = 0;   // to which cuts are lifted, of the size of their terms
  std::vector<Cut> cuts;
  std::vector<RankOneRow> rowsH, rowsYc; // of the program: equalities, rows kept, cuts
  LeastVectorProgram program;
  std::size_t known = 0; // rows, from the first on, whose products the program has
};

// From the enforcement store as it was filled: bases, weights of the frequencies of the fit. H
// alone is free.
[[nodiscard]] LeastChange startLeastChange();

// The store as it was filled, and the terms that are free from now on; the cuts stay.
void restartLeastChange(LeastChange& C, bool freeYc);

// From now on changes count from the present model: steps become small, and with them what the
// linearised conditions leave out. Rows kept from earlier programs go.
void rebaseLeastChange(LeastChange& C);

// Cuts of the deepest of the minima of a scan of the present model.
void addCuts(LeastChange& C, std::vector<NegativePoint> minima);

// Linearises the cuts around the present model, solves the program and puts the model that it finds
// in FRES, and ERY and EDY, of the store. False when a cut contradicts the others.
[[nodiscard]] bool solveLeastChange(LeastChange& C);

// Largest change of an element of Yc over NS frequencies, rad/s, over its largest element as
// fitted.
[[nodiscard]] double changeOfAdmittance(const FreqCurve& WFREQ, int NS);

} // namespace lcp
