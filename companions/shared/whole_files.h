// Files that are read and written as a whole.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace lcp::companions {

// False when the file cannot be read; text then holds what could be.
bool readWhole(const std::filesystem::path& file, std::string& text);
bool readWhole(int descriptor, std::string& text); // from where it stands

// Under another name first, on the device if it is to be synced, then under its own: the file is
// whole or as it was before. What is no regular file takes the text itself. False when that fails;
// errno tells why.
bool writeWhole(const std::filesystem::path& file, std::string_view text, bool synced = true);

// "cannot write NAME: " and what errno says.
std::string cannotWrite(const std::filesystem::path& file);

} // namespace lcp::companions
