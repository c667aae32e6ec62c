// The frequency-dependent mode model, fitted function by function.
//
// It consists of surge impedance, attenuation with travel time, and row of the current
// transformation of each mode.
#pragma once

#include "fit/fit_store.h"

#include <string_view>

namespace lcp {

// Console lines followed by a line whose first number is the error, a fraction.
constexpr std::string_view SURGELINE = "Mode {} Surge Impedance:";
constexpr std::string_view ATTENUATIONLINE = "Mode {} Attenuation Constant:";

// fitModes fits all functions of all modes; printModeFitsHeading prints the heading of their lines.
void fitModes();
void printModeFitsHeading();

// Each fits its function of mode i over the NFUSE grid points of the solve store and stores the
// result in MODEMODEL. fitAttenuation also sets the travel time of the mode, TAUMS (ms), to the
// delay found, and HARG to the angle of its propagation function without the delay (degrees, above
// -360 up to 0).
void fitSurgeImpedance(int i);
void fitAttenuation(int i);

// Removes the delay TAU, s, from the stored angle of mode i, which ends above -360, up to 0.
void turnBack(int i, double TAU);

// Makes the sampled magnitude of the element negative, and rotates its angle by 180 degrees, if the
// mean of its real part is not positive. With a constant transformation the element is this signed
// magnitude at the constant-transformation step, without poles; otherwise it is fitted.
void fitTransformElement(int i, int r);

// The first part of this. Returns true if the transformation is constant; the element is then
// complete in MODEMODEL.
bool constantElement(int i, int r);

} // namespace lcp
