// The line over the frequencies of a page, computed once for all of its pictures.
#pragma once

#include "companions/plot/functions.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/model_file.h"

namespace lcp::companions {

struct Survey {
  double length = 0;            // m
  Frequencies at;               // the points of the fit, ten times finer, and those of the model
  std::vector<LinePoint> line;  // one a frequency
  std::vector<LineModes> modes; // followed, in the order of the model where it has one
};

Survey surveyLine(const ModelFile& file, double length);

// Z and Y per metre.
Json constantsOf(const Survey& survey);

// Propagation constants, surge impedances and transformation; of a Bergeron model beside its own.
Json modesOf(const Survey& survey, const ModelFile& file);

// The functions that the model file fits, beside those of the line; null for a model without fits.
Json fitsOf(const Survey& survey, const ModelFile& file);

// Sequence values of the whole line and per length, as the report has them but in ohm and siemens:
// a list of rows; empty for a system without.
Json sequencesOf(double length);

} // namespace lcp::companions
