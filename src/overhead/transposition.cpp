// Averages of a transposed line. With g(i) the group of conductor i:
//
//   self     mean of M(i, i) over the transposed conductors of a group
//   mutual   mean of M(a, b) over all ordered pairs of different conductors of two groups, or of
//            one group; it replaces every pair with at least one transposed conductor
//
// The sums of a group are stored at the number of its first conductor.
#include "overhead/transposition.h"

#include "store/rundata.h"

namespace lcp {

namespace {

struct Mean {
  Complex sum;
  int count = 0;

  void clear() {
    sum = 0.0;
    count = 0;
  }
  void add(Complex value) {
    sum += value;
    ++count;
  }
  Complex value() const { return sum / static_cast<double>(count); }
};

struct GroupSums {
  Mean self[LDMAT];
  Mean mutual[LDMAT][LDMAT];

  void clear(int n) {
    for (int i = 0; i < n; ++i) {
      self[i].clear();
      for (int j = 0; j < n; ++j) mutual[i][j].clear();
    }
  }
};

constinit GroupSums sums;

void addUp(const TranspositionGroups& groups, CConstView M, int n) {
  const Table<int, LDMAT>& transposed = groups.CTRANSP;
  sums.clear(n);
  for (int b = 1; b <= n; ++b) {
    for (int a = 1; a <= n; ++a) {
      if (a != b) sums.mutual[groups.leader[a] - 1][groups.leader[b] - 1].add(M(a, b));
    }
    if (transposed[b] == 1) sums.self[groups.leader[b] - 1].add(M(b, b));
  }
}

} // namespace

void splitGroups(TranspositionGroups& groups, int n) {
  groups.transposed = false;
  for (int i = 1; i <= n; ++i) {
    if (groups.CTRANSP[i] == 1) groups.transposed = true;
    for (int j = i + 1; groups.CTRANSP[i] == 0 && j <= n; ++j) {
      if (groups.CCIRC[j] == groups.CCIRC[i]) groups.CCIRC[j] = ++groups.NCGROUP;
    }
  }
  for (int i = 1; i <= n; ++i) {
    groups.leader[i] = 1;
    while (groups.CCIRC[groups.leader[i]] != groups.CCIRC[i]) ++groups.leader[i];
  }
}

void SPLITCIRC(TranspositionGroups& groups, int n) {
  const ConductorTable& C = RUNDATA.cond;
  groups.NCGROUP = C.NCIRC;
  for (int i = 1; i <= n; ++i) {
    groups.CCIRC[i] = C.CCIRC[i];
    groups.CTRANSP[i] = C.CTRANSP[i];
  }
  splitGroups(groups, n);
}

void TRANSAV(const TranspositionGroups& groups, CView M, int n) {
  if (!groups.transposed) return;
  const Table<int, LDMAT>& transposed = groups.CTRANSP;
  addUp(groups, M, n);
  for (int j = 1; j <= n; ++j) {
    if (transposed[j] == 1) M(j, j) = sums.self[groups.leader[j] - 1].value();
    for (int i = 1; i < j; ++i) {
      if (transposed[i] != 1 && transposed[j] != 1) continue;
      M(i, j) = M(j, i) = sums.mutual[groups.leader[i] - 1][groups.leader[j] - 1].value();
    }
  }
}

} // namespace lcp
