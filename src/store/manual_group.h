// Run store, manual group: line data entered by hand.
#pragma once

#include "base/matrix.h"
#include "store/run_groups.h"

namespace lcp {

// Forms of the entered data.
constexpr int MANNONE = -10;   // nothing chosen
constexpr int MANPERUNIT = 0;  // sequence data in per unit per metre
constexpr int MANOHMS = 1;     // sequence data in ohms per metre
constexpr int MANSURGE = 2;    // surge impedance and travel time
constexpr int MANPAIR = 4;     // one pair of Y and Z matrices
constexpr int MANMULTIPLE = 5; // a table of Y and Z over frequency

// Source of the zero-sequence data.
constexpr int ZEROENTERED = 0; // as entered
constexpr int ZERORATIOS = 1;  // estimated from the positive sequence with the ratios
constexpr int ZEROEQUAL = 2;   // equal to the positive sequence

// Resistance, inductive reactance and capacitive reactance of the positive sequence, the zero
// sequence and the zero-sequence mutual: in per unit per metre, or in ohm/m, ohm/m and megohm m.
struct SequenceReactances {
  double R1 = 0, X1 = 0, XC1 = 0;
  double R0 = 0, X0 = 0, XC0 = 0;
  double R0M = 0, X0M = 0, XC0M = 0;
};

// Resistance in ohm/m, travel time in s/m and surge impedance in ohm of the same three.
struct SequenceSurges {
  double R1 = 0, T1 = 0, ZC1 = 0;
  double R0 = 0, T0 = 0, ZC0 = 0;
  double R0M = 0, T0M = 0, ZC0M = 0;
};

struct ManualSequences {
  SequenceReactances SEQPU;  // per unit per metre
  SequenceReactances SEQOHM; // ohms per metre
  SequenceSurges SEQSURGE;   // surge impedance and travel time
};

struct ManualData {
  int MANFMT = MANNONE;               // form of the entered data
  int LONGLINE = 0;                   // 1: the data are already corrected for the line length
  int YZFMT = 0;                      // 1: YENT and ZENT are totals for the line, not per metre
  double VRATE = 230.0;               // base voltage of per-unit data, kV line to line
  double MVARATE = 100.0;             // base power of per-unit data, MVA
  FileName YZFILE;                    // file of Y and Z over frequency; default set below
  int ESTZERO = ZEROENTERED;          // source of the zero-sequence data
  double RATIOR = 0;                  // ratio of zero to positive sequence: resistance
  double RATIOZ = 0;                  // ... surge impedance
  double RATIOT = 0;                  // ... travel time
  ManualSequences MANSEQ;             // sequence values
  SquareStore<Complex, LDMAT> YENT{}; // entered shunt admittance, S/m or S
  SquareStore<Complex, LDMAT> ZENT{}; // entered series impedance, ohm/m or ohm

  constexpr ManualData() { YZFILE = "..\\inputYZ.txt"; }
};

} // namespace lcp
