#include "cable/layer_checks.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "cable/body.h"
#include "store/rundata.h"

#include <cstddef>
#include <string>

namespace lcp {

namespace {

// What the key of a layer says in front of its quantity, from the core outwards: conductors at even
// places, insulators at odd ones.
constexpr std::string_view LAYERNAMES[] = {"Conductor",    "Insulator 1", "Sheath",
                                           "Insulator 2",  "Armour",      "Insulator 3",
                                           "Outside Cond", "Insulator 4"};

[[noreturn]] void mustBePositive(std::string_view owner, std::string_view key, double value) {
  console::openStars();
  console::print("{}:", owner);
  console::print("{} Must be > 0, not {:.4g}!", key, value);
  stopInStars();
}

// The materials of a cable as its section has them, each under its key.
void checkCable(int c) {
  const Cable& C = RUNDATA.cable.CB[c];
  for (std::size_t k = 0; k < static_cast<std::size_t>(C.CBNLAY); ++k) {
    const bool metal = k % 2 == 0;
    const double own = metal ? C.CBRHO[k / 2] : C.CBEPS[k / 2];
    if (!(own > 0.0)) {
      const char* key = metal ? "Resistivity" : "Relative Permittivity";
      mustBePositive(cableName(c), fmt::format("{} {}", LAYERNAMES[k], key), own);
    }
    if (!(C.CBMU[k] > 0.0)) {
      const char* key = metal ? "Permeability" : "Relative Permeability";
      mustBePositive(cableName(c), fmt::format("{} {}", LAYERNAMES[k], key), C.CBMU[k]);
    }
  }
}

// A tower conductor has the keys of its circuit or of its ground wires. Its resistivity follows
// from resistance and cross-section.
void checkTowerConductor(int c) {
  const Cable& cable = RUNDATA.cable.CB[c];
  const ConductorTable& C = RUNDATA.cond;
  const int i = towerConductor(c);
  const std::string name = cableName(c);
  if (!(C.CRDC[i] > 0.0)) mustBePositive(name, "DCResistance", C.CRDC[i]);
  if (!(C.CMUR[i] > 0.0)) mustBePositive(name, "Relative Permeability", C.CMUR[i]);
  if (!(cable.CBRHO[0] > 0.0)) mustBePositive(name, "Cross-Section of the Metal", 0.0);
}

void checkPipeMaterials(const PipeRecord& P, bool filled) {
  const struct {
    bool used;
    double value;
    const char* key;
  } materials[] = {
      {true, P.PIPERHO, "Conductor Resistivity"},
      {true, P.PIPEMU, "Conductor Permeability"},
      {filled, P.PIPEEPSI, "Inner Ins. Relative Permittivity"},
      {filled, P.PIPEMUI, "Inner Ins. Relative Permeability"},
      {P.PIPEOUTL == 1, P.PIPEEPSO, "Outer Ins. Relative Permittivity"},
      {P.PIPEOUTL == 1, P.PIPEMUO, "Outer Ins. Relative Permeability"},
  };
  for (const auto& m : materials) {
    if (m.used && !(m.value > 0.0)) mustBePositive("Pipe 1", m.key, m.value);
  }
}

bool pipeRadiiGrow(const PipeRecord& P) {
  return P.PIPERI > 0.0 && P.PIPERC > P.PIPERI && (P.PIPEOUTL != 1 || P.PIPERO > P.PIPERC);
}

bool pipeIsFilled() {
  for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) {
    if (RUNDATA.cable.CB[c].CBPIPE != 0) return true;
  }
  return false;
}

void checkPipe() {
  const PipeRecord& P = RUNDATA.cable.pipe;
  checkPipeMaterials(P, pipeIsFilled());
  if (pipeRadiiGrow(P)) return;
  console::openStars();
  console::line("Pipe 1: the Outer Radii of Inner Insulator, Conductor and");
  console::line("Outer Insulator Must be > 0 and Grow Outwards!");
  stopInStars();
}

} // namespace

void checkLayers() {
  const CableTable& T = RUNDATA.cable;
  for (int c = 1; c <= T.NCABLE; ++c) {
    if (towerConductor(c) > 0) {
      checkTowerConductor(c);
    } else {
      checkCable(c);
    }
  }
  if (T.NPIPE > 0) checkPipe();
}

} // namespace lcp
