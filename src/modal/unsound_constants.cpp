#include "modal/unsound_constants.h"

#include "base/console.h"

#include <cmath>
#include <string>

namespace lcp {

namespace {

bool notedIn(std::string_view name, std::string_view unit, CConstView A, int n) {
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= n; ++j) {
      const Complex a = A(i, j);
      if (std::fabs(a.real()) + std::fabs(a.imag()) < BEYOND) continue;
      const bool number = std::isfinite(a.real()) && std::isfinite(a.imag());
      const std::string value = number
                                    ? fmt::format("{:.4g} + j {:.4g} {}", a.real(), a.imag(), unit)
                                    : "no finite number";
      console::note(fmt::format("{}({},{}) is {}", name, i, j, value));
      return true;
    }
  }
  return false;
}

} // namespace

void noteUnsoundElement(CConstView Y, CConstView Z, int n) {
  if (!notedIn("Z", "ohm/m", Z, n)) notedIn("Y", "S/m", Y, n);
}

} // namespace lcp
