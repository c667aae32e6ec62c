// With series resistance R, inductance L and capacitance C per metre of a sequence, waves travel at
// v = 1 / sqrt(L C), slower than light in vacuum, on a surge impedance Zc = sqrt(L / C). L depends
// on the logarithm of distances alone: 0.05 to 10 uH/m, from a coaxial cable to the zero sequence
// over dry soil; C is 2 pF/m to 3 nF/m. Coupled phases have C1 >= C0, and the earth adds to R0.
#include "companions/check/entered_rules.h"

#include "base/constants.h"
#include "companions/check/materials.h"
#include "companions/check/traced.h"
#include "companions/check/units.h"
#include "store/rundata.h"

#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double LIGHT = 2.99792458e8;  // m/s
constexpr double FASTEST = 1.15;        // times light: entered data are rounded and estimated
constexpr double SLOWEST = 0.08;        // times light
constexpr double MOSTRESISTANCE = 1e-2; // ohm/m, of a wire of 2 mm^2
constexpr double MOSTRATIO = 60;        // of resistance to reactance: a thin core in a cable
constexpr Range INDUCTANCES = {5e-8, 1e-5};
constexpr Range CAPACITANCES = {2e-12, 3e-9};
constexpr Range IMPEDANCES = {3, 3000};

enum Order { POSITIVE, ZERO, MUTUAL };
constexpr std::string_view ORDERS[] = {"+ve Sequence", "0 Sequence", "0 Sequence Mutual"};

// One sequence in SI units, and the entered numbers.
struct Sequence {
  double R = 0, L = 0, C = 0;
  double X = 0, XC = 0; // as entered
  double v() const { return 1 / std::sqrt(L * C); }
};

// Number of the line that ends up with this value, or of the section.
int valueLine(int order, std::string_view what) {
  int found = headingLine("Manual Data Entry");
  for (const TracedLine& line : TRACE->lines()) {
    if (line.key == nullptr || line.got != Got::Value || line.state != State::ManualEntry) continue;
    const std::string_view key = line.key->text;
    if (key.starts_with(ORDERS[order]) && key.substr(ORDERS[order].size() + 1) == what)
      found = line.number;
  }
  return found;
}

int capacitanceLine(int order) {
  return std::max(valueLine(order, "Capacitive Reactance"),
                  valueLine(order, "Capacitive Susceptance"));
}

bool perUnit() { return RUNDATA.manual.MANFMT == MANPERUNIT; }

double baseImpedance() {
  const ManualData& M = RUNDATA.manual;
  return perUnit() ? M.VRATE * M.VRATE / M.MVARATE : 1;
}

// What a capacitive reactance times a capacitance is: 1 / w in the units of the format.
double capacitanceUnit() {
  return 1 / (TWOPI * RUNDATA.line.SSFREQ * baseImpedance() * (perUnit() ? 1 : 1e6));
}

Sequence sequence(int order) {
  const ManualData& M = RUNDATA.manual;
  const double w = TWOPI * RUNDATA.line.SSFREQ;
  const double Zb = baseImpedance();
  const SequenceReactances& S = perUnit() ? M.MANSEQ.SEQPU : M.MANSEQ.SEQOHM;
  const double R[] = {S.R1, S.R0, S.R0M}, X[] = {S.X1, S.X0, S.X0M}, XC[] = {S.XC1, S.XC0, S.XC0M};
  Sequence s;
  s.X = X[order];
  s.XC = XC[order];
  s.R = R[order] * Zb;
  s.L = s.X * Zb / w;
  s.C = capacitanceUnit() / s.XC;
  return s;
}

std::string nameOf(int order, std::string_view what) {
  return fmt::format("{} {}", ORDERS[order], what);
}

void unusual(Findings& findings, int line, const std::string& name, double value,
             const std::string& usual) {
  add(findings, line, Kind::EnteredValue, name, number(value),
      usual + (value == 0 ? "; it must be given" : ""));
}

std::string rangeText(const Range& range, double perValue, std::string_view unit) {
  const double a = range.least / perValue, b = range.most / perValue;
  return fmt::format("{:.1e} to {:.1e} {}", std::min(a, b), std::max(a, b), unit);
}

// Whether R and X exchanged make a usual line.
bool exchanged(const Sequence& s) {
  const double w = TWOPI * RUNDATA.line.SSFREQ;
  const Sequence other{s.L * w, s.R / w, s.C};
  return s.R > s.L * w && INDUCTANCES.holds(other.L) && other.v() <= LIGHT * FASTEST &&
         other.v() >= 0.5 * LIGHT;
}

std::string betterReactance(const Sequence& s) {
  for (const double factor : {1e-3, 1e3, 0.1, 10.0}) {
    const double v = 1 / std::sqrt(s.L * factor * s.C);
    if (INDUCTANCES.holds(s.L * factor) && (!CAPACITANCES.holds(s.C) || v <= LIGHT * FASTEST)) {
      return fmt::format("; {:.4g} would be{}", s.X * factor,
                         factor == 1e-3 ? ", if this is per km" : "");
    }
  }
  return {};
}

