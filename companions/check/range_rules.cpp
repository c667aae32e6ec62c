#include "companions/check/range_rules.h"

#include "companions/check/materials.h"
#include "companions/check/near_key.h"
#include "companions/check/traced.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

struct Choice {
  std::string_view key;
  int least, most;
  std::string_view choices;
};

constexpr std::string_view YESNO = "0 no, 1 yes";
constexpr std::string_view ROTATION = "0 stays, 1 or 2 changes places";
constexpr Choice CHOICES[] = {
    {"Transposed", 0, 1, YESNO},
    {"Eliminate Ground Wires", 0, 1, "0 kept, 1 eliminated"},
    {"Unique Ground Wires", 0, 1, "1 all alike, 0 the others take the GW2 keys"},
    {"Ground Last Layer", 0, 3, "0 nothing, 1 the last conductor, 2 all but the core, 3 as chosen"},
    {"Cable Group", 0, 4, "0 none, 1 to 4 the group"},
    {"Conductor 1 Transposed", 0, 2, ROTATION},
    {"Conductor 2 Crossbonded", 0, 2, ROTATION},
    {"Conductor 3 Transposed", 0, 2, ROTATION},
    {"Conductor 4 Transposed", 0, 2, ROTATION},
    {"Ground Pipe", 0, 1, YESNO},
    {"Outer Insulator Layer", 0, 1, YESNO},
    {"High Frequency Approximation", 0, 1, YESNO},
    {"DC Correction Type", 0, 2, "0 none, 1 constrained fit, 2 one more pole"},
    {"Cable dielectric loss method", 0, 1, "1 loss tangents, 0 Cable Shunt Conductance"},
    {"Long Line Corrected", 0, 1, YESNO},
    {"YZ Data Format", 0, 1, "0 per metre, 1 of the whole line"},
    {"Estimate Zero Sequence", 0, 2, "0 as entered, 1 by ratios, 2 equal to the positive sequence"},
};

// Reals of the line itself: what may stand there without a question, and what mostly does.
struct Usual {
  std::string_view key;
  Range possible, typical;
  std::string_view usual;
};

constexpr Usual USUALS[] = {
    {"GroundPermeability", {0.9, 2}, {1, 1}, "1 to 2; soil is not magnetic"},
    {"FD Ground Conductivity and Permitivity", {0, 0.1}, {1e-4, 0.02}, "1e-4 to 0.02 S/m"},
    {"FD Factor", {0, 1}, {0.4, 0.9}, "0.5 to 0.8, and below 1"},
    {"Aerial Shunt Conductance", {0, 1e-8}, {1e-14, 1e-13}, "about 3e-14 S/m"},
    {"Cable Shunt Conductance", {0, 1e-7}, {1e-11, 1e-9}, "about 3e-10 S/m"},
    {"Inner semi-conductor layer thickness", {0, 6e-3}, {5e-4, 3e-3}, "0.0005 to 0.003 m"},
    {"Outer semi-conductor layer thickness", {0, 6e-3}, {5e-4, 3e-3}, "0.0005 to 0.003 m"},
    {"Shaping Time Constant (0 Seq.)", {0, 1e-3}, {1e-10, 1e-6}, "about 1e-9 s"},
    {"Shaping Time Constant (Metallic)", {0, 1e-3}, {1e-10, 1e-6}, "about 1e-9 s"},
    {"Frequency for Loss Approximation", {0, 1e7}, {50, 1e5}, "50 to 100000 Hz"},
    {"Frequency for loss tangent", {0, 1e6}, {50, 60}, "50 or 60 Hz"},
    {"Curve Fitting End Frequency", {5e3, 1e9}, {1e5, 1e7}, "1e5 to 1e7 Hz"},
    {"Weighting Factor 1", {0, 1e6}, {1, 1000}, "0 to 1000"},
    {"Weighting Factor 2", {0, 1e6}, {1, 1000}, "0 to 1000"},
    {"Weighting Factor 3", {0, 1e6}, {1, 1000}, "0 to 1000"},
    {"Insulator Thickness", {1e-4, 0.02}, {5e-4, 5e-3}, "0.0005 to 0.005 m"},
    {"Polyester Tape Thickness", {0, 0.01}, {1e-4, 1e-3}, "0.0001 to 0.001 m"},
    {"Outer Mantle Thickness", {0, 0.02}, {1e-3, 5e-3}, "0.001 to 0.005 m"},
    {"Nominal Conductor Area", {1, 2000}, {10, 400}, "10 to 400 mm^2"},
};

