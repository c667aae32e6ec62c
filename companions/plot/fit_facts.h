// Facts shown with the curves of a fit: poles, delays, passivity.
#pragma once

#include "companions/plot/functions.h"
#include "companions/shared/model_file.h"

namespace lcp::companions {

// [{"name":, "re": [...], "im": [...], "residue": [...]}]: poles in 1/s of each function of the
// file, with the largest magnitude of their residues.
Json polesOf(const ModelFile& file);

// [{"name":, "delay":, "travel":, "mode":}]: delays in ms with the nearest modal travel time at the
// top of the band. For a Bergeron model its travel times, with those of the line at the
// steady-state frequency.
Json delaysOf(const ModelFile& file, double length);

// For a phase model {"after": CURVE, "before": CURVE}: CURVE is {"f":, "value":, "bands": [[from,
// to, worst, at], ...]}, the smallest eigenvalue (S) over frequency (Hz). "before" is omitted if
// the kind of the file before enforcement is unknown.
Json passivityOf(const ModelFile& file, const ModelFile& before);

} // namespace lcp::companions
