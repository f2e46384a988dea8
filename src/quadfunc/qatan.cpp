// The inverse circular functions of REAL(16) with results in radians,
// degrees and quadrants:
//   g_qatan, g_qatan2, g_qasin, g_qacos       radians
//   g_qatand, g_qatan2d, g_qasind, g_qacosd   degrees
//   g_qatanq, g_qatan2q, g_qasinq, g_qacosq   quadrants (right angles)
//
// The radian result (atan.cpp, within 2^-124.1 relative) is scaled by
// 180/pi or 2/pi rounded to 128 bits (two more relative errors of 2^-128)
// and rounded once: at most 0.5 + 2^-11 units of the last place.  Results
// that are whole right angles or simple fractions of them (asind(1) = 90,
// acosq(-1) = 2, atand(1) = 45, asind(0.5) = 30) lie far closer to the
// exact value than half a unit and come out exact.
//
// Special cases, as the REAL(8) functions treat them:
//   atan     +-0 -> +-0, +-Inf -> +-pi/2 (+-90, +-1); no report
//   atan2    a -0 operand counts as +0 (atan2(-0, -1) is +pi); both zero:
//            error 222 (radians), 1406 (degrees), 1401 (quadrants) with no
//            operand described, and without a retry the quiet NaN, or +0
//            with IEEE results off; infinities give the limiting angles
//            (+-pi/4, +-3pi/4, +-pi/2, +0, +-pi)
//   asin, acos   |x| > 1 (infinities too): error 219, 1405, 1400; without a
//            retry the quiet NaN, or with IEEE results off the nearest end
//            of the range: asin +-pi/2 by the sign of x, acos 0 for x > 0
//            and pi for x < 0 (in the unit of the function)
//   NaN operands come back quieted without a report.
//
// Measured against MPFR (`mivor accuracy --count 100000 g_qasin ... g_qatan2q`,
// the degree and quadrant forms against mpfr_asinu and the like): at most
// 0.500020 ulp, 99.998% or more correctly rounded.
#include "frame/report.h"
#include "mivor/mivor.h"
#include "quadfunc/atan.h"
#include "quadfunc/atan_data.h"
#include "quadfunc/sincos_data.h"
#include "quadfunc/special.h"

using namespace mivor;
using namespace mivor::quadfunc;

