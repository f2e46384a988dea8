// The exponential kernels: e^x, 2^x and 10^x in the working format.
//
// Method.  x = k ln2/256 + r with k the nearest integer of 256 x/ln2 and
// |r| <= ln2/512, so e^x = 2^(k >> 8) 2^((k & 255)/256) e^r.  The
// reduction is exact in S.176 (x's bits below 2^-176 cannot matter: an
// absolute error d of x is a relative error d of e^x), with ln2/256 held
// to 2^-240, so k ln2/256 is right to 2^-176 for every |k| < 2^24.5; r is
// then rounded to S.136.  2^x takes k = nearest(256 x) and r = (x - k/256)
// ln2; 10^x forms x ln10 in S.176 from a 254-bit ln10 and goes on as e^x.
//
// e^r - 1 = r + r^2 q(r), q a Remez fit of degree 8 whose error on r^2 q is
// below 2^-139.6 (exp_log_data.h), evaluated by Horner in S.127.  Then
// 2^(j/256) e^r = T_j + T_j (e^r - 1) with T_j in Q1.127.
//
// Error of 2^(j/256) e^r in Q1.127, for the r given (exp_reduced): T_j
// rounded (2^-128, times e^r <= 1.0014), T_j (e^r - 1) rounded to Q1.127
// (2^-128), e^r - 1 itself (the fit 2^-139.6, the Horner result 0.51 units
// of 2^-127 times r^2 <= 2^-18.9, the products r q and r (r q) rounded in
// S.135 and S.136: 2^-137 in all) times T_j < 2: below 2^-126.98 absolute
// for a value of at least 0.9986, so 2^-126.9 relative.  The rounding of r
// to S.136 (2^-137) adds a relative 2^-137 to e^x.
//
// Used for g_qexp, g_qexp2, g_qexp10 and, through exp_s176, by the
// hyperbolic functions, gamma and erfc.
#include "quadfunc/accumulate.h"
#include "quadfunc/exp_log_data.h"
#include "quadfunc/estimate.h"
#include "quadfunc/kernels.h"

