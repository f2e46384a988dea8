// Sine and cosine of a reduced argument |r| <= pi/4 in the working format.
//
// Method.  j = round(64 |r|) picks a row of sin(j/64), cos(j/64) (working
// format, 2^-128 each); d = |r| - j/64 is exact (both within 2^-7 of each
// other's scale, 127 bits at most) and |d| <= 1/128.  With u = d^2,
//
//     sin d = d (1 + u P(u)),   cos d = 1 + u Q(u),
//
// P and Q Remez fits of degree 5 (sincos_data.h: 2^-142.6 relative and
// 2^-144.4 absolute), evaluated by Horner in S.127 with u in S.138; then
//
//     sin |r| = sin(j/64) cos d + cos(j/64) sin d,
//     cos |r| = cos(j/64) cos d - sin(j/64) sin d.
//
// Errors.  d in S.133 for the polynomials (2^-134, which moves u by 2^-140
// at most: 2^-142 relative to sin d, 2^-141 absolute in cos d); the Horner
// results 0.51 units of 2^-127 times u <= 2^-14; 1 + u P and 1 + u Q
// rounded to Q1.127 (2^-128); sin d = d (1 + u P) rounded (2^-128): sin d
// and cos d within 2^-126.9 relative.  Each product with a row value adds
// the row's 2^-128 and its own rounding 2^-128, the sum its rounding.
// Terms of one sign (d >= 0, and the cosine always: its second term is
// below 0.71/128 of the first) keep the relative bound, 2^-126; for the
// sine with d < 0 the first term is at most twice the result (j = 1, d =
// -1/128 is the worst case), which gives 2^-124.7.
#include "quadfunc/estimate.h"
#include "quadfunc/kernels.h"
#include "quadfunc/sincos.h"
#include "quadfunc/sincos_data.h"

namespace mivor::quadfunc {

using namespace sincos_data;

SinCos sincos_reduced(const Wide& r) {
    const Wide a = abs(r);
    // 64 |r| from its top 53 bits: |r| <= pi/4 + tiny gives j <= 50.
    const double ad = is_zero(a) || a.e < -60 ? 0.0 : u53_to_double(a.m.hi >> 11) * pow2(a.e - 53);
    const int j = static_cast<int>(nearest_int(ad * 64.0));
    const Wide d = j == 0 ? a : sub(a, scaled(from_fixed(U128{0, static_cast<std::uint64_t>(j)}, 0), -6));
    // d in S.133 for the polynomials.
    U128 D = to_fixed(d, 133);
    if (d.neg) D = neg(D);
    const U128 U = mul_hi_signed(D, D);  // u in S.138
    const U128 p = horner_s127(kSinPoly, 6, U, 10);
    const U128 q = horner_s127(kCosPoly, 6, U, 10);
    const U128 one_up = add(U128{kTop64, 0}, sar_round(mul_hi_signed(U, p), 10));  // 1 + u P, Q1.127
    const U128 cos_d = add(U128{kTop64, 0}, sar_round(mul_hi_signed(U, q), 10));   // 1 + u Q, Q1.127
    const Wide sd = mul(d, from_fixed(one_up, 127));
    const Wide cd = from_fixed(cos_d, 127);
    SinCos sc;
    if (j == 0) {
        sc.sin = sd;
        sc.cos = cd;
    } else {
        const Wide sj = kSinCos[j].sin(), cj = kSinCos[j].cos();
        sc.sin = add(mul(sj, cd), mul(cj, sd));
        sc.cos = sub(mul(cj, cd), mul(sj, sd));
    }
    sc.sin.neg ^= r.neg;
    return sc;
}

SinCos by_quadrant(const SinCos& sc, unsigned k) {
    switch (k & 3) {
        case 0: return sc;
        case 1: return SinCos{sc.cos, negate(sc.sin)};
        case 2: return SinCos{negate(sc.sin), negate(sc.cos)};
        default: return SinCos{negate(sc.cos), sc.sin};
    }
}

}  // namespace mivor::quadfunc
