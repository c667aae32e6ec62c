// The coupled pi component: a circuit of the line for the simulator's library.
#pragma once

#include "base/matrix.h"

#include <string>

namespace lcp {

// The name of its file: in the field of the line's name, which may cut the extension; behind the
// field when the name fills it. It stays in the directory.
std::string componentFile();

// Writes the component file of the line, LNAME.cmp in the working directory: a drawing symbol with
// the line's length as its parameter, and the branches of a coupled pi circuit whose values, per
// metre, are scaled by it. Half of the shunt admittance Y (S/m) stands at each end; Z (ohm/m) is
// the matrix of the series branches. Both are NC by NC at SSFREQ; the length is in metres. Values
// that are no numbers, and a file that cannot be opened or written, end the run with a message,
// exit status 1.
void PISECT(CConstView Y, CConstView Z, double length);

} // namespace lcp
