// The cases of a batch, read from the user's table or from the table of its parts.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace lcp::companions {

struct BatchCase {
  std::string name;                // name in the summary: its folder as given
  std::filesystem::path source;    // the description
  std::filesystem::path beside;    // folder of the files named in the description
  std::string length;              // m, as passed to the program
  std::string arguments;           // further arguments, separated by blanks
  std::filesystem::path folder;    // folder in which it runs
  std::vector<std::string> varied; // values of the varied keys, in order
};

struct CaseList {
  std::vector<BatchCase> cases;
  std::vector<std::string> keys; // varied keys
  std::string trouble;           // error message; empty if the list is valid
  bool notWritten = false;       // the device did not accept the descriptions
};

// Reads rows of file, length, further arguments and folder, separated by tabs. The last two are
// optional; without a folder the case runs in a numbered folder in `work`. Empty lines, lines
// starting with # and a heading starting with "file" are skipped. Names are relative to the folder
// of the list. The paths returned are absolute.
CaseList readList(const std::filesystem::path& list, const std::filesystem::path& work);

// Explains why these cases cannot run side by side: two share a folder, or a name contains a tab or
// a line end. Empty if they can.
std::string troubleAmong(const std::vector<BatchCase>& cases);

// Folder name of a numbered case: case_0007 of 1000.
std::string numberedName(std::size_t number, std::size_t count);

// Writes and reads the table used by the parts, one line per case.
std::string tableOf(const std::vector<BatchCase>& cases);
std::vector<BatchCase> casesOf(const std::string& table);

} // namespace lcp::companions
