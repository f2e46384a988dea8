// Exact argument reduction in degrees and in quadrants: x = k 90 + r or x =
// k + r, |r| <= 45 or 1/2, with r exact, for every finite argument.
//
// x = M 2^E with M the 128-bit significand (E = e - 128).  The period (360
// or 4) is an integer, so x modulo it is found from M modulo a small
// number: for E >= 0, x mod 360 = (M mod 360)(2^E mod 360) mod 360 and x
// mod 4 = 0 once E >= 2; for E < 0, with s = -E, x mod 360 = ((A mod 45)
// 2^(s+3) + B) / 2^s where A and B are M's bits above and below bit s + 3
// (360 2^s = 45 2^(s+3)), and x mod 4 is M's low s + 2 bits over 2^s.
// That remainder v is held exactly as V / 2^s in 192 bits; k is the
// nearest multiple of the right angle, r = v - 90k (or v - k) exactly, and
// r is converted to radians by one product with pi/180 or pi/2 rounded to
// 128 bits: r in radians within 2^-127 relative.  At multiples of a right
// angle r is exactly zero.
#include "quadfunc/sincos.h"
#include "quadfunc/sincos_data.h"

namespace mivor::quadfunc {

namespace {

// u (128 bits) modulo a small n.
std::uint32_t mod_small(U128 u, std::uint32_t n) {
    const std::uint64_t two64 = static_cast<std::uint64_t>((~std::uint64_t{0} % n + 1) % n);  // 2^64 mod n
    return static_cast<std::uint32_t>(((u.hi % n) * two64 + u.lo % n) % n);
}

// 2^e mod n for e >= 0, n < 2^16.
std::uint32_t pow2_mod(std::int32_t e, std::uint32_t n) {
    std::uint64_t result = 1 % n, base = 2 % n;
    for (; e > 0; e >>= 1) {
        if (e & 1) result = result * base % n;
        base = base * base % n;
    }
    return static_cast<std::uint32_t>(result);
}

// u (128 bits) shifted left by 0 <= s < 192 into 192 bits, the bits
// beyond dropped.
U192 shifted(U128 u, int s) {
    U192 r{0, u.hi, u.lo};
    while (s >= 64) {
        r = U192{r.w1, r.w0, 0};
        s -= 64;
    }
    return shl(r, s);
}

constexpr bool less192(U192 a, U192 b) {
    return a.w2 != b.w2 ? a.w2 < b.w2 : a.w1 != b.w1 ? a.w1 < b.w1 : a.w0 < b.w0;
}

// v = V / 2^s in [0, period): k = the nearest multiple of `unit` (ties to
// the lower one), r = v - k unit, both exact.
struct Split {
    unsigned k;
    Wide r;
};
Split nearest_multiple(U192 V, int s, std::uint32_t unit) {
    unsigned k = 0;
    // Boundaries (k + 1/2) unit 2^s, k = 0..3; unit is even (90) or the
    // boundaries are half-integers times 2^s (unit 1): 2 V against (2k + 1)
    // unit 2^s.
    const U192 twice = shl(V, 1);
    while (k < 4 && !less192(twice, shifted(U128{0, (2 * k + 1) * std::uint64_t{unit}}, s))) ++k;
    const U192 R = sub(V, shifted(U128{0, k * std::uint64_t{unit}}, s));
    return Split{k & 3, from_signed_fixed192(R, s)};
}

}  // namespace

Reduced reduce_degrees(const Wide& a) {
    const Wide x = abs(a);
    Wide r;
    unsigned k = 0;
    if (compare_magnitude(x, Wide{{0xB400000000000000u, 0}, 6, 0}) <= 0) {  // |x| <= 45
        r = x;
    } else {
        const std::int32_t E = x.e - 128;
        Split sp;
        if (E >= 0) {
            const std::uint32_t v = mod_small(x.m, 360) * pow2_mod(E, 360) % 360;
            sp = nearest_multiple(U192{0, 0, v}, 0, 90);
        } else {
            const int s = -E;  // 1..122: |x| > 45 keeps e >= 6
            const U128 A = shr(x.m, s + 3);
            const U128 B = s + 3 >= 128 ? x.m : sub(x.m, shl(A, s + 3));
            const U192 V = add(shifted(U128{0, mod_small(A, 45)}, s + 3), U192{0, B.hi, B.lo});
            sp = nearest_multiple(V, s, 90);
        }
        k = sp.k;
        r = sp.r;
    }
    return Reduced{mul(r, sincos_data::kPiOver180()), k};
}

Reduced reduce_quadrants(const Wide& a) {
    const Wide x = abs(a);
    Wide r;
    unsigned k = 0;
    if (x.e <= -1 || (x.e == 0 && x.m.hi == kTop64 && x.m.lo == 0)) {  // |x| <= 1/2
        r = x;
    } else {
        const std::int32_t E = x.e - 128;
        Split sp;
        if (E >= 2) {
            sp = Split{0, kWideZero};
        } else if (E >= 0) {
            sp = nearest_multiple(U192{0, 0, (x.m.lo << E) & 3}, 0, 1);
        } else {
            const int s = -E;  // 1..128
            const U128 V = s + 2 >= 128 ? x.m : sub(x.m, shl(shr(x.m, s + 2), s + 2));
            sp = nearest_multiple(U192{0, V.hi, V.lo}, s, 1);
        }
        k = sp.k;
        r = sp.r;
    }
    return Reduced{mul(r, sincos_data::kPiOver2()), k};
}

}  // namespace mivor::quadfunc
