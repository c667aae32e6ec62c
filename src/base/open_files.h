// Lists the files that a run reads, which it must not overwrite, and those open for writing, which
// it leaves in order when it ends early.
#pragma once

#include <string>
#include <string_view>

struct stat;

namespace lcp {

// Marks a file as input: it is then never opened for writing, under any name or link. Without
// `file`, the existing file of that name is marked. A file whose name now belongs to another file
// is no longer an input. releaseInput removes the mark.
void protectInput(const std::string& name, const struct stat& file);
void protectInput(const std::string& name);
void releaseInput(const std::string& name);
bool isInput(const std::string& name);

// Whether the file is open for writing. If so and if it has not been emptied yet, it keeps its
// contents at an early end.
bool isOpenOutput(const struct stat& file);

// What is left of a file when the run ends before the file is closed.
enum class EarlyEnd {
  KEEP,     // what was written so far: a report shows why the run ended
  EMPTY,    // an empty file
  REMOVE,   // no file: nobody must take it for a result
  UNTOUCHED // its old contents; for a file that is emptied late
};

// When an existing file is emptied.
enum class Emptied { AT_OPENING, WHEN_WRITTEN };

// A file being written, and its place in the list of open files.
struct OpenFile {
  std::string name;
  std::string collected; // text not written to the device yet
  int descriptor = -1;
  EarlyEnd end = EarlyEnd::EMPTY;
  Emptied emptied = Emptied::AT_OPENING;
  OpenFile* next = nullptr;
};

// Creates or empties the file and opens it for writing without blocking. It stays in the list until
// it is dropped. Returns false on failure. Whatever is not a file (a FIFO, a terminal, a disk)
// cannot be opened; the null device and the full device count as files. With `alone`, a file that
// another process opened with `alone` cannot be opened either. An input of the run is left as it
// is, and descriptor becomes ISINPUT.
bool openListed(OpenFile& file, bool alone = false);
constexpr int ISINPUT = -2;

// Writes what was collected to the descriptor; false if the device does not take all of it.
[[nodiscard]] bool writeCollected(OpenFile& file, int descriptor);

// Removes the file from the list, if it is there, and returns its descriptor, which the caller must
// close; -1 if the file was not open.
int dropListed(OpenFile& file);

// Leaves a file whose descriptor is closed as its EarlyEnd says.
void leave(const OpenFile& file);

// Message for a file that could not be written completely.
constexpr std::string_view FILENOTWRITTEN = "Error in Writing Output File: {}";
void sayCannotWrite(std::string_view name);

// Ends all open files as their EarlyEnd says, at the end of the run. Returns false, after a
// message, if one that is kept could not be written.
bool endOpenFiles();

} // namespace lcp
