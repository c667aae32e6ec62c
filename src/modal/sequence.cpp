// S = (1 / sqrt 3) [1 1 1; 1 a^2 a; 1 a a^2], a = -1/2 + j sqrt(3)/2. A two-conductor line has a
// ground mode and a metallic mode from sqrt 2 [1 1; 1 -1]. In a transformed block (1,1) is the zero
// sequence or ground mode, (2,2) the positive sequence or metallic mode.
#include "modal/sequence.h"

#include "base/console.h"
#include "base/stop.h"
#include "kernels/inversion.h"
#include "kernels/matrix_kernels.h"
#include "store/rundata.h"

#include <cmath>

namespace lcp {

namespace {

constexpr double INVSQRT3 = 0.577350269189626;
constexpr double HALFINVSQRT3 = 0.288675134594813;
constexpr double SQRT2 = 1.41421356237;
constexpr double NOBASE = 1e-10;
constexpr double NOSURGE = 1e-20; // X and B up to this have no surge impedance

constexpr int ZERO = 1;     // in a transformed block; for a bipole the ground mode
constexpr int POSITIVE = 2; // metallic mode

// Y and Z of one kind (plain or corrected), transformed block by block.
struct SequencePair {
  LineMatrix Y, Z;
};

SquareStore<Complex, 2> bipoleTransform() {
  SquareStore<Complex, 2> SQ2{};
  SQ2(1, 1) = SQ2(1, 2) = SQ2(2, 1) = SQRT2;
  SQ2(2, 2) = -SQRT2;
  return SQ2;
}

void transformPair(SequencePair& pair, CConstView Y, CConstView Z, int n) {
  if (n == 2) {
    const SquareStore<Complex, 2> SQ2 = bipoleTransform();
    SEQTRANS(Y, pair.Y, SQ2, 2);
    SEQTRANS(Z, pair.Z, SQ2, 2);
  } else {
    transformBlocks(pair.Y, Y, n);
    transformBlocks(pair.Z, Z, n);
  }
}

// Values of element (i,j); for a mutual element the magnitude of the susceptance.
SequenceValues valuesAt(const SequencePair& pair, int i, int j, double KZ, double KY) {
  const double l = RUNDATA.run.LINELEN;
  SequenceValues v;
  v.R = KZ * l * pair.Z(i, j).real();
  v.X = KZ * l * pair.Z(i, j).imag();
  v.B = KY * l * pair.Y(i, j).imag();
  if (i != j) v.B = std::fabs(v.B);
  if (v.X > NOSURGE && v.B > NOSURGE) v.Zc = std::sqrt(v.X / v.B);
  return v;
}

struct BlockRow {
  std::string_view corrected, plain;
  int i, j;
  bool positive;
};

constexpr BlockRow DOUBLECIRCUIT[] = {
    {"  Positive Sequence (Long-Line Corrected) of Circuit 1", "  Positive Sequence of Circuit 1",
     POSITIVE, POSITIVE, true},
    {"  Zero Sequence (Long-Line Corrected) of Circuit 1", "  Zero Sequence of Circuit 1", ZERO,
     ZERO, false},
    {"  Positive Sequence (Long-Line Corrected) of Circuit 2", "  Positive Sequence of Circuit 2",
     3 + POSITIVE, 3 + POSITIVE, true},
    {"  Zero Sequence (Long-Line Corrected) of Circuit 2", "  Zero Sequence of Circuit 2", 3 + ZERO,
     3 + ZERO, false},
    {"  Zero Sequence Mutual (Long-Line Corrected)", "  Zero Sequence Mutual", ZERO, 3 + ZERO,
     false},
};

constexpr BlockRow BIPOLE[] = {
    {"  Metallic Mode (Long-Line Corrected)", "  Metallic Mode ", POSITIVE, POSITIVE, false},
    {"  Ground Mode (Long-Line Corrected)", "  Ground Mode ", ZERO, ZERO, false},
};

constexpr BlockRow SINGLECIRCUIT[] = {
    {"  Positive Sequence (Long-Line Corrected)", "  Positive Sequence ", POSITIVE, POSITIVE, true},
    {"  Zero Sequence (Long-Line Corrected)", "  Zero Sequence ", ZERO, ZERO, false},
};

std::span<const BlockRow> rowsFor(int n) {
  if (n == 6) return DOUBLECIRCUIT;
  if (n == 2) return BIPOLE;
  return SINGLECIRCUIT;
}

void addBlocks(LoadFlowData& data, const SequencePair& pair, bool corrected, int n) {
  for (const BlockRow& row : rowsFor(n)) {
    SequenceBlock& block = data.blocks[data.count++];
    block.label = corrected ? row.corrected : row.plain;
    block.positive = row.positive;
    block.parted = n == 2 && !corrected && row.i == ZERO;
    block.values = valuesAt(pair, row.i, row.j, data.KZ, data.KY);
  }
}

bool hasBases() {
  const DisplayOptions& D = RUNDATA.display;
  return D.MVABASEDISP >= NOBASE && D.VBASEDISP >= NOBASE;
}

double impedanceFactor() {
  const DisplayOptions& D = RUNDATA.display;
  return D.MVABASEDISP / (D.VBASEDISP * D.VBASEDISP);
}

void chooseBases(LoadFlowData& data) {
  data.perUnit = hasBases();
  if (!data.perUnit) RUNDATA.setUnitBases();
  data.KZ = data.perUnit ? impedanceFactor() : 1.0;
  data.KY = 1.0 / data.KZ;
}

} // namespace

void checkBases() {
  const double KZ = impedanceFactor();
  if (!hasBases() || (std::isfinite(KZ) && std::isfinite(1.0 / KZ))) return;
  console::openStars();
  console::print("Base Values for Display are out of Range: {} kV, {} MVA",
                 RUNDATA.display.VBASEDISP, RUNDATA.display.MVABASEDISP);
  console::closeStars();
  stop(1);
}

const Matrix3& sequenceTransform() {
  static const Matrix3 S = [] {
    Matrix3 m{};
    for (int i = 1; i <= 3; ++i) m(1, i) = m(i, 1) = INVSQRT3;
    m(2, 2) = m(3, 3) = {-HALFINVSQRT3, -0.5000000000000001};
    m(2, 3) = m(3, 2) = {-HALFINVSQRT3, 0.5};
    return m;
  }();
  return S;
}

void SEQTRANS(CConstView X, CView XS, CConstView T, int n) {
  Matrix3 Ti{};
  Matrix3 product{};
  INVCJD(Ti, T, n);
  CMATMUL(product, Ti, X, n);
  CMATMUL(XS, product, T, n);
}

void transformBlocks(CView XS, CConstView X, int n) {
  copyCorner(XS, X, n);
  for (int j = 1; j <= n - 2; j += 3) {
    for (int i = 1; i <= n - 2; i += 3) {
      SEQTRANS({&X(i, j), X.ld}, {&XS(i, j), XS.ld}, sequenceTransform(), 3);
    }
  }
}

bool hasLoadFlowSection() {
  if (RUNDATA.run.ISCABLE != OVERHEADLINE) return false;
  const ConductorTable& C = RUNDATA.cond;
  const int NC = RUNDATA.line.NC;
  return NC == 2 || NC == 3 || (NC == 6 && C.NCIRC == 2 && (C.NTOWER == 1 || C.NTOWER == 2));
}

bool hasSequenceMatrices() {
  if (RUNDATA.run.ISCABLE == OVERHEADLINE) return RUNDATA.cond.ALL3PH;
  return RUNDATA.run.ISCABLE == CABLESYSTEM && RUNDATA.line.NC % 3 == 0;
}

void formLoadFlowData(LoadFlowData& data, CConstView Y, CConstView Z, CConstView YLC,
                      CConstView ZLC, bool LLOK) {
  static SequencePair pair;
  const int n = RUNDATA.line.NC;
  chooseBases(data);
  if (LLOK) {
    transformPair(pair, YLC, ZLC, n);
    addBlocks(data, pair, true, n);
  }
  transformPair(pair, Y, Z, n);
  addBlocks(data, pair, false, n);
  data.circuits = n == 2 ? 0 : n / 3;
  for (int c = 0; c < data.circuits; ++c) {
    const int at = 3 * c + POSITIVE;
    data.simulator[c] = valuesAt(pair, at, at, 1.0, 1.0);
  }
}

} // namespace lcp
