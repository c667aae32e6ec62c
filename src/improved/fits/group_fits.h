// Settled fits of the delay groups, one per number of poles, kept for all attempts.
#pragma once

#include "fit/propagation_fit.h"
#include "improved/fits/moved_poles.h"

namespace lcp {

// Behind FORMGROUPS: forgets the fits of the line before.
void startGroupFits();

// Raises the number of poles NH[g] of each group to the smallest that fits the group's function
// within TARGET, or else to the best up to `limit`. Returns true if a number changed.
bool growGroups(double TARGET, int limit, GroupInts& NH);

// Adds one pole to each group below the limit; returns false if there is none.
bool addPoles(int limit, GroupInts& NH);

// Returns false if no group can get a better fit with more poles, up to the limit, tried or not.
bool canImprove(int limit, const GroupInts& NH);

// Largest deviation of the fit of group g with n poles, which must have been made.
double groupError(int g, int n);

// Lays the fits with these numbers of poles and their delays into the set.
void takeGroupFits(const GroupInts& NH, PoleSet& S);

// Fills the curves of the groups in FITTED.
void storeGroupCurves(const GroupInts& NH);

} // namespace lcp
