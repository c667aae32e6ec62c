#include "companions/check/geometry_rules.h"

#include "companions/check/traced.h"
#include "companions/shared/wires.h"
#include "input/cable_hints.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double LEASTGAP = 1e-3; // m, between two phases

// Usual resistivities, ohm m.
struct Range {
  double least, most;
  bool holds(double x) const { return x >= least && x <= most; }
};
constexpr Range COPPERALUMINIUM = {1e-8, 1.5e-7}; // cores and phase conductors
constexpr Range METALS = {1e-8, 2e-6};            // sheaths of lead, armours and wires of steel
constexpr Range SOILS = {0.1, 1e5};

std::string number(double x) { return fmt::format("{:.4g}", x); }

// Properties shared by a group are reported once.
void addOnce(Findings& findings, int line, Kind kind, std::string_view a, std::string_view b,
             std::string_view c = {}) {
  const bool there = std::any_of(findings.begin(), findings.end(), [&](const CheckFinding& f) {
    return f.line == line && f.kind == kind;
  });
  if (!there) add(findings, line, kind, a, b, c);
}

void resistivity(Findings& findings, int line, std::string_view name, double rho, Range range) {
  if (range.holds(rho)) return;
  addOnce(findings, line, Kind::Resistivity, name, number(rho),
          fmt::format("{:.1e} to {:.1e}", range.least, range.most));
}

void permittivity(Findings& findings, int line, std::string_view name, double eps) {
  if (eps < 1) add(findings, line, Kind::Permittivity, name, number(eps));
}

void permeability(Findings& findings, int line, std::string_view name, double mu) {
  if (!(mu > 0)) add(findings, line, Kind::Permeability, name, number(mu));
}

void depth(Findings& findings, int line, std::string_view name, bool aerial, double y) {
  if (!(y > 0)) add(findings, line, Kind::Depth, aerial ? "height" : "depth", name, number(y));
}

// --- overhead conductors

void oneWire(Findings& findings, int i) {
  const ConductorTable& C = RUNDATA.cond;
  const int section = sectionOfConductor(C.CX[i], C.CY[i]);
  const std::string name = nameOfWire(i);
  if (C.CRAD[i] >= C.CYAVG[i]) {
    addOnce(findings, lineOrHeading(&C.CRAD, section), Kind::RadiusAboveHeight, name,
            number(C.CRAD[i]), number(C.CYAVG[i]));
  }
  if (C.CSAG[i] > 0 && C.CSAG[i] >= C.CY[i]) {
    addOnce(findings, lineOrHeading(&C.CSAG, section), Kind::SagAboveHeight, name,
            number(C.CSAG[i]), number(C.CY[i]));
  }
  resistivity(findings, lineOrHeading(&C.CRDC, section), name, resistivityOfWire(i),
              isGroundWire(i) ? METALS : COPPERALUMINIUM);
}

void twoWires(Findings& findings, int i, int j) {
  const ConductorTable& C = RUNDATA.cond;
  const double d = std::hypot(C.CX[i] - C.CX[j], C.CY[i] - C.CY[j]);
  const double radii = C.CRAD[i] + C.CRAD[j];
  if (d >= std::max(radii, LEASTGAP)) return;
  const int section = sectionOfConductor(C.CX[j], C.CY[j]);
  if (mainOfWire(i) == mainOfWire(j)) {
    if (d < radii) {
      addOnce(findings, bundleLine(section), Kind::TightBundle, nameOfWire(mainOfWire(i)),
              number(d), number(radii));
    }
  } else {
    addOnce(findings, positionLine(section), Kind::Touching, nameOfWire(i), nameOfWire(j),
            number(d));
  }
}

void wireAbove(Findings& findings) {
  const ConductorTable& C = RUNDATA.cond;
  double phases = 0, wires = 0;
  for (int i = 1; i <= C.NCOND; ++i) {
    double& highest = isGroundWire(i) ? wires : phases;
    highest = std::max(highest, C.CY[i]);
  }
  if (phases > 0 && wires <= phases) add(findings, 0, Kind::NoWireAbove);
}

// --- cables

struct LayerNames {
  std::string_view conductor, insulator;
};
constexpr LayerNames LAYERS[] = {{"the core", "insulator 1"},
                                 {"the sheath", "insulator 2"},
                                 {"the armour", "insulator 3"},
                                 {"the outside conductor", "insulator 4"}};

// Line of a key of cable n, or else of its position.
int cableLine(const void* target, int n) {
  const int line = lineOf(target, -1, n);
  return line != 0 ? line : cablePositionLine(n);
}

