// Names the entered data that leave a mode without valid values.
#pragma once

namespace lcp {

// Prints one line on the error stream: mode k with its travel time, ms, surge impedance, ohm, and
// resistance, ohm/m, and the entries it is made of that are 0.
void noteManualEntries(int k, double T, double Zc, double R);

} // namespace lcp
