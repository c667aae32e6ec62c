// Evaluates each pair of bodies of a cable system once; the earth-return value of a pair fills the
// elements of all conductors of the two bodies.
//
// The number of panels of an integral grows with the horizontal distance x over H, the sum of y_i
// and y_j. The aerial integral takes 11 x / H panels. In the buried one the cosine limits the width
// of a panel to 200 / sin theta, and the integrand extends to t = (D / H) (23 + sqrt(65 |m| H)) in
// a soil without displacement currents; from |m| H = 1060 the factor in front of the integral
// underflows, and it is not computed. For x up to 1e5 H both need about 1e5 panels. Beyond that,
// and in any other soil, the buried integrals stop at their limit of 1e7 panels with a message. The
// aerial integral has no limit, so such pairs are refused.
#include "cable/cable_earth.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/solve_error.h"
#include "cable/aerial_integral.h"
#include "cable/body.h"
#include "cable/earth_pairs.h"
#include "cable/exact_earth.h"
#include "overhead/earth_return.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <cmath>
#include <span>
#include <string>

namespace lcp {

namespace {

// ---- Bodies by number: that of a cable, or 0 for the pipe

constexpr int PIPE = 0;

bool inPipe(int c) { return RUNDATA.cable.CB[c].CBPIPE != 0; }

Body bodyOf(int number) { return number == PIPE ? pipeBody() : cableBody(number); }

std::string nameOf(int number) { return number == PIPE ? "Pipe" : cableName(number); }

// Conductors of a body; a cable in the pipe includes the pipe's conductor.
struct BodyRows {
  int row[5];
  int count = 0;

  std::span<const int> rows() const { return {row, static_cast<std::size_t>(count)}; }
};

BodyRows rowsOf(int number, const CableNumbering& N) {
  BodyRows R{};
  if (number != PIPE) {
    for (int k = N.first(number); k <= N.last(number); ++k) R.row[R.count++] = k;
  }
  if (number == PIPE || inPipe(number)) R.row[R.count++] = N.pipeRow;
  return R;
}

// ---- Checks

// In air log(2 y / r) exists if y and r have the same sign. In the ground the closed form and the
// integrals divide by m y and m r; the series does not. The exact integrals need a body below the
// surface.
bool hasEarthReturn(const Body& b) {
  if (b.aerial) return b.y * b.r > 0.0;
  if (RUNDATA.numerics.IMPROVEDEARTH) return b.y > 0.0 && b.r > 0.0;
  return RUNDATA.ground.EARTHFU == EARTHSERIES || b.y * b.r != 0.0;
}

// A negative depth has a value too, but is probably an error.
void checkBody(int number) {
  const Body b = bodyOf(number);
  if (hasEarthReturn(b)) {
    if (b.aerial || b.y > 0.0) return;
    console::warning(fmt::format("{}: a depth of {:.4g} m is not below the surface and counts as "
                                 "it stands",
                                 nameOf(number), b.y));
    return;
  }
  console::openStars();
  console::print("{}:", nameOf(number));
  console::print("Distance from the Surface ({:.4g} m) and Radius ({:.4g} m) Must be > 0!", b.y,
                 b.r);
  stopInStars();
}

void checkBodies(const CableNumbering& N) {
  for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) {
    if (!inPipe(c)) checkBody(c);
  }
  if (N.pipeRow != 0) checkBody(PIPE);
}

constexpr double FARBESIDE =
    1e5; // horizontal distance, of the sum of the distances from the surface

// Buried integrals have a limit of panels: the run ends, but late.
void noteFarBeside(int i, int j, double x, double H) {
  if (!SOLVEDATA.first.ISTATUS || x <= FARBESIDE * H) return;
  console::note(fmt::format("the earth return by integration of {} and {}, {:.4g} m apart, takes "
                            "millions of panels at each frequency",
                            nameOf(i), nameOf(j), x));
}

// Aerial integrals have none. x is the horizontal distance, or the radius for a single body; H is
// the sum of the distances from the surface.
void checkBeside(int i, int j, double x, double H) {
  if (x <= FARBESIDE * H) return;
  console::openStars();
  console::print("Earth Return by Integration of {} and {}:", nameOf(i), nameOf(j));
  console::print("Horizontal Distance or Radius ({:.4g} m) Must not be Above", x);
  console::print("{} Times the Distances from the Surface ({:.4g} m)!", FARBESIDE, H);
  stopInStars();
}

// ---- Values

// Pairs with bitwise equal geometry share the integrals.
struct PairKey {
  bool operator==(const PairKey&) const = default;

