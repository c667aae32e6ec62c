// Names the entered data that leave a mode without values.
#pragma once

namespace lcp {

// One line on the error stream: mode k with its travel time, ms, its surge impedance, ohm, and its
// resistance, ohm/m, and the entries that it is made of and that are 0.
void noteManualEntries(int k, double T, double Zc, double R);

} // namespace lcp
