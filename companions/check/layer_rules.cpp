#include "companions/check/layer_rules.h"

#include "base/constants.h"
#include "companions/check/materials.h"
#include "companions/check/traced.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

struct LayerNames {
  std::string_view conductor, insulator;
};
constexpr LayerNames LAYERS[] = {{"the core", "insulator 1"},
                                 {"the sheath", "insulator 2"},
                                 {"the armour", "insulator 3"},
                                 {"the outside conductor", "insulator 4"}};
constexpr std::string_view RADIUSKEYS[] = {
    "Conductor Inner Radius",   "Conductor Outer Radius",    "Insulator 1 Outer Radius",
    "Sheath Outer Radius",      "Insulator 2 Outer Radius",  "Armour Outer Radius",
    "Insulator 3 Outer Radius", "Outside Cond Outer Radius", "Insulator 4 Outer Radius"};

constexpr double MOSTMETAL = 4000;                 // mm^2 of a core without a wide hole
constexpr double THICKEST[] = {0.015, 0.03, 0.05}; // m: sheath, armour, outside conductor
constexpr double THINNEST = 2e-5;                  // m, of foil
constexpr double MOSTRATIO = 8;                    // outer to inner radius of an insulator
constexpr Range STEELSHEATH = {9e-8, 1.85e-7};     // lead begins at 1.9e-7
constexpr Range STEELARMOUR = {7e-8, 1e-6};
constexpr Range USUALCORES = {1.6e-8, 4e-8};

std::string nameOf(std::string_view layer, int n) {
  return fmt::format("{} of cable {}", layer, n);
}

std::string_view layerName(std::size_t i) {
  return i % 2 == 1 ? LAYERS[i / 2].conductor : LAYERS[i / 2 - 1].insulator;
}

int radiusLine(std::size_t i, int n) { return cableLine(&READER.openCable.CBRAD[i], n); }

// Radii that grow outwards.
bool radiiGrow(Findings& findings, int n) {
  const Cable& C = RUNDATA.cable.CB[n];
  const auto last = static_cast<std::size_t>(std::max(C.CBNLAY, 0));
  for (std::size_t i = 1; i <= last; ++i) {
    if (C.CBRAD[i] > C.CBRAD[i - 1]) continue;
    const std::string_view below = i == 1 ? "its hole" : layerName(i - 1);
    add(findings, radiusLine(i, n), Kind::LayerRadius, nameOf(layerName(i), n), number(C.CBRAD[i]),
        fmt::format("{} m of {}; {} must be above it, or Layers below {}", number(C.CBRAD[i - 1]),
                    below, RADIUSKEYS[i], i - 1));
    return false;
  }
  return true;
}

void core(Findings& findings, int n) {
  const Cable& C = RUNDATA.cable.CB[n];
  const double r = C.CBRAD[RADCORE], hole = C.CBSOLID ? 0 : C.CBRAD[RADCOREINNER];
  const double area = PI * (r * r - hole * hole) * 1e6;
  if (area > MOSTMETAL && hole < 0.6 * r) {
    const std::string_view unit = area > 1e9 ? "in mm" : area > 1e6 ? "in cm" : "diameters";
    add(findings, radiusLine(RADCORE, n), Kind::WideCore, std::to_string(n), number(area), unit);
  }
}

void thickness(Findings& findings, int n) {
  const Cable& C = RUNDATA.cable.CB[n];
  for (std::size_t k = 1; k < std::size(LAYERS); ++k) {
    const std::size_t i = 2 * k + 1;
    if (static_cast<int>(i) > C.CBNLAY) break;
    const double t = C.CBRAD[i] - C.CBRAD[i - 1];
    if (t >= THINNEST && t <= THICKEST[k - 1]) continue;
    add(findings, radiusLine(i, n), Kind::LayerThickness, nameOf(LAYERS[k].conductor, n), number(t),
        fmt::format("{:g} to {:g} m", THINNEST, THICKEST[k - 1]));
  }
  for (std::size_t i = RADINSULATOR1; static_cast<int>(i) <= C.CBNLAY; i += 2) {
    const double inner = C.CBRAD[i - 1], outer = C.CBRAD[i];
    if (outer <= MOSTRATIO * inner) continue;
    add(findings, radiusLine(i, n), Kind::LayerThickness, nameOf(layerName(i), n),
        number(outer - inner),
        fmt::format("up to {} m around {} m", number((MOSTRATIO - 1) * inner), number(inner)));
  }
}

