// For a mode with inductance L and capacitance C per metre on a line of length l:
//
//   Zc = sqrt(L / C),  T = l sqrt(L C),  and conversely  C = T / (l Zc),  L = Zc T / l
//
// Sequence data: the modes of a balanced line are its sequences; two identical circuits also have
// the difference of their zero sequences. With zero-sequence and zero-sequence mutual values
//
//   sum         R0 + R0M, L0 + L0M, C0 + C0M
//   difference  R0 - R0M, L0 - L0M, C0 - C0M
//
// for capacitances C = 1 / (w XC). A travel time T0 per metre corresponds to L0 = ZC0 T0, C0 = T0 /
// ZC0. An entered pair: the modes of Y Z, as for a computed line.
//
// A line corrected for its length has R + j X = z sinh(u) / u and j B = y tanh(u/2) / (u/2) with u
// = l sqrt(z y). To remove the correction, u is computed from the corrected values.
#include "modal/manual_modes.h"

#include "base/console.h"
#include "base/constants.h"
#include "base/solve_error.h"
#include "kernels/eigen_package.h"
#include "kernels/hyperbolic.h"
#include "kernels/inversion.h"
#include "kernels/matrix_kernels.h"
#include "modal/manual_entries.h"
#include "modal/modal_transform.h"
#include "modal/unsound_constants.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double TWOPIC0 = 3.4954932422641835e-10; // 2 pi C0
constexpr double TWOPIL0 = 1.2566370614359145e-06; // 2 pi L0
constexpr double MEGOHM = 1e6;                     // ohm
constexpr int TWOCIRCUITS = 6;                     // conductors of two identical circuits
constexpr int DOTS = 34;

double angularFrequency() { return TWOPI * RUNDATA.line.SSFREQ; }
bool isPair() { return RUNDATA.manual.MANFMT == MANPAIR; }

// --- fatal messages

void checkFormat() {
  switch (RUNDATA.manual.MANFMT) {
  case MANPERUNIT:
  case MANOHMS:
  case MANSURGE:
  case MANPAIR: return;
  case MANMULTIPLE:
    console::openStars();
    console::line("Multiple Y and Z Data: no File was Read, or a Summary");
    console::line("behind it Selects Manually Entered Data!");
    stopInStars("MANLINE Ending!");
  default:
    console::openStars();
    console::line("Manual Data Entry has no Data Entry Format!");
    stopInStars("MANLINE Ending!");
  }
}

void checkEstimate() {
  const int ESTZERO = RUNDATA.manual.ESTZERO;
  if (isPair() || RUNDATA.line.NC == 1) return; // no zero sequence
  if (ESTZERO >= ZEROENTERED && ESTZERO <= ZEROEQUAL) return;
  console::openStars();
  console::print("Estimate Zero Sequence Must be 0, 1 or 2, not {}!", ESTZERO);
  stopInStars("MANLINE Ending!");
}

// A negative travel time ends the run at the report, where the velocity is checked; 0 has no
// velocity.
void checkMode(int k, const ManualMode& m) {
  const bool numbers = std::isfinite(m.T) && std::isfinite(m.Zc) && std::isfinite(m.R);
  if (numbers && m.T != 0.0 && std::isfinite(m.C) && std::isfinite(m.L)) return;
  noteManualEntries(k, m.T, m.Zc, m.R);
  console::openStars();
  console::print("Mode {} of the Manual Data has a Travel Time or a Surge", k);
  console::line("Impedance of 0, or Values that are no Finite Numbers.");
  console::line("Check input data for Manual Entry of Z,Y");
  stopInStars("MANLINE Ending!");
}

void checkPhases(CView Y, CView Z, int n) {
  double sum = 0; // infinite or NaN if an element is
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) sum += std::abs(Y(i, j)) + std::abs(Z(i, j));
  }
  if (sum < BEYOND) return;
  noteUnsoundElement(Y, Z, n);
  console::openStars();
  console::line("The Line Constants of the Manual Data are not Finite Numbers");
  console::line("Check input data for Manual Entry of Z,Y");
  stopInStars("MANLINE Ending!");
}

