// With r the outer radius of a conductor, ri the radius of its hole, rs the radius of its n strands
// and R its DC resistance per metre, the resistivity follows from the cross-section of the metal:
//
//   tube      pi (r^2 - ri^2) R
//   strands   pi rs^2 n R
//   solid     pi r^2 R
#include "input/cable_data.h"

#include "base/console.h"
#include "base/constants.h"
#include "input/open_cable.h"
#include "input/reader_store.h"
#include "store/rundata.h"

namespace lcp {

namespace {

constexpr double LEASTWALL = 1e-20; // m

void scaleLosses(FourLayers& tangents, double factor) {
  for (double& t : tangents) t *= factor;
}

// The factor applied to a loss tangent that is given at frequency f, 1/s.
double lossFactor(double f) { return RUNDATA.fit.DIELM == 1 ? TWOPI * f : 0.0; }

void copyLayers(const Cable& from, Cable& to) {
  to.CBSOLID = from.CBSOLID;
  to.CBNLAY = from.CBNLAY;
  to.CBGLAST = from.CBGLAST;
  to.CBSEMII = from.CBSEMII;
  to.CBSEMIO = from.CBSEMIO;
  to.CBSEMI = from.CBSEMI;
  to.CBBARE = from.CBBARE;
  to.CBELIM1 = from.CBELIM1;
  to.CBELIM2 = from.CBELIM2;
  to.CBELIM3 = from.CBELIM3;
  to.CBRHO = from.CBRHO;
  to.CBEPS = from.CBEPS;
  to.CBTAND = from.CBTAND;
  to.CBXBOND = from.CBXBOND;
  to.CBRAD = from.CBRAD;
  to.CBMU = from.CBMU;
}

// Number of conductors of cables and pipes, which precede the overhead conductors.
int cableConductors() {
  int m = RUNDATA.cable.NPIPE;
  for (int n = 1; n <= RUNDATA.cable.NCABLE; ++n) m += RUNDATA.cable.CB[n].conductors();
  return m;
}

void moveUp(int m) {
  ConductorTable& C = RUNDATA.cond;
  for (int i = C.NCOND; i >= 1; --i) {
    C.CCIRC[i + m] = C.CCIRC[i];
    C.CTRANSP[i + m] = C.CTRANSP[i];
    C.CMAP[i + m] = C.CMAP[i] > 0 ? C.CMAP[i] + m : C.CMAP[i];
  }
  ++C.NCIRC;
  for (int i = 1; i <= m; ++i) {
    C.CCIRC[i] = C.NCIRC;
    C.CTRANSP[i] = 0;
    C.CMAP[i] = MAPMAIN;
  }
}

void convertCore(int i, Cable& to) {
  const ConductorTable& C = RUNDATA.cond;
  const double r = C.CRAD[i];
  if (C.CTHICK[i] > LEASTWALL) {
    const double ri = r - C.CTHICK[i];
    to.CBRAD[RADCOREINNER] = ri;
    to.CBRHO[0] = PI * (r * r - ri * ri) * C.CRDC[i];
  } else if (C.CSTRND[i]) {
    to.CBRHO[0] = PI * C.CSTRAD[i] * C.CSTRAD[i] * C.CNTOT[i] * C.CRDC[i];
    to.CBSTRND = true;
    to.CBSTRAD = C.CSTRAD[i];
    to.CBNOUT = C.CNOUT[i];
    to.CBNTOT = C.CNTOT[i];
  } else {
    to.CBRHO[0] = PI * r * r * C.CRDC[i];
    to.CBSOLID = true;
  }
}

Cable aerialCable(int i, int number, int role) {
  const ConductorTable& C = RUNDATA.cond;
  Cable to;
  to.CBUSED = number;
  to.CBNLAY = 1;
  to.CBOVHD = true;
  to.CBX = C.CX[i];
  to.CBY = C.CYAVG[i];
  to.CBRAD[RADCORE] = C.CRAD[i];
  to.CBMU[0] = C.CMUR[i];
  to.CBGAER = C.CSHUNT[i];
  convertCore(i, to);
  if (role == MAPELIMINATED) {
    to.CBBARE = true;
    to.CBGLAST = GROUNDCHOSEN;
  }
  return to;
}

} // namespace

void deriveCableData() {
  CableTable& T = RUNDATA.cable;
  const double inPipe = lossFactor(T.pipe.PIPEFTAN);
  for (Cable& C : T.CB.entries)
    scaleLosses(C.CBTAND, C.CBPIPE == 0 ? lossFactor(C.CBFTAN) : inPipe);
  T.pipe.PIPETANI *= inPipe;
  T.pipe.PIPETANO *= inPipe;
  if (!READER.identicalCables || !T.CB.holds(READER.masterCable)) return;
  const Cable& master = T.CB[READER.masterCable];
  for (Cable& C : T.CB.entries) {
    if (C.CBPIPE != 0 && &C != &master) copyLayers(master, C);
  }
}

void convertOverheadConductors() {
  CableTable& T = RUNDATA.cable;
  const ConductorTable& C = RUNDATA.cond;
  const int m = cableConductors();
  checkConductorCount(C.NCOND + m);
  checkCableCount(T.NCABLE + C.NCOND);
  moveUp(m);
  for (int i = 1; i <= C.NCOND; ++i) {
    const int n = T.NCABLE + i;
    T.CB[n] = aerialCable(i, n, C.CMAP[i + m]);
  }
  T.ANYOVHD = true;
  T.NCABLE += C.NCOND;
  T.overhead = C.NCOND;
  RUNDATA.line.NC = C.NCOND + m;
}

} // namespace lcp
