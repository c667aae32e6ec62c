// A line-driven state machine. A section consists of a heading line, a line that starts with {, key
// lines, and a line that starts with }. Two tables define it: the headings of the top level, and
// for each state what it reads and which state follows its closing mark.
#include "input/reader.h"

#include "base/console.h"
#include "base/stop.h"
#include "input/external_conductors.h"
#include "input/key_rows.h"
#include "input/manual_section.h"
#include "input/open_cable.h"
#include "input/post_read.h"
#include "input/reader_store.h"
#include "input/sections.h"
#include "input/trace_store.h"
#include "store/rundata.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace lcp {

namespace {

enum class Effect {
  None,
  Tower,
  Ground,
  Pi,
  Bergeron,
  Mode,
  Phase,
  Mfdtd,
  Manual,
  Coax,
  Pipe,
  Halo,
  FourWire,
  End,
  Debug
};

struct Heading {
  std::string_view text;
  State state;
  Effect effect;
  std::string_view firstProgress, secondProgress;
};

constexpr std::array ENDMARKS = {std::string_view("END-OF-CORVO-INPUT-DATA"),
                                 std::string_view("DATADSO")};

constexpr std::array HEADINGS = {
    Heading{"Line Constants Tower", State::Tower, Effect::Tower, "", ""},
    Heading{"Line Constants Bus Work", State::Tower, Effect::Tower, "", ""},
    Heading{"Line Constants Ground Data", State::GroundData, Effect::Ground,
            "Reading Ground Impedance Data...", ""},
    Heading{"Line Summary", State::Summary, Effect::None, "Reading Line Summary Data...", ""},
    Heading{"Cable Summary", State::Summary, Effect::None, "Reading Cable Summary Data...", ""},
    Heading{"PI Model Options", State::PiModel, Effect::Pi, "PI Model Selected...",
            "Reading PI Model Options..."},
    Heading{"Bergeron Line Model Options", State::Bergeron, Effect::Bergeron,
            "Bergeron Model Selected...", "Reading Bergeron Model Options..."},
    Heading{"Frequency Dep. (Mode) Model Options", State::FittedModel, Effect::Mode,
            "Reading Fre.-Dep. Model Options...", ""},
    Heading{"Frequency Dep. (Phase) Model Options", State::FittedModel, Effect::Phase,
            "Reading Fre.-Dep. Model Options...", ""},
    Heading{"MFDTD Model Options", State::FittedModel, Effect::Mfdtd, "", ""},
    Heading{"Manual Data Entry", State::ManualEntry, Effect::Manual, "Reading Manual YZ Data...",
            ""},
    Heading{"Coax Cable", State::CoaxCable, Effect::Coax, "Reading Coax Cable Data..", ""},
    Heading{"Pipe-Type Cable", State::Pipe, Effect::Pipe, "", ""},
    Heading{"Output File Display Options", State::Display, Effect::None, "", ""},
    Heading{"HALO Options", State::Halo, Effect::Halo, "", ""},
    Heading{"Numerical Options", State::Numerics, Effect::None, "", ""},
    Heading{"Four-Wire Cable", State::FourWire, Effect::FourWire,
            "Reading 4-Wire Geometry Cable Data..", ""},
    Heading{ENDMARKS[0], State::TopLevel, Effect::End, "", ""},
    Heading{ENDMARKS[1], State::TopLevel, Effect::End, "", ""},
    Heading{"Line Constants Debug", State::TopLevel, Effect::Debug, "", ""},
};

bool noKeys() { return false; }
bool topLevelLine();
bool externalLine();

// The line routine of a state, the state after its closing mark, and what the mark completes. After
// a coax section in a pipe, the pipe section continues.
struct StateRow {
  State state;
  bool (*line)();
  State closedTo;
  void (*finish)();
};

constexpr std::array STATES = {
    StateRow{State::TopLevel, topLevelLine, State::TopLevel, nullptr},
    StateRow{State::Tower, towerLine, State::TopLevel, nullptr},
    StateRow{State::GroundData, groundDataLine, State::TopLevel, nullptr},
    StateRow{State::Summary, summaryLine, State::TopLevel, nullptr},
    StateRow{State::Circuit, circuitLine, State::Tower, finishCircuit},
    StateRow{State::GroundWires, groundWireLine, State::Tower, finishGroundWires},
    StateRow{State::SubConductors, subConductorLine, State::Circuit, nullptr},
    StateRow{State::Bergeron, bergeronLine, State::TopLevel, nullptr},
    StateRow{State::FittedModel, fittedModelLine, State::TopLevel, nullptr},
    StateRow{State::ManualEntry, manualLine, State::TopLevel, nullptr},
    StateRow{State::PiModel, noKeys, State::TopLevel, nullptr},
    StateRow{State::CoaxCable, coaxLine, State::TopLevel, finishCoax},
    StateRow{State::FourWire, fourWireLine, State::TopLevel, nullptr},
    StateRow{State::Display, displayLine, State::TopLevel, nullptr},
    StateRow{State::Pipe, pipeLine, State::TopLevel, nullptr},
    StateRow{State::Halo, haloLine, State::TopLevel, nullptr},
    StateRow{State::Numerics, numericsLine, State::TopLevel, nullptr},
    StateRow{State::ExternalFile, externalLine, State::TopLevel, nullptr},
};

constexpr std::array STARTMARKS = {std::string_view("CORVO-INPUT-DATA"),
                                   std::string_view("DATADSD")};

// --- errors in headings; each ends the run through the common error exit

[[noreturn]] void multipleEntryMethods() {
  console::line("ERROR: corvo.exe");
  console::line("Multiple Data Entry Methods Selected!");
  console::line("Select only one Line Data Entry Type Method!");
  readError();
}

void chooseConstantsRoute() {
  int& DATAFMT = RUNDATA.run.DATAFMT;
  if (DATAFMT != ROUTENONE && DATAFMT != ROUTECONSTANTS) multipleEntryMethods();
  DATAFMT = ROUTECONSTANTS;
}

void chooseManualRoute() {
  int& DATAFMT = RUNDATA.run.DATAFMT;
  if (DATAFMT == ROUTEMULTIPLE) return;
  if (DATAFMT != ROUTENONE) multipleEntryMethods();
  DATAFMT = ROUTEMANUAL;
}

void chooseModel(ModelKind kind, std::string_view repeated) {
  ModelKind& MODEL = RUNDATA.model.MODEL;
  if (MODEL != ModelKind::None) {
    console::line("ERROR: corvo.exe");
    console::line(repeated);
    console::line("Select only one Line Model Type!");
    readError();
  }
  MODEL = kind;
}

void checkFileKind(std::string_view what) {
  if (RUNDATA.run.ISCABLE == CABLESYSTEM) return;
  console::rule('*', console::STARS);
  console::line("Corvo: ERROR");
  console::line(what);
  console::line("used on Corvo sub-pages!");
  console::rule('*', console::STARS);
  readError();
}

// --- top level

void applyEffect(Effect effect) {
  constexpr std::string_view COMPONENTS = "Components for > 1 Line Model Selected!";
  constexpr std::string_view MODELS = "Multiple Line Models Selected!";
  ModelChoice& M = RUNDATA.model;
  switch (effect) {
  case Effect::Tower:
    chooseConstantsRoute();
    ++RUNDATA.cond.NTOWER;
    progress(fmt::format("Reading Line {} Tower Data...", RUNDATA.cond.NTOWER));
    break;
  case Effect::Ground: chooseConstantsRoute(); break;
  case Effect::Pi: chooseModel(ModelKind::Pi, COMPONENTS); break;
  case Effect::Bergeron: chooseModel(ModelKind::Bergeron, COMPONENTS); break;
  case Effect::Mode: chooseModel(ModelKind::Mode, COMPONENTS); break;
  case Effect::Phase: chooseModel(ModelKind::Phase, MODELS); break;
  case Effect::Mfdtd: chooseModel(ModelKind::Mfdtd, MODELS); break;
  case Effect::Halo:
    if (M.MODEL == ModelKind::None) M.MODEL = ModelKind::Halo;
    M.MODHALO = true;
    break;
  case Effect::Manual: chooseManualRoute(); break;
  case Effect::Coax:
    chooseConstantsRoute();
    checkCableCount(++RUNDATA.cable.NCABLE);
    checkFileKind("Coax Cable components cannot be");
    break;
  case Effect::Pipe:
    chooseConstantsRoute();
    RUNDATA.cable.PIPEF = true;
    ++RUNDATA.cable.NPIPE;
    break;
  case Effect::FourWire:
    chooseConstantsRoute();
    checkCableCount(++RUNDATA.cable.NCABLE);
    checkFileKind("Cable components cannot be");
    RUNDATA.run.ISCABLE = FOURWIRECABLE;
    break;
  case Effect::None:
  case Effect::End:
  case Effect::Debug: break;
  }
}

void readDebugKey() {
  constexpr KeyRow row = itemsKey("Line Constants Debug", NORULE);
  int value = 0;
  const Got got = readInteger(valueField(row, READER.LINE), value);
  if (got == Got::Malformed) readError(INTEGERDUE);
  if (got == Got::Value) setDebugFile(value == 1);
}

void tellHeadings(std::string_view found) {
  static constexpr auto texts = [] {
    std::array<std::string_view, HEADINGS.size()> all;
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = HEADINGS[i].text;
    return all;
  }();
  traceHeadings(texts, found);
}

bool topLevelLine() {
  const auto heading = std::find_if(HEADINGS.begin(), HEADINGS.end(), [](const Heading& h) {
    return READER.LINE.starts_with(h.text);
  });
  if (tracing()) tellHeadings(heading == HEADINGS.end() ? std::string_view() : heading->text);
  if (heading == HEADINGS.end()) return false;
  READER.key = heading->text;
  if (heading->effect == Effect::End) READER.ended = true;
  if (heading->effect == Effect::Debug) readDebugKey();
  if (heading->effect == Effect::End || heading->effect == Effect::Debug) return true;
  applyEffect(heading->effect);
  for (const std::string_view words : {heading->firstProgress, heading->secondProgress}) {
    if (!words.empty()) progress(words);
  }
  if (takeOpeningBrace()) READER.RSTATE = heading->state;
  return true;
}

// The line after the name of an external file is dropped; it is the closing mark of the tower.
bool externalLine() {
  readExternalConductors();
  READER.RSTATE = State::TopLevel;
  if (!tracing()) return true;
  traceConductors();
  traceClosing();
  return true;
}

// --- the main loop

// The mark that the line starts with; empty if none.
std::string_view markOf(std::span<const std::string_view> marks) {
  for (const std::string_view mark : marks) {
    if (READER.LINE.starts_with(mark)) return mark;
  }
  return {};
}

// Sections need not be closed: an end mark ends the input in any section. No key starts like an end
// mark.
bool endsInput() {
  const std::string_view mark = markOf(ENDMARKS);
  if (mark.empty()) return false;
  READER.ended = true;
  if (tracing()) traceHeadings({}, mark);
  return true;
}

void seeEncoding() {
  READER.wide = READER.wide || READER.RAWLINE.find('\0') != std::string::npos;
  READER.noFeeds = READER.noFeeds || READER.RAWLINE.find('\r') != std::string::npos;
}

// Why no data entry method was selected, so that the run will end.
std::string whatIsMissing() {
  if (READER.wide) return "the file is no plain text; save it as ASCII or UTF-8, not UTF-16";
  if (READER.noFeeds) return "its lines must end with a line feed, not a carriage return alone";
  if (READER.RSTATE == State::BeforeStart)
    return fmt::format("no line begins with {} or {}", STARTMARKS[0], STARTMARKS[1]);
  return "no section describes a tower, a cable, the ground or data entered by hand";
}

void noteWhatIsMissing() {
  if (READER.RSTATE != State::BeforeStart && READER.RSTATE != State::TopLevel) {
    console::note(fmt::format("{}: the input ends in line {}, inside a section",
                              RUNDATA.run.FNAME.text(), READER.lineNumber));
  }
  const int MANFMT = RUNDATA.manual.MANFMT;
  if (RUNDATA.run.DATAFMT == ROUTENONE)
    console::note(fmt::format("{}: {}", RUNDATA.run.FNAME.text(), whatIsMissing()));
  if ((MANFMT == MANPAIR || MANFMT == MANMULTIPLE) && READER.fileFormat != MANFMT) {
    console::warning(
        fmt::format("{}: the file of Y and Z was not read; Y,Z Input File Name must stand "
                    "behind Data Entry Format",
                    RUNDATA.run.FNAME.text()));
  }
}

LineFate fateOf(bool comment) {
  if (READER.LINE.empty()) return LineFate::Blank;
  return comment ? LineFate::Comment : LineFate::Unknown;
}

void ignoreUnknownLine() {
  const std::string& raw = READER.RAWLINE;
  const bool comment = READER.LINE.empty() || raw[0] == '!' || raw[0] == 'C';
  if (tracing()) traceFate(fateOf(comment));
  if (comment) return;
  console::print(UNKNOWNLINE, raw.substr(0, raw.find_last_not_of(' ') + 1));
}

const StateRow& currentState() {
  return *std::find_if(STATES.begin(), STATES.end(),
                       [](const StateRow& row) { return row.state == READER.RSTATE; });
}

void closeBlock(const StateRow& row) {
  READER.RSTATE = row.closedTo;
  if (row.finish != nullptr) row.finish();
  if (!tracing()) return;
  if (row.state != State::SubConductors) traceConductors(); // the circuit is still open
  traceClosing();
}

void takeLine() {
  if (READER.RSTATE == State::BeforeStart) {
    seeEncoding();
    if (!markOf(STARTMARKS).empty()) READER.RSTATE = State::TopLevel;
    return;
  }
  const StateRow& row = currentState();
  const bool canClose = row.state != State::TopLevel && row.state != State::ExternalFile;
  if (canClose && READER.LINE.starts_with('}')) {
    closeBlock(row);
  } else if (!row.line() && !endsInput()) {
    ignoreUnknownLine();
  }
}

void openInput() {
  RunControl& R = RUNDATA.run;
  // The first description finds the groups in their initial state, with most pages untouched.
  if (R.FILESREAD++ > 0) RUNDATA.resetInput();
  R.DATAFMT = ROUTENONE;
  if (openReader(R.FNAME.whole())) return;
  console::line();
  console::rule('*', console::STARS);
  console::print("Error in Opening Input Data File: {}", R.FNAME.text());
  console::rule('*', console::STARS);
  console::line("READTLDATA Ending!");
  stop(1);
}

} // namespace

void readLines() {
  openInput();
  while (!READER.ended && nextLine()) takeLine();
}

void READTLDATA() {
  readLines();
  noteWhatIsMissing();
  postReadPass();
  closeReader();
}

} // namespace lcp
