// In a cable system, role, circuit and transposition of overhead conductors are stored after the
// entries of the cables' conductors; the geometry columns keep their places.
#include "companions/shared/wires.h"

#include "base/constants.h"
#include "store/rundata.h"

#include <fmt/format.h>

namespace lcp::companions {

namespace {

int shift() { return RUNDATA.cable.MIXEDOH ? RUNDATA.line.NC - RUNDATA.cond.NCOND : 0; }

} // namespace

int roleOfWire(int i) {
  const int role = RUNDATA.cond.CMAP[i + shift()];
  return role > 0 ? role - shift() : role;
}

bool isGroundWire(int i) {
  const int role = roleOfWire(i);
  return role == MAPELIMINATED || role == MAPKEPT;
}

int mainOfWire(int i) {
  const int role = roleOfWire(i);
  return role > 0 ? role : i;
}

int circuitOfWire(int i) { return RUNDATA.cond.CCIRC[i + shift()]; }
int transpositionOfWire(int i) { return RUNDATA.cond.CTRANSP[i + shift()]; }

double resistivityOfWire(int i) {
  const ConductorTable& C = RUNDATA.cond;
  const double r = C.CRAD[i];
  const double ri = r - C.CTHICK[i];
  double area = PI * r * r;
  if (C.CSTRND[i]) area = PI * C.CSTRAD[i] * C.CSTRAD[i] * C.CNTOT[i];
  if (C.CTUBE[i]) area = PI * (r * r - ri * ri);
  return C.CRDC[i] * area;
}

std::string nameOfWire(int i) {
  const ConductorTable& C = RUNDATA.cond;
  const std::string_view what = isGroundWire(i) ? "ground wire" : "conductor";
  return fmt::format("the {} at x = {:.6g} m, y = {:.6g} m", what, C.CX[i], C.CY[i]);
}

} // namespace lcp::companions