void oneCable(Findings& findings, int n) {
  const Cable& C = RUNDATA.cable.CB[n];
  const Cable& key = READER.openCable; // the targets of the keys
  for (std::size_t k = 0; k < std::size(LAYERS); ++k) {
    const int layer = 2 * static_cast<int>(k) + 1;
    const auto name = [&](std::string_view of) { return fmt::format("{} of cable {}", of, n); };
    const std::size_t metal = 2 * k, insulator = metal + 1;
    if (C.CBNLAY >= layer) {
      permeability(findings, cableLine(&key.CBMU[metal], n), name(LAYERS[k].conductor),
                   C.CBMU[metal]);
      resistivity(findings, cableLine(&key.CBRHO[k], n), name(LAYERS[k].conductor), C.CBRHO[k],
                  k == 0 ? COPPERALUMINIUM : METALS);
    }
    if (C.CBNLAY > layer) {
      permittivity(findings, cableLine(&key.CBEPS[k], n), name(LAYERS[k].insulator), C.CBEPS[k]);
      permeability(findings, cableLine(&key.CBMU[insulator], n), name(LAYERS[k].insulator),
                   C.CBMU[insulator]);
    }
  }
}

void pipe(Findings& findings) {
  const PipeRecord& P = RUNDATA.cable.pipe;
  depth(findings, headingLine("Pipe-Type Cable"), "the pipe", P.PIPEOVHD, P.PIPEY);
  permeability(findings, lineOf(&P.PIPEMU), "the pipe", P.PIPEMU);
  resistivity(findings, lineOf(&P.PIPERHO), "the pipe", P.PIPERHO, METALS);
  permittivity(findings, lineOf(&P.PIPEEPSI), "the inner insulator of the pipe", P.PIPEEPSI);
  permeability(findings, lineOf(&P.PIPEMUI), "the inner insulator of the pipe", P.PIPEMUI);
  if (P.PIPEOUTL != 1) return;
  permittivity(findings, lineOf(&P.PIPEEPSO), "the outer insulator of the pipe", P.PIPEEPSO);
  permeability(findings, lineOf(&P.PIPEMUO), "the outer insulator of the pipe", P.PIPEMUO);
}

void fourWire(Findings& findings) {
  const FourWireRecord& F = RUNDATA.cable.fourWire;
  resistivity(findings, lineOf(&F.FWRHO), "the four conductors", F.FWRHO, COPPERALUMINIUM);
  permittivity(findings, lineOf(&F.FWEPSI), "the insulator", F.FWEPSI);
  if (F.FWTTAPE > 0) permittivity(findings, lineOf(&F.FWEPST), "the tape", F.FWEPST);
  if (F.FWTMANT > 0) permittivity(findings, lineOf(&F.FWEPSM), "the mantle", F.FWEPSM);
}

// Keys overruled by the sections of the cables.
void overruled(Findings& findings) {
  const int& said = RUNDATA.cable.pipe.PIPENIN;
  const int there = cablesInPipe();
  if (RUNDATA.cable.PIPEF && said != there) {
    add(findings, std::max(lineOf(&said), headingLine("Pipe-Type Cable")), Kind::InnerCables,
        std::to_string(said), std::to_string(there));
  }
  for (const LayerFlag& flag : flagsWithoutLayer()) {
    add(findings, cableLine(flag.target, flag.cable), Kind::AbsentLayer, flag.key,
        std::to_string(flag.cable));
  }
}

} // namespace

void conductorRules(Findings& findings) {
  const ConductorTable& C = RUNDATA.cond;
  for (int i = 1; i <= C.NCOND; ++i) {
    oneWire(findings, i);
    for (int j = 1; j < i; ++j) twoWires(findings, j, i);
  }
  if (RUNDATA.run.ISCABLE == OVERHEADLINE) wireAbove(findings);
}

void cableRules(Findings& findings) {
  const CableTable& T = RUNDATA.cable;
  if (RUNDATA.run.ISCABLE == FOURWIRECABLE) return fourWire(findings);
  for (int n = 1; n <= T.NCABLE - T.overhead; ++n) {
    const bool copied = READER.identicalCables && T.CB[n].CBPIPE != 0 && n != READER.masterCable;
    if (!copied) oneCable(findings, n);
    const Cable& C = T.CB[n];
    if (C.CBPIPE == 0)
      depth(findings, cablePositionLine(n), fmt::format("cable {}", n), C.CBOVHD, C.CBY);
  }
  if (T.PIPEF) pipe(findings);
  overruled(findings);
}

void soilRules(Findings& findings) {
  const Ground& G = RUNDATA.ground;
  const double rho = G.GRTYPE ? 1 / G.GSIGLF : G.GRHO;
  if (!SOILS.holds(rho))
    add(findings, lineOf(G.GRTYPE ? &G.GSIGLF : &G.GRHO), Kind::Soil, number(rho));
  permittivity(findings, lineOf(&G.GEPSR), "the soil", G.GEPSR);
}

} // namespace lcp::companions
