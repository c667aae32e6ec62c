// K_0 and K_1 by ball arithmetic. Its library takes longer to load than a line to solve, so this
// interface is the one of a module that is loaded when the first pipe asks for it.
#pragma once

namespace lcp {

struct BesselBall {
  double real, imag; // exp(x) K_n(x)
  bool good;         // whether some precision was enough
};

// n = 0 or 1, x = real + j imag with real >= 0, neither zero nor denormal. What its library cannot
// get memory for, it ends by the routine given.
extern "C" {
using BesselRoutine = BesselBall (*)(int n, double real, double imag, void (*withoutMemory)());
[[gnu::visibility("default")]] BesselBall corvoBesselBall(int n, double real, double imag,
                                                          void (*withoutMemory)());
}

} // namespace lcp
