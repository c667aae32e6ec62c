// Settled fits of the delay groups, one per number of poles, kept for all attempts.
#pragma once

#include "fit/propagation_fit.h"
#include "improved/fits/projection.h"

namespace lcp {

// Behind FORMGROUPS: forgets the fits of the line before.
void startGroupFits();

// Raises the number of poles NH[g] of each group to the smallest that fits the group's function
// within TARGET, or else to the best up to `limit`. Returns true if a number changed.
bool growGroups(double TARGET, int limit, GroupInts& NH);

// Lays the fits with these numbers of poles and their delays into the set.
void takeGroupFits(const GroupInts& NH, PoleSet& S);

// Largest deviation of group g's own function over its poles of the set; fills the curves of the
// group in FITTED.
double groupError(int g, const PoleSet& S);

} // namespace lcp
