// First estimates in double precision and the Newton steps that take them
// to 128 bits.  Double arithmetic here is IEEE (SSE2 on every flavour,
// sqrtsd for the square root), so the estimates are the same bits
// everywhere; the conversions go through 32-bit halves, exact for
// integers below 2^53.
#pragma once

#include <bit>
#include <cstdint>

#include "quadfunc/fixed.h"

namespace mivor::quadfunc {

// v < 2^53, exactly.
inline double u53_to_double(std::uint64_t v) {
    return static_cast<double>(static_cast<std::uint32_t>(v >> 32)) * 0x1p32 +
           static_cast<double>(static_cast<std::uint32_t>(v));
}

// A finite double 0 < d < 2^(128 - point) as the integer d * 2^point,
// exactly (d has 53 bits; the caller keeps point - 52 + exponent >= 0).
inline U128 double_to_fixed(double d, int point) {
    const std::uint64_t b = std::bit_cast<std::uint64_t>(d);
    const int exponent = static_cast<int>((b >> 52) & 0x7FF) - 1023;
    const std::uint64_t mant = (b & ((std::uint64_t{1} << 52) - 1)) | (std::uint64_t{1} << 52);
    return shl(U128{0, mant}, exponent - 52 + point);
}
inline U128 double_to_q1_127(double d) { return double_to_fixed(d, 127); }

// 2^e as a double, -1022 <= e <= 1023.
inline double pow2(int e) { return std::bit_cast<double>(static_cast<std::uint64_t>(e + 1023) << 52); }

// The nearest integer of a double |d| < 2^51, by the shifter 1.5 * 2^52.
inline std::int64_t nearest_int(double d) {
    const double s = d + 0x1.8p52;
    return static_cast<std::int64_t>(std::bit_cast<std::uint64_t>(s) - std::bit_cast<std::uint64_t>(0x1.8p52));
}

// A signed 128-bit integer |x| < 2^63 as the nearest double.
inline double s128_to_double(U128 x) {
    const bool n = negative(x);
    const std::uint64_t a = n ? 0 - x.lo : x.lo;
    const double d = u53_to_double(a >> 11) * 0x1p11 + u53_to_double(a & 0x7FF);
    return n ? -d : d;
}

// One Newton step for 1/v: M = v 2^128 with v in [1/2, 1), Y = y 2^127 in
// Q1.127.  y' = y + y (1 - v y), the error term 1 - v y shifted up by k
// bits before the product (|1 - v y| < 2^-k) so that the product keeps
// 128 bits; the result is rounded to nearest.
inline U128 newton_recip_step(U128 M, U128 Y, int k) {
    const U128 T = mul_hi(M, Y);  // v y, Q1.127
    const bool low = less(T, U128{kTop64, 0});
    const U128 err = low ? sub(U128{kTop64, 0}, T) : sub(T, U128{kTop64, 0});
    // y |err| / 2^127 = mul_hi(Y, |err| 2^k) 2^(1-k).
    const U128 c = shr_round(mul_hi(Y, shl(err, k)), k - 1);
    return low ? add(Y, c) : sub(Y, c);
}

// a + b, or 2^128 - 1 where the sum would not fit.
inline U128 add_saturated(U128 a, U128 b) {
    const U128 s = add(a, b);
    return less(s, a) ? U128{~std::uint64_t{0}, ~std::uint64_t{0}} : s;
}

// sqrt(N) / 2^128 as Q0.128 with N = m 2^128 (odd false) or m 2^127 (odd
// true), m normalised: the root lies in [1/2, 1) and comes back normalised
// (top bit set), within one unit of the last place (where the root is
// within a unit of 1, 2^128 - 1).
//
// s0 = sqrt(w) in double, w = N / 2^256, and r0 = 1/s0; two steps
// s' = s + r0 (w - s^2)/2 with the residual w - s^2 exact (256 bits).  The
// iteration converges by the factor |1 - r0 s| < 2^-51 per step: 2^-52,
// 2^-103, then 2^-154, below the rounding of the correction (1/2 unit).
inline U128 sqrt_fixed(U128 m, bool odd) {
    const U256 N = odd ? U256{m.hi >> 1, (m.hi << 63) | (m.lo >> 1), m.lo << 63, 0} : U256{m.hi, m.lo, 0, 0};
    double w = u53_to_double(m.hi >> 11) * 0x1p-53;
    if (odd) w *= 0.5;
    double s0 = __builtin_sqrt(w);
    if (s0 >= 1.0) s0 = 0x1.fffffffffffffp-1;  // w within 2^-53 of 1: S0 must stay below 2^128
    const double r0 = 1.0 / s0;
    const std::uint64_t R0 = static_cast<std::uint64_t>(double_to_fixed(r0, 62).lo);  // r0 2^62, r0 in (1, 2]
    U128 S = double_to_fixed(s0, 128);
    // D = N - S^2, signed 256 bits.
    auto residual = [&N](U128 s) {
        const U256 q = mul_full(s, s);
        const std::uint64_t d0 = N.w0 - q.w0;
        const std::uint64_t b0 = N.w0 < q.w0;
        const std::uint64_t d1a = N.w1 - q.w1;
        const std::uint64_t d1 = d1a - b0;
        const std::uint64_t b1 = (N.w1 < q.w1) | (d1a < b0);
        const std::uint64_t d2a = N.w2 - q.w2;
        const std::uint64_t d2 = d2a - b1;
        const std::uint64_t b2 = (N.w2 < q.w2) | (d2a < b1);
        const std::uint64_t d3 = N.w3 - q.w3 - b2;
        return U256{d3, d2, d1, d0};
    };
    // Step 1: |D| < 2^205; its top half D >> 128 is enough (units 2^128 of
    // 2^-256, far below the 2^-103 this step reaches).  The correction in
    // units of 2^-128 is r0 D 2^-129 = R0 (D >> 128) 2^-63.
    {
        const U256 D = residual(S);
        U128 d{D.w3, D.w2};
        const bool n = negative(d);
        if (n) d = neg(d);
        const U192 p = mul_128x64(d, R0);  // below 2^140: p >> 63 fits
        const U128 corr = U128{(p.w2 << 1) | (p.w1 >> 63), (p.w1 << 1) | (p.w0 >> 63)};
        S = n ? sub(S, corr) : add_saturated(S, corr);
    }
    // Step 2: |D| < 2^155: D >> 64 as a signed 128-bit value; the
    // correction is R0 (D >> 64) 2^-127, rounded.
    {
        const U256 D = residual(S);
        U128 d{D.w2, D.w1};
        const bool n = negative(d);
        if (n) d = neg(d);
        const U192 p = mul_128x64(d, R0);
        // p >> 127, rounded: bits 127.. of the 192-bit product.
        const U128 corr = add64(U128{p.w2 >> 63, (p.w2 << 1) | (p.w1 >> 63)}, (p.w1 >> 62) & 1);
        S = n ? sub(S, corr) : add_saturated(S, corr);
    }
    // The root lies in [1/2, 1): within a unit of its lower end, snap.
    if ((S.hi >> 63) == 0) S = U128{kTop64, 0};
    return S;
}

}  // namespace mivor::quadfunc
