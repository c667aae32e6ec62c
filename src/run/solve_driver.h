// The spine of a solve: from the frequency grid to the model file and the report.
#pragma once

namespace lcp {

// Solves one length step on the routes of line constants and of multiple Y and Z. When an output
// file cannot be opened a message is printed and the solve is left; the run goes on.
void QUENT();

} // namespace lcp
