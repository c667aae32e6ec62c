// Records what the reader made of each line, for programs that explain a description file.
//
// Off by default; it does not affect what is read.
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
  Skipped, // before the start mark
  Taken,   // heading, key, position, opening or closing mark
  Blank,   // an empty line
  Comment, // a line that begins with ! or C and is no key
  Unknown  // reported and ignored
};

// The open group while a line is read.
struct TracedGroup {
  int wires = 0;         // conductors of the group
  int subConductors = 0; // ... of a bundle of the circuit
  int offsets = 0;       // offset lines of the bundle so far
  int cable = 0;         // cable number
};

struct TracedLine {
  int number = 0;             // in the file, from 1
  TextField<LINELENGTH> text; // what is read of it
  bool cut = false;           // the line is longer
  State state{};              // state of the reader before the line
  int section = 0;            // section of the line
  LineFate fate = LineFate::Taken;
  const KeyRow* rows = nullptr; // keys it was compared with
  int rowCount = 0;
  std::span<const std::string_view> headings; // or headings it was compared with
  const KeyRow* key = nullptr;                // key it starts with
  Got got = Got::None;                        // whether the value of the key was read
  std::string_view heading;                   // heading it matches
  TracedGroup open;
};

// A block between braces. Entry 0 stands for everything outside all blocks.
struct TracedSection {
  int heading = 0; // line number of the heading
  int parent = 0;  // enclosing section
};

// A physical conductor when its group was closed, before the conductors are ordered.
struct TracedConductor {
  double x = 0, y = 0; // m
  int section = 0;
};

constexpr int MOSTTRACED = 20000; // lines; later ones are not traced

struct LineTrace {
  bool on;
  int lineCount, sectionCount, conductorCount;
  int open; // current section
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

// Null unless a trace was started.
extern LineTrace* TRACE;

inline bool tracing() { return TRACE != nullptr && TRACE->on; }

// Starts a trace with the next description file. Its memory is shared with processes forked from
// here, so it remains when the reader ends such a process. Returns false if there is no memory.
bool startTrace();

// Called by the reader while the trace is on.
void traceRecord(std::string_view text, bool cut, State state, TracedGroup open);
void traceKeys(const KeyRow* rows, std::size_t count, const KeyRow* key);
void traceValue(Got got, TracedGroup open);
void tracePosition(const KeyRow& row, TracedGroup open); // a line of a position list
void traceHeadings(std::span<const std::string_view> texts, std::string_view found);
void traceFate(LineFate fate);
void traceOpening();    // the line opens a section; the line before is its heading
void traceClosing();    // the line closes the current section
void traceConductors(); // conductors read since the last call belong to the current section

} // namespace lcp
