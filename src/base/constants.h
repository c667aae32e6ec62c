// Physical and mathematical constants with the exact digits that all results depend on.
#pragma once

namespace lcp {

constexpr double MU0 = 1.256637061435917e-06;      // vacuum permeability, H/m
constexpr double EPS0 = 8.854187818e-12;           // vacuum permittivity, F/m
constexpr double L0 = 1.9999999999999957e-07;      // MU0 / (2 pi), H/m
constexpr double C0 = 5.5632502805066084e-11;      // 2 pi EPS0, F/m
constexpr double MU0EPS0 = 1.1126500561013215e-17; // 1 / (speed of light)^2, s^2/m^2

constexpr double PI = 3.141592653589793;
constexpr double HALFPI14 = 1.5707963267949; // pi / 2 to 14 digits (soil)
constexpr double TWOPI = 6.283185307179586;
constexpr double INVTWOPI = 0.159154943091895; // 1 / (2 pi) to 15 digits
constexpr double DEGREES = 57.29577951308232;  // 180 / pi
constexpr double LIGHTSPEED = 299792458.0;     // m/s

constexpr double PERCENT = 0.01;    // one percent
constexpr double INPERCENT = 100.0; // factor from a fraction to percent
constexpr double MILLI = 0.001;     // one millisecond in s
constexpr double INMILLI = 1000.0;  // one second in ms
constexpr double KM = 1000.0;       // one kilometre in m

} // namespace lcp
