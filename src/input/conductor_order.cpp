#include "input/conductor_order.h"

#include "base/console.h"
#include "base/number_forms.h"
#include "base/stop.h"
#include "store/rundata.h"

#include <utility>

namespace lcp {

namespace {

void exchangeEntries(int a, int b) {
  ConductorTable& C = RUNDATA.cond;
  for (CondInts ConductorTable::*field : {&ConductorTable::CCIRC, &ConductorTable::CMAP,
                                          &ConductorTable::CTRANSP, &ConductorTable::CPHASE}) {
    std::swap((C.*field)[a], (C.*field)[b]);
  }
  for (CondReals ConductorTable::*field :
       {&ConductorTable::CX, &ConductorTable::CY, &ConductorTable::CSAG, &ConductorTable::CYAVG,
        &ConductorTable::CRDC, &ConductorTable::CRAD, &ConductorTable::CSHUNT,
        &ConductorTable::CTHICK, &ConductorTable::CSTRAD, &ConductorTable::CNOUT,
        &ConductorTable::CNTOT, &ConductorTable::CMUR}) {
    std::swap((C.*field)[a], (C.*field)[b]);
  }
  std::swap(C.CTUBE[a], C.CTUBE[b]);
  std::swap(C.CSTRND[a], C.CSTRND[b]);
}

// Returns the number of equivalent conductors.
int equivalentsToFront() {
  ConductorTable& C = RUNDATA.cond;
  int p = 1;
  for (int i = 1; i <= C.NCOND; ++i) {
    if (C.CMAP[i] != MAPMAIN && C.CMAP[i] != MAPKEPT) continue;
    if (i != p) {
      exchangeEntries(i, p);
      for (int l = i + 1; l <= C.NCOND && C.CMAP[p] == MAPMAIN; ++l) {
        if (C.CMAP[l] == i) C.CMAP[l] = p;
      }
    }
    ++p;
  }
  return p - 1;
}

void membersBehind(int equivalents) {
  ConductorTable& C = RUNDATA.cond;
  int p = equivalents + 1;
  for (int i = p; i <= C.NCOND; ++i) {
    if (C.CMAP[i] <= 0) continue;
    if (i != p) exchangeEntries(i, p);
    ++p;
  }
}

[[noreturn]] void countMismatch(int equivalents) {
  console::openStars();
  console::line("# of Equivalent Conductors in Line Constants");
  console::line(" does not match # of Connection Nodes!");
  console::print(" # of Connection Nodes:             {}", integerField(RUNDATA.line.NC, 4));
  console::print(" # of Conductors in Line Constants: {}", integerField(equivalents, 4));
  console::line("The Number of Connection Nodes is defined in the");
  console::line("ORVEX page where the corvo_interface");
  console::line("component connects conductors to the circuit.");
  console::line("The Number of Conductors is defined by");
  console::line("the number of towers and conductors in each tower.");
  console::line("(note Ground wires which are eliminated are not");
  console::line("counted as equivalent conductors).");
  console::closeStars();
  stop(1);
}

void openPhasingError() {
  console::openStars();
  console::line("Incorrect Phasing Information for Conductors");
  console::line(" in Line Constants!");
}

void checkPhase(int p) {
  const int v = RUNDATA.cond.CPHASE[p];
  const int NC = RUNDATA.line.NC;
  if (v >= 1 && v <= NC) return;
  openPhasingError();
  console::print(" Phasing Value of              {}", integerField(v, 4));
  console::print(" Invalid since there are only: {} Conductors!", integerField(NC, 4));
  console::closeStars();
  stop(1);
}

[[noreturn]] void nodeMissing(int p) {
  openPhasingError();
  console::print(" Connection Information for Conductor #  {}", integerField(p, 4));
  console::line(" Does not Exist!");
  console::closeStars();
  stop(1);
}

} // namespace

void orderConductors() {
  const int equivalents = equivalentsToFront();
  if (RUNDATA.run.ISCABLE == CABLESYSTEM) RUNDATA.line.NC = equivalents;
  if (RUNDATA.run.ISCABLE == OVERHEADLINE && equivalents != RUNDATA.line.NC) {
    countMismatch(equivalents);
  }
  membersBehind(equivalents);
}

void orderNodes() {
  ConductorTable& C = RUNDATA.cond;
  const int NC = RUNDATA.line.NC;
  for (int p = 1; p <= NC; ++p) {
    checkPhase(p);
    int partner = 0;
    for (int k = 1; k <= NC; ++k) {
      if (C.CPHASE[k] != p) continue;
      exchangeEntries(k, p);
      partner = k;
    }
    if (partner == 0) nodeMissing(p);
    // Bundle members follow their main conductor.
    for (int k = NC + 1; k <= C.NCOND; ++k) {
      if (C.CMAP[k] == partner) {
        C.CMAP[k] = p;
      } else if (C.CMAP[k] == p) {
        C.CMAP[k] = partner;
      }
    }
  }
}

} // namespace lcp
