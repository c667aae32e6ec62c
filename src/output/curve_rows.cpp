// With the far end shorted and open, and u the propagation constant times the length:
//
//   Zin_i = Zs_i tanh u_i,   Zin_i = Zs_i coth u_i           of mode i
//   V = M diag(Zin) M^T I,   M = TI^-T,   I = (3, 0, 0)      of the phases
#include "output/curve_rows.h"

#include "base/constants.h"
#include "fit/fit_store.h"
#include "fit/partial_fractions.h"
#include "kernels/hyperbolic.h"
#include "output/curve_file.h"
#include "store/fitmodel.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <cmath>

namespace lcp {

namespace {

using enum CurveId;

enum class Part { MAGNITUDE, ANGLE };
using enum Part;

// Squares between these bounds neither overflow nor lose precision.
constexpr double LEASTSQUARE = 1e-280;
constexpr double MOSTSQUARE = 1e280;

double magnitudeOf(Complex z) {
  const double square = z.real() * z.real() + z.imag() * z.imag();
  if (square > LEASTSQUARE && square < MOSTSQUARE) return std::sqrt(square);
  return std::hypot(z.real(), z.imag());
}

// In degrees, above -180 up to 180. Adding 0 makes a negative zero positive, which would give -180.
double angleOf(Complex z) { return std::atan2(z.imag() + 0.0, z.real()) * DEGREES; }

double partOf(Part part, Complex z) { return part == MAGNITUDE ? magnitudeOf(z) : angleOf(z); }

// Frequencies of the rows: those of the grid, or as recomputed from WFREQ in the fits.
enum class RowFrequency { GRID, FIT };

void startRow(CurveFile& file, RowFrequency from, int k) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  if (from == RowFrequency::GRID) {
    file.startRow(G.LOGF[k], G.FREQ[k]);
    return;
  }
  const double FN = G.WFREQ[k] * INVTWOPI;
  file.startRow(std::log10(FN), FN);
}

// Writes a curve file: one row per step, which putRow fills after the frequency.
template <class PutRow>
void writeRows(CurveId id, CurveSteps steps, RowFrequency from, PutRow putRow) {
  CurveFile file;
  if (!file.open(id)) return;
  for (int k = steps.first; k <= steps.last; ++k) {
    startRow(file, from, k);
    putRow(file, k);
    file.endRow();
  }
  file.close();
}

using ElementCurves = CurveMatrix<Complex, MAXFREQ>;

// Writes the magnitude or angle of all elements, column index fastest; with a fit, sampled and
// fitted value side by side.
void writeElements(CurveId id, Part part, const ElementCurves& A, CurveSteps steps,
                   RowFrequency from, const ElementCurves* fit = nullptr) {
  const int n = RUNDATA.line.NC;
  writeRows(id, steps, from, [&](CurveFile& file, int k) {
    for (int i = 1; i <= n; ++i) {
      for (int j = 1; j <= n; ++j) {
        file.value(partOf(part, A(k, i, j)));
        if (fit != nullptr) file.value(partOf(part, (*fit)(k, i, j)));
      }
    }
  });
}

// ---- the line itself

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

void writeModeValues(CurveId id, Part part, CurveSteps steps) {
  writeRows(id, steps, RowFrequency::GRID, [&](CurveFile& file, int k) {
    for (int i = 1; i <= RUNDATA.line.NC; ++i) file.value(partOf(part, SOLVEDATA.at.MEIG(k, i)));
  });
}

void writeUpperTriangle(CurveId id, const ElementCurves& A, CurveSteps steps) {
  const int n = RUNDATA.line.NC;
  writeRows(id, steps, RowFrequency::GRID, [&](CurveFile& file, int k) {
    for (int i = 1; i <= n; ++i) {
      for (int j = i; j <= n; ++j) {
        file.value(A(k, i, j).real());
        file.value(A(k, i, j).imag());
      }
    }
  });
}

void writeInputImpedances(CurveId id, FarEnd end, CurveSteps steps) {
  writeRows(id, steps, RowFrequency::GRID, [&](CurveFile& file, int k) {
    for (int i = 1; i <= RUNDATA.line.NC; ++i) putPolar(file, inputImpedance(end, k, i));
  });
}

struct EndCurve {
  CurveId id;
  FarEnd end;
  CurveFile file;
  bool open = false;
};

EndCurve ENDCURVES[] = {{GDIS, FarEnd::SHORTED, {}}, {GDIO, FarEnd::OPEN, {}}};

void putVoltages(CurveFile& file, FarEnd end, int k) {
  const LineMatrix& TIINV = SOLVEDATA.first.TIINV;
  const int n = RUNDATA.line.NC;
  for (int j = 1; j <= n; ++j) {
    Complex V = 0;
    for (int i = 1; i <= n; ++i) {
      V += TIINV(i, j) * INJECTED * TIINV(i, 1) * inputImpedance(end, k, i);
    }
    putPolar(file, V);
  }
}

// ---- fits

constexpr double TURN = 360.0; // degrees

Complex fitted(const RationalFit& F, int k) {
  return partialFractions(F.P, F.R, F.N, F.D, 0.0, Complex(0.0, SOLVEDATA.grid.WFREQ[k]));
}

// Angles of the attenuation are above -360 up to 0.
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

// A constant transformation has the same signed value at all steps, that of its own step.
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

void putModeRow(CurveFile& file, CurveId id, int k) {
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

void writeModeFit(CurveId id, CurveSteps steps) {
  writeRows(id, steps, RowFrequency::GRID,
            [id](CurveFile& file, int k) { putModeRow(file, id, k); });
}

constexpr double NOTHING = 1e-32; // magnitude below which a modal function is shown as 0

double shown(Part part, Complex z) {
  const double value = partOf(part, z);
  return part == MAGNITUDE && value < NOTHING ? 0.0 : value;
}

void writeGroups(CurveId id, Part part, CurveSteps steps) {
  writeRows(id, steps, RowFrequency::FIT, [&](CurveFile& file, int k) {
    for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
      file.value(shown(part, FITTED.GROUP(k, g)));
      file.value(shown(part, FITTED.GROUPFIT(k, g)));
    }
  });
}

// For an ideally transposed line, which is not tracked, the transformation is stored with the modes
// only.
const ElementCurves& transformation() {
  return SOLVEDATA.first.IDEALT ? SOLVEDATA.second.TIST : SOLVEDATA.at.MTI;
}

} // namespace

