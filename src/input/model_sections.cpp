// Sections of the Bergeron and fitted models, output display, HALO and numerical options.
#include "input/key_rows.h"
#include "input/reader_store.h"
#include "input/sections.h"
#include "store/rundata.h"

#include <fmt/format.h>

namespace lcp {

namespace {

constexpr double LOWESTFREQ = 0.001; // Hz
constexpr int LEASTINCREMENTS = 100; // of the fit range

constexpr KeyRow bergeronRows[] = {
    realKey("Frequency for Loss Approximation", &RUNDATA.bergeron.FLOSS)
        .in("Hz")
        .atLeast(LOWESTFREQ),
    integerKey("High Frequency Approximation", &RUNDATA.bergeron.HFAPPROX),
    realKey("Shaping Time Constant (0 Seq.)", &RUNDATA.bergeron.TAU0).in("s"),
    realKey("Shaping Time Constant (Metallic)", &RUNDATA.bergeron.TAUMET).in("s"),
    isIt1Key("Interpolate Travel Times", &RUNDATA.flags.INTTT),
    isIt1Key("Infinite Line Length", &RUNDATA.flags.INFLEN),
};
static_assert(noRowHidden(bergeronRows));

enum FitRule { INCREMENTS = 1, DCCORRECTION };

constexpr KeyRow fitRows[] = {
    realKey("Curve Fitting Start Frequency", &RUNDATA.fit.FSTART).in("Hz"),
    realKey("Curve Fitting End Frequency", &RUNDATA.fit.FEND).in("Hz"),
    integerKey("Total Number of Frequency Increments", &RUNDATA.fit.NFINC).then(INCREMENTS),
    integerKey("DC Correction Type", &RUNDATA.fit.DCCORR).then(DCCORRECTION),
    realKey("Cable Shunt Conductance", &RUNDATA.fit.CSHUNTG),
    integerKey("Cable dielectric loss method", &RUNDATA.fit.DIELM),
    setBy1Key("Eliminate Error at High Frequency", &RUNDATA.fit.ELIMHF),
    realKey("Lower frequency for passivity check", &RUNDATA.passivity.PFLO)
        .in("Hz")
        .noting(&RUNDATA.passivity.PFLOSET),
    realKey("Upper frequency for passivity check", &RUNDATA.passivity.PFHI).in("Hz"),
    integerKey("Frequency increments for passivity check", &RUNDATA.passivity.NPFINC),
    integerKey("Frequency distribution for passivity check", &RUNDATA.passivity.PFDIST),
    integerKey("Maximum iterations for passivity", &RUNDATA.passivity.PMAXIT)
        .noting(&RUNDATA.passivity.PITERSET),
    realKey("Maximum relative error for passivity", &RUNDATA.passivity.PMAXERR).in("%"),
    realKey("Eigenvalue tolerence", &RUNDATA.passivity.PEIGTOL).in("S"),
    isIt1Key("Smart Frequency Selection", &RUNDATA.fit.SMARTF),
    realKey("Frequency to Calculate Constant Transform", &RUNDATA.fit.FCT).in("Hz"),
    integerKey("Maximum # of Poles for Surge Impedance Fit", &RUNDATA.fit.MAXPZ),
    integerKey("Maximum # of Poles for Surge Admittance Fit", &RUNDATA.fit.MAXPY),
    integerKey("Maximum # of Poles for Series Impedance Fit", &RUNDATA.fit.MAXPZ),
    integerKey("Maximum # of Poles for Attenuation Constant Fit", &RUNDATA.fit.MAXPA),
    realKey("Maximum Fitting Error (%) for Surge Impedance", &RUNDATA.fit.ERRZ).in("%"),
    realKey("Maximum Fitting Error (%) for Surge Admittance", &RUNDATA.fit.ERRY).in("%"),
    realKey("Maximum Fitting Error (%) for Series Impedance", &RUNDATA.fit.ERRZ).in("%"),
    realKey("Maximum Fitting Error (%) for Attenuation Constant", &RUNDATA.fit.ERRA).in("%"),
    realKey("Voltage Maximum", &RUNDATA.fit.VMAX),
    realKey("Maximum Fitting Error (%) for Time Delay Extraction", &RUNDATA.fit.ERRTD).in("%"),
    integerKey("Starting # of Poles for Trace of H Fit", &RUNDATA.fit.NPTRH),
    realKey("Maximum Fitting Error (%) for Trace of H", &RUNDATA.fit.ERRTRH).in("%"),
    realKey("Maximum Residue/Pole Ratio Tolerance", &RUNDATA.fit.RPRATIO).in("1"),
    realKey("Weighting Factor 1", &RUNDATA.fit.WF1).in("1").setting(&RUNDATA.fit.WF1SET),
    realKey("Weighting Factor 2", &RUNDATA.fit.WF2).in("1").setting(&RUNDATA.fit.WF2SET),
    realKey("Weighting Factor 3", &RUNDATA.fit.WF3).in("1").setting(&RUNDATA.fit.WF3SET),
    isIt1Key("Interpolate Travel Times", &RUNDATA.flags.INTTT),
    isIt1Key("Infinite Line Length", &RUNDATA.flags.INFLEN),
    isIt1Key("Write Detailed Output Files", &RUNDATA.fit.WDETAIL),
};
static_assert(noRowHidden(fitRows));

enum DisplayRule { RECIPROCAL = 1 };

constexpr KeyRow displayRows[] = {
    realKey("Frequency for Calculation", &RUNDATA.display.DISPFREQ)
        .in("Hz")
        .at(28)
        .atLeast(LOWESTFREQ),
    realKey("Zero Tolerance for Display", &RUNDATA.display.ZEROTOL).at(29),
    realKey("Base Voltage for Display", &RUNDATA.display.VBASEDISP).in("kV").at(27),
    realKey("Base MVA for Display", &RUNDATA.display.MVABASEDISP).in("MVA").at(23),
    setBy1Key("Manual Output File", &RUNDATA.display.MANOUT).at(21),
    nameKey("Man. Output File Name", &RUNDATA.display.MANOUTF).at(24),
    setBy1Key("Create PI-Section", &RUNDATA.display.CREATEPI),
    realKey("Parallel R Limit", &RUNDATA.display.GPARLIM).in("ohm").then(RECIPROCAL),
};
static_assert(noRowHidden(displayRows));

constexpr KeyRow haloRows[] = {
    realKey("Height of Field Calculation", &RUNDATA.halo.height),
    realKey("Mobility of Positive Ions", &RUNDATA.halo.mobilityPositive),
    realKey("Mobility of Negative Ions", &RUNDATA.halo.mobilityNegative),
    realKey("Conductor Surface Smoothness Factor", &RUNDATA.halo.smoothness),
    realKey("X-Axis Starting Point", &RUNDATA.halo.xStart),
    realKey("X-Axis End Point", &RUNDATA.halo.xEnd),
    integerKey("Corona Losses", &RUNDATA.halo.coronaLosses),
    integerKey("Audible Noise", &RUNDATA.halo.audibleNoise),
    integerKey("Radio Interference", &RUNDATA.halo.radioInterference),
};
static_assert(noRowHidden(haloRows));

enum NumericsRule { ALLIMPROVED = 1 };

constexpr KeyRow numericsRows[] = {
    isIt1Key("Improved Modes", &RUNDATA.numerics.IMPROVEDMODES),
    isIt1Key("Improved Fits", &RUNDATA.numerics.IMPROVEDFITS),
    isIt1Key("Improved Passivity", &RUNDATA.numerics.IMPROVEDPASSIVITY),
    isIt1Key("Improved Earth", &RUNDATA.numerics.IMPROVEDEARTH),
    isIt1Key("Improved", &RUNDATA.numerics.IMPROVED).then(ALLIMPROVED),
};
static_assert(noRowHidden(numericsRows));

// Handles a line of a section without rules.
bool plainLine(std::span<const KeyRow> rows) {
  const KeyRow* key = findKey(rows, READER.LINE);
  if (key != nullptr) readKey(*key, READER.LINE);
  return key != nullptr;
}

} // namespace

bool bergeronLine() { return plainLine(bergeronRows); }

bool haloLine() { return plainLine(haloRows); }

bool numericsLine() {
  const KeyRow* key = findKey(numericsRows, READER.LINE);
  if (key == nullptr) return false;
  const Got got = readKey(*key, READER.LINE);
  if (key->rule == ALLIMPROVED && got == Got::Value)
    RUNDATA.numerics.setAll(RUNDATA.numerics.IMPROVED);
  return true;
}

bool fittedModelLine() {
  const KeyRow* key = findKey(fitRows, READER.LINE);
  if (key == nullptr) return false;
  if (readKey(*key, READER.LINE) != Got::Value) return true;
  if (key->rule == INCREMENTS && RUNDATA.fit.NFINC < LEASTINCREMENTS)
    readError(fmt::format("its value must be {} or more", LEASTINCREMENTS));
  if (key->rule == DCCORRECTION && RUNDATA.fit.DCCORR > 0) RUNDATA.fit.DCCORRF = true;
  return true;
}

bool displayLine() {
  const KeyRow* key = findKey(displayRows, READER.LINE);
  if (key == nullptr) return false;
  const Got got = readKey(*key, READER.LINE);
  if (key->rule == RECIPROCAL && got == Got::Value) {
    RUNDATA.display.GPARLIM = 1.0 / RUNDATA.display.GPARLIM;
  }
  return true;
}

} // namespace lcp
