// Looks things up in the trace of the reader.
#pragma once

#include "input/key_rows.h"
#include "input/trace_store.h"

#include <span>
#include <string_view>

namespace lcp::companions {

// The line without the blanks in front.
std::string_view wordsOf(const TracedLine& line);

// The keys that it was compared with.
std::span<const KeyRow> rowsOf(const TracedLine& line);

// What stands in the line from the value column of its key on.
std::string_view fieldOf(const TracedLine& line);

// Heading of a section, and of the one that a line stands in.
std::string_view headingOf(int section);

// Number of the last line whose key stores into this place: a number, a flag or a column of the
// conductor table. In one section, with `cable` for one cable; 0 when there is none.
int lineOf(const void* target, int section = -1, int cable = 0);

// The same, or where there is none the heading of the section.
int lineOrHeading(const void* target, int section);

// Number of the line of a section's position list, or its heading.
int positionLine(int section);

// Number of the line with the position of a cable; 0 when there is none.
int cablePositionLine(int cable);

// The number of the line with the first offset or the spacing of a circuit's bundle, or the
// heading.
int bundleLine(int section);

// The last line that holds this heading; 0 when there is none.
int headingLine(std::string_view beginning);

// The section of a conductor, by its place; 0 when it is not known.
int sectionOfConductor(double x, double y);

} // namespace lcp::companions
