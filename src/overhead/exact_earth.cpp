// For mu_r = 1 the integral has a closed form, used where its series are short. Elsewhere it is
// computed along a path.
//
// Pairs of conductors share one integral if their sums of heights and their distances agree to
// 1.5e-11 m, which is common with bundles and symmetric towers. A hash table, built at the first
// frequency, finds them.
#include "overhead/exact_earth.h"

#include "base/big_store.h"
#include "base/console.h"
#include "base/constants.h"
#include "overhead/earth_quadrature.h"
#include "overhead/earth_return.h"
#include "overhead/struve_form.h"
#include "store/capacities.h"
#include "store/rundata.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace lcp {

namespace {

constexpr double MICRO = 1e-6;

// One sign of x, and the sum over both.
Estimated oneSide(Complex m, const PathWeight& w, double h, double y, double x) {
  const PathIntegral I = PATHINTEGRAL(0.5 * m * Complex(h + y, -x), 0.5 * m * Complex(y - h, x), w);
  return {I.value, I.error};
}

Estimated sum(const Estimated& a, const Estimated& b) {
  return {a.value + b.value, a.error + b.error};
}

Estimated bothSides(Complex m, const PathWeight& w, double h, double y, double x) {
  const Estimated one = oneSide(m, w, h, y, x);
  return sum(one, x == 0.0 ? one : oneSide(m, w, h, y, -x));
}

// Carson's integral without permeability.
Estimated carsonSide(Complex m, double H, double x) {
  constexpr double CLOSEDERROR = 2e-14;
  const StruveForm closed = STRUVE(m * Complex(H, -x));
  if (closed.taken) return {closed.value, CLOSEDERROR * std::abs(closed.value)};
  return oneSide(m, weightOfRatio(1.0), H, 0.0, x);
}

// ---- Pairs

struct PairGeometry {
  double H; // sum of heights, m
  double x; // horizontal distance, not negative, m
};

constexpr int MOSTPAIRS = MAXCOND * (MAXCOND + 1) / 2;
constexpr int MOSTPLACES = 1 << 20;
static_assert(MOSTPAIRS < MOSTPLACES / 2);

struct ExactStore {
  int pairs; // distinct ones
  bool told;
  MappedMatrix<int> number; // pair of the conductors i and j
  Table<PairGeometry, MOSTPAIRS> of;
  Table<Complex, MOSTPAIRS> value;
  int places;            // a power of 2, at least twice the number of pairs
  int place[MOSTPLACES]; // hash table of pair numbers, 0: empty
};

// Mapped at the first use.
ExactStore* EXACT = nullptr;

ExactStore& exact() {
  if (EXACT == nullptr) EXACT = &bigStore<ExactStore>();
  return *EXACT;
}

constexpr double GRIDS = 0x1p36; // steps in a metre; geometry is compared in whole steps

bool same(const PairGeometry& a, const PairGeometry& b) {
  return std::round(a.H * GRIDS) == std::round(b.H * GRIDS) &&
         std::round(a.x * GRIDS) == std::round(b.x * GRIDS);
}

// The entry of a pair, or the empty one where it belongs.
int& placeOf(const PairGeometry& pair) {
  constexpr std::uint64_t MIX = 0x9E3779B97F4A7C15; // 2^64 over the golden ratio
  ExactStore& S = exact();
  const auto H = std::bit_cast<std::uint64_t>(std::round(pair.H * GRIDS));
  const auto x = std::bit_cast<std::uint64_t>(std::round(pair.x * GRIDS));
  const std::uint64_t mixed = ((H * MIX) ^ std::rotl(x, 32)) * MIX;
  int p = static_cast<int>((mixed >> 40) & static_cast<std::uint64_t>(S.places - 1));
  while (S.place[p] != 0 && !same(S.of[S.place[p]], pair)) p = (p + 1) & (S.places - 1);
  return S.place[p];
}

int numberOf(const PairGeometry& pair) {
  ExactStore& S = exact();
  int& number = placeOf(pair);
  if (number == 0) {
    number = ++S.pairs;
    S.of[number] = pair;
  }
  return number;
}

void forgetPairs(int n) {
  ExactStore& S = exact();
  S.places = static_cast<int>(std::bit_ceil(static_cast<unsigned>(n * (n + 1))));
  std::fill_n(S.place, S.places, 0);
  S.pairs = 0;
  S.told = false;
}

void tell(const PairGeometry& pair, double w, double off) {
  console::note(fmt::format("the exact earth return at {:.4g} Hz of conductors {:.4g} m apart with "
                            "heights of {:.4g} m in sum is accurate to {:.1e} only",
                            w / TWOPI, pair.x, pair.H, off));
  exact().told = true;
}

} // namespace

Complex complexAdmittivity(Complex p) {
  const Ground& G = RUNDATA.ground;
  if (p.real() == 0.0 && p.imag() > 0.0) return soilAdmittivity(p.imag());
  // (j w)^a / sin(pi a / 2) is w^a (j + 1 / tan(pi a / 2)).
  const Complex power = std::pow(p * (MICRO / TWOPI), G.GFDFAC);
  return G.GSIGLF + G.GFDSIG * power / std::sin(HALFPI14 * G.GFDFAC);
}

Complex exactReciprocalDepth(Complex p) {
  const Ground& G = RUNDATA.ground;
  const Complex pmu = p * (G.GMUR * MU0);
  return std::sqrt(G.GRTYPE ? pmu * complexAdmittivity(p) : pmu / G.GRHO);
}

Estimated EARTHPATH(Complex m, Complex c, double h, double y, double x) {
  // A negative permeability puts poles on the path.
  if (!(c.real() >= 0.0)) return {std::numeric_limits<double>::quiet_NaN(), 0.0};
  return bothSides(m, weightOfRatio(c), h, y, x);
}

Estimated EARTHPATHBESIDE(Complex m, Complex k, double h, double x) {
  return bothSides(m, weightBeside(k), h, 0.0, x);
}

Estimated EXACTCARSON(Complex p, double H, double x) {
  const double mur = RUNDATA.ground.GMUR;
  const Complex m = exactReciprocalDepth(p);
  if (mur == 1.0) {
    const Estimated one = carsonSide(m, H, x);
    return sum(one, x == 0.0 ? one : carsonSide(m, H, -x));
  }
  const Estimated E = EARTHPATH(m, mur, H, 0.0, x);
  return {mur * E.value, mur * E.error};
}

void PREPAREEXACT(int n) {
  const ConductorTable& C = RUNDATA.cond;
  ExactStore& S = exact();
  forgetPairs(n);
  S.number.map(n);
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= j; ++i) {
      const double x = i == j ? 0.0 : std::fabs(C.CX[i] - C.CX[j]);
      S.number(i, j) = S.number(j, i) = numberOf({C.CYAVG[i] + C.CYAVG[j], x});
    }
  }
}

void SOLVEEXACT(double w) {
  ExactStore& S = exact();
  for (int k = 1; k <= S.pairs; ++k) {
    const Estimated E = EXACTCARSON({0.0, w}, S.of[k].H, S.of[k].x);
    S.value[k] = E.value;
    if (!S.told && missesLimit(E)) tell(S.of[k], w, E.error / std::abs(E.value));
  }
}

bool missesLimit(const Estimated& E) { return !(E.error <= EXACTLIMIT * std::abs(E.value)); }

Complex EXACTTERM(int i, int j) { return EXACT->value[EXACT->number(i, j)]; }

} // namespace lcp
