// The kernels of the REAL(8) hyperbolic functions that other families build
// on: the fitted series of sinh and cosh below 1, and e^a/2 as a double, a
// tail and a power of two (the range plan and the accuracy of each are at
// the top of hyperbolic.cpp).  The complex sine and cosine take cosh and
// sinh of the imaginary part from the same kernels.
#pragma once

#include <cstdint>

#include "elementary/exp_kernel.h"
#include "elementary/trig_reduce.h"
#include "frame/values.h"

namespace mivor::elementary::hyperbolic {

// g_dcosh: cosh x - 1 = t (p1 + t (p2 + ... + t p7)).
inline constexpr double cp1 = 0.5000000000000001, cp2 = 0.041666666666663174, cp3 = 0.0013888888889177459,
                        cp4 = 2.4801587185234638e-05, cp5 = 2.755734457704308e-07, cp6 = 2.08737088229234e-09,
                        cp7 = 1.1660810833457919e-11;
// g_dsinh: sinh x - x = x t (p[0] + t (p[1] + ... + t p[6])).
inline constexpr double sp0 = 0.16666666666666669, sp1 = 0.008333333333333111, sp2 = 0.00019841269841450044,
                        sp3 = 2.755731915254139e-06, sp4 = 2.5052123738715222e-08, sp5 = 1.6057219161670014e-10,
                        sp6 = 7.759842042834347e-13;
inline long double cosh_series(long double x) {
    const long double t = x * x;
    return 1.0L + t * (cp1 + t * (cp2 + t * (cp3 + t * (cp4 + t * (cp5 + t * (cp6 + t * cp7))))));
}
inline long double sinh_series(long double x) {
    const long double t = x * x;
    return x + x * t * (sp0 + t * (sp1 + t * (sp2 + t * (sp3 + t * (sp4 + t * (sp5 + t * sp6))))));
}

// e^(ah + al)/2 = (hi + lo) 2^e as a double and a tail, 0.5 <= ah < 710.5
// for the real functions (the reduction stays exact while k < 2^25, ah
// below 90000: the complex sine and cosine take it to 1500, beyond the
// overflow of every nonzero product), |al| <= ulp(ah), in SSE2 double (the x87 unit is three to five times
// slower here for the same steps).  The reduction and table of g_dexp:
// k = round(256 ah/ln 2), t = k/256, u = ah + t LG2B exact (as in g_dexp),
// r = rh + rl = u + (t LG2C + al) (|t LG2C| < 2^-19 and |al| < 2^-43 rounded
// together): r within 2^-72, and |rl| <= ulp(rh)/2 <= 2^-63.  e^r - 1 = rh + c, c = rl + rh^2 (1/2 + rh/6 + ... +
// rh^4/720), the Taylor polynomial (the next term is below 2^-78 and c
// within 2^-72; g_dexp's fitted degree-4 polynomial, good to 2^-58.5, would
// be the largest error here).  With 2^(j/256) = H + L from the table:
//   (H + L)(1 + rh + c) = H + H rh + (H c + L + L rh)  (+ L c < 2^-72),
// H + H rh summed exactly (Fast2Sum, |H| >= |H rh|) and the rest, below
// 2^-19.8, rounded once.  H rh rounds to 2^-62.4 unless `exact_product`
// asks for Dekker's product; then hi + lo is within 2^-70 of the value.
struct HalfExp {
    double hi, lo;  // hi + lo in [0.99, 2.02), lo below 2^-19.8 hi
    int e;          // the power of two, m - 1 = (k >> 8) - 1
};

inline constexpr double kSixth = 1.0 / 6, kTwentyFourth = 1.0 / 24, k120th = 1.0 / 120, k720th = 1.0 / 720;

template <bool exact_product>
inline HalfExp exp_half(double ah, double al) {
    using namespace exp_kernel;
    const double s = BIG + ah * LG2;
    const double t = s - BIG;
    // rh + rl = u + v, |rl| <= 2^-63 (so rl rh is negligible) by Fast2Sum,
    // exact when u is the larger; otherwise both are below 2^-18 and rl is
    // still within 2^-72.
    const double u = ah + t * LG2B, v = t * LG2C + al;
    const double rh = u + v;
    const double rl = (u - rh) + v;
    const double r2 = rh * rh;
    // To r^5/120 for sinh and cosh (the next term is below 2^-66), to
    // r^6/720 for _jwe_guhy.
    double tail;
    if constexpr (exact_product) tail = kTwentyFourth + rh * (k120th + rh * k720th);
    else tail = kTwentyFourth + rh * k120th;
    const double c = rl + r2 * ((0.5 + rh * kSixth) + r2 * tail);
    const auto k = static_cast<std::int32_t>(trig::low32(s));
    const auto& e = exp_e[k & 255];
    double p, pe = 0.0;
    if constexpr (exact_product) trig::two_product(e.hi, rh, p, pe);
    else p = e.hi * rh;
    const double hi = e.hi + p;
    const double lo = ((e.hi - hi) + p) + (pe + ((e.hi * c + e.lo) + e.lo * rh));
    return {hi, lo, (k >> 8) - 1};
}

// 2^n as a double, -1022 <= n <= 1023.
inline double power_of_two(int n) { return double_from_bits(static_cast<std::uint64_t>(n + 1023) << 52); }

}  // namespace mivor::elementary::hyperbolic
