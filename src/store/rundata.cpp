#include "store/rundata.h"

namespace lcp {

constinit RunData RUNDATA;

void RunData::resetInput() {
  line = {};
  cond = {};
  ground = {};
  cable = {};
  model = {};
  bergeron = {};
  flags = {};
  fit = {};
  passivity = {};
  manual = {};
  display = {};
  numerics = {};
  halo = {};
}

void RunData::setConductors(int NC, int NCOND) {
  line.NC = NC;
  cond.NCOND = NCOND;
}

void RunData::setUnitBases() { display.VBASEDISP = display.MVABASEDISP = 1.0; }

void warn() { RUNDATA.run.WARNFLAG = true; }

} // namespace lcp
