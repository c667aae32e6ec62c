// Runs that are refused, or warn, as data: each file tests/refusals/SUBJECT.txt holds cases
//   === text NAME       lines up to the next "===", for any of these uses: a description or a
//   console
//                       text stands in it in place of its line @@; a line "@NAME" stands for its
//                       lines, "@NAME: VALUE" for them with the value in place of @@, and
//                       "@NAME: 1 to 9" for them with each of the numbers in turn. Those of
//                       texts.txt go for all files
//   === all             then the keys of the cases behind it, where they have none of their own
//   === TITLE           a case; then, in any order, lines of
//   in NAME             the text that its input stands in, "marks" when not given
//   status N            exit status, 1 when not given
//   file NAME           of the description, a.cvi when not given
//   arguments WORDS     behind /file NAME, "/length 100000" when not given; with blanks in quotes
//   files NAMES         that the run writes, in alphabetical order: none when not given, or any
//                       when the status is 0
//   ---                 then the lines of the input; without it the arguments are all there are
//   --- NAME            then a further file beside the description; a directory is NAME/
//   --- NAME -> OTHER   a symbolic link to another file, or => a hard one
//   --- console         then what is printed behind the banner and the echo of the arguments, line
//                       by line; a line "..." stands for any number of lines. "--- console in
//                       NAME" stands in a text, where @file and @last are the name of the
//                       description and the last line of the input. When not given, nothing, or
//                       what a good end prints last when the status is 0
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
  Texts keys{{"in", "marks"},
             {"status", "1"},
             {"file", "a.cvi"},
             {"arguments", "/length 100000"},
             {"files", "?"}};
  Texts parts; // input, further files, console, errors
};

void replaceAll(std::string& text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at < text.size(); at = text.find(from, at + to.size()))
    text.replace(at, from.size(), to);
}

// A text with lines, or the value of a line, in place of its @@.
std::string around(std::string text, std::string value) {
  if (value.empty() && ("\n" + text).find("\n@@\n") < text.size()) replaceAll(text, "@@\n", "");
  if (value.ends_with('\n')) value.pop_back();
  replaceAll(text, "@@", value);
  return text;
}

// Lines with texts in place of their names.
std::string spelled(const std::string& text, const Texts& texts) {
  std::string all;
  for (const std::string& line : splitLines(text)) {
    const std::size_t colon = std::min(line.find(": "), line.size());
    const auto named = texts.find(line.starts_with('@') ? line.substr(1, colon - 1) : "");
    const std::string value = line.substr(std::min(colon + 2, line.size()));
    int n = 0, last = 0, end = 0;
    if (named == texts.end()) {
      all += line + "\n";
    } else if (std::sscanf(value.c_str(), "%d to %d%n", &n, &last, &end) == 2 &&
               value.size() == static_cast<std::size_t>(end)) {
      for (; n <= last; ++n) all += spelled(around(named->second, std::to_string(n)), texts);
    } else {
      all += spelled(around(named->second, value), texts);
    }
  }
  return all;
}

void spellOut(Refusal& r, const Texts& texts) {
  for (auto& [name, part] : r.parts) part = spelled(part, texts);
  const auto lines = splitLines(r.parts.contains("input") ? r.parts["input"] : "");
  if (r.parts.contains("input"))
    r.parts["input"] = spelled(around(texts.at(r.keys["in"]), r.parts["input"]), texts);
  if (!r.parts.contains("console") && r.keys["status"] == "0")
    r.parts["console"] = spelled("@done\n", texts);
  if (!r.keys.contains("frame")) return;
  std::string& console = r.parts["console"];
  console = around(texts.at(r.keys["frame"]), console);
  replaceAll(console, "@file", r.keys["file"]);
  if (!lines.empty())
    replaceAll(console, "@last", lines.back().substr(0, lines.back().find_last_not_of(' ') + 1));
}

// The cases of a file by title. Its texts are added to the ones of all files.
std::map<std::string, Refusal> refusalsOf(const std::string& file, Texts& texts) {
  constexpr std::string_view FRAMED = "console in ";
  std::map<std::string, Refusal> cases;
  Refusal all, *refusal = nullptr;
  std::string* part = nullptr; // that is being read
  for (const std::string& line : splitLines(file)) {
    const std::string name = line.substr(std::min<std::size_t>(4, line.size()));
    if (line.starts_with("=== ")) {
      if (part != nullptr && ("\n" + *part).ends_with("\n\n")) part->pop_back();
      const bool isText = name.starts_with("text ");
      part = isText ? &texts[name.substr(5)] : nullptr;
      refusal = isText ? nullptr : name == "all" ? &(all = {}) : &(cases[name] = all);
    } else if (refusal != nullptr && (line + " ").starts_with("--- ")) {
      if (name.starts_with(FRAMED)) refusal->keys["frame"] = name.substr(FRAMED.size());
      part = &refusal->parts[name.empty() ? "input" : name.starts_with(FRAMED) ? "console" : name];
    } else if (part != nullptr) {
      *part += line + "\n";
    } else if (refusal != nullptr && !line.empty()) {
      const std::string key = line.substr(0, line.find(' '));
      refusal->keys.at(key) = line.substr(std::min(key.size() + 1, line.size()));
    }
  }
  for (auto& [title, r] : cases) spellOut(r, texts);
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
  Texts shared;
  refusalsOf(contentOf(CORVO_TEST_DATA "/refusals/texts.txt"), shared);
  for (const auto& file : std::filesystem::directory_iterator(CORVO_TEST_DATA "/refusals")) {
    Texts texts = shared;
    for (const auto& [title, refusal] : refusalsOf(contentOf(file.path()), texts))
      EXPECT_EQ(differences(refusal), "") << file.path() << ": " << title;
  }
}

TEST(Refusals, TextsStandForTheirLines) {
  Texts texts;
  auto cases = refusalsOf("=== text marks\n<\n@@\n>\n\n=== text two\na @@ @@\n@one\n\n"
                          "=== text one\nb\n\n=== text end\nfirst\n@@\n@file: @last.\n\n"
                          "=== all\nstatus 0\nfile x\n\n"
                          "=== A\n---\n@two: 3 to 4\n@two: 5 to\nc \n--- console in end\n\n"
                          "=== B\nin one\nstatus 2\n---\n--- f\n@two: x\n",
                          texts);
  Refusal &A = cases.at("A"), &B = cases.at("B");
  EXPECT_EQ(A.parts["input"], "<\na 3 3\nb\na 4 4\nb\na 5 to 5 to\nb\nc \n>\n");
  EXPECT_EQ(A.parts["console"], "first\nx: c.\n");
  EXPECT_EQ(B.parts["input"], "b\n");
  EXPECT_EQ(B.parts["f"], "a x x\nb\n");
  EXPECT_EQ(A.keys["status"] + B.keys["status"] + B.keys["file"], "02x");
}

TEST(Refusals, EachPartCanFail) {
  const std::string good = "=== text line\nCORVO-INPUT-DATA\n@@\nEND-OF-CORVO-INPUT-DATA\n"
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
    Texts texts;
    const std::string report = differences(refusalsOf(text, texts).at("a case"));
    EXPECT_EQ(report.substr(0, report.find(':')), told) << to << '\n' << report;
  }
}
