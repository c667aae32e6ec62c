// Settled fits of the delay groups, one for each number of poles, kept for all attempts.
#pragma once

#include "fit/propagation_fit.h"

namespace lcp {

// Poles of all groups: what a phase fit is made over.
struct PoleSet {
  GroupInts NH;
  Table<PoleTable, NGMAX> HPOLE; // rad/s
};

// Behind FORMGROUPS: forgets the fits of the line before.
void startGroupFits();

// Raises the number of poles NH[g] of each group to the fewest that fit the group's function within
// TARGET, or that do it best of limit poles. True when a number changed.
bool growGroups(double TARGET, int limit, GroupInts& NH);

// One pole more for each group below the limit; false when there is none.
bool addPoles(int limit, GroupInts& NH);

// False when no group has a better fit of more poles, up to limit, tried or not.
bool canImprove(int limit, const GroupInts& NH);

// Error of the fit of group g with n poles, which was made before: largest deviation.
double groupError(int g, int n);

// Lays the fits with these numbers of poles into the set, and their delays into FITMODEL.
void takeGroupFits(const GroupInts& NH, PoleSet& S);

// Fills the curves of the groups in FITTED.
void storeGroupCurves(const GroupInts& NH);

} // namespace lcp
