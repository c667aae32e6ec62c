// Messages of the eigen package: reports of three levels, the stack of routine names behind their
// traceback, and the stop with the version of what ran.
#pragma once

#include <string_view>

namespace lcp {

constexpr int NAMESTKSIZE = 100; // depth of the stack of routine names

// Actions of ERRMSG.
constexpr int MSGWARNING = 1; // report and go on
constexpr int MSGERROR = 2;   // the same, as an error
constexpr int MSGFATAL = 3;   // report, traceback, end of the run with exit status 12

// Codes of BAKTRC.
constexpr int STACKPUSH = 1;
constexpr int STACKPOP = -1;
constexpr int STACKPRINT = 0;

constexpr std::string_view WARNINGREPORT = "-*** WARNING: {}: {}--Execution continuing. ***";

// Reports a text of a routine in a line of at most 132 characters. An action other than these
// three is reported and ends the run like a fatal one, without a traceback.
void ERRMSG(std::string_view name, std::string_view text, int action);

// Puts a routine (6 characters of its name) of a library (20 characters) on the stack of names at
// its entry, takes it off at its exit, or prints the stack. A stack that is full or empty ends the
// run with exit status 12, and so does any other code.
void BAKTRC(std::string_view name, std::string_view library, int code);

// Writes the version line and ends the run according to the highest level so far: 0 goes on, up to
// 3 exit status 4, up to 8 status 8, up to 12 status 12, above it 16.
void RUNSTOP(int level);

} // namespace lcp
