// Sequence components of three-phase circuits and modes of a bipole: the load flow values.
#pragma once

#include "store/solvedata.h"

#include <string_view>

namespace lcp {

using Matrix3 = SquareStore<Complex, 3>;

// Transform to the sequences zero, positive, negative, rows in this order.
const Matrix3& sequenceTransform();

// XS = T^-1 X T, n by n, n up to 3.
void SEQTRANS(CConstView X, CView XS, CConstView T, int n);

// XS = X with every 3 by 3 block, from the upper left on, transformed to sequences; n by n.
void transformBlocks(CView XS, CConstView X, int n);

// Load flow values of one sequence.
struct SequenceValues {
  double R = 0;  // ohm or per unit
  double X = 0;  // ohm or per unit
  double B = 0;  // siemens or per unit
  double Zc = 0; // surge impedance; 0 when X or B is not positive
};

// A labelled block of the load flow section.
struct SequenceBlock {
  std::string_view label;
  bool positive = false; // a positive sequence: the longer row of dots
  bool parted = false;   // a line of blanks stands before it
  SequenceValues values;
};

struct LoadFlowData {
  bool perUnit = false;
  double KZ = 1; // per-unit factor of impedances
  double KY = 1; // per-unit factor of admittances
  SequenceBlock blocks[10];
  int count = 0;
  SequenceValues simulator[2]; // positive sequence of each circuit, in ohm and siemens
  int circuits = 0;            // how many of them the simulator is told
};

// Whether an overhead line has a load flow section, and whether a line has sequence matrices.
bool hasLoadFlowSection();
bool hasSequenceMatrices();

// Ends the run with a message, exit status 1, when the bases of per-unit display have no factors.
void checkBases();

// Fills the load flow data for NC = 2, 3 or 6 from Y and Z per metre, and first from the long-line
// corrected YLC and ZLC when LLOK. Without both bases of per-unit display the values are in ohm and
// siemens, and both bases are 1 from then on, for the rest of the run.
void formLoadFlowData(LoadFlowData& data, CConstView Y, CConstView Z, CConstView YLC,
                      CConstView ZLC, bool LLOK);

} // namespace lcp