namespace {

enum class Unit { radian, degree, quadrant };

struct Angles {
    Real16 quarter, half, eighth, three_eighths;  // pi/2, pi, pi/4, 3pi/4 in the unit
};

template <Unit unit>
constexpr Angles angles() {
    if constexpr (unit == Unit::radian)
        return {sincos_data::kPiOver2Q, sincos_data::kPiQ, atan_data::kPiOver4Q, atan_data::kThreePiOver4Q};
    else if constexpr (unit == Unit::degree)
        return {quad::make(0x40056800u, 0, 0, 0), quad::make(0x40066800u, 0, 0, 0),  // 90, 180
                quad::make(0x40046800u, 0, 0, 0), quad::make(0x40060E00u, 0, 0, 0)};  // 45, 135
    else
        return {kOneQ, quad::make(0x40000000u, 0, 0, 0), quad::make(0x3FFE0000u, 0, 0, 0),  // 1, 2, 1/2
                quad::make(0x3FFF8000u, 0, 0, 0)};                                           // 3/2
}

template <Unit unit>
Real16 in_unit(Wide radians) {
    if constexpr (unit == Unit::degree) radians = mul(radians, atan_data::kDegreesPerRadian());
    else if constexpr (unit == Unit::quadrant) radians = mul(radians, atan_data::kQuadrantsPerRadian());
    return round_to_real16(radians).value;
}

constexpr Error domain_error(Unit u) {
    return u == Unit::radian   ? Error::asin_acos_domain_r16
           : u == Unit::degree ? Error::asin_acos_degree_r16
                               : Error::asin_acos_quadrant_r16;
}
constexpr Error zeros_error(Unit u) {
    return u == Unit::radian   ? Error::atan2_zeros_r16
           : u == Unit::degree ? Error::atan2_degree_r16
                               : Error::atan2_quadrant_r16;
}

Real16 with_sign(Real16 v, bool negative) { return negative ? negated(v) : v; }

template <Unit unit>
Real16 atan_value(const Real16& x) {
    switch (kind_of(x)) {
        case Kind::nan: return quieted(x);
        case Kind::zero: return x;
        case Kind::infinite: return with_sign(angles<unit>().quarter, quad::sign(x));
        case Kind::finite: break;
    }
    const Wide w = from_real16(x);
    return in_unit<unit>(atan2_wide(w, kWideOne));
}

template <Unit unit>
report::Step<Real16, Real16, Real16> atan2_pass(Real16 y, Real16 x) {
    const Kind ky = kind_of(y), kx = kind_of(x);
    if (ky == Kind::nan) return quieted(y);
    if (kx == Kind::nan) return quieted(x);
    // A zero of either sign counts as +0.
    if (ky == Kind::zero) y = kZeroQ;
    if (kx == Kind::zero) x = kZeroQ;
    if (ky == Kind::zero && kx == Kind::zero)
        return report::fail(zeros_error(unit), _NaN_Q, kZeroQ).described(report::Describe::none);
    const Angles a = angles<unit>();
    const bool yneg = quad::sign(y), xneg = quad::sign(x);
    if (ky == Kind::infinite && kx == Kind::infinite) return with_sign(xneg ? a.three_eighths : a.eighth, yneg);
    if (ky == Kind::infinite) return with_sign(a.quarter, yneg);
    if (kx == Kind::infinite) return xneg ? with_sign(a.half, yneg) : with_sign(kZeroQ, yneg);
    return in_unit<unit>(atan2_wide(from_real16(y), from_real16(x)));
}

template <bool is_asin, Unit unit>
report::Step<Real16, Real16> asin_acos_pass(Real16 x) {
    const Kind k = kind_of(x);
    if (k == Kind::nan) return quieted(x);
    const bool neg = quad::sign(x);
    const Wide w = k == Kind::finite ? from_real16(x) : Wide{};
    if (k == Kind::infinite || (k == Kind::finite && compare_magnitude(w, kWideOne) > 0)) {
        const Angles a = angles<unit>();
        const Real16 clamp = is_asin ? with_sign(a.quarter, neg) : (neg ? a.half : kZeroQ);
        return report::fail(domain_error(unit), _NaN_Q, clamp);
    }
    if (k == Kind::zero) {
        if constexpr (is_asin) return x;
        else return angles<unit>().quarter;
    }
    return in_unit<unit>(is_asin ? asin_wide(w) : acos_wide(w));
}

template <Unit unit>
Real16* atan_export(Real16* result, const Real16* x) {
    *result = atan_value<unit>(*x);
    return result;
}
template <Unit unit>
Real16* atan2_export(Real16* result, const Real16* y, const Real16* x) {
    *result = report::settle<report::Form::direct>(atan2_pass<unit>, *y, *x);
    return result;
}
template <bool is_asin, Unit unit>
Real16* asin_acos_export(Real16* result, const Real16* x) {
    *result = report::settle<report::Form::direct>(asin_acos_pass<is_asin, unit>, *x);
    return result;
}

}  // namespace

extern "C" Real16* g_qatan(Real16* r, const Real16* x) { return atan_export<Unit::radian>(r, x); }
extern "C" Real16* g_qatand(Real16* r, const Real16* x) { return atan_export<Unit::degree>(r, x); }
extern "C" Real16* g_qatanq(Real16* r, const Real16* x) { return atan_export<Unit::quadrant>(r, x); }
extern "C" Real16* g_qatan2(Real16* r, const Real16* y, const Real16* x) { return atan2_export<Unit::radian>(r, y, x); }
extern "C" Real16* g_qatan2d(Real16* r, const Real16* y, const Real16* x) { return atan2_export<Unit::degree>(r, y, x); }
extern "C" Real16* g_qatan2q(Real16* r, const Real16* y, const Real16* x) {
    return atan2_export<Unit::quadrant>(r, y, x);
}
extern "C" Real16* g_qasin(Real16* r, const Real16* x) { return asin_acos_export<true, Unit::radian>(r, x); }
extern "C" Real16* g_qasind(Real16* r, const Real16* x) { return asin_acos_export<true, Unit::degree>(r, x); }
extern "C" Real16* g_qasinq(Real16* r, const Real16* x) { return asin_acos_export<true, Unit::quadrant>(r, x); }
extern "C" Real16* g_qacos(Real16* r, const Real16* x) { return asin_acos_export<false, Unit::radian>(r, x); }
extern "C" Real16* g_qacosd(Real16* r, const Real16* x) { return asin_acos_export<false, Unit::degree>(r, x); }
extern "C" Real16* g_qacosq(Real16* r, const Real16* x) { return asin_acos_export<false, Unit::quadrant>(r, x); }
