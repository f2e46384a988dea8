// g_aqdq: REAL(16) division, x / y.
//
// Long division of the significands with an exact remainder, one rounding:
// to nearest, ties to even.  For operands and results in the normal range
// the result is the correctly rounded IEEE binary128 quotient.
//
// Method.  With the significands a, b in [1, 2) and a doubled when a < b,
// the quotient a/b lies in [1, 2): its leading one is known, and the
// fraction bits below it are those of r / b with r = a - b < b.  They come
// from long division with an exact integer remainder, r' = r 2^k - q b:
// every digit estimate is set right by moving q until 0 <= r' < b, so the
// estimates only steer and every flavour gives the same bits.  The final
// remainder decides, by being zero or not, whether an exact half is a tie.
//
//  * 64-bit target: two digits of 64 bits from its 128 / 64-bit divide
//    instruction (Knuth's algorithm D; the estimate from the divisor's upper
//    word is at most 2 too large).
//  * 32-bit targets, which divide at most 64 / 32 bits: three digits of 38,
//    38 and 37 bits, each estimated from the leading 52 bits of the partial
//    remainder times a double reciprocal of the divisor's leading 52 bits --
//    the only floating-point division.  The estimate is within 2^-11 of the
//    true digit (the two 52-bit truncations cost at most 2^(k-50) = 2^-12,
//    the three double roundings less than 2^-13), so a correction is rare
//    and never runs twice.  These doubles hold integers below 2^53 and are
//    built from and read back into integers through their bit patterns
//    (adding and subtracting 2^52): no conversion instruction is involved.
//
// Kept on purpose, since compiled programs see every one of these bits:
//  * only the top word decides whether an operand is zero; y zero is error
//    280 (0/0 too), tested before x; x zero gives +0 whatever the signs;
//  * no special operand is recognised: exponent field 0 is read with the
//    implicit one, field 32767 as a finite number with that exponent;
//  * no subnormal results: a final exponent field of 0 or below is
//    underflow 279, 32767 or above overflow 278.  These two reports carry
//    descriptors of both operands (REAL(16)); 280 carries none.
// Fallbacks when the handler does not correct the operands:
//   278: the infinity with the sign of x / y (IEEE results) or +HUGE;
//   279: +0;
//   280, x non-zero: the infinity with the sign of x alone -- the sign of
//        the zero divisor is ignored -- or +HUGE;
//   280, x zero: the quiet NaN 0x7FFF8000 0 0 0 (IEEE results) or +0.
#include <bit>

#if defined(__SSE2__) && !defined(__x86_64__)
#include <emmintrin.h>
#endif

#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"
#include "quad/primitives.h"

