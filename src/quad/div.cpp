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
//  * 64-bit target: two digits of 64 bits.  The first comes from its
//    128 / 64-bit divide instruction (Knuth's algorithm D; the estimate
//    from the divisor's upper word is at most 2 too large); the second is
//    estimated from a reciprocal of that word, divided beside the first
//    digit, and is taken as it is whenever its low bits show that the
//    estimate's error cannot reach the bits kept -- the exact digit with
//    its remainder only otherwise.
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

#include "mivor/mivor.h"
#include "quad/fallbacks.h"
#include "quad/operators.h"
#include "quad/primitives.h"

namespace mivor::quad {
namespace {

using detail::Halves;
using detail::Status;

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
    // r * 2^64 - q d = (rho : 0) - q d0, as a 129-bit two's complement:
    // the 128-bit difference and its borrow, which means negative unless
    // rho carried.  The first correction is needed for about a third of all
    // digits: done without a branch, on the flags (the compiler's carry
    // tests through setb and masks cost the digit a few cycles more).  A
    // second one is rare.
    std::uint64_t p1;
    const std::uint64_t p0 = detail::mul_64x64(q, d0, &p1);
    std::uint64_t n0 = p0, n1 = rho, m, still;
    __asm__("negq %[n0]\n\t"
            "sbbq %[p1], %[n1]\n\t"
            "sbbq %[m], %[m]"
            : [n0] "+r"(n0), [n1] "+r"(n1), [m] "=r"(m)
            : [p1] "r"(p1)
            : "cc");
    m &= rho_carry - 1;
    q += m;
    __asm__("addq %[a0], %[n0]\n\t"
            "adcq %[a1], %[n1]\n\t"
            "sbbq %[s], %[s]"
            : [n0] "+r"(n0), [n1] "+r"(n1), [s] "=r"(still)
            : [a0] "r"(d0 & m), [a1] "r"(d1 & m)
            : "cc");
    // Still negative: the correction ran and did not carry out.
    bool negative = (m & ~still) != 0;
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
    // The reciprocal of the divisor's upper word, v = floor((2^128 - 1) / d1)
    // - 2^64: its divide runs beside the first digit's work (issued after
    // the first digit's divide, which is on the longer path).
    std::uint64_t unused;
    const std::uint64_t v = div_128by64(~d1, ~std::uint64_t{0}, d1, &unused);
    *hi = detail::kImplicitOne | (q1 >> 16);
    // Of the second digit only the top 49 bits are kept (48 significand
    // bits and the guard bit) and whether anything below is non-zero.  The
    // estimate e = hi(v r1) + r1, plus the carry of adding (r1 : r0) to
    // v r1, is within 2 of floor((r1 : r0) / d1) (Moller and Granlund's
    // 2-by-1 division before its adjustments), which in turn is within 2 of
    // the true digit (Knuth).  So when e's low 15 bits lie in [3, 2^15 - 4]
    // the digit's upper bits are e's and its low bits are not all zero: no
    // remainder is needed.  Otherwise, and when r1 = d1, the exact digit.
    std::uint64_t t1;
    const std::uint64_t t0 = detail::mul_64x64(r1, v, &t1);
    const std::uint64_t e = t1 + r1 + (t0 + r0 < t0);
    const std::uint64_t low = e & 0x7FFF;
    if (r1 < d1 && low - 3 <= 0x7FFC - 3) [[likely]] {
        *lo = (q1 << 48) | (e >> 16);
        *ext = (e << 48) | 1;
        return;
    }
    const std::uint64_t q2 = next_digit(r1, r0, d1, d0);
    *lo = (q1 << 48) | (q2 >> 16);
    *ext = (q2 << 48) | ((r1 | r0) != 0);
}

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

#else

// The 32-bit targets work on 32-bit words throughout: operands are read,
// and the quotient rounded and written, a word at a time, and the digits
// are 32 bits wide, so that moving the remainder on by one digit is a
// renaming of words rather than a shift over register pairs.
//
// Digit estimates come from the SSE2 unit: the remainder's top two words X
// (below 2^49: the remainder is below the divisor, below 2^113) times a
// double reciprocal c = fl(2^36 / B) of the divisor's leading 53 bits B.
// With t = R 2^32 / b the true digit and u = X 2^36 / B,
//   t lies in [u - 2^-20, u + 2^-16]  (dropping the remainder's two low
//   words, and b >= B 2^60 with b < (B + 1) 2^60), and X c is within
//   2^-21 of u.
// X c is formed as (2^52 + X) c - 2^52 c, the first term straight from the
// bit pattern with X planted in the mantissa of 2^52: that product rounds
// by at most 2^-17 (it lies below 2^37), and the subtraction is exact
// (Sterbenz).  The constant subtracted also takes off 1/2 + 2^-13 (one more
// rounding of at most 2^-17), and adding 2^52 + 2^51 then rounds to an
// integer: the digit is floor(v) for some v in (t - 2^-12, t) -- with the
// early top words Y of next_digit in place of X too -- so it is never too
// large and at most one too small, also when an exact tie rounds down.
// The remainder after it lies in [0, 2b), and one rare subtraction sets
// it right.  The estimates only steer; the remainder is exact and every
// flavour gives the same bits.

struct Words {
    std::uint32_t w0, w1, w2, w3;  // least significant first
};

inline __m128d bits_as_double(std::uint32_t lo, std::uint32_t hi) {
    return _mm_castsi128_pd(
        _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(lo)), _mm_cvtsi32_si128(static_cast<int>(hi))));
}

