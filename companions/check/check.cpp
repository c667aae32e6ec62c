#include "companions/check/check.h"

#include "companions/check/cable_rules.h"
#include "companions/check/earth_rules.h"
#include "companions/check/entered_rules.h"
#include "companions/check/finding.h"
#include "companions/check/fit_rules.h"
#include "companions/check/geometry_rules.h"
#include "companions/check/line_rules.h"
#include "companions/check/matrix_rules.h"
#include "companions/check/option_rules.h"
#include "companions/check/traced.h"
#include "companions/check/understood.h"
#include "companions/shared/arguments.h"
#include "companions/shared/captured_run.h"
#include "companions/shared/console_text.h"
#include "companions/shared/scratch.h"
#include "companions/shared/text.h"
#include "input/cable_data.h"
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

// Whether the reader accepts the file but the run ends before it has solved the line.
bool endsBeforeASolve(const Findings& findings) {
  return RUNDATA.run.DATAFMT == ROUTENONE ||
         std::any_of(findings.begin(), findings.end(), [](const CheckFinding& f) {
           return f.kind == Kind::NoModel || f.kind == Kind::RunEnds || f.kind == Kind::SolveEnds;
         });
}

bool isNote(const CheckFinding& f) { return rowOf(f.kind).severity == "note"; }

bool hasError(const Findings& findings) {
  return std::any_of(findings.begin(), findings.end(),
                     [](const CheckFinding& f) { return rowOf(f.kind).severity == "error"; });
}

// Joins the lines of a console, without frames and unknown lines, which the line rules report
// better.
std::string wordsIn(std::string_view text) {
  std::string all;
  for (const std::string& line : linesOf(text)) {
    const std::size_t first = line.find_first_not_of(" *-=");
    if (first == std::string::npos || line.starts_with(headOf(UNKNOWNLINE))) continue;
    if (!all.empty()) all += ' ';
    all += line.substr(line.find_first_not_of(' '));
  }
  return all;
}

// Adds the reader's messages.
void readerWarnings(Findings& findings, const CapturedRun& read) {
  const std::string all = wordsIn(fmt::format("{}\n{}", read.console, read.errors));
  if (!all.empty()) add(findings, 0, Kind::ReaderWarning, all);
}

void geometry(Findings& findings) {
  conductorRules(findings);
  if (RUNDATA.run.ISCABLE != OVERHEADLINE) cableRules(findings);
  soilRules(findings);
}

// The message with which a run ends, without the word ERROR and the closing lines.
std::string solveMessage(const CapturedRun& run) {
  if (run.status < 0) return "it breaks down";
  std::string words = wordsIn(run.console);
  const std::size_t error = words.find("ERROR");
  if (error != std::string::npos) words.erase(0, words.find_first_not_of("*: ", error + 5));
  for (const std::string_view closing : {"Verify Transmission", "QUENT Ending", "MANLINE Ending"})
    words.erase(std::min(words.find(closing), words.size()));
  return words.substr(0, words.find_last_not_of(' ') + 1);
}

// Solves the line at the steady state frequency alone and reports a message that ends the run
// there, such as a number that a formula divides by.
void trial(Findings& findings) {
  const bool inverts = !RUNDATA.model.fitsSeries(); // the series model needs no inverse of Y
  const Restored model(RUNDATA.model);
  if (RUNDATA.run.DATAFMT != ROUTEMANUAL) RUNDATA.model.MODEL = ModelKind::Pi;
  const CapturedRun run = solveFitInChild(scratchFile("model"), scratchFile("report"));
  refuseFullScratch(run);
  constexpr int WARNED = 2;
  const bool singular = run.console.find("INVCJD") != std::string::npos;
  if (run.status != CLEAN && run.status != WARNED && (inverts || !singular))
    add(findings, 0, Kind::SolveEnds, solveMessage(run));
}

Findings findAll(const CapturedRun& read) {
  Findings findings;
  readerWarnings(findings, read);
  lineRules(findings, true);
  if (RUNDATA.run.DATAFMT == ROUTECONSTANTS) geometry(findings);
  if (RUNDATA.run.DATAFMT == ROUTEMANUAL) enteredRules(findings);
  if (RUNDATA.run.DATAFMT == ROUTEMANUAL) matrixRules(findings);
  optionRules(findings);
  earthRules(findings);
  fitRules(findings);
  if (!endsBeforeASolve(findings)) trial(findings);
  sortFindings(findings);
  return findings;
}

// Why the reader ends: its message without the words that all messages have, and what its note on
// the error stream says after line and key.
std::string whyItEnds(const CapturedRun& read) {
  std::string why =
      wordsIn(read.console.substr(0, read.console.find("Error in Reading Data File")));
  for (const std::string_view common :
       {"Corvo.exe: ERROR", "ERROR: corvo.exe", "***  corvo.exe ERROR ***",
        "Line Constants Program: ERROR", "ORVEX Line Constants Program: ERROR", "ORVEX"}) {
    for (std::size_t at; (at = why.find(common)) != std::string::npos;)
      why.erase(at, common.size());
  }
  why = wordsIn(why);
  const std::string note = wordsIn(read.errors);
  const std::size_t place = note.find(": line "), colon = note.find(": ", place + 2);
  if (place != std::string::npos && colon != std::string::npos)
    why += (why.empty() ? "" : ", ") + note.substr(colon + 2);
  return why.empty() ? "it cannot be read" : why;
}

// Findings on a file that the reader refuses: on its lines, and if all of them can be read, on the
// whole description.
Findings findWhy(const std::string& file, double length, const CapturedRun& read) {
  Findings findings;
  lineRules(findings, false);
  if (!readLinesHere(file, length)) {
    if (TRACE->lineCount > 0 && TRACE->lineCount < MOSTTRACED)
      add(findings, TRACE->lineCount, Kind::ReaderEnds, whyItEnds(read));
  } else if (RUNDATA.run.DATAFMT == ROUTECONSTANTS) {
    if (RUNDATA.run.ISCABLE == CABLESYSTEM) deriveCableData();
    geometry(findings);
    if (RUNDATA.run.ISCABLE == OVERHEADLINE && !RUNDATA.model.MODHALO) nodeRules(findings);
    fitRules(findings);
    if (!hasError(findings)) add(findings, 0, Kind::ReaderEnds, whyItEnds(read));
  }
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

int tellRefusal(const std::string& file, double length, const CapturedRun& read, bool json) {
  const Findings findings = read.status < 0 ? Findings() : findWhy(file, length, read);
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

} // namespace

int checkDescription(std::span<char* const> arguments) {
  const Arguments given = parseArguments(CHECK, arguments);
  const double length = given.numberOr("/length", USUALLENGTH);
  const std::string& file = given.words[0];
  const bool json = given.has("--json");
  if (!startTrace()) giveUp("corvo-check", "there is no memory for the lines of the file");
  const CapturedRun read = readInChild(file, length);
  TRACE->on = false;
  if (read.status != 0) return tellRefusal(file, length, read, json);
  readHere(file, length);
  const Findings findings = findAll(read);
  int status = std::all_of(findings.begin(), findings.end(), isNote) ? CLEAN : FOUND;
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
