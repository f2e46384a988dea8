// The working format's operations: see wide.h for the contracts.
#include "quadfunc/wide.h"

#include "quadfunc/estimate.h"

namespace mivor::quadfunc {
namespace {

// m (128 bits) shifted right by d >= 0 into the 64-bit extension word
// below it; everything shifted out below the extension is jammed into its
// bit 0, so the extension decides the rounding exactly.
inline void shift_right_ext(U128 m, std::int32_t d, U128* out, std::uint64_t* ext) {
    if (d == 0) {
        *out = m;
        *ext = 0;
    } else if (d < 64) {
        *ext = m.lo << (64 - d);
        *out = shr(m, d);
    } else if (d == 64) {
        *ext = m.lo;
        *out = U128{0, m.hi};
    } else if (d < 128) {
        const int s = d - 64;
        *ext = (m.lo >> s) | (m.hi << (64 - s)) | ((m.lo << (64 - s)) != 0);
        *out = U128{0, m.hi >> s};
    } else if (d == 128) {
        *ext = m.hi | (m.lo != 0);
        *out = U128{0, 0};
    } else if (d < 192) {
        const int s = d - 128;
        *ext = (m.hi >> s) | (((m.hi << (64 - s)) | m.lo) != 0);
        *out = U128{0, 0};
    } else {
        *ext = 1;
        *out = U128{0, 0};
    }
}

// Rounds m with its extension to nearest, ties to even; a carry out of the
// top bit renormalises.
inline Wide round_ext(U128 m, std::uint64_t ext, std::int32_t e, std::uint32_t neg) {
    const std::uint64_t up = (ext > kTop64) | ((ext == kTop64) & m.lo);
    m = add64(m, up);
    if (is_zero(m)) {  // all ones rounded up
        m.hi = kTop64;
        ++e;
    }
    return Wide{m, e, neg};
}

}  // namespace

Wide from_fixed192(U192 x, std::int32_t point, std::uint32_t neg) {
    int s;
    if (x.w2 != 0) s = __builtin_clzll(x.w2);
    else if (x.w1 != 0) s = 64 + __builtin_clzll(x.w1);
    else if (x.w0 != 0) s = 128 + __builtin_clzll(x.w0);
    else return Wide{{0, 0}, kZeroScale, neg};
    // Top 128 bits of x << s, and the 64 below them.
    U128 m;
    std::uint64_t ext;
    if (s < 64) {
        const U192 y = shl(x, s);
        m = U128{y.w2, y.w1};
        ext = y.w0;
    } else if (s < 128) {
        const U128 y = shl(U128{x.w1, x.w0}, s - 64);
        m = y;
        ext = 0;
    } else {
        m = U128{x.w0 << (s - 128), 0};
        ext = 0;
    }
    return round_ext(m, ext, 192 - s - point, neg);
}

U128 to_fixed(const Wide& a, std::int32_t point) {
    if (is_zero(a)) return U128{0, 0};
    const std::int32_t shift = a.e - 128 + point;
    if (shift >= 0) return shl(a.m, shift);
    if (shift > -128) return shr_round(a.m, -shift);
    if (shift == -128) return U128{0, 1};  // m >= 2^127: half or more rounds up
    return U128{0, 0};
}

Wide from_real16(const Real16& x) {
    const std::uint32_t w3 = x.w[3];
    const std::uint32_t field = (w3 >> 16) & 0x7FFF;
    const std::uint32_t neg = w3 >> 31;
    U128 f{(std::uint64_t{w3 & 0xFFFFu} << 32) | x.w[2], (std::uint64_t{x.w[1]} << 32) | x.w[0]};
    if (field != 0) {
        f.hi |= std::uint64_t{1} << 48;
        return Wide{shl(f, 15), static_cast<std::int32_t>(field) - 16382, neg};
    }
    if (is_zero(f)) return Wide{{0, 0}, kZeroScale, neg};
    const int s = clz(f);
    return Wide{shl(f, s), -16366 - s, neg};
}

Rounded round_to_real16(const Wide& a) {
    const std::uint32_t sign = a.neg << 31;
    if (is_zero(a)) return Rounded{quad::make(sign, 0, 0, 0), false};
    U128 sig = shr(a.m, 15);
    const std::uint32_t rem = static_cast<std::uint32_t>(a.m.lo & 0x7FFF);
    const std::uint64_t up = (rem > 0x4000) | ((rem == 0x4000) & (sig.lo & 1));
    sig = add64(sig, up);
    std::int32_t field = a.e + 16382;
    if ((sig.hi >> 49) != 0) {  // 2^113: all ones rounded up
        sig = shr(sig, 1);
        ++field;
    }
    if (field >= 0x7FFF) return Rounded{quad::make(sign | 0x7FFF0000u, 0, 0, 0), true};
    if (field <= 0) return Rounded{quad::make(sign, 0, 0, 0), false};
    return Rounded{quad::make(sign | (static_cast<std::uint32_t>(field) << 16) |
                                  (static_cast<std::uint32_t>(sig.hi >> 32) & 0xFFFFu),
                              static_cast<std::uint32_t>(sig.hi), static_cast<std::uint32_t>(sig.lo >> 32),
                              static_cast<std::uint32_t>(sig.lo)),
                   false};
}

Wide mul(const Wide& a, const Wide& b) {
    const std::uint32_t neg = a.neg ^ b.neg;
    if (is_zero(a) || is_zero(b)) return Wide{{0, 0}, kZeroScale, neg};
    const U256 p = mul_full(a.m, b.m);
    std::int32_t e = a.e + b.e;
    U128 m{p.w3, p.w2};
    std::uint64_t ext = p.w1 | (p.w0 != 0);
    if ((m.hi >> 63) == 0) {
        m = U128{(m.hi << 1) | (m.lo >> 63), (m.lo << 1) | (p.w1 >> 63)};
        ext = (p.w1 << 1) | (p.w0 != 0);
        --e;
    }
    return round_ext(m, ext, e, neg);
}

Wide mul_small(const Wide& a, std::uint32_t k) {
    if (is_zero(a) || k == 0) return Wide{{0, 0}, kZeroScale, a.neg};
    return from_fixed192(mul_128x64(a.m, k), 128 - a.e, a.neg);
}

int compare_magnitude(const Wide& a, const Wide& b) {
    const bool za = is_zero(a), zb = is_zero(b);
    if (za || zb) return za && zb ? 0 : (za ? -1 : 1);
    if (a.e != b.e) return a.e < b.e ? -1 : 1;
    if (equal(a.m, b.m)) return 0;
    return less(a.m, b.m) ? -1 : 1;
}

Wide add(const Wide& x, const Wide& y) {
    if (is_zero(y)) return x;
    if (is_zero(x)) return y;
    const bool swap = compare_magnitude(x, y) < 0;
    const Wide& a = swap ? y : x;
    const Wide& b = swap ? x : y;
    U128 bm;
    std::uint64_t ext;
    shift_right_ext(b.m, a.e - b.e, &bm, &ext);
    std::int32_t e = a.e;
    if (a.neg == b.neg) {
        U128 s = add(a.m, bm);
        if (less(s, a.m)) {  // carry out: one bit down
            ext = (ext >> 1) | (ext & 1) | (s.lo << 63);
            s = shr(s, 1);
            s.hi |= kTop64;
            ++e;
        }
        return round_ext(s, ext, e, a.neg);
    }
    // |a| >= |b|: a - b, the extension borrowing from the significand.
    const std::uint64_t borrow = ext != 0;
    ext = 0 - ext;
    U128 d = sub(sub(a.m, bm), U128{0, borrow});
    if ((d.hi >> 63) == 0) {
        if (is_zero(d) && ext == 0) return Wide{{0, 0}, kZeroScale, 0};
        // Normalise: bits come up from the extension, zeros from below.
        int s = is_zero(d) ? 128 + __builtin_clzll(ext) : clz(d);
        e -= s;
        if (s >= 128) {
            d = U128{ext << (s - 128), 0};
            ext = 0;
        } else if (s >= 64) {
            const int t = s - 64;
            d = U128{t == 0 ? d.lo : (d.lo << t) | (ext >> (64 - t)), ext << t};
            ext = 0;
        } else {
            d = U128{(d.hi << s) | (d.lo >> (64 - s)), (d.lo << s) | (ext >> (64 - s))};
            ext <<= s;
        }
    }
    return round_ext(d, ext, e, a.neg);
}

Wide recip(const Wide& a) {
    // a = v 2^e with v = m / 2^128 in [1/2, 1); 1/a = (1/v) 2^-e.
    if (a.m.hi == kTop64) {
        // v = (1 + d)/2 with d = m.lo/2^127 < 2^-63: 1/v = 2 (1 - d + d^2 - ...),
        // in Q1.127 2^128 - 2 m.lo + m.lo^2/2^126 to within 2^-61 units; the
        // Newton steps below could step past 2^128 this close to it.
        if (a.m.lo == 0) return Wide{{kTop64, 0}, 2 - a.e, a.neg};
        const U128 sq = mul64(a.m.lo, a.m.lo);
        const U128 Y = add64(neg(shl(U128{0, a.m.lo}, 1)), shr_round(sq, 126).lo);
        Wide r = from_fixed(Y, 127, a.neg);
        r.e -= a.e;
        return r;
    }
    // y0 = 1/v in double from the top 52 bits of m and half a unit more
    // (exact in a double; it keeps 1/v below 2, as Q1.127 needs): relative
    // error below 2^-52 (the cut of m) plus 2^-53 (the division), under
    // 2^-51.4.
    const double v = (u53_to_double(a.m.hi >> 12) + 0.5) * 0x1p-52;
    const U128 Y0 = double_to_q1_127(1.0 / v);  // 1/v < 2: Q1.127
    // Newton: y' = y + y (1 - v y).  One step takes 2^-51.4 to 2^-102.8
    // plus its roundings (2^-127); the second leaves the roundings: the
    // product v y rounded in Q1.127 (2^-128 in the error term, times y < 2)
    // and the correction rounded (2^-128), 2^-126.4 relative in all.
    const U128 Y1 = newton_recip_step(a.m, Y0, 48);
    const U128 Y2 = newton_recip_step(a.m, Y1, 100);
    Wide r = from_fixed(Y2, 127, a.neg);
    r.e -= a.e;
    return r;
}

Wide div(const Wide& a, const Wide& b) { return mul(a, recip(b)); }

Wide sqrt(const Wide& a) {
    if (is_zero(a)) return Wide{{0, 0}, kZeroScale, 0};
    // a = (m / 2^128) 2^e.  Even e: sqrt(a) = sqrt(m 2^128) 2^-128 2^(e/2);
    // odd e: sqrt(m 2^127) 2^-128 2^((e+1)/2).  N = m 2^128 or m 2^127.
    const bool odd = (a.e & 1) != 0;
    const std::int32_t e = odd ? (a.e + 1) / 2 : a.e / 2;
    const U128 s = sqrt_fixed(a.m, odd);
    return Wide{s, e, 0};
}

}  // namespace mivor::quadfunc
