// The run-wide solve store: everything that one solve knows at each step of its frequency grid.
//
// Fixed in size, alive for the whole run, reused by each length step, which overwrites what it
// needs. Letters: k frequency step, i and j conductor or mode.
//
// All that a length step finds of the steps before it, and what comes of it:
//
//   LINELEN                 the increment is added to it
//   WARNFLAG                exit status of the run
//   VBASEDISP, MVABASEDISP  1 where one was missing: load flow data labelled per unit
//   JPVT (fit/series_fit)   order of the columns of the first fit: its last digits
//   TISUM                   only added to: sign of a fitted element of the transformation
//   LSTEP                   next eigenvalue of a mode whose first Newton step is singular
//   tried (fit/delay_groups)  a delay tried before, to the bit, is not fitted again
//   NC, NCOND, CBGLAST, CBELIM1 to 3, CONSTT
//                           nothing: the step would set them to what they are
//   digits                  nothing: a search clears the digits that it uses
//
// Results that are kept with what they were computed from give the same bits when they are taken
// again: the modes of a product Y Z (modal/long_line), pairs of the aerial integral, moments and
// exponentials of the Carson integral. The date stamps of the message package show in a fatal
// message alone. All else is written before it is read.
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
  int NFUSE;       // steps that count as grid points: NFREQ, less 1 when CONSTT is set
  double LOGW0;    // log10 of the angular frequency of step 1
  double DLOGW;    // step of log10 of the angular frequency
  FreqCurve FREQ;  // frequency, Hz
  FreqCurve WFREQ; // 2 pi FREQ, rad/s
  FreqCurve LOGW;  // log10 of WFREQ
  FreqCurve LOGF;  // log10 of FREQ
  FreqCurve WFIT;  // fit weight
};

// The current frequency and what steers the walk over the grid.
struct FirstLoopStore {
  LineMatrix YMAT;   // shunt admittance, S/m
  LineMatrix ZMAT;   // series impedance, ohm/m
  LineMatrix PMAT;   // normalised product Yn Zn; the plain product Y Z of a four-wire cable
  LineMatrix TI;     // current transformation, one eigenvector of PMAT a column
  LineMatrix TIINV;  // its inverse
  ModeComplex EIG;   // eigenvalues of PMAT
  double PSCALE;     // mean magnitude of the diagonal of PMAT, as the eigenvalue step left it
  ModeInts NRITER;   // Newton updates of mode i at the last call
  ModeComplex LSTEP; // latest scaled eigenvalue of mode i, kept between calls
  ModeInts PIVOT;    // row of the largest element of column i at the last accepted solution
  ModeInts PIVOT0;   // the same of the last full eigen solution
  ModeInts PIVOTC;   // the same for the start of the constant transform step
  int KCT;           // step from which the constant transform step starts, 0 while unknown
  double PSCALECT;   // scale of the values at KCT
  double PSCALEST;   // scale of the values stored last
  bool ISTATUS;      // before the first frequency of a solve
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

  CurveVector<Complex, LDMAT, MAXFREQ> GAMLEN;  // GAM times the length
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

// Solutions over frequency. MEIG is MSTORE(k,i,0), MTI is MSTORE(k,i,j): eigenvalue of mode i and
// element (i,j) of TI at step k.
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

// Room for the curves of n conductors; what is there already stays.
inline void mapCurves(SolveData& S, int n) {
  for (auto* curves :
       {&S.second.TIST, &S.second.YCST, &S.second.HST, &S.at.MTI, &S.at.YSTORE, &S.at.ZSTORE}) {
    curves->map(n);
  }
  S.second.TIMAG.map(n);
  S.second.TIARG.map(n);
}

// Mapped before anything of a file that includes this is initialised.
inline SolveData& SOLVEDATA = bigStore<SolveData>();

} // namespace lcp
