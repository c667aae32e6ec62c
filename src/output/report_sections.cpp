#include "output/report_sections.h"

#include "base/console.h"
#include "base/solve_error.h"
#include "kernels/matrix_kernels.h"
#include "modal/report_modes.h"
#include "modal/sequence.h"
#include "store/rundata.h"

#include <algorithm>
#include <string>

namespace lcp {

namespace {

// A rule of one sign, preceded by a blank.
void writeRule(TextFile& file, char sign, int length = REPORTRULE) {
  std::string rule(static_cast<std::size_t>(length) + 1, sign);
  rule[0] = ' ';
  file.line(rule);
}

// --- rows of numbers

// Writes a row of n elements; the format holds 25, and a longer row continues in a new record
// without the leading blank.
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

void writeTitle(TextFile& file, std::string_view words, int decimals, int firstRule = REPORTRULE) {
  writeRule(file, '-', firstRule);
  file.line(Record(words).fixed(RUNDATA.display.DISPFREQ, 11, decimals).text(" Hz:"));
  writeRule(file, '-');
}

// Copies a matrix and sets insignificant parts to 0.
void cleanCopy(LineMatrix& out, CConstView A, int n) {
  copyCorner(out, A, n);
  ZEROSM(out, n, RUNDATA.display.ZEROTOL);
}

// --- load-flow data

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

// Prints the line from which the simulator takes the positive sequence.
void tellSimulator(const LoadFlowData& data) {
  if (data.circuits == 0) return;
  Record record(SIMULATORLINE);
  std::string_view separator;
  for (int c = 0; c < data.circuits; ++c) {
    const SequenceValues& v = data.simulator[c];
    for (const double value : {v.R, v.X, v.B}) {
      record.text(separator).scientific(value, 19, 12);
      separator = ",";
    }
  }
  if (!record.finite()) {
    console::openStars();
    console::line("The Positive Sequence Values of the Line are not Finite Numbers");
    stopInStars();
  }
  console::line();
  console::line(record.view());
}

} // namespace

void writeReportHead(TextFile& file, int firstRule) {
  writeRule(file, '=', firstRule);
  file.line("  ORVEX LINE CONSTANTS PROGRAM OUTPUT FILE (*.out)");
  file.line();
  file.line("  NOTE: This file is auto-generated.  Any manual");
  file.line("        changes will be lost once the Line Constants");
  file.line("        Program is re-run.");
  writeRule(file, '=');
  file.line();
  file.line("  Display Format: M,N denotes a complex number M + jN");
  file.line();
  file.line();
}

void SEQRXB(TextFile& file, CConstView Y, CConstView Z, CConstView YLC, CConstView ZLC, bool LLOK) {
  LoadFlowData data;
  formLoadFlowData(data, Y, Z, YLC, ZLC, LLOK);
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

void writePhaseHead(TextFile& file, int firstRule) {
  writeTitle(file, "  PHASE DOMAIN DATA @ ", 3, firstRule);
}

void writePhaseDomain(TextFile& file, CConstView Y, CConstView Z) {
  static LineMatrix clean;
  const int n = RUNDATA.line.NC;
  cleanCopy(clean, Z, n);
  writeMatrix(file, " SERIES IMPEDANCE MATRIX (Z) [ohms/m]: ", clean, n);
  cleanCopy(clean, Y, n);
  writeMatrix(file, " SHUNT ADMITTANCE MATRIX (Y) [mhos/m]: ", clean, n);
}

void writeCorrectedData(TextFile& file, CConstView YLC, CConstView ZLC) {
  const int n = RUNDATA.line.NC;
  const double l = RUNDATA.run.LINELEN;
  writeMatrix(file, " LONG-LINE CORRECTED SERIES IMPEDANCE MATRIX [ohms]: ", ZLC, n, l);
  writeMatrix(file, " LONG-LINE CORRECTED SHUNT ADMITTANCE MATRIX [mhos]: ", YLC, n, l);
}

void writeModalHead(TextFile& file, int decimals) {
  file.line();
  writeTitle(file, "  MODAL DOMAIN DATA @ ", decimals);
}

void writeModalDomain(TextFile& file, const ModalData& M) {
  const int n = RUNDATA.line.NC;
  for (const CView m : {M.TI, M.ZM, M.YM}) ZEROSM(m, n, RUNDATA.display.ZEROTOL);
  writeMatrix(file, " YZ EIGENVECTOR (MODAL TRANSFORMATION) MATRIX (TI): ", M.TI, n);
  writeComplexVector(file, " YZ EIGENVALUE VECTOR: ", M.EIG, n);
  writeMatrix(file, " MODAL IMPEDANCE MATRIX [ohms/m]: ", M.ZM, n);
  writeMatrix(file, " MODAL ADMITTANCE MATRIX [mhos/m]: ", M.YM, n);
  writeComplexVector(file, " MODAL CHARACTERISTIC IMPEDANCE VECTOR (Z0) [ohms]: ", M.Z0, n);
  writeRealVector(file, " MODAL TRAVEL TIME VECTOR [ms]: ", n, [&](int i) { return M.TAU[i]; });
  writeRealVector(file, " MODAL VELOCITY VECTOR [m/s]: ", n,
                  [&](int i) { return modeVelocity(M.TAU[i]); });
}

void SEQMATS(TextFile& file, CConstView Y, CConstView Z) {
  static LineMatrix sequences;
  const int n = RUNDATA.line.NC;
  const double ZEROTOL = RUNDATA.display.ZEROTOL;
  file.line();
  writeTitle(file, "  SEQUENCE COMPONENT DATA @ ", 2);
  writeMatrix(file, " SEQUENCE TRANSFORM MATRIX: ", sequenceTransform(), 3);
  transformBlocks(sequences, Z, n);
  ZEROSM(sequences, n, ZEROTOL);
  writeMatrix(file, " SEQUENCE IMPEDANCE MATRIX (Zsq) [ohms/m]: ", sequences, n);
  transformBlocks(sequences, Y, n);
  ZEROSM(sequences, n, ZEROTOL);
  writeMatrix(file, " SEQUENCE ADMITTANCE MATRIX (Ysq) [mhos/m]: ", sequences, n);
}

void MINDELAY(TextFile& file, std::span<const double> delays, bool milliseconds) {
  double m = 1e6;
  for (const double delay : delays) m = std::min(m, delay);
  if (!milliseconds) m *= 1000.0;
  file.line();
  writeRule(file, '-');
  file.line("  MINIMUM TIME DELAY AND RECOMMENDED TIME STEP");
  writeRule(file, '-');
  file.line("   ");
  file.line(Record("   Minimum Time Delay for the Line    [ms]: ").fixed(m, 15, 9));
  file.line(Record("   Maximum Recommended Time Step for the Line [ms]: ").fixed(m / 10, 15, 9));
  file.line("   ");
}

} // namespace lcp
