// One detail curve file as it is written: its name, its header, and a row for each frequency step.
#pragma once

#include "base/general_field.h"
#include "base/stream_file.h"
#include "output/curve_table.h"

#include <cmath>
#include <string>
#include <vector>

namespace lcp {

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
