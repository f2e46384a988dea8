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
//  * 32-bit targets, which divide at most 64 / 32 bits: three digits of 32
//    bits and a last one of 17, over 32-bit words of the remainder, each
//    estimated from the remainder's top two words times a double
//    reciprocal of the divisor's leading 53 bits -- the only floating-point
//    division.  The estimate is biased low so that only a rare subtraction
//    is needed; the last digit is taken from its estimate when that is far
//    enough from an integer, which also proves the remainder non-zero.
//    These doubles hold integers below 2^53 and are built from and read
//    back into integers through their bit patterns: no conversion
//    instruction is involved.
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
#if !defined(__x86_64__)
#include <emmintrin.h>  // SSE2 is the baseline of every 32-bit flavour
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

// The 32-bit targets: the remainder and the divisor as 32-bit words, and
// digits of 32 bits, so that moving the remainder on by one digit is a
// renaming of words rather than a shift over register pairs.
//
// Digit estimates come from the SSE2 unit: the remainder's top two words X
// (below 2^49: the remainder is below the divisor, below 2^113) times a
// double reciprocal of the divisor's leading 53 bits B.  With
// t = R 2^32 / b the true digit and u = X 2^36 / B,
//   t lies in [u - 2^-20, u + 2^-16]  (dropping the remainder's two low
//   words, and b >= B 2^60 with b < (B + 1) 2^60), and
//   v = X * fl(2^36 / B) is within u 2^-51.9 < 2^-19.9 of u,
// so |t - v| < 2^-15.5.  Taking floor(v - 2^-14) the digit is never too
// large and at most one too small: the remainder after it lies in [0, 2b)
// and one rare subtraction sets it right.  The estimates only steer; the
// remainder is exact and every flavour gives the same bits.

struct Words {
    std::uint32_t w0, w1, w2, w3;  // least significant first
};

// The double X = (w3 : w2) for X < 2^52: planted in the mantissa of 2^52,
// then 2^52 taken off again; both exact.  The words are joined in an SSE
// register: through memory, two 32-bit stores and a 64-bit load would
// stall on store forwarding.
inline __m128d double_of(std::uint32_t w2, std::uint32_t w3) {
    const __m128i v = _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(w2)), _mm_cvtsi32_si128(static_cast<int>(w3)));
    const __m128d two52 = _mm_set_sd(0x1p52);
    return _mm_sub_sd(_mm_castsi128_pd(_mm_or_si128(v, _mm_castpd_si128(two52))), two52);
}

// floor(v - 2^-14), and 0 for v below 2^-14: v - 2^-14 - 1/2 rounded to an
// integer by adding 2^52 + 2^51, whose low word is then the digit (digits
// are below 2^32).  An exact tie may come out one lower, which the bound
// above allows for.
inline std::uint32_t digit_estimate(__m128d x, __m128d scale) {
    __m128d v = _mm_mul_sd(x, scale);
    v = _mm_sub_sd(v, _mm_set_sd(0.5 + 0x1p-14));
    v = _mm_max_sd(v, _mm_set_sd(-0.5));
    v = _mm_add_sd(v, _mm_set_sd(0x1.8p52));
    return static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_castpd_si128(v)));
}

// R <- R 2^32 - q b for the estimate q of the next digit; returns the true
// digit.  R 2^32 - q b lies in [0, 2b), below 2^114, so the four low words
// of the difference are all of it: the fifth words are not formed, and the
// top word of q b needs only the low half of its product.  Written out as
// one multiply-and-subtract pass over the words (the carry word absorbs
// each borrow): the compiler's 64-bit register-pair code for the same sums
// spills most of its partial results.
inline std::uint32_t next_digit(Words& r, const Words& b, std::uint64_t bh, std::uint64_t bl, std::uint32_t q) {
    std::uint32_t w0, r0 = r.w0, r1 = r.w1, r2 = r.w2, lo_word, carry;
    __asm__(
        "movl %[q], %%eax\n\t"
        "mull %[b0]\n\t"
        "negl %%eax\n\t"
        "movl %%eax, %[w0]\n\t"
        "adcl $0, %%edx\n\t"
        "movl %%edx, %[c]\n\t"
        "movl %[q], %%eax\n\t"
        "mull %[b1]\n\t"
        "addl %[c], %%eax\n\t"
        "adcl $0, %%edx\n\t"
        "subl %%eax, %[r0]\n\t"
        "adcl $0, %%edx\n\t"
        "movl %%edx, %[c]\n\t"
        "movl %[q], %%eax\n\t"
        "mull %[b2]\n\t"
        "addl %[c], %%eax\n\t"
        "adcl $0, %%edx\n\t"
        "subl %%eax, %[r1]\n\t"
        "adcl $0, %%edx\n\t"
        "movl %[q], %%eax\n\t"
        "imull %[b3], %%eax\n\t"
        "addl %%edx, %%eax\n\t"
        "subl %%eax, %[r2]"
        : [w0] "=&rm"(w0), [r0] "+r"(r0), [r1] "+r"(r1), [r2] "+r"(r2), [c] "=&c"(carry), "=&a"(lo_word)
        : [q] "rm"(q), [b0] "m"(b.w0), [b1] "m"(b.w1), [b2] "m"(b.w2), [b3] "m"(b.w3)
        : "edx", "cc");
    r = Words{w0, r0, r1, r2};
    if (r2 >= b.w3) [[unlikely]] {  // about one digit in 2^14
        std::uint64_t hi = (std::uint64_t{r2} << 32) | r1, lo = (std::uint64_t{r0} << 32) | w0;
        if (hi > bh || (hi == bh && lo >= bl)) {
            ++q;
            hi -= bh + (lo < bl);
            lo -= bl;
            r = Words{static_cast<std::uint32_t>(lo), static_cast<std::uint32_t>(lo >> 32), static_cast<std::uint32_t>(hi),
                      static_cast<std::uint32_t>(hi >> 32)};
        }
    }
    return q;
}

