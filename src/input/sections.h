// The sections of the description file, one routine per state.
#pragma once

namespace lcp {

// Each handles READER.LINE, which is neither the section's closing mark nor consumed by the state
// machine. It returns false if no key of the section matches; the line is then checked for a
// comment. Errors end the run, through the common error exit or with a message of their own.
bool summaryLine();
bool towerLine();
bool circuitLine();
bool groundWireLine();
bool subConductorLine();
bool groundDataLine();
bool bergeronLine();
bool fittedModelLine();
bool displayLine();
bool haloLine();
bool numericsLine();
bool coaxLine();
bool pipeLine();
bool fourWireLine();

// Complete the conductor table at the closing mark of a circuit or a ground-wire group.
void finishCircuit();
void finishGroundWires();

// Completes a coax section in a pipe: the cable is marked as inside the pipe, and the pipe section
// continues.
void finishCoax();

} // namespace lcp
