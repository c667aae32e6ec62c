#include "companions/check/fit_rules.h"

#include "companions/check/materials.h"
#include "companions/check/traced.h"
#include "store/rundata.h"

#include <algorithm>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr int MOSTINCREMENTS = 1012;
constexpr double MOSTERROR = 50; // %

// Railways, public networks, ships and aircraft; a direct current line has any that is low.
bool usualFrequency(double f) {
  return f <= 2 || (f >= 15 && f <= 70) || f == 100 || (f >= 380 && f <= 420);
}

std::string betterFrequency(double f) {
  for (const double factor : {10.0, 0.1, 1e-3, 1e3, 100.0, 0.01}) {
    for (const double usual : {50.0, 60.0, 25.0}) {
      if (std::max(f * factor, usual) <= 1.001 * std::min(f * factor, usual))
        return fmt::format("; {:g} would be", usual);
    }
  }
  return {};
}

int modelLine(const void* target) {
  const int line = lineOf(target);
  return line != 0 ? line
                   : std::max(headingLine("Frequency Dep."), headingLine("MFDTD Model Options"));
}

void refused(Findings& findings, const void* target, std::string_view key, double value,
             std::string_view usual) {
  add(findings, modelLine(target), Kind::RunEnds, key, number(value), usual);
}

void range(Findings& findings) {
  const FitOptions& F = RUNDATA.fit;
  const double f = RUNDATA.line.SSFREQ, low = std::min(F.FSTART, F.FEND),
               high = std::max(F.FSTART, F.FEND);
  for (const auto& [value, key] :
       {std::pair<const double&, std::string_view>(F.FSTART, "Curve Fitting Start Frequency"),
        {F.FEND, "Curve Fitting End Frequency"}}) {
    if (!(value > 0)) refused(findings, &value, key, value, "above 0, such as 0.5 to 1E6");
  }
  if (F.FSTART == F.FEND && !RUNDATA.model.fitsSeries()) {
    refused(findings, &F.FEND, "Curve Fitting End Frequency", F.FEND,
            "above the start, such as 1E6");
  } else if (low > 0 && f > 2 && (f < low || f > high)) {
    const bool start = f < low;
    add(findings, modelLine(start ? &F.FSTART : &F.FEND), Kind::UnusualNumber,
        start ? "Curve Fitting Start Frequency" : "Curve Fitting End Frequency",
        number(start ? F.FSTART : F.FEND),
        fmt::format("{} the steady state frequency of {:g} Hz; {} would be",
                    start ? "below" : "above", f, start ? "0.5" : "1E6"));
  }
  if (F.NFINC > MOSTINCREMENTS) {
    refused(findings, &F.NFINC, "Total Number of Frequency Increments", F.NFINC,
            fmt::format("100 to {}", MOSTINCREMENTS));
  }
  if (!(F.FCT > 0)) {
    refused(findings, &F.FCT, "Frequency to Calculate Constant Transform", F.FCT,
            "above 0, such as 2000");
  }
}

void poles(Findings& findings) {
  const FitOptions& F = RUNDATA.fit;
  const ModelChoice& M = RUNDATA.model;
  const bool phases = M.fitsPhases(), propagation = phases || M.fitsModes();
  const struct {
    bool used;
    const int& poles;
    const double& error;
    std::string_view name;
  } fits[] = {{!phases, F.MAXPZ, F.ERRZ, M.fitsSeries() ? "Series Impedance" : "Surge Impedance"},
              {phases, F.MAXPY, F.ERRY, "Surge Admittance"},
              {propagation, F.MAXPA, F.ERRA, "Attenuation Constant"}};
  for (const auto& fit : fits) {
    if (!fit.used) continue;
    if (fit.poles < 1 || fit.poles > NPMAX) {
      add(findings, modelLine(&fit.poles), Kind::UnusualNumber,
          fmt::format("Maximum # of Poles for {} Fit", fit.name), std::to_string(fit.poles),
          fmt::format("10 to 30; what is not 1 to {} counts as the nearer of the two", NPMAX));
    }
    if (!(fit.error > 0) || fit.error > MOSTERROR) {
      add(findings, modelLine(&fit.error), Kind::UnusualNumber,
          fmt::format("Maximum Fitting Error (%) for {}", fit.name), number(fit.error),
          "0.1 to 5 %" + (fit.error > 0 ? powerOfTen(fit.error, 0.1, 5) : std::string()));
    }
  }
}

// A limit that another model takes, where that of the own model was left out.
void otherFits(Findings& findings) {
  const FitOptions& F = RUNDATA.fit;
  const bool phases = RUNDATA.model.fitsPhases();
  const struct {
    const void *taken, *given;
    std::string_view key, better;
  } rows[] = {
      {&F.MAXPY, &F.MAXPZ, "Maximum # of Poles for Surge Impedance Fit", "Surge Admittance"},
      {&F.ERRY, &F.ERRZ, "Maximum Fitting Error (%) for Surge Impedance", "Surge Admittance"},
      {&F.MAXPZ, &F.MAXPY, "Maximum # of Poles for Surge Admittance Fit", "Surge Impedance"},
      {&F.ERRZ, &F.ERRY, "Maximum Fitting Error (%) for Surge Admittance", "Surge Impedance"},
  };
  for (const auto& r : rows) {
    const bool ofThisModel = (r.taken == &F.MAXPY || r.taken == &F.ERRY) == phases;
    if (!ofThisModel || lineOf(r.given) == 0 || lineOf(r.taken) != 0) continue;
    add(findings, lineOf(r.given), Kind::NoPlace, r.key,
        fmt::format("this model takes the limits for {}", r.better));
  }
}

} // namespace

void fitRules(Findings& findings) {
  const double& f = RUNDATA.line.SSFREQ;
  const bool used = RUNDATA.run.DATAFMT != ROUTEMULTIPLE;
  if (used && !usualFrequency(f)) {
    add(findings, lineOf(&f), Kind::UnusualNumber, "Steady State Frequency", number(f),
        "50 or 60 Hz" + betterFrequency(f));
  }
  if (!RUNDATA.model.fitted()) return;
  if (used) range(findings);
  poles(findings);
  otherFits(findings);
}

} // namespace lcp::companions
