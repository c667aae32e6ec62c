// The facts of a body are pairs of texts, name and value, in the order in which they are shown.
#include "companions/plot/geometry.h"

#include "base/constants.h"
#include "companions/shared/wires.h"
#include "store/rundata.h"

#include <array>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double SQUAREMM = 1e-6; // m^2
constexpr std::array<std::string_view, 4> METALS = {"core", "sheath", "armour",
                                                    "outside conductor"};

std::string mm(double metres) { return fmt::format("{:.4g} mm", metres / MILLI); }
std::string position(double x, double y) { return fmt::format("x = {:.6g} m, y = {:.6g} m", x, y); }

std::string roleOf(int i) {
  if (roleOfWire(i) > 0) return "conductor of a bundle";
  if (roleOfWire(i) == MAPELIMINATED) return "ground wire, eliminated";
  return roleOfWire(i) == MAPKEPT ? "ground wire, kept" : "conductor";
}

std::string metalOf(int i) {
  const ConductorTable& C = RUNDATA.cond;
  std::string shape = C.CTUBE[i] ? "tube" : C.CSTRND[i] ? "stranded" : "solid";
  shape += fmt::format(", {:.3g} ohm m", resistivityOfWire(i));
  return C.CMUR[i] == 1 ? shape : shape + fmt::format(", permeability {:.4g}", C.CMUR[i]);
}

Json wire(int i) {
  const ConductorTable& C = RUNDATA.cond;
  const int main = mainOfWire(i);
  const bool node = roleOfWire(main) != MAPELIMINATED;
  Json facts = {{"Number", fmt::format("{}", i)}, {"Role", roleOf(i)}};
  if (node) facts["Node"] = fmt::format("{}", C.CPHASE[main]);
  if (!isGroundWire(main)) facts["Circuit"] = fmt::format("{}", circuitOfWire(i));
  facts["Position"] = position(C.CX[i], C.CY[i]);
  facts["At mid-span"] = fmt::format("y = {:.6g} m", C.CY[i] - C.CSAG[i]);
  facts["Radius"] = mm(C.CRAD[i]);
  facts["Material"] = metalOf(i);
  facts["Resistance"] = fmt::format("{:.5g} ohm/km", C.CRDC[i] * KM);
  return {{"x", C.CX[i]},
          {"y", C.CY[i]},
          {"sag", C.CSAG[i]},
          {"r", C.CRAD[i]},
          {"ground", isGroundWire(main)},
          {"circuit", circuitOfWire(i)},
          {"bundle", main},
          {"label", main == i ? (node ? fmt::format("{}", C.CPHASE[main]) : "g") : ""},
          {"facts", facts}};
}

Json ring(double inner, double outer, std::string_view kind, std::string_view name,
          const std::string& material) {
  return {{"inner", inner},
          {"outer", outer},
          {"kind", kind},
          {"facts",
           {{"Layer", name},
            {"Radii", fmt::format("{} to {}", mm(inner), mm(outer))},
            {"Material", material}}}};
}

Json metalRing(double inner, double outer, std::string_view name, double rho, double mu) {
  const double area = PI * (outer * outer - inner * inner);
  Json one = ring(inner, outer, name.substr(0, name.find(' ')), name,
                  fmt::format("{:.4g} ohm m, permeability {:.4g}", rho, mu));
  one["facts"]["Resistance"] = fmt::format("{:.5g} ohm/km", KM * rho / area);
  return one;
}

std::string dielectric(double eps, double mu) {
  const std::string text = fmt::format("permittivity {:.4g}", eps);
  return mu == 1 || mu == 0 ? text : text + fmt::format(", permeability {:.4g}", mu);
}

// Insulator 1 lies between the semi-conducting layers.
void addInsulator(Json& rings, const Cable& C, std::size_t k) {
  const bool parted = C.CBSEMI && k == 0;
  const double a = C.CBRAD[2 * k + 1], b = C.CBRAD[2 * k + 2];
  const double inner = parted ? a + C.CBSEMII : a, outer = parted ? b - C.CBSEMIO : b;
  if (inner > a) rings.push_back(ring(a, inner, "semi", "semi-conducting layer", "semi-conductor"));
  rings.push_back(ring(inner, outer, "insulator", fmt::format("insulator {}", k + 1),
                       dielectric(C.CBEPS[k], C.CBMU[2 * k + 1])));
  if (b > outer) rings.push_back(ring(outer, b, "semi", "semi-conducting layer", "semi-conductor"));
}

Json layersOf(const Cable& C) {
  Json rings = Json::array();
  for (int layer = 0; layer < C.CBNLAY; ++layer) {
    const auto l = static_cast<std::size_t>(layer), k = l / 2;
    const double inner = C.CBRAD[l], outer = C.CBRAD[l + 1];
    if (layer % 2 == 0) {
      rings.push_back(metalRing(inner, outer, METALS[k], C.CBRHO[k], C.CBMU[l]));
    } else {
      addInsulator(rings, C, k);
    }
  }
  return rings;
}

