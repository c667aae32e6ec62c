// Poles and delays moved to where the sum of squared deviations of all elements is least.
//
// Of a model with the poles and delays given, the residues that fit best follow from a linear
// problem. What is left of the samples depends on poles and delays alone, and has derivatives that
// cost little: variable projection, a nonlinear least-squares method, with steps after Levenberg
// and Marquardt.
#pragma once

#include "improved/fits/right_angles.h"
#include "store/fitmodel.h"

namespace lcp {

// Poles of all groups with their delays: what residues are fitted over.
struct PoleSet {
  int groups;
  GroupInts NH;
  Table<PoleTable, NGMAX> HPOLE; // rad/s
  GroupReals TAU;                // s
};

// What the model has beside its poles, and which of its numbers are moved.
struct PoleFrame {
  bool constant = false;    // D
  bool proportion = false;  // s E
  bool fixedAtZero = false; // targets less their value at s = 0, basis functions as well
  bool delays = false;      // are moved
};

// Samples of the elements that a model is to meet, as columns.
struct PoleTargets {
  int NS, count;
  FreqCurve WFREQ, WFIT; // rad/s; weights
  SampleColumns F;
};

// Makes room for so many elements, at most MOSTTARGETS columns: more elements share columns, with
// signs in turn, so that squares still add up in the mean.
constexpr int MOSTTARGETS = 36;
void beginTargets(PoleTargets& T, int NS, const FreqCurve& WFREQ, const FreqCurve& WFIT,
                  int elements);
void addTarget(PoleTargets& T, int element, const Complex* F, double atZero = 0);

// Moves the poles and, if asked for, the delays of the set by at most so many steps. Returns the
// root of the mean square that is left, over samples and elements.
double MOVEPOLES(const PoleTargets& T, const PoleFrame& frame, int steps, PoleSet& S);

// The unknowns of the targets, a column each: those of the poles in the real form of the basis,
// group by group, then D and E. They stand until the next call of a routine of this file.
RView FINDRESIDUES(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S);

// Adds the real pole or the pair to one of the groups that takes most off the squares per pole, of
// some spread over the frequencies; false when all groups have limit poles.
bool ADDPOLE(const PoleTargets& T, const PoleFrame& frame, int limit, PoleSet& S);

// Makes pairs of real poles of a group that lie close together, as two poles do that would rather
// be a pair: their residues are huge and of opposite sign. False when there are none.
bool PAIRUP(PoleSet& S);

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