// --- transformations

// Sums and differences of two circuits, and the sequences of each.
constexpr double TWOCIRCUITMODES[TWOCIRCUITS][TWOCIRCUITS] = {
    {1, -1, 0, 2, 0, 0}, {1, -1, 0, -1, 0, 1}, {1, -1, 0, -1, 0, -1},
    {1, 1, -1, 0, 1, 0}, {1, 1, -1, 0, -1, 0}, {1, 1, 2, 0, 0, 0}};

void formSequenceModes(int n) {
  if (n != TWOCIRCUITS) {
    balancedTransformation(MANUAL.TI, MANUAL.TIINV, n);
    return;
  }
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) MANUAL.TI(i, j) = TWOCIRCUITMODES[i - 1][j - 1];
  }
  COLNORM(MANUAL.TI, MANUAL.TI, n);
  transpose(MANUAL.TIINV, MANUAL.TI, n);
}

void formPairProduct(CView P, int n) {
  static LineMatrix Yn, Zn;
  const ManualData& M = RUNDATA.manual;
  const double f = RUNDATA.line.SSFREQ;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      Yn(i, j) = M.YENT(i, j) / Complex(0.0, f * TWOPIC0);
      Zn(i, j) = M.ZENT(i, j) / Complex(0.0, f * TWOPIL0);
    }
  }
  CMATMUL(P, Yn, Zn, n);
}

void formPairModes(int n) {
  static LineMatrix P, U;
  ModeInts pivots;
  const double w = angularFrequency();
  formPairProduct(P, n);
  VALVC(MANUAL.EIGM, U, MANUAL.TI, P, n);
  PIVNORM(MANUAL.TI, U, pivots, n);
  INVCJD(MANUAL.TIINV, MANUAL.TI, n);
  COLNORM(MANUAL.TI, MANUAL.TI, n);
  INVCJD(MANUAL.TIINV, MANUAL.TI, n);
  for (int i = 1; i <= n; ++i) MANUAL.EIGM[i] *= -(w * w * MU0EPS0);
  formModalMatrices(MANUAL.YMOD, MANUAL.ZMOD, RUNDATA.manual.YENT, RUNDATA.manual.ZENT, MANUAL.TI,
                    MANUAL.TIINV, n);
}

// --- modes from sequence data

// Factors that convert entered reactances to ohm: L = X impedance / w, C = 1 / (w XC shunt).
struct EntryUnits {
  double impedance; // ohm
  double shunt;     // ohm
};

EntryUnits entryUnits() {
  const ManualData& M = RUNDATA.manual;
  if (M.MANFMT == MANOHMS) return {1.0, MEGOHM};
  const double Zb = M.VRATE * M.VRATE / M.MVARATE;
  return {Zb, Zb};
}

const SequenceReactances& reactances() {
  const ManualSequences& S = RUNDATA.manual.MANSEQ;
  return RUNDATA.manual.MANFMT == MANPERUNIT ? S.SEQPU : S.SEQOHM;
}

ManualMode modeOfReactances(double R, double X, double XC) {
  const EntryUnits units = entryUnits();
  const double w = angularFrequency();
  const double L = X * units.impedance / w;
  const double C = 1.0 / (w * XC * units.shunt);
  return {INMILLI * manualLength() * std::sqrt(L * C), std::sqrt(L / C), R * units.impedance, 0, 0};
}

// From a travel time per metre.
ManualMode modeOfSurge(double R, double T, double Zc) {
  return {INMILLI * manualLength() * T, Zc, R, 0, 0};
}

ManualMode positiveSequence() {
  if (RUNDATA.manual.MANFMT == MANSURGE) {
    const SequenceSurges& S = RUNDATA.manual.MANSEQ.SEQSURGE;
    return modeOfSurge(S.R1, S.T1, S.ZC1);
  }
  const SequenceReactances& S = reactances();
  return modeOfReactances(S.R1, S.X1, S.XC1);
}

