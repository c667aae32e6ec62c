#include "input/trace_store.h"

#include "store/rundata.h"

#include <algorithm>
#include <sys/mman.h>

namespace lcp {

LineTrace* TRACE = nullptr;

namespace {

TracedLine& current() { return TRACE->lineStore[std::max(TRACE->lineCount, 1)]; }

} // namespace

bool startTrace() {
  if (TRACE != nullptr) munmap(TRACE, sizeof(LineTrace));
  void* const pages = mmap(nullptr, sizeof(LineTrace), PROT_READ | PROT_WRITE,
                           MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  TRACE = pages == MAP_FAILED ? nullptr : static_cast<LineTrace*>(pages);
  if (TRACE == nullptr) return false;
  TRACE->on = true;
  TRACE->sectionCount = 1;
  return true;
}

void traceRecord(std::string_view text, bool cut, State state, TracedGroup open) {
  if (TRACE->lineCount == MOSTTRACED) {
    TRACE->on = false;
    return;
  }
  ++TRACE->lineCount;
  TracedLine& L = current();
  L = TracedLine{};
  L.number = TRACE->lineCount;
  L.text = text;
  L.cut = cut;
  L.state = state;
  L.section = TRACE->open;
  L.open = open;
  if (state == State{}) L.fate = LineFate::Skipped;
}

void traceKeys(const KeyRow* rows, std::size_t count, const KeyRow* key) {
  TracedLine& L = current();
  L.rows = rows;
  L.rowCount = static_cast<int>(count);
  L.key = key;
}

void traceValue(Got got, TracedGroup open) {
  current().got = got;
  current().open = open;
}

void tracePosition(const KeyRow& row, TracedGroup open) {
  current().key = &row;
  current().open = open;
}

void traceHeadings(std::span<const std::string_view> texts, std::string_view found) {
  current().headings = texts;
  current().heading = found;
}

void traceFate(LineFate fate) { current().fate = fate; }

void traceOpening() {
  TRACE->sectionStore[++TRACE->sectionCount] = {current().number - 1, TRACE->open};
  TRACE->open = TRACE->sectionCount - 1;
}

void traceClosing() { TRACE->open = TRACE->sectionStore[TRACE->open + 1].parent; }

void traceConductors() {
  const ConductorTable& C = RUNDATA.cond;
  for (int i = TRACE->conductorCount + 1; i <= C.NCOND; ++i)
    TRACE->conductorStore[i] = {C.CX[i], C.CY[i], TRACE->open};
  TRACE->conductorCount = C.NCOND;
}

} // namespace lcp
