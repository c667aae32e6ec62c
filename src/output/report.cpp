#include "output/report.h"

#include "base/console.h"
#include "kernels/matrix_kernels.h"
#include "modal/core_sequence.h"
#include "modal/long_line.h"
#include "modal/report_modes.h"
#include "modal/sequence.h"
#include "store/fitmodel.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <algorithm>

namespace lcp {

namespace {

constexpr std::string_view HYPHENS = " -----------------------------------------------------";
constexpr std::string_view EQUALS = " =====================================================";

// --- rows of numbers

// One row of n elements; the format holds 25, and a longer row goes on in a new record without the
// leading blank.
template <class WriteElement> void writeRow(TextFile& file, int n, WriteElement writeElement) {
  Record record(" ");
  for (int j = 1; j <= n; ++j) {
    writeElement(record, j);
    if (j % ROWELEMENTS == 0 && j < n) {
      file.line(record);
      record = Record();
    }
  }
  file.line(record);
}

void putComplex(Record& record, Complex z) {
  record.blanks(3).scientific(z.real(), 15, 9).text(",").scientific(z.imag(), 15, 9);
}

void writeMatrix(TextFile& file, std::string_view title, CConstView A, int n, double factor = 1.0) {
  file.line();
  file.line(title);
  for (int i = 1; i <= n; ++i) {
    writeRow(file, n, [&](Record& r, int j) { putComplex(r, factor * A(i, j)); });
  }
}

void writeComplexVector(TextFile& file, std::string_view title, const ModeComplex& v, int n) {
  file.line();
  file.line(title);
  writeRow(file, n, [&](Record& r, int j) { putComplex(r, v[j]); });
}

template <class Value>
void writeRealVector(TextFile& file, std::string_view title, int n, Value value) {
  file.line();
  file.line(title);
  writeRow(file, n, [&](Record& r, int j) { r.blanks(3).scientific(value(j), 15, 9).blanks(16); });
}

void writeTitle(TextFile& file, std::string_view words, int decimals) {
  file.line(HYPHENS);
  file.line(Record(words).fixed(RUNDATA.display.DISPFREQ, 11, decimals).text(" Hz:"));
  file.line(HYPHENS);
}

// Copy of a matrix with the parts of no interest set to 0.
void cleanCopy(LineMatrix& out, const LineMatrix& A, int n) {
  copyCorner(out, A, n);
  ZEROSM(out, n, RUNDATA.display.ZEROTOL);
}

// --- sections, in the order of the file

void writeHead(TextFile& file) {
  file.line(EQUALS);
  file.line("  ORVEX LINE CONSTANTS PROGRAM OUTPUT FILE (*.out)");
  file.line();
  file.line("  NOTE: This file is auto-generated.  Any manual");
  file.line("        changes will be lost once the Line Constants");
  file.line("        Program is re-run.");
  file.line(EQUALS);
  file.line();
  file.line("  Display Format: M,N denotes a complex number M + jN");
  file.line();
  file.line();
}

constexpr std::string_view PLAINLABELS[] = {
    "   Resistance      Rsq   [Ohms]:       ", "   Reactance       Xsq   [Ohms]:       ",
    "   Susceptance     Bsq      [S]:       ", "   Surge Impedance Zcsq  [Ohms]:       "};
constexpr std::string_view PERUNITLABELS[] = {
    "   Resistance      Rsq   [pu]:       ", "   Reactance       Xsq   [pu]:       ",
    "   Susceptance     Bsq   [pu]:       ", "   Surge Impedance Zcsq  [pu]:       "};

void SEQBLOCK(TextFile& file, const SequenceValues& v, bool perUnit) {
  const auto& labels = perUnit ? PERUNITLABELS : PLAINLABELS;
  const double values[] = {v.R, v.X, v.B, v.Zc};
  file.line();
  for (int i = 0; i < 4; ++i) file.line(Record(labels[i]).general(values[i], 15, 9));
  file.line("      ");
}

void writeBases(TextFile& file, bool perUnit) {
  const DisplayOptions& D = RUNDATA.display;
  if (perUnit) {
    file.line(Record("  Base of Per-Unit Quantities : ")
                  .fixed(D.VBASEDISP, 6, 2)
                  .text(" kV (L-L)  ,")
                  .fixed(D.MVABASEDISP, 6, 2)
                  .text(" MVA"));
    file.line("  NOTE: Base values could be changed using Additional Options Component");
  } else {
    file.line("  NOTE: Additional Options Component can be used to display in pu values");
  }
  file.line("      ");
}

// The line with which the simulator takes the positive sequence over.
void tellSimulator(const LoadFlowData& data) {
  if (data.circuits == 0) return;
  Record record(" RXB: ");
  std::string_view separator;
  for (int c = 0; c < data.circuits; ++c) {
    const SequenceValues& v = data.simulator[c];
    for (const double value : {v.R, v.X, v.B}) {
      record.text(separator).scientific(value, 19, 12);
      separator = ",";
    }
  }
  console::line();
  console::line(record.view());
}

void SEQRXB(TextFile& file, CConstView YLC, CConstView ZLC, bool LLOK) {
  LoadFlowData data;
  const FirstLoopStore& S = SOLVEDATA.first;
  formLoadFlowData(data, S.YMAT, S.ZMAT, YLC, ZLC, LLOK);
  file.line();
  writeTitle(file, "  LOAD FLOW RXB FORMATTED DATA @ ", 2);
  file.line();
  writeBases(file, data.perUnit);
  for (int b = 0; b < data.count; ++b) {
    const SequenceBlock& block = data.blocks[b];
    if (block.parted) file.line("     ");
    file.line(Record(" ").text(block.label));
    file.line(block.positive ? "   ................. " : "   ............. ");
    SEQBLOCK(file, block.values, data.perUnit);
  }
  file.line(" ");
  file.line(" ");
  tellSimulator(data);
}

// Of a cable system: the cores alone; its own constants stand again afterwards.
void SEQCABLE(TextFile& file) {
  static LineMatrix YLC, ZLC;
  const FirstLoopStore& S = SOLVEDATA.first;
  bool LLOK = true;
  const Grounding saved = groundSheaths(RUNDATA.display.DISPFREQ);
  LONGCOR(S.YMAT, S.ZMAT, RUNDATA.run.LINELEN, YLC, ZLC, RUNDATA.line.NC, LLOK);
  SEQRXB(file, YLC, ZLC, LLOK);
  restoreSheaths(saved, RUNDATA.display.DISPFREQ);
}

void writePhaseDomain(TextFile& file, int n) {
  static LineMatrix clean;
  writeTitle(file, "  PHASE DOMAIN DATA @ ", 3);
  cleanCopy(clean, SOLVEDATA.first.ZMAT, n);
  writeMatrix(file, " SERIES IMPEDANCE MATRIX (Z) [ohms/m]: ", clean, n);
  cleanCopy(clean, SOLVEDATA.first.YMAT, n);
  writeMatrix(file, " SHUNT ADMITTANCE MATRIX (Y) [mhos/m]: ", clean, n);
}

void writeModalDomain(TextFile& file, int n) {
  FirstLoopStore& S = SOLVEDATA.first;
  SecondLoopStore& T = SOLVEDATA.second;
  const double ZEROTOL = RUNDATA.display.ZEROTOL;
  formReportModes();
  for (const CView m : {S.TI.view(), T.ZM.view(), T.YM.view()}) ZEROSM(m, n, ZEROTOL);
  file.line();
  writeTitle(file, "  MODAL DOMAIN DATA @ ", 3);
  writeMatrix(file, " YZ EIGENVECTOR (MODAL TRANSFORMATION) MATRIX (TI): ", S.TI, n);
  writeComplexVector(file, " YZ EIGENVALUE VECTOR: ", S.EIG, n);
  writeMatrix(file, " MODAL IMPEDANCE MATRIX [ohms/m]: ", T.ZM, n);
  writeMatrix(file, " MODAL ADMITTANCE MATRIX [mhos/m]: ", T.YM, n);
  writeComplexVector(file, " MODAL CHARACTERISTIC IMPEDANCE VECTOR (Z0) [ohms]: ", T.ZSURGE, n);
  writeRealVector(file, " MODAL TRAVEL TIME VECTOR [ms]: ", n, [&](int i) { return T.TAUMS[i]; });
  writeRealVector(file, " MODAL VELOCITY VECTOR [m/s]: ", n, modeVelocity);
}

void SEQMATS(TextFile& file, int n) {
  static LineMatrix sequences;
  const FirstLoopStore& S = SOLVEDATA.first;
  const double ZEROTOL = RUNDATA.display.ZEROTOL;
  file.line();
  writeTitle(file, "  SEQUENCE COMPONENT DATA @ ", 2);
  writeMatrix(file, " SEQUENCE TRANSFORM MATRIX: ", sequenceTransform(), 3);
  transformBlocks(sequences, S.ZMAT, n);
  ZEROSM(sequences, n, ZEROTOL);
  writeMatrix(file, " SEQUENCE IMPEDANCE MATRIX (Zsq) [ohms/m]: ", sequences, n);
  transformBlocks(sequences, S.YMAT, n);
  ZEROSM(sequences, n, ZEROTOL);
  writeMatrix(file, " SEQUENCE ADMITTANCE MATRIX (Ysq) [mhos/m]: ", sequences, n);
}

std::span<const double> first(std::span<const double> values, int n) {
  return values.first(static_cast<std::size_t>(n));
}

// The recommended time step is a tenth of the smallest delay. Delays in ms, or else in s.
void MINDELAY(TextFile& file, std::span<const double> delays, bool milliseconds) {
  double m = 1e6;
  for (const double delay : delays) m = std::min(m, delay);
  if (!milliseconds) m *= 1000.0;
  file.line();
  file.line(HYPHENS);
  file.line("  MINIMUM TIME DELAY AND RECOMMENDED TIME STEP");
  file.line(HYPHENS);
  file.line("   ");
  file.line(Record("   Minimum Time Delay for the Line    [ms]: ").fixed(m, 15, 9));
  file.line(Record("   Maximum Recommended Time Step for the Line [ms]: ").fixed(m / 10, 15, 9));
  file.line("   ");
}

} // namespace

void writeReport(TextFile& file) {
  static LineMatrix YLC, ZLC;
  const FirstLoopStore& S = SOLVEDATA.first;
  const ModelChoice& M = RUNDATA.model;
  const int n = RUNDATA.line.NC;
  const double l = RUNDATA.run.LINELEN;
  bool LLOK = true;
  LONGCOR(S.YMAT, S.ZMAT, l, YLC, ZLC, n, LLOK);
  ZEROSM(ZLC, n, RUNDATA.display.ZEROTOL);
  ZEROSM(YLC, n, RUNDATA.display.ZEROTOL);
  writeHead(file);
  if (hasLoadFlowSection()) SEQRXB(file, YLC, ZLC, LLOK);
  if (hasCoreSequences()) SEQCABLE(file);
  writePhaseDomain(file, n);
  if (LLOK) {
    writeMatrix(file, " LONG-LINE CORRECTED SERIES IMPEDANCE MATRIX [ohms]: ", ZLC, n, l);
    writeMatrix(file, " LONG-LINE CORRECTED SHUNT ADMITTANCE MATRIX [mhos]: ", YLC, n, l);
  }
  if (M.MODPI || M.MODBERG) writeModalDomain(file, n);
  if (hasSequenceMatrices()) SEQMATS(file, n);
  if (M.MODBERG) MINDELAY(file, first(SOLVEDATA.second.TAUMS.entries, n), true);
  if (M.MODFDP) MINDELAY(file, first(FITMODEL.TAU.entries, FITMODEL.NGROUP), false);
}

} // namespace lcp
