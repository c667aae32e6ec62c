// The cases of a batch: from a table of the user, and as the parts of a batch read them.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace lcp::companions {

struct BatchCase {
  std::string name;                // what the summary calls it: its folder as it was given
  std::filesystem::path source;    // the description
  std::filesystem::path beside;    // where the files stand that it names
  std::string length;              // m, as it is handed to the program
  std::string arguments;           // further ones, parted by blanks
  std::filesystem::path folder;    // where it runs
  std::vector<std::string> varied; // values of the keys that vary, in their order
};

struct CaseList {
  std::vector<BatchCase> cases;
  std::vector<std::string> keys; // those that vary
  std::string trouble;           // in plain words; empty when the list is good
  bool notWritten = false;       // it is a device that does not take the descriptions
};

// Rows of file, length, further arguments and folder, parted by tabs. The latter two may be left
// out: the case then runs in a numbered folder in `work`. Empty lines, lines that begin with # and
// a heading that begins with "file" are skipped. Names are taken from the folder of the list. Paths
// of the result are absolute.
CaseList readList(const std::filesystem::path& list, const std::filesystem::path& work);

// Tells what forbids these cases to run beside each other: two of one folder, names with tabs or
// line ends. Empty when nothing does.
std::string troubleAmong(const std::vector<BatchCase>& cases);

// case_0007 of 1000
std::string numberedName(std::size_t number, std::size_t count);

// The table of the parts: one line a case.
std::string tableOf(const std::vector<BatchCase>& cases);
std::vector<BatchCase> casesOf(const std::string& table);

} // namespace lcp::companions
