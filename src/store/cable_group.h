// Run store, cable group: the cables of a right-of-way, the pipe around some of them, and the
// four-wire cable.
//
// A cable is identified by its number. Layers count outwards from the core, which is 0.
#pragma once

#include "base/table.h"
#include "store/capacities.h"

#include <array>
#include <cstddef>

namespace lcp {

// Indices of CBRAD, from the hole of the core to the outermost insulator.
constexpr int RADCOREINNER = 0;
constexpr int RADCORE = 1;
constexpr int RADINSULATOR1 = 2;
constexpr int RADSHEATH = 3;
constexpr int RADINSULATOR2 = 4;
constexpr int RADARMOUR = 5;
constexpr int RADINSULATOR3 = 6;
constexpr int RADOUTSIDE = 7;
constexpr int RADINSULATOR4 = 8;

// Which conductors of a cable are grounded, and so eliminated from the result.
constexpr int GROUNDNOTHING = 0;
constexpr int GROUNDLAST = 1;   // the outermost one
constexpr int GROUNDLAYERS = 2; // every one but the core
constexpr int GROUNDCHOSEN = 3; // those marked by CBBARE and CBELIM1 to CBELIM3

using FourLayers = std::array<double, 4>;

struct Cable {
  int CBUSED = 0;   // cable number, set when a section names it
  double CBX = 0;   // horizontal position, m; in a pipe relative to its centre
  double CBY = 0;   // depth (aerial cable: height), m; in a pipe relative to its centre
  double CBPR = 0;  // in a pipe: distance from its centre, m
  double CBPTH = 0; // ... angle, rad
  int CBNLAY = 0;   // layers, including the core
  std::array<double, 9> CBRAD{}; // radii, m
  FourLayers CBRHO{};            // resistivity of core, sheath, armour, outside conductor, ohm m
  std::array<double, 8> CBMU{};  // relative permeability of core, insulator 1, sheath, ...
  FourLayers CBEPS{};            // relative permittivity of the insulators
  FourLayers CBTAND{};          // loss tangent of the insulators; after the input times 2 pi CBFTAN
  double CBFTAN = 0;            // frequency of the loss tangents, Hz
  double CBGAER = 3.0e-14;      // shunt conductance of an aerial cable, S/m
  int CBGLAST = GROUNDNOTHING;  // which conductors are grounded
  bool CBELIM1 = false;         // eliminate the first concentric layer
  bool CBELIM2 = false;         // ... the second
  bool CBELIM3 = false;         // ... the third
  bool CBSOLID = false;         // the core has no hole
  bool CBOVHD = false;          // aerial
  bool CBBARE = false;          // no insulation
  bool CBBESSEL = false;        // Bessel functions selected; not used in any computation
  bool CBSEMI = false;          // semi-conducting layers on both sides of insulator 1
  double CBSEMII = 0;           // thickness of the inner one, m
  double CBSEMIO = 0;           // ... of the outer one, m
  int CBGROUP = 0;              // group of a crossbonding
  std::array<int, 4> CBXBOND{}; // conductors 1, 3 and 4: transposed; conductor 2: crossbonded
  int CBPIPE = 0;               // number of its pipe, 0 if none
  bool CBSTRND = false;         // stranded core (of a converted overhead conductor)
  double CBSTRAD = 0;           // radius of its strands, m
  double CBNOUT = 0;            // number of strands in the outer layer
  double CBNTOT = 0;            // number of strands in total

  // Number of conductors. Each has an insulator around it, except possibly the outermost.
  int conductors() const { return CBNLAY < 3 ? 1 : CBNLAY < 5 ? 2 : CBNLAY < 7 ? 3 : 4; }

  // Overall radius, m.
  double radius() const { return CBRAD[static_cast<std::size_t>(CBNLAY)]; }
};

constexpr int MOSTLAYERS = 7; // layers around the core

struct PipeRecord {
  int PIPEUSED = 0;    // pipe number, set when a section names it
  double PIPEX = 0;    // horizontal position of the centre, m
  double PIPEY = 0;    // depth (aerial pipe: height) of the centre, m
  int PIPENIN = 0;     // number of cables inside
  int PIPEOUTL = 0;    // 1: it has an outer insulator
  int PIPEGND = 0;     // 1: it is grounded
  double PIPERI = 0;   // inner radius of the wall, m
  double PIPERC = 0;   // outer radius of the wall, m
  double PIPERO = 0;   // outer radius of the outer insulator, m
  double PIPERHO = 0;  // resistivity of the wall, ohm m
  double PIPEMU = 0;   // its relative permeability
  double PIPEEPSI = 0; // inner insulator: relative permittivity
  double PIPEMUI = 0;  // ... relative permeability
  double PIPETANI = 0; // ... loss tangent; after the input times 2 pi PIPEFTAN
  double PIPEEPSO = 0; // outer insulator: the same three
  double PIPEMUO = 0;
  double PIPETANO = 0;
  double PIPEFTAN = 0;   // frequency of the loss tangents of pipe and inner cables, Hz
  bool PIPEOVHD = false; // aerial

  // Overall radius, m.
  double radius() const { return PIPEOUTL == 1 ? PIPERO : PIPERC; }
};

struct FourWireRecord {
  double FWAREA = 0;  // nominal area of a conductor, mm^2
  double FWTINS = 0;  // thickness of the insulator, m
  double FWTTAPE = 0; // ... of the polyester tape, m
  double FWTMANT = 0; // ... of the outer mantle, m
  double FWRHO = 0;   // resistivity of the conductors, ohm m
  double FWEPSI = 0;  // relative permittivity of the insulator
  double FWEPST = 0;  // ... of the tape
  double FWEPSM = 0;  // ... of the mantle
};

struct CableTable {
  int NCABLE = 0;       // total number of cables
  bool ANYOVHD = false; // a cable or the pipe is aerial
  bool MIXEDOH = false; // overhead conductors were converted to cables of this table
  int overhead = 0;     // ... how many; they follow the cables of the input
  int NPIPE = 0;        // pipes in the input
  bool PIPEF = false;   // a pipe section was read

  Table<Cable, MAXCABLE> CB;
  PipeRecord pipe;
  FourWireRecord fourWire;
};

} // namespace lcp
