// g_sinh, g_cosh, g_tanh and the pairs g_scnh, g_scnhq: REAL(4) hyperbolic
// functions, computed in double and rounded once.
//
// The range plan of the REAL(8) functions on a = |x| (exact as a double):
//   a < 1        the REAL(8) series (sinh, cosh) and rational form (tanh),
//                in SSE2 double: relative errors below 2^-51;
//   a >= 1       E = e^a/2 by g_dexp's kernel (within 0.52 ulp of double),
//                cosh = E + 0.25/E, sinh = E - 0.25/E (cancelling by 1.16 at
//                most), tanh = (1 - e)/(1 + e) with e = e^-2a; tanh is +-1
//                from 9.1 on, where 1 - tanh < 2^-25.
// Every double value is within 2^-50 of the function, so the REAL(4)
// result is the correctly rounded one unless the function lies within
// 2^-26 ulp of a half-way point (exhaustive figures in the README).
//
// sinh and cosh report 223 (direct form) when the REAL(4) result overflows
// (a above 89.4159...), and for Inf and NaN, whose comparisons fail: without
// a retry +Inf (sinh: the sign of x) or +-0x7F7FFFEE with IEEE results off.
// tanh has no report; a NaN gives a NaN.  g_scnh gives (sinh x, cosh x)
// with the bits of g_sinh and g_cosh from one exponential and one report;
// g_scnhq the same for x pi/2 (the product in double: its 2^-53 relative
// error moves a result by at most 89.5 2^-53, still far below an ulp of
// REAL(4)).
#include <cmath>

#include "elementary/exp_kernel.h"
#include "elementary/hyperbolic_kernel.h"
#include "elementary/trig_reduce.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

