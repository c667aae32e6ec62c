// What the reader made of each line: off by default, and of no effect on what is read. For who
// explains a description file to its user.
#pragma once

#include "base/table.h"
#include "input/free_form.h"
#include "store/capacities.h"

#include <span>
#include <string_view>

namespace lcp {

struct KeyRow;
enum class State;

enum class LineFate {
  Skipped, // ahead of the start mark
  Taken,   // heading, key, position, opening or closing mark
  Blank,   // an empty line
  Comment, // a line that begins with ! or C and is no key
  Unknown  // announced and ignored
};

// What is open while a line is read.
struct TracedGroup {
  int wires = 0;         // conductors of the group
  int subConductors = 0; // ... of a bundle of the circuit
  int offsets = 0;       // offset lines of the bundle so far
  int cable = 0;         // number of the cable
};

struct TracedLine {
  int number = 0;             // in the file, from 1
  TextField<LINELENGTH> text; // what is read of it
  bool cut = false;           // there was more
  State state{};              // in which it was met
  int section = 0;            // its section
  LineFate fate = LineFate::Taken;
  const KeyRow* rows = nullptr; // keys that it was compared with
  int rowCount = 0;
  std::span<const std::string_view> headings; // or headings
  const KeyRow* key = nullptr;                // the one that it begins with
  Got got = Got::None;                        // whether the key's value was read
  std::string_view heading;                   // the heading that it is
  TracedGroup open;
};

// A block between braces. The first one stands for what is outside of all.
struct TracedSection {
  int heading = 0; // line number
  int parent = 0;
};

// A physical conductor where its group was closed, before all conductors are put in order.
struct TracedConductor {
  double x = 0, y = 0; // m
  int section = 0;
};

constexpr int MOSTTRACED = 20000; // lines; what follows them is not traced

struct LineTrace {
  bool on;
  int lineCount, sectionCount, conductorCount;
  int open; // the open section
  Table<TracedLine, MOSTTRACED> lineStore;
  Table<TracedSection, MOSTTRACED> sectionStore; // section 0 is the first entry
  Table<TracedConductor, MAXCOND> conductorStore;

  std::span<const TracedLine> lines() const { return {lineStore.data(), entries(lineCount)}; }
  std::span<const TracedSection> sections() const {
    return {sectionStore.data(), entries(sectionCount)};
  }
  std::span<const TracedConductor> conductors() const {
    return {conductorStore.data(), entries(conductorCount)};
  }

private:
  static constexpr std::size_t entries(int n) { return static_cast<std::size_t>(n); }
};

// Null unless a trace was asked for.
extern LineTrace* TRACE;

inline bool tracing() { return TRACE != nullptr && TRACE->on; }

// Starts a trace with the next description file. It is shared with processes forked from here, so
// that one which the reader ends leaves it behind. False when there is no memory for it.
bool startTrace();

// What the reader tells while the trace is on.
void traceRecord(std::string_view text, bool cut, State state, TracedGroup open);
void traceKeys(const KeyRow* rows, std::size_t count, const KeyRow* key);
void traceValue(Got got, TracedGroup open);
void tracePosition(const KeyRow& row, TracedGroup open); // a line of a position list
void traceHeadings(std::span<const std::string_view> texts, std::string_view found);
void traceFate(LineFate fate);
void traceOpening();    // the line opens the section whose heading is the line before
void traceClosing();    // the line closes the open section
void traceConductors(); // those read since the last call belong to the open section

} // namespace lcp
