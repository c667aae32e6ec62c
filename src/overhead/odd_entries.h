// Names soil and conductor data that leave a line without finite constants.
#pragma once

namespace lcp {

// Prints one line on the error stream for the first soil or overhead conductor entry that is too
// large for the formulas, or that is 0 although they divide by it. Returns false if there is none.
bool noteOddEntry();

} // namespace lcp