std::string betterCapacitance(const Sequence& s) {
  for (const double factor : {1e3, 1e-3, 1e-6, 10.0, 0.1}) {
    const double C = s.C / factor, v = 1 / std::sqrt(s.L * C);
    const bool slow = v <= LIGHT * FASTEST && v >= 0.2 * LIGHT;
    if (CAPACITANCES.holds(C) && (slow || !INDUCTANCES.holds(s.L)))
      return fmt::format("; {:.4g} would be", s.XC * factor);
  }
  return {};
}

void resistance(Findings& findings, int order, const Sequence& s) {
  const double w = TWOPI * RUNDATA.line.SSFREQ;
  const int line = valueLine(order, "Resistance");
  const std::string name = nameOf(order, "Resistance") + (perUnit() ? " in ohm/m" : "");
  if (s.R < 0) {
    unusual(findings, line, name, s.R, "values from 0 on");
  } else if (s.R > MOSTRESISTANCE || (s.L > 0 && s.R > MOSTRATIO * w * s.L)) {
    unusual(findings, line, name, s.R,
            fmt::format("1e-5 to 1e-3 ohm/m; {:.4g} would be, if this is per km", s.R / KM));
  }
}

void reactances(Findings& findings, int order, const Sequence& s) {
  const std::string reactance = nameOf(order, "Inductive Reactance");
  const double w = TWOPI * RUNDATA.line.SSFREQ;
  const int lineX = valueLine(order, "Inductive Reactance"), lineC = capacitanceLine(order);
  const bool goodL = INDUCTANCES.holds(s.L), goodC = CAPACITANCES.holds(s.C);
  if (exchanged(s) && (!goodL || s.v() > LIGHT * FASTEST)) {
    unusual(findings, lineX, reactance, s.X,
            fmt::format("{:.4g} with a resistance of {:.4g}: are the two exchanged?",
                        s.L > 0 ? s.R * s.X / (s.L * w) : s.R, s.X));
    return;
  }
  if (!goodL) {
    unusual(findings, lineX, reactance, s.X,
            rangeText(INDUCTANCES, s.X != 0 ? s.L / s.X : 1 / w, perUnit() ? "1/m" : "ohm/m") +
                betterReactance(s));
  }
  if (!goodC) {
    const double unit = capacitanceUnit();
    unusual(findings, lineC, nameOf(order, "Capacitive Reactance"), s.XC,
            fmt::format("{:.3g} to {:.3g} {}{}", unit / CAPACITANCES.most,
                        unit / CAPACITANCES.least, perUnit() ? "m" : "megohm m",
                        betterCapacitance(s)));
  }
  if (!goodL || !goodC) return;
  if (s.v() > LIGHT * FASTEST || s.v() < LIGHT * SLOWEST) {
    add(findings, lineX, Kind::EnteredValue,
        fmt::format("velocity of the {} by its reactances", ORDERS[order]),
        fmt::format("{:.3g} m/s", s.v()), "8e7 to 2.95e8 m/s, light has 2.998e8");
  }
}

void surge(Findings& findings, int order, double R, double T, double Zc) {
  const Range times = {1 / (LIGHT * FASTEST), 1 / (LIGHT * SLOWEST)};
  if (!times.holds(T)) {
    unusual(findings, valueLine(order, "Travel Time"), nameOf(order, "Travel Time"), T,
            "3.34e-9 to 1e-8 s/m" + powerOfTen(T, 3.3e-9, 1e-8));
  }
  if (!IMPEDANCES.holds(Zc)) {
    unusual(findings, valueLine(order, "Surge Impedance"), nameOf(order, "Surge Impedance"), Zc,
            "10 to 1000 ohm" + powerOfTen(Zc, 30, 1000));
  }
  Sequence s;
  s.R = R;
  s.L = T * Zc;
  resistance(findings, order, s);
}

// The zero sequence beside the positive one.
void compareSequences(Findings& findings, const Sequence& one, const Sequence& zero) {
  if (zero.R < 0.9 * one.R && one.R <= MOSTRESISTANCE) {
    unusual(findings, valueLine(ZERO, "Resistance"), nameOf(ZERO, "Resistance"), zero.R,
            fmt::format("more than the {} of the positive sequence: are the sequences exchanged?",
                        number(one.R)));
  }
  if (zero.C > 1.02 * one.C && CAPACITANCES.holds(one.C) && CAPACITANCES.holds(zero.C)) {
    unusual(findings, capacitanceLine(ZERO), nameOf(ZERO, "Capacitive Reactance"), zero.XC,
            fmt::format("no less than the {} of the positive sequence", number(one.XC)));
  }
}