void writeCurve(CurveId id, CurveSteps steps) {
  const FrequencyStore& A = SOLVEDATA.at;
  const SecondLoopStore& T = SOLVEDATA.second;
  switch (id) {
  case ZM: return writeElements(id, MAGNITUDE, A.ZSTORE, steps, RowFrequency::GRID);
  case ZP: return writeElements(id, ANGLE, A.ZSTORE, steps, RowFrequency::GRID);
  case YM: return writeElements(id, MAGNITUDE, A.YSTORE, steps, RowFrequency::GRID);
  case YP: return writeElements(id, ANGLE, A.YSTORE, steps, RowFrequency::GRID);
  case LAMDAM: return writeModeValues(id, MAGNITUDE, steps);
  case LAMDAP: return writeModeValues(id, ANGLE, steps);
  case TIMP: return writeElements(id, MAGNITUDE, transformation(), steps, RowFrequency::GRID);
  case TIPP: return writeElements(id, ANGLE, transformation(), steps, RowFrequency::GRID);
  case ZS: return writeUpperTriangle(id, A.ZSTORE, steps);
  case YS: return writeUpperTriangle(id, A.YSTORE, steps);
  case SHORTED: return writeInputImpedances(id, FarEnd::SHORTED, steps);
  case OPEN: return writeInputImpedances(id, FarEnd::OPEN, steps);
  case ZCMM:
  case ZCPM:
  case AMM:
  case APM:
  case TIMM:
  case TIPM: return writeModeFit(id, steps);
  case YCMP: return writeElements(id, MAGNITUDE, T.YCST, steps, RowFrequency::FIT, &FITTED.YC);
  case YCPP: return writeElements(id, ANGLE, T.YCST, steps, RowFrequency::FIT, &FITTED.YC);
  case HMM: return writeGroups(id, MAGNITUDE, steps);
  case HPM: return writeGroups(id, ANGLE, steps);
  case HMP: return writeElements(id, MAGNITUDE, T.HST, steps, RowFrequency::FIT, &FITTED.H);
  case HPP: return writeElements(id, ANGLE, T.HST, steps, RowFrequency::FIT, &FITTED.H);
  case ZMF: return writeElements(id, MAGNITUDE, SERIESMODEL.ZFIT, steps, RowFrequency::FIT);
  case ZPF: return writeElements(id, ANGLE, SERIESMODEL.ZFIT, steps, RowFrequency::FIT);
  case GDIS:
  case GDIO:
  case COUNT: break; // written step by step
  }
}

void openSentVoltages() {
  for (EndCurve& c : ENDCURVES) {
    headCurve(c.id);
    c.open = c.file.open(c.id);
  }
}

void writeSentVoltages(int k) {
  for (EndCurve& c : ENDCURVES) {
    if (!c.open) continue;
    startRow(c.file, RowFrequency::GRID, k);
    putVoltages(c.file, c.end, k);
    c.file.endRow();
  }
}

void closeSentVoltages() {
  for (EndCurve& c : ENDCURVES) {
    if (c.open) c.file.close();
    c.open = false;
  }
}

} // namespace lcp
