// g_datan, g_atan, g_datan2 and the REAL(8) degree and quadrant forms
// g_datand, g_datanq, g_dtan2d, g_dtan2q: arctangents on the x87 partial
// arctangent FPATAN.
//
// FPATAN gives atan(y/x), placed by the signs of both in (-pi, pi], within
// one unit of its 64-bit significand, and handles infinities and NaNs
// itself.  The precision control does not touch it, but it does touch the
// multiplications of the unit forms, so every path runs at 64-bit precision
// and round-to-nearest (x87.h).  The processor's FPATAN is what these
// results rest on: the flavours agree on one machine, and the microcode of
// another processor family may differ in the last extended bit.
//
//   g_datan     atan x = FPATAN(x, 1), returned as FPATAN leaves it, in
//               extended precision (not rounded to double).
//   g_atan      the same on the REAL(4) argument, rounded once to REAL(4).
//   g_datan2    FPATAN(y, x) rounded to double: within 0.5 ulp + 2^-11 ulp.
//   *d, *q      the angle times 180/pi or 2/pi (64-bit constants, one more
//               rounding to 64 bits), rounded to double: within
//               0.5 + 2^-10 ulp, and exact where the angle is a multiple of
//               45 degrees (atand(1) = 45, atan2d(0, -1) = 180, atanq(Inf) = 1),
//               since the extended value is then within 2^-62 of it.
//
// ATAN2 of two zeros (either sign) reports 221 (radians), 1370 (degrees) or
// 1360 (quadrants), direct form: the record names the modifiable copies of
// y and x and describes neither; a retry starts again with both copies;
// without one the result is the quiet NaN (IEEE results) or +0.0.
// Otherwise a -0.0 in either argument counts as +0.0, on purpose:
// atan2(-0.0, -1.0) = +pi like atan2(+0.0, -1.0), atan2(1, -0.0) = +pi/2.
#include "frame/report.h"
#include "frame/special_values.h"
#include "frame/x87.h"
#include "mivor/mivor.h"

namespace mivor::elementary {
namespace {

using x87::ExtendedPrecision;

inline constexpr long double kDegreesPerRadian = 0xe52ee0d31e0fbdc3p-58L;   // 180/pi
inline constexpr long double kQuadrantsPerRadian = 0xa2f9836e4e44152ap-64L; // 2/pi

struct Unit {
    long double per_radian;
    bool radians;
    Error error;
};
inline constexpr Unit kRadians{1.0L, true, Error::atan2_zeros_r8};
inline constexpr Unit kDegrees{kDegreesPerRadian, false, Error::atan2_degree_r8};
inline constexpr Unit kQuadrants{kQuadrantsPerRadian, false, Error::atan2_quadrant_r8};

template <const Unit& u>
inline double angle(double y, double x) {
    ExtendedPrecision scope;
    long double v = x87::fpatan(scope.pin(y + 0.0), scope.pin(x + 0.0));  // -0 counts as +0
    if constexpr (!u.radians) v *= u.per_radian;
    const double r = scope.to_double(v);
    return r;
}

template <const Unit& u>
[[gnu::cold, gnu::noinline]] double both_zero(double y, double x) {
    return report::settle<report::Form::direct>(
        [](double y, double x) -> report::Step<double, double, double> {
            if (!(y == 0.0 && x == 0.0)) return angle<u>(y, x);  // corrected
            return report::fail(u.error, _NaN_D, 0.0).described(report::Describe::none);
        },
        y, x);
}

template <const Unit& u>
inline double atan2_in(const double* py, const double* px) {
    const double y = *py, x = *px;
    if (y == 0.0 && x == 0.0) return both_zero<u>(y, x);
    return angle<u>(y, x);
}

template <const Unit& u>
inline double atan_in(const double* arg) {
    ExtendedPrecision scope;
    const double r = scope.to_double(x87::fpatan(scope.pin(*arg), 1.0L) * u.per_radian);
    return r;
}

}  // namespace
}  // namespace mivor::elementary

using namespace mivor::elementary;

extern "C" long double g_datan(const double* arg) {
    ExtendedPrecision scope;
    return scope.pin(mivor::x87::fpatan(scope.pin(*arg), 1.0L));
}

extern "C" float g_atan(const float* arg) {
    ExtendedPrecision scope;
    const float r = scope.to_float(mivor::x87::fpatan(scope.pin(*arg), 1.0L));
    return r;
}

extern "C" double g_datan2(const double* y, const double* x) { return atan2_in<kRadians>(y, x); }
extern "C" double g_dtan2d(const double* y, const double* x) { return atan2_in<kDegrees>(y, x); }
extern "C" double g_dtan2q(const double* y, const double* x) { return atan2_in<kQuadrants>(y, x); }
extern "C" double g_datand(const double* arg) { return atan_in<kDegrees>(arg); }
extern "C" double g_datanq(const double* arg) { return atan_in<kQuadrants>(arg); }
