#include "input/line_trace.h"

#include "store/rundata.h"

namespace lcp {

LineTrace TRACE;

namespace {

TracedLine& current() { return TRACE.lines.back(); }

void seeGroup() {
  TracedLine& L = current();
  L.group = READER.CURN;
  L.subConductors = READER.CURSUB;
  L.offsets = READER.offsetLine;
  L.cable = READER.CURCABLE;
}

} // namespace

void startTrace() {
  TRACE = LineTrace{};
  TRACE.on = true;
  TRACE.sections.emplace_back();
}

void traceRecord() {
  TracedLine& L = TRACE.lines.emplace_back();
  L.number = static_cast<int>(TRACE.lines.size());
  L.text = READER.RAWLINE;
  L.cut = READER.wasCut;
  L.state = READER.RSTATE;
  L.section = TRACE.open;
  if (L.state == State::BeforeStart) L.fate = LineFate::Skipped;
  seeGroup();
}

void traceKey(std::span<const KeyRow> rows, const KeyRow* key) {
  TracedLine& L = current();
  L.rows = rows;
  L.key = key;
}

void traceValue(Got got) {
  current().got = got;
  seeGroup();
}

void tracePosition(const KeyRow& row) {
  current().key = &row;
  seeGroup();
}

void traceHeadings(std::span<const std::string_view> texts, std::string_view found) {
  current().headings = texts;
  current().heading = found;
}

void traceFate(LineFate fate) { current().fate = fate; }

void traceOpening() {
  TRACE.sections.push_back({current().number - 1, TRACE.open});
  TRACE.open = static_cast<int>(TRACE.sections.size()) - 1;
}

void traceClosing() { TRACE.open = TRACE.sections[static_cast<std::size_t>(TRACE.open)].parent; }

void traceConductors() {
  const ConductorTable& C = RUNDATA.cond;
  for (int i = static_cast<int>(TRACE.conductors.size()) + 1; i <= C.NCOND; ++i)
    TRACE.conductors.push_back({C.CX[i], C.CY[i], TRACE.open});
}

} // namespace lcp
