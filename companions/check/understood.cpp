#include "companions/check/understood.h"

#include "base/constants.h"
#include "companions/shared/wires.h"
#include "store/rundata.h"
#include "store/yz_table.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

std::string roleText(int i) {
  const int role = roleOfWire(i);
  if (role > 0) return fmt::format("bundled with {}", role);
  if (role == MAPELIMINATED) return "ground wire, eliminated";
  return role == MAPKEPT ? "ground wire, kept" : "phase";
}

std::string_view shapeText(int i) {
  if (RUNDATA.cond.CTUBE[i]) return "tube";
  return RUNDATA.cond.CSTRND[i] ? "stranded" : "solid";
}

Json conductors() {
  const ConductorTable& C = RUNDATA.cond;
  Json rows = Json::array();
  for (int i = 1; i <= C.NCOND; ++i) {
    const int main = mainOfWire(i);
    const bool node = roleOfWire(main) != MAPELIMINATED;
    rows.push_back({{"conductor", i},
                    {"role", roleText(i)},
                    {"circuit", circuitOfWire(i)},
                    {"node", node ? C.CPHASE[main] : 0},
                    {"transposed", transpositionOfWire(i)},
                    {"x_m", C.CX[i]},
                    {"y_m", C.CY[i]},
                    {"sag_m", C.CSAG[i]},
                    {"height_m", C.CYAVG[i]},
                    {"shape", shapeText(i)},
                    {"radius_m", C.CRAD[i]},
                    {"resistance_ohm/km", C.CRDC[i] * KM},
                    {"resistivity_ohm_m", resistivityOfWire(i)},
                    {"permeability", C.CMUR[i]},
                    {"conductance_S/m", C.CSHUNT[i]}});
  }
  return rows;
}

std::string_view groundedText(int glast) {
  constexpr std::array<std::string_view, 4> TEXTS = {"nothing", "the last conductor",
                                                     "all but the core", "as chosen"};
  return glast >= 0 && glast < 4 ? TEXTS[static_cast<std::size_t>(glast)] : "nothing";
}

Json cables() {
  const CableTable& T = RUNDATA.cable;
  Json rows = Json::array();
  for (int n = 1; n <= T.NCABLE - T.overhead; ++n) {
    const Cable& C = T.CB[n];
    std::string place = C.CBOVHD ? "in the air" : "in the ground";
    if (C.CBPIPE != 0) place = "in the pipe";
    rows.push_back({{"cable", n},
                    {"place", place},
                    {"x_m", C.CBX},
                    {"y_m", C.CBY},
                    {"conductors", C.CBNLAY == 0 ? 0 : C.conductors()},
                    {"radius_m", C.radius()},
                    {"grounded", groundedText(C.CBGLAST)},
                    {"group", C.CBGROUP},
                    {"bare", C.CBBARE ? "yes" : "no"}});
  }
  return rows;
}

Json conductorLayer(int n, std::size_t k) {
  constexpr std::array<std::string_view, 4> NAMES = {"conductor", "sheath", "armour",
                                                     "outside conductor"};
  const Cable& C = RUNDATA.cable.CB[n];
  return {{"cable", n},
          {"layer", NAMES[k]},
          {"inner_m", C.CBRAD[2 * k]},
          {"outer_m", C.CBRAD[2 * k + 1]},
          {"resistivity_ohm_m", C.CBRHO[k]},
          {"permeability", C.CBMU[2 * k]},
          {"permittivity", nullptr},
          {"losses_1/s", nullptr}};
}

Json insulatorLayer(int n, std::size_t k) {
  const Cable& C = RUNDATA.cable.CB[n];
  return {{"cable", n},
          {"layer", fmt::format("insulator {}", k + 1)},
          {"inner_m", C.CBRAD[2 * k + 1]},
          {"outer_m", C.CBRAD[2 * k + 2]},
          {"resistivity_ohm_m", nullptr},
          {"permeability", C.CBMU[2 * k + 1]},
          {"permittivity", C.CBEPS[k]},
          {"losses_1/s", C.CBTAND[k]}};
}

