// State shared by the sections of the reader: current line, open group, error exit.
#pragma once

#include "input/trace_store.h"
#include "store/cable_group.h"
#include "store/conductor_table.h"
#include "store/manual_group.h"

#include <string>
#include <string_view>

namespace lcp {

enum class State {
  BeforeStart = 0,
  TopLevel = 1,
  Tower = 2,
  GroundData = 3,
  Summary = 4,
  Circuit = 5,
  GroundWires = 6,
  SubConductors = 7,
  Bergeron = 8,
  FittedModel = 9,
  ManualEntry = 10,
  PiModel = 11,
  CoaxCable = 12,
  FourWire = 13,
  Display = 14,
  Pipe = 15,
  Halo = 16,
  ExternalFile = 17,
  Numerics = 18
};

// Which entry of the open group a value is stored in: the first or the second.
enum class Entry { First, Second };

struct ReaderState {
  std::string RAWLINE;   // the record as read, at most 120 columns
  std::string_view LINE; // RAWLINE without leading blanks
  State RSTATE = State::BeforeStart;
  int lineNumber = 0;   // of the record in the file, 1-based
  std::string_view key; // key that the line starts with, once found
  bool wasCut = false;  // the record was truncated
  bool ended = false;   // end of file or end mark reached
  bool wide = false;    // a record up to the start mark has zero bytes, as in UTF-16
  bool noFeeds = false; // ... or a carriage return inside: lines end with a carriage return only
  int fileFormat = MANNONE; // format for which a Y and Z file was read

  int CURN = 0;               // conductors of the open group
  int CURSUB = 1;             // sub-conductors per bundle of the open circuit
  int transposed = 0;         // value of "Transposed" of the open circuit
  int eliminate = 1;          // value of "Eliminate Ground Wires" of the open group
  int offsetLine = 0;         // offset lines read in the open sub-conductor block
  double lastShunt = 0;       // last value of "ShuntConductance"
  bool libraryWarned = false; // the warning about library defaults was given

  int CURCABLE = 0;             // number of the cable being read, 0 before the first
  int CURPIPE = 0;              // number of the pipe being read, 0 before the first
  bool INPIPE = false;          // the open coax section is inside a pipe section
  Cable openCable;              // the cable being read; see open_cable.h
  bool identicalCables = false; // the cables of the pipe are all like the master
  int masterCable = 0;          // number of the first cable in a pipe

  double dropped = 0; // values that are read but not used
  int droppedInteger = 0;
  TextField<LIBPATHLEN> LIBPATH;
  TextField<EXTFILELEN> EXTFILE;
};

extern ReaderState READER;

// Resets the reader and opens a description file. Returns false if it cannot be opened.
bool openReader(std::string_view name);
void closeReader();

// Reads the next record into RAWLINE and LINE. At the end of the file returns false and sets
// `ended`.
bool nextLine();

// Reads the next line, which must open a block; any other line ends the run through the common
// error exit. Returns false at the end of the file.
bool takeOpeningBrace();

// The open group, for the trace.
TracedGroup openGroup();

// First and second entry of the open group in the conductor table.
int firstEntry();
int entryIndex(Entry which);

// Stores into an entry of the open group. Values for entries outside the group are dropped. A key
// before its count stores into the entry that will become the first. entryOpen tells whether entry
// i is in the group.
bool entryOpen(int i);
void putEntry(CondReals& field, Entry which, double value);
void markEntry(CondFlags& field, Entry which);

// Prints one line on the error stream with the position in the file (line number and key) and the
// reason. After the last line there is no position, and nothing is printed.
void noteLine(std::string_view why = {});

// The common error exit: names the file and the last line read, and ends the run with exit status
// 1.
[[noreturn]] void readError(std::string_view why = {});

// Ends the run with exit status 1 if there are more physical conductors than the table holds.
void checkConductorCount(int count);

// Opens or closes the debug file; while it is open, progress writes lines to it.
void setDebugFile(bool on);
void progress(std::string_view words);

} // namespace lcp
