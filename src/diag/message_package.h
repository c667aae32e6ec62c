// Messages of the eigen package: reports of three levels, the stack of routine names for the
// traceback, and the stop that prints the version.
#pragma once

#include <string_view>

namespace lcp {

constexpr int NAMESTKSIZE = 100; // depth of the stack of routine names

// Actions of ERRMSG.
constexpr int MSGWARNING = 1; // report and continue
constexpr int MSGERROR = 2;   // report as an error and continue
constexpr int MSGFATAL = 3;   // report, print the traceback, end the run with exit status 12

// Codes of BAKTRC.
constexpr int STACKPUSH = 1;
constexpr int STACKPOP = -1;
constexpr int STACKPRINT = 0;

constexpr std::string_view WARNINGREPORT = "-*** WARNING: {}: {}--Execution continuing. ***";

// Reports a text from a routine in one line of at most 132 characters. Any other action is reported
// as an error itself and ends the run with exit status 12, without a traceback.
void ERRMSG(std::string_view name, std::string_view text, int action);

// Pushes a routine (6 characters of its name) and its library (20 characters) onto the name stack,
// pops the last one, or prints the stack. Pushing onto a full stack, popping an empty one and any
// other code end the run with exit status 12.
void BAKTRC(std::string_view name, std::string_view library, int code);

// Prints the version line and ends the run according to the highest level so far: 0 returns, up to
// 3 exits with status 4, up to 8 with 8, up to 12 with 12, above that with 16.
void RUNSTOP(int level);

} // namespace lcp
