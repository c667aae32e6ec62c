// The Bergeron model file of a line whose data were entered by hand.
#pragma once

#include "modal/manual_modes.h"
#include "store/solvedata.h"

#include <span>
#include <string_view>

namespace lcp {

// The message of a model file that cannot be opened.
constexpr std::string_view MANUALNOTOPENED = "Cannot Open corvo Output file ! ******";

// Opens the model file, writes the modes behind its head, and closes it: per mode travel time (ms),
// surge impedance (ohm), resistance twice, and its row of the real transformation TR. A file that
// cannot be opened ends the run with a message, exit status 1.
void writeManualModel(std::span<const ManualMode> modes, const RealMatrix& TR);

} // namespace lcp
