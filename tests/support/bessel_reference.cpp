#include "support/bessel_reference.h"

#include <acb_hypgeom.h>

namespace lcp::test {

Complex scaledBesselK(int n, Complex z) {
  acb_t order;
  acb_t argument;
  acb_t value;
  acb_init(order);
  acb_init(argument);
  acb_init(value);
  acb_set_si(order, n);
  acb_set_d_d(argument, z.real(), z.imag());
  slong bits = 128;
  do {
    bits *= 2;
    acb_hypgeom_bessel_k_scaled(value, order, argument, bits);
  } while (acb_rel_accuracy_bits(value) < 60);
  const Complex result(arf_get_d(arb_midref(acb_realref(value)), ARF_RND_NEAR),
                       arf_get_d(arb_midref(acb_imagref(value)), ARF_RND_NEAR));
  acb_clear(order);
  acb_clear(argument);
  acb_clear(value);
  flint_cleanup();
  return result;
}

} // namespace lcp::test