Json layers() {
  const CableTable& T = RUNDATA.cable;
  Json rows = Json::array();
  for (int n = 1; n <= T.NCABLE - T.overhead; ++n) {
    for (int layer = 0; layer < T.CB[n].CBNLAY; ++layer) {
      const auto k = static_cast<std::size_t>(layer / 2);
      rows.push_back(layer % 2 == 0 ? conductorLayer(n, k) : insulatorLayer(n, k));
    }
  }
  return rows;
}

Json pipe() {
  const PipeRecord& P = RUNDATA.cable.pipe;
  return {{"place", P.PIPEOVHD ? "in the air" : "in the ground"},
          {"x_m", P.PIPEX},
          {"y_m", P.PIPEY},
          {"inner_m", P.PIPERI},
          {"outer_m", P.PIPERC},
          {"overall_m", P.radius()},
          {"resistivity_ohm_m", P.PIPERHO},
          {"permeability", P.PIPEMU},
          {"grounded", P.PIPEGND == 1 ? "yes" : "no"}};
}

Json fourWire() {
  const FourWireRecord& F = RUNDATA.cable.fourWire;
  return {{"area_mm^2", F.FWAREA},         {"insulator_m", F.FWTINS},
          {"tape_m", F.FWTTAPE},           {"mantle_m", F.FWTMANT},
          {"resistivity_ohm_m", F.FWRHO},  {"insulator_permittivity", F.FWEPSI},
          {"tape_permittivity", F.FWEPST}, {"mantle_permittivity", F.FWEPSM}};
}

Json soil() {
  const Ground& G = RUNDATA.ground;
  const auto formula = [](int number) {
    return RUNDATA.numerics.IMPROVEDEARTH ? Json("exact") : Json(number);
  };
  Json row = {{"resistivity_ohm_m", G.GRTYPE ? 1 / G.GSIGLF : G.GRHO},
              {"frequency_dependent", G.GRTYPE ? "yes" : "no"},
              {"permeability", G.GMUR},
              {"permittivity", G.GEPSR},
              {"formula_air", formula(G.EARTHF)},
              {"formula_ground", formula(G.EARTHFU)},
              {"formula_mixed", formula(G.EARTHFM)}};
  if (RUNDATA.run.ISCABLE == OVERHEADLINE) {
    for (const char* cablesOnly : {"permittivity", "formula_ground", "formula_mixed"})
      row.erase(cablesOnly);
  }
  return row;
}

Json entered() {
  const ManualData& M = RUNDATA.manual;
  const auto form = [&]() -> std::string_view {
    switch (M.MANFMT) {
    case MANPERUNIT: return "per unit per metre";
    case MANOHMS: return "ohms per metre";
    case MANSURGE: return "surge impedance and travel time";
    case MANPAIR: return "one Y and Z";
    case MANMULTIPLE: return "Y and Z over frequency";
    default: return "none";
    }
  };
  Json row = {{"form", form()}, {"long_line_corrected", M.LONGLINE == 1 ? "yes" : "no"}};
  if (M.MANFMT == MANPAIR) row["values_of"] = M.YZFMT == 1 ? "the whole line" : "a metre";
  if (M.MANFMT == MANMULTIPLE) row["frequencies"] = YZTABLE.rows;
  return row;
}

std::string_view modelText() {
  const ModelChoice& M = RUNDATA.model;
  return M.MODEL == ModelKind::Halo ? "HALO options alone" : M.row().name;
}

Json line() {
  constexpr std::array<std::string_view, 3> SYSTEMS = {"overhead line", "cable system",
                                                       "four-wire cable"};
  Json row = {{"name", RUNDATA.line.LNAME.text()},
              {"system", SYSTEMS[static_cast<std::size_t>(RUNDATA.run.ISCABLE)]},
              {"length_m", RUNDATA.run.LINELEN},
              {"steady_state_Hz", RUNDATA.line.SSFREQ},
              {"report_Hz", RUNDATA.display.DISPFREQ}};
  if (RUNDATA.line.NC > 0) row["conductors"] = RUNDATA.line.NC; // a cable system counts later
  return row;
}

