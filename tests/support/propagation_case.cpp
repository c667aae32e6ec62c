#include "support/propagation_case.h"

#include "kernels/lapack.h"
#include "store/rundata.h"
#include "store/solvedata.h"
#include "support/sampled_functions.h"

#include <algorithm>

namespace lcp::test {

namespace {

template <class Code> void forElements(Code code) {
  for (int r = 1; r <= FITMODEL.NC; ++r) {
    for (int c = 1; c <= FITMODEL.NC; ++c) code(r, c);
  }
}

template <class Code> void forPoles(Code code) {
  for (int g = 1; g <= FITMODEL.NGROUP; ++g) {
    for (int m = 1; m <= FITMODEL.NH[g]; ++m) code(g, m);
  }
}

} // namespace

void laySampleGrid(int NS, double low, double high) {
  const SampleGrid grid(low, high, NS);
  SOLVEDATA.grid.NFUSE = SOLVEDATA.grid.NFREQ = NS;
  SOLVEDATA.grid.WFREQ = grid.w;
  SOLVEDATA.grid.WFIT = grid.weight;
}

void setGroups(int NC, const std::vector<GroupPoles>& groups) {
  RUNDATA.line.NC = FITMODEL.NC = NC;
  FITMODEL.NGROUP = 0;
  for (const GroupPoles& group : groups) {
    const int g = ++FITMODEL.NGROUP;
    FITMODEL.TAU[g] = group.tau;
    FITMODEL.NH[g] = static_cast<int>(group.poles.size());
    std::copy(group.poles.begin(), group.poles.end(), FITMODEL.HPOLE[g].data());
  }
}

void setRandomResidues(LineNumbers& numbers) {
  forElements([&](int r, int c) {
    forPoles([&](int g, int m) {
      const Complex p = FITMODEL.HPOLE[g][m];
      PoleTable& R = FITMODEL.HRES[g](r, c);
      const double re = numbers.between(-1, 1), im = p.imag() == 0 ? 0 : numbers.between(-1, 1);
      const bool second = m > 1 && p.imag() != 0 && p == std::conj(FITMODEL.HPOLE[g][m - 1]);
      R[m] = second ? std::conj(R[m - 1]) : std::abs(p) * Complex(re, im);
    });
  });
}

void sampleH(const ElementFunction& H) {
  forElements([&](int r, int c) {
    for (int k = 1; k <= SOLVEDATA.grid.NFUSE; ++k)
      SOLVEDATA.second.HST(k, r, c) = H(r, c, Complex(0, SOLVEDATA.grid.WFREQ[k]));
  });
}

void sampleModelOfH() {
  sampleH([](int r, int c, Complex s) { return Complex(modelOfH(r, c, s)); });
}

Wide modelOfH(int r, int c, Wide s) {
  Wide H = 0;
  forPoles([&](int g, int m) {
    const Wide term = Wide(FITMODEL.HRES[g](r, c)[m]) / (s - Wide(FITMODEL.HPOLE[g][m]));
    H += std::exp(-s * Wide(FITMODEL.TAU[g])) * term;
  });
  return H;
}

MeasuredFit measureFit() {
  MeasuredFit fit;
  const int NS = SOLVEDATA.grid.NFUSE;
  forElements([&](int r, int c) {
    double squares = 0;
    for (int k = 1; k <= NS; ++k) {
      const Wide H = SOLVEDATA.second.HST(k, r, c),
                 M = modelOfH(r, c, {0, SOLVEDATA.grid.WFREQ[k]});
      const auto e = static_cast<double>(std::abs(M - H));
      squares += e * e;
      fit.largest = std::max(fit.largest, e);
    }
    fit.rms = std::max(fit.rms, std::sqrt(squares / NS));
    forPoles([&](int g, int m) {
      const double ratio = std::abs(FITMODEL.HRES[g](r, c)[m] / FITMODEL.HPOLE[g][m]);
      if (FITMODEL.HPOLE[g][m].imag() == 0) fit.ratio = std::max(fit.ratio, ratio);
    });
  });
  return fit;
}

double dcDeviation(const RealMatrix& H) {
  long double deviation = 0, largest = 0;
  forElements([&](int r, int c) {
    deviation = std::max(deviation, std::abs(modelOfH(r, c, 0) - Wide(H(r, c))));
    largest = std::max<long double>(largest, std::fabs(H(r, c)));
  });
  return static_cast<double>(deviation / largest);
}

std::vector<double> realEigenvalues(const Dense& A) {
  static SquareStore<double, NPMAX> G;
  static Table<double, NPMAX> re, im;
  const std::size_t n = A.size();
  for (std::size_t k = 0; k < n * n; ++k)
    G.elements[k / n * NPMAX + k % n] = static_cast<double>(A[k % n][k / n].real());
  DGEEV(G, static_cast<int>(n), re, im);
  return {re.data(), re.data() + n};
}

} // namespace lcp::test
