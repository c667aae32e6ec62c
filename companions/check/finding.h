// The kinds of findings of corvo-check, and the findings on one description.
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
  ChoiceValue,
  UnusualNumber,
  ReaderWarning,
  ReaderEnds,
  ZeroWeight,
  FallingGrid,
  DcConductance,
  ZeroPassivityError,
  ZeroTolerance,
  NoPassivityGrid,
  NoModel,
  RunEnds,
  SolveEnds,
  RadiusAboveHeight,
  SagAboveHeight,
  Clearance,
  Spacing,
  Hole,
  Strands,
  Conductance,
  NodeCount,
  Node,
  Resistivity,
  Permittivity,
  Permeability,
  LossTangent,
  Depth,
  Soil,
  Touching,
  TightBundle,
  NoWireAbove,
  EarthFormula,
  InnerCables,
  AbsentLayer,
  LayerRadius,
  LayerThickness,
  WideCore,
  Overlap,
  PipePlace,
  CableGroup,
  EnteredUnit,
  EnteredValue,
  BuriedClosedForm,
  AerialLowFrequency,
  EarthError
};

struct KindRow {
  Kind kind;
  std::string_view id;
  std::string_view severity; // error: not what the line says; warning: unlikely; note: a choice
  std::string_view text;     // the sentence, with up to three places for words
};

// The table row of a kind.
const KindRow& rowOf(Kind kind);

struct CheckFinding {
  int line; // line number; 0 for the whole file
  Kind kind;
  std::string text;
};

using Findings = std::vector<CheckFinding>;

// Adds a finding unless it is already there; a, b and c fill the places in the sentence of its
// kind.
void add(Findings& findings, int line, Kind kind, std::string_view a = {}, std::string_view b = {},
         std::string_view c = {});

// Sorts by line number, the whole file (0) first; within a line the order is kept.
void sortFindings(Findings& findings);

} // namespace lcp::companions
