// Delay groups: modes with nearly equal delays share one delay and one set of poles.
#pragma once

#include "fit/partial_fractions.h"
#include "store/fitmodel.h"
#include "store/solvedata.h"

namespace lcp {

// First delays of n modes in ascending order, each with its minimum-phase part and mode number.
struct ModeDelays {
  ModeReals tau;  // s
  ModeReals corr; // s
  ModeInts mode;
};

// Sorts them by ascending delay; equal delays keep their order.
void sortDelays(ModeDelays& D, int n);

// Assigns modes, by ascending delay, to groups: the first mode of a group takes in all that follow
// within tol, s. Returns the number of groups.
int assignGroups(const ModeReals& tau, int n, double tol, ModeInts& group);

// Groups the modes of the solve store that agree within 10 degrees of phase at the highest fitted
// frequency. Sets NGROUP of FITMODEL and TAU from the first mode of each group; there are no poles
// yet.
void FORMGROUPS();

// After FORMGROUPS: mean propagation function of the modes of group g, and minimum-phase part of
// its first delay, s.
const ComplexCurve& groupCurve(int g);
double groupCorrection(int g);

// One attempt: each group whose error exceeds TARGET gets more poles, one at a time with a new
// search for its delay, until its largest deviation is at most TARGET or it has `limit` poles. Sets
// TAU, NH and HPOLE of FITMODEL and prints the table of the groups. Returns false if no group
// changed.
bool HMODEFIT(double TARGET, int limit);

// Returns false if a lower target cannot change anything, because every group below the limit
// already has an error of zero.
bool groupsCanGrow(int limit);

} // namespace lcp
