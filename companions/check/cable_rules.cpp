#include "companions/check/cable_rules.h"

#include "base/constants.h"
#include "companions/check/layer_rules.h"
#include "companions/check/materials.h"
#include "companions/check/traced.h"
#include "companions/shared/text.h"
#include "input/cable_hints.h"
#include "store/rundata.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>
#include <vector>

namespace lcp::companions {

namespace {

constexpr double DEEPEST = 80;          // m in soil; in the sea, below SEA, a cable may lie deeper
constexpr double DEEPESTSEA = 5000;     // m
constexpr double SEA = 3;               // ohm m
constexpr double WIDEGROUP = 8;         // m, between cables that change places
constexpr int POSITIONS = 3;            // of cables that change places
constexpr double PLACETOLERANCE = 0.01; // of the radius of the pipe

int headingOfPipe() { return headingLine("Pipe-Type Cable"); }

int lastLineOf(std::string_view key) {
  int found = 0;
  for (const TracedLine& line : TRACE->lines()) {
    if (line.key != nullptr && line.key->text == key) found = line.number;
  }
  return found;
}

// --- places

void depth(Findings& findings, int line, const std::string& name, bool aerial, double y,
           double radius) {
  const std::string_view what = aerial ? "height" : "depth";
  const double most = RUNDATA.ground.GRHO < SEA ? DEEPESTSEA : DEEPEST;
  if (!(y > 0)) {
    add(findings, line, Kind::Depth, what, name,
        fmt::format("{} m, not above 0{}", number(y),
                    y < 0 ? fmt::format("; {} would be", number(-y)) : ""));
  } else if (y <= radius) {
    add(findings, line, Kind::Depth, what, name,
        fmt::format("{} m, not above its radius of {} m{}", number(y), number(radius),
                    powerOfTen(y, 0.5, 3)));
  } else if (!aerial && y > most) {
    add(findings, line, Kind::Depth, what, name,
        fmt::format("{} m, usual are 0.3 to {:g} m{}", number(y), most, powerOfTen(y, 0.5, 3)));
  }
}

struct Place {
  double x, y, radius;
};

Place placeOf(const Cable& C) { return {C.CBX, C.CBOVHD ? -C.CBY : C.CBY, C.radius()}; }
Place placeOfPipe() {
  const PipeRecord& P = RUNDATA.cable.pipe;
  return {P.PIPEX, P.PIPEOVHD ? -P.PIPEY : P.PIPEY, P.radius()};
}

double apart(const Place& a, const Place& b) { return std::hypot(a.x - b.x, a.y - b.y); }

void overlap(Findings& findings, int line, const std::string& names, const Place& a,
             const Place& b) {
  const double d = apart(a, b), radii = a.radius + b.radius;
  if (d < radii) add(findings, line, Kind::Overlap, names, number(d), number(radii));
}

void places(Findings& findings, int n) {
  const CableTable& T = RUNDATA.cable;
  const Cable& C = T.CB[n];
  const int line = cablePositionLine(n);
  for (int m = 1; m < n; ++m) {
    if (T.CB[m].CBPIPE == C.CBPIPE) {
      overlap(findings, line, fmt::format("cable {} and cable {}", n, m), placeOf(C),
              placeOf(T.CB[m]));
    }
  }
  if (C.CBPIPE == 0) {
    depth(findings, line, fmt::format("cable {}", n), C.CBOVHD, C.CBY, C.radius());
    if (T.PIPEF) {
      overlap(findings, line, fmt::format("cable {} and the pipe", n), placeOf(C), placeOfPipe());
    }
  } else if (std::hypot(C.CBX, C.CBY) + C.radius() >= T.pipe.PIPERI) {
    add(findings, line, Kind::Overlap, fmt::format("cable {} and the centre of its pipe", n),
        number(std::hypot(C.CBX, C.CBY)),
        fmt::format("{} m with that of the cable, the pipe has an inner radius of {}",
                    number(std::hypot(C.CBX, C.CBY) + C.radius()), number(T.pipe.PIPERI)));
  }
}

// Places in a pipe twice: x and y, and distance and angle. Only distances from the centre and
// between the cables count, so both may be turned or mirrored against each other.
void placeInPipe(Findings& findings, int n) {
  const CableTable& T = RUNDATA.cable;
  const Cable& C = T.CB[n];
  const double much = PLACETOLERANCE * T.pipe.PIPERI, d = std::hypot(C.CBX, C.CBY);
  const std::string better = fmt::format("; P1: {:.6g} {:.6g} {:.6g} {:.6g} agrees", C.CBX, C.CBY,
                                         d, d > 0 ? std::atan2(C.CBY, C.CBX) * 180.0 / PI : 0.0);
  const auto polar = [](const Cable& c) {
    return Place{c.CBPR * std::cos(c.CBPTH), c.CBPR * std::sin(c.CBPTH), 0};
  };
  if (std::fabs(d - C.CBPR) > much) {
    return add(findings, cablePositionLine(n), Kind::PipePlace,
               fmt::format("x and y are {} m from the centre of the pipe", number(d)),
               fmt::format("the distance is {} m", number(C.CBPR)), better);
  }
  for (int m = 1; m < n; ++m) {
    const Cable& other = T.CB[m];
    const double straight = apart(placeOf(C), placeOf(other)),
                 byAngle = apart(polar(C), polar(other));
    if (other.CBPIPE == 0 || std::fabs(straight - byAngle) <= 2 * much) continue;
    return add(findings, cablePositionLine(n), Kind::PipePlace,
               fmt::format("by x and y cable {} is {} m from cable {}", n, number(straight), m),
               fmt::format("{} m by distance and angle", number(byAngle)), better);
  }
}

// --- groups

int groupLine(int n) { return std::max(keyLineOfCable("Cable Group", n), cablePositionLine(n)); }

std::string listOf(const std::vector<int>& cables) {
  std::vector<std::string> numbers;
  numbers.reserve(cables.size());
  for (const int n : cables) numbers.push_back(std::to_string(n));
  return fmt::format("{} {}", cables.size() == 1 ? "cable" : "cables", joined(numbers, ", "));
}

void rotation(Findings& findings, int group, std::size_t k) {
  constexpr std::array<std::string_view, 4> KEYS = {
      "Conductor 1 Transposed", "Conductor 2 Crossbonded", "Conductor 3 Transposed",
      "Conductor 4 Transposed"};
  const CableTable& T = RUNDATA.cable;
  std::vector<int> rotating;
  for (int n = 1; n <= T.NCABLE - T.overhead; ++n) {
    const Cable& C = T.CB[n];
    const bool marked = C.CBXBOND[k] == 1 || C.CBXBOND[k] == 2;
    if (C.CBGROUP == group && marked && static_cast<int>(k) < C.conductors()) rotating.push_back(n);
  }
  if (rotating.empty() || rotating.size() == POSITIONS) return;
  add(findings, groupLine(rotating.front()), Kind::CableGroup, KEYS[k], std::to_string(group),
      fmt::format("holds for {}: the run will end there, as three cables change places",
                  listOf(rotating)));
}

void groupMember(Findings& findings, int n) {
  const Cable& C = RUNDATA.cable.CB[n];
  const bool marked =
      std::any_of(C.CBXBOND.begin(), C.CBXBOND.end(), [](int m) { return m == 1 || m == 2; });
  if (marked && C.CBGROUP == 0) {
    add(findings, groupLine(n), Kind::CableGroup, fmt::format("cable {}", n), "0",
        "changes places with none: Cable Group must be 1 to 4");
  } else if (!marked && C.CBGROUP != 0) {
    add(findings, groupLine(n), Kind::CableGroup, fmt::format("cable {}", n),
        std::to_string(C.CBGROUP),
        "stays in its place: none of its conductors is marked as transposed or crossbonded");
  }
}

void groups(Findings& findings) {
  const CableTable& T = RUNDATA.cable;
  for (int g = 1; g <= 4; ++g) {
    std::vector<int> piped, all;
    for (int n = 1; n <= T.NCABLE - T.overhead; ++n) {
      if (T.CB[n].CBGROUP == g) all.push_back(n);
      if (T.CB[n].CBGROUP == g && T.CB[n].CBPIPE != 0) piped.push_back(n);
    }
    for (std::size_t k = 0; k < 4; ++k) rotation(findings, g, k);
    if (!piped.empty() && piped.size() != POSITIONS) {
      add(findings, groupLine(piped.front()), Kind::CableGroup, listOf(piped), std::to_string(g),
          "in the pipe: the run will end there, as three cables change places");
    }
    for (std::size_t i = 1; i < all.size(); ++i) {
      const double d = apart(placeOf(T.CB[all[i]]), placeOf(T.CB[all[i - 1]]));
      if (d <= WIDEGROUP) continue;
      add(findings, cablePositionLine(all[i]), Kind::Spacing,
          fmt::format("cables {} and {} of one group", all[i - 1], all[i]), number(d),
          ", usual are 0.05 to 1" + powerOfTen(d, 0.1, 1));
    }
  }
  for (int n = 1; n <= T.NCABLE - T.overhead; ++n) groupMember(findings, n);
}

// --- pipe and four-wire cable

void pipeRadius(Findings& findings, std::string_view name, const double& outer, double inner,
                std::string_view below) {
  if (outer > inner) return;
  add(findings, std::max(lineOf(&outer), headingOfPipe()), Kind::LayerRadius, name, number(outer),
      fmt::format("{} m of {}", number(inner), below));
}

void pipe(Findings& findings) {
  constexpr double MOSTWALL = 0.04; // m
  const PipeRecord& P = RUNDATA.cable.pipe;
  depth(findings, headingOfPipe(), "the pipe", P.PIPEOVHD, P.PIPEY, P.radius());
  pipeRadius(findings, "the wall of the pipe", P.PIPERC, P.PIPERI, "its inner insulator");
  if (P.PIPERC - P.PIPERI > MOSTWALL) {
    add(findings, lineOf(&P.PIPERC), Kind::LayerThickness, "the wall of the pipe",
        number(P.PIPERC - P.PIPERI), "0.003 to 0.03 m");
  }
  metalPermeability(findings, lineOf(&P.PIPEMU), "the pipe", P.PIPEMU, P.PIPERHO, {7e-8, 1e-6});
  resistivity(findings, lineOf(&P.PIPERHO), "the pipe", P.PIPERHO, METALS,
              powerOfTen(P.PIPERHO, 1.6e-8, 3e-7));
  permittivity(findings, lineOf(&P.PIPEEPSI), "the inner insulator of the pipe", P.PIPEEPSI,
               MOSTPERMITTIVITY);
  insulatorPermeability(findings, lineOf(&P.PIPEMUI), "the inner insulator of the pipe", P.PIPEMUI);
  if (P.PIPEOUTL != 1) return;
  pipeRadius(findings, "the outer insulator of the pipe", P.PIPERO, P.PIPERC, "its wall");
  permittivity(findings, lineOf(&P.PIPEEPSO), "the outer insulator of the pipe", P.PIPEEPSO,
               MOSTPERMITTIVITY);
  insulatorPermeability(findings, lineOf(&P.PIPEMUO), "the outer insulator of the pipe", P.PIPEMUO);
}

void fourWire(Findings& findings) {
  const FourWireRecord& F = RUNDATA.cable.fourWire;
  const double most = MOSTPERMITTIVITY;
  resistivity(findings, lineOf(&F.FWRHO), "the four conductors", F.FWRHO, CORES,
              powerOfTen(F.FWRHO, 1.6e-8, 4e-8));
  permittivity(findings, lineOf(&F.FWEPSI), "the insulator", F.FWEPSI, most);
  if (F.FWTTAPE > 0) permittivity(findings, lineOf(&F.FWEPST), "the tape", F.FWEPST, most);
  if (F.FWTMANT > 0) permittivity(findings, lineOf(&F.FWEPSM), "the mantle", F.FWEPSM, most);
}

// Keys overruled by the sections of the cables.
void overruled(Findings& findings) {
  const int& said = RUNDATA.cable.pipe.PIPENIN;
  const int there = cablesInPipe();
  if (RUNDATA.cable.PIPEF && said != there) {
    add(findings, std::max(lineOf(&said), headingOfPipe()), Kind::InnerCables, std::to_string(said),
        std::to_string(there));
  }
  for (const LayerFlag& flag : flagsWithoutLayer()) {
    add(findings, cableLine(flag.target, flag.cable), Kind::AbsentLayer, flag.key,
        std::to_string(flag.cable));
  }
}

} // namespace

void cableRules(Findings& findings) {
  const CableTable& T = RUNDATA.cable;
  if (RUNDATA.run.ISCABLE == FOURWIRECABLE) return fourWire(findings);
  for (int n = 1; n <= T.NCABLE - T.overhead; ++n) {
    if (T.CB[n].CBUSED == 0) {
      add(findings, lastLineOf("Cable Number"), Kind::ReaderEnds,
          fmt::format("no section has Cable Number {}; numbers run from 1 without a gap", n));
      continue;
    }
    const bool copied = READER.identicalCables && T.CB[n].CBPIPE != 0 && n != READER.masterCable;
    if (!copied) layerRules(findings, n);
    places(findings, n);
    if (T.CB[n].CBPIPE != 0) placeInPipe(findings, n);
  }
  if (T.PIPEF) pipe(findings);
  groups(findings);
  overruled(findings);
}

} // namespace lcp::companions
