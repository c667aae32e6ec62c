#include "output/mfdtd_model_file.h"

#include "fit/fit_store.h"
#include "output/model_file.h"
#include "store/rundata.h"

namespace lcp {

namespace {

void writeFirstLine(TextFile& file) {
  Record record(lineModel(ModelKind::Mfdtd).fileHead);
  record.column(7).integer(RUNDATA.line.NC, 2).column(10).integer(SERIESMODEL.NPZ, 2);
  file.line(record.column(30).text("1").column(41).text("1 /"));
}

void putReal(TextFile& file, double value) { file.line(Record().scientific(value, 20, 14)); }

void putComplex(TextFile& file, Complex value) {
  Record record("(");
  record.scientific(value.real(), 20, 14).text(",").scientific(value.imag(), 20, 14);
  file.line(record.text(")"));
}

void putUpper(TextFile& file, const RealMatrix& A) {
  const int n = RUNDATA.line.NC;
  for (int i = 1; i <= n; ++i) {
    for (int j = i; j <= n; ++j) putReal(file, A(i, j));
  }
}

void writePole(TextFile& file, int m) {
  const int n = RUNDATA.line.NC;
  putComplex(file, SERIESMODEL.ZFP[m]);
  for (int i = 1; i <= n; ++i) {
    for (int j = i; j <= n; ++j) putComplex(file, SERIESMODEL.ZFR(i, j)[m]);
  }
}

} // namespace

void writeMfdtdModel(TextFile& file, const SeriesShunt& shunt) {
  writeModelHead(file);
  writeFirstLine(file);
  writeFlagLines(file);
  putReal(file, RUNDATA.fit.VMAX);
  putReal(file, RUNDATA.run.LINELEN);
  putUpper(file, SERIESMODEL.ZFD);
  putUpper(file, SERIESMODEL.ZFE);
  putUpper(file, shunt.G);
  putUpper(file, shunt.C);
  file.line(Record().integer(SERIESMODEL.NPZ, 2));
  for (int m = 1; m <= SERIESMODEL.NPZ; ++m) writePole(file, m);
}

} // namespace lcp
