// The sections of the description file: one routine a state, given a line that is neither the
// section's closing mark nor eaten by the state machine.
#pragma once

namespace lcp {

// Each takes READER.LINE. False when no key of the section matches, so that the line goes to the
// comment test; all errors take the common error exit or end the run with their own message.
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

// What the closing marks of a circuit and of a ground-wire group do to the conductor table.
void finishCircuit();
void finishGroundWires();

// ... and that of a coax section in a pipe: the cable lies in the pipe, and the pipe section goes
// on.
void finishCoax();

} // namespace lcp