// 2^52 + (w3 : w2) for (w3 : w2) < 2^52.  The words are joined in an SSE
// register: through memory, two 32-bit stores and a 64-bit load would stall
// on store forwarding.
inline __m128d planted(std::uint32_t w2, std::uint32_t w3) {
    return _mm_or_pd(bits_as_double(w2, w3), _mm_set_sd(0x1p52));
}

// The digit estimate described above, as the double 2^52 + 2^51 + digit:
// its low word is the digit; `offset` = 2^52 c + 1/2 + 2^-13.  Below
// 1/2 + 2^-13 the estimate is clamped to 0 (the digit is 0 then).
inline __m128i digit_estimate(__m128d y, __m128d c, __m128d offset) {
    __m128d v = _mm_sub_sd(_mm_mul_sd(y, c), offset);
    v = _mm_max_sd(v, _mm_set_sd(-0.5));
    return _mm_castpd_si128(_mm_add_sd(v, _mm_set_sd(0x1.8p52)));
}

// The divisor's words as the SSE2 word products want them: b1 and b2 in
// lanes 0 and 2 (one PMULUDQ forms q b1 and q b2), b3 in lane 0.
struct DivisorLanes {
    __m128i b12, b3;
    explicit DivisorLanes(const Words& b)
        : b12(_mm_set_epi32(0, static_cast<int>(b.w2), 0, static_cast<int>(b.w1))),
          b3(_mm_cvtsi32_si128(static_cast<int>(b.w3))) {}
};

