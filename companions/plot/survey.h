// Computes the line over the frequencies of a page, once for all of its pictures.
#pragma once

#include "companions/plot/functions.h"
#include "companions/shared/direct_line.h"
#include "companions/shared/model_file.h"

namespace lcp::companions {

struct Survey {
  double length = 0; // m
  Frequencies at;    // the fit points, ten times as many between, and the frequencies of the model
  std::vector<LinePoint> line;  // one per frequency
  std::vector<LineModes> modes; // followed over frequency, in the order of the model if it has one
};

// Surveys the line that readHere has read, of a length in m, at the frequencies for its model.
Survey surveyLine(const ModelFile& file, double length);

// Z and Y per metre.
Json constantsOf(const Survey& survey);

// Propagation constants, surge impedances and transformation; for a Bergeron model also its own
// values.
Json modesOf(const Survey& survey, const ModelFile& file);

// The functions fitted in the model file, with those of the line; null for a model without fits.
Json fitsOf(const Survey& survey, const ModelFile& file);

// Sequence values of the whole line and per length, as in the report but in ohm and siemens: a list
// of rows; empty for a system without sequences.
Json sequencesOf(double length);

} // namespace lcp::companions
