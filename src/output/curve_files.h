// The detail curve files of a solve, for plotting: computed and fitted functions of frequency.
//
// Each routine is called at one point of the solve. It does nothing for another model or if no
// curve files are selected.
#pragma once

namespace lcp {

// Before the first frequency loop: opens all files with their headings, except those of
// writeEndCurves.
void headCurves();

// In the second frequency loop, after step k: sending-end phase voltages of a three-conductor line.
// Opens the files at the first step that has a row.
void writeEndCurves(int k);

// Writes the curves of the line itself: for the phase model before its model file, for the others
// after it, together with the fits of the mode model.
void writeLineCurvesBefore();
void writeLineCurvesAfter();

// After the fits of the phase model, and after that of the MFDTD model.
void writeAdmittanceFitCurves();
void writePropagationFitCurves();
void writeSeriesFitCurves();

// Closes the files that are still open when the model file is complete or cannot be opened; they
// contain only their heading.
void closeHeadedCurves();

} // namespace lcp
