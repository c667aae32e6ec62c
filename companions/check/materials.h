// Usual properties of metals and insulators, and findings on others.
#pragma once

#include "companions/check/finding.h"

#include <string>

namespace lcp::companions {

struct Range {
  double least, most;
  bool holds(double x) const { return x >= least && x <= most; }
};

// Resistivities, ohm m, of the metal and the voids among its strands together.
constexpr Range COPPERALUMINIUM = {1.5e-8, 1e-7}; // up to warm ACSR taken as a solid rod
constexpr Range THINWIRES = {1.5e-8, 4e-7};       // which can be of steel
constexpr Range GROUNDWIRES = {1.5e-8, 8e-7};
constexpr Range CORES = {1.5e-8, 6e-8};
constexpr Range METALS = {1.5e-8, 2e-6}; // screens of tape, lead, armours and pipes of steel

std::string number(double x);

// "; 0.45 would be" where a slip of a power of ten explains a value, else empty.
std::string powerOfTen(double value, double least, double most);

// Properties shared by a group are reported once: one finding of a kind per line.
void addOnce(Findings& findings, int line, Kind kind, std::string_view a, std::string_view b,
             std::string_view c = {});

// `better` suggests another value.
void resistivity(Findings& findings, int line, std::string_view name, double rho, Range range,
                 std::string_view better = {});
void permittivity(Findings& findings, int line, std::string_view name, double eps, double most);

// Of a metal, whose resistivity tells whether it can be steel, and of an insulator.
void metalPermeability(Findings& findings, int line, std::string_view name, double mu, double rho,
                       Range steel);
void insulatorPermeability(Findings& findings, int line, std::string_view name, double mu);

} // namespace lcp::companions
