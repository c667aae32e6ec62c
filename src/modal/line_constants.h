// Y, Z and their normalised product at one frequency, computed or taken from the table.
#pragma once

namespace lcp {

// The maximum order of the run's matrices, known before a cable system has counted its conductors.
int mostConductors();

// Computes YMAT, ZMAT and PMAT of SOLVEDATA.first at frequency f, Hz, and clears ISTATUS. If the
// results are not finite, the run ends with a message and exit status 1.
void constantsAt(double f);

// The same at step k of the grid or on the way to it. With a table a step is a row, whatever f is,
// and the way to it starts at the previous row.
enum class Place { OnTheWay, AtTheStep };
void constantsAtStep(int k, double f, Place place);

} // namespace lcp
