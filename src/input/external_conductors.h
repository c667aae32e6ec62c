// External conductor file: the conductors of a tower as records of numbers.
#pragma once

namespace lcp {

// Reads READER.EXTFILE into the conductor table. A file that cannot be opened or does not hold
// records of numbers ends the run with its own message, exit status 1.
void readExternalConductors();

} // namespace lcp