void mutual(Findings& findings, const Sequence& zero, const Sequence& mutual) {
  const auto below = [&](std::string_view what, double value, double limit) {
    unusual(findings, valueLine(MUTUAL, what), nameOf(MUTUAL, what), value,
            fmt::format("less than the {} of the zero sequence", number(limit)));
  };
  if (mutual.X >= zero.X) below("Inductive Reactance", mutual.X, zero.X);
  if (mutual.R >= zero.R && zero.R > 0) below("Resistance", mutual.R, zero.R);
  if (std::fabs(mutual.XC) <= zero.XC) {
    unusual(findings, capacitanceLine(MUTUAL), nameOf(MUTUAL, "Capacitive Reactance"), mutual.XC,
            fmt::format("beyond the {} of the zero sequence, and below 0: parallel circuits shield "
                        "each other",
                        number(zero.XC)));
  }
}

void reactanceData(Findings& findings, bool zeroEntered) {
  const Sequence one = sequence(POSITIVE), zero = sequence(ZERO);
  resistance(findings, POSITIVE, one);
  reactances(findings, POSITIVE, one);
  if (!zeroEntered) return;
  resistance(findings, ZERO, zero);
  reactances(findings, ZERO, zero);
  compareSequences(findings, one, zero);
  if (RUNDATA.line.NC == 6) mutual(findings, zero, sequence(MUTUAL));
}

void surgeData(Findings& findings, bool zeroEntered) {
  const SequenceSurges& S = RUNDATA.manual.MANSEQ.SEQSURGE;
  surge(findings, POSITIVE, S.R1, S.T1, S.ZC1);
  if (zeroEntered) surge(findings, ZERO, S.R0, S.T0, S.ZC0);
}

void ratios(Findings& findings) {
  const ManualData& M = RUNDATA.manual;
  const struct {
    const double& value;
    double least, most;
    std::string_view key, usual;
  } rows[] = {
      {M.RATIOR, 0.9, 50, "Estimation Ratio for 0-Seq.-R/+ve-Seq.-R", "2 to 15"},
      {M.RATIOZ, 0.5, 6, "Estimation Ratio for 0-Seq.-Z/+ve-Seq.-Z", "1.5 to 3"},
      {M.RATIOT, 0.7, 4, "Estimation Ratio for 0-Seq.-T/+ve-Seq.-T", "1.1 to 1.6"},
  };
  for (const auto& r : rows) {
    if (r.value >= r.least && r.value <= r.most) continue;
    add(findings, std::max(lineOf(&r.value), headingLine("Manual Data Entry")), Kind::UnusualNumber,
        r.key, number(r.value), r.usual);
  }
}

// --- one line

// The format above a line, by its text.
std::string_view formatAbove(const TracedLine& line) {
  std::string_view format;
  for (const TracedLine& other : TRACE->lines()) {
    if (other.number >= line.number) break;
    if (other.key == nullptr || other.key->text != "Data Entry Format") continue;
    const std::string_view field = fieldOf(other);
    format = field.substr(std::min(field.find_first_not_of(" :"), field.size()));
  }
  return format;
}

std::string_view unitOf(std::string_view key, std::string_view format) {
  const bool ohms = format.starts_with("ohms/m");
  if (key.ends_with(" Resistance") && (ohms || format.starts_with("Surge"))) return "ohm/m";
  if (key.ends_with("Inductive Reactance") && ohms) return "ohm/m";
  if (key.ends_with("Capacitive Reactance") && ohms) return "Mohm m";
  return {};
}

bool dropped(std::string_view key, std::string_view format) {
  const bool ohms = format.starts_with("ohms/m"), surge = format.starts_with("Surge");
  const bool pu = format.find("p.u./m") != std::string_view::npos;
  if (key.ends_with("Susceptance")) return !pu;
  if (key.ends_with("Travel Time") || key.ends_with("Surge Impedance")) return !surge;
  if (key.ends_with("Reactance")) return !pu && !ohms;
  return key.ends_with("Resistance") && !pu && !ohms && !surge;
}

} // namespace

void enteredLine(Findings& findings, const TracedLine& line) {
  const std::string_view key = line.key->text;
  if (line.state != State::ManualEntry || line.got != Got::Value) return;
  const std::string_view format = formatAbove(line);
  if (format.empty() || key.find(" Sequence ") == std::string_view::npos) return;
  if (dropped(key, format)) {
    add(findings, line.number, Kind::NoPlace, key,
        fmt::format("the format {} has no such value",
                    format.substr(0, format.find_last_not_of(' ') + 1)));
  }
  const std::string_view unit = unitOf(key, format), said = bracketText(fieldOf(line));
  if (!unit.empty() && !said.empty() && !standsFor(said, unit))
    add(findings, line.number, Kind::EnteredUnit, key, unit, said);
}

void enteredRules(Findings& findings) {
  const ManualData& M = RUNDATA.manual;
  const int NC = RUNDATA.line.NC;
  const bool zeroEntered = NC >= 2 && M.ESTZERO == ZEROENTERED;
  if (perUnit() || M.MANFMT == MANOHMS) reactanceData(findings, zeroEntered);
  if (M.MANFMT == MANSURGE) surgeData(findings, zeroEntered);
  if (NC >= 2 && M.ESTZERO == ZERORATIOS) ratios(findings);
}

} // namespace lcp::companions
