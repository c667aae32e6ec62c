// The frequency dependent (mode) model: surge impedance, attenuation with its travel time, and row
// of the current transformation of each mode, fitted one by one.
#pragma once

#include "fit/fit_store.h"

#include <string_view>

namespace lcp {

// On the console, ahead of a line whose first number is the error, a fraction.
constexpr std::string_view SURGELINE = "Mode {} Surge Impedance:";
constexpr std::string_view ATTENUATIONLINE = "Mode {} Attenuation Constant:";

// All functions of all modes, below the heading of the lines that the fits print.
void fitModes();
void printModeFitsHeading();

// Each fits its function of mode i over the NFUSE grid points of the solve store and leaves the
// outcome in MODEMODEL. The travel time of the mode becomes the delay found (TAUMS, ms), and the
// angle of its propagation function that without the delay (HARG, degrees, above -360 up to 0).
void fitSurgeImpedance(int i);
void fitAttenuation(int i);

// The stored angle of mode i loses the part of the delay TAU, s, and ends above -360, up to 0.
void turnBack(int i, double TAU);

// The sampled magnitude of the element becomes negative, and its angle turned by 180 degrees, when
// the real part is not positive on the mean. With a constant transformation the element is that
// signed magnitude at the constant transform step, without poles; else it is fitted.
void fitTransformElement(int i, int r);

// Its first part, the sign alone; true when with a constant transformation that is all, and the
// element stands in MODEMODEL.
bool constantElement(int i, int r);

} // namespace lcp