  double r;
  double x; // 0 for a single body
  double yi;
  double yj; // 0 for a single body
  bool aerial;
  bool toAerial;
};

constexpr int MOSTKEPT = 128; // further pairs are computed individually

struct EarthCall {
  double w;
  Complex m;
  LastKexpone kexpone;
  int kept = 0;
  Table<PairKey, MOSTKEPT> keys;
  Table<EarthValue, MOSTKEPT> values;
};

// The exact integrals, used in place of any formula. The first missed accuracy of a solve is
// reported.
bool TOLD = false;

void tellMissed(double w, const Body& i, const Body& j, const Estimated& E) {
  if (TOLD || !missesLimit(E)) return;
  TOLD = true;
  const double off = E.error / std::abs(E.value);
  console::note(fmt::format("the exact earth return at {:.4g} Hz between X = {:.4g} m and X = "
                            "{:.4g} m is accurate to {:.1e} only",
                            w / TWOPI, i.x, j.x, off));
}

EarthValue exactValue(double w, const Body& i, const Body& j, bool self) {
  const Complex p(0.0, w);
  const BodyPair g = self ? pairOf(i) : pairOf(i, j);
  ExactAerial value{{0.0, 0.0}, {0.0, 0.0}};
  if (i.aerial && j.aerial) {
    value = EXACTAERIAL(p, g);
  } else if (!i.aerial && !j.aerial) {
    value.Z = EXACTBURIED(p, g);
  } else {
    value.Z = i.aerial ? EXACTMIXED(p, i.y, j.y, g.x) : EXACTMIXED(p, j.y, i.y, g.x);
  }
  tellMissed(w, i, j, value.Z);
  return {value.Z.value, value.P.value};
}

EarthValue selfValue(EarthCall& call, const Body& b) {
  const Ground& G = RUNDATA.ground;
  if (RUNDATA.numerics.IMPROVEDEARTH) return exactValue(call.w, b, b, true);
  if (b.aerial) return EASELF(G.EARTHF, b, call.m, call.w);
  return {EBSELF(G.EARTHFU, b, call.m, call.kexpone), 0.0};
}

EarthValue mutualValue(EarthCall& call, const Body& i, const Body& j) {
  const Ground& G = RUNDATA.ground;
  if (RUNDATA.numerics.IMPROVEDEARTH) return exactValue(call.w, i, j, false);
  if (i.aerial != j.aerial) return {EMIX(G.EARTHFM, i, j, call.m), 0.0};
  if (i.aerial) return EAMUT(G.EARTHF, i, j, call.m, call.w);
  return {EBMUT(G.EARTHFU, i, j, call.m, call.kexpone), 0.0};
}

bool integrated(const Body& i, const Body& j) {
  const Ground& G = RUNDATA.ground;
  if (RUNDATA.numerics.IMPROVEDEARTH) return true;
  return i.aerial == j.aerial && (i.aerial ? G.EARTHF : G.EARTHFU) == EARTHINTEGRAL;
}

// Value for two bodies, given by number, or for a single body if the numbers are equal.
EarthValue valueOf(EarthCall& call, int i, int j) {
  const Body bi = bodyOf(i);
  const Body bj = bodyOf(j);
  const bool self = i == j;
  const double x = std::fabs(bi.x - bj.x);
  const bool keep = integrated(bi, bj);
  const PairKey key{bi.r, x, bi.y, self ? 0.0 : bj.y, bi.aerial, bj.aerial};
  const bool panels = keep && !RUNDATA.numerics.IMPROVEDEARTH;
  if (panels && bi.aerial) checkBeside(i, j, self ? bi.r : x, bi.y + bj.y);
  if (panels && !bi.aerial && !self) noteFarBeside(i, j, x, bi.y + bj.y);
  if (keep) {
    for (int k = 1; k <= call.kept; ++k) {
      if (call.keys[k] == key) return call.values[k];
    }
  }
  const EarthValue value = self ? selfValue(call, bi) : mutualValue(call, bi, bj);
  if (keep && call.kept < MOSTKEPT) {
    call.keys[++call.kept] = key;
    call.values[call.kept] = value;
  }
  return value;
}

// ---- Elements

struct Target {
  const CableNumbering& N;
  CView D;
  CView Q;
};

// Fills the block of two bodies and its mirror image.
void fill(const Target& to, int i, int j, const EarthValue& value) {
  const BodyRows I = rowsOf(i, to.N);
  const BodyRows J = rowsOf(j, to.N);
  for (const int r : I.rows()) {
    for (const int c : J.rows()) {
      to.D(r, c) = to.D(c, r) = value.Z;
      to.Q(r, c) = to.Q(c, r) = value.P;
    }
  }
}

// Fills all elements of the conductors in the pipe and of the pipe itself.
void fillPipe(const Target& to, const EarthValue& value) {
  for (int k = 1; k <= to.N.ninner; ++k) {
    for (int l = 1; l <= k; ++l) fill(to, to.N.inner[k], to.N.inner[l], value);
  }
}

} // namespace

void CBEARTH(double w, const CableNumbering& N, CView D, CView Q) {
  if (SOLVEDATA.first.ISTATUS) {
    checkBodies(N);
    FORGETAERIAL();
    TOLD = false;
  }
  const int n = RUNDATA.cable.NCABLE;
  const Target to{N, D, Q};
  EarthCall call{w, 1.0 / GRDDEPTH(w), {}, 0, {}, {}};
  for (int i = 1; i <= n; ++i) {
    if (!inPipe(i)) fill(to, i, i, valueOf(call, i, i));
    // The first cable in the pipe represents the whole pipe.
    if (inPipe(i) && i == N.inner[1]) fillPipe(to, valueOf(call, i, i));
    for (int j = 1; j < i; ++j) {
      if (!inPipe(i) || !inPipe(j)) fill(to, i, j, valueOf(call, i, j));
    }
  }
  if (N.pipeRow == 0 || N.ninner > 0) return;
  fill(to, PIPE, PIPE, valueOf(call, PIPE, PIPE));
  for (int j = 1; j <= n; ++j) fill(to, PIPE, j, valueOf(call, PIPE, j));
}

} // namespace lcp
