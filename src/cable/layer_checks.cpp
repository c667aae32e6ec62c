// Values that the formulas divide by must not be 0: resistivity and permeability of a metal,
// permittivity of an insulator, radius of a core. All other values are accepted; an insulator of
// permeability 0 acts like a gap without flux. A value that is not positive is reported on the
// error stream.
#include "cable/layer_checks.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "cable/body.h"
#include "overhead/internal_impedance.h"
#include "store/rundata.h"

#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace lcp {

namespace {

// Names of the layers in the keys, from the core outwards: conductors at even indices, insulators
// at odd ones.
constexpr std::string_view LAYERNAMES[] = {"Conductor",    "Insulator 1", "Sheath",
                                           "Insulator 2",  "Armour",      "Insulator 3",
                                           "Outside Cond", "Insulator 4"};

enum class Role { Divisor, Factor };

// A key with a value that is not positive, and the cables it belongs to.
struct Doubt {
  std::string value;
  std::string owners;
};
using Doubts = std::vector<Doubt>;

void addDoubt(Doubts& doubts, const std::string& value, const std::string& owner) {
  for (Doubt& d : doubts) {
    if (d.value != value) continue;
    d.owners += ", " + owner;
    return;
  }
  doubts.push_back({value, owner});
}

[[noreturn]] void mustBePositive(std::string_view owner, std::string_view key, double value) {
  console::note(fmt::format("{}: {} is {:.4g}, and the formulas divide by it", owner, key, value));
  console::openStars();
  console::print("{}:", owner);
  console::print("{} Must be > 0, not {:.4g}!", key, value);
  stopInStars();
}

// NaN is refused like zero.
void check(Doubts& doubts, const std::string& owner, std::string_view key, double value,
           Role role) {
  if (role == Role::Divisor && !(std::fabs(value) > 0.0)) mustBePositive(owner, key, value);
  if (!(value > 0.0)) addDoubt(doubts, fmt::format("{} is {:.4g}", key, value), owner);
}

// Checks the materials of a cable under the keys of its section.
void checkCable(Doubts& doubts, int c) {
  const Cable& C = RUNDATA.cable.CB[c];
  const std::string name = cableName(c);
  check(doubts, name, "Conductor Outer Radius", C.CBRAD[RADCORE], Role::Divisor);
  for (std::size_t k = 0; k < static_cast<std::size_t>(C.CBNLAY); ++k) {
    const auto key = [k](const char* of) { return fmt::format("{} {}", LAYERNAMES[k], of); };
    if (k % 2 == 0) {
      check(doubts, name, key("Resistivity"), C.CBRHO[k / 2], Role::Divisor);
      check(doubts, name, key("Permeability"), C.CBMU[k], Role::Divisor);
    } else {
      check(doubts, name, key("Relative Permittivity"), C.CBEPS[k / 2], Role::Divisor);
      check(doubts, name, key("Relative Permeability"), C.CBMU[k], Role::Factor);
    }
  }
}

// A tower conductor has the keys of its circuit or ground wires. Its resistivity follows from
// resistance and cross-section.
void checkTowerConductor(Doubts& doubts, int c) {
  const ConductorTable& C = RUNDATA.cond;
  const int i = towerConductor(c);
  const std::string name = cableName(c);
  const Cable& cable = RUNDATA.cable.CB[c];
  if (cable.CBSTRND) checkStrands(name, {cable.CBSTRAD, cable.CBNOUT, cable.CBNTOT});
  const double R = C.CRDC[i];
  check(doubts, name, "DCResistance", R, Role::Divisor);
  check(doubts, name, "Relative Permeability", C.CMUR[i], Role::Divisor);
  const double section = cable.CBRHO[0] / R;
  check(doubts, name, "Cross-Section of the Metal", section, Role::Divisor);
}

bool pipeIsFilled() {
  for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) {
    if (RUNDATA.cable.CB[c].CBPIPE != 0) return true;
  }
  return false;
}

bool radiiGrow(const PipeRecord& P) {
  return P.PIPERI > 0.0 && P.PIPERC > P.PIPERI && (P.PIPEOUTL != 1 || P.PIPERO > P.PIPERC);
}

void checkPipe(Doubts& doubts) {
  const PipeRecord& P = RUNDATA.cable.pipe;
  const bool filled = pipeIsFilled();
  const bool coated = P.PIPEOUTL == 1;
  const struct {
    bool used;
    double value;
    const char* key;
    Role role;
  } materials[] = {
      {true, P.PIPERHO, "Conductor Resistivity", Role::Divisor},
      {true, P.PIPEMU, "Conductor Permeability", Role::Divisor},
      {filled, P.PIPEEPSI, "Inner Ins. Relative Permittivity", Role::Divisor},
      {filled, P.PIPEMUI, "Inner Ins. Relative Permeability", Role::Factor},
      {coated, P.PIPEEPSO, "Outer Ins. Relative Permittivity", Role::Divisor},
      {coated, P.PIPEMUO, "Outer Ins. Relative Permeability", Role::Factor},
  };
  for (const auto& m : materials) {
    if (m.used) check(doubts, "Pipe 1", m.key, m.value, m.role);
  }
  if (!radiiGrow(P)) {
    console::warning("Pipe 1: the outer radii of inner insulator, conductor and outer insulator "
                     "do not grow outwards");
  }
  if (P.PIPEOUTL == 0 && !P.PIPEOVHD && P.PIPEGND != 1) {
    console::note("Pipe 1: bare in the ground and not grounded, it has no shunt admittance; of the "
                  "models the MFDTD one alone does without");
  }
}

} // namespace

void checkLayers() {
  const CableTable& T = RUNDATA.cable;
  Doubts doubts;
  for (int c = 1; c <= T.NCABLE; ++c) {
    if (towerConductor(c) > 0) {
      checkTowerConductor(doubts, c);
    } else {
      checkCable(doubts, c);
    }
  }
  if (T.NPIPE > 0) checkPipe(doubts);
  for (const Doubt& d : doubts)
    console::warning(fmt::format("{} and counts as it stands: {}", d.value, d.owners));
}

} // namespace lcp