Json model() {
  Json row = {{"model", modelText()}};
  const FitOptions& F = RUNDATA.fit;
  const ModelChoice& M = RUNDATA.model;
  if (M.atTwoFrequencies()) row["losses_Hz"] = RUNDATA.bergeron.FLOSS;
  if (M.fitted()) {
    row["start_Hz"] = F.FSTART;
    row["end_Hz"] = F.FEND;
    row["increments"] = F.NFINC;
    row["weights"] = fmt::format("{:g} {:g} {:g}", F.WF1, F.WF2, F.WF3);
    const bool phase = M.fitsPhases();
    row["poles_Z_or_Yc"] = phase ? F.MAXPY : F.MAXPZ;
    row["error_Z_or_Yc_%"] = phase ? F.ERRY : F.ERRZ;
  }
  if (M.fitsModes() || M.fitsPhases()) {
    row["poles_H"] = F.MAXPA;
    row["error_H_%"] = F.ERRA;
  }
  if (M.fitsPhases()) {
    row["dc_correction"] = F.DCCORR;
    const PassivityOptions& P = RUNDATA.passivity;
    row["passivity"] = P.PITERSET ? "enforced" : P.PFLOSET ? "checked" : "no";
  }
  return row;
}

std::string cellText(const Json& cell) {
  if (cell.is_null()) return "";
  if (cell.is_string()) return cell.get<std::string>();
  return cell.is_number_float() ? fmt::format("{:.6g}", cell.get<double>()) : cell.dump();
}

std::string listAsText(const Json& row) {
  std::size_t width = 0;
  for (const auto& [name, unused] : row.items()) width = std::max(width, name.size());
  std::string text;
  for (const auto& [name, cell] : row.items())
    text += fmt::format("  {:<{}}  {}\n", name, width, cellText(cell));
  return text;
}

std::string tableAsText(const Json& rows) {
  std::string text;
  std::vector<std::string> out(rows.size() + 1, " ");
  for (const auto& [column, unused] : rows[0].items()) {
    std::size_t width = column.size();
    for (const Json& row : rows) width = std::max(width, cellText(row[column]).size());
    out[0] += fmt::format(" {:<{}}", column, width);
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const bool number = rows[i][column].is_number();
      const std::string cell = cellText(rows[i][column]);
      out[i + 1] +=
          number ? fmt::format(" {:>{}}", cell, width) : fmt::format(" {:<{}}", cell, width);
    }
  }
  for (const std::string& row : out) text += row.substr(0, row.find_last_not_of(' ') + 1) + "\n";
  return text;
}

} // namespace

Json understood() {
  const bool geometry = RUNDATA.run.DATAFMT == ROUTECONSTANTS;
  Json tables = {{"line", line()}};
  if (geometry && RUNDATA.cond.NCOND > 0) tables["conductors"] = conductors();
  if (geometry && RUNDATA.run.ISCABLE == CABLESYSTEM &&
      RUNDATA.cable.NCABLE > RUNDATA.cable.overhead) {
    tables["cables"] = cables();
    tables["layers"] = layers();
  }
  if (geometry && RUNDATA.cable.PIPEF) tables["pipe"] = pipe();
  if (geometry && RUNDATA.run.ISCABLE == FOURWIRECABLE) tables["four-wire cable"] = fourWire();
  if (geometry) tables["soil"] = soil();
  if (!geometry) tables["entered data"] = entered();
  tables["model"] = model();
  return tables;
}

std::string tablesAsText(const Json& tables) {
  std::string text;
  for (const auto& [name, rows] : tables.items()) {
    text += fmt::format("\n{}\n{}", name, rows.is_object() ? listAsText(rows) : tableAsText(rows));
  }
  return text;
}

} // namespace lcp::companions
