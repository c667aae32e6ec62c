// A cable is a chain of conductances: core, insulator 1, sheath, insulator 2, and so on to the
// earth; an aerial cable has the air as its last link. The diagonal of the nodal matrix of the
// chain is the sum of both neighbouring conductances. Only the outermost conductor of an aerial
// cable with two or more conductors differs.
#include "cable/conductance.h"

#include "store/rundata.h"

namespace lcp {

namespace {

void couple(CView G, int i, double g) { G(i, i + 1) = G(i + 1, i) = Complex(0.0, -g); }

void setSelf(CView G, int i, double g) { G(i, i) = Complex(0.0, g); }

// Insulators between conductors and towards the earth. The outermost conductor has a row only if
// there is an insulator around it.
void buriedChain(const Cable& C, int first, double g, CView G) {
  setSelf(G, first, g);
  for (int k = 2; k <= C.conductors() && C.CBNLAY > 2 * k - 1; ++k) {
    setSelf(G, first + k - 1, 2 * g);
    couple(G, first + k - 2, g);
  }
}

// Series connection of the last insulator and the air; 0 if neither conducts.
double seriesOf(double g, double air) {
  const double sum = g + air;
  return sum == 0.0 ? 0.0 : g * air / sum;
}

// The elements that the air changes.
void airLink(const Cable& C, int first, double g, CView G) {
  const double air = C.CBGAER;
  const int n = C.conductors();
  const int last = first + n - 1;
  const bool bare = C.CBNLAY % 2 == 1;
  if (n == 1) {
    setSelf(G, first, bare ? air : seriesOf(g, air));
    return;
  }
  if (bare) {
    setSelf(G, last, g + air);
    couple(G, last - 1, g);
  } else {
    setSelf(G, last, seriesOf(g, air) + g);
  }
}

} // namespace

void CBGAIR(const CableNumbering& N, CView G) {
  for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) {
    const Cable& C = RUNDATA.cable.CB[c];
    if (C.CBOVHD) setSelf(G, N.last(c), C.CBGAER);
  }
}

void CBGSH(double g, const CableNumbering& N, CView G) {
  for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) {
    const Cable& C = RUNDATA.cable.CB[c];
    buriedChain(C, N.first(c), g, G);
    if (C.CBOVHD) airLink(C, N.first(c), g, G);
  }
}

} // namespace lcp
