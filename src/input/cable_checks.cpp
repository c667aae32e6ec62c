// Depths are positive downwards: an aerial cable or pipe at height h has depth -h.
//
// Insulation between radii a and b with semi-conducting layers of thickness ti (inside) and to
// (outside) has the capacitance of insulation between a + ti and b - to. The radii are kept, and
// the permittivity is multiplied by
//
//   (ln b - ln a) / (ln(b - to) - ln(a + ti))
#include "input/cable_checks.h"

#include "base/console.h"
#include "base/number_forms.h"
#include "input/rule_frame.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace lcp {

namespace {

constexpr double SAMEPLACE = 1e-35; // m

struct Point {
  double x, y; // m, depth positive downwards
};

double distance(Point a, Point b) {
  const double dx = a.x - b.x;
  const double dy = a.y - b.y;
  return std::sqrt(dx * dx + dy * dy);
}

Point pipeCentre() {
  const PipeRecord& P = RUNDATA.cable.pipe;
  return {P.PIPEX, P.PIPEOVHD ? -P.PIPEY : P.PIPEY};
}

// Position from the origin of the right-of-way; ownPosition: as the cable gives it, without its
// pipe.
Point ownPosition(const Cable& C) { return {C.CBX, C.CBOVHD ? -C.CBY : C.CBY}; }

Point position(const Cable& C) {
  const Point own = ownPosition(C);
  if (C.CBPIPE == 0) return own;
  const Point centre = pipeCentre();
  return {own.x + centre.x, own.y + centre.y};
}

void checkUsed(int n) {
  if (RUNDATA.cable.CB.holds(n) && RUNDATA.cable.CB[n].CBUSED != 0) return;
  openRules();
  console::line("A unique and sequential cable number must be entered");
  console::line("for each cable in the right-of-way.");
  console::line();
  console::print("Data for cable {} has not been entered.", n);
  stopWithRules();
}

// Prints the lines after the names of two that overlap; d is the distance of their centres.
[[noreturn]] void stopWithOverlap(double d, double sumOfRadii) {
  console::line(" overall diameter and xy position!");
  console::print("     Centre Point Modulus = {}", scientificField(d, 10, 4));
  console::print("             Sum of Radii = {}", scientificField(sumOfRadii, 10, 4));
  stopWithRules();
}

void checkPair(int n, int m) {
  const Cable& N = RUNDATA.cable.CB[n];
  const Cable& M = RUNDATA.cable.CB[m];
  const Point a = position(N);
  const Point b = position(M);
  if (std::fabs(a.x - b.x) + std::fabs(a.y - b.y) <= SAMEPLACE) {
    openRules();
    console::print("Cables {} and {} have identical positions.", n, m);
    console::line("If you are using multiple cable components, ensure");
    console::line("the x-coordinate of each cable centre in the right-");
    console::line("of-way is properly entered.");
    stopWithRules();
  }
  const double d = distance(a, b);
  const double s = N.radius() + M.radius();
  if (d < s) {
    openRules();
    console::print("Cable {} and {} overlap, given their", integerField(n, 1), integerField(m, 1));
    stopWithOverlap(d, s);
  }
}

void checkInsidePipe(int n) {
  const Cable& C = RUNDATA.cable.CB[n];
  if (C.CBPIPE == 0) return;
  const double d = distance({C.CBX, C.CBY}, {0, 0});
  if (RUNDATA.cable.pipe.PIPERI > C.radius() + d) return;
  openRules();
  console::print("Part or all of inner cable {} is overlapping or", n);
  console::line("outside the encompassing pipe conductor in pipe");
  console::print("number {}.", C.CBPIPE);
  console::line("Adjust the position data of this cable so that it is");
  console::line("positioned wholly within the pipe inner radius.");
  stopWithRules();
}

void checkRadii(int n) {
  const Cable& C = RUNDATA.cable.CB[n];
  const auto last = C.CBRAD.begin() + C.CBNLAY + 1;
  if (std::adjacent_find(C.CBRAD.begin(), last, std::greater_equal<>()) == last) return;
  openRules();
  console::print("Invalid radius entered for cable {}.", n);
  console::line("The radius of each layer must be greater than the");
  console::line("radius of the previous layer.");
  stopWithRules();
}

void foldSemiConductors(int n) {
  Cable& C = RUNDATA.cable.CB[n];
  if (!C.CBSEMI) return;
  const double a = C.CBRAD[RADCORE];
  const double b = C.CBRAD[RADINSULATOR1];
  if (b - C.CBSEMIO <= 0 || C.CBSEMII + a <= 0) {
    openRules();
    console::line("Invalid semi-conductor layer thickness in cable");
    console::print("{}. Check semi-conductor thickness in relation to", n);
    console::line("Check semi-conductor thickness in relation ");
    console::line("other cable layer dimensions.");
    stopWithRules();
  }
  C.CBEPS[0] *= (std::log(b) - std::log(a)) / (std::log(b - C.CBSEMIO) - std::log(a + C.CBSEMII));
}

bool allBare() {
  const CableTable& T = RUNDATA.cable;
  for (int n = 1; n <= T.NCABLE; ++n) {
    if (!T.CB[n].CBBARE) return false;
  }
  if (RUNDATA.cond.NCOND != 0) return false;
  const bool insulated = T.pipe.PIPEOUTL == 1 && T.pipe.PIPEGND == 0;
  return !T.PIPEF || (!insulated && !T.pipe.PIPEOVHD);
}

} // namespace

void checkCables() {
  for (int n = 1; n <= RUNDATA.cable.NCABLE; ++n) {
    checkUsed(n);
    for (int m = 1; m < n; ++m) checkPair(n, m);
    checkInsidePipe(n);
    checkRadii(n);
    foldSemiConductors(n);
  }
  if (!allBare()) return;
  openRules();
  console::line("All cables are bare. There must be at least one");
  console::line("insulated cable in the system!");
  stopWithRules();
}

void checkPipes() {
  const CableTable& T = RUNDATA.cable;
  for (int p = 1; p <= T.NPIPE; ++p) {
    if (p <= MAXPIPE && T.pipe.PIPEUSED != 0) continue;
    openRules();
    console::line("A unique and sequential pipe number must be entered");
    console::line("for each pipe in the right-of-way.");
    console::line();
    console::print("Data for pipe {} has not been entered.", p);
    stopWithRules();
  }
  if (T.NPIPE == 0) return;
  for (int n = 1; n <= T.NCABLE; ++n) {
    const Cable& C = T.CB[n];
    const double d = distance(pipeCentre(), ownPosition(C));
    const double s = T.pipe.radius() + C.radius();
    if (C.CBPIPE != 0 || s <= d) continue;
    openRules();
    console::print("Pipe {} and cable{} overlap, given their", integerField(T.pipe.PIPEUSED, 1),
                   integerField(n, 1));
    stopWithOverlap(d, s);
  }
}

} // namespace lcp
