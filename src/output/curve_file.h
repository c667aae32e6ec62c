// One detail curve file: a table with a row for each frequency step.
#pragma once

#include "base/general_field.h"
#include "base/stream_file.h"
#include "output/curve_table.h"

#include <cmath>

namespace lcp {

constexpr int ROWVALUES = 403; // numbers on a line of a curve file

// The files of a solve are opened with their headers, once, and stay open until their rows are
// written. They are an extra: what cannot be written is told on the console in one line, once a
// solve, and left empty, and the run goes on. Values that are no numbers count as such trouble.

// Opens the file of that kind and writes its header, if the run has it.
void headCurve(CurveId id);

// Those that are still open: complete with their headers alone, or left empty.
void closeHeadedCurves();
void discardHeadedCurves();

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
