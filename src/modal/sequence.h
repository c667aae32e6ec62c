// Load-flow values: sequence components of three-phase circuits and modes of a bipole.
#pragma once

#include "store/solvedata.h"

#include <string_view>

namespace lcp {

using Matrix3 = SquareStore<Complex, 3>;

// Transformation to the sequences zero, positive and negative, rows in this order.
const Matrix3& sequenceTransform();

// XS = T^-1 X T, n by n, n up to 3.
void SEQTRANS(CConstView X, CView XS, CConstView T, int n);

// XS = X with every 3 by 3 block, from the upper left, transformed to sequences; n by n.
void transformBlocks(CView XS, CConstView X, int n);

// Load-flow values of one sequence.
struct SequenceValues {
  double R = 0;  // ohm or per unit
  double X = 0;  // ohm or per unit
  double B = 0;  // siemens or per unit
  double Zc = 0; // surge impedance; 0 if X or B is not positive
};

// A labelled block of the load-flow section.
struct SequenceBlock {
  std::string_view label;
  bool positive = false; // a positive sequence: longer row of dots
  bool parted = false;   // preceded by a blank line
  SequenceValues values;
};

struct LoadFlowData {
  bool perUnit = false;
  double KZ = 1; // per-unit factor of impedances
  double KY = 1; // per-unit factor of admittances
  SequenceBlock blocks[10];
  int count = 0;
  SequenceValues simulator[2]; // positive sequence of each circuit, in ohm and siemens
  int circuits = 0;            // number of circuits passed to the simulator
};

// hasLoadFlowSection: whether an overhead line has a load-flow section. hasSequenceMatrices:
// whether a line has sequence matrices.
bool hasLoadFlowSection();
bool hasSequenceMatrices();

// Ends the run with a message and exit status 1 if the per-unit bases give no valid factors.
void checkBases();

// Fills the load-flow data for NC = 2, 3 or 6 from Y and Z per metre and, if LLOK, first from the
// long-line corrected YLC and ZLC. If a base of the per-unit display is missing, the values are in
// ohm and siemens, and both bases are set to 1 for the rest of the run.
void formLoadFlowData(LoadFlowData& data, CConstView Y, CConstView Z, CConstView YLC,
                      CConstView ZLC, bool LLOK);

} // namespace lcp
