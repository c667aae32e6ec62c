// What the reader made of each line: off by default, and of no effect on what is read. For who
// explains a description file to its user.
#pragma once

#include "input/free_form.h"
#include "input/key_rows.h"
#include "input/reader_state.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace lcp {

enum class LineFate {
  Skipped, // ahead of the start mark
  Taken,   // heading, key, position, opening or closing mark
  Blank,   // an empty line
  Comment, // a line that begins with ! or C and is no key
  Unknown  // announced and ignored
};

struct TracedLine {
  int number = 0;                   // in the file, from 1
  std::string text;                 // what is read of it
  bool cut = false;                 // there was more
  State state = State::BeforeStart; // in which it was met
  int section = 0;                  // its section, an index of LineTrace::sections
  LineFate fate = LineFate::Taken;
  std::span<const KeyRow> rows;               // keys that it was compared with
  std::span<const std::string_view> headings; // or headings
  const KeyRow* key = nullptr;                // the one that it begins with
  Got got = Got::None;                        // whether the key's value was read
  std::string_view heading;                   // the heading that it is
  int group = 0;                              // conductors of the open group
  int offsets = 0;                            // offset lines of the open bundle so far
  int subConductors = 0;                      // sub-conductors of the open circuit
  int cable = 0;                              // number of the cable that it goes to
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

struct LineTrace {
  bool on = false;
  std::vector<TracedLine> lines;
  std::vector<TracedSection> sections;
  std::vector<TracedConductor> conductors;
  int open = 0; // the open section
};

extern LineTrace TRACE;

// Starts a trace with the next description file.
void startTrace();

// What the reader tells while the trace is on.
void traceRecord(); // a record was read
void traceKey(std::span<const KeyRow> rows, const KeyRow* key);
void traceValue(Got got);
void tracePosition(const KeyRow& row); // a line of a position list
void traceHeadings(std::span<const std::string_view> texts, std::string_view found);
void traceFate(LineFate fate);
void traceOpening();    // the line opens the section whose heading is the line before
void traceClosing();    // the line closes the open section
void traceConductors(); // those read since the last call belong to the open section

} // namespace lcp
