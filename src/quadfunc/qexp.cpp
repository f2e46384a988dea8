// g_qexp, g_qexp2, g_qexp10: e^x, 2^x, 10^x in REAL(16).
//
// Method and error bound: exp.cpp; one rounding of a working value within
// 2^-126.9 relative, so at most 0.5 + 2^-13 units of the last place.
// Exactly representable results come out exact: 2^k, 10^k for k = 0..48,
// and 1 for x = 0.  e^x for |x| < 2^-20 is summed exactly and rounded once
// (exp_near_zero), for the ties that 1 + x + x^2/2 makes with short x.  10^49 lies halfway between two REAL(16) numbers (5^49
// has 114 bits), so integers 0..55 are computed exactly and rounded once,
// ties to even.
//
// Special cases and reports (direct form):
//   NaN                  the NaN quieted, no report
//   -Inf                 +0
//   +Inf, overflow       error 231 (e^x), 240 (2^x), 243 (10^x); without a
//                        retry +Inf, or HUGE when IEEE results are off
//   results below 2^-16382   +0, no report (no subnormal results)
// The overflow test is exact: a result is refused when it rounds above
// HUGE.
//
// Measured against MPFR (`mivor accuracy --count 100000 g_qexp g_qexp2
// g_qexp10`, random arguments over the domain and the hard ranges): at most
// 0.500 / 0.500017 / 0.499996 ulp, 99.999% or more correctly rounded.
#include "frame/report.h"
#include "mivor/mivor.h"
#include "quadfunc/kernels.h"
#include "quadfunc/special.h"

using namespace mivor;
using namespace mivor::quadfunc;

namespace {

using Pass = report::Step<Real16, Real16>;

enum class Base { e, two, ten };

constexpr Error overflow_error(Base b) {
    return b == Base::e ? Error::exp_overflow_r16 : b == Base::two ? Error::exp2_overflow_r16 : Error::exp10_overflow_r16;
}

template <Base base>
Pass exp_pass(Real16 x) {
    switch (kind_of(x)) {
        case Kind::nan: return quieted(x);
        case Kind::zero: return kOneQ;
        case Kind::infinite:
            if (quad::sign(x)) return kZeroQ;
            return report::fail(overflow_error(base), _Inf_Q, kHuge_Q);
        case Kind::finite: break;
    }
    const Wide w = from_real16(x);
    // Beyond these magnitudes every result overflows or is below 2^-16382.
    constexpr std::int32_t limit = base == Base::ten ? 13 : 15;
    if (w.e > limit) {
        if (w.neg) return kZeroQ;
        return report::fail(overflow_error(base), _Inf_Q, kHuge_Q);
    }
    Wide y;
    if constexpr (base == Base::e) {
        if (w.e <= -20) return exp_near_zero(w).value;
        y = exp_s176(to_s176(w));
    } else if constexpr (base == Base::two) {
        y = exp2_kernel(w);
    } else {
        y = exp10_exact_integers(w);
    }
    const Rounded r = round_to_real16(y);
    if (r.overflow) return report::fail(overflow_error(base), _Inf_Q, kHuge_Q);
    return r.value;
}

template <Base base>
Real16* exp_export(Real16* result, const Real16* arg) {
    *result = report::settle<report::Form::direct>(exp_pass<base>, *arg);
    return result;
}

}  // namespace

extern "C" Real16* g_qexp(Real16* result, const Real16* x) { return exp_export<Base::e>(result, x); }
extern "C" Real16* g_qexp2(Real16* result, const Real16* x) { return exp_export<Base::two>(result, x); }
extern "C" Real16* g_qexp10(Real16* result, const Real16* x) { return exp_export<Base::ten>(result, x); }
