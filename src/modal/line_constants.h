// Y, Z and their normalised product at one frequency, by the routine of the kind of system or out
// of the table of Y and Z.
#pragma once

namespace lcp {

// The most conductors that the matrices of the run can have: known before a cable system has
// counted its own.
int mostConductors();

// Fills YMAT, ZMAT, PMAT of SOLVEDATA.first at the frequency f, Hz, and clears ISTATUS. Results
// that are no numbers end the run with a message, exit status 1.
void constantsAt(double f);

// The same for a frequency on the way to step k of the grid, or at the step itself. On the route of
// the table a step is a row, whatever f says, and the way to it leads from the row before.
enum class Place { OnTheWay, AtTheStep };
void constantsAtStep(int k, double f, Place place);

} // namespace lcp
