// Strands of radius s in a conductor of radius R: their centres lie on circles, the outermost of
// radius R - s, on which pi / asin(s / (R - s)) of them touch each other. The metal of all is n s^2
// of R^2, 0.65 to 0.8 for round strands, up to 0.95 for shaped ones, less where a core of steel is
// not counted or the conductor is hollow.
#include "companions/check/strand_rules.h"

#include "base/constants.h"
#include "companions/check/materials.h"
#include "companions/check/traced.h"
#include "store/rundata.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace lcp::companions {

namespace {

constexpr double FULLEST = 1.0, EMPTIEST = 0.3; // part of the cross-section that strands fill
constexpr double USUALFILL = 0.7;
constexpr double COMPACTED = 1.12; // strands that were rolled lie closer than round ones

// How many strands touch each other on the outermost circle.
double roomOutside(double R, double s) {
  return R > 2 * s ? PI / std::asin(s / (R - s)) : R >= s ? 2 : 0;
}

std::string room(double R, double s) {
  const double strands = roomOutside(R, s);
  return strands > 2 ? fmt::format("; there is room for {:.0f}", std::floor(strands)) : "";
}

} // namespace

void strandRules(Findings& findings, int i, int section, const std::string& name) {
  const ConductorTable& C = RUNDATA.cond;
  const double R = C.CRAD[i], s = C.CSTRAD[i], outer = C.CNOUT[i], total = C.CNTOT[i];
  if (!(s > 0) || !(R > 0) || C.CTUBE[i]) return; // a tube does not use its strands
  const double fill = total * s * s / (R * R);
  const int line = lineOrHeading(&C.CSTRAD, section), outerLine = outerStrandLine(section);
  if (outer > total) {
    addOnce(findings, outerLine, Kind::Strands, name,
            fmt::format("{:g} outer strands are more than {:g} in all", outer, total), room(R, s));
  } else if (outer > roomOutside(R, s) * COMPACTED) {
    addOnce(findings, outerLine, Kind::Strands, name,
            fmt::format("{:g} outer strands of radius {:.4g} m do not fit around {:.4g} m", outer,
                        s, R),
            room(R, s));
  }
  if (fill > FULLEST || fill < EMPTIEST) {
    const double usual = R * std::sqrt(USUALFILL / std::max(total, 1.0));
    addOnce(findings, line, Kind::Strands, name,
            fmt::format("{:g} strands of radius {:.4g} m fill {:.3g} of a conductor of {:.4g} m",
                        total, s, fill, R),
            fmt::format("; a strand radius of about {:.2g} would fill 0.7", usual));
  }
}

} // namespace lcp::companions
