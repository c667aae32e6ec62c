// Findings on the layers of one cable: radii, thicknesses and materials.
#pragma once

#include "companions/check/finding.h"

#include <string_view>

namespace lcp::companions {

constexpr double MOSTPERMITTIVITY = 12; // of an insulator: PVC has 8, mineral ones up to 10

// Line of a key of cable n, or of its position. Keys store into READER.openCable.
int cableLine(const void* target, int n);

void layerRules(Findings& findings, int n);

} // namespace lcp::companions
