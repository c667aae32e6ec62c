// Rows that several detail curve files share: magnitude or angle of the elements of a matrix, alone
// or the sampled one beside the fitted one.
#pragma once

#include "base/constants.h"
#include "output/curve_file.h"
#include "store/rundata.h"
#include "store/solvedata.h"

#include <cmath>

namespace lcp {

enum class Part { MAGNITUDE, ANGLE };

// Squares between these bounds have lost nothing.
constexpr double LEASTSQUARE = 1e-280;
constexpr double MOSTSQUARE = 1e280;

inline double magnitudeOf(Complex z) {
  const double square = z.real() * z.real() + z.imag() * z.imag();
  if (square > LEASTSQUARE && square < MOSTSQUARE) return std::sqrt(square);
  return std::hypot(z.real(), z.imag());
}

// In degrees, above -180 up to 180. Adding 0 turns a negative zero, whose half turn would be -180.
inline double angleOf(Complex z) { return std::atan2(z.imag() + 0.0, z.real()) * DEGREES; }

template <Part P> double partOf(Complex z) {
  return P == Part::MAGNITUDE ? magnitudeOf(z) : angleOf(z);
}

struct CurveSteps {
  int first, last;
  bool empty() const { return last < first; }
};

// Frequencies of the rows: those of the grid, or as the fits take them back from WFREQ.
enum class RowFrequency { GRID, FIT };

inline void startRow(CurveFile& file, RowFrequency from, int k) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  if (from == RowFrequency::GRID) {
    file.startRow(G.LOGF[k], G.FREQ[k]);
    return;
  }
  const double FN = G.WFREQ[k] * INVTWOPI;
  file.startRow(std::log10(FN), FN);
}

using ElementCurves = CurveMatrix<Complex, MAXFREQ>;

// Row by row, the column faster.
template <Part P>
void writeElements(CurveId id, const ElementCurves& A, CurveSteps steps, RowFrequency from) {
  CurveFile file;
  const int n = RUNDATA.line.NC;
  if (!file.open(id)) return;
  for (int k = steps.first; k <= steps.last; ++k) {
    startRow(file, from, k);
    for (int i = 1; i <= n; ++i) {
      for (int j = 1; j <= n; ++j) file.value(partOf<P>(A(k, i, j)));
    }
    file.endRow();
  }
  file.close();
}

template <Part P>
void writeElementPairs(CurveId id, const ElementCurves& A, const ElementCurves& FIT,
                       CurveSteps steps) {
  CurveFile file;
  const int n = RUNDATA.line.NC;
  if (!file.open(id)) return;
  for (int k = steps.first; k <= steps.last; ++k) {
    startRow(file, RowFrequency::FIT, k);
    for (int i = 1; i <= n; ++i) {
      for (int j = 1; j <= n; ++j) {
        file.value(partOf<P>(A(k, i, j)));
        file.value(partOf<P>(FIT(k, i, j)));
      }
    }
    file.endRow();
  }
  file.close();
}

} // namespace lcp
