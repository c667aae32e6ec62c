// One detail curve file: its name, its heading, and a row for each frequency step.
#pragma once

#include "base/general_field.h"
#include "base/stream_file.h"
#include "output/curve_table.h"

#include <cmath>
#include <string>
#include <vector>

namespace lcp {

constexpr int ROWVALUES = 403; // numbers per line of a curve file

// The files of a solve are opened with their headings and stay open until their rows are
// written; if the run ends before that, heading and rows so far remain. They are optional: a file
// that cannot be written, or whose values are not finite, is reported on the console in one line
// per solve and left empty, and the run continues.

// Names of the curve files of this run.
std::vector<std::string> curveFileNames();

// Opens a file and writes its heading, if the run has it.
void headCurve(CurveId id);

// Completes the file with what it contains, if it is open.
void closeCurve(CurveId id);

// Writes the rows of a file that has its heading.
class CurveFile {
public:
  // Returns false if the run has no such file or the file has failed.
  bool open(CurveId id);

  // Starts the row of a step: logarithm of the frequency, frequency (Hz).
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
