#include "input/reader_store.h"

#include "base/console.h"
#include "base/stop.h"
#include "base/text_file.h"
#include "base/text_source.h"
#include "store/rundata.h"

namespace lcp {

ReaderState READER;

namespace {

constexpr const char* DEBUGNAME = "DEBUG.OUT";
TextSource source; // the description file

// Emptied and written when the description has been read or the run ends early: a file of that name
// may be an input.
TextFile debugFile;

} // namespace

bool openReader(std::string_view name) {
  READER = ReaderState{};
  setDebugFile(false);
  return source.open(name);
}

void closeReader() {
  source.close();
  debugFile.close();
  READER.LINE = {};
}

bool nextLine() {
  READER.key = {};
  switch (source.next(READER.RAWLINE, LINELENGTH)) {
  case TextSource::Result::End: READER.ended = true; return false;
  case TextSource::Result::Error: readError();
  case TextSource::Result::Record: break;
  }
  ++READER.lineNumber;
  READER.wasCut = source.wasCut();
  const std::string_view raw = READER.RAWLINE;
  READER.LINE = raw.substr(std::min(raw.find_first_not_of(' '), raw.size()));
  if (tracing()) traceRecord(READER.RAWLINE, READER.wasCut, READER.RSTATE, openGroup());
  return true;
}

bool takeOpeningBrace() {
  if (!nextLine()) return false;
  if (!READER.LINE.starts_with('{')) readError("the line behind a heading must begin with {");
  if (tracing()) traceOpening();
  return true;
}

TracedGroup openGroup() { return {READER.CURN, READER.CURSUB, READER.offsetLine, READER.CURCABLE}; }

int firstEntry() { return RUNDATA.cond.NCOND - READER.CURN + 1; }

int entryIndex(Entry which) { return firstEntry() + (which == Entry::Second ? 1 : 0); }

bool entryOpen(int i) {
  const int last = RUNDATA.cond.NCOND + (READER.CURN == 0 ? 1 : 0);
  return i >= 1 && i <= last && i <= MAXCOND;
}

void putEntry(CondReals& field, Entry which, double value) {
  const int i = entryIndex(which);
  if (entryOpen(i)) field[i] = value;
}

void markEntry(CondFlags& field, Entry which) {
  const int i = entryIndex(which);
  if (entryOpen(i)) field[i] = true;
}

void noteLine(std::string_view why) {
  if (READER.ended) return;
  const std::string key = READER.key.empty() ? std::string() : fmt::format(", {}", READER.key);
  console::note(fmt::format("{}: line {}{}{}{}", RUNDATA.run.FNAME.text(), READER.lineNumber, key,
                            why.empty() ? "" : ": ", why));
}

void readError(std::string_view why) {
  TextField<LINELENGTH> last; // without trailing blanks
  last = READER.RAWLINE;
  noteLine(why);
  console::openStars();
  console::print("Error in Reading Data File: {}", RUNDATA.run.FNAME.text());
  console::print("Last Line Read Was: {}", last.text());
  console::closeStars();
  console::line("READTLDATA Ending!");
  stop(1);
}

void checkConductorCount(int count) {
  if (count <= MAXCOND) return;
  noteLine();
  console::print("Error, Too Many Conductors! (Max= ,{}!)", MAXCOND);
  stop(1);
}

void setDebugFile(bool on) {
  RUNDATA.run.DEBUGF = on;
  if (!on) return;
  if (!debugFile.open(DEBUGNAME, EarlyEnd::KEEP, Emptied::WHEN_WRITTEN)) {
    console::line();
    console::rule('*', console::STARS);
    console::line("Error in Opening Debug Output File DEBUG.OUT");
    console::rule('*', console::STARS);
    console::line("READTLDATA Ending!");
    stop(1);
  }
  progress(fmt::format("File {} Opened, Reading Data.", RUNDATA.run.FNAME.text()));
}

void progress(std::string_view words) {
  if (RUNDATA.run.DEBUGF) debugFile.line(words);
}

} // namespace lcp
