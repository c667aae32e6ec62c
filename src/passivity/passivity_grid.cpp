// With a = FLOW, c = FHIGH, N = NINC points:
//
//   logarithmic  f_i = 10^(log10 a + (i - 1) (log10 c - log10 a) / (N - 1)),  i = 1..N
//   linear       f_i = a + (i - 1) (c - a) / (N - 1)
//   by decades   m = floor(N / (log10 c - log10 a)) points in each full decade a .. 10 a, evenly
//                spaced from a; in the last one floor(m (c - a) / (9 a)) up to c. A decade whose
//                count is 0 gets the single point a.
//
// The formulas also hold for descending bounds: the first two run from a down to c; by decades the
// decade of a is the last one, and N and m have opposite signs. A decade with a negative count gets
// no point.
#include "passivity/passivity_grid.h"

#include "base/console.h"
#include "base/solve_error.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double SAMEFREQUENCY = 1.000000013351432e-10; // Hz, from a bound to the end of a decade
constexpr int MAXDECADES = 50;

struct Range {
  double low, high; // Hz
};

[[noreturn]] void refuseRange(Range R) {
  console::openStars();
  console::print("No Passivity Check from {:.4g} Hz to {:.4g} Hz!", R.low, R.high);
  console::line("Verify the Lower and Upper Frequency and their Distribution");
  stopInStars();
}

void checkRoom(double NGRID) {
  if (NGRID <= MAXPASSGRID) return;
  console::openStars();
  console::print("Too Many Frequencies for Passivity Check, Maximum of {} Allowed!", MAXPASSGRID);
  stopInStars();
}

// A single point has no step.
void checkSteps(int NINC) {
  checkRoom(NINC);
  if (NINC > 1) return;
  console::openStars();
  console::print("Too Few Frequency Increments for Passivity Check: {}", NINC);
  stopInStars();
}

void layLogarithmic(Range R, int NINC, FrequencyList& FGRID) {
  if (NINC < 1) return;
  checkSteps(NINC);
  if (!(R.low > 0 && R.high > 0)) refuseRange(R);
  const double first = std::log10(R.low);
  const double step = (std::log10(R.high) - first) / (NINC - 1);
  for (int i = 1; i <= NINC; ++i) FGRID.f[i] = std::pow(10.0, first + (i - 1) * step);
  FGRID.NGRID = NINC;
}

void layLinear(Range R, int NINC, FrequencyList& FGRID) {
  if (NINC < 1) return;
  checkSteps(NINC);
  if (!std::isfinite(R.high - R.low)) refuseRange(R);
  const double step = (R.high - R.low) / (NINC - 1);
  for (int i = 1; i <= NINC; ++i) FGRID.f[i] = R.low + (i - 1) * step;
  FGRID.NGRID = NINC;
}

// Appends n points from the lower end, without the upper end; only the lower end if n = 0, none if
// n < 0.
void append(FrequencyList& FGRID, Range part, double n) {
  if (n == 0) n = 1;
  checkRoom(FGRID.NGRID + n);
  const double step = (part.high - part.low) / n;
  for (int i = 0; i < static_cast<int>(n); ++i) FGRID.f[++FGRID.NGRID] = part.low + i * step;
}

void layDecades(Range R, int NINC, FrequencyList& FGRID) {
  const bool positive = R.low > 0 && R.high > 0;
  const double decades = positive ? std::log10(R.high) - std::log10(R.low) : 0;
  if (decades == 0) refuseRange(R);
  const double m = std::floor(NINC / decades);
  double a = R.low;
  for (int decade = 1; decade <= MAXDECADES; ++decade) {
    const double b = 10 * a;
    const bool full = std::fabs(R.high - b) < SAMEFREQUENCY;
    if (!full && R.high <= b) {
      append(FGRID, {a, R.high}, std::floor((R.high - a) * m / (b - a)));
      return;
    }
    append(FGRID, {a, b}, m);
    if (full) return;
    a = b;
  }
}

} // namespace

void PASSGRID(double FLOW, double FHIGH, int NINC, int DIST, FrequencyList& FGRID) {
  FGRID.NGRID = 0;
  if (DIST < GRIDLOGARITHMIC || DIST > GRIDDECADES) return;
  const Range R{FLOW, FHIGH};
  if (!std::isfinite(FLOW) || !std::isfinite(FHIGH)) refuseRange(R);
  switch (DIST) {
  case GRIDLOGARITHMIC: layLogarithmic(R, NINC, FGRID); break;
  case GRIDLINEAR: layLinear(R, NINC, FGRID); break;
  default: layDecades(R, NINC, FGRID);
  }
}

} // namespace lcp
