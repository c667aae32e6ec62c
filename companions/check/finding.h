// What corvo-check can find: a table of kinds, and the findings of one description.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lcp::companions {

enum class Kind {
  CommentKey,
  UnknownLine,
  LongLine,
  LongFile,
  LostCharacter,
  EarlyEnd,
  NoValue,
  FewItems,
  MoreItems,
  CutNumber,
  FlagValue,
  OtherUnit,
  AheadOfNeed,
  Undone,
  Repeated,
  NoPlace,
  ReaderWarning,
  ZeroWeight,
  FallingGrid,
  DcConductance,
  ZeroPassivityError,
  ZeroTolerance,
  NoPassivityGrid,
  NoModel,
  RadiusAboveHeight,
  SagAboveHeight,
  Resistivity,
  Permittivity,
  Permeability,
  Depth,
  Soil,
  Touching,
  TightBundle,
  NoWireAbove,
  EarthFormula,
  InnerCables,
  AbsentLayer,
  BuriedClosedForm,
  AerialLowFrequency
};

struct KindRow {
  Kind kind;
  std::string_view id;
  std::string_view severity; // error: a line is not what it says; warning: unlikely; note: a choice
  std::string_view text;     // the sentence, with up to three places
};

const KindRow& rowOf(Kind kind);

struct CheckFinding {
  int line; // number, 0 for the file as a whole
  Kind kind;
  std::string text;
};

using Findings = std::vector<CheckFinding>;

// Adds a finding; the words go to the places of the kind's sentence. What is there already is not
// added again.
void add(Findings& findings, int line, Kind kind, std::string_view a = {}, std::string_view b = {},
         std::string_view c = {});

// By line number, those of the file as a whole first; in the order found within a line.
void sortFindings(Findings& findings);

} // namespace lcp::companions
