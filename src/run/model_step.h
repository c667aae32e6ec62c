// The model step of a solve: what a model still needs beside the modes, and its file.
#pragma once

namespace lcp {

// Fits what the model of the run asks for, writes the model file and the detail curve files, and
// puts the user's own file in its place where that is wanted. False, behind a message, when the
// model file or the user's file cannot be opened.
bool runModelStep();

} // namespace lcp
