#include "companions/check/check.h"

#include "companions/check/earth_rules.h"
#include "companions/check/finding.h"
#include "companions/check/geometry_rules.h"
#include "companions/check/line_rules.h"
#include "companions/check/option_rules.h"
#include "companions/check/traced.h"
#include "companions/check/understood.h"
#include "companions/shared/arguments.h"
#include "companions/shared/captured_run.h"
#include "companions/shared/console_text.h"
#include "companions/shared/text.h"
#include "input/reader.h"
#include "store/rundata.h"

#include <algorithm>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr int CLEAN = 0;
constexpr int FOUND = 1;
constexpr int REFUSED = 2;

constexpr double USUALLENGTH = 1e4; // m

constexpr OptionRow OPTIONS[] = {{"/length", "METRES", "length of the line, else 10 km"},
                                 {"--json", "", "the same as one JSON document"}};
constexpr Program CHECK = {"corvo-check",
                           "Tells what a description file says and what in it had no effect.",
                           "DESCRIPTION",
                           1,
                           1,
                           OPTIONS};

// Adds the reader's messages, except unknown lines, which the line rules report better, and frames.
void readerWarnings(Findings& findings, const CapturedRun& read) {
  std::string all;
  for (const std::string& line : linesOf(fmt::format("{}\n{}", read.console, read.errors))) {
    const std::size_t first = line.find_first_not_of(" *-=");
    if (first == std::string::npos || line.starts_with(headOf(UNKNOWNLINE))) continue;
    if (!all.empty()) all += ' ';
    all += line.substr(line.find_first_not_of(' '));
  }
  if (!all.empty()) add(findings, 0, Kind::ReaderWarning, all);
}

Findings findAll(const CapturedRun& read) {
  Findings findings;
  readerWarnings(findings, read);
  lineRules(findings, true);
  if (RUNDATA.run.DATAFMT == ROUTECONSTANTS) {
    conductorRules(findings);
    if (RUNDATA.run.ISCABLE != OVERHEADLINE) cableRules(findings);
    soilRules(findings);
  }
  optionRules(findings);
  earthRules(findings);
  sortFindings(findings);
  return findings;
}

// Shows control characters as question marks.
std::string printable(std::string_view text) {
  std::string shown(text);
  std::replace_if(
      shown.begin(), shown.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7f'; }, '?');
  return shown;
}

std::string_view lineText(int number) {
  if (number < 1) return {};
  return wordsOf(TRACE->lines()[static_cast<std::size_t>(number - 1)]);
}

void printFindings(const Findings& findings) {
  int line = -1;
  for (const CheckFinding& f : findings) {
    if (f.line != line && f.line == 0) say("the file\n");
    if (f.line != line && f.line != 0)
      say(fmt::format("line {}: {}\n", f.line, printable(lineText(f.line))));
    line = f.line;
    say(fmt::format("  {} [{}] {}\n", rowOf(f.kind).severity, rowOf(f.kind).id, printable(f.text)));
  }
  say(fmt::format("{} finding{}\n", findings.size(), findings.size() == 1 ? "" : "s"));
}

void printJson(const Json& document) {
  say(fmt::format("{}\n", document.dump(2, ' ', false, Json::error_handler_t::replace)));
}

Json findingsAsJson(const Findings& findings) {
  Json rows = Json::array();
  for (const CheckFinding& f : findings) {
    rows.push_back({{"line", f.line},
                    {"kind", rowOf(f.kind).id},
                    {"severity", rowOf(f.kind).severity},
                    {"text", f.text},
                    {"source", lineText(f.line)}});
  }
  return rows;
}

int tellRefusal(const std::string& file, const CapturedRun& read, bool json) {
  Findings findings;
  lineRules(findings, false);
  sortFindings(findings);
  if (json) {
    printJson({{"file", file},
               {"status", REFUSED},
               {"message", read.console},
               {"findings", findingsAsJson(findings)}});
  } else {
    say(read.console);
    if (!findings.empty()) say("\n");
    if (!findings.empty()) printFindings(findings);
  }
  if (!saidAll()) giveUp(CHECK.name, CANNOTBEWRITTEN);
  if (read.status < 0) giveUp("corvo-check", "the reader broke down");
  return REFUSED;
}

// Whether the reader accepts the file but the run ends before the first solve.
bool endsBeforeASolve(const Findings& findings) {
  return RUNDATA.run.DATAFMT == ROUTENONE ||
         std::any_of(findings.begin(), findings.end(),
                     [](const CheckFinding& f) { return f.kind == Kind::NoModel; });
}

} // namespace

int checkDescription(std::span<char* const> arguments) {
  const Arguments given = parseArguments(CHECK, arguments);
  const double length = given.numberOr("/length", USUALLENGTH);
  const std::string& file = given.words[0];
  const bool json = given.has("--json");
  if (!startTrace()) giveUp("corvo-check", "there is no memory for the lines of the file");
  const CapturedRun read = readInChild(file, length);
  TRACE->on = false;
  if (read.status != 0) return tellRefusal(file, read, json);
  readHere(file, length);
  const Findings findings = findAll(read);
  int status = findings.empty() ? CLEAN : FOUND;
  if (endsBeforeASolve(findings)) status = REFUSED;
  if (json) {
    printJson({{"file", file},
               {"status", status},
               {"findings", findingsAsJson(findings)},
               {"understood", understood()}});
  } else {
    printFindings(findings);
    say(tablesAsText(understood()));
  }
  if (!saidAll()) giveUp(CHECK.name, CANNOTBEWRITTEN);
  return status;
}

} // namespace lcp::companions
