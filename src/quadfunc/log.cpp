// The logarithm kernels: ln x, log2 x, log10 x in the working format.
//
// Method.  x = 2^n y with y in [0.75, 1.5); i = floor(256 y) picks a row
// with c = 4096/y_i rounded to an integer (y_i the centre of the row's
// interval), so z = y c/4096 - 1 is exact (y has at most 128 bits, c 13)
// and |z| < 2^-8.3; the two rows around 1 take c = 4096 and z = y - 1,
// |z| < 2^-8.  Then
//
//     ln x = n ln2 + ln_c + z + z^2 q(z),     ln_c = -ln(c/4096),
//
// with q a Remez fit of degree 13 whose error on z^2 q is below 2^-137
// times |z| (exp_log_data.h), evaluated by Horner in S.127.
//
// Two forms of the sum.  Away from 1 (n != 0 or c != 4096) every term goes
// into S.176: n ln2 (ln2 rounded to 2^-177, times |n| <= 2^14.1: 2^-162.9),
// ln_c (2^-177), z (exact) and z (z q): z q from the full product of q and
// z rounded to S.134 (that rounding, 2^-135 times |q| < 0.51, and z q's
// own rounding to S.135, 2^-136, each times |z| <= 2^-8: 2^-143 in all),
// then the full product with the exact z rounded once to S.176; the Horner
// result 0.51 units of 2^-127 times z^2 <= 2^-16: 2^-144; the fit 2^-137
// |z| <= 2^-145: at most 2^-142.1 absolute.  The result is then at least
// ln(1 + 2^-8.5) > 2^-8.6 in magnitude (the rows next to 1 begin 1/512
// away from it), so the sum holds it within 2^-133.5 relative, and one
// rounding to the working format adds 2^-128.  (The real powers multiply
// this sum by exponents up to 2^22: its absolute error is what they keep.)  Near 1 (n = 0, c = 4096)
// ln x = z (1 + z q) is formed in the working format: z exact, 1 + z q
// rounded in Q1.127 (2^-128) plus the small terms above relative to z,
// then one product (2^-128): 2^-126.9 relative in all.
//
// log2 x and log10 x are ln x times 1/ln2 and 1/ln10 rounded to 128 bits:
// two more relative errors of 2^-128 each, 2^-126.2 in all (wide.h adds
// its product's rounding).  For x = 2^k, 10^k the results lie within
// 2^-12 units of the last place of k and round to k.
#include "quadfunc/accumulate.h"
#include "quadfunc/exp_log_data.h"
#include "quadfunc/kernels.h"

namespace mivor::quadfunc {

using namespace exp_log_data;

LogResult log_kernel(const Wide& x) {
    // x = v 2^e, v = m/2^128 in [1/2, 1): y = v (n = e) or 2v (n = e - 1),
    // as Q1.127.
    const bool upper = x.m.hi >= 0xC000000000000000u;
    const U128 Y = upper ? shr(x.m, 1) : x.m;
    const std::int32_t n = upper ? x.e : x.e - 1;
    const LogRow& row = kLogTable[(Y.hi >> 55) - 192];
    // z + 1 = y c/4096: (z + 1) 2^176 = Y c 2^37, below 2^178; exact when
    // taken from the fraction itself (Y = m/2 drops the last bit of a
    // 128-bit fraction: y = v gives m c 2^36).
    const U192 Z = sub(shl(mul_128x64(x.m, row.c), upper ? 36 : 37), U192{std::uint64_t{1} << 48, 0, 0});
    // z in S.134, rounded (|z| <= 2^-8: fits).
    const U128 z134 = add64(U128{(Z.w2 << 22) | (Z.w1 >> 42), (Z.w1 << 22) | (Z.w0 >> 42)}, (Z.w0 >> 41) & 1);
    const U128 q = horner_s127(kLogPoly, 14, z134, 6);

    LogResult result{};
    if (n == 0 && row.c == 4096) {
        result.fixed = false;
        result.z = from_signed_fixed192(Z, 176);  // exact
        result.tail = mul(result.z, mul(result.z, from_signed_fixed(q, 127)));
        return result;
    }
    // z q in S.135 from the full product of magnitudes (S.261 >> 126,
    // rounded; |z q| < 2^-8.9 fits), then z (z q) = |Z| |z q| in S.311,
    // shifted right by 135 to S.176 and rounded.  Its sign is q's.
    const bool qn = negative(q), zn = negative(z134);
    const U256 pq = mul_full(qn ? neg(q) : q, zn ? neg(z134) : z134);
    const U128 zq135 = add64(U128{(pq.w3 << 2) | (pq.w2 >> 62), (pq.w2 << 2) | (pq.w1 >> 62)}, (pq.w1 >> 61) & 1);
    const U192 az = negative(Z) ? neg(Z) : Z;
    const std::uint64_t zw[3] = {az.w2, az.w1, az.w0};
    std::uint64_t acc[5] = {};
    multiply_accumulate(zq135, zw, 3, acc);
    U192 tail = add(U192{acc[4] >> 7, (acc[4] << 57) | (acc[3] >> 7), (acc[3] << 57) | (acc[2] >> 7)},
                    U192{0, 0, (acc[2] >> 6) & 1});
    if (qn) tail = neg(tail);
    const std::uint64_t an = n < 0 ? 0 - static_cast<std::uint64_t>(static_cast<std::int64_t>(n))
                                   : static_cast<std::uint64_t>(n);
    const U192 nln2 = mul_low(kLn2S176, an);
    U192 s = add(add(row.ln_c, Z), tail);
    s = n < 0 ? sub(s, nln2) : add(s, nln2);
    result.fixed = true;
    result.s176 = s;
    return result;
}

Wide log_wide(const Wide& x) {
    const LogResult r = log_kernel(x);
    return r.fixed ? from_signed_fixed192(r.s176, 176) : add(r.z, r.tail);
}

Rounded log_rounded(const Wide& x) {
    const LogResult r = log_kernel(x);
    if (r.fixed) return round_to_real16(from_signed_fixed192(r.s176, 176));
    // |tail| < |z|/2^9: the sum lies below 2^(e+1) for z in [2^(e-1), 2^e);
    // the window reaches from there down by 255 bits.
    Acc256 acc(r.z.e - 254);
    acc.add(r.z);
    acc.add(r.tail);
    return acc.round();
}

Wide log2_wide(const Wide& x) { return mul(log_wide(x), kInvLn2()); }

Wide log10_wide(const Wide& x) { return mul(log_wide(x), kInvLn10()); }

}  // namespace mivor::quadfunc
