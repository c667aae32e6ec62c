// The line model file of the MFDTD model.
#pragma once

#include "base/text_file.h"
#include "modal/series_shunt.h"

namespace lcp {

// Writes the fitted series impedance of SERIESMODEL (poles in rad/s, values per metre), followed by
// conductance and capacitance: upper triangles, one value per line.
void writeMfdtdModel(TextFile& file, const SeriesShunt& shunt);

} // namespace lcp
