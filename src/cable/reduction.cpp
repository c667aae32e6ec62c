#include "cable/reduction.h"

#include "overhead/bundle_reduction.h"
#include "store/rundata.h"

namespace lcp {

namespace {

using RowFlags = Table<bool, LDMAT>;

void groundChosen(const Cable& C, int first, int last, RowFlags& grounded) {
  const bool chosen[] = {C.CBBARE, C.CBELIM1, C.CBELIM2, C.CBELIM3};
  for (int k = first; k <= last; ++k) {
    if (chosen[k - first]) grounded[k] = true;
  }
}

void groundedRows(const CableNumbering& N, RowFlags& grounded) {
  const CableTable& T = RUNDATA.cable;
  grounded.fill(false);
  for (int c = 1; c <= T.NCABLE; ++c) {
    const int first = N.first(c);
    const int last = N.last(c);
    switch (T.CB[c].CBGLAST) {
    case GROUNDLAST: grounded[last] = true; break;
    case GROUNDLAYERS:
      for (int k = first + 1; k <= last; ++k) grounded[k] = true;
      break;
    case GROUNDCHOSEN: groundChosen(T.CB[c], first, last, grounded); break;
    default: break;
    }
  }
  if (N.pipeRow != 0 && T.pipe.PIPEGND == 1) grounded[N.pipeRow] = true;
  grounded[1] = false;
}

// Overhead conductors are the last cables, with one conductor each. In the conductor table their
// roles and circuits come after as many entries as the other cables and the pipe have conductors.
int ownConductors(const CableNumbering& N) { return N.total - RUNDATA.cable.overhead; }

// Conductor table entry of the conductor in row k; 0 for a conductor of a cable or the pipe.
int tableEntry(const CableNumbering& N, int k) {
  const int own = ownConductors(N);
  const int before = own - (N.pipeRow != 0 ? 1 : 0);
  return k <= before || k == N.pipeRow ? 0 : k - before + own;
}

int rowOfEntry(const CableNumbering& N, int entry) { return entry - (N.pipeRow != 0 ? 1 : 0); }

// Row of the main conductor if row k is a sub-conductor of a bundle, else 0.
int bundleRow(const CableNumbering& N, int k) {
  const int entry = RUNDATA.cable.MIXEDOH ? tableEntry(N, k) : 0;
  if (entry == 0 || RUNDATA.cond.CMAP[entry] <= 0) return 0;
  return rowOfEntry(N, RUNDATA.cond.CMAP[entry]);
}

} // namespace

void orderCableConductors(const CableNumbering& N, CableOrder& O) {
  RowFlags grounded;
  Table<int, LDMAT> place; // of each row in the new order
  groundedRows(N, grounded);
  int n = 0;
  const auto take = [&](bool ground, bool member) {
    for (int k = 1; k <= N.total; ++k) {
      if (grounded[k] != ground || (!ground && (bundleRow(N, k) != 0) != member)) continue;
      O.order[++n] = k;
      place[k] = n;
    }
    return n;
  };
  O.equivalents = take(false, false);
  O.kept = take(false, true);
  take(true, false);
  for (int k = 1; k <= O.kept; ++k) {
    const int main = bundleRow(N, O.order[k]);
    O.mainRow[k] = main == 0 ? 0 : place[main];
  }
}

void cableCircuits(const CableNumbering& N, const CableOrder& O, TranspositionGroups& groups) {
  const ConductorTable& C = RUNDATA.cond;
  groups.NCGROUP = C.NCIRC;
  for (int k = 1; k <= O.equivalents; ++k) {
    const int entry = tableEntry(N, O.order[k]);
    groups.CCIRC[k] = entry == 0 ? C.NCIRC : C.CCIRC[entry];
    groups.CTRANSP[k] = entry == 0 ? 0 : C.CTRANSP[entry];
  }
  splitGroups(groups, O.equivalents);
}

void reorder(CView M, const CableOrder& O, int n) {
  static CableMatrix old;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) old(i, j) = M(i, j);
  }
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) M(i, j) = old(O.order[i], O.order[j]);
  }
}

void CBBUND(CView M, const CableOrder& O) {
  for (int k = O.kept; k > O.equivalents; --k) foldMember(M, O.kept, k, O.mainRow[k]);
  CBKRON(M, O.equivalents, O.kept);
}

} // namespace lcp
