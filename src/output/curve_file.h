// The detail curve files, tables with a row for each frequency step: which there are, their names
// and headers, and one of them as it is written.
#pragma once

#include "base/general_field.h"
#include "base/stream_file.h"

#include <cmath>
#include <string>
#include <vector>

namespace lcp {

enum class CurveId {
  ZCMM, // surge impedances of the modes and their fits: magnitude
  ZCPM, // ... angle
  AMM,  // modal propagation functions without delay and their fits: magnitude
  APM,
  TIMM, // elements of the current transformation and their fits: magnitude
  TIPM,
  YCMP, // elements of the characteristic admittance and their fits: magnitude
  YCPP,
  HMM, // functions of the delay groups and their fits: magnitude
  HPM,
  HMP, // elements of the propagation matrix and their fits: magnitude
  HPP,
  TIMP, // elements of the current transformation: magnitude
  TIPP,
  ZMF, // fitted series impedance: magnitude
  ZPF,
  LAMDAM, // squared propagation constants: magnitude
  LAMDAP,
  ZM, // series impedance: magnitude
  YM, // shunt admittance: magnitude
  ZP,
  YP,
  ZS,      // series impedance: real and imaginary parts
  YS,      // shunt admittance: real and imaginary parts
  SHORTED, // impedance of each mode with the far end shorted
  OPEN,    // ... with the far end open
  GDIS,    // input impedances of the phases, far end shorted
  GDIO,    // ... far end open
  COUNT
};

constexpr int ROWVALUES = 403; // numbers on a line of a curve file

// The files of a solve are opened with their headers, once, and stay open until their rows are
// written; a run that ends before leaves the header and the rows so far. They are an extra: what
// cannot be written is told on the console in one line, once a solve, and left empty, and the run
// goes on. Values that are no numbers count as such trouble.

// The names of those that the run has.
std::vector<std::string> curveFileNames();

// Opens the file of that kind and writes its header, if the run has it.
void headCurve(CurveId id);

// Completes the file with what it has, if it is open.
void closeCurve(CurveId id);

// The rows of a file that has its header.
class CurveFile {
public:
  // False when the run has no such file, or the file had trouble.
  bool open(CurveId id);

  // Begins the row of a step: logarithm of the frequency, frequency (Hz).
  void startRow(double LOGFN, double FN);
  void value(double v) {
    if (inLine == ROWVALUES) nextLine();
    ++inLine;
    finite = finite && std::isfinite(v);
    char* to = file->room(GAP + GENERALWIDTH);
    std::memcpy(to, "   ", GAP);
    putGeneral(v, to + GAP);
  }
  void endRow();

  void close(); // no more rows

private:
  static constexpr std::size_t GAP = 3; // blanks before a value

  StreamFile* file = nullptr;
  CurveId curve{};
  int inLine = 0;
  bool finite = true;

  void nextLine();
};

} // namespace lcp
