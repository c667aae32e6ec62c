// Reads and writes whole files.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace lcp::companions {

// Returns false if the file cannot be read; text then holds what could be read.
bool readWhole(const std::filesystem::path& file, std::string& text);
bool readWhole(int descriptor, std::string& text); // from its current position

// Writes a temporary file first, syncs it to the device if requested, and renames it, so that the
// file is either complete or as it was before. A target that is not a regular file is written
// directly. Returns false on failure, with errno set.
bool writeWhole(const std::filesystem::path& file, std::string_view text, bool synced = true);

// "cannot write NAME: " and the text of errno.
std::string cannotWrite(const std::filesystem::path& file);

} // namespace lcp::companions
