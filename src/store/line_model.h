// The line models as rows: what each of them asks of a solve.
#pragma once

#include <array>
#include <string_view>

namespace lcp {

// The numbers show in a message. Halo: field options alone, which give no model.
enum class ModelKind { None = -10, Pi = 1, Bergeron, Mode, Phase, Mfdtd, Halo };

enum class ModelGrid {
  SteadyState,        // the steady-state frequency alone
  LossAndSteadyState, // the frequency of the losses and the steady-state frequency
  Band,               // a grid over the range of the fits, or the rows of a table
};

enum class ModelFits {
  None,
  Modes,  // surge impedance, propagation and transformation of each mode
  Phases, // characteristic admittance and propagation matrix
  Series, // series impedance; the shunt admittance is constant
};

struct LineModel {
  ModelKind kind;
  std::string_view name;
  std::string_view fileHead; // how its file begins, after lines of comment
  ModelGrid grid;
  ModelFits fits;
  bool modes;    // the loops over frequency follow modes
  bool reported; // the report has the modes at its frequency
  bool entered;  // takes data of a line entered by hand
  bool replaced; // a manual output file can replace its file
};

constexpr std::array<LineModel, 5> LINEMODELS = {{
    {ModelKind::Pi, "PI", " BRANCHES:", ModelGrid::SteadyState, ModelFits::None, true, true, false,
     false},
    {ModelKind::Bergeron, "Bergeron", " ", ModelGrid::LossAndSteadyState, ModelFits::None, true,
     true, true, false},
    {ModelKind::Mode, "frequency dependent (mode)", "Fre-Dep", ModelGrid::Band, ModelFits::Modes,
     true, false, false, false},
    {ModelKind::Phase, "frequency dependent (phase)", "Fre-Phase", ModelGrid::Band,
     ModelFits::Phases, true, false, false, true},
    {ModelKind::Mfdtd, "MFDTD", "MFDTD", ModelGrid::Band, ModelFits::Series, false, false, false,
     true},
}};

// A description without a model has that of nothing: no fits, no modes.
constexpr LineModel NOMODEL = {
    ModelKind::None, "none", "", ModelGrid::Band, ModelFits::None, true, false, false, false};

constexpr const LineModel& lineModel(ModelKind kind) {
  for (const LineModel& row : LINEMODELS) {
    if (row.kind == kind) return row;
  }
  return NOMODEL;
}

} // namespace lcp
