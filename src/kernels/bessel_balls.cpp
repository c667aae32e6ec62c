// Away from the origin K_0 and K_1 are computed from the asymptotic series, whose error exp(-2 |x|)
// is below the precision of a double. Near it the power series is used, in which (|x| + Re x) / log
// 2 bits cancel.
#include "kernels/bessel_balls.h"

#include <acb_hypgeom.h>
#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace lcp {

namespace {

constexpr double ASYMPTOTIC = 20.0; // |x| from which the asymptotic series is used
constexpr slong ASYMPTOTICBITS = 72;
constexpr double SERIESBITS = 66.0; // working precision of the power series at 0 ...
constexpr double LOSTBITS = 1.5;    // ... plus this for each unit of |x| + Re x
constexpr slong MOSTBITS = 4096;
constexpr slong GOODBITS = 55;

void (*giveUp)() = nullptr;

// Clang treats noreturn as part of a function's type, but only in this form of the attribute.
__attribute__((noreturn)) void endWithoutMemory() {
  giveUp();
  std::abort();
}

// Kept from call to call, so that they are allocated only once.
struct Balls {
  acb_t order;
  acb_t argument;
  acb_t value;

  explicit Balls(void (*withoutMemory)()) { // NOLINT(*-member-init)
    giveUp = withoutMemory;
    flint_set_abort(endWithoutMemory); // running out of memory is its only failure
    acb_init(order);
    acb_init(argument);
    acb_init(value);
  }
};

bool isGood(const acb_t value) { return acb_rel_accuracy_bits(value) >= GOODBITS; }

bool evaluateBall(Balls& B, double size, double real) {
  if (size >= ASYMPTOTIC) {
    acb_hypgeom_bessel_k_asymp(B.value, B.order, B.argument, 1, ASYMPTOTICBITS);
    if (isGood(B.value)) return true;
  }
  const double lost = LOSTBITS * (std::min(size, 2.0 * ASYMPTOTIC) + std::max(real, 0.0));
  slong bits = static_cast<slong>(SERIESBITS + std::min(lost, SERIESBITS * LOSTBITS));
  for (; bits <= MOSTBITS; bits *= 2) {
    acb_hypgeom_bessel_k_scaled(B.value, B.order, B.argument, bits);
    if (isGood(B.value)) return true;
  }
  return false;
}

double middle(const arb_t part) { return arf_get_d(arb_midref(part), ARF_RND_NEAR); }

} // namespace

BesselBall corvoBesselBall(int n, double real, double imag, void (*withoutMemory)()) {
  static Balls B(withoutMemory);
  acb_set_si(B.order, n);
  acb_set_d_d(B.argument, real, imag);
  const bool good = evaluateBall(B, std::hypot(real, imag), real);
  return {middle(acb_realref(B.value)), middle(acb_imagref(B.value)), good};
}

} // namespace lcp
