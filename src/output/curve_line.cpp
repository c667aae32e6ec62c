// Far end shorted and open, with u the propagation constant times the length:
//
//   Zin_i = Zs_i tanh u_i,   Zin_i = Zs_i coth u_i           of mode i
//   V = M diag(Zin) M^T I,   M = TI^-T,   I = (3, 0, 0)      of the phases
#include "output/curve_line.h"

#include "kernels/hyperbolic.h"
#include "kernels/inversion.h"

namespace lcp {

namespace {

using enum CurveId;
using enum Part;

constexpr double INJECTED = 3.0; // A

enum class FarEnd { SHORTED, OPEN };

Complex inputImpedance(FarEnd end, int k, int i) {
  const SecondLoopStore& T = SOLVEDATA.second;
  const Complex u = T.GAMLEN(k, i);
  return T.ZSURGST(k, i) * (end == FarEnd::SHORTED ? CTANH(u) : CCOTH(u));
}

void putPolar(CurveFile& file, Complex z) {
  file.value(magnitudeOf(z));
  file.value(PHASE2(z.imag(), z.real()) * DEGREES);
}

template <Part P> void writeModeRow(CurveId id, CurveSteps steps) {
  CurveFile file;
  if (!file.open(id)) return;
  for (int k = steps.first; k <= steps.last; ++k) {
    startRow(file, RowFrequency::GRID, k);
    for (int i = 1; i <= RUNDATA.line.NC; ++i) file.value(partOf<P>(SOLVEDATA.at.MEIG(k, i)));
    file.endRow();
  }
  file.close();
}

void writeUpperTriangle(CurveId id, const ElementCurves& A, CurveSteps steps) {
  CurveFile file;
  const int n = RUNDATA.line.NC;
  if (!file.open(id)) return;
  for (int k = steps.first; k <= steps.last; ++k) {
    startRow(file, RowFrequency::GRID, k);
    for (int i = 1; i <= n; ++i) {
      for (int j = i; j <= n; ++j) {
        file.value(A(k, i, j).real());
        file.value(A(k, i, j).imag());
      }
    }
    file.endRow();
  }
  file.close();
}

void writeInputImpedances(CurveId id, FarEnd end, CurveSteps steps) {
  CurveFile file;
  if (!file.open(id)) return;
  for (int k = steps.first; k <= steps.last; ++k) {
    startRow(file, RowFrequency::GRID, k);
    for (int i = 1; i <= RUNDATA.line.NC; ++i) putPolar(file, inputImpedance(end, k, i));
    file.endRow();
  }
  file.close();
}

// TI^-1 of a step. That of an ideally transposed line stands, the same at all steps.
void loadInverse(int k, int n, LineMatrix& TIINV) {
  static LineMatrix TI;
  SOLVEDATA.second.TIST.load(k, TI, n);
  INVCJD(TIINV, TI, n);
}

void writeVoltages(CurveId id, FarEnd end, CurveSteps steps) {
  static LineMatrix inverse;
  CurveFile file;
  const int n = RUNDATA.line.NC;
  if (!file.open(id)) return;
  const bool fixed = SOLVEDATA.first.IDEALT;
  const LineMatrix& TIINV = fixed ? SOLVEDATA.first.TIINV : inverse;
  for (int k = steps.first; k <= steps.last; ++k) {
    if (!fixed) loadInverse(k, n, inverse);
    startRow(file, RowFrequency::GRID, k);
    for (int j = 1; j <= n; ++j) {
      Complex V = 0;
      for (int i = 1; i <= n; ++i) {
        V += TIINV(i, j) * INJECTED * TIINV(i, 1) * inputImpedance(end, k, i);
      }
      putPolar(file, V);
    }
    file.endRow();
  }
  file.close();
}

} // namespace

void writeConstants(CurveSteps steps) {
  const FrequencyStore& A = SOLVEDATA.at;
  writeElements<MAGNITUDE>(ZM, A.ZSTORE, steps, RowFrequency::GRID);
  writeElements<MAGNITUDE>(YM, A.YSTORE, steps, RowFrequency::GRID);
  writeElements<ANGLE>(ZP, A.ZSTORE, steps, RowFrequency::GRID);
  writeElements<ANGLE>(YP, A.YSTORE, steps, RowFrequency::GRID);
}

void writeEigenvalues(CurveSteps steps) {
  writeModeRow<MAGNITUDE>(LAMDAM, steps);
  writeModeRow<ANGLE>(LAMDAP, steps);
}

// That of an ideally transposed line is not followed: it stands with the modes alone.
void writeTransformation(CurveSteps steps) {
  const ElementCurves& TI = SOLVEDATA.first.IDEALT ? SOLVEDATA.second.TIST : SOLVEDATA.at.MTI;
  writeElements<MAGNITUDE>(TIMP, TI, steps, RowFrequency::GRID);
  writeElements<ANGLE>(TIPP, TI, steps, RowFrequency::GRID);
}

void writeFewConductors(CurveSteps steps) {
  writeUpperTriangle(ZS, SOLVEDATA.at.ZSTORE, steps);
  writeUpperTriangle(YS, SOLVEDATA.at.YSTORE, steps);
  writeInputImpedances(SHORTED, FarEnd::SHORTED, steps);
  writeInputImpedances(OPEN, FarEnd::OPEN, steps);
}

void writeSentVoltages(CurveSteps steps) {
  writeVoltages(GDIS, FarEnd::SHORTED, steps);
  writeVoltages(GDIO, FarEnd::OPEN, steps);
}

} // namespace lcp
