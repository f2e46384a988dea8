// g_aqxq, g_a2xq, g_atxq: REAL(16) raised to a REAL(16) power, and two
// and ten raised to a REAL(16) power.
//
// Method of x**y: e^(y ln x) with the kernels of the REAL(16) elementary
// functions (quadfunc/kernels.h), in the working format's fixed point.
// ln x comes as a 192-bit significand with a scale (log_parts below):
//   * away from 1 from the logarithm's S.176 sum, within 2^-142.1
//     absolute, and |ln x| >= 2^-8.6 there: 2^-133.5 relative at worst,
//     2^-142.1 / |ln x| in general;
//   * within 2^-8 of 1 as z + tail, z = x - 1 exact and |tail| < 2^-9 |z|
//     within 2^-126.4 relative: 2^-135.4 relative.
// y ln x is then formed exactly from y's 113 bits and those 192 bits and
// rounded once to S.176 (2^-177), which keeps the error of ln x alone:
// an absolute error d of E = y ln x is a relative error d of e^E, and
// |E| < 11357 = 2^13.47 for every result in range, so d is at most
// 2^13.47 2^-133.5 = 2^-120 where ln x lies next to 2^-8.6 (x near 0.997
// or 1.003 with |y| near 2^22), 2^-121.9 next to 1, and far less for the
// bases of ordinary size (|ln x| >= 1/2: 2^-127.6).  e^E in the working
// format adds 2^-126.9 (quadfunc/exp.cpp) and the rounding to REAL(16)
// half a unit: at most 0.5 + 2^-6.9 ulp in the worst corner, 0.5 + 2^-13
// for |ln x| >= 1/2.  Measured: `mivor accuracy g_aqxq` (see README).
//
// Exact results come out exact, ties included: for an integral y in
// 1..114 and x = m 2^k (m odd), m^y is formed exactly while it has at
// most 114 bits, and rounded once (an exact power of 114 bits lies halfway
// between two REAL(16) numbers: 78125**7 = 5^49, rounded to even).  Other
// exact powers (2**n, 4**0.5, x**-1 for a power of two x) come out of the
// general path exactly, its error being far below the distance to the
// next midpoint.
//
// 2**y and 10**y are the kernels of g_qexp2 and g_qexp10 (within 2^-126.9
// relative; 10^n exact for n = 0..55, 10^49 a tie rounded to even).
//
// Special cases of x**y, tested in this order on every pass, as for the
// REAL(8) power (power/real_power.h):
//   y = +-0, or x = 1          1 (NaN**0 and 1**NaN included)
//   x or y NaN                 x quieted if x is a NaN, else y quieted
//   x = +-0                    y > 0: +0; y < 0: error 270, the report
//                              describing the exponent only, +Inf or HUGE
//   x < 0, y finite and not    error 271, both operands described; IEEE
//   integral                   results: the quiet NaN, otherwise the power
//                              goes on with |x|
//   x < 0 otherwise            |x|**y, negated for an odd integral y
//   |x|**y above HUGE          error 272, both operands described; +Inf
//   (infinite included)        or HUGE whatever the sign of the power
//   |x|**y below 2^-16382      +0 (-0 for a negative base and odd y), no
//                              report: REAL(16) results are never subnormal
// Whether y is integral (and odd) is read from its bits.  2**y and 10**y
// report only 272, describing the constant base (2.0 or 10.0 in REAL(16))
// as the first operand and the exponent as the second; a retry keeps the
// base.  All three use the full form.
#include <cstdint>

#include "frame/report.h"
#include "mivor/mivor.h"
#include "quadfunc/kernels.h"
#include "quadfunc/special.h"

using namespace mivor;
using namespace mivor::quadfunc;

