// g_qsin, g_qcos, g_qtan, g_qcotan: circular functions of a REAL(16)
// argument in radians.
//
// Every finite argument is reduced exactly (reduce.cpp), however large;
// sine and cosine of the reduced argument come from sincos.cpp, the
// tangent and cotangent as their quotient.  Bounds before the final
// rounding: sine and cosine 2^-124.3 relative (reduction and kernel), the
// quotients 2^-123.5; so at most 0.5 + 2^-10.5 units of the last place.
//
// Special cases and reports (direct form):
//   +-0             sin, tan: the zero; cos: 1; cotan: error 216
//   +-Inf, NaN      refused: error 204 (sin, cos), 215 (tan, cotan); without
//                   a retry the quiet NaN, or with IEEE results off
//                   sqrt(1/2) for sine and cosine, 1 for the tangent and
//                   cotangent (as the REAL(8) functions do)
//   cotan(+-0) and cotan(x) for subnormal |x| < 1/HUGE, whose result
//                   overflows: error 216; +Inf, or HUGE with IEEE results
//                   off, whatever the sign (as g_dcotan's zero divisor)
// The tangent never overflows: no REAL(16) number comes within 2^-120 of an
// odd multiple of pi/2.
//
// Measured against MPFR (`mivor accuracy --count 100000 g_qsin g_qcos g_qtan
// g_qcotan`, with the arguments closest to multiples of pi/2 in every
// binade): at most 0.499991 / 0.500024 / 0.499995 / 0.500067 ulp, 99.99% or
// more correctly rounded.
#include "frame/report.h"
#include "mivor/mivor.h"
#include "quadfunc/sincos.h"
#include "quadfunc/sincos_data.h"
#include "quadfunc/special.h"

using namespace mivor;
using namespace mivor::quadfunc;

namespace {

using Pass = report::Step<Real16, Real16>;

template <Fn fn>
Pass circular_pass(Real16 x) {
    switch (kind_of(x)) {
        case Kind::nan:
        case Kind::infinite:
            if constexpr (fn == Fn::sin || fn == Fn::cos)
                return report::fail(Error::sin_cos_refused_r16, _NaN_Q, sincos_data::kSqrtHalfQ);
            else
                return report::fail(Error::tan_cot_refused_r16, _NaN_Q, kOneQ);
        case Kind::zero:
            if constexpr (fn == Fn::cos) return kOneQ;
            else if constexpr (fn == Fn::cot) return report::fail(Error::tan_cot_pole_r16, _Inf_Q, kHuge_Q);
            else return x;
        case Kind::finite: break;
    }
    const Wide w = from_real16(x);
    const Reduced red = reduce_radians(w);
    const SinCos sc = by_quadrant(sincos_reduced(red.r), red.quadrant);
    Wide y = circular<fn>(sc);
    // The odd functions take the sign of x (the reduction works on |x|).
    if constexpr (fn != Fn::cos) y.neg ^= w.neg;
    const Rounded r = round_to_real16(y);
    if constexpr (fn == Fn::cot) {
        if (r.overflow) return report::fail(Error::tan_cot_pole_r16, _Inf_Q, kHuge_Q);
    }
    return r.value;
}

template <Fn fn>
Real16* circular(Real16* result, const Real16* arg) {
    *result = report::settle<report::Form::direct>(circular_pass<fn>, *arg);
    return result;
}

}  // namespace

extern "C" Real16* g_qsin(Real16* result, const Real16* x) { return circular<Fn::sin>(result, x); }
extern "C" Real16* g_qcos(Real16* result, const Real16* x) { return circular<Fn::cos>(result, x); }
extern "C" Real16* g_qtan(Real16* result, const Real16* x) { return circular<Fn::tan>(result, x); }
extern "C" Real16* g_qcotan(Real16* result, const Real16* x) { return circular<Fn::cot>(result, x); }
