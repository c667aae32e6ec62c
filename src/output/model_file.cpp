#include "output/model_file.h"

#include "base/console.h"
#include "base/constants.h"
#include "kernels/matrix_kernels.h"
#include "modal/pi_model.h"
#include "store/rundata.h"

#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

namespace lcp {

namespace {

// Start of a branch record: side and node at both ends, in columns 2 to 17.
Record branchStart(std::string_view fromSide, int i, std::string_view toSide, int j) {
  Record record(" ");
  record.text(fromSide).blanks(1).integer(i, 5).blanks(3).text(toSide).integer(j, 5);
  return record;
}

void writeShuntElement(TextFile& file, int i, int j, std::string_view kind, double value) {
  for (const std::string_view side : {"S", "R"}) {
    Record record = branchStart(side, i, side, j);
    record.text("  ").text(kind).blanks(5).general(value, 16, 8);
    file.line(record);
  }
}

void writeShuntBranch(TextFile& file, int i, int j, Complex y) {
  const ShuntBranch branch = shuntBranch(y);
  writeShuntElement(file, i, j, "C", branch.c);
  if (branch.g > 0.0) writeShuntElement(file, i, j, "R", 1.0 / branch.g);
}

void writeSeriesRow(TextFile& file, const LineMatrix& PIW, int i) {
  Record record = branchStart("S", i, "R", i);
  record.blanks(3);
  for (int j = 1; j <= i; ++j) {
    record.blanks(5).general(PIW(i, j).real(), 16, 8);
    record.blanks(1).general(PIW(i, j).imag(), 16, 8);
    if (j % ROWELEMENTS == 0 && j < i) {
      file.line(record);
      record = Record();
    }
  }
  file.line(record);
}

void writeBergeronFirstLine(TextFile& file) {
  const BergeronOptions& B = RUNDATA.bergeron;
  Record record(" ");
  record.integer(RUNDATA.line.NC, 2).column(5).text("0").column(11).text("1");
  record.column(22).text("1").column(28);
  for (const double value : {RUNDATA.line.SSFREQ, B.FLOSS, RUNDATA.run.LINELEN, B.TAUMET, B.TAU0}) {
    record.general(value, 16, 7);
  }
  file.line(record.text(" /"));
}

// Reports negative resistances, which the file contains by magnitude.
void noteLosses(int k) {
  const SecondLoopStore& T = SOLVEDATA.second;
  const double f = RUNDATA.line.SSFREQ, floss = RUNDATA.bergeron.FLOSS;
  const double L = MILLI * T.TAUMS[k] * T.ZSURGER[k] / RUNDATA.run.LINELEN; // H/m
  for (const auto& [at, R] : {std::pair(f, T.RLOSS2[k]), std::pair(floss, T.RLOSS1[k])}) {
    noteNegativeResistance(k, at, R, TWOPI * at * L, std::fabs(R));
    if (f == floss) return;
  }
}

} // namespace

void writeModelHead(TextFile& file) {
  file.line("! ------ ORVEX/VELTA Line Constants Output ------ ");
  file.line("! This file auto-generated.   Any manual changes");
  file.line("! made to this file will be lost when the Line");
  file.line("! Constants program is run.");
  file.line("! ----------------------------------------------- ");
}

void writeFlagLines(TextFile& file) {
  if (!RUNDATA.flags.INTTT) file.line("NOINT");
  if (RUNDATA.flags.INFLEN) file.line("INFLENGTH");
}

void writeModeRecord(TextFile& file, int k, std::span<const double> values, int perLine) {
  Record record(" ");
  record.integer(k, 5).blanks(1).integer(k, 5).blanks(1);
  int onLine = 0;
  for (const double value : values) {
    if (onLine == perLine) {
      file.line(record);
      record = Record();
      onLine = 0;
    }
    record.blanks(1).general(value, 24, 15);
    if (++onLine == perLine) record.text(" /");
  }
  file.line(record);
}

void writePiModel(TextFile& file, const LineMatrix& YLC, const LineMatrix& ZLC) {
  static LineMatrix PIW;
  const int n = RUNDATA.line.NC;
  writeModelHead(file);
  file.line(lineModel(ModelKind::Pi).fileHead);
  formShuntData(PIW, YLC);
  for (int i = 1; i <= n; ++i) {
    for (int j = i + 1; j <= n; ++j) writeShuntBranch(file, i, j, PIW(i, j));
    writeShuntBranch(file, i, 0, PIW(i, i));
  }
  file.line(" TRANSFORMERS:");
  formSeriesData(PIW, ZLC);
  for (int i = 1; i <= n; ++i) writeSeriesRow(file, PIW, i);
}

void noteNegativeResistance(int k, double f, double R, double X, double written) {
  constexpr double ROUNDING = 1e-12;
  if (!(R < -ROUNDING * std::fabs(X))) return;
  console::note(
      fmt::format("mode {} has a negative resistance of {:.4g} at {:.4g} Hz; the model file "
                  "has {:.4g}",
                  k, R, f, written));
}

void writeBergeronModel(TextFile& file) {
  static RealMatrix TIR;
  const SecondLoopStore& T = SOLVEDATA.second;
  const int n = RUNDATA.line.NC;
  REALPT(TIR, SOLVEDATA.first.TI, n);
  RCOLNORM(TIR, TIR, n);
  writeModelHead(file);
  writeBergeronFirstLine(file);
  writeFlagLines(file);
  for (int k = 1; k <= n; ++k) {
    noteLosses(k);
    std::vector<double> values = {std::fabs(T.TAUMS[k]), std::fabs(T.ZSURGER[k]),
                                  std::fabs(T.RLOSS2[k]), std::fabs(T.RLOSS1[k])};
    for (int j = 1; j <= n; ++j) values.push_back(TIR(k, j));
    writeModeRecord(file, k, values, BERGERONVALUES);
  }
}

} // namespace lcp
