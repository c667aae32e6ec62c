// A folder for files that are gone when the program ends.
#pragma once

#include <string>
#include <string_view>

namespace lcp::companions {

// The path of a file in the scratch folder of this process, which is made at the first call.
std::string scratchFile(std::string_view name);

} // namespace lcp::companions
