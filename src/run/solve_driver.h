// The steps of a solve, from the frequency grid to the model file and the report.
#pragma once

namespace lcp {

// Solves one length step for line constants or multiple Y and Z. If an output file cannot be
// opened, a message is printed and the solve is abandoned, but the run continues.
void QUENT();

} // namespace lcp
