// Section "Manual Data Entry": a line whose data are entered by hand.
#pragma once

namespace lcp {

// Reads READER.LINE; see sections.h. Files of Y and Z are read as soon as they are named.
bool manualLine();

} // namespace lcp
