// Functions in one version for each width of the processor's registers; the program takes the
// widest that the processor has. Only for arithmetic whose bits do not depend on the width:
// elements side by side, sums in a fixed order, nothing fused.
#pragma once

namespace lcp {

// Numbers side by side, for the vector unit of any width: each lane has the bits of a scalar.
constexpr int LANES = 4;
using Lanes = double __attribute__((vector_size(LANES * sizeof(double))));

} // namespace lcp

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(LCP_BOUNDS)
#define LCP_WIDTHS(...) __attribute__((target_clones(__VA_ARGS__, "default"), flatten))
#else
#define LCP_WIDTHS(...)
#endif
