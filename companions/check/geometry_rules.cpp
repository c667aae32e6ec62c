#include "companions/check/geometry_rules.h"

#include "base/constants.h"
#include "companions/check/materials.h"
#include "companions/check/strand_rules.h"
#include "companions/check/traced.h"
#include "companions/shared/wires.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double LEASTGAP = 1e-3;        // m, between two phases
constexpr double THINRADIUS = 8.5e-3;    // m: a phase conductor up to this can be of steel
constexpr double LOWEST = 1.5;           // m above the ground, at mid-span
constexpr double HIGHEST = 250;          // m, at a river crossing
constexpr double WIDEST = 70;            // m, from phase to phase of a circuit
constexpr double MOSTCONDUCTANCE = 5e-9; // S/m: the susceptance at 60 Hz
constexpr double MOSTBUNDLE = 2;         // m, between sub-conductors
constexpr double TOUCHINGPAIR = 1.3, OPENPAIR = 4; // diameters: twisted pair, smallest spacers
constexpr double TOUCHING = 1 - 1e-6;              // diameters, rounded
constexpr double NEEDSWIRE = 20; // m: a line as high as this usually has a ground wire
constexpr Range SOILS = {0.1, 1e5};
constexpr Range STEELWIRES = {5e-8, 1e-6};
constexpr Range ANYWIRE = {0, 1};           // strands of steel and aluminium side by side
constexpr double MOSTSOILPERMITTIVITY = 85; // of water

// --- one conductor

struct Slip {
  double factor; // of the resistivity, where this explains it
  std::string better;
};

// Sub-conductors of the bundle of conductor i.
int bundleSize(int i) {
  int n = 0;
  for (int j = 1; j <= RUNDATA.cond.NCOND; ++j) n += mainOfWire(j) == mainOfWire(i) ? 1 : 0;
  return n;
}

// What gives the metal a usual resistivity: a resistance or radii with another unit or meaning.
std::string betterMetal(int i, double rho) {
  const ConductorTable& C = RUNDATA.cond;
  const double R = C.CRDC[i] * KM, r = C.CRAD[i];
  const int n = bundleSize(i);
  const bool byRadius = C.CTUBE[i] || !C.CSTRND[i];
  const Range usual = isGroundWire(i) ? Range{2.5e-8, 3.5e-7} : Range{1.6e-8, 6.5e-8};
  const auto resistance = [&](double factor) {
    return fmt::format("; DCResistance: {:.4g} would be", R * factor);
  };
  const auto radius = [&](double factor, std::string_view why) {
    return fmt::format("; Radius: {:.4g} would be, {}", r * factor, why);
  };
  const Slip slips[] = {
      {double(n > 1 ? n : 0), resistance(n) + ", of one sub-conductor"},
      {byRadius ? 0.25 : 0, radius(0.5, "if this is the diameter")},
      {byRadius ? 4.0 : 0, radius(2, "if this is half of it")},
      {-1, resistance(-1)},
      {10, resistance(10)},
      {0.1, resistance(0.1)},
      {1000, resistance(1000) + ", if this is ohm/m"},
      {byRadius ? 1e-6 : 0, radius(1e-3, "if this is in mm")},
      {byRadius ? 1e-4 : 0, radius(1e-2, "if this is in cm")},
      {byRadius ? 100.0 : 0, radius(10, "ten times as much")},
      {1e-3, resistance(1e-3)},
  };
  for (const Slip& s : slips) {
    if (usual.holds(rho * s.factor)) return s.better;
  }
  return R == 0 ? "; DCResistance must be given" : r == 0 ? "; Radius must be given" : "";
}

void metal(Findings& findings, int i, int section, const std::string& name) {
  const ConductorTable& C = RUNDATA.cond;
  const double rho = resistivityOfWire(i), hole = C.CRAD[i] - C.CTHICK[i];
  if (C.CTUBE[i] && (hole < 0 || C.CTHICK[i] <= 0)) {
    addOnce(findings, std::max(lineOrHeading(&C.CRAD, section), innerRadiusLine(section)),
            Kind::Hole, name, number(hole), number(C.CRAD[i]));
    return;
  }
  Range usual = isGroundWire(i) ? GROUNDWIRES : COPPERALUMINIUM;
  if (!isGroundWire(i) && C.CRAD[i] <= THINRADIUS) usual = THINWIRES;
  resistivity(findings, lineOrHeading(&C.CRDC, section), name, rho, usual, betterMetal(i, rho));
  metalPermeability(findings, lineOrHeading(&C.CMUR, section), name, C.CMUR[i], rho,
                    isGroundWire(i) ? ANYWIRE : STEELWIRES);
}

