// The detail curve files of a solve, for plotting: tables over frequency of what was computed and,
// beside it, of what was fitted. Each routine stands for a moment of the solve; those of another
// model, and all of them when no curve files are wanted, do nothing.
#pragma once

namespace lcp {

// Before the first frequency loop: all files with their headers, but those of the next routine.
void headCurves();

// In the second frequency loop, behind step k: what the phases of a three-phase line see at their
// ends. Opened at the first step that has a row.
void writeEndCurves(int k);

// The curves of the line itself: of the phase model before its model file, of the others after it,
// with the fits of the mode model.
void writeLineCurvesBefore();
void writeLineCurvesAfter();

// After the fits of the phase model, and after that of the MFDTD model.
void writeAdmittanceFitCurves();
void writePropagationFitCurves();
void writeSeriesFitCurves();

// What is still open when the model file is complete, or cannot be opened, holds its header alone.
void closeHeadedCurves();

} // namespace lcp
