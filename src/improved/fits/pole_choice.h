// Which poles a set should have more, and which it can do without.
#pragma once

#include "improved/fits/projection.h"

namespace lcp {

// Adds the real pole or the pair to one of the groups that takes most off the squares per pole, of
// some spread over the frequencies; false when all groups have limit poles.
bool ADDPOLE(const PoleTargets& T, const PoleFrame& frame, int limit, PoleSet& S);

// Makes pairs of real poles of a group whose quotient is less than near, as of two poles that would
// rather be a pair: their residues are huge and of opposite sign. False when there are none.
bool PAIRUP(PoleSet& S, double near);

// Takes pole m out of group g.
void TAKEPOLEOUT(PoleSet& S, int g, int m);

// A pole or the first of a pair, and the squares that the model without it would have more, per
// pole.
struct PoleLoss {
  int g, m;
  double loss;
};
using PoleLosses = Table<PoleLoss, MAXCOLUMNS>;

// All of the set, by rising loss; returns how many.
int RANKPOLES(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S, PoleLosses& losses);

} // namespace lcp
