// The cable that the keys of a section go to.
//
// Keys write into READER.openCable; the line done, it goes to its place in the cable table. Before
// the first number it has no place, and what is read there ends with the next number.
#pragma once

#include "input/key_rows.h"

namespace lcp {

// "Cable Number": opens the cable of the number read. A number out of range or already used takes
// the common error exit.
void openCableNumber(const KeyRow& key);

// Stores the open cable at its number.
void storeOpenCable();

// Exit for more cables than the table holds, the common error exit; checks the count.
void checkCableCount(int count);

// The frame of the messages on what a cable section says: asterisks and the program's name,
// asterisks and the common error exit.
void openCableError();
[[noreturn]] void closeCableError();

} // namespace lcp