struct ZeroRatios {
  double R = 1, Z = 1, T = 1;
};

ZeroRatios zeroRatios() {
  const ManualData& M = RUNDATA.manual;
  if (M.ESTZERO == ZEROEQUAL) return {};
  return {M.RATIOR, M.RATIOZ, M.RATIOT};
}

ManualMode zeroSequence(int n) {
  if (RUNDATA.manual.ESTZERO != ZEROENTERED) {
    const ManualMode positive = positiveSequence();
    const ZeroRatios ratio = zeroRatios();
    return {positive.T * ratio.T, positive.Zc * ratio.Z, positive.R * ratio.R, 0, 0};
  }
  if (RUNDATA.manual.MANFMT == MANSURGE) {
    const SequenceSurges& S = RUNDATA.manual.MANSEQ.SEQSURGE;
    return modeOfSurge(S.R0, S.T0, S.ZC0);
  }
  const SequenceReactances& S = reactances();
  if (n != TWOCIRCUITS) return modeOfReactances(S.R0, S.X0, S.XC0);
  return modeOfReactances(S.R0 + S.R0M, S.X0 + S.X0M, S.XC0 * S.XC0M / (S.XC0 + S.XC0M));
}

// The entered values, with the estimated zero sequence if an estimate is selected.
SequenceSurges surgesWithZero() {
  SequenceSurges S = RUNDATA.manual.MANSEQ.SEQSURGE;
  if (RUNDATA.manual.ESTZERO == ZEROENTERED) return S;
  const ZeroRatios ratio = zeroRatios();
  S.ZC0 = S.ZC1 * ratio.Z;
  S.T0 = S.T1 * ratio.T;
  S.R0 = S.R1 * ratio.R;
  return S;
}

SequenceReactances reactancesWithZero() {
  SequenceReactances S = reactances();
  if (RUNDATA.manual.ESTZERO == ZEROENTERED) return S;
  const ZeroRatios ratio = zeroRatios();
  const EntryUnits units = entryUnits();
  const ManualMode positive = positiveSequence();
  const double w = angularFrequency();
  const double tau = positive.T / (INMILLI * manualLength()) * ratio.T; // s/m
  const double Zc = positive.Zc * ratio.Z;
  S.X0 = w * Zc * tau / units.impedance;
  S.XC0 = Zc / (w * tau * units.shunt);
  S.R0 = S.R1 * ratio.R;
  return S;
}

ManualMode zeroMutual() {
  if (RUNDATA.manual.MANFMT == MANSURGE) {
    const SequenceSurges S = surgesWithZero();
    const double a = S.ZC0 * S.T0 - S.ZC0M * S.T0M; // L, H/m
    const double b = S.T0 * S.ZC0M - S.T0M * S.ZC0; // C ZC0 ZC0M
    const double zz = S.ZC0 * S.ZC0M;
    return modeOfSurge(S.R0 - S.R0M, std::sqrt(a * b / zz), std::sqrt(a * zz / b));
  }
  const SequenceReactances S = reactancesWithZero();
  return modeOfReactances(S.R0 - S.R0M, S.X0 - S.X0M, S.XC0 * S.XC0M / (S.XC0M - S.XC0));
}

ManualMode modeOfSequence(int k, int n) {
  if (n >= 2 && k == 1) return zeroSequence(n);
  if (n == TWOCIRCUITS && k == 2) return zeroMutual();
  return positiveSequence();
}

// --- modes of an entered pair

ManualMode modeOfPair(int k) {
  const Complex g = std::sqrt(MANUAL.EIGM[k]);
  const Complex Zc = std::sqrt(MANUAL.ZMOD(k, k) / MANUAL.YMOD(k, k));
  return {std::fabs(INMILLI * manualLength() / angularFrequency() * g.imag()), std::fabs(Zc.real()),
          std::fabs(MANUAL.ZMOD(k, k).real()), 0, 0};
}

