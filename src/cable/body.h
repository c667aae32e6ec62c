// What the earth and the air see of a cable system: a cable, or the pipe around some of them, as a
// circle.
#pragma once

#include <string>

namespace lcp {

struct Body {
  double x;    // horizontal position, m
  double y;    // distance of the centre from the surface, m: height when aerial, else depth
  double r;    // overall radius, m
  bool aerial; // above the surface
};

// The body of cable c: its own, or that of the pipe it lies in, with its own mark for aerial.
Body cableBody(int c);

// The body of the pipe.
Body pipeBody();

// The conductor of a tower that stands in the table as cable c, 0 when c was read as a cable.
int towerConductor(int c);

// Cable c as a message calls it: by its number, or by the position of the conductor on its tower.
std::string cableName(int c);

} // namespace lcp
