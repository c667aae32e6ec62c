// What the pictures of a fit show beside its curves: poles, delays, passivity.
#pragma once

#include "companions/plot/functions.h"
#include "companions/shared/model_file.h"

namespace lcp::companions {

// [{"name":, "re": [...], "im": [...], "residue": [...]}]: poles in 1/s of each function of the
// file, with the largest magnitude in their residues.
Json polesOf(const ModelFile& file);

// [{"name":, "delay":, "travel":, "mode":}]: delays in ms beside the travel time of the mode that
// is nearest at the top of the band; of a Bergeron model its own travel times beside those of the
// line at the steady state frequency.
Json delaysOf(const ModelFile& file, double length);

// {"after": CURVE, "before": CURVE}, of a phase model: CURVE is {"f":, "value":, "bands":
// [[from, to, worst, at], ...]}, the smallest eigenvalue (S) over frequency (Hz). Before is left
// out where the file before the enforcement is of an unknown kind.
Json passivityOf(const ModelFile& file, const ModelFile& before);

} // namespace lcp::companions
