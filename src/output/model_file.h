// The line model file, which the simulator reads.
#pragma once

#include "base/text_file.h"
#include "store/solvedata.h"

#include <span>

namespace lcp {

// The five lines that open every model file.
void writeModelHead(TextFile& file);

// NOINT and INFLENGTH, as the options ask for them.
void writeFlagLines(TextFile& file);

// The record of mode k of a Bergeron file. A line that is full ends in a slash, and the values that
// remain go on in the next one.
void writeModeRecord(TextFile& file, int k, std::span<const double> values, int perLine);

// A line on the error stream for mode k of a Bergeron model whose resistance, at the frequency f
// (Hz), is below 0 by more than the rounding of its reactance X. Both in ohm/m, or in ohm for
// totals of the line. written: what the model file has in its place.
void noteNegativeResistance(int k, double f, double R, double X, double written);

// PI model, from the long-line corrected matrices: shunt branches in microfarad and ohm, then the
// lower triangle of the series data in ohm and henry.
void writePiModel(TextFile& file, const LineMatrix& YLC, const LineMatrix& ZLC);

// Bergeron model: per mode travel time (ms), surge impedance (ohm), resistance at the steady-state
// and at the loss frequency (ohm/m), and the row of the real transformation.
void writeBergeronModel(TextFile& file);

} // namespace lcp
