// Manual Data Entry: a line whose data are entered by hand.
#pragma once

namespace lcp {

// Takes READER.LINE; see the other sections. The files of Y and Z are read where they are named.
bool manualLine();

} // namespace lcp