constexpr double MOSTTANGENT = 0.15; // of PVC; that of paper is 0.003, of polyethylene 0.0005

double numberOf(const TracedLine& line) {
  double value = 0;
  readReal(fieldOf(line), value);
  return value;
}

void choice(Findings& findings, const TracedLine& line) {
  for (const Choice& c : CHOICES) {
    int value = 0;
    if (c.key != line.key->text || readInteger(fieldOf(line), value) != Got::Value) continue;
    if (value < c.least || value > c.most)
      add(findings, line.number, Kind::ChoiceValue, c.key, std::to_string(value), c.choices);
  }
}

void format(Findings& findings, const TracedLine& line) {
  constexpr std::string_view FORMATS[] = {"Surge Impedance and Travel Time",
                                          "p.u./m",
                                          "ohms/m",
                                          "RXB p.u./m",
                                          "Y and Z",
                                          "Multiple Y and Z"};
  if (line.key->text != "Data Entry Format") return;
  std::string_view field = fieldOf(line);
  field.remove_prefix(std::min(field.find_first_not_of(' '), field.size()));
  field = field.substr(0, field.find_last_not_of(' ') + 1);
  if (std::any_of(std::begin(FORMATS), std::end(FORMATS),
                  [&](std::string_view f) { return fieldOf(line).starts_with(f); }))
    return;
  const std::string_view near = nearestKey(field, FORMATS, 3, 2);
  add(findings, line.number, Kind::ChoiceValue, line.key->text, field,
      near.empty() ? "ohms/m, p.u./m, Surge Impedance and Travel Time, Y and Z, Multiple Y and Z"
                   : near);
}

void usual(Findings& findings, const TracedLine& line) {
  for (const Usual& u : USUALS) {
    if (u.key != line.key->text) continue;
    const double value = numberOf(line);
    if (u.possible.holds(value)) continue;
    add(findings, line.number, Kind::UnusualNumber, u.key, fmt::format("{:.4g}", value),
        fmt::format("{}{}", u.usual, powerOfTen(value, u.typical.least, u.typical.most)));
  }
}

// Whether the cable or pipe of this line has a frequency for its loss tangents. Cables in a pipe
// take that of the pipe.
bool hasTangentFrequency(const TracedLine& line) {
  const int parent = TRACE->sections()[static_cast<std::size_t>(line.section)].parent;
  for (const TracedLine& other : TRACE->lines()) {
    if (other.key == nullptr || other.key->text != "Frequency for loss tangent") continue;
    const bool pipe = other.section == parent && other.state == State::Pipe;
    const bool own = other.state == line.state && other.open.cable == line.open.cable;
    if ((parent != 0 ? pipe : own) && numberOf(other) > 0) return true;
  }
  return false;
}

void lossTangent(Findings& findings, const TracedLine& line) {
  const std::string_view key = line.key->text;
  if (!key.ends_with("Loss Tangent")) return;
  const double value = numberOf(line);
  const std::string text = fmt::format("{:.4g}", value);
  if (value < 0) add(findings, line.number, Kind::LossTangent, key, text, "it is not below 0");
  if (value > MOSTTANGENT) {
    add(findings, line.number, Kind::LossTangent, key, text,
        "usual are 0.0005 (polyethylene), 0.003 (paper) to 0.1 (PVC)");
  }
  if (value > 0 && !hasTangentFrequency(line)) {
    add(findings, line.number, Kind::LossTangent, key, text,
        "without Frequency for loss tangent above 0 it has no effect; 50 or 60 Hz is usual");
  }
}

} // namespace

void rangeRules(Findings& findings, const TracedLine& line) {
  format(findings, line);
  if (line.got != Got::Value) return;
  choice(findings, line);
  usual(findings, line);
  lossTangent(findings, line);
}

} // namespace lcp::companions
