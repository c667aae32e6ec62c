// The right-of-way as it is drawn: positions and sizes in metres, and what is told of each body.
#pragma once

#include "companions/plot/functions.h"

namespace lcp::companions {

// Of the run store as the reader leaves it, before constants are computed:
// {"wires": [...], "cables": [...], "pipe": {...}, "note":}; what the system does not have is left
// out. Heights are positive, depths negative.
Json geometryOf();

} // namespace lcp::companions
