// The gamma and log-gamma kernels.
//
// Method.  For y >= 20, Stirling's series
//
//     ln Gamma(y) = (y - 1/2) ln y - y + ln(2 pi)/2 + sum_{k=1..22} a_k y^(1-2k),
//
// a_k = B_2k/(2k(2k-1)); the first omitted term is below 2^-134.3 at y = 20
// (gamma_data.h).  Up to y = 2^11 the sum is formed in S.176: ln y from
// log_kernel (2^-139 absolute), its product with y - 1/2 (exact operand,
// product rounded in S.176: at most 2^11 times 2^-139 plus 2^-177), the
// series by Horner in the working format (2^-125 of its value, below
// 1/240): within 2^-127.6 absolute.  Beyond, the working format: within
// 2^-125 relative (no cancellation: the result exceeds 2 y).
//
// For 0 < x < 20: y = x + n in [20, 21) and P = x (x+1) ... (x+n-1), each
// factor and product rounded once (2n roundings, 2^-122.7 relative at
// most); Gamma(x) = e^(ln Gamma(y)) / P and ln Gamma(x) = ln Gamma(y) - ln P
// in S.176 (2^-122.6 absolute: this bounds the log-gamma near its zeros).
// Within 1/128 of 1 and of 2, where ln Gamma vanishes, its Taylor series
// (20 terms; the first omitted one is below 2^-143 of the result) keeps
// the relative precision: within 2^-125.
//
// Negative x (not an integer): Gamma(x) = pi / (sin(pi x) Gamma(1 - x)) and
// ln|Gamma(x)| = ln pi - ln|sin(pi x)| - ln Gamma(1 - x), with sin(pi x)
// from the exact quadrant reduction (2x quadrants).  The gamma function
// keeps its relative bound (2^-122); the log-gamma function its absolute
// bound (2^-122 plus that of ln|sin pi x|), which near its zeros on the
// negative axis (-2.457..., -2.747..., ...) is what it promises.
#include "quadfunc/gamma.h"

#include "quadfunc/estimate.h"
#include "quadfunc/gamma_data.h"
#include "quadfunc/kernels.h"
#include "quadfunc/sincos.h"
#include "quadfunc/sincos_data.h"

