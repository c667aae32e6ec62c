// The sections of a report, common to the solve and to entered data.
//
// Matrices and vectors have order NC; lengths and frequencies are those of the run. Data headings
// show DISPFREQ.
#pragma once

#include "base/text_file.h"
#include "store/solvedata.h"

namespace lcp {

constexpr int REPORTRULE = 53; // length of a rule

// The head; firstRule is the number of equal signs in its first line.
void writeReportHead(TextFile& file, int firstRule = REPORTRULE);

// Writes the load-flow data, and prints the simulator's console line: R, X and B of each circuit
// after this text. Corrected data are written if LLOK.
constexpr std::string_view SIMULATORLINE = " RXB: ";
void SEQRXB(TextFile& file, CConstView Y, CConstView Z, CConstView YLC, CConstView ZLC, bool LLOK);

// Head of the phase-domain data, with firstRule hyphens in its first line, and Y and Z per metre,
// cleaned for display.
void writePhaseHead(TextFile& file, int firstRule = REPORTRULE);
void writePhaseDomain(TextFile& file, CConstView Y, CConstView Z);

// The long-line corrected matrices for the whole line.
void writeCorrectedData(TextFile& file, CConstView YLC, CConstView ZLC);

struct ModalData {
  CView TI;               // transformation, unit columns
  const ModeComplex& EIG; // eigenvalues
  CView ZM, YM;           // modal matrices, ohm/m and S/m
  const ModeComplex& Z0;  // surge impedances, ohm
  const ModeReals& TAU;   // travel times, ms
};

// Head of the modal data, which shows the frequency with this number of decimals, and the data. The
// matrices are cleaned for display in place.
void writeModalHead(TextFile& file, int decimals);
void writeModalDomain(TextFile& file, const ModalData& M);

// Sequence transformation, and Z and Y in sequences.
void SEQMATS(TextFile& file, CConstView Y, CConstView Z);

// Writes the recommended time step, a tenth of the smallest delay. Delays are in ms or s.
void MINDELAY(TextFile& file, std::span<const double> delays, bool milliseconds);

} // namespace lcp
