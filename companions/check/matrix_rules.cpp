// The elements of Z and Y per metre at one frequency: a wire has an inductance of 0.05 to 10 uH/m
// against the earth or its sheath and a capacitance of 2 pF/m to 3 nF/m, and Maxwell's capacitances
// between conductors are negative.
#include "companions/check/matrix_rules.h"

#include "base/constants.h"
#include "companions/check/materials.h"
#include "companions/check/traced.h"
#include "store/rundata.h"
#include "store/yz_table.h"

#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr Range INDUCTANCES = {5e-8, 1e-5}; // H/m; at low frequencies the earth lies deep
constexpr Range CAPACITANCES = {2e-12, 3e-9};
constexpr double UNEQUAL = 1e-3; // relative, between (i, j) and (j, i)

struct Pair {
  CConstView Z, Y;
  int n;
  double w; // 1/s
};

int fileLine() {
  int found = headingLine("Manual Data Entry");
  for (const TracedLine& line : TRACE->lines()) {
    if (line.key != nullptr && line.key->text == "Y,Z Input File Name") found = line.number;
  }
  return found;
}

void value(Findings& findings, const std::string& name, double x, const std::string& usual) {
  addOnce(findings, fileLine(), Kind::EnteredValue, name, number(x), usual);
}

void diagonal(Findings& findings, const Pair& p, int i) {
  const double L = p.Z(i, i).imag() / p.w, C = p.Y(i, i).imag() / p.w;
  if (p.Z(i, i).real() < 0)
    value(findings, fmt::format("real part of Z({0}, {0})", i), p.Z(i, i).real(), "above 0");
  if (!INDUCTANCES.holds(L)) {
    value(findings, fmt::format("imaginary part of Z({0}, {0})", i), p.Z(i, i).imag(),
          fmt::format("{:.1e} to {:.1e} ohm/m{}", INDUCTANCES.least * p.w, INDUCTANCES.most * p.w,
                      CAPACITANCES.holds(L)
                          ? ": are Z and Y exchanged?"
                          : powerOfTen(p.Z(i, i).imag(), 3e-7 * p.w, 6e-6 * p.w)));
  }
  if (!CAPACITANCES.holds(C)) {
    value(findings, fmt::format("imaginary part of Y({0}, {0})", i), p.Y(i, i).imag(),
          fmt::format("{:.1e} to {:.1e} S/m{}", CAPACITANCES.least * p.w, CAPACITANCES.most * p.w,
                      powerOfTen(p.Y(i, i).imag(), 5e-12 * p.w, 1e-9 * p.w)));
  }
}

bool unequal(Complex a, Complex b, double scale) { return std::abs(a - b) > UNEQUAL * scale; }

void mutual(Findings& findings, const Pair& p, int i, int j) {
  if (unequal(p.Z(i, j), p.Z(j, i), std::abs(p.Z(i, i))) ||
      unequal(p.Y(i, j), p.Y(j, i), std::abs(p.Y(i, i)))) {
    value(findings, fmt::format("element ({}, {}) of Z or Y", i, j), std::abs(p.Z(i, j)),
          fmt::format("that of ({}, {}): a line is reciprocal", j, i));
  }
  if (p.Y(i, j).imag() > UNEQUAL * p.Y(i, i).imag()) {
    value(findings, fmt::format("imaginary part of Y({}, {})", i, j), p.Y(i, j).imag(),
          "below 0 between two conductors");
  }
}

void judge(Findings& findings, const Pair& p) {
  for (int i = 1; i <= p.n; ++i) {
    diagonal(findings, p, i);
    for (int j = 1; j < i; ++j) mutual(findings, p, i, j);
  }
}

} // namespace

void matrixRules(Findings& findings) {
  const ManualData& M = RUNDATA.manual;
  if (M.MANFMT != MANPAIR || M.YZFMT == 1) return; // totals of a length not known here
  judge(findings, {M.ZENT.view(), M.YENT.view(), RUNDATA.line.NC, TWOPI * RUNDATA.line.SSFREQ});
}

} // namespace lcp::companions
