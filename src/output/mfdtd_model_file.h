// The line model file of the MFDTD model.
#pragma once

#include "base/text_file.h"

namespace lcp {

// Takes the shunt conductance (S/m) and capacitance (F/m) from one low frequency step, before there
// is a file: a capacitance that is no number ends the run with a message, exit status 1.
void formSeriesShunt();

// Writes the fitted series impedance of SERIESMODEL (poles in rad/s, per metre), behind it the
// conductance and the capacitance: upper triangles, one value a line.
void writeMfdtdModel(TextFile& file);

} // namespace lcp
