// Earth return of conductors above ground: complex depth of the soil and the term in the impedance.
//
// All terms are normalised: E stands for the impedance j w mu0 / (2 pi) GMUR E, in ohm/m.
#pragma once

#include "base/matrix.h"

#include <string_view>

namespace lcp {

// Complex conductivity S + j B of the frequency-dependent soil at angular frequency w, S/m.
Complex soilAdmittivity(double w);

// Complex depth p of the ground at angular frequency w > 0, m.
Complex GRDDEPTH(double w);

// Principal value of log(1 + z), accurate for small z too.
Complex LOG1P(Complex z);

// An earth-return formula key, the conductors it applies to, and the valid formulas.
struct EarthFormulaKey {
  std::string_view name;
  std::string_view bodies;
  std::string_view formulas;
};

// Prints the message for an invalid earth-return formula, with a line on the error stream that
// names the key, and ends the run with exit status 1.
[[noreturn]] void illegalEarthFormula(int formula, const EarthFormulaKey& key);

// Earth term of physical conductors i and j (self term if equal) at the complex depth in the
// overhead store, by formula EARTHF. A formula other than 0 or 2 ends the run with exit status 1.
Complex EARTHTERM(int i, int j);

} // namespace lcp
