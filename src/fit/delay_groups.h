// Delay groups: modes whose delays nearly agree share one delay and one set of poles.
#pragma once

#include "fit/partial_fractions.h"
#include "store/fitmodel.h"
#include "store/solvedata.h"

namespace lcp {

// First delays of n modes by rising delay, each with its minimum-phase part and the number of its
// mode.
struct ModeDelays {
  ModeReals tau;  // s
  ModeReals corr; // s
  ModeInts mode;
};

// Brings them into that order; equal ones keep theirs.
void sortDelays(ModeDelays& D, int n);

// Group of each mode, by rising delay: the first mode of a group anchors it and takes in all that
// follow within tol, s. Returns the number of groups.
int assignGroups(const ModeReals& tau, int n, double tol, ModeInts& group);

// Groups the modes of the solve store, within 10 degrees of phase at the highest fitted frequency.
// FITMODEL: NGROUP, TAU as it follows from the first mode of each group, no poles.
void FORMGROUPS();

// Behind FORMGROUPS: the mean propagation function of the modes of group g, and the minimum-phase
// part of its first delay, s.
const ComplexCurve& groupCurve(int g);
double groupCorrection(int g);

// One attempt: each group whose error is above TARGET gets poles, one at a time, each time with a
// new search for its delay, until its largest deviation is TARGET or it has limit poles. Sets TAU,
// NH and HPOLE of FITMODEL, prints the table of the groups; false when none of them changed.
bool HMODEFIT(double TARGET, int limit);

// False when a lower target could not change anything: a group below the limit would need an error
// above zero.
bool groupsCanGrow(int limit);

} // namespace lcp
