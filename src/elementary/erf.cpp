// g_derf, g_derfc, g_erf, g_erfc: the error function and the complementary
// error function of REAL(8) and REAL(4).
//
// Method.  Near zero, erf x = x + x (Q0 + Q1 x^2 + ... + Q9 x^18) on
// |x| <= 1/2 (fit 2^-56.2 relative, the rounding of Q0: up to 0.22 ulp of
// the result; x Q, about 0.13 x, carries a few roundings of its own, up to
// 0.17 ulp of a result just above a power of two; then the sum rounds:
// at most 0.89 ulp, 0.79 measured on 10^6 arguments).
// Elsewhere both come from the scaled complement
//     erfc x = e^(-x^2) g(x),  g(x) = erfc(x) e^(x^2)  (x >= 0),
// g smooth and slowly varying (1 at 0, about 1/(x sqrt(pi)) for large x):
// one polynomial of degree 10 in d = x - mid per row of erf_data.h (eighths
// of [1/2, 1) and of each binade up to 28), its constant term a double-double,
// fit error at most 2^-55.1 relative; e^(-x^2) is the double-double
// exponential of elementary/exp_log_dd.h on x^2 = xh^2 + xl (xh + x), xh the
// upper half of x (exact, and the low part to 2^-78), to 2^-61.  The product
// T g is formed exactly (Dekker) and rounded once with the rest, onto the
// subnormal grid too when erfc is that small.  So erfc has at most
// 0.5 + 2^53 (2^-55.1 + 2^-56 + 2^-61) = 0.73 ulp; erfc of a negative x =
// 2 - erfc |x| adds the complement's error in units of a smaller or equal
// ulp: 0.5 + 0.23 ulp.  erf x = 1 - erfc x for |x| >= 1/2 (erfc x < 0.48,
// erf x > 0.52) does without the exact product: T g rounded once adds
// half an ulp of erfc, at most 2^-55, a quarter of an ulp of erf, and the
// rest 0.48 (2^-55.1 + 2^-56 + 2^-61) 2^53 = 0.17 ulp: at most
// 0.5 + 0.25 + 0.17 = 0.92 ulp there (0.75 measured on 3 10^6 arguments
// and 10^5 bit patterns of [1/2, 2]); the rounded product saves a fifth
// of erf's time.  Measured: `mivor accuracy g_derf g_derfc` (see README).
//
// REAL(4): the REAL(8) value (erf with the exact product) rounded once
// more; correctly rounded but for results within 2^-28 ulp of a midpoint
// between two REAL(4) numbers.
//
// Arguments below 2^-1018 are scaled up so that x + x Q0 rounds once, also
// where erf x is subnormal.
//
// Special cases: erf(+-0) = +-0, erf(+-Inf) = +-1, erfc(+Inf) = +0,
// erfc(-Inf) = 2, NaN gives NaN.  erf x rounds to +-1 from |x| = 5.86 on,
// erfc to 2 below -5.63 and to +0 above 27.23.  No error is reported.
#include <cmath>
#include <cstdint>

#include "elementary/erf_data.h"
#include "elementary/exp_log_dd.h"
#include "frame/dispatch.h"
#include "mivor/mivor.h"

using namespace mivor;
using namespace mivor::elementary;

