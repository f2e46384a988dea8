// Square and cube roots rounded to REAL(16).
//
// Square root: the 128-bit root of the working format (estimate.h, within
// one unit of 2^-128 of its binade) decides the rounding to 113 bits unless
// its 15 extra bits lie within a unit of the halfway pattern; then the
// candidate halfway point P is squared exactly (256 bits) and compared
// with the radicand, which tells on which side the root lies.  A root
// exactly halfway would need an odd 114-bit integer whose square is the
// radicand's 113-bit significand times a power of two: impossible, so the
// comparison never ties and the result is the correctly rounded root.
//
// Cube root: x = w 2^(3q) with w in [1, 8); c0 = cbrt(w) in double from a
// linear guess and four Halley steps (cubically convergent: 0.3, 2^-5.2,
// 2^-15.6, 2^-47, then the double's own rounding, under 2^-51).  c0 has 53
// bits, so c0^3 is exact in 192 bits and so is the residual w - c0^3; one
// Halley step in the working format,
//
//     c = c0 + c0 (w - c0^3)/(2 c0^3 + w),
//
// leaves (c0's error)^3 < 2^-150 of the root, and its correction (below
// 2^-50 of c0) is within 2^-125 relative, 2^-175 of the root.  c0 and the
// correction are summed exactly at the rounding (accumulate.h): the
// result is the correctly rounded cube root unless the root lies within
// 2^-150 of a rounding boundary, which would need a cube of 114 bits or
// so equal to a 113-bit significand times 2^k.  (No cube root of a REAL(16)
// number lies exactly halfway: its cube would be an odd 342-bit integer.)
#include "quadfunc/roots.h"

#include <bit>

#include "quadfunc/accumulate.h"
#include "quadfunc/estimate.h"

namespace mivor::quadfunc {

Rounded sqrt_rounded(const Wide& a) {
    if (is_zero(a)) return round_to_real16(kWideZero);
    const bool odd = (a.e & 1) != 0;
    const std::int32_t e = odd ? (a.e + 1) / 2 : a.e / 2;
    U128 S = sqrt_fixed(a.m, odd);
    const std::uint32_t rem = static_cast<std::uint32_t>(S.lo & 0x7FFF);
    if (rem >= 0x3FFF && rem <= 0x4001) {
        // P = the halfway point; compare P^2 with N = m 2^128 (m 2^127).
        const U128 P{S.hi, (S.lo & ~std::uint64_t{0x7FFF}) | 0x4000};
        const U256 p2 = mul_full(P, P);
        const U256 N = odd ? U256{a.m.hi >> 1, (a.m.hi << 63) | (a.m.lo >> 1), a.m.lo << 63, 0}
                           : U256{a.m.hi, a.m.lo, 0, 0};
        const bool below = p2.w3 != N.w3   ? p2.w3 < N.w3
                           : p2.w2 != N.w2 ? p2.w2 < N.w2
                           : p2.w1 != N.w1 ? p2.w1 < N.w1
                                           : p2.w0 < N.w0;  // P^2 < N: the root lies above P
        S = below ? add64(P, 1) : sub(P, U128{0, 1});
    }
    return round_to_real16(Wide{S, e, 0});
}

namespace {

// cbrt(w) for w in [1, 8) in double, below 2^-51 relative.
double cbrt_estimate(double w) {
    double c = 1.0 + (w - 1.0) / 7.0;
    for (int i = 0; i < 4; ++i) {
        const double c3 = c * c * c;
        c = c * (c3 + 2.0 * w) / (2.0 * c3 + w);
    }
    return c;
}

}  // namespace

Rounded cbrt_rounded(const Wide& a) {
    if (is_zero(a)) return round_to_real16(a);
    // a = v 2^(e-1), v = m/2^127 in [1, 2); e - 1 = 3q + r, r in {0, 1, 2}.
    const std::int32_t t = a.e - 1;
    const std::int32_t q = t >= 0 ? t / 3 : -((-t + 2) / 3);
    const int r = t - 3 * q;
    // w = v 2^r in [1, 8); its top 53 bits in double.
    const double w = u53_to_double(a.m.hi >> 11) * pow2(r - 52);
    // Kept in [1, 2), which its bits are read as (w next to 8 or 1 can give
    // 2 or a little below 1 after rounding).
    double c0 = cbrt_estimate(w);
    if (c0 >= 2.0) c0 = 0x1.fffffffffffffp0;
    if (c0 < 1.0) c0 = 1.0;
    // c0 = C 2^-52 with C of 53 bits (c0 in [1, 2)); C^3 2^-156 exactly.
    const std::uint64_t C = (std::bit_cast<std::uint64_t>(c0) & ((std::uint64_t{1} << 52) - 1)) | (std::uint64_t{1} << 52);
    const U192 C3 = mul_128x64(mul64(C, C), C);
    // w 2^156 = m 2^(29 + r): below 2^160.
    const U192 W{a.m.hi >> (35 - r), (a.m.hi << (29 + r)) | (a.m.lo >> (35 - r)), a.m.lo << (29 + r)};
    const Wide residual = from_signed_fixed192(sub(W, C3), 156);
    const Wide denominator = from_fixed192(add(add(C3, C3), W), 156);
    const Wide c0w = from_fixed(U128{0, C}, 52);
    const Wide correction = mul(c0w, div(residual, denominator));
    Acc256 acc(-253);  // the root lies in [1, 2)
    acc.add(c0w);
    acc.add(correction);
    Rounded out = acc.round();
    // Scale by 2^q and give it the operand's sign.
    Wide back = from_real16(out.value);
    back.e += q;
    back.neg = a.neg;
    return round_to_real16(back);
}

}  // namespace mivor::quadfunc
