// Run store, ground group: soil data and earth-return formulas.
#pragma once

namespace lcp {

// Earth-return formulas.
constexpr int EARTHCLOSED = 0;   // closed form with the complex depth
constexpr int EARTHINTEGRAL = 2; // numerical integration
constexpr int EARTHSERIES = 3;   // series; between buried cables only

struct Ground {
  bool GRTYPE = false;       // frequency-dependent soil
  double GRHO = 100.0;       // resistivity of the constant soil, ohm m
  double GMUR = 1.0;         // relative permeability
  double GEPSR = 1.0;        // relative permittivity, used by the cable formulas only
  double GSIGLF = 0.001;     // frequency-dependent soil: conductivity at low frequency, S/m
  double GFDSIG = 0.01;      // ... factor of its conductivity and permittivity terms
  double GFDFAC = 0.7;       // ... exponent of the frequency in MHz, above 0
  int EARTHF = EARTHCLOSED;  // formula of overhead conductors and aerial cables
  int EARTHFU = EARTHCLOSED; // formula between buried cables
  int EARTHFM = EARTHCLOSED; // formula between an aerial and a buried cable
};

} // namespace lcp
