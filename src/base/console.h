// The console: plain lines for standard output, collected and written in one piece.
//
// Messages are written out in full where they are printed, so that a search for their words finds
// the line of code. Messages share only the rules around them. A text by which another program
// finds its place on the console is a constant in the header of the file that prints it.
#pragma once

#include <fmt/format.h>
#include <string_view>
#include <utility>

namespace lcp::console {

// Prints a text without a line end, a line, or a formatted line.
void text(std::string_view words);
void line(std::string_view words = {});

template <class... Args> void print(fmt::format_string<Args...> form, Args&&... args) {
  line(fmt::format(form, std::forward<Args>(args)...));
}

void rule(char sign, int length); // a line of one sign: asterisks, equal signs, hyphens
constexpr int STARS = 43;         // length of the usual line of asterisks

// The usual frame of an error: openStars prints an empty line, asterisks and "Corvo.exe: ERROR",
// closeStars the asterisks after the message. The caller ends the run.
void openStars();
void closeStars();

// Call once at the start of the process. Afterwards no signal (closed pipe, file size limit) ends
// the run, so a failed write is reported to the code that writes. A standard descriptor that was
// closed when the process started is occupied, so that no output file gets its number.
void prepare();

constexpr std::string_view WARNINGMARK = "*WARNING*"; // starts most warnings

// Prints one line on the error stream: "corvo: note: " and a hint, or "corvo: warning: " and what
// is likely wrong in the input or the result. Neither changes the run, and a stream that cannot be
// written to is ignored.
constexpr std::string_view WARNINGHEAD = "corvo: warning: ";
void note(std::string_view words);
void warning(std::string_view words);

// Writes out what was collected. Returns false if standard output did not take all of it, now or
// before.
bool flush();

} // namespace lcp::console
