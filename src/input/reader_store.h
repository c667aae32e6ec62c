// What the sections of the reader share: the current line, the open group, the way out.
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

// Where in the conductor table a value goes: the first or second entry of the open group.
enum class Entry { First, Second };

struct ReaderState {
  std::string RAWLINE;   // the record as read, at most 120 columns
  std::string_view LINE; // RAWLINE without the blanks in front
  State RSTATE = State::BeforeStart;
  int lineNumber = 0;       // of the record in the file, from 1
  std::string_view key;     // the key that the line begins with, once it was found
  bool wasCut = false;      // the record is longer than that
  bool ended = false;       // end of file or end marker reached
  bool wide = false;        // a record up to the start mark holds zero bytes, as UTF-16 does
  bool noFeeds = false;     // ... or a carriage return in its midst: lines end with that alone
  int fileFormat = MANNONE; // the format for which a file of Y and Z was read

  int CURN = 0;               // conductors of the open group
  int CURSUB = 1;             // sub-conductors of a bundle of the open circuit
  int transposed = 0;         // value of "Transposed" of the open circuit
  int eliminate = 1;          // value of "Eliminate Ground Wires" of the open group
  int offsetLine = 0;         // offset lines read in the open sub-conductor block
  double lastShunt = 0;       // last value of "ShuntConductance"
  bool libraryWarned = false; // the warning on library defaults was given

  int CURCABLE = 0;             // number of the cable being read, 0 before the first
  int CURPIPE = 0;              // number of the pipe being read, 0 before the first
  bool INPIPE = false;          // the open coax section stands in a pipe section
  Cable openCable;              // the cable being read; see open_cable
  bool identicalCables = false; // the cables of the pipe are all like the master
  int masterCable = 0;          // number of the first cable in a pipe

  double dropped = 0; // values that are read and not used
  int droppedInteger = 0;
  TextField<LIBPATHLEN> LIBPATH;
  TextField<EXTFILELEN> EXTFILE;
};

extern ReaderState READER;

// Starts afresh with a description file. False when it cannot be opened.
bool openReader(std::string_view name);
void closeReader();

// Reads the next record into RAWLINE and LINE. False, and `ended` set, at the end of the file.
bool nextLine();

// Takes the next line, which must open a block; anything else takes the common error exit. False
// at the end of the file.
bool takeOpeningBrace();

// What is open now, for the trace.
TracedGroup openGroup();

// First and second entry of the open group in the conductor table.
int firstEntry();
int entryIndex(Entry which);

// Stores into an entry of the open group. What the group does not hold is dropped; a key that
// comes before its count goes to the entry that the count will make the first.
bool entryOpen(int i);
void putEntry(CondReals& field, Entry which, double value);
void markEntry(CondFlags& field, Entry which);

// One line on the error stream: where the reader stands in the file, by line number and key, and
// what is wrong there. Behind the last line it has no place to name and says nothing.
void noteLine(std::string_view why = {});

// The common error exit: names the file and the last line read, exit status 1.
[[noreturn]] void readError(std::string_view why = {});

// Exit for more physical conductors than the table holds, status 1; checks the count.
void checkConductorCount(int count);

// Opens, closes and writes the debug file; progress lines go there while it is open.
void setDebugFile(bool on);
void progress(std::string_view words);

} // namespace lcp