namespace mivor::quad {
namespace {

using detail::Halves;
using detail::Status;

constexpr std::int32_t kOverflow = 278;
constexpr std::int32_t kUnderflow = 279;
constexpr std::int32_t kZeroDivisor = 280;

#if defined(__x86_64__)

// The 64-bit target divides with its 128 / 64-bit instruction, two digits of
// 64 bits (Knuth's algorithm D with a normalised two-word divisor).

// (hi:lo) / d, for hi < d: quotient, and the remainder in *rem.
inline std::uint64_t div_128by64(std::uint64_t hi, std::uint64_t lo, std::uint64_t d, std::uint64_t* rem) {
    std::uint64_t q, r;
    __asm__("divq %4" : "=a"(q), "=d"(r) : "a"(lo), "d"(hi), "rm"(d) : "cc");
    *rem = r;
    return q;
}

// One digit: q = floor(r * 2^64 / d) and r replaced by r * 2^64 - q * d.
// Requires r < d and d1 >= 2^63.  The estimate from the divisor's upper
// word alone is never too small and at most 2 too large; it is set right
// by adding d back to the (then negative) remainder.  When r1 = d1 the
// estimate is 2^64 - 1, whose remainder is r * 2^64 - (2^64 - 1) d.
inline std::uint64_t next_digit(std::uint64_t& r1, std::uint64_t& r0, std::uint64_t d1, std::uint64_t d0) {
    std::uint64_t q, rho, rho_carry = 0;
    if (r1 < d1) [[likely]] {
        q = div_128by64(r1, r0, d1, &rho);  // rho = r - q d1 < d1
    } else {
        q = ~std::uint64_t{0};
        rho = r0 + d1;  // r - (2^64 - 1) d1 with r1 = d1
        rho_carry = rho < d1;
    }
    // r * 2^64 - q d = (rho : 0) - q d0, as a 129-bit two's complement.
    std::uint64_t p1;
    const std::uint64_t p0 = detail::mul_64x64(q, d0, &p1);
    std::uint64_t n0 = 0 - p0;
    const std::uint64_t borrow = p0 != 0;
    std::uint64_t n1 = rho - p1 - borrow;
    bool negative = rho_carry == 0 && (rho < p1 || rho - p1 < borrow);
    // The first correction is needed for about a third of all digits: done
    // without a branch.  A second one is rare.
    {
        const std::uint64_t m = 0 - std::uint64_t{negative};
        q += m;
        n0 += d0 & m;
        const std::uint64_t c = n0 < (d0 & m);
        const std::uint64_t t = n1 + (d1 & m);
        const bool carry = (t < n1) || (t + c < t);
        n1 = t + c;
        negative = negative && !carry;
    }
    while (negative) [[unlikely]] {
        --q;
        n0 += d0;
        const std::uint64_t c = n0 < d0;
        const std::uint64_t t = n1 + d1;
        negative = !((t < n1) || (t + c < t));
        n1 = t + c;
    }
    r1 = n1;
    r0 = n0;
    return q;
}

// The fraction bits of r / b for 0 <= r < b, b the divisor's significand
// (bh in [2^48, 2^49)): the 112 bits of the result significand below its
// implicit one in (hi, lo), with hi's implicit one set, and the extension
// word (the next bits, and whether the remainder is zero).
inline void fraction_of_quotient(std::uint64_t rh, std::uint64_t rl, std::uint64_t bh, std::uint64_t bl,
                                 std::uint64_t* hi, std::uint64_t* lo, std::uint64_t* ext) {
    // Divisor and remainder shifted by 15 bits: the divisor's top bit is
    // then bit 63 of its upper word.
    const std::uint64_t d1 = (bh << 15) | (bl >> 49), d0 = bl << 15;
    std::uint64_t r1 = (rh << 15) | (rl >> 49), r0 = rl << 15;
    const std::uint64_t q1 = next_digit(r1, r0, d1, d0);
    const std::uint64_t q2 = next_digit(r1, r0, d1, d0);
    *hi = detail::kImplicitOne | (q1 >> 16);
    *lo = (q1 << 48) | (q2 >> 16);
    *ext = (q2 << 48) | ((r1 | r0) != 0);
}

#else

// 2^52 as a bit pattern and as a double: an integer n < 2^52 planted in the
// mantissa of 2^52 gives the double 2^52 + n exactly.
constexpr std::uint64_t kTwo52Bits = 0x4330000000000000u;
constexpr double kTwo52 = 0x1p52;

// On the 32-bit targets a 64-bit pattern held in two integer registers
// would reach an SSE register through two 32-bit stores and one 64-bit
// load, which the store buffer cannot forward (a stall of a dozen cycles or
// more, on every digit); there the halves are joined in SSE registers.
inline double double_of(std::uint64_t n) {
    const std::uint64_t bits = kTwo52Bits | n;
#if defined(__SSE2__)
    const __m128i v = _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(static_cast<std::uint32_t>(bits))),
                                         _mm_cvtsi32_si128(static_cast<int>(static_cast<std::uint32_t>(bits >> 32))));
    return _mm_cvtsd_f64(_mm_castsi128_pd(v)) - kTwo52;
#else
    return std::bit_cast<double>(bits) - kTwo52;
#endif
}

// floor(v) for 0 <= v < 2^51, up to ties (v - 1/2 is rounded to nearest).
// An estimate rounded to nearest would be one too large for half of all
// digits, each time a mispredicted correction; with the floor the
// correction runs only when the estimate's error straddles an integer.
inline std::uint64_t floor_of(double v) {
    constexpr double kMagic = 0x1.8p52;  // 2^52 + 2^51: v - 1/2 + kMagic is in [2^52, 2^53)
    const double shifted = (v - 0.5) + kMagic;
#if defined(__SSE2__)
    const __m128i b = _mm_castpd_si128(_mm_set_sd(shifted));
    const std::uint32_t lo = static_cast<std::uint32_t>(_mm_cvtsi128_si32(b));
    const std::uint32_t hi = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_srli_epi64(b, 32)));
    return ((std::uint64_t{hi} << 32) | lo) - std::bit_cast<std::uint64_t>(kMagic);
#else
    return std::bit_cast<std::uint64_t>(shifted) - std::bit_cast<std::uint64_t>(kMagic);
#endif
}

struct Remainder {
    std::uint64_t hi, lo;
};

// One digit of k bits: q = floor(r * 2^k / b), with r replaced by
// r * 2^k - q * b.  Requires 0 <= r < b < 2^113, 1 <= k <= 63, and
// `scaled_recip` = 2^k / (b >> 61) rounded.  The remainder update is done
// modulo 2^128: its true value lies in (-2b, 2b) whatever the estimate, so
// the low 128 bits determine it.
inline std::uint64_t next_digit(Remainder& r, std::uint64_t bh, std::uint64_t bl, int k,
                                double scaled_recip) {
    const std::uint64_t top = (r.hi << 3) | (r.lo >> 61);  // < 2^52
    std::uint64_t q = floor_of(double_of(top) * scaled_recip);
    std::uint64_t ph;
    const std::uint64_t pl = detail::mul_64x64(q, bl, &ph);
    ph += detail::mul_low(q, bh);
    const std::uint64_t nh = (r.hi << k) | (r.lo >> (64 - k));
    const std::uint64_t nl = r.lo << k;
    std::uint64_t lo = nl - pl;
    std::uint64_t hi = nh - ph - (nl < pl);
    while ((hi >> 63) != 0) {  // estimate too large
        --q;
        lo += bl;
        hi += bh + (lo < bl);
    }
    while (hi > bh || (hi == bh && lo >= bl)) {  // too small
        ++q;
        hi -= bh + (lo < bl);
        lo -= bl;
    }
    r = Remainder{hi, lo};
    return q;
}

