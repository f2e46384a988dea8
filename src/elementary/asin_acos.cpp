// g_dasin, g_dacos and their degree and quadrant forms g_dasind, g_dacosd,
// g_dasinq, g_dacosq (with _jwe_gd1q): REAL(8) arcsine and arccosine.
//
// Method (inverse.h): the library's rational forms in x87 extended
// precision, hand-over at sqrt(1/2): asin evaluates its own forms below it
// and goes through acos above, acos the other way round, and acos(-a) is
// pi - acos a.  The degree and quadrant forms take the radian value of the
// kernel, still in extended precision, times 180/pi or 2/pi, and make the
// complements in their own unit, where a right angle is exactly 90 or 1:
// so asind(+-1) = +-90, acosd(0) = 90, acosd(-1) = 180, asinq(1) = 1,
// acosq(-1) = 2 exactly.  Each result is rounded once to double: within
// 0.80 ulp by the bound of inverse.h.
//
// Arguments with |x| > 1 report 218 (radians), 1368 (degrees) or 1358
// (quadrants), direct form; a retry starts again with the corrected
// argument; without one the result is the quiet NaN (IEEE results) or the
// clamped value at the nearer end of the range: asin +-pi/2 (+90, +1 for
// x > 0, the negative ones otherwise), acos 0 for x > 0 and pi (180, 2)
// otherwise.  A NaN argument is not outside [-1, 1]: it passes through the
// kernel and comes out a NaN, unreported.
#include "elementary/inverse.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "frame/x87.h"
#include "mivor/mivor.h"

namespace mivor::elementary {
namespace {

using namespace inverse;

// A unit of angle: the factor from radians, a right angle and two as
// hi + lo (exact in degrees and quadrants, split for radians), the error
// number of the unit.
struct Unit {
    long double per_radian;
    bool radians;  // per_radian is 1: no multiplication
    double right_hi, right_lo;
    double straight_hi, straight_lo;
    Error error;
};

inline constexpr Unit kRadians{1.0L, true, hp1, hp2, pi1, pi2, Error::asin_acos_domain_r8};
inline constexpr Unit kDegrees{kDegreesPerRadian, false, 90.0, 0.0, 180.0, 0.0, Error::asin_acos_degree_r8};
inline constexpr Unit kQuadrants{kQuadrantsPerRadian, false, 1.0, 0.0, 2.0, 0.0, Error::asin_acos_quadrant_r8};

template <const Unit& u>
inline long double scaled(long double radians) {
    if constexpr (u.radians) return radians;
    return radians * u.per_radian;
}

// acos of a in [sqrt(1/2), 1] in the unit: the outer kernel.
template <const Unit& u>
inline long double acos_outer_in(long double a) {
    return scaled<u>(acos_outer(a));
}

// |x| <= 1 or NaN, in the scope's extended precision (the argument is
// pinned to it, so no step can run before the control word is set).
template <const Unit& u, bool cosine>
inline long double kernel(double x, const x87::ExtendedPrecision& scope) {
    const long double xl = scope.pin(x);
    const long double al = __builtin_fabsl(xl);
    if constexpr (!cosine) {
        if (al < rh) return scaled<u>(asin_inner(xl));
        long double v;
        if constexpr (&u == &kQuadrants) {
            const double a = __builtin_fabs(x);
            v = u.right_hi - _jwe_gd1q(&a);
        } else {
            v = (u.right_hi - acos_outer_in<u>(al)) + u.right_lo;
        }
        return x < 0.0 ? -v : v;
    } else {
        if (al < rh) return (u.right_hi - scaled<u>(asin_inner(xl))) + u.right_lo;
        if constexpr (&u == &kQuadrants) return _jwe_gd1q(&x);
        if (x > 0.0) return acos_outer_in<u>(al);
        return (u.straight_hi - acos_outer_in<u>(al)) + u.straight_lo;  // NaN: a NaN
    }
}

template <const Unit& u, bool cosine>
double inverse_of(double x);

// |x| > 1: report; without a retry the NaN or the clamped end of the range.
template <const Unit& u, bool cosine>
[[gnu::cold, gnu::noinline]] double out_of_domain(double x) {
    return report::settle<report::Form::direct>(
        [](double x) -> report::Step<double, double> {
            if (!(__builtin_fabs(x) > 1.0)) return inverse_of<u, cosine>(x);  // corrected
            double clamped;
            if constexpr (cosine) clamped = x > 0.0 ? 0.0 : u.straight_hi;
            else clamped = x > 0.0 ? u.right_hi : -u.right_hi;
            return report::fail(u.error, _NaN_D, clamped);
        },
        x);
}

template <const Unit& u, bool cosine>
double inverse_of(double x) {
    if (__builtin_fabs(x) > 1.0) return out_of_domain<u, cosine>(x);
    x87::ExtendedPrecision scope;
    const double r = scope.to_double(kernel<u, cosine>(x, scope));
    return r;
}

}  // namespace
}  // namespace mivor::elementary

using namespace mivor::elementary;

// acos x in quadrants for sqrt(1/2) <= |x| <= 1 (the caller has checked):
// for x < 0 the complement 2 - acos|x| in the unit, exact at x = -1.
extern "C" long double _jwe_gd1q(const double* arg) {
    const double x = *arg;
    mivor::x87::ExtendedPrecision scope;
    const long double v = acos_outer(scope.pin(__builtin_fabs(x))) * kQuadrantsPerRadian;
    return scope.pin(x < 0.0 ? 2.0L - v : v);
}

extern "C" double g_dasin(const double* arg) { return inverse_of<kRadians, false>(*arg); }
extern "C" double g_dacos(const double* arg) { return inverse_of<kRadians, true>(*arg); }
extern "C" double g_dasind(const double* arg) { return inverse_of<kDegrees, false>(*arg); }
extern "C" double g_dacosd(const double* arg) { return inverse_of<kDegrees, true>(*arg); }
extern "C" double g_dasinq(const double* arg) { return inverse_of<kQuadrants, false>(*arg); }
extern "C" double g_dacosq(const double* arg) { return inverse_of<kQuadrants, true>(*arg); }
