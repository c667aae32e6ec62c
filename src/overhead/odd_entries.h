// Names the data of soil and overhead conductors that leave a line without finite constants.
#pragma once

namespace lcp {

// One line on the error stream: the first entry of the soil or of an overhead conductor that the
// formulas divide by and that is 0, or that is too large for them. False when there is none.
bool noteOddEntry();

} // namespace lcp
