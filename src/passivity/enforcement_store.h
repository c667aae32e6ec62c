// Working store of the passivity enforcement.
//
// It holds a copy of the fitted model with the poles of all groups of H in one list, the scan grid,
// and the linearisation around the current residues.
//
//   H(s) = sum over m of FRES[m] exp(-s FTAU[m]) / (s - FPOLE[m])
//
// Filled at the start of an enforcement; mapped once for the whole run.
#pragma once

#include "base/big_store.h"
#include "passivity/dense_algebra.h"
#include "passivity/passivity_grid.h"
#include "store/capacities.h"
#include "store/fitmodel.h"

namespace lcp {

constexpr int MAXORDER = 500;    // poles of H over all delay groups
constexpr int MAXVIOLATED = 100; // violation points of a scan, and constraint frequencies
constexpr int MAXFREE = 100;     // free eigenvalues
constexpr int MAXVARIABLES = 2 * MAXFREE;
constexpr int SENSROWS = 2 * LDMAT * LDMAT; // real and imaginary parts of the elements of H
constexpr int MAXCONSTRAINTS = MAXVIOLATED * LDNODAL; // rows of the quadratic program

// The constants of the method are single precision numbers.
constexpr double single(double x) { return static_cast<double>(static_cast<float>(x)); }
constexpr double SINGLETWOPI = 6.2831854820251465; // 2 pi for all frequencies of the enforcement
// A value with a larger imaginary part is complex; also added to the diagonal of the normal matrix.
constexpr double SMALLSINGLE = single(1e-15);

using ResidueList = Table<LineMatrix, MAXORDER>; // one matrix per pole, rad/s

enum class Residues { Base, Changed }; // which residues of H: FRES or FPERT

// An eigenvalue of a residue matrix that the quadratic program can change: its real part and, if it
// is complex, its imaginary part.
struct FreeEigenvalue {
  int pole;
  int eigenvalue; // in the order of the sorted eigenvalues of the pole's residue matrix
  bool complex;
};

// Peaks of the violation over the grid.
struct ViolationPoints {
  int count;
  Table<double, MAXVIOLATED> value;     // sum of the negative eigenvalues, S
  Table<double, MAXVIOLATED> frequency; // Hz
};

struct EnforcementStore {
  int NC; // ports of one end: conductors

  int ENY;                         // poles of Yc
  PoleTable EPY;                   // rad/s
  Table<LineMatrix, MAXPOLES> ERY; // their residues, S rad/s
  RealMatrix EDY;                  // constant term, S

  int TOTORD;                     // poles of H, of all delay groups in order
  Table<Complex, MAXORDER> FPOLE; // rad/s
  Table<double, MAXORDER> FTAU;   // delay of the pole's group, s
  ResidueList FRES;               // current residues, around which H is linearised
  ResidueList FPERT;              // ... with the latest solution applied
  ResidueList FORIG;              // fitted residues
  GroupInts FNG;                  // poles per group
  int FNGROUP;

  int NS;         // fit frequencies
  FreqCurve FFIT; // Hz

  FrequencyList EGRID;
  Table<double, MAXPASSGRID> V; // violation at each of its frequencies, S

  int NCFREQ;
  Table<double, MAXVIOLATED> CFREQ; // constraint frequencies, descending, Hz
  ViolationPoints VPOINT;           // of the last scan

  // For one main iteration: FRES[m] = FVEC[m] diag(FEIG[m]) FVECINV[m]
  Table<ModeComplex, MAXORDER> FEIG;
  ResidueList FVEC;
  ResidueList FVECINV;

  Table<ModeInts, MAXORDER> EIGFLAG; // 1 if an eigenvalue of the fitted residues is complex
  int NFREE;
  Table<FreeEigenvalue, MAXFREE> FREE;
  int NVAR; // variables of the quadratic program: real and imaginary parts in FREE

  double SENS[static_cast<std::size_t>(SENSROWS) * MAXVARIABLES];
  SquareStore<double, MAXVARIABLES> G; // normal matrix of the change of H over the fit frequencies

  int NCON; // constraints: CMATRIX x <= CBOUND
  double CMATRIX[static_cast<std::size_t>(MAXCONSTRAINTS) * MAXVARIABLES];
  Table<double, MAXCONSTRAINTS> CBOUND;
  Table<double, MAXVARIABLES> X; // solution
};

// Mapped before any variable of an including file is initialised.
inline EnforcementStore& ENFORCE = bigStore<EnforcementStore>();

// PASSSETY and PASSSETH copy Yc and H of FITMODEL to the store. PASSBACK copies the residues of H,
// and PASSBACKY the residues and constant term of Yc, back to FITMODEL. A model with more than
// MAXORDER poles of H only sets TOTORD.
void PASSSETY();
void PASSSETH();
void PASSBACK();
void PASSBACKY();

// Copies the residue matrices of all poles.
void copyResidues(ResidueList& to, const ResidueList& from);

inline const ResidueList& residuesOf(Residues which) {
  return which == Residues::Base ? ENFORCE.FRES : ENFORCE.FPERT;
}

} // namespace lcp
