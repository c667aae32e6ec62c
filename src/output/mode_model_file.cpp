#include "output/mode_model_file.h"

#include "fit/fit_store.h"
#include "output/model_file.h"
#include "store/rundata.h"

#include <algorithm>

namespace lcp {

namespace {

constexpr int CHUNK = 6; // poles or residues per line

void writeHead(TextFile& file) {
  const int n = RUNDATA.line.NC;
  writeModelHead(file);
  file.line(Record(lineModel(ModelKind::Mode).fileHead)
                .blanks(1)
                .integer(n, 2)
                .column(12)
                .text("0")
                .column(30)
                .text("1")
                .column(41)
                .text("1 /"));
  writeFlagLines(file);
  file.line(Record("! *** Length: ").general(RUNDATA.run.LINELEN, 10, 5).text(" Metres "));
  file.line(Record("! *** ")
                .integer(n, 2)
                .text(" Conductors, ")
                .text(" Ground Res.: ")
                .general(RUNDATA.ground.GRHO, 10, 5)
                .text(" Ohm-Metres "));
}

// Real parts of a chunk on one line, imaginary parts on the next.
void writeChunks(TextFile& file, const PoleTable& values, int n) {
  for (int a = 1; a <= n; a += CHUNK) {
    Record re, im;
    for (int m = a; m <= std::min(a + CHUNK - 1, n); ++m) {
      re.blanks(1).scientific(values[m].real(), 19, 12);
      im.blanks(1).scientific(values[m].imag(), 19, 12);
    }
    file.line(re);
    file.line(im);
  }
}

void writeFunction(TextFile& file, const RationalFit& F) {
  Record first(" ");
  first.integer(F.N, 4).blanks(3);
  file.line(first.blanks(1).scientific(F.D, 19, 12).blanks(1).scientific(0.0, 19, 12));
  writeChunks(file, F.P, F.N);
  writeChunks(file, F.R, F.N);
}

void writeTitle(TextFile& file, int m, std::string_view title) {
  file.line(Record("C ** Mode ").integer(m, 2).text(title));
}

void writeMode(TextFile& file, int m) {
  const std::string rule(44, '*');
  file.line(Record("C " + rule + " Mode").integer(m, 2).text(" Data => " + rule));
  file.line(Record(" ")
                .integer(m, 5)
                .blanks(1)
                .integer(m, 5)
                .blanks(5)
                .general(SOLVEDATA.second.TAUMS[m], 19, 12)
                .text(" / Nodes, Travel-Time(mS)"));
  writeTitle(file, m, " Surge Impedances => ");
  writeFunction(file, MODEMODEL.Z[m]);
  writeTitle(file, m, " Attenuation Constants => ");
  writeFunction(file, MODEMODEL.A[m]);
  writeTitle(file, m, " Current Transformation Matrix => ");
}

void writeTransformElement(TextFile& file, int m, int r) {
  file.line(Record("C ** Row ").integer(r, 2).text(" => "));
  writeFunction(file, MODEMODEL.T(m, r));
}

} // namespace

void writeModeModel(TextFile& file) {
  const int n = RUNDATA.line.NC;
  writeHead(file);
  for (int m = 1; m <= n; ++m) {
    writeMode(file, m);
    for (int r = 1; r <= n; ++r) writeTransformElement(file, m, r);
  }
}

} // namespace lcp
