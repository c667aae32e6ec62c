// A line is a two-port with equal ends, so its nodal admittance splits into the admittances for
// equal and for opposite voltages at the two ends. With s = j w
//
//   Yc = YD + sum over m of YRES[m] / (s - YPOLE[m])
//   H  = sum over g of exp(-s TAU[g]) sum over m of HRES[g][m] / (s - HPOLE[g][m])
//
//   E = (I - H)^-1 (I + H) Yc        voltages of opposite signs
//   O = (I + H)^-1 (I - H) Yc        equal voltages
//
// and the eigenvalues of the real parts of E and O together are those of the real part of the nodal
// admittance. The model absorbs power at w if none of them is negative.
//
// The eigenvalues are computed by LAPACK, which is faster than VALVC; the two agree to about 1e-10
// of the norm. Where a thousand times that could change a sign or a digit on the console, VALVC is
// used. On nearly lossless lines the eigenvalues are rounding errors, which depend on the last bits
// of Yc and H; these are therefore summed element by element, in a fixed order.
#include "passivity/passivity_check.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/number_forms.h"
#include "base/solve_error.h"
#include "fit/fit_console.h"
#include "kernels/eigen_package.h"
#include "kernels/inversion.h"
#include "kernels/lapack.h"
#include "kernels/matrix_kernels.h"
#include "passivity/passivity_grid.h"
#include "store/fitmodel.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace lcp {

namespace {

constexpr int TABLERULE = 65;
constexpr double DOUBT = 1e-7; // relative to the norm; LAPACK and VALVC differ by far less
const std::string BLANKLINE(12, ' ');

// A range of grid frequencies in which the model is not passive.
struct Band {
  bool open = false;
  bool seen = false; // there has been a band
  double from = 0;   // first frequency, Hz
  double worst = 0;  // smallest eigenvalue, S
};

// The matrices at one frequency.
struct PointStore {
  LineMatrix Yc, H, sum, difference; // the last two I + H and I - H
  LineMatrix sumInverse, differenceInverse, work, admittance;
};

PointStore& POINT = bigStore<PointStore>();

std::string frequency(double f) { return scientificField(f, 10, 3); }

void printHeading(const PassivityOptions& O) {
  console::line(BLANKLINE);
  console::line(BLANKLINE);
  console::print(" Checking for Passivity Violations Between {} Hz and {} Hz", frequency(O.PFLO),
                 frequency(O.PFHI));
  console::line(BLANKLINE);
  console::line(BLANKLINE);
  fitRule('=');
  console::line(" The presence of negative eigenvalues indicates passivity violations");
  console::line(" and hence possibility of unstable simulations");
  console::line(" " + std::string(TABLERULE, '-'));
  console::line(" Frequency range                              smallest eigenvalue");
  console::line(" " + std::string(TABLERULE, '-'));
  console::line(BLANKLINE);
}

// The factors 1 / (s - p) of n poles.
void poleFactors(PoleTable& factors, const PoleTable& poles, int n, Complex s) {
  for (int m = 1; m <= n; ++m) factors[m] = 1.0 / (s - poles[m]);
}

Complex weightedSum(const PoleTable& residues, const PoleTable& factors, int n) {
  Complex sum = 0.0;
  for (int m = 1; m <= n; ++m) sum += residues[m] * factors[m];
  return sum;
}

void formAdmittance(Complex s) {
  const FitModel& M = FITMODEL;
  PoleTable factors;
  poleFactors(factors, M.YPOLE, M.NPY, s);
  for (int c = 1; c <= M.NC; ++c) {
    for (int r = 1; r <= M.NC; ++r)
      POINT.Yc(r, c) = M.YD(r, c) + weightedSum(M.YRES(r, c), factors, M.NPY);
  }
}

void formPropagation(Complex s) {
  const FitModel& M = FITMODEL;
  PoleTable factors;
  clear(POINT.H, M.NC);
  for (int g = 1; g <= M.NGROUP; ++g) {
    const Complex delay = std::exp(-s * M.TAU[g]);
    poleFactors(factors, M.HPOLE[g], M.NH[g], s);
    for (int c = 1; c <= M.NC; ++c) {
      for (int r = 1; r <= M.NC; ++r)
        POINT.H(r, c) += delay * weightedSum(M.HRES[g](r, c), factors, M.NH[g]);
    }
  }
}

void formSums() {
  const int n = FITMODEL.NC;
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) {
      const double unit = r == c ? 1.0 : 0.0;
      POINT.sum(r, c) = unit + POINT.H(r, c);
      POINT.difference(r, c) = unit - POINT.H(r, c);
    }
  }
  INVCJD(POINT.sumInverse, POINT.sum, n);
  INVCJD(POINT.differenceInverse, POINT.difference, n);
}

