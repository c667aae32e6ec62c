// Internal impedance of a round conductor: skin effect in closed form.
#pragma once

#include "base/matrix.h"

#include <string_view>

namespace lcp {

// Hyperbolic cotangent. z = 0 is no legal argument; a very large real part gives 1.
Complex COTH(Complex z);

struct Strands {
  double radius; // of one strand, m
  double outer;  // strands of the outer layer
  double total;  // strands in all
};

// Ends the run, exit status 1, where strands have no finite impedance: the formula divides by their
// radius, their number, and two more than those of the outer layer. A library row whose strands do
// not fit round its conductor leaves no number of these.
void checkStrands(std::string_view owner, const Strands& strands);

// Impedance per metre, as seen from the outer surface, of a conductor of the outer radius r and the
// relative permeability mur at the angular frequency w > 0, ohm/m; rho resistivity, ohm m, q inner
// radius of the tube, m, R DC resistance, ohm/m. The current returns outside the conductor.
Complex solidImpedance(double w, double r, double rho, double mur);
Complex tubeImpedance(double w, double q, double r, double rho, double mur);
Complex strandedImpedance(double w, double r, const Strands& strands, double R, double mur);

// Of a tube also what a current that returns inside sees at the inner surface, and the voltage per
// metre that a current at one surface drives at the other, both ohm/m; at zero frequency all three
// are the DC resistance.
Complex tubeInnerImpedance(double w, double q, double r, double rho, double mur);
Complex tubeTransferImpedance(double w, double q, double r, double rho, double mur);

// Internal impedance of conductor i of the conductor table, ohm/m, at the angular frequency w > 0.
Complex ZINT(double w, int i);

} // namespace lcp