// The fraction bits of r / b for 0 <= r < b; contract as on the 64-bit
// target.  Three digits of 38, 38 and 37 bits: quotient = 2^113 + q1 2^75 + q2 2^37 + q3,
// whose top 113 bits are the significand and bit 0 the first bit below.
inline void fraction_of_quotient(std::uint64_t rh, std::uint64_t rl, std::uint64_t bh, std::uint64_t bl,
                                 std::uint64_t* hi, std::uint64_t* lo, std::uint64_t* ext) {
    Remainder r{rh, rl};
    const double recip = 1.0 / double_of((bh << 3) | (bl >> 61));
    const std::uint64_t q1 = next_digit(r, bh, bl, 38, recip * 0x1p38);
    const std::uint64_t q2 = next_digit(r, bh, bl, 38, recip * 0x1p38);
    const std::uint64_t q3 = next_digit(r, bh, bl, 37, recip * 0x1p37);
    const std::uint64_t qh = (std::uint64_t{1} << 49) | (q1 << 11) | (q2 >> 27);
    const std::uint64_t ql = (q2 << 37) | q3;
    *hi = qh >> 1;
    *lo = (ql >> 1) | (qh << 63);
    *ext = (ql << 63) | ((r.hi | r.lo) != 0);
}

#endif

// x / y for non-zero tops.
inline Status divide_nonzero(Halves x, Halves y, Halves* out) {
    const std::uint64_t sign = (x.hi ^ y.hi) & detail::kSign64;
    std::int32_t e = detail::exponent_of(x) - detail::exponent_of(y) + kBias;
    std::uint64_t ah = detail::significand_high(x), al = x.lo;
    const std::uint64_t bh = detail::significand_high(y), bl = y.lo;
    if (ah < bh || (ah == bh && al < bl)) {
        ah = (ah << 1) | (al >> 63);
        al <<= 1;
        --e;
    }
    // The quotient's leading one: r = a - b < b; the fraction bits are
    // those of r / b.
    std::uint64_t hi, lo, ext;
    fraction_of_quotient(ah - bh - (al < bl), al - bl, bh, bl, &hi, &lo, &ext);
    return detail::round_and_pack(sign, e, hi, lo, ext, out);
}

// Zero tests first (divisor, then dividend), then the quotient.
enum class Outcome { ok, underflow, overflow, zero_divisor };

inline Outcome attempt(Halves x, Halves y, Halves* out) {
    if (detail::top_is_zero(y)) return Outcome::zero_divisor;
    if (detail::top_is_zero(x)) {
        *out = Halves{0, 0};
        return Outcome::ok;
    }
    switch (divide_nonzero(x, y, out)) {
        case Status::ok: return Outcome::ok;
        case Status::underflow: return Outcome::underflow;
        default: return Outcome::overflow;
    }
}

// After an attempt that failed: the report, the retries the handler asks
// for (each starting again from the zero tests), and the fallback.
[[gnu::cold, gnu::noinline]] Halves recover(Outcome outcome, Halves hx, Halves hy) {
    Real16 x = detail::to_real16(hx), y = detail::to_real16(hy);
    for (;;) {
        report::Verdict v;
        if (outcome == Outcome::zero_divisor) {
            v = report::full<report::Describe::none>(kZeroDivisor, x, y);
        } else {
            v = report::full<report::Describe::both>(outcome == Outcome::overflow ? kOverflow : kUnderflow, x, y);
        }
        if (!v.retry) {
            switch (outcome) {
                case Outcome::underflow: return Halves{0, 0};
                case Outcome::overflow: {
                    const bool negative = ((x.w[3] ^ y.w[3]) & kSignBit) != 0;
                    return detail::load(v.ieee_results ? (negative ? &_MInf_Q : &_Inf_Q) : &kHuge_Q);
                }
                default:
                    if (detail::top_is_zero(detail::load(&x))) {
                        return v.ieee_results ? detail::load(&_NaN_Q) : Halves{0, 0};
                    }
                    return detail::load(v.ieee_results ? (sign(x) ? &_MInf_Q : &_Inf_Q) : &kHuge_Q);
            }
        }
        Halves r;
        outcome = attempt(detail::load(&x), detail::load(&y), &r);
        if (outcome == Outcome::ok) return r;
    }
}

}  // namespace
}  // namespace mivor::quad

extern "C" mivor_real16* g_aqdq(mivor_real16* result, const mivor_real16* a, const mivor_real16* b) {
    using namespace mivor::quad;
    const Halves x = detail::load(a), y = detail::load(b);
    Halves r;
    const Outcome o = attempt(x, y, &r);
    if (o != Outcome::ok) [[unlikely]] r = recover(o, x, y);
    detail::store(result, r);
    return result;
}