// --- steps common to all modes

void formLineValues(ManualMode& m) {
  const double l = manualLength();
  m.C = m.T / INMILLI / (l * m.Zc);
  m.L = m.Zc * m.T / INMILLI / l;
}

void warnOfUnits() {
  console::rule('.', DOTS);
  console::line(UNITSWARNING);
  console::line("Check input data for Manual Entry of Z,Y");
  console::line("Some of the input data must be expressed per  unit length");
  console::rule('.', DOTS);
  warn();
}

// Negative values, from data that were not corrected, are replaced by their magnitude. A negative
// reactance is reported on the console, a negative susceptance on the error stream.
void takeCorrectionOut(int k, ManualMode& m) {
  const double w = angularFrequency(), l = manualLength();
  const Complex z(m.R, w * m.L), y(0.0, w * m.C);
  const Complex u = std::sqrt(z * y) * l;
  const Complex series = z / (CSINH(u) / u);
  const Complex t = CTANH(u / 2.0) / (u / 2.0);
  const double X = series.imag();
  const double B = y.imag() * t.real() / std::norm(t);
  if (X < 0.0) warnOfUnits();
  if (B < 0.0) {
    console::warning(fmt::format("mode {} of the manual data has a susceptance of {:.4g} S/m "
                                 "behind the correction for length; it counts by magnitude",
                                 k, B));
  }
  m.R = series.real();
  m.Zc = std::sqrt(std::fabs(X / B));
  m.T = INMILLI * l * std::sqrt(std::fabs(X * B)) / w;
  formLineValues(m);
}

} // namespace

double manualLength() {
  const bool totals = RUNDATA.manual.YZFMT == 1 && isPair();
  return totals ? 1.0 : RUNDATA.run.LINELEN;
}

void checkManualData() {
  if (RUNDATA.line.NC < 1) {
    console::openStars();
    console::line("The Line has no Conductors!");
    stopInStars("MANLINE Ending!");
  }
  checkFormat();
  checkEstimate();
}

void formManualTransformation() {
  const int n = RUNDATA.line.NC;
  if (isPair()) {
    formPairModes(n);
    return;
  }
  formSequenceModes(n);
  MANUAL.EIGM.fill(0.0);
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) MANUAL.YMOD(i, j) = MANUAL.ZMOD(i, j) = 0.0;
  }
}

ManualMode manualMode(int k) {
  ManualMode m = isPair() ? modeOfPair(k) : modeOfSequence(k, RUNDATA.line.NC);
  formLineValues(m);
  checkMode(k, m);
  if (RUNDATA.manual.LONGLINE != 1) return m;
  takeCorrectionOut(k, m);
  checkMode(k, m);
  return m;
}

void storeManualMode(int k, const ManualMode& mode, double f) {
  const double w = TWOPI * f;
  MANUAL.YMOD(k, k) = {0.0, w * mode.C};
  MANUAL.ZMOD(k, k) = {mode.R, w * mode.L};
}

void formManualPhases(CView Y, CView Z) {
  const ManualData& M = RUNDATA.manual;
  const int n = RUNDATA.line.NC;
  if (!isPair()) {
    congruence(Y, MANUAL.TI, MANUAL.YMOD, n);
    congruence(Z, MANUAL.TI, MANUAL.ZMOD, n);
    checkPhases(Y, Z, n);
    return;
  }
  const double share = M.YZFMT == 1 ? RUNDATA.run.LINELEN : 1.0;
  for (int j = 1; j <= n; ++j) {
    for (int i = 1; i <= n; ++i) {
      Y(i, j) = M.YENT(i, j) / share;
      Z(i, j) = M.ZENT(i, j) / share;
    }
  }
  checkPhases(Y, Z, n);
}

} // namespace lcp
