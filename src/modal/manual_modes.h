// Modes of a line whose data were entered by hand: a real transformation, and per mode a travel
// time, a surge impedance and a resistance, from sequence values or from one Y and Z pair.
#pragma once

#include "modal/manual_store.h"

#include <string_view>

namespace lcp {

struct ManualMode {
  double T;  // travel time of the line, ms
  double Zc; // surge impedance, ohm
  double R;  // resistance, ohm/m
  double C;  // capacitance, F/m
  double L;  // inductance, H/m
};

// The warning of a mode whose inductance is below 0 behind the correction for the length.
constexpr std::string_view UNITSWARNING =
    "An error occurred in calculating impedance    and admittance matrices ";

// Length that the entered data go with, m: 1 when they are totals of the line.
double manualLength();

// Ends the run with a message, exit status 1, when there are no conductors or no data of a form
// that has modes.
void checkManualData();

// Fills TI, TIINV and EIGM, and for an entered pair YMOD and ZMOD; else these are 0.
void formManualTransformation();

// Mode k. With LONGLINE the correction for the length is taken out. Data without a travel time and
// a surge impedance above 0 end the run with a message, exit status 1; an inductance below 0 behind
// the correction gives a warning.
ManualMode manualMode(int k);

// Element (k,k) of YMOD and ZMOD at the frequency f, Hz.
void storeManualMode(int k, const ManualMode& mode, double f);

// Phase matrices per metre.
void formManualPhases(CView Y, CView Z);

} // namespace lcp
