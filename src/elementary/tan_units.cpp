// g_dtand, g_dcotd, g_dtanq, g_dcotq: REAL(8) tangent and cotangent of an
// angle in degrees or in quadrants.
//
// Reduction in the unit, exact, as the sine and cosine of the unit do
// (units.h): x = 90 k + r with |r| <= 45 (signed x), or |u| = k + r with
// |r| <= 1/2 (the sign of u put back last: both functions are odd).  Then
// tan x = tan r for even k and -cot r for odd k (the cotangent the other
// way round), with
//   r = 0        tan 0 = r itself (+-0); cot 0 is a pole;
//   |r| = 45, 1/2  tan = cot = +-1 exactly (tand(45) = 1, cotq(1/2) = 1);
//   otherwise    the reduced angle in radians as a double-double,
//                t = r (pi/180) or r (pi/2) with r times the high part
//                exact (Dekker's product) and r times the low part rounded:
//                |t - r pi/180| <= 2^-104 |t|, then the radian kernel of
//                g_dtan (tan_kernel.h), within about 0.7 ulp;
//   tiny r       (|r| < 2^-500) tan t = t and cot t = 1/t to far below an
//                ulp: r times the unit, or (180/pi)/r, (2/pi)/r as a quotient
//                with its remainder, r scaled by 2^600 so that nothing
//                underflows or overflows on the way (the cotangent may still
//                overflow: then +-Inf, as the radian cotangent of a tiny
//                argument; a subnormal tangent rounds twice).
//
// Reports (direct form) with the fallbacks of the radian functions:
//   degrees   1364  |x| >= 2.0299994561825997e17, Inf, NaN: NaN or 1.0;
//             1366  pole (tand at odd multiples of 90, cotd at multiples of
//                   180, 0 included): +Inf or 0x7FEFFFFFFFFFFFB6, either sign;
//   quadrants 1356  both: the pole (odd integers for tanq, even ones for
//                   cotq) with +Inf or the substitute, and Inf or NaN
//                   arguments with the NaN or 1.0 (no other limit).
#include <cmath>

#include "elementary/tan_kernel.h"
#include "elementary/units.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

namespace mivor::elementary {
namespace {

using units::Reduced;

struct Unit {
    double rad_hi, rad_lo;    // one unit in radians: pi/180 or pi/2, hi + lo
    double per_rad_hi, per_rad_lo;  // radians to the unit: 180/pi or 2/pi, hi + lo
    double half;              // half a right angle: 45 or 1/2
    bool degrees;
    Error refused, pole;
};
inline constexpr Unit kDegrees{0x1.1df46a2529d39p-6, 0x1.5c1d8becdd291p-62, 0x1.ca5dc1a63c1f8p+5,
                               -0x1.1e7ab456405f9p-49, 45.0, true,
                               Error::tan_cot_degree_refused_r8, Error::tan_cot_degree_pole_r8};
inline constexpr Unit kQuadrants{0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54, 0x1.45f306dc9c883p-1,
                                 -0x1.6b01ec5417056p-55, 0.5, false,
                                 Error::tan_cot_quadrant_r8, Error::tan_cot_quadrant_r8};
inline constexpr double kTinyR = 0x1p-500;

template <const Unit& u>
inline bool refused(double x) {
    if constexpr (u.degrees) return units::degrees_refused(x);
    return !(trig::magnitude(x) < HUGE_VAL);
}

// cot of r units for 0 < |r| < 2^-500: (1/unit)/r.
template <const Unit& u>
inline double tiny_cot(double r) {
    const double rs = r * 0x1p+600;
    const double q = u.per_rad_hi / rs;
    double p, pe;
    trig::two_product(q, rs, p, pe);
    const double rem = ((u.per_rad_hi - p) - pe) + u.per_rad_lo;
    return (q + rem / rs) * 0x1p+600;
}

// tan of r units for 0 < |r| < 2^-500: r in radians, to which tan is equal
// there.  The same scaling keeps the low part of Dekker's product from
// underflowing; the sum rounds once, and the scaling back is exact unless
// the result is subnormal.
template <const Unit& u>
inline double tiny_tan(double r) {
    const double rs = r * 0x1p+600;
    double p, e;
    trig::two_product(rs, u.rad_hi, p, e);
    return (p + (e + rs * u.rad_lo)) * 0x1p-600;
}

template <const Unit& u, bool cotangent>
double tan_cot(double x);

template <const Unit& u, bool cotangent>
[[gnu::cold, gnu::noinline]] double refuse(double x) {
    return report::settle<report::Form::direct>(
        [](double x) -> report::Step<double, double> {
            if (!refused<u>(x)) return tan_cot<u, cotangent>(x);  // corrected
            return report::fail(u.refused, _NaN_D, 1.0);
        },
        x);
}

// A corrected argument that is refused goes back to the top, which reports
// that.
template <const Unit& u, bool cotangent>
[[gnu::cold, gnu::noinline]] double pole(double x) {
    return report::settle<report::Form::direct>(
        [](double x) -> report::Step<double, double> {
            if (refused<u>(x)) return tan_cot<u, cotangent>(x);
            const Reduced rd = u.degrees ? units::reduce_degrees(x) : units::reduce_quadrants(trig::magnitude(x));
            if (!(rd.r == 0.0 && ((rd.k & 1) != 0) != cotangent)) return tan_cot<u, cotangent>(x);  // corrected
            return report::fail(u.pole, _Inf_D, kHuge_D);
        },
        x);
}

template <const Unit& u, bool cotangent>
double tan_cot(double x) {
    if (refused<u>(x)) return refuse<u, cotangent>(x);
    const Reduced rd = u.degrees ? units::reduce_degrees(x) : units::reduce_quadrants(trig::magnitude(x));
    const double r = rd.r;
    const bool odd = rd.k & 1;
    const bool want_cot = odd != cotangent;
    double v;
    if (r == 0.0) {
        if (want_cot) return pole<u, cotangent>(x);
        v = r;
    } else if (trig::magnitude(r) == u.half) {
        v = r > 0.0 ? 1.0 : -1.0;
    } else if (trig::magnitude(r) < kTinyR) {
        v = want_cot ? tiny_cot<u>(r) : tiny_tan<u>(r);
    } else {
        double th, tl;
        trig::two_product(r, u.rad_hi, th, tl);
        tl += r * u.rad_lo;
        v = tan_kernel::tan_or_cot_reduced(th, tl, want_cot);
    }
    if (odd) v = -v;
    if constexpr (!u.degrees) v = trig::flip_by(v, trig::sign_of(x));
    return v;
}

}  // namespace
}  // namespace mivor::elementary

using namespace mivor::elementary;

extern "C" MIVOR_DISPATCHED double g_dtand(const double* arg) { return tan_cot<kDegrees, false>(*arg); }
extern "C" MIVOR_DISPATCHED double g_dcotd(const double* arg) { return tan_cot<kDegrees, true>(*arg); }
extern "C" MIVOR_DISPATCHED double g_dtanq(const double* arg) { return tan_cot<kQuadrants, false>(*arg); }
extern "C" MIVOR_DISPATCHED double g_dcotq(const double* arg) { return tan_cot<kQuadrants, true>(*arg); }
