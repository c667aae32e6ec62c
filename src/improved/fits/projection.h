// What a model with given poles and delays leaves of its targets: residues by linear least squares,
// and the further columns that steps of the poles, and trials of others, are found from.
#pragma once

#include "fit/partial_fractions.h"
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
  bool fixedAtZero = false; // targets less their value at s = 0, basis functions as well, no D
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

// The unknowns of the targets, a column each: those of the poles in the real form of the basis,
// group by group, then D and E. They stand until the next call of a routine that projects.
RView FINDRESIDUES(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S);

// --- for steps and trials of poles

// The columns of the last projection: the basis at right angles, what is left of the targets, and
// room for others.
struct Projection {
  SampleColumns A;
  MappedArray<double> R, X;
  int basis, targets, others;

  RView triangle() { return matrix(R, basis + targets + others, basis); }
  int firstOther() const { return basis + targets + 1; }

  static RView matrix(MappedArray<double>& store, int rows, int columns) {
    return {store.room(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns)), rows};
  }
};
inline Projection& PROJECTION = bigStore<Projection>();

// Projects the targets, with room for so many other columns. Returns what is left, squared.
double leaveOver(const PoleTargets& T, const PoleFrame& frame, const PoleSet& S, int others);

// The others: column c is a curve with the delay tau, less its value at zero where the frame is
// tied there; then all are brought to right angles with the basis.
void putOther(const PoleTargets& T, const PoleFrame& frame, double tau, const ComplexCurve& F,
              Complex atZero, int c);
void takeBasisOutOfOthers();

// As FINDRESIDUES for what was projected; then, for each group, what its delay multiplies:
// the sum of the factors of s phi at high frequencies.
RView formUnknowns(const PoleSet& S);

} // namespace lcp
