#include "store/rundata.h"

namespace lcp {

RunData RUNDATA;

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
  halo = {};
}

} // namespace lcp
