// Circular functions of a REAL(16) angle in degrees and in quadrants
// (right angles):
//   g_qsind, g_qcosd, g_qtand, g_qcotd     degrees
//   g_qsinq, g_qcosq, g_qtanq, g_qcotq     quadrants
//
// The reduction is exact in the unit, for every finite argument
// (reduce_units.cpp): multiples of a right angle give exactly 0 and +-1
// (the sign of a zero follows the quadrant's negation, as in the REAL(8)
// functions: sind(180) is -0), and the remainder goes to the radian
// kernels with one rounding.  Bounds before the final rounding: 2^-124.3
// relative for sine and cosine, 2^-123.5 for the quotients.  Results that
// are simple values (sind(30) = 1/2, tand(45) = 1) come out exact.
//
// Special cases and reports (direct form):
//   +-Inf, NaN     sind, cosd: error 1402, the quiet NaN or sqrt(1/2);
//                  tand, cotd: 1403, the quiet NaN or 1; tanq, cotq: 1399,
//                  the quiet NaN or 1; sinq, cosq: no report, a NaN (the
//                  operand quieted, or the quiet NaN for an infinity)
//   poles          tand at odd multiples of 90, cotd at multiples of 180
//                  (zero included): 1404; tanq at odd integers, cotq at
//                  even ones: 1399; also a cotangent whose value overflows
//                  (|x| below about 57.3/HUGE degrees, 0.64/HUGE
//                  quadrants); +Inf, or HUGE with IEEE results off
//
// Measured against MPFR's exact unit functions (`mivor accuracy --count
// 100000 g_qsind ... g_qcotq`): at most 0.500027 ulp (degrees) and 0.500009
// ulp (quadrants), exact at every multiple of a right angle tried, 99.99%
// or more correctly rounded.
#include "frame/report.h"
#include "mivor/mivor.h"
#include "quadfunc/sincos.h"
#include "quadfunc/sincos_data.h"
#include "quadfunc/special.h"

using namespace mivor;
using namespace mivor::quadfunc;

namespace {

using Pass = report::Step<Real16, Real16>;

enum class Unit { degree, quadrant };

template <Fn fn, Unit unit>
Pass unit_pass(Real16 x) {
    constexpr bool deg = unit == Unit::degree;
    constexpr bool sincos = fn == Fn::sin || fn == Fn::cos;
    constexpr Error refused = sincos ? Error::sin_cos_degree_r16
                              : deg  ? Error::tan_cot_degree_refused_r16
                                     : Error::tan_cot_quadrant_r16;
    constexpr Error pole = deg ? Error::tan_cot_degree_pole_r16 : Error::tan_cot_quadrant_r16;
    const Kind kind = kind_of(x);
    if (kind == Kind::nan || kind == Kind::infinite) {
        if constexpr (sincos && !deg) return kind == Kind::nan ? quieted(x) : _NaN_Q;
        else if constexpr (sincos) return report::fail(refused, _NaN_Q, sincos_data::kSqrtHalfQ);
        else return report::fail(refused, _NaN_Q, kOneQ);
    }
    const Wide w = kind == Kind::zero ? Wide{{0, 0}, kZeroScale, quad::sign(x) ? 1u : 0u} : from_real16(x);
    const Reduced red = deg ? reduce_degrees(w) : reduce_quadrants(w);
    const bool odd = red.quadrant & 1;
    if constexpr (fn == Fn::tan || fn == Fn::cot) {
        if (is_zero(red.r) && (odd == (fn == Fn::tan))) return report::fail(pole, _Inf_Q, kHuge_Q);
    }
    const SinCos sc = by_quadrant(is_zero(red.r) ? SinCos{kWideZero, kWideOne} : sincos_reduced(red.r), red.quadrant);
    Wide y = circular<fn>(sc);
    if constexpr (fn != Fn::cos) y.neg ^= w.neg;
    const Rounded r = round_to_real16(y);
    if (r.overflow) return report::fail(pole, _Inf_Q, kHuge_Q);
    return r.value;
}

template <Fn fn, Unit unit>
Real16* unit_export(Real16* result, const Real16* arg) {
    *result = report::settle<report::Form::direct>(unit_pass<fn, unit>, *arg);
    return result;
}

}  // namespace

extern "C" Real16* g_qsind(Real16* r, const Real16* x) { return unit_export<Fn::sin, Unit::degree>(r, x); }
extern "C" Real16* g_qcosd(Real16* r, const Real16* x) { return unit_export<Fn::cos, Unit::degree>(r, x); }
extern "C" Real16* g_qtand(Real16* r, const Real16* x) { return unit_export<Fn::tan, Unit::degree>(r, x); }
extern "C" Real16* g_qcotd(Real16* r, const Real16* x) { return unit_export<Fn::cot, Unit::degree>(r, x); }
extern "C" Real16* g_qsinq(Real16* r, const Real16* x) { return unit_export<Fn::sin, Unit::quadrant>(r, x); }
extern "C" Real16* g_qcosq(Real16* r, const Real16* x) { return unit_export<Fn::cos, Unit::quadrant>(r, x); }
extern "C" Real16* g_qtanq(Real16* r, const Real16* x) { return unit_export<Fn::tan, Unit::quadrant>(r, x); }
extern "C" Real16* g_qcotq(Real16* r, const Real16* x) { return unit_export<Fn::cot, Unit::quadrant>(r, x); }
