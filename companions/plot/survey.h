// Computes the line over the frequencies of a page, and keeps of it the curves that the page has.
#pragma once

#include "companions/plot/functions.h"
#include "companions/shared/model_file.h"
#include "companions/shared/verdicts.h"

namespace lcp::companions {

struct Survey {
  Frequencies at; // the fit points, some more between them, and the frequencies of the model
  std::vector<Functions> constants; // Z and Y per metre
  std::vector<Functions> modes;     // followed over frequency, in the order of the model
                                    // if it has one; of a Bergeron model also its own values
  std::vector<Functions> fit;       // functions fitted in the model file, with those of the line
};

// Surveys the line that readHere has read, of a length in m, at the frequencies for its model. Of
// large matrices it keeps the elements that findings name among others.
Survey surveyLine(const ModelFile& file, double length, const std::vector<Finding>& findings = {});

// The parts of a survey as data of a page; null for a model without fits.
Json constantsOf(const Survey& survey);
Json modesOf(const Survey& survey);
Json fitsOf(const Survey& survey);

// Sequence values of the whole line and per length, as in the report but in ohm and siemens: a list
// of rows; empty for a system without sequences.
Json sequencesOf(double length);

} // namespace lcp::companions