// One step of the long division: R <- R 2^32 - q b for the estimate q of
// the digit; returns the true digit, and in *y the double 2^52 + Y from
// which the next digit is estimated.
//
// R 2^32 - q b lies in [0, 2b), below 2^114, so its four low words are all
// of it: the fifth words are not formed, and the top word of q b needs
// only the low half of its product.
//
// The next estimate does not wait for the exact difference: with
// R = (r3 r2 r1 r0), Y = (r2 : r1) - q (b3 : b2) - hi(q b1) leaves out only
// the low words' contribution, which lies in (-2, 1) units of 2^64, so the
// new remainder's top two words X' satisfy X' <= Y <= X' + 2 (and Y, below
// 2^50 + 2, needs no more than its low 64 bits).  That overestimate costs
// at most 2 * 2^36 / B <= 2^-15 on the next estimate, inside the bias of
// 2^-13 (see above).  When the rare correction runs, Y is taken exactly.
//
// Y is formed in the SSE unit, where the estimate and the digit already
// are: word products by PMULUDQ and 64-bit sums, so that the path from one
// digit to the next never crosses to the integer registers and back.  The
// exact pass runs beside it in the integer unit.
//
// The remainder lives in a window of words that slides down one word per
// digit: R = w[0..3] (least significant first) becomes R' = w[-1..2], so
// the words are updated in place and never copied (copies of neighbouring
// 32-bit words get merged into 64-bit moves, whose loads then stall on
// store forwarding).
inline std::uint32_t next_digit(std::uint32_t* w, const Words& b, const DivisorLanes& lanes, __m128i estimate,
                                __m128d* y) {
    const __m128i qq = _mm_shuffle_epi32(estimate, 0);
    const __m128i p12 = _mm_mul_epu32(qq, lanes.b12);  // q b1, q b2
    const __m128i p3 = _mm_mul_epu32(qq, lanes.b3);    // q b3
    const __m128i top = _mm_unpacklo_epi32(_mm_cvtsi32_si128(static_cast<int>(w[1])),
                                           _mm_cvtsi32_si128(static_cast<int>(w[2])));
    const __m128i subtrahend = _mm_add_epi64(_mm_add_epi64(_mm_unpackhi_epi64(p12, p12), _mm_slli_epi64(p3, 32)),
                                             _mm_srli_epi64(p12, 32));
    *y = _mm_or_pd(_mm_castsi128_pd(_mm_sub_epi64(top, subtrahend)), _mm_set_sd(0x1p52));
    // The exact pass multiplies and subtracts word by word, the carry word
    // absorbing each borrow (written out: the compiler's register-pair code
    // for these sums spills most partial results).
    std::uint32_t q = static_cast<std::uint32_t>(_mm_cvtsi128_si32(estimate));
    std::uint32_t carry;
    __asm__(
        "movl %[q], %%eax\n\t"
        "mull %[b0]\n\t"
        "negl %%eax\n\t"
        "movl %%eax, %[n0]\n\t"
        "adcl $0, %%edx\n\t"
        "movl %%edx, %[carry]\n\t"
        "movl %[q], %%eax\n\t"
        "mull %[b1]\n\t"
        "addl %[carry], %%eax\n\t"
        "adcl $0, %%edx\n\t"
        "subl %%eax, %[n1]\n\t"
        "adcl $0, %%edx\n\t"
        "movl %%edx, %[carry]\n\t"
        "movl %[q], %%eax\n\t"
        "mull %[b2]\n\t"
        "addl %[carry], %%eax\n\t"
        "adcl $0, %%edx\n\t"
        "subl %%eax, %[n2]\n\t"
        "adcl $0, %%edx\n\t"
        "movl %[q], %%eax\n\t"
        "imull %[b3], %%eax\n\t"
        "addl %%edx, %%eax\n\t"
        "subl %%eax, %[n3]"
        : [n0] "=m"(w[-1]), [n1] "+m"(w[0]), [n2] "+m"(w[1]), [n3] "+m"(w[2]), [carry] "=&r"(carry)
        : [q] "r"(q), [b0] "m"(b.w0), [b1] "m"(b.w1), [b2] "m"(b.w2), [b3] "m"(b.w3)
        : "eax", "edx", "cc");
    if (w[2] >= b.w3) [[unlikely]] {  // about one digit in 2^13
        const std::uint64_t bh = (std::uint64_t{b.w3} << 32) | b.w2, bl = (std::uint64_t{b.w1} << 32) | b.w0;
        std::uint64_t hi = (std::uint64_t{w[2]} << 32) | w[1], lo = (std::uint64_t{w[0]} << 32) | w[-1];
        if (hi > bh || (hi == bh && lo >= bl)) {
            ++q;
            hi -= bh + (lo < bl);
            lo -= bl;
            w[-1] = static_cast<std::uint32_t>(lo);
            w[0] = static_cast<std::uint32_t>(lo >> 32);
            w[1] = static_cast<std::uint32_t>(hi);
            w[2] = static_cast<std::uint32_t>(hi >> 32);
            *y = planted(w[1], w[2]);
        }
    }
    return q;
}

