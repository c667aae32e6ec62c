// The line models as table rows: what each model needs of a solve.
#pragma once

#include <array>
#include <string_view>

namespace lcp {

// The numbers appear in a message. Halo: only field options, which give no model.
enum class ModelKind { None = -10, Pi = 1, Bergeron, Mode, Phase, Mfdtd, Halo };

enum class ModelGrid {
  SteadyState,        // only the steady-state frequency
  LossAndSteadyState, // the loss frequency and the steady-state frequency
  Band,               // a grid over the fit range, or the rows of a table
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
  std::string_view fileHead; // start of its model file, after comment lines
  ModelGrid grid;
  ModelFits fits;
  bool modes;    // the loops over frequency follow modes
  bool reported; // the report contains the modes at its frequency
  bool entered;  // accepts line data entered by hand
  bool replaced; // a manual output file can replace its model file
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

// Used if no model is selected: no fits, nothing reported.
constexpr LineModel NOMODEL = {
    ModelKind::None, "none", "", ModelGrid::Band, ModelFits::None, true, false, false, false};

constexpr const LineModel& lineModel(ModelKind kind) {
  for (const LineModel& row : LINEMODELS) {
    if (row.kind == kind) return row;
  }
  return NOMODEL;
}

} // namespace lcp
