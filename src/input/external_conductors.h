// External conductor file: the conductors of a tower as records of numbers.
#pragma once

#include <string_view>

namespace lcp {

// The warning of a bundle of no conductors: its first line.
constexpr std::string_view BUNDLEWARNING =
    "Warning: Number of Bundled conductors                      should be greater or equal to 1";

// Reads READER.EXTFILE into the conductor table. A file that cannot be opened or does not hold
// records of numbers ends the run with its own message, exit status 1.
void readExternalConductors();

} // namespace lcp
