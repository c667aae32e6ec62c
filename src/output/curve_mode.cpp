#include "output/curve_mode.h"

#include "fit/mode_model.h"

namespace lcp {

namespace {

using enum CurveId;
using enum Part;

constexpr double TURN = 360.0; // degrees

Complex fitted(const RationalFit& F, int k) {
  return partialFractions(F.P, F.R, F.N, F.D, 0.0, Complex(0.0, SOLVEDATA.grid.WFREQ[k]));
}

// The attenuation's angles all lie from -360 up to 0.
double laggingAngle(Complex z) {
  const double angle = angleOf(z);
  return angle > 0.0 ? angle - TURN : angle;
}

void putSurgeImpedance(CurveFile& file, Part part, int k, int i) {
  const SecondLoopStore& T = SOLVEDATA.second;
  const Complex F = fitted(MODEMODEL.Z[i], k);
  file.value(part == MAGNITUDE ? magnitudeOf(T.ZSURGST(k, i)) : T.ZSARG(k, i));
  file.value(part == MAGNITUDE ? magnitudeOf(F) : angleOf(F));
}

void putAttenuation(CurveFile& file, Part part, int k, int i) {
  const SecondLoopStore& T = SOLVEDATA.second;
  const Complex F = fitted(MODEMODEL.A[i], k);
  file.value(part == MAGNITUDE ? T.HMAG(k, i) : T.HARG(k, i));
  file.value(part == MAGNITUDE ? magnitudeOf(F) : laggingAngle(F));
}

// A constant transformation is that of its step, with its sign; at all steps.
void putTransformElement(CurveFile& file, Part part, int k, int i, int j) {
  const SecondLoopStore& T = SOLVEDATA.second;
  const auto& sampled = part == MAGNITUDE ? T.TIMAG : T.TIARG;
  file.value(sampled(k, i, j));
  if (RUNDATA.fit.CONSTT) {
    file.value(sampled(SOLVEDATA.grid.NFREQ, i, j));
    return;
  }
  const Complex F = fitted(MODEMODEL.T(i, j), k);
  file.value(part == MAGNITUDE ? magnitudeOf(F) : angleOf(F));
}

void putRow(CurveFile& file, CurveId id, int k) {
  const int n = RUNDATA.line.NC;
  for (int i = 1; i <= n; ++i) {
    switch (id) {
    case ZCMM: putSurgeImpedance(file, MAGNITUDE, k, i); break;
    case ZCPM: putSurgeImpedance(file, ANGLE, k, i); break;
    case AMM: putAttenuation(file, MAGNITUDE, k, i); break;
    case APM: putAttenuation(file, ANGLE, k, i); break;
    default:
      for (int j = 1; j <= n; ++j)
        putTransformElement(file, id == TIMM ? MAGNITUDE : ANGLE, k, i, j);
    }
  }
}

} // namespace

void writeModeFits(CurveSteps steps) {
  CurveFile file;
  for (const CurveId id : {ZCMM, ZCPM, AMM, APM, TIMM, TIPM}) {
    if (!file.open(id)) continue;
    for (int k = steps.first; k <= steps.last; ++k) {
      startRow(file, RowFrequency::GRID, k);
      putRow(file, id, k);
      file.endRow();
    }
    file.close();
  }
}

} // namespace lcp
