// The console: plain lines to the standard output, collected and written in one piece.
//
// The texts stand whole where they are printed, so that a search for the words on the console
// finds the line of code. What several messages share are the rules around them. A text by which
// another program finds its place on the console is a constant in the header of what prints it.
#pragma once

#include <fmt/format.h>
#include <string_view>
#include <utility>

namespace lcp::console {

void text(std::string_view words); // without a line end
void line(std::string_view words = {});

template <class... Args> void print(fmt::format_string<Args...> form, Args&&... args) {
  line(fmt::format(form, std::forward<Args>(args)...));
}

void rule(char sign, int length); // a line of one sign: asterisks, equal signs, hyphens
constexpr int STARS = 43;         // length of the usual line of asterisks

// The usual frame: an empty line, asterisks and "Corvo.exe: ERROR" before the message lines,
// asterisks behind them. The caller ends the run.
void openStars();
void closeStars();

// Once, at the start of the process: a write that fails is an error that the writer sees, for files
// and console alike, and no signal ends the run (closed pipe, file size limit). A standard
// descriptor that came closed is occupied, so that no output file takes the console's place.
void prepare();

constexpr std::string_view WARNINGMARK = "*WARNING*"; // ahead of most warnings

// One line on the error stream, for what the console has no words for: "corvo: note: " and a hint,
// or "corvo: warning: " and what in the input or the result is likely wrong. Neither changes the
// run, nor does a stream that does not take it.
constexpr std::string_view WARNINGHEAD = "corvo: warning: ";
void note(std::string_view words);
void warning(std::string_view words);

// Writes out what was collected. False when the standard output did not take it.
bool flush();

} // namespace lcp::console
