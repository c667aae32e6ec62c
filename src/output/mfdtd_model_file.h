// The line model file of the MFDTD model.
#pragma once

#include "base/text_file.h"
#include "modal/series_shunt.h"

namespace lcp {

// Writes the fitted series impedance of SERIESMODEL (poles in rad/s, per metre), behind it the
// conductance and the capacitance: upper triangles, one value a line.
void writeMfdtdModel(TextFile& file, const SeriesShunt& shunt);

} // namespace lcp
