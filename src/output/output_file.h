// Opens the output files of a solve.
#pragma once

#include "base/text_file.h"
#include "store/run_groups.h"

#include <string_view>

namespace lcp {

// Message for a file that cannot be opened.
constexpr std::string_view CANNOTOPEN = "Cannot Open Output file ! ******{}";
void sayCannotOpen(const FileName& name);

// Opens a file for writing; returns false, after the message, if that fails.
bool openOutput(TextFile& file, const FileName& name, EarlyEnd end);

} // namespace lcp
