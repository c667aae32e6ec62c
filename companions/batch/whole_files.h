// Files that are read and written as a whole.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace lcp::companions {

// False when the file cannot be read; text then holds what could be.
bool readWhole(const std::filesystem::path& file, std::string& text);

// Under another name first, on the device if it is to be synced, then under its own: the file is
// whole or as it was before. False when that fails; errno tells why.
bool writeWhole(const std::filesystem::path& file, std::string_view text, bool synced = true);

} // namespace lcp::companions
