// The cable that the keys of a section write to.
//
// Keys write to READER.openCable; after each line it is copied to its place in the cable table.
// Before the first cable number it has no place, and what was read is lost at the next number.
#pragma once

#include "input/key_rows.h"

namespace lcp {

// Handles "Cable Number": opens the cable with the number read. A number out of range or already
// used ends the run through the common error exit.
void openCableNumber(const KeyRow& key);

// Copies the open cable to its place in the table.
void storeOpenCable();

// Ends the run through the common error exit if a count of cables is below 1 or above the capacity.
void checkCableCount(int count);

// Frame of the messages about a cable section: openCableError prints asterisks and the program's
// name, closeCableError asterisks, and ends the run through the common error exit.
void openCableError();
[[noreturn]] void closeCableError();

} // namespace lcp
