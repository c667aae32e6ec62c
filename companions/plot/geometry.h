// Describes the right-of-way for drawing: positions and sizes in m, and facts on each body.
#pragma once

#include "companions/plot/functions.h"

namespace lcp::companions {

// From the run store after reading, before constants are computed: {"wires": [...], "cables":
// [...], "pipe": {...}, "note":}; parts that the system does not have are omitted. Heights are
// positive, depths negative.
Json geometryOf();

} // namespace lcp::companions
