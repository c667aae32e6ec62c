#include "support/overhead_lines.h"

#include "overhead/overhead_zy.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>

namespace lcp::test {

namespace {

std::size_t at(int i) { return static_cast<std::size_t>(i); }

Dense corner(const LineMatrix& M, int n) {
  Dense A(at(n), std::vector<Wide>(at(n)));
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) A[at(i)][at(j)] = Wide(M(i + 1, j + 1));
  }
  return A;
}

void copyShape(int from, int to) {
  ConductorTable& C = RUNDATA.cond;
  for (CondReals* field : {&C.CRDC, &C.CRAD, &C.CTHICK, &C.CSTRAD, &C.CNOUT, &C.CNTOT, &C.CMUR})
    (*field)[to] = (*field)[from];
  C.CTUBE[to] = C.CTUBE[from];
  C.CSTRND[to] = C.CSTRND[from];
  C.CCIRC[to] = C.CCIRC[from];
  C.CTRANSP[to] = C.CTRANSP[from];
}

void giveShape(int i, LineNumbers& r) {
  ConductorTable& C = RUNDATA.cond;
  const int kind = r.upTo(0, 2);
  C.CTUBE[i] = kind == 1;
  C.CSTRND[i] = kind == 2;
  C.CTHICK[i] = C.CRAD[i] * r.between(0.2, 0.8);
  C.CNTOT[i] = 37;
  C.CNOUT[i] = 18;
  C.CSTRAD[i] = C.CRAD[i] / 7.0;
}

void addBehind(int main, int role, double dx, double dy) {
  ConductorTable& C = RUNDATA.cond;
  const int e = ++C.NCOND;
  setConductor(e, C.CX[main] + dx, C.CYAVG[main] + dy, 0.01, 1e-4);
  copyShape(main, e);
  C.CMAP[e] = role;
}

} // namespace

double LineNumbers::fraction() {
  state = state * 6364136223846793005U + 1442695040888963407U;
  return static_cast<double>(state >> 11) * 0x1p-53;
}

void setConductor(int i, double x, double y, double radius, double resistance) {
  ConductorTable& C = RUNDATA.cond;
  C.CX[i] = x;
  C.CY[i] = C.CYAVG[i] = y;
  C.CRAD[i] = radius;
  C.CRDC[i] = resistance;
  C.CMAP[i] = MAPMAIN;
}

void makeLine(std::uint64_t seed, const LineWish& wish) {
  RUNDATA = {};
  ConductorTable& C = RUNDATA.cond;
  LineNumbers r(seed);
  RUNDATA.run.LINELEN = r.between(1e3, 4e5);
  RUNDATA.ground.GRHO = std::pow(10.0, r.between(0.5, 3.8));
  RUNDATA.ground.GRTYPE = r.chance(0.3);
  const int kept = r.upTo(1, wish.mostKept);
  RUNDATA.line.NC = C.NCOND = kept;
  const int columns = (kept + 3) / 4; // places 6 m apart, so that wires stay clear of each other
  for (int i = 1; i <= kept; ++i) {
    const int place = i - 1;
    const int row = place / columns;
    const double dx = r.between(-2, 2);
    const double dy = r.between(-2, 2);
    const double radius = r.between(0.008, 0.02);
    setConductor(i, 6.0 * (place % columns) - 3.0 * columns + dx, 10.0 + 7.0 * row + dy, radius,
                 r.between(2e-5, 3e-4));
    giveShape(i, r);
    if (place % 3 == 0) ++C.NCIRC;
    C.CCIRC[i] = C.NCIRC;
    C.CTRANSP[i] = place % 3 == 0 ? wish.transposition && r.chance(0.5) : C.CTRANSP[i - 1];
    C.CSHUNT[i] = r.between(0, 1e-10);
    if (C.CTRANSP[i] == 0 && r.chance(0.1)) C.CMAP[i] = MAPKEPT;
  }
  const int sub = r.upTo(1, wish.mostBundle);
  for (int m = 1; m < sub; ++m) {
    const int row = m / 2;
    for (int i = 1; i <= kept; ++i) {
      if (C.CMAP[i] == MAPMAIN) addBehind(i, i, 0.45 * (m % 2), 0.45 * row);
    }
  }
  const int wires = r.upTo(0, wish.mostEliminated);
  for (int g = 0; g < wires; ++g) {
    const double dx = 9.0 * g + r.between(-2, 2);
    addBehind(1, MAPELIMINATED, dx, 33.0 + r.between(-2, 2));
  }
}

LineResult solveLine(double f, bool first) {
  FirstLoopStore& S = SOLVEDATA.first;
  LineResult result;
  S.ISTATUS = first;
  OHZY(f, result.length, S.YMAT, S.ZMAT, S.PMAT);
  S.ISTATUS = false;
  result.n = RUNDATA.line.NC;
  result.Y = corner(S.YMAT, result.n);
  result.Z = corner(S.ZMAT, result.n);
  result.P = corner(S.PMAT, result.n);
  return result;
}

Dense inverse(Dense A) {
  const std::size_t n = A.size();
  Dense B(n, std::vector<Wide>(n));
  for (std::size_t i = 0; i < n; ++i) B[i][i] = 1;
  for (std::size_t k = 0; k < n; ++k) {
    std::size_t p = k;
    for (std::size_t i = k; i < n; ++i) {
      if (std::abs(A[i][k]) > std::abs(A[p][k])) p = i;
    }
    std::swap(A[k], A[p]);
    std::swap(B[k], B[p]);
    const Wide v = 1.0L / A[k][k];
    for (std::size_t j = 0; j < n; ++j) {
      A[k][j] *= v;
      B[k][j] *= v;
    }
    for (std::size_t i = 0; i < n; ++i) {
      const Wide t = A[i][k];
      for (std::size_t j = 0; i != k && j < n; ++j) {
        A[i][j] -= t * A[k][j];
        B[i][j] -= t * B[k][j];
      }
    }
  }
  return B;
}

Dense product(const Dense& A, const Dense& B) {
  const std::size_t n = A.size();
  Dense C(n, std::vector<Wide>(n));
  for (std::size_t i = 0; i < n; ++i) {
    for (std::size_t k = 0; k < n; ++k) {
      for (std::size_t j = 0; j < n; ++j) C[i][j] += A[i][k] * B[k][j];
    }
  }
  return C;
}

double distance(const Dense& A, const Dense& B) {
  long double largest = 0;
  long double difference = 0;
  for (std::size_t i = 0; i < A.size(); ++i) {
    for (std::size_t j = 0; j < A.size(); ++j) {
      largest = std::max(largest, std::abs(B[i][j]));
      const long double d = std::abs(A[i][j] - B[i][j]);
      if (!(d <= difference)) difference = d; // NaN stays
    }
  }
  return static_cast<double>(difference / largest);
}

} // namespace lcp::test
