// Looks up lines and sections in the trace of the reader.
#pragma once

#include "input/key_rows.h"
#include "input/trace_store.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace lcp::companions {

// The line without leading blanks.
std::string_view wordsOf(const TracedLine& line);

// The keys that the line was compared with.
std::span<const KeyRow> rowsOf(const TracedLine& line);

// The line from the value column of its key on.
std::string_view fieldOf(const TracedLine& line);

// Heading of a section.
std::string_view headingOf(int section);

// Number of the last line whose key stores to this target: a number, a flag or a column of the
// conductor table. Optionally limited to a section or a cable; 0 if there is none.
int lineOf(const void* target, int section = -1, int cable = 0);

// The same; the heading of the section if there is none.
int lineOrHeading(const void* target, int section);

// Number of the position list line of a section, or of its heading.
int positionLine(int section);

// Number of the last line of a section with this key, or its heading; and of such a key in one
// cable, 0 if there is none.
int keyLine(std::string_view key, int section);
int keyLineOfCable(std::string_view key, int cable);
inline int phaseLine(int section) {
  return std::max(keyLine("Conductor Phase Information", section),
                  keyLine("Ground Wire Phase Information", section));
}
inline int outerStrandLine(int section) { return keyLine("Number of Outer Strands", section); }
inline int innerRadiusLine(int section) { return keyLine("Inner Radius", section); }

// Number of the line with the position of a cable; 0 if there is none.
int cablePositionLine(int cable);

// The real of a line's key; NaN without one.
double numberAt(int line);

// Number of the line with the first offset or the spacing of a circuit's bundle, or of the heading.
int bundleLine(int section);

// Number of the last line with this heading; 0 if there is none.
int headingLine(std::string_view beginning);

// The section of the conductor at this position; 0 if unknown.
int sectionOfConductor(double x, double y);

} // namespace lcp::companions
