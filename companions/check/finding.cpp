#include "companions/check/finding.h"

#include <algorithm>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr std::string_view ERROR = "error", WARNING = "warning", NOTE = "note";

constexpr KindRow KINDS[] = {
    // lines
    {Kind::CommentKey, "comment-key", WARNING,
     "the line is a comment and has no effect, though it looks like {}"},
    {Kind::UnknownLine, "unknown-line", ERROR, "the line is unknown and ignored{}"},
    {Kind::LongLine, "long-line", WARNING, "what stands behind column {} is not read"},
    {Kind::LongFile, "long-file", WARNING, "only the first {} lines are looked at"},
    {Kind::LostCharacter, "lost-character", ERROR,
     "{} stands where a colon and a blank are skipped, so the value begins behind it: {}"},
    {Kind::EarlyEnd, "early-end", ERROR,
     "the value begins with {}, which leaves it out: {} keeps what it was"},
    {Kind::NoValue, "no-value", WARNING, "{} has no value and keeps what it was"},
    {Kind::FewItems, "few-items", WARNING,
     "{} holds {} of {} values, the others keep what they were"},
    {Kind::MoreItems, "more-items", WARNING,
     "{} takes {} values, the line holds {}: the others are not read"},
    {Kind::CutNumber, "cut-number", ERROR, "the number ends at {}: {} is read"},
    {Kind::FlagValue, "flag-value", WARNING, "{} is 1 for yes; {} counts as no"},
    {Kind::OtherUnit, "other-unit", ERROR,
     "{} takes {}, the line says [{}]: the number is taken as it stands"},
    {Kind::AheadOfNeed, "ahead-of-need", ERROR, "{} must stand behind {}{}"},
    {Kind::Undone, "undone", WARNING, "{} in line {} takes this value back"},
    {Kind::Repeated, "repeated", WARNING,
     "{} was given in line {} already; this line is the one that counts"},
    {Kind::NoPlace, "no-place", WARNING, "{} goes nowhere: {}"},
    {Kind::ChoiceValue, "choice-value", ERROR, "{} is {}, and the choice is among {}"},
    {Kind::UnusualNumber, "unusual-number", WARNING, "{} is {}, usual are {}"},
    {Kind::ReaderEnds, "reader-ends", ERROR, "the reader ends here: {}"},
    {Kind::ReaderWarning, "reader-warning", WARNING, "the reader says: {}"},
    // options that void the result
    {Kind::ZeroWeight, "zero-weight", ERROR,
     "{} is 0: the frequencies {} the steady state frequency do not count in any fit"},
    {Kind::FallingGrid, "falling-grid", WARNING,
     "the fit ends at {} Hz, below its start at {} Hz: its grid falls"},
    {Kind::DcConductance, "dc-conductance", ERROR,
     "the DC correction needs a shunt conductance above 0, and {} has none"},
    {Kind::ZeroPassivityError, "zero-passivity-error", ERROR,
     "Maximum relative error for passivity is 0: every change of the enforcement is dropped"},
    {Kind::ZeroTolerance, "zero-tolerance", ERROR,
     "Eigenvalue tolerence is 0: the enforcement lifts violations to 0 and no further"},
    {Kind::NoPassivityGrid, "no-passivity-grid", ERROR,
     "{} is {}: there are no points, and no violation is found"},
    {Kind::NoModel, "no-model", ERROR,
     "no section chooses a line model, and the run will end there"},
    {Kind::RunEnds, "run-ends", ERROR, "{} is {}, and must be {}: the run will end there"},
    {Kind::SolveEnds, "solve-ends", ERROR, "the first frequency cannot be solved: {}"},
    // physics
    {Kind::RadiusAboveHeight, "radius-above-height", ERROR,
     "the radius of {} is {} m, its average height {} m"},
    {Kind::SagAboveHeight, "sag-above-height", ERROR, "the sag of {} is {} m, its height {} m"},
    {Kind::Clearance, "clearance", WARNING, "{} hangs at {} m, its lowest point at {}"},
    {Kind::Spacing, "spacing", WARNING, "{} are {} m apart{}"},
    {Kind::Hole, "hole", ERROR, "the hole of {} has a radius of {} m, the conductor one of {} m"},
    {Kind::Strands, "strands", ERROR, "{}: {}{}"},
    {Kind::Conductance, "conductance", WARNING,
     "the shunt conductance of {} is {} S/m{}; 1e-11 is usual"},
    {Kind::NodeCount, "node-count", ERROR,
     "Number of Conductors is {}, but phases and kept ground wires count {}"},
    {Kind::Node, "node", ERROR, "{} is connected to node {}, {}"},
    {Kind::Resistivity, "resistivity", WARNING, "the resistivity of {} is {} ohm m, usual are {}"},
    {Kind::Permittivity, "permittivity", ERROR,
     "the relative permittivity of {} is {}, usual are {}"},
    {Kind::Permeability, "permeability", ERROR, "the relative permeability of {} is {}, usual {}"},
    {Kind::LossTangent, "loss-tangent", WARNING, "{} is {}: {}"},
    {Kind::Depth, "depth", ERROR, "the {} of {} is {}"},
    {Kind::Soil, "soil", WARNING,
     "the resistivity of the soil is {} ohm m, usual are 0.1 to 100000{}"},
    {Kind::Touching, "touching", ERROR, "{} and {} are {} m apart, centre to centre: they touch"},
    {Kind::TightBundle, "tight-bundle", ERROR,
     "two sub-conductors of {} are {} m apart, less than the diameter of {} m"},
    {Kind::NoWireAbove, "no-wire-above", NOTE, "no ground wire lies above the phase conductors"},
    // cables
    {Kind::InnerCables, "inner-cables", WARNING,
     "Number of Inner Cables is {}, but the Coax Cable sections in the pipe count: {}"},
    {Kind::AbsentLayer, "absent-layer", WARNING, "{} does nothing: cable {} has no such layer"},
    {Kind::LayerRadius, "layer-radius", ERROR, "the radius of {} is {} m, not above the {}"},
    {Kind::LayerThickness, "layer-thickness", WARNING, "{} is {} m thick, usual are {}"},
    {Kind::WideCore, "wide-core", WARNING,
     "the core of cable {} has {} mm^2 of metal, usual are up to 4000: are its radii {}?"},
    {Kind::Overlap, "overlap", ERROR, "{} are {} m apart, their radii add up to {} m"},
    {Kind::PipePlace, "pipe-place", ERROR,
     "{}, but {}: the checks take x and y, the impedances distance and angle{}"},
    {Kind::CableGroup, "cable-group", ERROR, "{} of group {} {}"},
    // entered data
    {Kind::EnteredUnit, "entered-unit", ERROR,
     "{} takes {} with this format, the line says [{}]: the number is taken as it stands"},
    {Kind::EnteredValue, "entered-value", WARNING, "the {} is {}, usual are {}"},
    // formulas
    {Kind::EarthFormula, "earth-formula", ERROR,
     "{} is {}, which there is not for {}: the run will end there"},
    {Kind::BuriedClosedForm, "buried-closed-form", WARNING,
     "formula 0 between buried cables is used up to {} Hz; above 10000 Hz it can give modes a "
     "gain, "
     "formula 2 and Improved Earth : 1 do not"},
    {Kind::AerialLowFrequency, "aerial-low-frequency", WARNING,
     "formula 2 of aerial cables is used down to {} Hz; below 0.01 Hz it has too little of the "
     "resistance of the earth, Improved Earth : 1 has all of it"},
    {Kind::EarthError, "earth-error", WARNING,
     "formula {} is up to {} off (at {}); Improved Earth : 1 takes the exact integral"},
};

} // namespace

const KindRow& rowOf(Kind kind) {
  return *std::find_if(std::begin(KINDS), std::end(KINDS),
                       [&](const KindRow& row) { return row.kind == kind; });
}

void add(Findings& findings, int line, Kind kind, std::string_view a, std::string_view b,
         std::string_view c) {
  CheckFinding found{line, kind, fmt::format(fmt::runtime(rowOf(kind).text), a, b, c)};
  const bool there = std::any_of(findings.begin(), findings.end(), [&](const CheckFinding& f) {
    return f.line == line && f.kind == kind && f.text == found.text;
  });
  if (!there) findings.push_back(std::move(found));
}

void sortFindings(Findings& findings) {
  std::stable_sort(findings.begin(), findings.end(),
                   [](const CheckFinding& a, const CheckFinding& b) { return a.line < b.line; });
}

} // namespace lcp::companions
