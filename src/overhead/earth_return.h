// Earth return of conductors above ground: the soil, its complex depth, and the term that it adds
// to the series impedance.
//
// All terms are normalised: a value E stands for the impedance j w mu0 / (2 pi) GMUR E, ohm/m.
#pragma once

#include "base/matrix.h"

#include <string_view>

namespace lcp {

// Complex conductivity S + j B of the frequency-dependent soil at the angular frequency w, S/m.
Complex soilAdmittivity(double w);

// Complex depth p of the ground at the angular frequency w > 0, m.
Complex GRDDEPTH(double w);

// Principal log(1 + z) without loss of accuracy at small z.
Complex LOG1P(Complex z);

// The key of an earth-return formula, the bodies it is for, and the formulas that there are.
struct EarthFormulaKey {
  std::string_view name;
  std::string_view bodies;
  std::string_view formulas;
};

// Message for an earth-return formula without a value, with a line on the error stream that names
// the key; ends the run, exit status 1.
[[noreturn]] void illegalEarthFormula(int formula, const EarthFormulaKey& key);

// Earth term of the physical conductors i and j (self term when equal), at the depth that stands in
// the overhead store, by the formula EARTHF. Another formula than 0 and 2 ends the run, status 1.
Complex EARTHTERM(int i, int j);

} // namespace lcp
