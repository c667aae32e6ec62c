// The files that a run reads, so that it writes to none of them, and those that are open for
// writing, so that a run that ends early leaves them in order.
#pragma once

#include <string>
#include <string_view>

struct stat;

namespace lcp {

// From now on an input: no file that is this one, by whatever name or link, is opened for writing.
// Without the second a file of that name that exists. A file that has lost its name to another one
// is no input any more.
void protectInput(const std::string& name, const struct stat& file);
void protectInput(const std::string& name);
void releaseInput(const std::string& name);
bool isInput(const std::string& name);

// Whether the file is one of those that are open for writing; if it has not been emptied yet, it
// stays as it is.
bool isOpenOutput(const struct stat& file);

// What an end of the run ahead of the file's own leaves of it.
enum class EarlyEnd {
  KEEP,     // what was written until then: a report tells why the run ended
  EMPTY,    // an empty file
  REMOVE,   // no file: what reads it must not take it for a result
  UNTOUCHED // as it was, of a file that is emptied late
};

// When a file that stands there is emptied.
enum class Emptied { AT_OPENING, WHEN_WRITTEN };

// A file that is written, and its place in the list of those that are open.
struct OpenFile {
  std::string name;
  std::string collected; // text that the device has not seen yet
  int descriptor = -1;
  EarlyEnd end = EarlyEnd::EMPTY;
  Emptied emptied = Emptied::AT_OPENING;
  OpenFile* next = nullptr;
};

// Creates or empties the file and opens it for writing, without waiting for anybody; it stands in
// the list until it is dropped. False when that fails. What is no file to write to (a FIFO, a
// terminal, a disk) counts as not openable; the null device and the one that is always full are
// files. With alone, so does a file that another process has opened in this way. An input is left
// as it is: descriptor is ISINPUT.
bool openListed(OpenFile& file, bool alone = false);
constexpr int ISINPUT = -2;

// Writes what was collected to the descriptor; false when the device does not take all of it.
[[nodiscard]] bool writeCollected(OpenFile& file, int descriptor);

// Takes the file off the list, if it is there. Its descriptor is the caller's again; -1 when the
// file was not open.
int dropListed(OpenFile& file);

// Leaves of a file whose descriptor is closed what its early end says.
void leave(const OpenFile& file);

// The message of a file that was not written to its end.
constexpr std::string_view FILENOTWRITTEN = "Error in Writing Output File: {}";
void sayCannotWrite(std::string_view name);

// The end of the run: every open file as its early end says. False, behind a message, when one to
// be kept could not be written.
bool endOpenFiles();

} // namespace lcp