// Sets the imaginary parts to 0. Returns the Frobenius norm, which is not finite if an element is
// not.
double keepRealPart(CView A, int n) {
  double sum = 0;
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) {
      A(r, c) = A(r, c).real();
      sum = std::hypot(sum, A(r, c).real());
    }
  }
  return sum;
}

[[noreturn]] void refuseModel(double f) {
  console::openStars();
  console::print("The Fitted Model has no Finite Nodal Admittance at {:.4g} Hz", f);
  stopInStars();
}

// Computed by LAPACK; NaN if it does not converge.
double smallestFast(CConstView A, int n) {
  static RealMatrix G;
  static Table<double, NPMAX> re, im;
  for (int c = 1; c <= n; ++c) {
    for (int r = 1; r <= n; ++r) G(r, c) = A(r, c).real();
  }
  DGEEV(G, n, re, im);
  return *std::min_element(re.data(), re.data() + n);
}

// Computed by VALVC; A is overwritten.
double smallestExact(CView A, int n) {
  static LineMatrix vectors, leftVectors;
  ModeComplex L; // zero: a pair not found has the shift, which is not negative
  VALVC(L, leftVectors, vectors, A, n);
  double smallest = std::numeric_limits<double>::infinity();
  for (int k = 1; k <= n; ++k) smallest = std::min(smallest, L[k].real());
  return smallest;
}

std::string shown(double e) { return scientificField(e, 10, 3); }

// Whether all values within the uncertainty give the same console output; a negative value is
// printed only if it is below the worst of its band so far.
bool isSettled(double e, double doubt, double worst) {
  if (e >= doubt) return true;
  return e < -doubt && (e > worst + doubt || shown(e - doubt) == shown(e + doubt));
}

// The smallest real part of the eigenvalues of Re(D^-1 S Yc).
double smallestEigenvalue(CConstView inverseD, CConstView S, double f, double worst) {
  const int n = FITMODEL.NC;
  CMATMUL(POINT.work, inverseD, S, n);
  CMATMUL(POINT.admittance, POINT.work, POINT.Yc, n);
  const double norm = keepRealPart(POINT.admittance, n);
  if (!std::isfinite(norm)) refuseModel(f);
  const double e = smallestFast(POINT.admittance, n);
  return isSettled(e, DOUBT * norm, worst) ? e : smallestExact(POINT.admittance, n);
}

double smallestAt(double f, double worst) {
  const Complex s(0.0, TWOPI * f);
  formAdmittance(s);
  formPropagation(s);
  formSums();
  return std::min(smallestEigenvalue(POINT.differenceInverse, POINT.sum, f, worst),
                  smallestEigenvalue(POINT.sumInverse, POINT.difference, f, worst));
}

void closeBand(Band& band, double f) {
  console::print(" From {} Hz to {} Hz {:8}{}", frequency(band.from), frequency(f), "",
                 shown(band.worst));
  band.open = false;
}

void followBand(Band& band, double f, double e) {
  if (e < 0 && !band.open) {
    band = {true, true, f, e};
  } else if (e < 0) {
    band.worst = std::min(band.worst, e);
  } else if (band.open) {
    closeBand(band, f);
  }
}

} // namespace

void PASSCHK() {
  static FrequencyList FGRID;
  const PassivityOptions& O = RUNDATA.passivity;
  PASSGRID(O.PFLO, O.PFHI, O.NPFINC, O.PFDIST, FGRID);
  printHeading(O);
  Band band;
  for (int i = 1; i <= FGRID.NGRID; ++i) {
    const double f = FGRID.f[i];
    followBand(band, f, smallestAt(f, band.open ? band.worst : 0));
  }
  if (band.open) closeBand(band, FGRID.f[FGRID.NGRID]);
  console::line(BLANKLINE);
  console::line(band.seen ? VIOLATEDLINE : PASSIVELINE);
  console::line(BLANKLINE);
}

} // namespace lcp
