// Hungarian method with shortest augmenting paths, O(n^3). Row potentials u and column potentials v
// satisfy u(i) + v(j) <= cost(i,j), with equality where row i is assigned to column j. Rows are
// added one at a time: a shortest path over the reduced costs leads from the new row to a free
// column, and the rows along the path change columns. Column 0 represents the new row.
#include "improved/modes/assignment.h"

#include <algorithm>
#include <limits>

namespace lcp {

namespace {

struct Assignment {
  double u[LDMAT + 1];
  double v[LDMAT + 1];
  int row[LDMAT + 1];      // row assigned to the column, 0 if free
  int before[LDMAT + 1];   // previous column on the path
  double least[LDMAT + 1]; // least reduced cost of a path to the column
  bool reached[LDMAT + 1];
};

// Adds column j to the tree of paths and returns the nearest column outside it.
int growTree(Assignment& S, const RealMatrix& cost, int j, int n) {
  const int i = S.row[j];
  double step = std::numeric_limits<double>::max();
  int nearest = 0;
  S.reached[j] = true;
  for (int c = 1; c <= n; ++c) {
    if (S.reached[c]) continue;
    const double reduced = cost(i, c) - S.u[i] - S.v[c];
    if (reduced < S.least[c]) {
      S.least[c] = reduced;
      S.before[c] = j;
    }
    if (S.least[c] < step) {
      step = S.least[c];
      nearest = c;
    }
  }
  for (int c = 0; c <= n; ++c) {
    if (S.reached[c]) {
      S.u[S.row[c]] += step;
      S.v[c] -= step;
    } else {
      S.least[c] -= step;
    }
  }
  return nearest;
}

} // namespace

void ASSIGN(ModeInts& COLUMN, const RealMatrix& cost, int n) {
  Assignment S{};
  for (int i = 1; i <= n; ++i) {
    std::fill_n(S.least, n + 1, std::numeric_limits<double>::max());
    std::fill_n(S.reached, n + 1, false);
    S.row[0] = i;
    int j = 0;
    do {
      j = growTree(S, cost, j, n);
    } while (S.row[j] != 0);
    for (; j != 0; j = S.before[j]) S.row[j] = S.row[S.before[j]];
  }
  for (int j = 1; j <= n; ++j) COLUMN[S.row[j]] = j;
}

} // namespace lcp
