// The line and its models between their two ends, at complex frequencies: as functions, and as a
// simulator steps them.
#pragma once

#include "companions/shared/continued_line.h"
#include "companions/shared/model_file.h"
#include "companions/shared/nodal_scan.h"

namespace lcp::companions {

// How a simulator runs a model: with a fixed step, trapezoidal integration and histories that are
// interpolated linearly between steps. All of it is linear and does not change with time, so that
// its z-transform, z = exp(s step), has the same form as the functions themselves:
//
//   s            becomes  (2 / step) tanh(s step / 2)                  trapezoidal rule
//   exp(-s tau)  becomes  z^-k ((1 - x) + x / z),  tau = (k + x) step  linear interpolation
//
// MFDTD is stepped on a grid of cells (leapfrog), as many as the fastest wave allows.
struct Stepping {
  double step = 0; // s; 0 for the functions themselves
};

// Yc and H at s, Re s >= 0, of the line over its length, m; of a model that has them (phase, mode,
// MFDTD).
PhaseFunctions lineFunctions(const ContinuedLine& line, Complex s, double length);
PhaseFunctions modelFunctions(const ModelFile& file, Complex s, double length, Stepping how);
bool hasFunctions(const ModelFile& file);

// The circuit of a PI file at s: shunt admittance of one end, S, and series impedance, ohm.
struct PiMatrices {
  Matrix shunt, series;
};
PiMatrices piMatrices(const ModelFile& file, Complex s);

// Nodal admittances of both ends, driven alike and against each other, of any model.
NodalHalves modelHalves(const ModelFile& file, Complex s, double length, Stepping how);

} // namespace lcp::companions
