// The inverse circular kernels in the working format: atan2, asin, acos.
//
// Method.  Everything goes through atan(n/d) for 0 <= n <= d: with j =
// round(64 n/d) and b = j/64,
//
//     atan(n/d) = atan(b) + atan(u),   u = (n - b d)/(d + b n),  |u| <= 1/128,
//
// atan(b) from a table (working format, 2^-128) and atan u = u (1 + u^2
// P(u^2)), P a Remez fit of degree 7 (atan_data.h: 2^-142.2 relative).
// n - b d and d + b n are formed exactly in 192 bits from the operands'
// significands (for j >= 1 their scales differ by at most 8 bits), so the
// cancellation in n - b d costs nothing; each is rounded once to the
// working format and u is their quotient (2^-125.5), so u is within
// 2^-125.2 relative.
//
// Errors of atan(n/d): u as above; u in S.133 for the polynomial (the
// product u^2 P changes by 2^-140 relative); the Horner result 0.51 units
// of 2^-127 times u^2 <= 2^-14; 1 + u^2 P rounded in Q1.127 (2^-128); its
// product with u (2^-128): atan u within 2^-124.9 relative.  For j = 0 that
// is the result; for j >= 1 atan(b) >= 2^-6.01 and |atan u| <= 2^-7, so the
// sum (one more rounding) is within 2^-125.3 of its value.  Then
//
//     atan2(y, x) = theta, pi/2 - theta (|y| > |x|), and pi minus that (x <
//     0), theta = atan(min/max),
//
// the differences at least pi/4 and pi/2 (2^-128 each, pi/2 and pi
// rounded to 128 bits: 2^-128 each): at most 2^-124.8 relative.
// asin x = atan2(|x|, s) and acos x = atan2(s, x) with s = sqrt((1 - |x|)(1
// + |x|)) (1 - |x| exact, 1 + |x| and the product rounded, the root:
// 2^-125.4 relative).  A relative error e of s moves either angle theta by
// |x| s e (the derivatives are |x| and x, since x^2 + s^2 = 1), and |x| s
// <= theta for both (asin |x| >= |x|, acos x >= s for x >= 0, acos x >=
// pi/2 otherwise): 2^-124.1 relative for both.
#include "quadfunc/atan.h"

#include "quadfunc/atan_data.h"
#include "quadfunc/estimate.h"
#include "quadfunc/kernels.h"
#include "quadfunc/sincos_data.h"

namespace mivor::quadfunc {

using namespace atan_data;

namespace {

// An approximation of a working value's magnitude in double (|a| within
// 2^-1000 .. 2^1000 of the other operand, which the ratio needs).
double approx(const Wide& a, std::int32_t base) {
    const std::int32_t e = a.e - base;
    if (is_zero(a) || e < -1000) return 0.0;
    return u53_to_double(a.m.hi >> 11) * pow2(e - 53);
}

// U128 m shifted left by 0 <= s < 64 into 192 bits.
U192 widen(U128 m, int s) {
    if (s == 0) return U192{0, m.hi, m.lo};
    return U192{m.hi >> (64 - s), (m.hi << s) | (m.lo >> (64 - s)), m.lo << s};
}

// atan u for |u| <= (1/128)(1 + 2^-16).
Wide atan_small(const Wide& u) {
    U128 U = to_fixed(u, 133);
    if (u.neg) U = neg(U);
    const U128 V = mul_hi_signed(U, U);  // u^2 in S.138
    const U128 p = horner_s127(kAtanPoly, 8, V, 10);
    const U128 one_plus = add(U128{kTop64, 0}, sar_round(mul_hi_signed(V, p), 10));  // Q1.127
    return mul(u, from_fixed(one_plus, 127));
}

}  // namespace

Wide atan_ratio(const Wide& n, const Wide& d) {
    if (is_zero(n)) return kWideZero;
    const double t = approx(n, d.e) / approx(d, d.e);
    const int j = static_cast<int>(nearest_int(t * 64.0));
    if (j == 0) return atan_small(div(n, d));
    // n = N 2^(d.e - 184), d = D 2^(d.e - 184), N, D below 2^184; then 64 n -
    // j d and 64 d + j n below 2^191, exact.
    const int k = d.e - n.e;  // 0..8 since n/d >= 1/128
    const U192 D = widen(d.m, 56);
    const U192 N = k <= 56 ? widen(n.m, 56 - k) : U192{0, 0, 0};
    const U192 diff = sub(shl(N, 6), mul_low(D, static_cast<std::uint64_t>(j)));
    const U192 sum = add(shl(D, 6), mul_low(N, static_cast<std::uint64_t>(j)));
    const Wide u = div(from_signed_fixed192(diff, 190 - d.e), from_fixed192(sum, 190 - d.e));
    return add(kAtan[j](), atan_small(u));
}

Wide atan2_wide(const Wide& y, const Wide& x) {
    const Wide ay = abs(y), ax = abs(x);
    Wide theta;
    if (compare_magnitude(ay, ax) > 0) theta = sub(sincos_data::kPiOver2(), atan_ratio(ax, ay));
    else theta = atan_ratio(ay, ax);
    if (x.neg) theta = sub(sincos_data::kPi(), theta);
    theta.neg = y.neg;
    return theta;
}

namespace {

// sqrt((1 - a)(1 + a)) for 0 <= a <= 1.
Wide cofunction(const Wide& a) { return sqrt(mul(sub(kWideOne, a), add(kWideOne, a))); }

}  // namespace

Wide asin_wide(const Wide& x) {
    Wide t = atan2_wide(abs(x), cofunction(abs(x)));
    t.neg = x.neg;
    return t;
}

Wide acos_wide(const Wide& x) { return atan2_wide(cofunction(abs(x)), x); }

}  // namespace mivor::quadfunc
