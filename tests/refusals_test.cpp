// Runs that are refused, or warn, as data: each file tests/refusals/SUBJECT.txt holds cases
//   === template NAME   a text that cases stand in, up to the next "===", in place of its line @@
//   === TITLE           a case; then, in any order, lines of
//   in NAME             the template of its input; without it the input is the whole file
//   status N            exit status, 1 when not given
//   file NAME           of the description, a.cvi when not given
//   arguments WORDS     behind /file NAME, "/length 100000" when not given; with blanks in quotes
//   files NAMES         that the run writes, in alphabetical order: none when not given, or any
//                       when the status is 0
//   ---                 then the lines of the input; without it the arguments are all there are
//   --- NAME            then a further file beside the description; a directory is NAME/
//   --- NAME -> OTHER   a symbolic link to another file, or => a hard one
//   --- console         then what is printed behind the banner and the echo of the arguments, line
//                       by line; a line "..." stands for any number of lines
//   --- errors          then the lines of the error stream; when not given, none but the one on the
//                       line that an error exit of the reader shows
//   --- ends NAME       then the last lines of that file behind the run
// A blank line ahead of "===" and what stands ahead of the first "===" are for the reader alone.
#include "support/child.h"
#include "support/scratch.h"
#include "support/whole_run.h"

#include <fmt/format.h>
#include <iomanip>
#include <regex>
#include <span>

using namespace lcp::test;

namespace {

using Texts = std::map<std::string, std::string>;

struct Refusal {
  Texts keys{{"in", ""},
             {"status", "1"},
             {"file", "a.cvi"},
             {"arguments", "/length 100000"},
             {"files", "?"}};
  Texts parts; // input, further files, console, errors
};

// The cases of a file by title, their inputs put into the templates.
std::map<std::string, Refusal> refusalsOf(const std::string& text) {
  Texts templates{{"", "@@\n"}};
  std::map<std::string, Refusal> cases;
  Refusal* refusal = nullptr;
  std::string* part = nullptr; // that is being read
  for (const std::string& line : splitLines(text)) {
    const std::string name = line.substr(std::min<std::size_t>(4, line.size()));
    if (line.starts_with("=== ")) {
      if (part != nullptr && ("\n" + *part).ends_with("\n\n")) part->pop_back();
      const bool isTemplate = name.starts_with("template ");
      part = isTemplate ? &templates[name.substr(9)] : nullptr;
      refusal = isTemplate ? nullptr : &cases[name];
    } else if (refusal != nullptr && (line + " ").starts_with("--- ")) {
      part = &refusal->parts[name.empty() ? "input" : name];
    } else if (part != nullptr) {
      *part += line + "\n";
    } else if (refusal != nullptr) {
      const std::string key = line.substr(0, line.find(' '));
      refusal->keys.at(key) = line.substr(std::min(key.size() + 1, line.size()));
    }
  }
  for (auto& [title, r] : cases) {
    if (!r.parts.contains("input")) continue;
    const std::string whole = templates.at(r.keys["in"]);
    r.parts["input"] = std::string(whole).replace(whole.find("@@\n"), 3, r.parts["input"]);
  }
  return cases;
}

bool fits(std::span<const std::string> wanted, std::span<const std::string> got) {
  if (wanted.empty()) return got.empty();
  if (wanted[0] != "...")
    return !got.empty() && wanted[0] == got[0] && fits(wanted.subspan(1), got.subspan(1));
  return fits(wanted.subspan(1), got) || (!got.empty() && fits(wanted, got.subspan(1)));
}

// The error stream without its last line, where that names the line of the input that the console
// shows as the last one read.
std::string withoutPlace(const std::string& errors, const std::string& console,
                         const std::string& input) {
  const std::vector<std::string> lines = splitLines(input);
  std::smatch place;
  if (!std::regex_search(errors, place, std::regex("corvo: note: .*: line (\\d+)([,:] .*)?\n$")))
    return errors;
  const std::size_t n = std::stoul(place[1]);
  const std::string line = n >= 1 && n <= lines.size() ? lines[n - 1] : "no line";
  const std::string shown = line.substr(0, line.find_last_not_of(" \r") + 1);
  const bool same = console.find("\nLast Line Read Was: " + shown + "\n") != std::string::npos;
  return same ? std::string(place.prefix()) : errors;
}

// Runs a case. Empty when the run is as expected, else what is not.
std::string differences(Refusal r) {
  const Texts echoes{{"/file", " File Name:        {}\n"},
                     {"/length", " Segment length:   {} [m]\n"},
                     {"/increment", " Length Increment: {} [m]\n"},
                     {"/steps", " Steps:            {}\n"}};
  const Scratch scratch;
  std::vector<std::string> arguments;
  std::istringstream words(r.keys["arguments"]);
  if (r.parts.contains("input")) arguments = {"/file", r.keys["file"]};
  for (std::string word; words >> std::quoted(word);) arguments.push_back(word);
  std::string console = "Line Constants Program for the ORVEX V5\nBuild: 2022.10.28\n\n";
  for (std::size_t i = 1; r.parts.contains("input") && i < arguments.size(); i += 2)
    console += fmt::format(fmt::runtime(echoes.at(arguments[i - 1])), arguments[i]);
  const auto linkIn = [](const std::string& name) { return name.find("> "); };
  for (const auto& [name, text] : r.parts) {
    if (name == "console" || name == "errors" || name.starts_with("ends ")) continue;
    if (linkIn(name) != name.npos) continue;
    if (name.ends_with('/')) std::filesystem::create_directory(scratch.file(name));
    if (!name.ends_with('/')) scratch.file(name == "input" ? r.keys["file"] : name, text);
  }
  for (const auto& part : r.parts) {
    const std::string& name = part.first;
    const std::size_t at = linkIn(name);
    if (at == name.npos) continue;
    const std::string link = scratch.file(name.substr(0, at - 2)), other = name.substr(at + 2);
    if (name[at - 1] == '-') std::filesystem::create_symlink(other, link);
    if (name[at - 1] == '=') std::filesystem::create_hard_link(scratch.file(other), link);
  }
  const ProgramRun run = runProgram(arguments, scratch.path());
  std::string files, report;
  for (const auto& file : run.files) files += (files.empty() ? "" : " ") + file.first;
  const auto hold = [&](bool good, const char* what, const std::string& got) {
    if (!good) report += fmt::format("{}:\n{}\n", what, got);
  };
  hold(std::to_string(run.status) == r.keys["status"], "status", std::to_string(run.status));
  hold(fits(splitLines(console + r.parts["console"]), splitLines(run.console)), "console",
       run.console);
  const bool told = r.parts.contains("errors");
  hold((told ? run.errors : withoutPlace(run.errors, run.console, r.parts["input"])) ==
           r.parts["errors"],
       "errors", run.errors);
  for (const auto& [name, text] : r.parts) {
    if (!name.starts_with("ends ")) continue;
    const auto file = run.files.find(name.substr(5));
    hold(file != run.files.end() && file->second.ends_with(text), "end", name);
  }
  const std::string wanted = r.keys["files"] != "?" ? r.keys["files"] : "";
  hold(files == wanted || (r.keys["files"] == "?" && run.status == 0), "files", files);
  return report;
}

} // namespace

