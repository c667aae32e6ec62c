// Four-Wire Cable.
#include "input/key_rows.h"
#include "input/open_cable.h"
#include "input/reader_state.h"
#include "input/sections.h"
#include "store/rundata.h"

#include <array>

namespace lcp {

namespace {

enum Rule { NUMBER = 1, POSITION };

constexpr KeyRow rows[] = {
    bareKey("Cable Number", NUMBER),
    bareKey("P1", POSITION),
    realKey("Nominal Conductor Area", &RUNDATA.cable.fourWire.FWAREA),
    realKey("Insulator Thickness", &RUNDATA.cable.fourWire.FWTINS),
    realKey("Polyester Tape Thickness", &RUNDATA.cable.fourWire.FWTTAPE),
    realKey("Outer Mantle Thickness", &RUNDATA.cable.fourWire.FWTMANT),
    realKey("Conductor Resistivity", &RUNDATA.cable.fourWire.FWRHO),
    realKey("Conductor Permeability", &READER.dropped),
    realKey("Insulator Relative Permittivity", &RUNDATA.cable.fourWire.FWEPSI),
    realKey("Insulator Permeability", &READER.dropped),
    realKey("Polyester Tape Relative Permittivity", &RUNDATA.cable.fourWire.FWEPST),
    realKey("Polyester Tape Permeability", &READER.dropped),
    realKey("Outer Mantle Relative Permittivity", &RUNDATA.cable.fourWire.FWEPSM),
    realKey("Outer Mantle Permeability", &READER.dropped),
    bareKey("Name", NORULE),
};
static_assert(noRowHidden(rows));

void readPosition(const KeyRow& key) {
  Cable& C = READER.openCable;
  std::array<double, 2> p{C.CBX, C.CBY};
  if (!readReals(valueField(key, READER.LINE), p)) readError();
  C.CBX = p[0];
  C.CBY = p[1];
}

} // namespace

bool fourWireLine() {
  const KeyRow* key = findKey(rows, READER.LINE);
  if (key == nullptr) return false;
  readKey(*key, READER.LINE);
  if (key->rule == NUMBER) openCableNumber(*key);
  if (key->rule == POSITION) readPosition(*key);
  storeOpenCable();
  return true;
}

} // namespace lcp
