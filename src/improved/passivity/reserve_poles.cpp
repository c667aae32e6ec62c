// A model whose values at zero frequency are held has to find its way from there to the band
// between two of its poles. With one more pole well below the band it needs no change inside it.
// Above the band a fit ends with poles whose delay is one too many for |H| < 1: far poles take
// their place.
#include "improved/passivity/reserve_poles.h"

#include "passivity/enforcement_store.h"
#include "store/solvedata.h"

#include <algorithm>

namespace lcp {

namespace {

constexpr double BELOW = 10;  // from the lowest frequency to the first pole, and from pole to pole
constexpr double ABOVE = 300; // from the highest one up

void addPoleOfYc(double p) {
  FitModel& M = FITMODEL;
  if (M.NPY >= MAXPOLES) return;
  M.YPOLE[++M.NPY] = -p;
  for (int c = 1; c <= M.NC; ++c) {
    for (int r = 1; r <= M.NC; ++r) M.YRES(r, c)[M.NPY] = 0;
  }
}

void addPoleOfH(int g, double p) {
  FitModel& M = FITMODEL;
  if (M.NH[g] >= MAXPOLES) return;
  M.HPOLE[g][++M.NH[g]] = -p;
  for (int c = 1; c <= M.NC; ++c) {
    for (int r = 1; r <= M.NC; ++r) M.HRES[g](r, c)[M.NH[g]] = 0;
  }
}

template <class Matrix> void append(std::vector<Complex>& to, const Matrix& A) {
  for (int c = 1; c <= ENFORCE.NC; ++c) {
    for (int r = 1; r <= ENFORCE.NC; ++r) to.push_back(A(r, c));
  }
}

const Complex* take(const Complex* from, LineMatrix& A) {
  for (int c = 1; c <= ENFORCE.NC; ++c) {
    for (int r = 1; r <= ENFORCE.NC; ++r) A(r, c) = *from++;
  }
  return from;
}

} // namespace

PoleCounts countPoles() { return {FITMODEL.NPY, FITMODEL.NH}; }

void setPoleCounts(const PoleCounts& counts) {
  FITMODEL.NPY = counts.ofYc;
  FITMODEL.NH = counts.ofH;
}

void addReserve(const Reserve& reserve) {
  const FrequencyGrid& G = SOLVEDATA.grid;
  const auto [low, high] = std::minmax({G.WFREQ[1], G.WFREQ[G.NFUSE]});
  double p = low;
  for (int k = 0; k < reserve.below; ++k) {
    p /= BELOW;
    addPoleOfYc(p);
    addPoleOfH(1, p);
  }
  p = high;
  for (int k = 0; k < reserve.above; ++k) {
    p *= ABOVE;
    addPoleOfYc(p);
    for (int g = 1; g <= FITMODEL.NGROUP; ++g) addPoleOfH(g, p);
  }
}

KeptModel keepModel() {
  const EnforcementStore& E = ENFORCE;
  KeptModel kept;
  for (int m = 1; m <= E.TOTORD; ++m) append(kept.H, E.FRES[m]);
  for (int m = 1; m <= E.ENY; ++m) append(kept.Yc, E.ERY[m]);
  for (int c = 1; c <= E.NC; ++c) {
    for (int r = 1; r <= E.NC; ++r) kept.constant.push_back(E.EDY(r, c));
  }
  return kept;
}

void putBack(const KeptModel& model) {
  EnforcementStore& E = ENFORCE;
  const Complex* from = model.H.data();
  for (int m = 1; m <= E.TOTORD; ++m) from = take(from, E.FRES[m]);
  from = model.Yc.data();
  for (int m = 1; m <= E.ENY; ++m) from = take(from, E.ERY[m]);
  const double* constant = model.constant.data();
  for (int c = 1; c <= E.NC; ++c) {
    for (int r = 1; r <= E.NC; ++r) E.EDY(r, c) = *constant++;
  }
}

} // namespace lcp
