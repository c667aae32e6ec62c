// K_0 and K_1 by ball arithmetic, in a module loaded when the first pipe needs it.
//
// The ball arithmetic library takes longer to load than a line takes to solve.
#pragma once

namespace lcp {

struct BesselBall {
  double real, imag; // exp(x) K_n(x)
  bool good;         // whether a working precision was sufficient
};

// Evaluates exp(x) K_n(x) for n = 0 or 1 and x = real + j imag with real >= 0, x neither zero nor
// denormal. If the library runs out of memory it calls withoutMemory, which must not return.
extern "C" {
using BesselRoutine = BesselBall (*)(int n, double real, double imag, void (*withoutMemory)());
[[gnu::visibility("default")]] BesselBall corvoBesselBall(int n, double real, double imag,
                                                          void (*withoutMemory)());
}

} // namespace lcp
