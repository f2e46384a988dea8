// The shared kernels of the COMPLEX(16) functions: see quad_complex.h.
#include "complex/quad_complex.h"

#include "quadfunc/accumulate.h"
#include "quadfunc/atan_data.h"
#include "quadfunc/exp_log_data.h"
#include "quadfunc/hyperbolic.h"
#include "quadfunc/kernels.h"
#include "quadfunc/sincos_data.h"

namespace mivor::complex::quad16 {

using namespace quadfunc;

namespace {

constexpr Wide kHalf{{kTop64, 0}, 0, 0};

// pi/2 to 192 bits: 2^1 (P / 2^192), for t pi/2 in S.176 to 2^-170 when
// |t| < 2^15 (the 128-bit constant alone would leave |t| 2^-129).
constexpr std::uint64_t kPiOver2Bits[3] = {0xC90FDAA22168C234u, 0xC4C6628B80DC1CD1u, 0x29024E088A67CC74u};

// |t| pi/2 in S.176 for 1/4 <= |t| < 2^14.5: the significand times the
// 192-bit constant, truncated once (2^-176, beside the constant's 2^-191
// relative error times 2^15).
U192 times_pi_over_2_s176(const Wide& t) {
    // m P_hi exactly (256 bits), plus the top of m P_lo (P_lo 64 bits
    // below P_hi): the product m P 2^-64, floor, to within 2 units.
    const U256 hi = mul_full(t.m, U128{kPiOver2Bits[0], kPiOver2Bits[1]});
    const U192 lo = mul_128x64(t.m, kPiOver2Bits[2]);  // weight 2^-64 of hi's last word
    // T = hi + lo / 2^64 as 256 bits (w3..w0).
    std::uint64_t w0 = hi.w0 + lo.w1;
    std::uint64_t c = w0 < lo.w1;
    std::uint64_t w1 = hi.w1 + c;
    c = w1 < c;
    w1 += lo.w2;
    c += w1 < lo.w2;
    std::uint64_t w2 = hi.w2 + c;
    c = w2 < c;
    const std::uint64_t w3 = hi.w3 + c;
    // Value = T 2^(e - 128 - 128 + 1) (P is pi/2 / 2); in S.176: T >> (79 - e).
    const int b = 79 - t.e - 64;  // 0 < b <= 16 for e in [-1, 14]
    // A logical shift: T reaches 2^255.
    const U192 x{w3 >> b, (w2 >> b) | (w3 << (64 - b)), (w1 >> b) | (w2 << (64 - b))};
    return add(x, U192{0, 0, (w1 >> (b - 1)) & 1});
}

Hyperbolic from_exponential(const Wide& E, bool large, std::uint32_t neg) {
    // |t| >= 128: e^-|t| is below 2^-368 of e^|t| and left out.
    Wide c = large ? E : add(E, recip(E));
    Wide s = large ? E : sub(E, recip(E));
    c = scaled(c, -1);
    s = scaled(s, -1);
    s.neg = neg;
    return {s, c, false};
}

// 64-bit words of a little-endian integer of n words from bit pos on
// (zeros beyond both ends).
std::uint64_t word_at(const std::uint64_t* a, int n, int pos) {
    if (pos <= -64 || pos >= 64 * n) return 0;
    const int w = pos >= 0 ? pos / 64 : -((-pos + 63) / 64);
    const int b = pos - 64 * w;
    const std::uint64_t lo = (w >= 0 && w < n) ? a[w] : 0;
    const std::uint64_t hi = (w + 1 >= 0 && w + 1 < n) ? a[w + 1] : 0;
    return b == 0 ? lo : (lo >> b) | (hi << (64 - b));
}

constexpr int kWords = 6;

// acc += p 2^shift, p a 256-bit square (w3..w0); bits that fall below the
// accumulator are dropped (they lie below 2^-256 of the sum).
void add_shifted(std::uint64_t* acc, const U256& p, int shift) {
    const std::uint64_t pw[4] = {p.w0, p.w1, p.w2, p.w3};
    std::uint64_t carry = 0;
    for (int i = 0; i < kWords; ++i) {
        const std::uint64_t v = word_at(pw, 4, 64 * i - shift);
        const std::uint64_t s = acc[i] + carry;
        const std::uint64_t c1 = s < carry;
        acc[i] = s + v;
        carry = c1 + (acc[i] < v);
    }
}

// The top 256 bits of a nonzero nonnegative accumulator whose bit 0 weighs
// 2^lsb, as hi (rounded towards zero to 128 bits) + lo (the next 128).
struct Split {
    Wide hi, lo;
};
Split split(const std::uint64_t* acc, std::int32_t lsb, std::uint32_t neg) {
    int top = kWords * 64 - 1;
    while (top >= 0 && ((acc[top / 64] >> (top % 64)) & 1) == 0) --top;
    const int start = top - 127;
    const U128 h{word_at(acc, kWords, start + 64), word_at(acc, kWords, start)};
    const U128 l{word_at(acc, kWords, start - 64), word_at(acc, kWords, start - 128)};
    return {from_fixed(h, -(start + lsb), neg), from_fixed(l, -(start - 128 + lsb), neg)};
}

}  // namespace

SinCos sin_cos(const Wide& t, bool quadrants) {
    if (is_zero(t)) return {t, kWideOne};
    const Reduced red = quadrants ? reduce_quadrants(t) : reduce_radians(t);
    SinCos sc = by_quadrant(is_zero(red.r) ? SinCos{kWideZero, kWideOne} : sincos_reduced(red.r), red.quadrant);
    sc.sin.neg ^= t.neg;  // the reduction works on |t|
    return sc;
}

Hyperbolic sinh_cosh(const Wide& t, bool quadrants) {
    if (is_zero(t)) return {t, kWideOne, false};
    if (t.e > 14) return {t, kWideOne, true};  // |t| >= 2^14 (and so t pi/2)
    const Wide u = quadrants ? mul(t, sincos_data::kPiOver2()) : t;
    if (compare_magnitude(u, kHalf) < 0) {
        // The series kernels (no exponential); t pi/2 rounded to 2^-128
        // relative costs that much in sinh and less in cosh.
        return {sinh_wide(u), cosh_wide(u), false};
    }
    const U192 X = quadrants ? times_pi_over_2_s176(abs(t)) : to_s176(abs(t));
    return from_exponential(exp_s176(X), u.e > 7, t.neg);
}

LogModulus log_modulus(const Wide& x, const Wide& y) {
    // x^2 + y^2 exactly: each square is the 256-bit square of the
    // significand; the accumulator's bit 0 weighs 2^(2E - 320), E the
    // larger scale, so the larger square sits at bit 64 and 1 (for E = 0
    // or 1, the only scales where the sum can be near 1) at bit 320 - 2E.
    const std::int32_t E = is_zero(y) || (!is_zero(x) && x.e >= y.e) ? x.e : y.e;
    const std::int32_t lsb = 2 * E - 320;
    std::uint64_t acc[kWords] = {};
    const Wide* const parts[2] = {&x, &y};
    for (const Wide* v : parts) {
        if (is_zero(*v)) continue;
        const std::int32_t shift = 2 * v->e - 256 - lsb;  // <= 64
        if (shift > -256) add_shifted(acc, mul_full(v->m, v->m), shift);
    }
    if (E == 0 || E == 1) {
        // d = x^2 + y^2 - 1, exact in 384 bits (the sum is below 2^321).
        std::uint64_t d[kWords];
        const int one = 320 - 2 * E;
        std::uint64_t borrow = 0;
        for (int i = 0; i < kWords; ++i) {
            const std::uint64_t o = (one / 64 == i) ? std::uint64_t{1} << (one % 64) : 0;
            const std::uint64_t v = acc[i] - o;
            const std::uint64_t b1 = acc[i] < o;
            d[i] = v - borrow;
            borrow = b1 | (v < borrow);
        }
        const std::uint32_t neg = borrow;
        if (neg) {
            std::uint64_t carry = 1;
            for (auto& w : d) {
                w = ~w + carry;
                carry = carry && w == 0;
            }
        }
        bool zero = true;
        for (auto w : d) zero = zero && w == 0;
        if (zero) return {kWideZero, kWideZero, kWideZero};
        const Split ds = split(d, lsb, neg);
        if (ds.hi.e <= -8) {
            // |d| < 2^-8: ln(1 + d) = d + d (d q(d)), q the logarithm
            // kernel's fit on |d| < 2^-8 (error below 2^-137 |d|), d in
            // S.134 for the Horner scheme; the tail d (d q) is below 2^-9
            // |d| and within 2^-126 of itself.  Halved for ln |z|.
            U128 z134 = to_fixed(ds.hi, 134);
            if (neg) z134 = quadfunc::neg(z134);
            const U128 q = horner_s127(exp_log_data::kLogPoly, 14, z134, 6);
            const Wide tail = mul(ds.hi, mul(ds.hi, from_signed_fixed(q, 127)));
            return {scaled(ds.hi, -1), scaled(ds.lo, -1), scaled(tail, -1)};
        }
    }
    // Away from 1: ln s = ln s_hi + s_lo / s_hi, |ln s| >= 2^-8.6; log_wide
    // is within 2^-126.5 of it, and s_lo / s_hi < 2^-127 needs only a few
    // correct bits.
    const Split s = split(acc, lsb, 0);
    return {scaled(log_wide(s.hi), -1), scaled(div(s.lo, s.hi), -1), kWideZero};
}

Real16 special_angle(const Real16& x, const Real16& y) {
    const std::uint32_t sy = sign_of(y);
    Wide a = kWideZero;
    if (is_inf(y)) {
        a = is_inf(x) ? (sign_of(x) ? mul_small(atan_data::kPiOver4(), 3) : atan_data::kPiOver4())
                      : sincos_data::kPiOver2();
    } else if (sign_of(x)) {
        a = sincos_data::kPi();
    }
    return with_sign(round_to_real16(a).value, sy);
}

Wide LogModulus::wide() const { return add(add(a, c), b); }

Rounded LogModulus::rounded() const {
    if (is_zero(a)) return round_to_real16(a);
    // |b|, |c| < 2^-8 |a|: the sum lies below 2^(a.e + 1).
    Acc256 acc(a.e - 254);
    acc.add(a);
    acc.add(b);
    acc.add(c);
    return acc.round();
}

}  // namespace mivor::complex::quad16
