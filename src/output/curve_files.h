// The detail curve files of a solve, for plotting: tables over frequency of what was computed and,
// beside it, of what was fitted. Each routine stands for a moment of the solve; those of another
// model, and all of them when no curve files are wanted, do nothing.
#pragma once

namespace lcp {

// Before the first frequency loop: all files with their headers, but those of the next routine.
void headCurves();

// Behind the second frequency loop: what the phases of a three-phase line see at their ends.
void writeEndCurves();

// Mode model, behind its model file.
void writeModeCurves();

// Phase model, before its model file and behind its fits.
void writePhaseLineCurves();
void writePhaseFitCurves();

// MFDTD model: behind its fit, and behind the model file.
void writeSeriesFitCurves();
void writeSeriesLineCurves();

// What is still open when the model file is complete holds its header alone. Without a model file
// nothing is left in it.
void closeHeadedCurves();
void discardHeadedCurves();

} // namespace lcp