namespace {

using Pass = report::Step<Real16, Real16, Real16>;

constexpr Real16 kTwoQ = quad::make(0x40000000u, 0, 0, 0);
constexpr Real16 kTenQ = quad::make(0x40024000u, 0, 0, 0);

bool is_one(const Real16& x) { return x.w[3] == 0x3FFF0000u && (x.w[2] | x.w[1] | x.w[0]) == 0; }

// ---- the exponent's integrality ------------------------------------------

enum class Integral { no, even, odd };

// For a finite, non-zero y: the 113-bit significand (hidden bit at 112)
// and whether its value is an integer, and which.
Integral integral_class(const Real16& y) {
    const int e = static_cast<int>(quad::exponent_field(y)) - 16383;  // |y| in [2^e, 2^(e+1))
    if (e < 0) return Integral::no;                                   // 0 < |y| < 1, subnormals too
    if (e > 112) return Integral::even;                               // the units bit lies beyond the significand
    const U128 m{(std::uint64_t{(y.w[3] & 0xFFFFu) | 0x10000u} << 32) | y.w[2], (std::uint64_t{y.w[1]} << 32) | y.w[0]};
    const int fraction = 112 - e;  // bits below the units bit
    if (fraction > 0 && !is_zero(shl(m, 128 - fraction))) return Integral::no;
    return (shr(m, fraction).lo & 1) != 0 ? Integral::odd : Integral::even;
}

// ---- ln x with 192 bits ----------------------------------------------------

// |ln x| = m 2^(e - 192), m normalised (top bit set); neg: ln x < 0.
struct Log192 {
    U192 m;
    std::int32_t e;
    bool neg;
};

inline int clz192(U192 a) {
    if (a.w2 != 0) return __builtin_clzll(a.w2);
    if (a.w1 != 0) return 64 + __builtin_clzll(a.w1);
    return 128 + __builtin_clzll(a.w0);
}

// A 128-bit m times 2^s as a 192-bit integer, s <= 64, rounded to nearest
// where s < 0.
U192 place(U128 m, int s) {
    if (s >= 0) {
        if (s == 0) return U192{0, m.hi, m.lo};
        if (s == 64) return U192{m.hi, m.lo, 0};
        return U192{m.hi >> (64 - s), (m.hi << s) | (m.lo >> (64 - s)), m.lo << s};
    }
    if (s <= -129) return U192{0, 0, 0};
    const U128 r = s == -128 ? U128{0, m.hi >> 63} : shr_round(m, -s);
    return U192{0, r.hi, r.lo};
}

// x finite, positive, x != 1.
Log192 log_parts(const Wide& x) {
    const LogResult r = log_kernel(x);
    U192 s;
    std::int32_t unit;  // s counts units of 2^unit
    if (r.fixed) {
        s = r.s176;
        unit = -176;
    } else {
        // z exact (113 bits at most: x - 1), its units 2^(z.e - 190) leave
        // two bits of headroom; the tail lies 8 binades or more below it.
        s = place(r.z.m, 62);
        if (r.z.neg) s = neg(s);
        if (!is_zero(r.tail)) {
            U192 t = place(r.tail.m, 62 - (r.z.e - r.tail.e));
            s = r.tail.neg ? sub(s, t) : add(s, t);
        }
        unit = r.z.e - 190;
    }
    const bool n = negative(s);
    if (n) s = neg(s);
    const int c = clz192(s);  // between 1 and 26: s is neither 0 nor near 2^192
    return Log192{shl(s, c), unit + 192 - c, n};
}

// ---- e^(y ln x) --------------------------------------------------------------

struct Magnitude {
    Rounded r;
    bool tiny;  // below 2^-16382 however rounded: +0
};

// |x|**y for x finite positive, x != 1, y finite non-zero, y ln x rounded
// once onto S.176 before the exponential.
Magnitude general_power(const Wide& x, const Wide& y) {
    const Log192 l = log_parts(x);
    // |E| = My Ml 2^(ey - 128 + el - 192), My Ml in [2^318, 2^320).
    const std::int32_t scale = y.e + l.e;
    const bool down = (y.neg != 0) != l.neg;
    if (scale >= 16) {  // |E| >= 2^14: beyond both ends of the range
        if (down) return Magnitude{{}, true};
        return Magnitude{{{}, true}, false};
    }
    std::uint64_t p[5] = {};  // least significant first
    const std::uint64_t lm[3] = {l.m.w2, l.m.w1, l.m.w0};
    multiply_accumulate(y.m, lm, 3, p);
    // E in S.176: the product shifted right by 144 - scale >= 129, rounded.
    const int shift = 144 - scale;
    auto word = [&p](int b) -> std::uint64_t {  // 64 bits of p from bit b
        if (b >= 320) return 0;
        const int w = b >> 6, s = b & 63;
        const std::uint64_t lo = p[w] >> s;
        const std::uint64_t hi = (s != 0 && w + 1 < 5) ? p[w + 1] << (64 - s) : 0;
        return lo | hi;
    };
    U192 E{0, 0, 0};
    if (shift <= 320) {
        E = U192{word(shift + 128), word(shift + 64), word(shift)};
        E = add(E, U192{0, 0, (p[(shift - 1) >> 6] >> ((shift - 1) & 63)) & 1});
    }
    if (E.w2 >= (std::uint64_t{1} << 62)) {  // |E| >= 2^14 after all
        if (down) return Magnitude{{}, true};
        return Magnitude{{{}, true}, false};
    }
    if (down) E = neg(E);
    return Magnitude{round_to_real16(exp_s176(E)), false};
}

// m^y 2^(k y) exactly, for x = m 2^k (m odd) and an integral 1 <= y <= 114,
// when m^y has at most 114 bits; false when it has more (then the power is
// neither representable nor halfway between two REAL(16) numbers).
bool exact_power(const Wide& x, std::uint32_t y, Rounded& out) {
    const int tz = x.m.lo != 0 ? __builtin_ctzll(x.m.lo) : 64 + __builtin_ctzll(x.m.hi);
    const U128 m = shr(x.m, tz);
    const std::int64_t k = static_cast<std::int64_t>(x.e) - 128 + tz;
    U128 p = m;
    for (std::uint32_t i = 1; i < y; ++i) {
        const U256 q = mul_full(p, m);
        if (q.w3 != 0 || q.w2 != 0 || q.w1 >= (std::uint64_t{1} << 50)) return false;  // 115 bits or more
        p = U128{q.w1, q.w0};
    }
    if (p.hi >= (std::uint64_t{1} << 50)) return false;
    const std::int64_t point = -k * static_cast<std::int64_t>(y);  // |k y| < 2^21
    out = round_to_real16(from_fixed(p, static_cast<std::int32_t>(point)));
    return true;
}

// An integral y of 1..114 as its value, otherwise 0.
std::uint32_t small_positive_integer(const Real16& y) {
    if (quad::sign(y)) return 0;
    const int e = static_cast<int>(quad::exponent_field(y)) - 16383;
    if (e < 0 || e > 6) return 0;
    const U128 m{(std::uint64_t{(y.w[3] & 0xFFFFu) | 0x10000u} << 32) | y.w[2], (std::uint64_t{y.w[1]} << 32) | y.w[0]};
    if (e < 112 && !is_zero(shl(m, 16 + e))) return 0;  // fraction bits
    const U128 v = shr(m, 112 - e);
    return v.lo <= 114 ? static_cast<std::uint32_t>(v.lo) : 0;
}

Pass power_pass(Real16 x, Real16 y) {
    const Kind kx = kind_of(x), ky = kind_of(y);
    if (ky == Kind::zero || is_one(x)) return kOneQ;
    if (kx == Kind::nan) return quieted(x);
    if (ky == Kind::nan) return quieted(y);
    if (kx == Kind::zero) {
        if (!quad::sign(y)) return kZeroQ;
        return report::fail(Error::zero_to_negative_r16_r16, _Inf_Q, kHuge_Q).described(report::Describe::second);
    }
    bool negate = false;
    if (quad::sign(x)) {
        if (ky != Kind::infinite) {
            const Integral c = integral_class(y);
            if (c == Integral::no) return report::fail_then_restart(Error::negative_base_r16, _NaN_Q, absolute(x), y);
            negate = c == Integral::odd;
        }
        x = absolute(x);
    }
    const Real16 sign = negate ? kMZeroQ : kZeroQ;
    auto signed_result = [&](Real16 m) {
        m.w[3] |= sign.w[3];
        return m;
    };
    auto overflow = [] { return report::fail(Error::power_overflow_r16, _Inf_Q, kHuge_Q); };
    if (is_one(x)) return signed_result(kOneQ);
    const bool y_up = !quad::sign(y);
    if (ky == Kind::infinite) {
        const bool x_up = quad::exponent_field(x) >= 16383;  // x > 1 (x = 1 is done)
        if (x_up == y_up) return overflow();
        return kZeroQ;
    }
    if (kx == Kind::infinite) {
        if (y_up) return overflow();
        return signed_result(kZeroQ);
    }
    const Wide xw = from_real16(x);
    Rounded r;
    const std::uint32_t n = small_positive_integer(y);
    if (n == 0 || !exact_power(xw, n, r)) {
        const Magnitude m = general_power(xw, from_real16(y));
        if (m.tiny) return signed_result(kZeroQ);
        r = m.r;
    }
    if (r.overflow) return overflow();
    return signed_result(r.value);
}

// ---- 2**y, 10**y ---------------------------------------------------------------

template <bool ten>
Pass base_pass(Real16 /*the constant base*/, Real16 y) {
    switch (kind_of(y)) {
        case Kind::nan: return quieted(y);
        case Kind::zero: return kOneQ;
        case Kind::infinite:
            if (quad::sign(y)) return kZeroQ;
            return report::fail(Error::power_overflow_r16, _Inf_Q, kHuge_Q);
        case Kind::finite: break;
    }
    const Wide w = from_real16(y);
    // Beyond these magnitudes every result overflows or lies below 2^-16382.
    if (w.e > (ten ? 13 : 15)) {
        if (w.neg) return kZeroQ;
        return report::fail(Error::power_overflow_r16, _Inf_Q, kHuge_Q);
    }
    const Rounded r = round_to_real16(ten ? exp10_exact_integers(w) : exp2_kernel(w));
    if (r.overflow) return report::fail(Error::power_overflow_r16, _Inf_Q, kHuge_Q);
    return r.value;
}

}  // namespace

extern "C" mivor_real16* g_aqxq(mivor_real16* result, const mivor_real16* base, const mivor_real16* exponent) {
    *result = report::settle<report::Form::full>(power_pass, *base, *exponent);
    return result;
}

extern "C" mivor_real16* g_a2xq(mivor_real16* result, const mivor_real16* exponent) {
    *result = report::settle<report::Form::full>(base_pass<false>, kTwoQ, *exponent);
    return result;
}

extern "C" mivor_real16* g_atxq(mivor_real16* result, const mivor_real16* exponent) {
    *result = report::settle<report::Form::full>(base_pass<true>, kTenQ, *exponent);
    return result;
}
