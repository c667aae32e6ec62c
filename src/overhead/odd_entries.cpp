#include "overhead/odd_entries.h"

#include "base/console.h"
#include "store/rundata.h"

#include <cmath>
#include <initializer_list>
#include <string>

namespace lcp {

namespace {

constexpr double TOOLARGE = 1e100;
constexpr double PERKM = 1000.0;

struct Entry {
  std::string_view key;
  double value;
  bool divisor = true; // a value of 0 is odd
};

bool isOdd(const Entry& e) {
  return !(std::fabs(e.value) < TOOLARGE) || (e.divisor && e.value == 0.0);
}

bool noteOdd(const std::string& owner, std::initializer_list<Entry> entries) {
  for (const Entry& e : entries) {
    if (!isOdd(e)) continue;
    const char* why = e.value == 0.0 ? ", and the formulas divide by it" : "";
    console::note(fmt::format("{}{} is {:.4g}{}", owner, e.key, e.value, why));
    return true;
  }
  return false;
}

bool noteOddSoil() {
  const Ground& G = RUNDATA.ground;
  if (noteOdd("", {{"GroundPermeability", G.GMUR}})) return true;
  if (!G.GRTYPE) return noteOdd("", {{"GroundResistivity", G.GRHO}});
  const bool conducts = G.GSIGLF != 0.0 || G.GFDSIG != 0.0;
  return noteOdd("", {{"Low Frequency Ground Conductivity", G.GSIGLF, !conducts},
                      {"FD Ground Conductivity and Permitivity", G.GFDSIG, false},
                      {"FD Factor", G.GFDFAC}});
}

bool noteOddConductor(int i) {
  const ConductorTable& C = RUNDATA.cond;
  const std::string owner =
      fmt::format("Conductor at X = {:.4g} m, Y = {:.4g} m: ", C.CX[i], C.CY[i]);
  if (noteOdd(owner, {{"DCResistance", C.CRDC[i] * PERKM},
                      {"Relative Permeability", C.CMUR[i]},
                      {"ShuntConductance", C.CSHUNT[i], false},
                      {"Radius", C.CRAD[i]},
                      {"P1", C.CX[i], false},
                      {"P1", C.CYAVG[i]}}))
    return true;
  if (C.CTUBE[i]) return noteOdd(owner, {{"Thickness", C.CTHICK[i]}});
  if (!C.CSTRND[i]) return false;
  return noteOdd(owner, {{"Strand Radius", C.CSTRAD[i]}, {"Total Number of Strands", C.CNTOT[i]}});
}

} // namespace

bool noteOddEntry() {
  if (noteOdd("", {{"Steady State Frequency", RUNDATA.line.SSFREQ}}) || noteOddSoil()) return true;
  const bool overhead = RUNDATA.run.ISCABLE == OVERHEADLINE; // cables have their own checks
  for (int i = 1; overhead && i <= RUNDATA.cond.NCOND; ++i) {
    if (noteOddConductor(i)) return true;
  }
  return false;
}

} // namespace lcp
