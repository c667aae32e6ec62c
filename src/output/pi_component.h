// The coupled pi component: a circuit of the line for the simulator's library.
#pragma once

#include "base/matrix.h"

#include <string>

namespace lcp {

// Name of the component file in the working directory, limited to the field of the line's name,
// which may truncate the extension; after the field if the name fills it.
std::string componentFile();

// Writes the component file of the line, LNAME.cmp in the working directory: a drawing symbol with
// the line length as parameter, and the branches of a coupled pi circuit with values per metre,
// scaled by the length. Half of the shunt admittance Y (S/m) is at each end; Z (ohm/m) is the
// matrix of the series branches. Both are NC by NC at SSFREQ; the length is in m. If values are not
// finite or the file cannot be opened or written, the run ends with a message and exit status 1.
void PISECT(CConstView Y, CConstView Z, double length);

} // namespace lcp
