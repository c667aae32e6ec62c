// The model step of a solve: fits, model file and detail curve files.
#pragma once

namespace lcp {

// Performs the fits that the selected model needs, writes the model file and the detail curve
// files, and replaces the model file by the user's file if requested. Returns false, after a
// message, if the model file or the user's file cannot be opened.
bool runModelStep();

} // namespace lcp
