// Y and Z from the table over frequency.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Y (S/m), Z (ohm/m) and their normalised product P at frequency f > 0, Hz, NC by NC. With flag 1
// the table is interpolated linearly between rows k - 1 and k; with any other flag row k is used as
// it is. f also scales P.
void YZINTERP(double f, CView Y, CView Z, CView P, int flag, int k);

// The same at any frequency above 0, between the rows around it. Outside the table the row at that
// end is used.
void tableConstants(double f, CView Y, CView Z, CView P);

} // namespace lcp
