// Compiles a function once per register width of the processor; the program runs the widest version
// that the processor supports. Only for arithmetic whose bits do not depend on the width: elements
// side by side, sums in a fixed order, no fused multiply-add.
#pragma once

namespace lcp {

// Numbers side by side for a vector unit of any width: each lane has the bits of scalar arithmetic.
constexpr int LANES = 4;
using Lanes = double __attribute__((vector_size(LANES * sizeof(double))));

} // namespace lcp

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(LCP_BOUNDS)
#define LCP_WIDTHS(...) __attribute__((target_clones(__VA_ARGS__, "default"), flatten))
#else
#define LCP_WIDTHS(...)
#endif
