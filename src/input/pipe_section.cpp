// Section "Pipe-Type Cable".
//
// There is at most one pipe, so its keys need no table.
#include "base/console.h"
#include "input/key_rows.h"
#include "input/reader_store.h"
#include "input/rule_frame.h"
#include "input/sections.h"
#include "store/rundata.h"

#include <array>

namespace lcp {

namespace {

enum Rule { NUMBER = 1, CENTRE, AERIAL, OPENCOAX };

constexpr KeyRow rows[] = {
    integerKey("Pipe Number", &READER.droppedInteger).then(NUMBER),
    itemsKey("P1", CENTRE).at(5).taking(2).in("m"),
    integerKey("Number of Inner Cables", &RUNDATA.cable.pipe.PIPENIN),
    realKey("Inner Insulator Outer Radius", &RUNDATA.cable.pipe.PIPERI).in("m"),
    realKey("Inner Ins. Relative Permittivity", &RUNDATA.cable.pipe.PIPEEPSI).in("1"),
    realKey("Inner Ins. Relative Permeability", &RUNDATA.cable.pipe.PIPEMUI).in("1"),
    realKey("Inner Ins. Loss Tangent", &RUNDATA.cable.pipe.PIPETANI).in("1"),
    realKey("Conductor Outer Radius", &RUNDATA.cable.pipe.PIPERC).in("m"),
    realKey("Conductor Resistivity", &RUNDATA.cable.pipe.PIPERHO).in("ohm m"),
    realKey("Conductor Permeability", &RUNDATA.cable.pipe.PIPEMU).in("1"),
    realKey("Outer Insulator Outer Radius", &RUNDATA.cable.pipe.PIPERO).in("m"),
    realKey("Outer Ins. Relative Permittivity", &RUNDATA.cable.pipe.PIPEEPSO).in("1"),
    realKey("Outer Ins. Relative Permeability", &RUNDATA.cable.pipe.PIPEMUO).in("1"),
    realKey("Outer Ins. Loss Tangent", &RUNDATA.cable.pipe.PIPETANO).in("1"),
    realKey("Frequency for loss tangent", &RUNDATA.cable.pipe.PIPEFTAN).in("Hz"),
    integerKey("Ground Pipe", &RUNDATA.cable.pipe.PIPEGND),
    setBy1Key("Identical Cables", &READER.identicalCables),
    integerKey("Outer Insulator Layer", &RUNDATA.cable.pipe.PIPEOUTL),
    setBy1Key("Overhead Pipe", &RUNDATA.cable.pipe.PIPEOVHD).then(AERIAL),
    markKey("Coax Cable", OPENCOAX).many().behind("Pipe Number"),
};
static_assert(noRowHidden(rows));

void takePipeNumber(int n) {
  PipeRecord& P = RUNDATA.cable.pipe;
  const bool known = n >= 1 && n <= MAXPIPE;
  if (known && P.PIPEUSED == 0) {
    READER.CURPIPE = P.PIPEUSED = n;
    return;
  }
  openRules();
  if (known) {
    console::print("Data for pipe {} has already been entered.", n);
    console::line("Please ensure that each pipe has a unique number.");
  } else {
    console::print("Incorrect pipe number entered {}.", n);
    console::print("Pipe number must be > 0 and <= {}", MAXPIPE);
  }
  closeRules();
  readError();
}

void readCentre(const KeyRow& key) {
  PipeRecord& P = RUNDATA.cable.pipe;
  std::array<double, 2> p{P.PIPEX, P.PIPEY};
  if (!readReals(valueField(key, READER.LINE), p)) readError(NUMBERDUE);
  P.PIPEX = p[0];
  P.PIPEY = p[1];
}

void openCoax() {
  READER.INPIPE = true;
  ++RUNDATA.cable.NCABLE;
  if (takeOpeningBrace()) READER.RSTATE = State::CoaxCable;
}

} // namespace

bool pipeLine() {
  const KeyRow* key = findKey(rows, READER.LINE);
  if (key == nullptr) return false;
  const Got got = readKey(*key, READER.LINE);
  const PipeRecord& P = RUNDATA.cable.pipe;
  switch (key->rule) {
  case NUMBER:
    if (got == Got::Value) takePipeNumber(READER.droppedInteger);
    break;
  case CENTRE: readCentre(*key); break;
  case AERIAL:
    if (got == Got::Value && P.PIPEOVHD) RUNDATA.cable.ANYOVHD = true;
    break;
  case OPENCOAX: openCoax(); break;
  default: break;
  }
  return true;
}

} // namespace lcp
