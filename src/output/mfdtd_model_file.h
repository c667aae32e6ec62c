// The line model file of the MFDTD model.
#pragma once

#include "base/text_file.h"

namespace lcp {

// Writes the fitted series impedance of SERIESMODEL (poles in rad/s, per metre), behind it the
// shunt conductance (S/m) and capacitance (F/m) of one low frequency step: upper triangles, one
// value a line. A capacitance that is no number ends the run with a message, exit status 1.
void writeMfdtdModel(TextFile& file);

} // namespace lcp
