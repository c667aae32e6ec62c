// Reads the conductors of a tower from an external file of numeric records.
#pragma once

#include <string_view>

namespace lcp {

// First line of the warning about a bundle of no conductors.
constexpr std::string_view BUNDLEWARNING =
    "Warning: Number of Bundled conductors                      should be greater or equal to 1";

// Reads READER.EXTFILE into the conductor table. If the file cannot be opened or does not hold
// numeric records, the run ends with a message and exit status 1.
void readExternalConductors();

} // namespace lcp