namespace mivor::elementary {
namespace {

// The REAL(8) Taylor coefficients, evaluated here in double for the REAL(4)
// members.
using hyperbolic::cp1, hyperbolic::cp2, hyperbolic::cp3, hyperbolic::cp4, hyperbolic::cp5, hyperbolic::cp6,
    hyperbolic::cp7;
using hyperbolic::sp0, hyperbolic::sp1, hyperbolic::sp2, hyperbolic::sp3, hyperbolic::sp4, hyperbolic::sp5,
    hyperbolic::sp6;
inline constexpr double tp1 = -257446.81508084596, tp2 = -18158.832069902594, tp3 = -287.60231921162375,
                        tp4 = -0.9778922952118113;
inline constexpr double tq0 = 772340.4452425379, tq1 = 363412.67430672294, tq2 = 21182.28078391318,
                        tq3 = 309.67502337003697;
inline constexpr double kLimit = 89.5;      // above: the REAL(4) result overflows for sure
inline constexpr double kTanhOne = 9.1;     // from here tanh rounds to +-1
inline constexpr double kHalfPi = 0x1.921fb54442d18p+0;

struct Pair {
    double sinh, cosh;
};

// a = |x| < kLimit; the result may still exceed the REAL(4) range.
inline Pair sinh_cosh(double x) {
    const double a = trig::magnitude(x);
    double sh, ch;
    if (a < 1.0) {
        const double t = x * x;
        sh = x + x * t * (sp0 + t * (sp1 + t * (sp2 + t * (sp3 + t * (sp4 + t * (sp5 + t * sp6))))));
        ch = 1.0 + t * (cp1 + t * (cp2 + t * (cp3 + t * (cp4 + t * (cp5 + t * (cp6 + t * cp7))))));
        return {sh, ch};
    }
    const double E = 0.5 * exp_kernel::fast(a);
    const double f = 0.25 / E;
    sh = E - f;
    ch = E + f;
    return {std::signbit(x) ? -sh : sh, ch};
}

inline bool fits(double v) { return trig::magnitude(v) < 0x1.ffffffp+127; }  // rounds below REAL(4) Inf

template <bool cosine>
float sinh_or_cosh(float x);

template <bool cosine>
[[gnu::cold, gnu::noinline]] float overflows(float x) {
    return report::settle<report::Form::direct>(
        [](float x) -> report::Step<float, float> {
            if (trig::magnitude(double(x)) < kLimit) {
                const Pair p = sinh_cosh(x);
                if (fits(cosine ? p.cosh : p.sinh)) return sinh_or_cosh<cosine>(x);  // corrected
            }
            if (cosine || !std::signbit(x)) return report::fail(Error::hyperbolic_overflow_r4, _Inf_F, kHuge_F);
            return report::fail(Error::hyperbolic_overflow_r4, _MInf_F, -kHuge_F);
        },
        x);
}

template <bool cosine>
float sinh_or_cosh(float x) {
    const double xd = x;
    if (!(trig::magnitude(xd) < kLimit)) return overflows<cosine>(x);
    const Pair p = sinh_cosh(xd);
    const double v = cosine ? p.cosh : p.sinh;
    if (!fits(v)) return overflows<cosine>(x);
    return static_cast<float>(v);
}

template <bool quadrants>
mivor_complex4 pair_of(float x);

inline double argument(float x, bool quadrants) { return quadrants ? double(x) * kHalfPi : double(x); }

template <bool quadrants>
[[gnu::cold, gnu::noinline]] mivor_complex4 pair_overflows(float x) {
    return report::settle<report::Form::direct>(
        [](float x) -> report::Step<mivor_complex4, float> {
            const double y = argument(x, quadrants);
            if (trig::magnitude(y) < kLimit && fits(sinh_cosh(y).cosh)) return pair_of<quadrants>(x);  // corrected
            const bool negative = std::signbit(x);
            return report::fail(Error::hyperbolic_overflow_r4, mivor_complex4{negative ? _MInf_F : _Inf_F, _Inf_F},
                                mivor_complex4{negative ? -kHuge_F : kHuge_F, kHuge_F});
        },
        x);
}

// Both halves overflow together: |sinh| < cosh, and the first REAL(4)
// argument whose cosh rounds to Inf has a sinh that rounds to Inf too.
template <bool quadrants>
mivor_complex4 pair_of(float x) {
    const double y = argument(x, quadrants);
    if (trig::magnitude(y) < kLimit) {
        const Pair p = sinh_cosh(y);
        if (fits(p.cosh)) return {static_cast<float>(p.sinh), static_cast<float>(p.cosh)};
    }
    return pair_overflows<quadrants>(x);
}

float tanh_of(float x) {
    const double xd = x;
    const double a = trig::magnitude(xd);
    if (a < 1.0) {  // on |x|, the sign put back after: tanh(-0) = -0
        const double t = a * a;
        const double p = ((tp4 * t + tp3) * t + tp2) * t + tp1;
        const double q = (((t + tq3) * t + tq2) * t + tq1) * t + tq0;
        const double r = a + (a * t) * (p / q);
        return static_cast<float>(std::signbit(x) ? -r : r);
    }
    if (a >= kTanhOne) return std::signbit(x) ? -1.0f : 1.0f;
    const double e = exp_kernel::fast(-2.0 * a);  // NaN: a NaN
    const double r = (1.0 - e) / (1.0 + e);
    return static_cast<float>(std::signbit(x) ? -r : r);
}

}  // namespace
}  // namespace mivor::elementary

using namespace mivor::elementary;

extern "C" MIVOR_DISPATCHED float g_sinh(const float* arg) { return sinh_or_cosh<false>(*arg); }
extern "C" MIVOR_DISPATCHED float g_cosh(const float* arg) { return sinh_or_cosh<true>(*arg); }
extern "C" MIVOR_DISPATCHED float g_tanh(const float* arg) { return tanh_of(*arg); }

extern "C" MIVOR_DISPATCHED mivor_complex4* g_scnh(mivor_complex4* result, const float* arg) {
    *result = pair_of<false>(*arg);
    return result;
}
extern "C" MIVOR_DISPATCHED mivor_complex4* g_scnhq(mivor_complex4* result, const float* arg) {
    *result = pair_of<true>(*arg);
    return result;
}
