#include "input/cable_hints.h"

#include "base/console.h"
#include "input/reader_store.h"
#include "input/trace_store.h"
#include "store/rundata.h"

#include <algorithm>

namespace lcp {

namespace {

struct GroundFlag {
  std::string_view key;
  bool Cable::*flag;
};

// Flags of conductors 2, 3 and 4.
constexpr GroundFlag GROUNDFLAGS[] = {{"Eliminate First Concentric Layer", &Cable::CBELIM1},
                                      {"Eliminate Second Concentric Layer", &Cable::CBELIM2},
                                      {"Eliminate Third Concentric Layer", &Cable::CBELIM3}};

// If the system has a crossbonding group, crossbonding also grounds the sheath.
bool groundsByCrossbonding(const Cable& C) {
  const CableTable& T = RUNDATA.cable;
  const bool grounds = C.CBGLAST == GROUNDNOTHING || C.CBGLAST == GROUNDCHOSEN;
  return C.CBXBOND[1] == 1 && grounds &&
         std::any_of(T.CB.entries.begin(), T.CB.entries.begin() + T.NCABLE,
                     [](const Cable& other) { return other.CBGROUP != 0; });
}

} // namespace

std::vector<LayerFlag> flagsWithoutLayer() {
  std::vector<LayerFlag> flags;
  for (int c = 1; c <= RUNDATA.cable.NCABLE; ++c) {
    const Cable& C = RUNDATA.cable.CB[c];
    if (READER.identicalCables && C.CBPIPE != 0 && c != READER.masterCable) continue; // a copy
    int conductor = 1;
    for (const auto& [key, flag] : GROUNDFLAGS) {
      if (++conductor > C.conductors() && C.CBGLAST == GROUNDCHOSEN && C.*flag)
        flags.push_back({c, key, &(READER.openCable.*flag)});
    }
    if (C.conductors() == 1 && groundsByCrossbonding(C))
      flags.push_back({c, "Conductor 2 Crossbonded", &READER.openCable.CBXBOND[1]});
  }
  return flags;
}

int cablesInPipe() {
  const CableTable& T = RUNDATA.cable;
  return static_cast<int>(std::count_if(T.CB.entries.begin(), T.CB.entries.begin() + T.NCABLE,
                                        [](const Cable& C) { return C.CBPIPE != 0; }));
}

void noteCableHints() {
  if (tracing() || RUNDATA.run.ISCABLE != CABLESYSTEM) return;
  const std::string_view file = RUNDATA.run.FNAME.text();
  const int said = RUNDATA.cable.pipe.PIPENIN, there = cablesInPipe();
  if (said != there && RUNDATA.cable.PIPEF) {
    console::warning(fmt::format(
        "{}: Number of Inner Cables is {}, but the Coax Cable sections in the pipe count: {}", file,
        said, there));
  }
  for (const LayerFlag& flag : flagsWithoutLayer()) {
    console::warning(fmt::format("{}: {} of cable {} does nothing: it has no such layer", file,
                                 flag.key, flag.cable));
  }
}

} // namespace lcp
