// The sections of a report, which the solve and the entered data share.
//
// Matrices and vectors are of the order NC, lengths and frequencies those of the run. Data are
// headed with DISPFREQ.
#pragma once

#include "base/text_file.h"
#include "store/solvedata.h"

namespace lcp {

constexpr int REPORTRULE = 53; // signs of a line across

// The head; its first line has so many equal signs.
void writeReportHead(TextFile& file, int firstRule = REPORTRULE);

// Load flow data, and the console line of the simulator, R, X and B of each circuit behind this
// text. The corrected data are shown when LLOK.
constexpr std::string_view SIMULATORLINE = " RXB: ";
void SEQRXB(TextFile& file, CConstView Y, CConstView Z, CConstView YLC, CConstView ZLC, bool LLOK);

// The head of the phase domain data, its first line of so many hyphens, and behind it Y and Z per
// metre, cleaned for display.
void writePhaseHead(TextFile& file, int firstRule = REPORTRULE);
void writePhaseDomain(TextFile& file, CConstView Y, CConstView Z);

// The long-line corrected matrices, for the whole line.
void writeCorrectedData(TextFile& file, CConstView YLC, CConstView ZLC);

struct ModalData {
  CView TI;               // transformation, unit columns
  const ModeComplex& EIG; // eigenvalues
  CView ZM, YM;           // modal matrices, ohm/m and S/m
  const ModeComplex& Z0;  // surge impedances, ohm
  const ModeReals& TAU;   // travel times, ms
};

// The head of the modal data, its frequency with so many decimals, and behind it the data; the
// matrices are cleaned for display in place.
void writeModalHead(TextFile& file, int decimals);
void writeModalDomain(TextFile& file, const ModalData& M);

// Sequence transform, and Z and Y in sequences.
void SEQMATS(TextFile& file, CConstView Y, CConstView Z);

// The recommended time step is a tenth of the smallest delay. Delays in ms, or else in s.
void MINDELAY(TextFile& file, std::span<const double> delays, bool milliseconds);

} // namespace lcp
