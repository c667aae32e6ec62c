// The modified Bessel function of the second kind by ball arithmetic.
#pragma once

#include "base/matrix.h"

#include <acb_hypgeom.h>

namespace lcp::test {

// exp(z) K_n(z) to full double precision.
inline Complex scaledBesselK(int n, Complex z) {
  acb_t numbers[3]; // order, argument, value
  for (auto& x : numbers) acb_init(x);
  acb_set_si(numbers[0], n);
  acb_set_d_d(numbers[1], z.real(), z.imag());
  slong bits = 128;
  do {
    bits *= 2;
    acb_hypgeom_bessel_k_scaled(numbers[2], numbers[0], numbers[1], bits);
  } while (acb_rel_accuracy_bits(numbers[2]) < 60);
  const Complex value(arf_get_d(arb_midref(acb_realref(numbers[2])), ARF_RND_NEAR),
                      arf_get_d(arb_midref(acb_imagref(numbers[2])), ARF_RND_NEAR));
  for (auto& x : numbers) acb_clear(x);
  flint_cleanup();
  return value;
}

} // namespace lcp::test
