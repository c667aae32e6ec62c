// Section "Four-Wire Cable".
#include "input/key_rows.h"
#include "input/open_cable.h"
#include "input/reader_store.h"
#include "input/sections.h"
#include "store/rundata.h"

#include <array>

namespace lcp {

namespace {

enum Rule { NUMBER = 1, POSITION };

constexpr KeyRow rows[] = {
    itemsKey("Cable Number", NUMBER).leading(),
    itemsKey("P1", POSITION).taking(2).in("m"),
    realKey("Nominal Conductor Area", &RUNDATA.cable.fourWire.FWAREA).in("mm^2"),
    realKey("Insulator Thickness", &RUNDATA.cable.fourWire.FWTINS).in("m"),
    realKey("Polyester Tape Thickness", &RUNDATA.cable.fourWire.FWTTAPE).in("m"),
    realKey("Outer Mantle Thickness", &RUNDATA.cable.fourWire.FWTMANT).in("m"),
    realKey("Conductor Resistivity", &RUNDATA.cable.fourWire.FWRHO).in("ohm m"),
    realKey("Conductor Permeability", &READER.dropped).in("1"),
    realKey("Insulator Relative Permittivity", &RUNDATA.cable.fourWire.FWEPSI).in("1"),
    realKey("Insulator Permeability", &READER.dropped).in("1"),
    realKey("Polyester Tape Relative Permittivity", &RUNDATA.cable.fourWire.FWEPST).in("1"),
    realKey("Polyester Tape Permeability", &READER.dropped).in("1"),
    realKey("Outer Mantle Relative Permittivity", &RUNDATA.cable.fourWire.FWEPSM).in("1"),
    realKey("Outer Mantle Permeability", &READER.dropped).in("1"),
    markKey("Name", NORULE),
};
static_assert(noRowHidden(rows));

void readPosition(const KeyRow& key) {
  Cable& C = READER.openCable;
  std::array<double, 2> p{C.CBX, C.CBY};
  if (!readReals(valueField(key, READER.LINE), p)) readError(NUMBERDUE);
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