// The last 17 bits, q = floor(R 2^17 / b), and whether the remainder
// R 2^17 - q b is non-zero, the slow way: for the rare estimates too close
// to an integer to decide (exact quotients among them).  The estimate may
// be off by one either way; the difference lies in (-2b, 2b), so it is
// formed modulo 2^128.
[[gnu::cold, gnu::noinline]] std::uint32_t last_digit_exact(Words r, Words b, std::uint32_t q, bool* inexact) {
    const std::uint64_t rh = (std::uint64_t{r.w3} << 32) | r.w2, rl = (std::uint64_t{r.w1} << 32) | r.w0;
    const std::uint64_t bh = (std::uint64_t{b.w3} << 32) | b.w2, bl = (std::uint64_t{b.w1} << 32) | b.w0;
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

// x / y for non-zero tops, on words (least significant first), inlined into
// the entry point (a call would realign the stack a second time).
//
// The significands a, b; a is doubled when a < b, so that r = a - b < b:
// r is formed as a - b, and when that borrows, as (a - b) + a.  The
// fraction bits of r / b: three exact digits of 32 bits, then 17 bits q4
// read off the estimate w = Y 2^21 / B: by the bounds above scaled by
// 2^-15 (Y's overestimate costs at most 2^-30, dropping the low words at
// most 2^-31, the roundings about 2^-32), |R 2^17 / b - w| < 2^-29, so when
// floor(w - 2^-28) equals floor(w + 2^-28) that is the digit and the
// remainder is not zero (the true quotient is no integer).  A tie in either
// floor can only make them differ.  The quotient 2^113 + q1 2^81 + q2 2^49 +
// q3 2^17 + q4 is the significand with one bit below it, and the remainder
// is the sticky bit.
[[gnu::always_inline]] inline Status divide_words(const std::uint32_t* x, const std::uint32_t* y, std::uint32_t* out) {
    const std::uint32_t sign = (x[3] ^ y[3]) & kSignBit;
    std::int32_t e = static_cast<std::int32_t>((x[3] >> 16) & 0x7FFF) - static_cast<std::int32_t>((y[3] >> 16) & 0x7FFF) + kBias;
    const Words a{x[0], x[1], x[2], (x[3] & 0xFFFF) | 0x10000};
    const Words b{y[0], y[1], y[2], (y[3] & 0xFFFF) | 0x10000};
    Words r = a;
    std::uint32_t below;  // all ones when a < b
    __asm__(
        "subl %[b0], %[r0]\n\t"
        "sbbl %[b1], %[r1]\n\t"
        "sbbl %[b2], %[r2]\n\t"
        "sbbl %[b3], %[r3]\n\t"
        "sbbl %[m], %[m]"
        : [r0] "+r"(r.w0), [r1] "+r"(r.w1), [r2] "+r"(r.w2), [r3] "+r"(r.w3), [m] "=r"(below)
        : [b0] "rm"(b.w0), [b1] "rm"(b.w1), [b2] "rm"(b.w2), [b3] "rm"(b.w3)
        : "cc");
    // Half of all operands go either way: no branch.
    e += static_cast<std::int32_t>(below);
    __asm__(
        "addl %[a0], %[r0]\n\t"
        "adcl %[a1], %[r1]\n\t"
        "adcl %[a2], %[r2]\n\t"
        "adcl %[a3], %[r3]"
        : [r0] "+r"(r.w0), [r1] "+r"(r.w1), [r2] "+r"(r.w2), [r3] "+r"(r.w3)
        : [a0] "rm"(a.w0 & below), [a1] "rm"(a.w1 & below), [a2] "rm"(a.w2 & below), [a3] "rm"(a.w3 & below)
        : "cc");

    // B = the divisor's leading 53 bits, b >> 60, planted in the mantissa
    // of 2^52 with its own leading one cleared: the double B.
    const __m128d big_b =
        _mm_or_pd(bits_as_double((b.w1 >> 28) | (b.w2 << 4), ((b.w2 >> 28) | (b.w3 << 4)) ^ 0x100000u),
                  _mm_set_sd(0x1p52));
    const __m128d c = _mm_div_sd(_mm_set_sd(0x1p36), big_b);
    // 2^52 c + 1/2 + 2^-13, and for the last digit c 2^-15 and 2^52 c 2^-15.
    const __m128d offset = _mm_add_sd(_mm_mul_sd(c, _mm_set_sd(0x1p52)), _mm_set_sd(0.5 + 0x1p-13));
    const __m128d c17 = _mm_mul_sd(c, _mm_set_sd(0x1p-15));
    const __m128d offset17 = _mm_mul_sd(c, _mm_set_sd(0x1p37));

    std::uint32_t w[7];  // the remainder window: R = w[3..6] at first
    w[3] = r.w0;
    w[4] = r.w1;
    w[5] = r.w2;
    w[6] = r.w3;
    const DivisorLanes lanes(b);
    __m128d top = planted(r.w2, r.w3);
    const std::uint32_t q1 = next_digit(w + 3, b, lanes, digit_estimate(top, c, offset), &top);
    const std::uint32_t q2 = next_digit(w + 2, b, lanes, digit_estimate(top, c, offset), &top);
    const std::uint32_t q3 = next_digit(w + 1, b, lanes, digit_estimate(top, c, offset), &top);
    // Both floors at once: of w - 2^-28 in lane 0 and of w + 2^-28 in lane 1.
    const __m128d est = _mm_sub_sd(_mm_mul_sd(top, c17), offset17);
    const __m128i rounded = _mm_castpd_si128(_mm_add_pd(
        _mm_sub_pd(_mm_unpacklo_pd(est, est), _mm_set_pd(0.5 - 0x1p-28, 0.5 + 0x1p-28)), _mm_set1_pd(0x1.8p52)));
    std::uint32_t q4 = static_cast<std::uint32_t>(_mm_cvtsi128_si32(rounded));
    const std::uint32_t q4_upper = static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_shuffle_epi32(rounded, 2)));
    bool inexact = true;
    if (q4 != q4_upper) [[unlikely]] q4 = last_digit_exact(Words{w[0], w[1], w[2], w[3]}, b, q4_upper, &inexact);

    // Significand words, below them the bit q4 & 1 and the sticky bit.
    // Round to nearest, ties to even: up when that bit is set and either
    // the remainder is non-zero or the last significand bit is odd.
    std::uint32_t s0 = (q3 << 16) | (q4 >> 1), s1 = (q2 << 16) | (q3 >> 16), s2 = (q1 << 16) | (q2 >> 16),
                  s3 = 0x10000 | (q1 >> 16);
    const std::uint32_t up = q4 & (static_cast<std::uint32_t>(inexact) | (q4 >> 1)) & 1;
    detail::add_rounding_carry(up, s0, s1, s2, s3);
    return detail::pack_words(sign, e, s0, s1, s2, s3, out);
}

