#include "companions/verify/remedies.h"

#include "store/rundata.h"

#include <fmt/format.h>

namespace lcp::companions {

namespace {

bool has(const Finding& f, std::string_view words) {
  return f.where.find(words) != std::string::npos;
}

std::string betterFits() {
  const NumericalOptions& N = RUNDATA.numerics;
  if (!N.IMPROVEDFITS) return "Improved Fits : 1, or more poles and a smaller error";
  return "more poles, or a larger fitting error";
}

std::string betterModes() {
  return RUNDATA.numerics.IMPROVEDMODES ? "another start frequency" : "Improved Modes : 1";
}

std::string ofBand(const Finding& f) {
  const FitOptions& F = RUNDATA.fit;
  if (has(f, "zero") && RUNDATA.model.fitsPhases() && F.DCCORR != 2)
    return "DC Correction Type : 2";
  if (has(f, "below") || has(f, "zero"))
    return fmt::format("Curve Fitting Start Frequency : {:.3g}", F.FSTART / 10);
  if (has(f, "above")) return fmt::format("Curve Fitting End Frequency : {:.3g}", F.FEND * 10);
  return betterFits();
}

// A model that is what it is: the remedy is another one.
std::string otherModel() {
  if (!RUNDATA.model.fitted() || RUNDATA.model.fitsSeries())
    return "the frequency dependent (phase) model";
  return betterFits();
}

std::string remedyOf(const Finding& f) {
  const std::string& s = f.subject;
  if (s == "length" || s == "file" || s == "shunt" || s == "series")
    return "solve this description again";
  if (s == "modes" || s == "T" || s == "vector") return betterModes();
  if (s == "growth" && !RUNDATA.model.fitsPhases()) return ofBand({"growth", "below"});
  if (s == "passivity" || s == "growth")
    return RUNDATA.numerics.IMPROVEDPASSIVITY
               ? "more poles, or a larger error for passivity"
               : "Maximum iterations for passivity : 20 with Improved Passivity : 1";
  if (s == "line") return "the materials, which generate power";
  if (s == "in time") return has(f, "of the step") ? "" : otherModel();
  if (s == "terminals") {
    if (!RUNDATA.model.fitted() || RUNDATA.model.fitsSeries()) return otherModel();
    return has(f, "zero") ? ofBand(f) : betterFits();
  }
  if (s == "delay") return "Improved Fits : 1";
  if (s == "poles") return betterFits();
  return ofBand(f);
}

} // namespace

void addRemedies(std::vector<Finding>& findings) {
  for (Finding& f : findings) {
    if (f.verdict == Verdict::BAD) f.remedy = remedyOf(f);
  }
}

} // namespace lcp::companions
