// In three minor sections of equal length, each conductor of a group takes each of the three
// positions in turn. With T the cyclic shift of all groups by one position and T' its transpose,
//
//   M = (M + T M T' + T' M T) / 3
//
// T is a permutation: (T M T')(i, j) is M at the positions that move to i and j, and (T' M T)(i, j)
// is M at the positions that i and j move to. The layers of the cables of a group rotate
// independently: conductors k of the cables of group g form the rotation group 4 (g - 1) + k.
#include "cable/crossbonding.h"

#include "base/console.h"
#include "base/stop.h"
#include "kernels/matrix_kernels.h"
#include "store/rundata.h"
#include "store/solvedata.h"

namespace lcp {

namespace {

constexpr int CABLEGROUPS = 4;
constexpr int LAYERS = 4;
constexpr int GROUPS = CABLEGROUPS * LAYERS;
constexpr int POSITIONS = 3;

struct RotationGroup {
  int count = 0;
  int place[POSITIONS]; // its conductors, ascending
};

struct Shift {
  Table<int, LDCABLE> from; // conductor from(i) moves to the position of i
  Table<int, LDCABLE> to;   // conductor i moves to the position of to(i)
};

CableMatrix original;

bool anyCableGroup() {
  for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) {
    if (RUNDATA.cable.CB[c].CBGROUP != 0) return true;
  }
  return false;
}

// Crossbonding flag of conductor k; the core is 1.
int mark(const Cable& C, int k) { return C.CBXBOND[static_cast<std::size_t>(k - 1)]; }

bool rotates(const Cable& C, int k) {
  return C.CBGROUP != 0 && (mark(C, k) == 1 || mark(C, k) == 2);
}

[[noreturn]] void refuse(const char* what) {
  console::rule('*', 37);
  console::line("Error: Crossbonding/transposition of cables");
  console::line();
  console::line("Check if there are three conductors in each");
  console::line(what);
  console::rule('*', 38);
  stop(1);
}

[[noreturn]] void refuseConductors() { refuse("cross-bonded/transposed group"); }

void addConductor(RotationGroup& group, int i) {
  if (group.count == POSITIONS) refuseConductors();
  group.place[group.count++] = i;
}

void collectGroups(Table<RotationGroup, GROUPS>& groups, const CableNumbering& N) {
  for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) {
    const Cable& C = RUNDATA.cable.CB[c];
    for (int k = 1; k <= C.conductors(); ++k) {
      if (!rotates(C, k)) continue;
      if (C.CBGROUP < 1 || C.CBGROUP > CABLEGROUPS) refuseConductors();
      addConductor(groups[LAYERS * (C.CBGROUP - 1) + k], N.first(c) + k - 1);
    }
  }
  for (const RotationGroup& group : groups.entries) {
    if (group.count != 0 && group.count != POSITIONS) refuseConductors();
  }
}

void checkPipe() {
  const CableTable& T = RUNDATA.cable;
  if (T.NPIPE == 0) return;
  for (int g = 1; g <= CABLEGROUPS; ++g) {
    int count = 0;
    for (int c = 1; c <= T.NCABLE; ++c) count += T.CB[c].CBPIPE == 1 && T.CB[c].CBGROUP == g;
    if (count != 0 && count != POSITIONS) refuse("Pipe");
  }
}

void formShift(Shift& T, const Table<RotationGroup, GROUPS>& groups, int n) {
  for (int i = 1; i <= n; ++i) T.from[i] = T.to[i] = i;
  for (const RotationGroup& group : groups.entries) {
    if (group.count == 0) continue;
    for (int m = 0; m < POSITIONS; ++m) {
      const int next = group.place[(m + 1) % POSITIONS];
      T.to[group.place[m]] = next;
      T.from[next] = group.place[m];
    }
  }
}

void average(CView M, const Shift& T, int n) {
  copyCorner(original, M, n);
  const CableMatrix& A = original;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      M(i, j) = (A(i, j) + A(T.from[i], T.from[j]) + A(T.to[i], T.to[j])) / 3.0;
    }
  }
}

// A crossbonded sheath is at ground potential on average, so its current is eliminated. If the
// outermost conductor is to be grounded as well, both are.
void eliminateSheath(Cable& C) {
  const int n = C.conductors();
  switch (C.CBGLAST) {
  case GROUNDNOTHING:
    C.CBELIM1 = true;
    C.CBELIM2 = C.CBELIM3 = false;
    break;
  case GROUNDLAST:
    if (n != 3 && n != 4) return;
    C.CBELIM1 = true;
    C.CBELIM2 = n == 3;
    if (n == 4) C.CBELIM3 = true;
    break;
  case GROUNDCHOSEN: C.CBELIM1 = true; break;
  default: return;
  }
  C.CBGLAST = GROUNDCHOSEN;
}

} // namespace

void XBOND(CView Z, CView Y, const CableNumbering& N) {
  if (!anyCableGroup()) return;
  Table<RotationGroup, GROUPS> groups;
  Shift T;
  collectGroups(groups, N);
  checkPipe();
  formShift(T, groups, N.total);
  average(Z, T, N.total);
  average(Y, T, N.total);
  if (!SOLVEDATA.first.ISTATUS) return;
  for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) {
    Cable& C = RUNDATA.cable.CB[c];
    if (mark(C, 2) == 1) eliminateSheath(C);
  }
}

} // namespace lcp