namespace mivor::quadfunc {

using namespace gamma_data;

Wide horner_wide(const WideConst* c, int n, const Wide& z) {
    Wide acc = c[0]();
    for (int i = 1; i < n; ++i) acc = add(c[i](), mul(acc, z));
    return acc;
}

namespace {

constexpr Wide kTwenty{{0xA000000000000000u, 0}, 5, 0};

// A (S.176, signed) times a working value b, in S.176, rounded; the
// product below 2^15 in magnitude.
U192 mul_s176(U192 A, const Wide& b) {
    if (is_zero(b)) return U192{0, 0, 0};
    const bool an = negative(A);
    if (an) A = neg(A);
    // A b = A m 2^(e - 128): the 320-bit product A m, shifted right by
    // 128 - e (>= 113 since |b| < 2^15).
    const U128 p0 = mul64(A.w0, b.m.lo), p1 = mul64(A.w0, b.m.hi), p2 = mul64(A.w1, b.m.lo);
    const U128 p3 = mul64(A.w1, b.m.hi), p4 = mul64(A.w2, b.m.lo), p5 = mul64(A.w2, b.m.hi);
    std::uint64_t w[5] = {p0.lo, 0, 0, 0, 0};
    auto acc = [&w](int i, U128 v) {
        std::uint64_t s = w[i] + v.lo;
        std::uint64_t c = s < v.lo;
        w[i] = s;
        s = w[i + 1] + v.hi;
        std::uint64_t c2 = s < v.hi;
        s += c;
        c2 += s < c;
        w[i + 1] = s;
        for (int k = i + 2; c2 != 0 && k < 5; ++k) {
            w[k] += c2;
            c2 = w[k] < c2;
        }
    };
    w[1] = p0.hi;
    acc(1, p1);
    acc(1, p2);
    acc(2, p3);
    acc(2, p4);
    acc(3, p5);
    const int shift = 128 - b.e;
    auto bits = [&w](int from) -> std::uint64_t {
        if (from >= 320) return 0;
        const int i = from >> 6, s = from & 63;
        std::uint64_t v = w[i] >> s;
        if (s != 0 && i + 1 < 5) v |= w[i + 1] << (64 - s);
        return v;
    };
    U192 r{bits(shift + 128), bits(shift + 64), bits(shift)};
    r = add(r, U192{0, 0, (bits(shift - 1) & 1)});
    if (an != (b.neg != 0)) r = neg(r);
    return r;
}

// sum a_k y^(1-2k) = T(1/y^2)/y.
Wide stirling_tail(const Wide& y) {
    const Wide r = recip(y);
    return mul(horner_wide(kStirling, 22, mul(r, r)), r);
}

// ln x as S.176 for x > 0 within 2^15 of the range (the near-1 form summed).
U192 log_s176(const Wide& x) {
    const LogResult l = log_kernel(x);
    return l.fixed ? l.s176 : to_s176(add(l.z, l.tail));
}

}  // namespace

U192 lgamma_stirling_s176(const Wide& y) {
    const U192 L = log_s176(y);
    const Wide y_half = sub(y, Wide{{kTop64, 0}, 0, 0});  // y - 1/2, exact for y < 2^11
    U192 s = mul_s176(L, y_half);
    s = sub(s, to_s176(y));
    s = add(s, kHalfLn2Pi);
    return add(s, to_s176(stirling_tail(y)));
}

Wide lgamma_stirling_wide(const Wide& y) {
    Wide s = mul(sub(y, Wide{{kTop64, 0}, 0, 0}), log_wide(y));
    s = sub(s, y);
    s = add(s, from_signed_fixed192(kHalfLn2Pi, 176));
    return add(s, stirling_tail(y));
}

namespace {

// x + n in [20, 21) and the product x (x+1) ... (x+n-1), 0 < x < 20.
struct Shifted {
    Wide y, product;
};
Shifted shift_up(const Wide& x) {
    Wide y = x, p = kWideOne;
    while (compare_magnitude(y, kTwenty) < 0) {
        p = mul(p, y);
        y = add(y, kWideOne);
    }
    return Shifted{y, p};
}

bool within_128th(const Wide& z) { return is_zero(z) || z.e <= -7; }

}  // namespace

LGammaResult lgamma_positive(const Wide& x) {
    LGammaResult r{};
    // Next to 1 and 2: the Taylor series, relative.
    const Wide z1 = sub(x, kWideOne), z2 = sub(x, Wide{{kTop64, 0}, 2, 0});
    if (within_128th(z1) || within_128th(z2)) {
        const bool one = within_128th(z1);
        const Wide& z = one ? z1 : z2;
        r.fixed = false;
        r.wide = is_zero(z) ? kWideZero : mul(z, horner_wide(one ? kNearOne : kNearTwo, 20, z));
        return r;
    }
    if (compare_magnitude(x, kTwenty) >= 0) {
        if (x.e <= 11) {
            r.fixed = true;
            r.s176 = lgamma_stirling_s176(x);
        } else {
            r.fixed = false;
            r.wide = lgamma_stirling_wide(x);
        }
        return r;
    }
    const Shifted s = shift_up(x);
    r.fixed = true;
    r.s176 = sub(lgamma_stirling_s176(s.y), log_s176(s.product));
    return r;
}

Wide lgamma_wide(const LGammaResult& r) { return r.fixed ? from_signed_fixed192(r.s176, 176) : r.wide; }

Wide gamma_positive(const Wide& x) {
    // x < 2^11 here (beyond, the result overflows).
    if (compare_magnitude(x, kTwenty) >= 0) return exp_s176(lgamma_stirling_s176(x));
    const Shifted s = shift_up(x);
    return div(exp_s176(lgamma_stirling_s176(s.y)), s.product);
}

Wide sin_pi(const Wide& a) {
    // sin(pi |a|) from 2|a| quadrants, exactly reduced; the sign of a applied.
    Wide twice = abs(a);
    twice.e += 1;
    const Reduced red = reduce_quadrants(twice);
    Wide s = by_quadrant(is_zero(red.r) ? SinCos{kWideZero, kWideOne} : sincos_reduced(red.r), red.quadrant).sin;
    s.neg ^= a.neg;
    return s;
}

}  // namespace mivor::quadfunc
