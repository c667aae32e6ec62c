// Section "Line Constants Ground Data".
#include "base/console.h"
#include "base/stop.h"
#include "input/key_rows.h"
#include "input/reader_store.h"
#include "input/sections.h"
#include "store/rundata.h"

namespace lcp {

namespace {

enum Rule { EXPONENT = 1, ALLFORMULAS };

constexpr KeyRow rows[] = {
    setBy1Key("Ground Resistivity Type", &RUNDATA.ground.GRTYPE),
    realKey("GroundResistivity", &RUNDATA.ground.GRHO).in("ohm m"),
    realKey("Low Frequency Ground Conductivity", &RUNDATA.ground.GSIGLF).in("S/m"),
    realKey("FD Ground Conductivity and Permitivity", &RUNDATA.ground.GFDSIG).in("S/m"),
    realKey("FD Factor", &RUNDATA.ground.GFDFAC).in("1").then(EXPONENT),
    realKey("GroundPermeability", &RUNDATA.ground.GMUR).in("1"),
    realKey("GroundPermittivity", &RUNDATA.ground.GEPSR).in("1"),
    integerKey("EarthImpedanceFormula", &RUNDATA.ground.EARTHF)
        .then(ALLFORMULAS)
        .undoing("EarthUImpedanceFormula", "EarthMImpedanceFormula"),
    integerKey("EarthUImpedanceFormula", &RUNDATA.ground.EARTHFU),
    integerKey("EarthMImpedanceFormula", &RUNDATA.ground.EARTHFM),
};
static_assert(noRowHidden(rows));

void checkExponent() {
  if (RUNDATA.ground.GFDFAC > 0.0) return;
  noteLine();
  RUNDATA.ground.GFDFAC = 1.0;
  console::line("Error: Frequency-dependent resistivity");
  console::line("       factor must be greater than 0.0.");
  stop(1);
}

} // namespace

bool groundDataLine() {
  const KeyRow* key = findKey(rows, READER.LINE);
  if (key == nullptr) return false;
  const Got got = readKey(*key, READER.LINE);
  Ground& G = RUNDATA.ground;
  if (got != Got::Value) return true;
  if (key->rule == EXPONENT) checkExponent();
  if (key->rule == ALLFORMULAS) G.EARTHFU = G.EARTHFM = G.EARTHF;
  return true;
}

} // namespace lcp
