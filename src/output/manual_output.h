// Copies a user's file in place of the computed model file.
#pragma once

namespace lcp {

// Whether MANOUTF replaces the model file.
bool isModelReplaced();

// Copies the lines of MANOUTF, which must exist, to FOUTM, each cut or padded with blanks to 99
// columns. Returns false, after a message, if one of the files cannot be opened; a read error ends
// the run with exit status 1.
bool copyManualOutput();

} // namespace lcp
