// Version stamp of the eigen package: the release dates of the routines that ran.
#pragma once

namespace lcp {

// Slots of the stamp, one per group of routines.
constexpr int STAMPSLOTS = 10;
constexpr int EIGENSTAMP = 4;   // eigen package
constexpr int MESSAGESTAMP = 5; // reports, name stack, stop
constexpr int UNITSTAMP = 6;    // message unit

// Raises a slot to a date (YYMMDD as a decimal number) if that is later, and returns the slot. A
// date outside 800101 to 991231 or a slot outside 1 to 10 ends the run with exit status 1.
int NVDATE(int date, int index);

// Raises every slot to at least the oldest release of its group and returns the newest date.
int newestStamp();

} // namespace lcp
