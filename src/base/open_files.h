// The files that are open for writing, so that a run that ends early leaves them in order.
#pragma once

#include <string>
#include <string_view>

namespace lcp {

// What an end of the run ahead of the file's own leaves of it.
enum class EarlyEnd {
  KEEP,  // what was written until then: a report tells why the run ended
  EMPTY, // an empty file
  REMOVE // no file: what reads it must not take it for a result
};

// A file that is written, and its place in the list of those that are open.
struct OpenFile {
  std::string name;
  std::string collected; // text that the device has not seen yet
  int descriptor = -1;
  EarlyEnd end = EarlyEnd::EMPTY;
  OpenFile* next = nullptr;
};

// Creates or empties the file and opens it for writing, without waiting for anybody; -1 when that
// fails. What is no file to write to (a FIFO, a terminal, a disk) counts as not openable; the null
// device and the one that is always full are files. With alone, so does a file that another process
// has opened in this way.
int openForWriting(const std::string& name, bool alone = false);

// The same with a file that stands in the list until it is dropped. False when that fails.
bool openListed(OpenFile& file, bool alone = false);

// Takes the file off the list, if it is there. Its descriptor is the caller's again; -1 when the
// file was not open.
int dropListed(OpenFile& file);

// Leaves of a file whose descriptor is closed what its early end says.
void leave(const OpenFile& file);

// The message of a file that was not written to its end.
void sayCannotWrite(std::string_view name);

// The end of the run: every open file as its early end says. False, behind a message, when one to
// be kept could not be written.
bool endOpenFiles();

} // namespace lcp
