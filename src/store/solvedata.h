// The solve store: all quantities of one solve at each step of its frequency grid.
//
// Fixed in size, alive for the whole run, and reused by each length step, which overwrites what it
// needs. Letters: k is the frequency step, i and j are conductors or modes.
//
// What a length step inherits from the steps before it, and the effect:
//
//   LINELEN                 the increment is added to it
//   WARNFLAG                exit status of the run
//   VBASEDISP, MVABASEDISP  1 if one was missing: load-flow data are labelled per unit
//   JPVT (fit/series_fit)   column order of the first fit: affects its last digits
//   TISUM                   never cleared: affects the sign of a fitted transformation element
//   LSTEP                   next eigenvalue of a mode whose first Newton step is singular
//   tried (fit/delay_groups)  a delay tried before, equal to the bit, is not fitted again
//   NC, NCOND, CBGLAST, CBELIM1 to 3, CONSTT
//                           none: the step would set them to the same values
//   digits                  none: a search clears the digits it uses
//
// Cached results give the same bits when reused: the modes of a product Y Z (modal/long_line),
// pairs of the aerial integral, moments and exponentials of the Carson integral. The date stamps of
// the message package appear only in a fatal message. Everything else is written before it is read.
#pragma once

#include "base/big_store.h"
#include "base/matrix.h"
#include "store/capacities.h"

namespace lcp {

using LineMatrix = SquareStore<Complex, LDMAT>;
using RealMatrix = SquareStore<double, LDMAT>;
using ModeReals = Table<double, LDMAT>;
using ModeComplex = Table<Complex, LDMAT>;
using ModeInts = Table<int, LDMAT>;
using FreqCurve = Curve<double, MAXFREQ>;

struct FrequencyGrid {
  int NFREQ;       // frequency steps of this solve
  int NFUSE;       // steps that are grid points: NFREQ, less 1 when CONSTT is set
  double LOGW0;    // log10 of the angular frequency of step 1
  double DLOGW;    // step of log10 of the angular frequency
  FreqCurve FREQ;  // frequency, Hz
  FreqCurve WFREQ; // 2 pi FREQ, rad/s
  FreqCurve LOGW;  // log10 of WFREQ
  FreqCurve LOGF;  // log10 of FREQ
  FreqCurve WFIT;  // fit weight
};

// The current frequency and the state of the walk over the grid.
struct FirstLoopStore {
  LineMatrix YMAT;   // shunt admittance, S/m
  LineMatrix ZMAT;   // series impedance, ohm/m
  LineMatrix PMAT;   // normalised product Yn Zn; for a four-wire cable the plain product Y Z
  LineMatrix TI;     // current transformation, eigenvectors of PMAT as columns
  LineMatrix TIINV;  // its inverse
  ModeComplex EIG;   // eigenvalues of PMAT
  double PSCALE;     // mean magnitude of the diagonal of PMAT, set by the eigenvalue step
  ModeInts NRITER;   // Newton iterations of mode i in the last call
  ModeComplex LSTEP; // last scaled eigenvalue of mode i, kept between calls
  ModeInts PIVOT;    // row of the largest element of column i in the last accepted solution
  ModeInts PIVOT0;   // the same for the last full eigensolution
  ModeInts PIVOTC;   // the same for the start of the constant-transformation step
  int KCT;           // step at which the constant-transformation step starts, 0 if not known yet
  double PSCALECT;   // scale of the values at KCT
  double PSCALEST;   // scale of the last stored values
  bool ISTATUS;      // true until the first frequency of a solve is done
  bool IDEALT;       // the line is one ideally transposed circuit
  int digits[6];     // decimal digits of the search, 1 to 5
};

struct SecondLoopStore {
  LineMatrix YM;      // modal admittance at the current step
  LineMatrix ZM;      // modal impedance
  ModeComplex ZSURGE; // surge impedance of mode i, ohm
  ModeReals ZSURGER;  // its real part
  ModeComplex GAM;    // propagation constant of mode i, 1/m
  ModeReals TAUMS;    // travel time of mode i, ms
  ModeReals RLOSS1;   // Bergeron: modal resistance at the loss frequency, ohm/m
  ModeReals RLOSS2;   // Bergeron: the same at the steady-state frequency
  RealMatrix TISUM;   // sum over the steps of the real part of TI(i,j)

  CurveVector<Complex, LDMAT, MAXFREQ> GAMLEN;  // GAM times the line length
  CurveVector<Complex, LDMAT, MAXFREQ> ZSURGST; // ZSURGE
  CurveVector<Complex, LDMAT, MAXFREQ> HMODE;   // exp(-GAMLEN)
  CurveVector<double, LDMAT, MAXFREQ> HMAG;     // its magnitude
  CurveVector<double, LDMAT, MAXFREQ> HARG;     // -Im GAMLEN in degrees, not unwrapped
  CurveVector<double, LDMAT, MAXFREQ> VELOC;    // velocity, m/s
  CurveVector<double, LDMAT, MAXFREQ> ZSARG;    // angle of ZSURGE, degrees
  CurveMatrix<Complex, MAXFREQ> TIST;           // TI with unit columns
  CurveMatrix<double, MAXFREQ> TIMAG;           // its magnitude
  CurveMatrix<double, MAXFREQ> TIARG;           // its angle, degrees
  CurveMatrix<Complex, MAXFREQ> YCST;           // characteristic admittance of the phases, S
  CurveMatrix<Complex, MAXFREQ> HST;            // propagation matrix of the phases
};

// Solutions over frequency: MEIG is the eigenvalue of mode i and MTI element (i,j) of TI at step k.
struct FrequencyStore {
  CurveVector<Complex, LDMAT, MAXFREQ> MEIG;
  CurveMatrix<Complex, MAXFREQ> MTI;
  CurveMatrix<Complex, MAXFREQ> YSTORE;
  CurveMatrix<Complex, MAXFREQ> ZSTORE;
};

struct SolveData {
  FrequencyGrid grid;
  FirstLoopStore first;
  SecondLoopStore second;
  FrequencyStore at;
};

// Maps the curves for n conductors; a store that is large enough is kept.
inline void mapCurves(SolveData& S, int n) {
  for (auto* curves :
       {&S.second.TIST, &S.second.YCST, &S.second.HST, &S.at.MTI, &S.at.YSTORE, &S.at.ZSTORE}) {
    curves->map(n);
  }
  S.second.TIMAG.map(n);
  S.second.TIARG.map(n);
}

// Mapped before any variable of an including file is initialised.
inline SolveData& SOLVEDATA = bigStore<SolveData>();

} // namespace lcp
