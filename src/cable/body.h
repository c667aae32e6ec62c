// A cable or a pipe as a circle, as it enters the formulas of earth and air.
#pragma once

#include <string>

namespace lcp {

struct Body {
  double x;    // horizontal position, m
  double y;    // distance of the centre from the surface, m: height if aerial, else depth
  double r;    // overall radius, m
  bool aerial; // above the surface
};

// The body of cable c: the cable itself, or the pipe it lies in with the cable's own aerial flag.
Body cableBody(int c);

// The body of the pipe.
Body pipeBody();

// Conductor table entry of the overhead conductor that was converted to cable c; 0 for a real
// cable.
int towerConductor(int c);

// Name of cable c in messages: its number, or for a tower conductor its position.
std::string cableName(int c);

} // namespace lcp
