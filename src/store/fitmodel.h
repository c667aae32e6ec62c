// The fitted phase-domain model: poles and residues of the characteristic admittance Yc and of the
// propagation matrix H. At s = j w, for element (r,c), delay group g and pole m:
//
//   Yc(r,c) = YD(r,c) + sum over m of YRES(r,c)[m] / (s - YPOLE[m])
//   H(r,c)  = sum over g of exp(-s TAU[g]) sum over m of HRES[g](r,c)[m] / (s - HPOLE[g][m])
//
// All elements of Yc share one set of poles; in H all elements of a delay group do. Complex poles
// are stored as adjacent conjugate pairs with conjugate residues. No pole has a positive real part.
#pragma once

#include "base/big_store.h"
#include "base/matrix.h"
#include "store/capacities.h"
#include "store/solvedata.h"

namespace lcp {

using PoleTable = Table<Complex, MAXPOLES>;
using GroupReals = Table<double, NGMAX>;
using GroupInts = Table<int, NGMAX>;

// The residues of all elements over one set of poles; those of an element are contiguous.
using ResidueMatrix = MappedMatrix<PoleTable>;

struct FitModel {
  int NC;             // conductors: the order of all matrices
  int NPY;            // poles of Yc
  PoleTable YPOLE;    // rad/s
  ResidueMatrix YRES; // S rad/s; symmetric
  RealMatrix YD;      // constant term, S; symmetric

  int NGROUP;                       // delay groups
  GroupReals TAU;                   // delay of group g, s; 0 beyond NGROUP
  GroupInts NH;                     // poles of group g
  Table<PoleTable, NGMAX> HPOLE;    // rad/s
  Table<ResidueMatrix, NGMAX> HRES; // rad/s
};

// Maps the residue matrices for n conductors.
inline void mapResidues(FitModel& model, int n) {
  model.YRES.map(n);
  for (int g = 1; g <= n; ++g) model.HRES[g].map(n); // at most one group per mode
}

// Mapped before any variable of an including file is initialised.
inline FitModel& FITMODEL = bigStore<FitModel>();

} // namespace lcp
