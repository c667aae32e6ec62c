// Opening of the files of a solve.
#pragma once

#include "base/text_file.h"
#include "store/run_groups.h"

#include <string_view>

namespace lcp {

// The message for a file of a solve that cannot be opened.
constexpr std::string_view CANNOTOPEN = "Cannot Open Output file ! ******{}";
void sayCannotOpen(const FileName& name);

// Opens a file for writing; false, behind the message, when that fails.
bool openOutput(TextFile& file, const FileName& name, EarlyEnd end);

} // namespace lcp