// The semi-conducting layers lie within insulator 1 and leave most of it.
void semiConductors(Findings& findings, int n) {
  const Cable& C = RUNDATA.cable.CB[n];
  const double whole = C.CBRAD[RADINSULATOR1] - C.CBRAD[RADCORE];
  const double both = C.CBSEMII + C.CBSEMIO;
  if (!C.CBSEMI || C.CBNLAY < 2 || whole <= 0) return;
  if (C.CBSEMII >= 0 && C.CBSEMIO >= 0 && both < 0.5 * whole) return;
  add(findings, cableLine(&READER.openCable.CBSEMII, n), Kind::LayerThickness,
      fmt::format("the semi-conducting layers of cable {} together", n), number(both),
      fmt::format("0.001 to 0.005 m within the {} m of insulator 1{}", number(whole),
                  powerOfTen(both, 0.001, std::min(0.005, 0.5 * whole))));
}

std::string betterCore(double rho) {
  for (const double factor : {10.0, 0.1, 1e-3, 1e3, 1e-2, 1e2}) {
    if (USUALCORES.holds(rho * factor)) return fmt::format("; {:.4g} would be", rho * factor);
  }
  return "; copper has 1.72e-8, aluminium 2.83e-8";
}

// That of insulator 1 in the table includes its semi-conducting layers.
double enteredPermittivity(int n, std::size_t k) {
  const double entered = numberAt(lineOf(&READER.openCable.CBEPS[k], -1, n));
  return std::isfinite(entered) ? entered : RUNDATA.cable.CB[n].CBEPS[k];
}

void materials(Findings& findings, int n) {
  const Cable& C = RUNDATA.cable.CB[n];
  const Cable& key = READER.openCable;
  for (std::size_t k = 0; k < std::size(LAYERS); ++k) {
    const int layer = 2 * static_cast<int>(k) + 1;
    const std::size_t metal = 2 * k, insulator = metal + 1;
    if (C.CBNLAY >= layer) {
      const std::string name = nameOf(LAYERS[k].conductor, n);
      const double rho = C.CBRHO[k];
      metalPermeability(findings, cableLine(&key.CBMU[metal], n), name, C.CBMU[metal], rho,
                        k < 2 ? STEELSHEATH : STEELARMOUR);
      resistivity(findings, cableLine(&key.CBRHO[k], n), name, rho, k == 0 ? CORES : METALS,
                  k == 0 ? betterCore(rho) : powerOfTen(rho, 1.6e-8, 3e-7));
    }
    if (C.CBNLAY > layer) {
      const std::string name = nameOf(LAYERS[k].insulator, n);
      permittivity(findings, cableLine(&key.CBEPS[k], n), name, enteredPermittivity(n, k),
                   MOSTPERMITTIVITY);
      insulatorPermeability(findings, cableLine(&key.CBMU[insulator], n), name, C.CBMU[insulator]);
    }
  }
}

// Radii that a cable has beyond its count of layers.
void beyondTheLast(Findings& findings, int n) {
  const Cable& C = RUNDATA.cable.CB[n];
  for (auto i = static_cast<std::size_t>(C.CBNLAY) + 1; i < C.CBRAD.size(); ++i) {
    const int line = lineOf(&READER.openCable.CBRAD[i], -1, n);
    if (line == 0 || !(C.CBRAD[i] > 0)) continue;
    return add(findings, line, Kind::AbsentLayer, RADIUSKEYS[i],
               fmt::format("{} by Layers: {}", n, C.CBNLAY - 1));
  }
}

} // namespace

int cableLine(const void* target, int n) {
  const int line = lineOf(target, -1, n);
  return line != 0 ? line : cablePositionLine(n);
}

void layerRules(Findings& findings, int n) {
  if (radiiGrow(findings, n)) thickness(findings, n);
  core(findings, n);
  semiConductors(findings, n);
  materials(findings, n);
  beyondTheLast(findings, n);
}

} // namespace lcp::companions
