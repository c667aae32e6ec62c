// Y and Z out of the table over frequency.
#pragma once

#include "base/matrix.h"

namespace lcp {

// Y, Z (S/m, ohm/m) and their normalised product P at the frequency f > 0, Hz, in the NC by NC
// corner. With flag 1 the table is interpolated linearly between the rows k - 1 and k, with any
// other flag row k is taken as it stands. f also scales P.
void YZINTERP(double f, CView Y, CView Z, CView P, int flag, int k);

// The same at any frequency above 0, between the rows around it. A frequency outside the table
// takes the row at that end.
void tableConstants(double f, CView Y, CView Z, CView P);

} // namespace lcp
