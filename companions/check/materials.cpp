#include "companions/check/materials.h"

#include <algorithm>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double MAGNETIC = 3; // relative; above it the metal is steel
constexpr double MOSTMAGNETIC = 1e4;
constexpr double LEASTMU = 0.9;
constexpr double HELIX = 3; // of an insulator: the flux of a helical screen counts as its own

} // namespace

std::string number(double x) { return fmt::format("{:.4g}", x); }

std::string powerOfTen(double value, double least, double most) {
  for (const double factor : {1e-3, 1e3, 1e-2, 1e2, 0.1, 10.0, 1e-6, 1e6}) {
    if (value * factor >= least * (1 - 1e-9) && value * factor <= most * (1 + 1e-9))
      return fmt::format("; {:.4g} would be", value * factor);
  }
  return {};
}

void addOnce(Findings& findings, int line, Kind kind, std::string_view a, std::string_view b,
             std::string_view c) {
  const bool there = std::any_of(findings.begin(), findings.end(), [&](const CheckFinding& f) {
    return f.line == line && f.kind == kind;
  });
  if (!there) add(findings, line, kind, a, b, c);
}

void resistivity(Findings& findings, int line, std::string_view name, double rho, Range range,
                 std::string_view better) {
  if (range.holds(rho)) return;
  addOnce(findings, line, Kind::Resistivity, name, number(rho),
          fmt::format("{:.1e} to {:.1e}{}", range.least, range.most, better));
}

void permittivity(Findings& findings, int line, std::string_view name, double eps, double most) {
  if (eps >= 1 && eps <= most) return;
  add(findings, line, Kind::Permittivity, name, number(eps),
      fmt::format("1 to {:g}{}", most, eps > 0 ? powerOfTen(eps, 2, most) : ""));
}

void metalPermeability(Findings& findings, int line, std::string_view name, double mu, double rho,
                       Range steel) {
  if (mu < LEASTMU || mu > MOSTMAGNETIC) {
    addOnce(findings, line, Kind::Permeability, name, number(mu), "is 1, that of steel 10 to 1000");
  } else if (mu > MAGNETIC && METALS.holds(rho) && !steel.holds(rho)) {
    addOnce(findings, line, Kind::Permeability, name, number(mu),
            fmt::format("is 1 for a metal of {:.1e} ohm m, which is not steel", rho));
  }
}

void insulatorPermeability(Findings& findings, int line, std::string_view name, double mu) {
  if (mu < LEASTMU || mu > HELIX) add(findings, line, Kind::Permeability, name, number(mu), "is 1");
}

} // namespace lcp::companions
