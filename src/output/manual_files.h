// The Bergeron model file of a line whose data were entered by hand.
#pragma once

#include "modal/manual_modes.h"
#include "store/solvedata.h"

#include <span>
#include <string_view>

namespace lcp {

// Message for a model file that cannot be opened.
constexpr std::string_view MANUALNOTOPENED = "Cannot Open corvo Output file ! ******";

// Writes and closes the model file: the head and, per mode, travel time (ms), surge impedance
// (ohm), resistance (twice), and its row of the real transformation TR. If the file cannot be
// opened, the run ends with a message and exit status 1.
void writeManualModel(std::span<const ManualMode> modes, const RealMatrix& TR);

} // namespace lcp
