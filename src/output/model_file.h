// The line model file read by the simulator: head, PI model and Bergeron model.
#pragma once

#include "base/text_file.h"
#include "store/solvedata.h"

#include <span>

namespace lcp {

// The five lines at the start of every model file.
void writeModelHead(TextFile& file);

// The lines NOINT and INFLENGTH, according to the options.
void writeFlagLines(TextFile& file);

// The record of mode k in a Bergeron file. A full line ends with a slash, and the remaining values
// continue on the next one.
void writeModeRecord(TextFile& file, int k, std::span<const double> values, int perLine);

// Prints a line on the error stream if mode k of a Bergeron model has a resistance R at frequency f
// (Hz) that is negative by more than the rounding of its reactance X; both in ohm/m, or in ohm for
// totals of the line. written: the value in the model file.
void noteNegativeResistance(int k, double f, double R, double X, double written);

// PI model, from the long-line corrected matrices: shunt branches in microfarad and ohm, then the
// lower triangle of the series data in ohm and henry.
void writePiModel(TextFile& file, const LineMatrix& YLC, const LineMatrix& ZLC);

// Bergeron model: per mode travel time (ms), surge impedance (ohm), resistance at the steady-state
// and at the loss frequency (ohm/m), and the row of the real transformation.
void writeBergeronModel(TextFile& file);

} // namespace lcp