Json cable(int n) {
  const Cable& C = RUNDATA.cable.CB[n];
  const PipeRecord& P = RUNDATA.cable.pipe;
  const bool inside = C.CBPIPE != 0;
  double x = C.CBX, y = C.CBOVHD ? C.CBY : -C.CBY;
  std::string place = C.CBOVHD ? fmt::format("{:.6g} m above the ground", C.CBY)
                               : fmt::format("{:.6g} m deep", C.CBY);
  if (inside) {
    x = P.PIPEX + C.CBX;
    y = (P.PIPEOVHD ? P.PIPEY : -P.PIPEY) + C.CBY;
    place = fmt::format("in the pipe, {:.4g} mm from its centre", C.CBPR / MILLI);
  }
  return {{"x", x},
          {"y", y},
          {"r", C.radius()},
          {"inside", inside},
          {"label", fmt::format("{}", n)},
          {"rings", layersOf(C)},
          {"facts",
           {{"Cable", fmt::format("{}", n)},
            {"Position", position(x, y)},
            {"Place", place},
            {"Overall radius", mm(C.radius())},
            {"Conductors", fmt::format("{}", C.conductors())}}}};
}

Json pipe() {
  const PipeRecord& P = RUNDATA.cable.pipe;
  const double y = P.PIPEOVHD ? P.PIPEY : -P.PIPEY;
  Json rings = {
      ring(0, P.PIPERI, "filling", "inside of the pipe", dielectric(P.PIPEEPSI, P.PIPEMUI)),
      metalRing(P.PIPERI, P.PIPERC, "pipe wall", P.PIPERHO, P.PIPEMU)};
  if (P.PIPEOUTL == 1) {
    rings.push_back(ring(P.PIPERC, P.PIPERO, "insulator", "coating of the pipe",
                         dielectric(P.PIPEEPSO, P.PIPEMUO)));
  }
  return {{"x", P.PIPEX},
          {"y", y},
          {"r", P.radius()},
          {"label", "pipe"},
          {"rings", rings},
          {"facts",
           {{"Pipe", P.PIPEGND == 1 ? "grounded" : "not grounded"},
            {"Position", position(P.PIPEX, y)},
            {"Overall radius", mm(P.radius())}}}};
}

// Four sectors whose metal has an outer radius equal to the diameter of a round conductor of the
// same area, as in the formulas.
Json fourWire() {
  const FourWireRecord& F = RUNDATA.cable.fourWire;
  const Cable& C = RUNDATA.cable.CB[1];
  const double D = std::sqrt(4 * F.FWAREA * SQUAREMM / PI);
  const double insulated = D + F.FWTINS, taped = insulated + F.FWTTAPE, outer = taped + F.FWTMANT;
  Json core = ring(0, D, "core", "four conductors",
                   fmt::format("{:.4g} mm^2, {:.4g} ohm m", F.FWAREA, F.FWRHO));
  core["facts"]["Resistance"] = fmt::format("{:.5g} ohm/km", KM * F.FWRHO / (F.FWAREA * SQUAREMM));
  return {{"x", C.CBX},
          {"y", -C.CBY},
          {"r", outer},
          {"sectors", 4},
          {"gap", F.FWTINS},
          {"label", "1"},
          {"rings",
           {core, ring(D, insulated, "insulator", "insulator", dielectric(F.FWEPSI, 1)),
            ring(insulated, taped, "semi", "tape", dielectric(F.FWEPST, 1)),
            ring(taped, outer, "mantle", "mantle", dielectric(F.FWEPSM, 1))}},
          {"facts",
           {{"Cable", "four-wire"},
            {"Position", position(C.CBX, -C.CBY)},
            {"Overall radius", mm(outer)},
            {"Conductors", "4 sectors"}}}};
}

} // namespace

Json geometryOf() {
  Json all = Json::object();
  if (RUNDATA.run.DATAFMT != ROUTECONSTANTS) {
    all["note"] = RUNDATA.run.DATAFMT == ROUTEMANUAL
                      ? "The data of this line were entered by hand: there is no geometry to draw."
                      : "Y and Z come from a table: there is no geometry to draw.";
    return all;
  }
  all["towers"] = RUNDATA.cond.NTOWER;
  for (int i = 1; i <= RUNDATA.cond.NCOND; ++i) all["wires"].push_back(wire(i));
  const CableTable& T = RUNDATA.cable;
  if (RUNDATA.run.ISCABLE == FOURWIRECABLE) all["cables"].push_back(fourWire());
  if (RUNDATA.run.ISCABLE == CABLESYSTEM) {
    for (int n = 1; n <= T.NCABLE - T.overhead; ++n) all["cables"].push_back(cable(n));
  }
  if (T.PIPEF) all["pipe"] = pipe();
  return all;
}

} // namespace lcp::companions