namespace mivor::quadfunc {

using namespace exp_log_data;

Wide exp_reduced(std::int64_t k, U128 R) {
    const U128 q = horner_s127(kExpPoly, 9, R, 8);             // S.127
    const U128 rq = mul_hi_signed(q, R);                     // r q in S.135
    const U128 p = add(R, sar_round(mul_hi_signed(R, rq), 7));  // e^r - 1 in S.136
    const U128 T = kExp2j[k & 255];
    const bool down = negative(p);
    const U128 Tp = shr_round(mul_hi(T, down ? neg(p) : p), 8);  // |T (e^r - 1)| in Q1.127
    const U128 s = down ? sub(T, Tp) : add(T, Tp);
    Wide w = from_fixed(s, 127);
    w.e += static_cast<std::int32_t>(k >> 8);  // arithmetic: floor(k/256)
    return w;
}

U192 to_s176(const Wide& x) {
    if (is_zero(x)) return U192{0, 0, 0};
    const std::int32_t s = x.e + 48;  // X = m 2^(e - 128 + 176)
    U192 X;
    if (s > 0) {
        X = U192{x.m.hi >> (64 - s), (x.m.hi << s) | (x.m.lo >> (64 - s)), x.m.lo << s};
    } else if (s == 0) {
        X = U192{0, x.m.hi, x.m.lo};
    } else if (s > -128) {
        const U128 v = shr_round(x.m, -s);
        X = U192{0, v.hi, v.lo};
    } else {
        X = U192{0, 0, s == -128 ? 1u : 0u};
    }
    return x.neg ? neg(X) : X;
}

U192 square_s176(const Wide& x) {
    if (is_zero(x)) return U192{0, 0, 0};
    // x^2 = m^2 2^(2e - 256) = (m^2 >> (80 - 2e)) in S.176; 2e <= 15.
    const U256 p = mul_full(x.m, x.m);
    const int shift = 80 - 2 * x.e;  // >= 65
    if (shift >= 256) return U192{0, 0, 0};
    const std::uint64_t w[4] = {p.w0, p.w1, p.w2, p.w3};
    auto bits = [&w](int from) -> std::uint64_t {
        if (from >= 256) return 0;
        const int i = from >> 6, s = from & 63;
        std::uint64_t v = w[i] >> s;
        if (s != 0 && i + 1 < 4) v |= w[i + 1] << (64 - s);
        return v;
    };
    U192 r{bits(shift + 128), bits(shift + 64), bits(shift)};
    return add(r, U192{0, 0, (bits(shift - 1) & 1)});
}

namespace {

// (X - k ln2/256) in S.176 rounded to S.136, for k the nearest integer of
// 256 x/ln2 or close to it: the difference is below 2^-9.4 in magnitude, so
// only the low bits of both sides matter and all arithmetic is modulo
// 2^192.
U128 reduce_ln2(U192 X, std::int64_t k) {
    const std::uint64_t a = k < 0 ? 0 - static_cast<std::uint64_t>(k) : static_cast<std::uint64_t>(k);
    U192 kc = mul_low(kLn2Over256, a);
    const U128 low = mul64(kLn2Over256Low, a);  // the fraction of C beyond S.176
    kc = add(kc, U192{0, 0, low.hi + (low.lo >> 63)});
    const U192 r = k < 0 ? add(X, kc) : sub(X, kc);
    // r >> 40, rounded; bits 167.. are the sign.
    const U128 v{(r.w2 << 24) | (r.w1 >> 40), (r.w1 << 24) | (r.w0 >> 40)};
    return add64(v, (r.w0 >> 39) & 1);
}

// x in S.176 to a double within 2^-37.
double approx(U192 X) {
    const std::int64_t top = static_cast<std::int64_t>(X.w2) >> 11;  // x 2^37, |x| < 2^15
    const bool n = top < 0;
    const double d = u53_to_double(n ? 0 - static_cast<std::uint64_t>(top) : static_cast<std::uint64_t>(top));
    return (n ? -d : d) * 0x1p-37;
}

}  // namespace

Wide exp_s176(U192 X) {
    // k from a double estimate: 256 x/ln2 is off by at most 2^-37 256/ln2
    // plus a rounding, so |r| exceeds ln2/512 by under 2^-20 of it.
    const std::int64_t k = nearest_int(approx(X) * kInvLn2x256);
    return exp_reduced(k, reduce_ln2(X, k));
}

Rounded exp_near_zero(const Wide& x) {
    if (x.e < -130) return round_to_real16(kWideOne);  // |x| < 2^-131: 1
    // x in S.136 for the polynomial (2^-137 absolute; x^2 q needs far less).
    U128 R = shr_round(x.m, -(x.e + 8));
    if (x.neg) R = neg(R);
    const U128 q = horner_s127(kExpPoly, 9, R, 8);
    // x^2 q within 2^-126 relative: at most x^2 2^-127, below 2^-167, while
    // the ties of 1 + x + x^2/2 (x near 2^-56 and below) are decided by x^3/6
    // of 2^-170 and more: far enough apart.
    const Wide t = mul(mul(x, x), from_signed_fixed(q, 127));
    Acc256 acc(-254);
    acc.add(kWideOne);
    acc.add(x);
    acc.add(t);
    return acc.round();
}

Wide exp2_kernel(const Wide& x) {
    // x 2^176 exactly (bits below 2^-176 only move 2^x by a relative 2^-176
    // ln2); k = nearest(256 x) by adding half a unit of 2^-8 and cutting.
    const U192 X = to_s176(x);
    const U192 rounded = add(X, U192{std::uint64_t{1} << 39, 0, 0});  // + 2^167
    const std::int64_t k = static_cast<std::int64_t>(rounded.w2) >> 40;
    // f = x - k/256 in [-2^-9, 2^-9), to S.136 by cutting (2^-136 at most:
    // rounding could carry 2^-9 - 2^-176 over to 2^-9, which S.136 lacks).
    const U192 f = sub(X, U192{static_cast<std::uint64_t>(k) << 40, 0, 0});
    const U128 F{(f.w2 << 24) | (f.w1 >> 40), (f.w1 << 24) | (f.w0 >> 40)};
    // r = f ln2 in S.136, rounded (ln2 in Q0.128).
    const bool n = negative(F);
    const U128 r = mul_hi(n ? neg(F) : F, kLn2Q128);
    return exp_reduced(k, n ? neg(r) : r);
}

Wide exp10_kernel(const Wide& x) {
    if (is_zero(x)) return kWideOne;
    // x ln10 2^176 = m L 2^(e - 206), L = ln10 2^254 (four words), m the
    // significand: the 384-bit product m L, shifted right by 206 - e >= 193
    // (|x| < 2^13), modulo 2^192, rounded.
    std::uint64_t p[6] = {};  // least significant first
    multiply_accumulate(x.m, kLn10, 4, p);
    const int shift = 206 - x.e;
    // Bits shift .. shift + 191 of p, plus the rounding bit below them.
    auto bit_word = [&p](int b) -> std::uint64_t {  // 64 bits starting at bit b
        if (b >= 384) return 0;
        const int w = b >> 6, s = b & 63;
        const std::uint64_t lo = p[w] >> s;
        const std::uint64_t hi = (s != 0 && w + 1 < 6) ? p[w + 1] << (64 - s) : 0;
        return lo | hi;
    };
    U192 X{0, 0, 0};
    if (shift < 384) {
        X = U192{bit_word(shift + 128), bit_word(shift + 64), bit_word(shift)};
        const std::uint64_t half = (p[(shift - 1) >> 6] >> ((shift - 1) & 63)) & 1;
        X = add(X, U192{0, 0, half});
    }
    if (x.neg) X = neg(X);
    // k from x itself: 256 x log2(10) within 2^-29 (x cut to 53 bits, two
    // roundings), so |r| exceeds ln2/512 by far less than 2^-20 of it.
    const double xd = x.e < -60 ? 0.0 : u53_to_double(x.m.hi >> 11) * pow2(x.e - 53);
    const std::int64_t k = nearest_int((x.neg ? -xd : xd) * kLog2_10x256);
    return exp_reduced(k, reduce_ln2(X, k));
}

namespace {

// 10^n for an integer 0 <= n <= 55 (5^n < 2^128), exactly.
Wide exact_power_of_ten(std::uint32_t n) {
    U128 p{0, 1};
    for (std::uint32_t i = 0; i < n; ++i) p = add(shl(p, 2), p);
    return scaled(from_fixed(p, 0), static_cast<std::int32_t>(n));
}

// x an integer 0 <= x <= 55: its value, else -1.
int small_integer(const Wide& x) {
    if (x.neg || x.e < 1 || x.e > 6) return -1;
    if (!is_zero(shl(x.m, x.e))) return -1;  // fraction bits
    const auto v = static_cast<int>(x.m.hi >> (64 - x.e));
    return v <= 55 ? v : -1;
}

}  // namespace

Wide exp10_exact_integers(const Wide& x) {
    const int n = small_integer(x);
    return n >= 0 ? exact_power_of_ten(static_cast<std::uint32_t>(n)) : exp10_kernel(x);
}

}  // namespace mivor::quadfunc
