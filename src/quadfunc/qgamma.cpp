// g_qgamma, g_qlgama: the gamma function and the logarithm of its
// magnitude for REAL(16).
//
// Kernels and bounds: gamma.cpp.  Gamma is within 2^-122 relative before
// its rounding (at most 0.5 + 2^-9 units of the last place), exact at the
// integers 1..40 (the factorials are formed exactly: 38! lies halfway
// between two REAL(16) numbers and is rounded to even).  ln|Gamma| is
// within 2^-122.6 absolute away from 1 and 2, where its Taylor series
// makes it relative (2^-125): so at most 0.5 + 2^-9 units of the last
// place wherever |ln Gamma| >= 2^-7.5, and an absolute error of 2^-122
// next to its zeros on the negative axis.
//
// Reports (direct form) and fallbacks:
//   g_qgamma  252: x = +-0 (the IEEE result +-Inf with the zero's sign),
//             a negative integer or -Inf (the quiet NaN), an overflowing
//             result or +Inf (+Inf); with IEEE results off HUGE, -HUGE for
//             -0.  Results below 2^-16382 (large negative x) are zero with
//             their sign, unreported.
//   g_qlgama  255: x = +-0 or a negative integer (poles), or a result above
//             HUGE: +Inf, or HUGE with IEEE results off.  +-Inf give +Inf
//             without a report.
//   NaN arguments come back quieted, unreported.
//
// Measured against MPFR (`mivor accuracy --count 100000 g_qgamma g_qlgama`):
// gamma 0.500 ulp; log-gamma 0.535 ulp next to 2 (its absolute error
// there), 2^-119 absolute or less within 2^-10 of its zeros at -2.457,
// -2.748, -3.144, -3.955.
#include "frame/report.h"
#include "mivor/mivor.h"
#include "quadfunc/gamma.h"
#include "quadfunc/gamma_data.h"
#include "quadfunc/kernels.h"
#include "quadfunc/sincos_data.h"
#include "quadfunc/special.h"

using namespace mivor;
using namespace mivor::quadfunc;

namespace {

using Pass = report::Step<Real16, Real16>;

// x an integer? (finite, non-zero x)
bool is_integer(const Wide& x) {
    if (x.e <= 0) return false;
    if (x.e >= 128) return true;
    return is_zero(shl(x.m, x.e));
}

// (n - 1)! exactly, 1 <= n <= 40: its odd part fits in 128 bits.
Wide factorial_before(std::uint32_t n) {
    U128 odd{0, 1};
    std::int32_t twos = 0;
    for (std::uint32_t k = 2; k < n; ++k) {
        std::uint32_t f = k;
        while ((f & 1) == 0) {
            f >>= 1;
            ++twos;
        }
        const U192 p = mul_128x64(odd, f);
        odd = U128{p.w1, p.w0};
    }
    return scaled(from_fixed(odd, 0), twos);
}

Pass gamma_pass(Real16 x) {
    const Kind k = kind_of(x);
    if (k == Kind::nan) return quieted(x);
    if (k == Kind::zero)
        return quad::sign(x) ? report::fail(Error::gamma_r16, _MInf_Q, kMHugeQ)
                             : report::fail(Error::gamma_r16, _Inf_Q, kHuge_Q);
    if (k == Kind::infinite)
        return quad::sign(x) ? report::fail(Error::gamma_r16, _NaN_Q, kHuge_Q)
                             : report::fail(Error::gamma_r16, _Inf_Q, kHuge_Q);
    const Wide w = from_real16(x);
    const bool integer = is_integer(w);
    if (w.neg && integer) return report::fail(Error::gamma_r16, _NaN_Q, kHuge_Q);
    Wide g;
    if (!w.neg) {
        if (w.e > 11) return report::fail(Error::gamma_r16, _Inf_Q, kHuge_Q);  // x >= 2048
        if (integer && w.e <= 6 && (w.m.hi >> (64 - w.e)) <= 40) {
            g = factorial_before(static_cast<std::uint32_t>(w.m.hi >> (64 - w.e)));
        } else {
            g = gamma_positive(w);
        }
    } else {
        // Gamma(x) = pi / (sin(pi x) Gamma(1 - x)); beyond 1 - x = 2048 the
        // result is far below 2^-16382.
        const Wide one_minus = add(kWideOne, abs(w));
        if (one_minus.e > 11) {
            const Wide s = sin_pi(w);
            return s.neg ? kMZeroQ : kZeroQ;
        }
        g = div(sincos_data::kPi(), mul(sin_pi(w), gamma_positive(one_minus)));
    }
    const Rounded r = round_to_real16(g);
    if (r.overflow) return report::fail(Error::gamma_r16, g.neg ? _MInf_Q : _Inf_Q, g.neg ? kMHugeQ : kHuge_Q);
    return r.value;
}

Pass lgamma_pass(Real16 x) {
    const Kind k = kind_of(x);
    if (k == Kind::nan) return quieted(x);
    if (k == Kind::infinite) return _Inf_Q;
    if (k == Kind::zero) return report::fail(Error::lgamma_r16, _Inf_Q, kHuge_Q);
    const Wide w = from_real16(x);
    if (w.neg && is_integer(w)) return report::fail(Error::lgamma_r16, _Inf_Q, kHuge_Q);
    Wide l;
    if (!w.neg) {
        l = lgamma_wide(lgamma_positive(w));
    } else {
        // ln|Gamma(x)| = ln pi - ln|sin(pi x)| - ln Gamma(1 - x).
        const Wide one_minus = add(kWideOne, abs(w));
        const LGammaResult g = lgamma_positive(one_minus);
        const LogResult ls = log_kernel(abs(sin_pi(w)));
        const U192 log_sin = ls.fixed ? ls.s176 : to_s176(add(ls.z, ls.tail));
        if (g.fixed) {
            U192 s = sub(to_s176(gamma_data::kLnPi()), log_sin);
            l = from_signed_fixed192(sub(s, g.s176), 176);
        } else {
            l = sub(sub(gamma_data::kLnPi(), from_signed_fixed192(log_sin, 176)), g.wide);
        }
    }
    const Rounded r = round_to_real16(l);
    if (r.overflow) return report::fail(Error::lgamma_r16, _Inf_Q, kHuge_Q);
    return r.value;
}

}  // namespace

extern "C" Real16* g_qgamma(Real16* result, const Real16* x) {
    *result = report::settle<report::Form::direct>(gamma_pass, *x);
    return result;
}
extern "C" Real16* g_qlgama(Real16* result, const Real16* x) {
    *result = report::settle<report::Form::direct>(lgamma_pass, *x);
    return result;
}
