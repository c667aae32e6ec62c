// Modes of a line whose data were entered by hand.
//
// They have a real transformation and, per mode, a travel time, a surge impedance and a resistance,
// computed from sequence values or from a pair of Y and Z matrices.
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

// Warning for a mode whose inductance is negative after the length correction is removed.
constexpr std::string_view UNITSWARNING =
    "An error occurred in calculating impedance    and admittance matrices ";

// Length that the entered data refer to, m; 1 if they are totals of the line.
double manualLength();

// Ends the run with a message and exit status 1 if there are no conductors or the entered data have
// no modes.
void checkManualData();

// Fills TI, TIINV and EIGM, and for an entered pair YMOD and ZMOD, which are otherwise 0.
void formManualTransformation();

// Mode k. With LONGLINE set, the length correction is removed. Data without a positive travel time
// and surge impedance end the run with a message and exit status 1; a negative inductance after
// removing the correction gives a warning.
ManualMode manualMode(int k);

// Stores element (k,k) of YMOD and ZMOD at frequency f, Hz.
void storeManualMode(int k, const ManualMode& mode, double f);

// Phase matrices per metre, Y in S/m and Z in ohm/m.
void formManualPhases(CView Y, CView Z);

} // namespace lcp