void height(Findings& findings, int i, int section, const std::string& name) {
  const ConductorTable& C = RUNDATA.cond;
  const double lowest = C.CY[i] - C.CSAG[i];
  if (C.CRAD[i] >= C.CYAVG[i]) {
    addOnce(findings, lineOrHeading(&C.CRAD, section), Kind::RadiusAboveHeight, name,
            number(C.CRAD[i]), number(C.CYAVG[i]));
  }
  const int sagLine = lineOrHeading(&C.CSAG, section);
  if (C.CSAG[i] > 0 && lowest <= 0) {
    addOnce(findings, sagLine, Kind::SagAboveHeight, name, number(C.CSAG[i]), number(C.CY[i]));
  } else if (C.CSAG[i] < 0) {
    addOnce(findings, sagLine, Kind::UnusualNumber, "Sag", number(C.CSAG[i]),
            fmt::format("values above 0; {:.4g} would be", -C.CSAG[i]));
  } else if (C.CY[i] > HIGHEST || (C.CY[i] > 0 && lowest < LOWEST)) {
    const bool sag = C.CY[i] <= HIGHEST && C.CSAG[i] > 0;
    addOnce(findings, sag ? sagLine : positionLine(section), Kind::Clearance, name, number(C.CY[i]),
            number(lowest) + " m; usual are 1.5 to 250" + powerOfTen(C.CY[i], 5, 100));
  }
}

void conductance(Findings& findings, int i, int section, const std::string& name) {
  const double G = RUNDATA.cond.CSHUNT[i];
  const std::string_view why = G < 0 ? ", below 0" : ", above the susceptance at 60 Hz";
  if (G < 0 || G > MOSTCONDUCTANCE) {
    addOnce(findings, lineOrHeading(&RUNDATA.cond.CSHUNT, section), Kind::Conductance, name,
            number(G), why);
  }
}

void oneWire(Findings& findings, int i) {
  const ConductorTable& C = RUNDATA.cond;
  const int section = sectionOfConductor(C.CX[i], C.CY[i]);
  const std::string name = nameOfWire(i);
  height(findings, i, section, name);
  metal(findings, i, section, name);
  conductance(findings, i, section, name);
  if (C.CSTRND[i]) strandRules(findings, i, section, name);
}

// --- two conductors

void bundled(Findings& findings, int i, int section, double d) {
  const double diameter = 2 * RUNDATA.cond.CRAD[i];
  if (d < diameter * TOUCHING) {
    addOnce(findings, bundleLine(section), Kind::TightBundle, nameOfWire(mainOfWire(i)), number(d),
            number(diameter));
  }
}

// The nearest sub-conductor of the same bundle: it touches, or spacers hold it.
void bundleSpacing(Findings& findings, int i) {
  const ConductorTable& C = RUNDATA.cond;
  double d = INFINITY;
  for (int j = 1; j <= C.NCOND; ++j) {
    if (j != i && mainOfWire(j) == mainOfWire(i))
      d = std::min(d, std::hypot(C.CX[i] - C.CX[j], C.CY[i] - C.CY[j]));
  }
  const double diameter = 2 * C.CRAD[i];
  const bool wide = std::isfinite(d) && d > MOSTBUNDLE;
  if (!wide && (d < diameter * TOUCHINGPAIR || d > diameter * OPENPAIR)) return;
  addOnce(findings, bundleLine(sectionOfConductor(C.CX[i], C.CY[i])), Kind::Spacing,
          "two sub-conductors of " + nameOfWire(mainOfWire(i)), number(d),
          fmt::format(", usual are 0.2 to 0.6{}", powerOfTen(d, 0.2, 0.6)));
}

void twoWires(Findings& findings, int i, int j) {
  const ConductorTable& C = RUNDATA.cond;
  const double d = std::hypot(C.CX[i] - C.CX[j], C.CY[i] - C.CY[j]);
  const double radii = C.CRAD[i] + C.CRAD[j];
  const int section = sectionOfConductor(C.CX[j], C.CY[j]);
  const bool oneCircuit =
      circuitOfWire(i) == circuitOfWire(j) && !isGroundWire(i) && !isGroundWire(j);
  if (mainOfWire(i) == mainOfWire(j)) {
    bundled(findings, i, section, d);
  } else if (d < std::max(radii, LEASTGAP)) {
    addOnce(findings, positionLine(section), Kind::Touching, nameOfWire(i), nameOfWire(j),
            number(d));
  } else if (oneCircuit && std::fabs(C.CX[i] - C.CX[j]) > WIDEST) {
    addOnce(findings, positionLine(section), Kind::Spacing, nameOfWire(i) + " and " + nameOfWire(j),
            number(d), ", in one circuit usual are up to 30" + powerOfTen(d, 3, 30));
  }
}