// The last 17 bits, q = floor(R 2^17 / b), and whether the remainder
// R 2^17 - q b is non-zero, the slow way: for the rare estimates too close
// to an integer to decide (exact quotients among them).  The estimate may
// be off by one either way; the difference lies in (-2b, 2b), so it is
// formed modulo 2^128.
[[gnu::cold, gnu::noinline]] std::uint32_t last_digit_exact(Words r, std::uint64_t bh, std::uint64_t bl,
                                                            std::uint32_t q, bool* inexact) {
    const std::uint64_t rh = (std::uint64_t{r.w3} << 32) | r.w2, rl = (std::uint64_t{r.w1} << 32) | r.w0;
    std::uint64_t ph;
    const std::uint64_t pl = detail::mul_64x64(q, bl, &ph);
    ph += detail::mul_low(q, bh);
    const std::uint64_t nh = (rh << 17) | (rl >> 47), nl = rl << 17;
    std::uint64_t lo = nl - pl;
    std::uint64_t hi = nh - ph - (nl < pl);
    while ((hi >> 63) != 0) {
        --q;
        lo += bl;
        hi += bh + (lo < bl);
    }
    while (hi > bh || (hi == bh && lo >= bl)) {
        ++q;
        hi -= bh + (lo < bl);
        lo -= bl;
    }
    *inexact = (hi | lo) != 0;
    return q;
}

// The fraction bits of r / b for 0 <= r < b; contract as on the 64-bit
// target.  Three exact digits of 32 bits, then 17 bits q4 read off the
// estimate w = X 2^21 / B: |R 2^17 / b - w| < 2^-30 by the bound above
// scaled by 2^-15, so when floor(w - 2^-28) = floor(w + 2^-28) that is the
// digit and the remainder is not zero (the true quotient is no integer).
// quotient = 2^113 + q1 2^81 + q2 2^49 + q3 2^17 + q4: its top 113 bits
// are the significand and bit 0 the first bit below.
inline void fraction_of_quotient(std::uint64_t rh, std::uint64_t rl, std::uint64_t bh, std::uint64_t bl,
                                 std::uint64_t* hi, std::uint64_t* lo, std::uint64_t* ext) {
    const Words b{static_cast<std::uint32_t>(bl), static_cast<std::uint32_t>(bl >> 32), static_cast<std::uint32_t>(bh),
                  static_cast<std::uint32_t>(bh >> 32)};
    Words r{static_cast<std::uint32_t>(rl), static_cast<std::uint32_t>(rl >> 32), static_cast<std::uint32_t>(rh),
            static_cast<std::uint32_t>(rh >> 32)};
    // B = the divisor's leading 53 bits, planted below the exponent of 2^52
    // with its own leading one cleared.
    const std::uint64_t lead = ((bh << 4) | (bl >> 60)) ^ (std::uint64_t{1} << 52);
    const __m128d big_b = _mm_castsi128_pd(
        _mm_or_si128(_mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(static_cast<std::uint32_t>(lead))),
                                        _mm_cvtsi32_si128(static_cast<int>(static_cast<std::uint32_t>(lead >> 32)))),
                     _mm_castpd_si128(_mm_set_sd(0x1p52))));
    const __m128d c32 = _mm_div_sd(_mm_set_sd(0x1p36), big_b);
    const __m128d c17 = _mm_mul_sd(c32, _mm_set_sd(0x1p-15));
    const std::uint32_t q1 = next_digit(r, b, bh, bl, digit_estimate(double_of(r.w2, r.w3), c32));
    const std::uint32_t q2 = next_digit(r, b, bh, bl, digit_estimate(double_of(r.w2, r.w3), c32));
    const std::uint32_t q3 = next_digit(r, b, bh, bl, digit_estimate(double_of(r.w2, r.w3), c32));
    // Both floors at once, lower in lane 0.
    const __m128d w = _mm_mul_sd(double_of(r.w2, r.w3), c17);
    const __m128d rounded = _mm_add_pd(_mm_sub_pd(_mm_unpacklo_pd(w, w), _mm_set_pd(0.5 - 0x1p-28, 0.5 + 0x1p-28)),
                                       _mm_set1_pd(0x1.8p52));
    std::uint32_t q4 = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_castpd_si128(rounded)));
    const std::uint32_t q4_upper =
        static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_shuffle_epi32(_mm_castpd_si128(rounded), 2)));
    bool inexact = true;
    if (q4 != q4_upper) [[unlikely]] q4 = last_digit_exact(r, bh, bl, q4_upper, &inexact);
    *hi = detail::kImplicitOne | (std::uint64_t{q1} << 16) | (q2 >> 16);
    *lo = (std::uint64_t{q2} << 48) | (std::uint64_t{q3} << 16) | (q4 >> 1);
    *ext = (std::uint64_t{q4} << 63) | inexact;
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
