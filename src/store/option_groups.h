// Run store, option groups: choice of the line model and options of the model sections.
#pragma once

#include "store/line_model.h"
#include "store/run_groups.h"

namespace lcp {

struct ModelChoice {
  ModelKind MODEL = ModelKind::None; // the line model
  bool MODHALO = false;              // field options: conductors keep the order of their sections

  const LineModel& row() const { return lineModel(MODEL); }
  bool atOneFrequency() const { return row().grid == ModelGrid::SteadyState; }
  bool atTwoFrequencies() const { return row().grid == ModelGrid::LossAndSteadyState; }
  bool needsModes() const { return row().modes; }
  bool fitted() const { return row().fits != ModelFits::None; }
  bool fitsModes() const { return row().fits == ModelFits::Modes; }
  bool fitsPhases() const { return row().fits == ModelFits::Phases; }
  bool fitsSeries() const { return row().fits == ModelFits::Series; }
};

struct BergeronOptions {
  double FLOSS = 60.0;  // frequency of the loss approximation, Hz
  int HFAPPROX = 1;     // 0: FLOSS becomes SSFREQ at the end of input
  double TAU0 = 1e-9;   // shaping time constant of the ground mode, s
  double TAUMET = 1e-9; // ... of the metallic modes, s
};

// Options common to the Bergeron model and the fitted models.
struct FlagLines {
  bool INTTT = true;   // interpolate travel times
  bool INFLEN = false; // infinite line length
};

struct FitOptions {
  double FSTART = 0.5; // fit range, Hz
  double FEND = 1.0e6;
  int NFINC = 100;          // frequency increments over the fit range
  bool CONSTT = true;       // constant transformation matrix, evaluated at FCT
  double FCT = 2000.0;      // frequency of the constant transformation, Hz
  int DCCORR = 0;           // DC correction type
  bool DCCORRF = false;     // ... whether one was selected
  double CSHUNTG = 3.0e-10; // shunt conductance of cables
  int DIELM = 1;            // dielectric loss method of cables
  bool ELIMHF = false;      // eliminate the error at high frequency
  bool SMARTF = false;      // not used in any computation
  int MAXPZ = 20;           // maximum number of poles: surge impedance
  int MAXPY = 20;           // ... surge admittance
  int MAXPA = 20;           // ... attenuation constant
  int MAXP4 = 20;           // ... transformation; has no key
  double ERRZ = 2.0;        // maximum fitting error, %: surge impedance
  double ERRY = 2.0;        // ... surge admittance
  double ERRA = 2.0;        // ... attenuation constant
  double ERR4 = 2.0;        // ... transformation; has no key
  double VMAX = 0;          // largest voltage
  double ERRTD = 0.01;      // maximum error of the delay extraction, %
  int NPTRH = 40;           // starting poles for the fit of the trace of H
  double ERRTRH = 0.1;      // maximum error of that fit, %
  double RPRATIO = 100.0;   // maximum ratio of residue to pole
  double WF1 = 0;           // fit weights below the steady-state frequency
  double WF2 = 0;           // ... at it
  double WF3 = 0;           // ... above it
  bool WF1SET = false;      // whether each weight was given
  bool WF2SET = false;
  bool WF3SET = false;
  bool WDETAIL = false; // write the detail curve files
};

struct PassivityOptions {
  double PFLO = 0;       // start of the frequency range of the check, Hz
  bool PFLOSET = false;  // whether the check is enabled
  double PFHI = 0;       // end of the range, Hz
  int NPFINC = 0;        // frequency increments of the check
  int PFDIST = 1;        // spacing of the frequencies
  int PMAXIT = 0;        // maximum iterations of the enforcement
  bool PITERSET = false; // whether the enforcement is enabled
  double PMAXERR = 0;    // maximum relative error of the enforced model
  double PEIGTOL = 0;    // eigenvalue tolerance
};

struct DisplayOptions {
  double DISPFREQ = 60.0;   // frequency of the report, Hz
  double ZEROTOL = 1.0e-19; // magnitudes up to this are printed as 0
  double VBASEDISP = 0;     // base of per-unit values, kV line to line
  double MVABASEDISP = 0;   // base of per-unit values, MVA
  bool MANOUT = false;      // write a manual file instead of the model file
  FileName MANOUTF;         // name of that file
  bool CREATEPI = false;    // write a Coupled Pi component
  double GPARLIM = 1.0e-5;  // smaller conductances are omitted from the component, S
};

// Improved numerical methods, each off by default.
struct NumericalOptions {
  bool IMPROVEDMODES = false;     // modes followed as invariant subspaces
  bool IMPROVEDFITS = false;      // fits with error control between the grid points
  bool IMPROVEDPASSIVITY = false; // enforcement over the whole spectrum and all frequencies

  bool IMPROVEDEARTH = false; // exact integrals of the earth return
  bool IMPROVED = false;      // last value of the key for all four

  bool any() const { return IMPROVEDMODES || IMPROVEDFITS || IMPROVEDPASSIVITY || IMPROVEDEARTH; }
  void setAll(bool on) { IMPROVEDMODES = IMPROVEDFITS = IMPROVEDPASSIVITY = IMPROVEDEARTH = on; }
};

// Options of field, corona and noise calculations: accepted but not used.
struct HaloOptions {
  double height = 2.0;
  double mobilityPositive = 0.15;
  double mobilityNegative = 0.15;
  double smoothness = 1.0;
  double xStart = -30.0;
  double xEnd = 30.0;
  int coronaLosses = 1;
  int audibleNoise = 1;
  int radioInterference = 1;
};

} // namespace lcp
