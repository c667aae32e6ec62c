// Internal impedance of round conductors: skin effect in closed form.
#pragma once

#include "base/matrix.h"

#include <string_view>

namespace lcp {

// Hyperbolic cotangent. z must not be 0; a very large real part gives 1.
Complex COTH(Complex z);

struct Strands {
  double radius; // of one strand, m
  double outer;  // number of strands of the outer layer
  double total;  // number of strands in total
};

// Ends the run with exit status 1 if strands have no finite impedance: the formula divides by their
// radius, by their number, and by the number of the outer layer plus two. A library row whose
// strands do not fit around the conductor leaves NaN here.
void checkStrands(std::string_view owner, const Strands& strands);

// Impedance per metre at the outer surface, ohm/m, of a conductor with outer radius r, m,
// resistivity rho, ohm m, and relative permeability mur, at angular frequency w > 0; q is the inner
// radius of a tube, m, R the DC resistance, ohm/m. The current returns outside the conductor.
Complex solidImpedance(double w, double r, double rho, double mur);
Complex tubeImpedance(double w, double q, double r, double rho, double mur);
Complex strandedImpedance(double w, double r, const Strands& strands, double R, double mur);

// For a tube also, in ohm/m: the impedance at the inner surface of a current that returns inside,
// and the transfer impedance, the voltage per metre on one surface due to a current on the other.
// At zero frequency all three equal the DC resistance.
Complex tubeInnerImpedance(double w, double q, double r, double rho, double mur);
Complex tubeTransferImpedance(double w, double q, double r, double rho, double mur);

// Internal impedance of conductor i of the conductor table at angular frequency w > 0, ohm/m.
Complex ZINT(double w, int i);

} // namespace lcp