// The same on halves, for the retries after a report.
inline Status divide_nonzero(Halves x, Halves y, Halves* out) { return detail::on_words<divide_words>(x, y, out); }

#endif

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
// for (each starting again from the zero tests), and the fallback.  The
// zero divisor describes no operand, the overflow and underflow both.
[[gnu::cold, gnu::noinline]] Halves recover(Halves hx, Halves hy) {
    return report::settle<report::Form::full>(
        [](Real16 x, Real16 y) -> report::Step<Halves, Real16, Real16> {
            Halves r;
            switch (attempt(detail::load(&x), detail::load(&y), &r)) {
                case Outcome::ok: return r;
                case Outcome::underflow: return underflowed(Error::quad_quotient_underflow);
                case Outcome::overflow:
                    return overflowed(Error::quad_quotient_overflow, ((x.w[3] ^ y.w[3]) & kSignBit) != 0);
                default:
                    // x / 0: the infinity takes the sign of x alone, on
                    // purpose; 0 / 0 is the NaN or +0.
                    if (detail::top_is_zero(detail::load(&x)))
                        return report::fail(Error::quad_division_by_zero, detail::load(&_NaN_Q), Halves{0, 0})
                            .described(report::Describe::none);
                    return overflowed(Error::quad_division_by_zero, sign(x)).described(report::Describe::none);
            }
        },
        detail::to_real16(hx), detail::to_real16(hy));
}

}  // namespace

#if defined(__x86_64__)
Halves divide(Halves x, Halves y) {
    Halves r;
    if (attempt(x, y, &r) != Outcome::ok) [[unlikely]] r = recover(x, y);
    return r;
}
#endif

}  // namespace mivor::quad

extern "C" mivor_real16* g_aqdq(mivor_real16* result, const mivor_real16* a, const mivor_real16* b) {
    using namespace mivor::quad;
#if defined(__x86_64__)
    detail::store(result, divide(detail::load(a), detail::load(b)));
#else
    // The first attempt on words, read straight from the operands and
    // written straight to the result (a word at a time: a wider load of
    // the result would not be forwarded from narrower stores).  All of the
    // operands are read before the result, which may be either of them, is
    // written, and nothing is written unless the quotient is in range.
    if ((b->w[3] & 0x7FFFFFFFu) != 0) {
        if ((a->w[3] & 0x7FFFFFFFu) == 0) {
            result->w[0] = result->w[1] = result->w[2] = result->w[3] = 0;
            return result;
        }
        if (divide_words(a->w, b->w, result->w) == Status::ok) [[likely]] return result;
    }
    // A zero divisor, an overflow or an underflow: the operands are intact.
    detail::store(result, recover(detail::load(a), detail::load(b)));
#endif
    return result;
}
