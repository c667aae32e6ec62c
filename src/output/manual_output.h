// A user's file in place of the computed model file.
#pragma once

namespace lcp {

// Whether MANOUTF is to replace the model file.
bool isModelReplaced();

// Copies the lines of MANOUTF, which must exist, over FOUTM: each line in 99 columns, longer ones
// cut, shorter ones filled up with blanks. False, behind a message, when one of the files cannot be
// opened; a read error ends the run, exit status 1.
bool copyManualOutput();

} // namespace lcp
