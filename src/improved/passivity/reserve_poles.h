// Poles that an enforcement adds where those of the fit leave it too little freedom, and models
// that it keeps for later.
#pragma once

#include "store/fitmodel.h"

#include <vector>

namespace lcp {

// Real poles without residues, so many of Yc and of H each: changes give them some. Those of H
// below the band stand in group 1, as delays mean nothing there, those above it in every group.
struct Reserve {
  int below, above;
};

struct PoleCounts {
  int ofYc;
  GroupInts ofH;
};

[[nodiscard]] PoleCounts countPoles(); // of FITMODEL

// Removes all poles of FITMODEL after the first so many.
void setPoleCounts(const PoleCounts& counts);

// Appends poles to those of FITMODEL, as far as there is room.
void addReserve(const Reserve& reserve);

// Residues and constant term of the enforcement store.
struct KeptModel {
  std::vector<Complex> H, Yc;
  std::vector<double> constant;
};

[[nodiscard]] KeptModel keepModel();
void putBack(const KeptModel& model); // into a store of the same poles

} // namespace lcp