namespace {

namespace t = erf_data;

// g(x) = erfc(x) e^(x^2) for 1/2 <= x < 28, as hi + lo.
// The row from the exponent and the top three fraction bits: eighths of
// the binade from 1 on (rows 4, 5, ...), quarters of [1/2, 1) (rows 0-3),
// chosen without a branch (random arguments would mispredict it).
inline DD scaled_complement(double x) {
    const auto e = static_cast<std::uint32_t>((bits_of(x) >> 49) - (std::uint64_t{1022} << 3));
    const std::uint32_t row = e < 8 ? e >> 1 : e - 4;
    const t::Row& w = t::rows[row];
    const double d = x - w.mid;  // exact: the same binade, mid has 6 bits
    const double* c = w.c;
    const double d2 = d * d, d4 = d2 * d2, d8 = d4 * d4;
    const double p = ((c[0] + c[1] * d) + d2 * (c[2] + c[3] * d)) +
                     d4 * ((c[4] + c[5] * d) + d2 * (c[6] + c[7] * d)) + d8 * (c[8] + c[9] * d);
    const DD g = fast_two_sum(w.c0hi, d * p);  // |d p| <= 2^-4 c0
    return {g.hi, g.lo + w.c0lo};
}

// erfc(x) = 2^m (hi + lo) for 1/2 <= x < 28, hi in [2^-6, 2).
struct Complement {
    std::int64_t m;
    double hi, lo;
};

// exact: the product T g.hi split exactly (erfc itself, and 2 - erfc of a
// negative argument, need every bit of it); otherwise rounded, for erf
// (1 - erfc with erfc < 0.48, whose rounding adds at most half an ulp of
// erfc, a quarter of an ulp of erf).
template <bool exact = true>
inline Complement complement(double x) {
    const double xh = upper(x), xl = x - xh;
    const ExpParts e = exp_dd(-(xh * xh), -(xl * (xh + x)));
    const DD g = scaled_complement(x);
    if constexpr (!exact) return {e.k >> 8, e.t * g.hi, e.t * g.lo + e.tail * g.hi};
    const DD p = two_prod(e.t, g.hi);
    return {e.k >> 8, p.hi, p.lo + (e.t * g.lo + e.tail * g.hi)};
}

// 2^m for m in [-1022, 0].
inline double two_to(std::int64_t m) { return double_from_bits(static_cast<std::uint64_t>(m + 1023) << 52); }

// base - erfc(x) for base 1 or 2 and 1/2 <= x < 6 (erfc(x) < 0.48): the
// complement is exact after scaling (2^m >= 2^-52), the difference split
// exactly by Fast2Sum.
template <bool exact = true>
inline double less_complement(double base, double x) {
    const Complement c = complement<exact>(x);
    const double s = two_to(c.m);
    const double ch = c.hi * s, cl = c.lo * s;
    const DD r = fast_two_sum(base, -ch);
    return r.hi + (r.lo - cl);
}

// x + x Q(x^2) for |x| <= 1/2.
inline double small_erf_correction(double x) {
    const double* q = t::Q;
    const double x2 = x * x, x4 = x2 * x2, x8 = x4 * x4;
    const double p = ((q[0] + q[1] * x2) + x4 * (q[2] + q[3] * x2)) +
                     x8 * ((q[4] + q[5] * x2) + x4 * (q[6] + q[7] * x2) + x8 * (q[8] + q[9] * x2));
    return x * p;
}

template <bool exact = true>
double erf_of(double x) {
    const double a = x < 0 ? -x : x;
    if (a < 0.5) {
        if (a < 0x1p-1018) [[unlikely]] {
            // x Q(x^2) would round onto the subnormal grid before the sum:
            // scale by 2^1022 and round the sum once onto the result's grid.
            const double big = a * 0x1p1022;
            return std::copysign(scale_finish(-1022, big, big * t::Q[0]), x);
        }
        return x + small_erf_correction(x);
    }
    if (!(a < 6.0)) return a == a ? (x < 0 ? -1.0 : 1.0) : x + x;  // erfc(6) < 2^-54; NaN
    const double r = less_complement<exact>(1.0, a);
    return x < 0 ? -r : r;
}

double erfc_of(double x) {
    if (x < 0.5 && x > -0.5) {
        // 1 - erf x: 1 - x split exactly, the correction subtracted from it.
        const DD s = fast_two_sum(1.0, -x);
        return s.hi + (s.lo - small_erf_correction(x));
    }
    if (x < 0) return x > -6.0 ? less_complement(2.0, -x) : 2.0;  // erfc(6) < 2^-53
    if (!(x < 27.3)) return x == x ? 0.0 : x + x;  // erfc(27.3) < 2^-1076; NaN
    const Complement c = complement(x);
    if (c.m >= -1000) return (c.hi + c.lo) * two_to(c.m);  // a normal result: exact scaling
    return scale_finish(c.m, c.hi, c.lo);
}

}  // namespace

extern "C" MIVOR_DISPATCHED double g_derf(const double* x) { return erf_of<false>(*x); }
extern "C" MIVOR_DISPATCHED double g_derfc(const double* x) { return erfc_of(*x); }
extern "C" float g_erf(const float* x) { return static_cast<float>(erf_of(*x)); }
extern "C" float g_erfc(const float* x) { return static_cast<float>(erfc_of(*x)); }
