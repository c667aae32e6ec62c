// Section "Coax Cable", at the top level or in a pipe.
#include "base/console.h"
#include "base/constants.h"
#include "input/key_rows.h"
#include "input/open_cable.h"
#include "input/reader_store.h"
#include "input/sections.h"
#include "store/rundata.h"

#include <array>
#include <cmath>
#include <limits>

namespace lcp {

namespace {

constexpr double NOHOLE = 1e-10; // m

enum Rule { NUMBER = 1, POSITION, LAYERS, AERIAL, COREINNER };

constexpr KeyRow rows[] = {
    itemsKey("Cable Number", NUMBER).leading(),
    itemsKey("P1", POSITION).taking(2).in("m"),
    integerKey("Layers", &READER.droppedInteger).then(LAYERS),
    setBy1Key("Bessel Based Solution", &READER.openCable.CBBESSEL),
    setBy1Key("Overhead Cable", &READER.openCable.CBOVHD).then(AERIAL),
    realKey("Aerial Shunt Conductance", &READER.openCable.CBGAER).in("S/m"),
    integerKey("Ground Last Layer", &READER.openCable.CBGLAST),
    setBy1Key("Eliminate First Concentric Layer", &READER.openCable.CBELIM1),
    setBy1Key("Eliminate Second Concentric Layer", &READER.openCable.CBELIM2),
    setBy1Key("Eliminate Third Concentric Layer", &READER.openCable.CBELIM3),
    realKey("Frequency for loss tangent", &READER.openCable.CBFTAN).in("Hz"),
    realKey("Conductor Inner Radius", &READER.openCable.CBRAD[RADCOREINNER])
        .in("m")
        .then(COREINNER),
    realKey("Conductor Outer Radius", &READER.openCable.CBRAD[RADCORE]).in("m"),
    realKey("Conductor Resistivity", &READER.openCable.CBRHO[0]).in("ohm m"),
    realKey("Conductor Permeability", &READER.openCable.CBMU[0]).in("1"),
    realKey("Insulator 1 Outer Radius", &READER.openCable.CBRAD[RADINSULATOR1]).in("m"),
    realKey("Insulator 1 Relative Permittivity", &READER.openCable.CBEPS[0]).in("1"),
    realKey("Insulator 1 Relative Permeability", &READER.openCable.CBMU[1]).in("1"),
    realKey("Insulator 1 Loss Tangent", &READER.openCable.CBTAND[0]).in("1"),
    realKey("Sheath Outer Radius", &READER.openCable.CBRAD[RADSHEATH]).in("m"),
    realKey("Sheath Resistivity", &READER.openCable.CBRHO[1]).in("ohm m"),
    realKey("Sheath Permeability", &READER.openCable.CBMU[2]).in("1"),
    realKey("Insulator 2 Outer Radius", &READER.openCable.CBRAD[RADINSULATOR2]).in("m"),
    realKey("Insulator 2 Relative Permittivity", &READER.openCable.CBEPS[1]).in("1"),
    realKey("Insulator 2 Relative Permeability", &READER.openCable.CBMU[3]).in("1"),
    realKey("Insulator 2 Loss Tangent", &READER.openCable.CBTAND[1]).in("1"),
    setBy1Key("Semi-conducting layers", &READER.openCable.CBSEMI),
    realKey("Inner semi-conductor layer thickness", &READER.openCable.CBSEMII).in("m"),
    realKey("Outer semi-conductor layer thickness", &READER.openCable.CBSEMIO).in("m"),
    realKey("Armour Outer Radius", &READER.openCable.CBRAD[RADARMOUR]).in("m"),
    realKey("Armour Resistivity", &READER.openCable.CBRHO[2]).in("ohm m"),
    realKey("Armour Permeability", &READER.openCable.CBMU[4]).in("1"),
    realKey("Insulator 3 Outer Radius", &READER.openCable.CBRAD[RADINSULATOR3]).in("m"),
    realKey("Insulator 3 Relative Permittivity", &READER.openCable.CBEPS[2]).in("1"),
    realKey("Insulator 3 Relative Permeability", &READER.openCable.CBMU[5]).in("1"),
    realKey("Insulator 3 Loss Tangent", &READER.openCable.CBTAND[2]).in("1"),
    realKey("Outside Cond Outer Radius", &READER.openCable.CBRAD[RADOUTSIDE]).in("m"),
    realKey("Outside Cond Resistivity", &READER.openCable.CBRHO[3]).in("ohm m"),
    realKey("Outside Cond Permeability", &READER.openCable.CBMU[6]).in("1"),
    realKey("Insulator 4 Outer Radius", &READER.openCable.CBRAD[RADINSULATOR4]).in("m"),
    realKey("Insulator 4 Relative Permittivity", &READER.openCable.CBEPS[3]).in("1"),
    realKey("Insulator 4 Relative Permeability", &READER.openCable.CBMU[7]).in("1"),
    realKey("Insulator 4 Loss Tangent", &READER.openCable.CBTAND[3]).in("1"),
    integerKey("Cable Group", &READER.openCable.CBGROUP),
    integerKey("Conductor 1 Transposed", &READER.openCable.CBXBOND[0]),
    integerKey("Conductor 2 Crossbonded", &READER.openCable.CBXBOND[1]),
    integerKey("Conductor 3 Transposed", &READER.openCable.CBXBOND[2]),
    integerKey("Conductor 4 Transposed", &READER.openCable.CBXBOND[3]),
    markKey("Name", NORULE),
};
static_assert(noRowHidden(rows));

// Reads x and y; in a pipe also distance and angle (degrees) from the pipe's centre.
void readPosition(const KeyRow& key) {
  Cable& C = READER.openCable;
  const double missing = std::numeric_limits<double>::quiet_NaN();
  std::array<double, 4> p{C.CBX, C.CBY, C.CBPR, missing};
  const std::size_t many = READER.INPIPE ? 4 : 2;
  if (!readReals(valueField(key, READER.LINE), std::span(p).first(many))) readError(NUMBERDUE);
  C.CBX = p[0];
  C.CBY = p[1];
  C.CBPR = p[2];
  if (!std::isnan(p[3])) C.CBPTH = p[3] * PI / 180.0;
}

void takeLayers(int around) {
  if (around < 0 || around > MOSTLAYERS) {
    openCableError();
    console::print("Data For Cable ({}) ", READER.CURCABLE);
    console::line("is Invalid!");
    closeCableError();
  }
  if (around == 0 && READER.openCable.CBOVHD) READER.openCable.CBBARE = true;
  READER.openCable.CBNLAY = around + 1;
}

void applyRule(const KeyRow& key, Got got) {
  Cable& C = READER.openCable;
  const bool value = got == Got::Value;
  switch (key.rule) {
  case NUMBER: openCableNumber(key); break;
  case POSITION: readPosition(key); break;
  case LAYERS:
    if (value) takeLayers(READER.droppedInteger);
    break;
  case AERIAL:
    if (value && C.CBOVHD && READER.CURCABLE != 0) RUNDATA.cable.ANYOVHD = true;
    break;
  case COREINNER:
    if (value && C.CBRAD[RADCOREINNER] <= NOHOLE) C.CBSOLID = true;
    break;
  default: break;
  }
}

} // namespace

bool coaxLine() {
  const KeyRow* key = findKey(rows, READER.LINE);
  if (key == nullptr) return false;
  applyRule(*key, readKey(*key, READER.LINE));
  storeOpenCable();
  return true;
}

void finishCoax() {
  if (!READER.INPIPE) return;
  READER.INPIPE = false;
  READER.RSTATE = State::Pipe;
  READER.openCable.CBPIPE = READER.CURPIPE;
  storeOpenCable();
  if (READER.masterCable == 0) READER.masterCable = READER.CURCABLE;
}

} // namespace lcp