void wireAbove(Findings& findings) {
  const ConductorTable& C = RUNDATA.cond;
  double phases = 0, wires = 0;
  bool any = false;
  int line = 0;
  for (int i = 1; i <= C.NCOND; ++i) {
    const bool wire = isGroundWire(i);
    double& highest = wire ? wires : phases;
    highest = std::max(highest, C.CY[i]);
    any = any || wire;
    if (wire) line = positionLine(sectionOfConductor(C.CX[i], C.CY[i]));
  }
  if ((any || phases >= NEEDSWIRE) && wires <= phases) add(findings, line, Kind::NoWireAbove);
}

// --- nodes

int mains(int role) {
  int n = 0;
  for (int i = 1; i <= RUNDATA.cond.NCOND; ++i) n += roleOfWire(i) == role ? 1 : 0;
  return n;
}

void oneNode(Findings& findings, int i) {
  const ConductorTable& C = RUNDATA.cond;
  const int NC = RUNDATA.line.NC, node = C.CPHASE[i];
  const int line = phaseLine(sectionOfConductor(C.CX[i], C.CY[i]));
  int twin = 0, absent = 0;
  for (int j = 1; j < i; ++j) {
    const bool connected = roleOfWire(j) == MAPMAIN || roleOfWire(j) == MAPKEPT;
    if (connected && C.CPHASE[j] == node) twin = j;
  }
  for (int n = NC; n >= 1; --n) {
    if (std::find(C.CPHASE.data(), C.CPHASE.data() + C.NCOND, n) == C.CPHASE.data() + C.NCOND)
      absent = n;
  }
  const std::string better =
      absent == 0 ? std::string() : fmt::format("; node {} has no conductor", absent);
  if (node < 1 || node > NC) {
    add(findings, line, Kind::Node, nameOfWire(i), std::to_string(node),
        fmt::format("but nodes are 1 to {}{}", NC, better));
  } else if (twin != 0) {
    add(findings, line, Kind::Node, nameOfWire(i), std::to_string(node),
        fmt::format("as {} is{}", nameOfWire(twin), better));
  }
}

} // namespace

void conductorRules(Findings& findings) {
  const ConductorTable& C = RUNDATA.cond;
  for (int i = 1; i <= C.NCOND; ++i) {
    oneWire(findings, i);
    for (int j = 1; j < i; ++j) twoWires(findings, j, i);
    if (!isGroundWire(i)) bundleSpacing(findings, i);
  }
  if (RUNDATA.run.ISCABLE == OVERHEADLINE) wireAbove(findings);
}

void nodeRules(Findings& findings) {
  const ConductorTable& C = RUNDATA.cond;
  const int there = mains(MAPMAIN) + mains(MAPKEPT);
  if (there != RUNDATA.line.NC) {
    const int line = std::max(lineOf(&RUNDATA.line.NC), 0);
    return add(findings, line, Kind::NodeCount, std::to_string(RUNDATA.line.NC),
               std::to_string(there));
  }
  for (int i = 1; i <= C.NCOND; ++i) {
    const int role = roleOfWire(i);
    if (role == MAPMAIN || role == MAPKEPT) oneNode(findings, i);
  }
}

void soilRules(Findings& findings) {
  const Ground& G = RUNDATA.ground;
  const double rho = G.GRTYPE ? 1 / G.GSIGLF : G.GRHO;
  if (!SOILS.holds(rho)) {
    const std::string better =
        G.GRTYPE ? fmt::format("; Low Frequency Ground Conductivity: {:.4g} would be", rho)
                 : fmt::format("; GroundResistivity: {:.4g} would be", 1 / rho);
    add(findings, lineOf(G.GRTYPE ? &G.GSIGLF : &G.GRHO), Kind::Soil, number(rho),
        SOILS.holds(1 / rho) ? better : "");
  }
  permittivity(findings, lineOf(&G.GEPSR), "the soil", G.GEPSR, MOSTSOILPERMITTIVITY);
}

} // namespace lcp::companions