TEST(Refusals, AreAsExpected) {
  for (const auto& file : std::filesystem::directory_iterator(CORVO_TEST_DATA "/refusals")) {
    for (const auto& [title, refusal] : refusalsOf(contentOf(file.path())))
      EXPECT_EQ(differences(refusal), "") << file.path() << ": " << title;
  }
}

TEST(Refusals, EachPartCanFail) {
  const std::string good = "=== template line\nCORVO-INPUT-DATA\n@@\nEND-OF-CORVO-INPUT-DATA\n"
                           "=== a case\nin line\nstatus 1\n---\nrubbish\nLine Summary\n{\n"
                           "Line Length: y\n--- console\nUnknown Data Line Ignored: rubbish\n...\n"
                           "Last Line Read Was: Line Length: y\n...\nREADTLDATA Ending!\n";
  const char* changes[][3] = {
      {"good", "good", ""},
      {"status 1", "status 2", "status"},
      {"---\nrubbish\n", "---\n", "console"},
      {"...\nR", "R", "console"},
      {"READTLDATA Ending!\n", "", ""},
      {"...\nREADTLDATA Ending!\n", "", "console"},
      {"--- console", "--- errors\ntext\n--- console", "errors"},
      {"status 1", "files a.cvo", "files"},
  };
  for (const auto& [from, to, told] : changes) {
    std::string text = good + "\n=== good\n";
    text.replace(text.find(from), std::string(from).size(), to);
    const std::string report = differences(refusalsOf(text).at("a case"));
    EXPECT_EQ(report.substr(0, report.find(':')), told) << to << '\n' << report;
  }
}
