// g_aqmq: REAL(16) multiplication, x * y.
//
// The 226-bit product of the two 113-bit significands is formed exactly from
// four 64 x 64 -> 128-bit word products (sixteen 32 x 32 -> 64-bit products
// on the 32-bit targets), so no bit is lost before the one rounding: to
// nearest, ties to even.  For operands and results in the normal range the
// result is the correctly rounded IEEE binary128 product.
//
// The product of two significands in [1, 2) lies in [1, 4); the 113 bits
// from its leading one are the result significand, the next 32 bits the
// guard word and everything below them decides, by being zero or not,
// whether an exact half is a tie.
//
// Kept on purpose, since compiled programs see every one of these bits:
//  * only the top word decides whether an operand is zero, and a zero
//    operand gives +0 whatever the signs: (-0) * 5 and (-3) * (+0) are +0;
//  * no special operand is recognised: exponent field 0 is read with the
//    implicit one, field 32767 as a finite number with that exponent;
//  * no subnormal results: a final exponent field of 0 or below is
//    underflow 1398, 32767 or above overflow 1397.
// Fallbacks when the handler does not correct the operands: +0 for 1398;
// for 1397 the infinity with the sign of x * y when IEEE results are asked
// for, else +HUGE whatever the sign.
#include "mivor/mivor.h"
#include "quad/fallbacks.h"
#include "quad/operators.h"
#include "quad/primitives.h"

namespace mivor::quad {
namespace {

using detail::Halves;
using detail::Status;

// The exact product of two significands (ah, bh in [2^48, 2^49)) in four
// 64-bit columns: p3 (bits 192 and up), p2, p1, p0.
#if defined(__x86_64__)
inline void product(std::uint64_t ah, std::uint64_t al, std::uint64_t bh, std::uint64_t bl, std::uint64_t* p3,
                    std::uint64_t* p2, std::uint64_t* p1, std::uint64_t* p0) {
    // Four word products.  The cross products have high halves below
    // 2^49, so no column sum overflows beyond the carries counted here.
    std::uint64_t t1, u1, v1, w1;
    *p0 = detail::mul_64x64(al, bl, &t1);
    const std::uint64_t u0 = detail::mul_64x64(al, bh, &u1);
    const std::uint64_t v0 = detail::mul_64x64(ah, bl, &v1);
    const std::uint64_t w0 = detail::mul_64x64(ah, bh, &w1);
    std::uint64_t s1 = t1 + u0;
    std::uint64_t c = s1 < u0;
    s1 += v0;
    c += s1 < v0;
    std::uint64_t s2 = u1 + v1 + c;  // < 2^50
    s2 += w0;
    *p3 = w1 + (s2 < w0);
    *p2 = s2;
    *p1 = s1;
}
#else
// The 32-bit targets work on 32-bit words throughout: operands are read,
// and the product rounded and written, a word at a time (the compiler's
// register-pair code for 64-bit halves spills most of its values, and
// 64-bit loads over 32-bit stores miss store forwarding).  The product is
// scanned column by column: each column's 32 x 32 -> 64-bit products are
// summed into a three-word accumulator whose registers rotate from column
// to column, so a word leaves the accumulator without being moved.  The
// three lowest words only matter by being non-zero and are ORed together.
// In the columns from 5 up the sums stay below 2^64 (a3, b3 < 2^17): no
// third word there.
struct Product {
    std::uint32_t p3, p4, p5, p6, p7, sticky;  // p3..p7 the words from bit 96 up
};

inline Product product(const std::uint32_t (&a)[4], const std::uint32_t (&b)[4]) {
    Product p;
    std::uint32_t r2;
    __asm__(
        // column 0: the low word to the sticky word, the high one carried
        "movl %[a0], %%eax\n\t"
        "mull %[b0]\n\t"
        "movl %%eax, %[s]\n\t"
        "movl %%edx, %[r1]\n\t"
        "xorl %[r2], %[r2]\n\t"
        "xorl %[r0], %[r0]\n\t"
        // column 1: accumulator (r0 : r2 : r1)
        "movl %[a0], %%eax\n\t"
        "mull %[b1]\n\t"
        "addl %%eax, %[r1]\n\t"
        "adcl %%edx, %[r2]\n\t"
        "adcl $0, %[r0]\n\t"
        "movl %[a1], %%eax\n\t"
        "mull %[b0]\n\t"
        "addl %%eax, %[r1]\n\t"
        "adcl %%edx, %[r2]\n\t"
        "adcl $0, %[r0]\n\t"
        "orl %[r1], %[s]\n\t"
        "xorl %[r1], %[r1]\n\t"
        // column 2: accumulator (r1 : r0 : r2)
        "movl %[a0], %%eax\n\t"
        "mull %[b2]\n\t"
        "addl %%eax, %[r2]\n\t"
        "adcl %%edx, %[r0]\n\t"
        "adcl $0, %[r1]\n\t"
        "movl %[a1], %%eax\n\t"
        "mull %[b1]\n\t"
        "addl %%eax, %[r2]\n\t"
        "adcl %%edx, %[r0]\n\t"
        "adcl $0, %[r1]\n\t"
        "movl %[a2], %%eax\n\t"
        "mull %[b0]\n\t"
        "addl %%eax, %[r2]\n\t"
        "adcl %%edx, %[r0]\n\t"
        "adcl $0, %[r1]\n\t"
        "orl %[r2], %[s]\n\t"
        "xorl %[r2], %[r2]\n\t"
        // column 3: accumulator (r2 : r1 : r0)
        "movl %[a0], %%eax\n\t"
        "mull %[b3]\n\t"
        "addl %%eax, %[r0]\n\t"
        "adcl %%edx, %[r1]\n\t"
        "adcl $0, %[r2]\n\t"
        "movl %[a1], %%eax\n\t"
        "mull %[b2]\n\t"
        "addl %%eax, %[r0]\n\t"
        "adcl %%edx, %[r1]\n\t"
        "adcl $0, %[r2]\n\t"
        "movl %[a2], %%eax\n\t"
        "mull %[b1]\n\t"
        "addl %%eax, %[r0]\n\t"
        "adcl %%edx, %[r1]\n\t"
        "adcl $0, %[r2]\n\t"
        "movl %[a3], %%eax\n\t"
        "mull %[b0]\n\t"
        "addl %%eax, %[r0]\n\t"
        "adcl %%edx, %[r1]\n\t"
        "adcl $0, %[r2]\n\t"
        "movl %[r0], %[p3]\n\t"
        "xorl %[r0], %[r0]\n\t"
        // column 4: accumulator (r0 : r2 : r1)
        "movl %[a1], %%eax\n\t"
        "mull %[b3]\n\t"
        "addl %%eax, %[r1]\n\t"
        "adcl %%edx, %[r2]\n\t"
        "adcl $0, %[r0]\n\t"
        "movl %[a2], %%eax\n\t"
        "mull %[b2]\n\t"
        "addl %%eax, %[r1]\n\t"
        "adcl %%edx, %[r2]\n\t"
        "adcl $0, %[r0]\n\t"
        "movl %[a3], %%eax\n\t"
        "mull %[b1]\n\t"
        "addl %%eax, %[r1]\n\t"
        "adcl %%edx, %[r2]\n\t"
        "adcl $0, %[r0]\n\t"
        "movl %[r1], %[p4]\n\t"
        "xorl %[r1], %[r1]\n\t"
        // column 5: accumulator (r0 : r2), no third word
        "movl %[a2], %%eax\n\t"
        "mull %[b3]\n\t"
        "addl %%eax, %[r2]\n\t"
        "adcl %%edx, %[r0]\n\t"
        "movl %[a3], %%eax\n\t"
        "mull %[b2]\n\t"
        "addl %%eax, %[r2]\n\t"
        "adcl %%edx, %[r0]\n\t"
        "movl %[r2], %[p5]\n\t"
        // column 6: accumulator (r1 : r0), leaving p7 : p6
        "movl %[a3], %%eax\n\t"
        "mull %[b3]\n\t"
        "addl %%eax, %[r0]\n\t"
        "adcl %%edx, %[r1]"
        : [s] "=&rm"(p.sticky), [r0] "=&r"(p.p6), [r1] "=&r"(p.p7), [r2] "=&r"(r2), [p3] "=m"(p.p3), [p4] "=m"(p.p4),
          [p5] "=m"(p.p5)
        : [a0] "m"(a[0]), [a1] "m"(a[1]), [a2] "m"(a[2]), [a3] "m"(a[3]), [b0] "m"(b[0]), [b1] "m"(b[1]),
          [b2] "m"(b[2]), [b3] "m"(b[3])
        : "eax", "edx", "cc");
    return p;
}

// x * y for non-zero tops, on words (least significant first), inlined into
// the entry point (a call would realign the stack a second time); nothing is
// written unless the product is in range.
[[gnu::always_inline]] inline Status multiply_words(const std::uint32_t* x, const std::uint32_t* y, std::uint32_t* out) {
    const std::uint32_t sign = (x[3] ^ y[3]) & kSignBit;
    std::int32_t e = static_cast<std::int32_t>((x[3] >> 16) & 0x7FFF) + static_cast<std::int32_t>((y[3] >> 16) & 0x7FFF) - kBias;
    const std::uint32_t a[4] = {x[0], x[1], x[2], (x[3] & 0xFFFF) | 0x10000};
    const std::uint32_t b[4] = {y[0], y[1], y[2], (y[3] & 0xFFFF) | 0x10000};
    const Product p = product(a, b);
    // The product is in [2^224, 2^226): its leading one is bit 0 or 1 of
    // p7.  The 113 bits from there are the significand, the next bit the
    // guard bit, and everything below it sticky.  Without a branch: the
    // product reaches 2 for about 40% of all operands.
    const std::uint32_t two = p.p7 >> 1;
    const unsigned shift = 16 + two;  // of the words from p3 up
    e += static_cast<std::int32_t>(two);
    auto pair = [](std::uint32_t lo, std::uint32_t hi) { return (std::uint64_t{hi} << 32) | lo; };
    std::uint32_t s0 = static_cast<std::uint32_t>(pair(p.p3, p.p4) >> shift);
    std::uint32_t s1 = static_cast<std::uint32_t>(pair(p.p4, p.p5) >> shift);
    std::uint32_t s2 = static_cast<std::uint32_t>(pair(p.p5, p.p6) >> shift);
    std::uint32_t s3 = static_cast<std::uint32_t>(pair(p.p6, p.p7) >> shift);
    const std::uint32_t guard = (p.p3 >> (shift - 1)) & 1;
    const std::uint32_t below = (p.p3 & ((1u << (shift - 1)) - 1)) | p.sticky;
    // To nearest, ties to even.
    const std::uint32_t up = guard & (static_cast<std::uint32_t>(below != 0) | s0);
    detail::add_rounding_carry(up, s0, s1, s2, s3);
    return detail::pack_words(sign, e, s0, s1, s2, s3, out);
}
#endif

#if defined(__x86_64__)
// x * y for non-zero tops.
inline Status multiply_nonzero(Halves x, Halves y, Halves* out) {
    const std::uint64_t sign = (x.hi ^ y.hi) & detail::kSign64;
    std::int32_t e = detail::exponent_of(x) + detail::exponent_of(y) - kBias;
    const std::uint64_t ah = detail::significand_high(x), al = x.lo;
    const std::uint64_t bh = detail::significand_high(y), bl = y.lo;

    std::uint64_t p3, p2, p1, p0;
    product(ah, al, bh, bl, &p3, &p2, &p1, &p0);

    // The product is in [2^224, 2^226): its leading one is bit 32 or 33
    // of p3.  Take the 113 bits from there, the extension word below them
    // and jam the rest.
    std::uint64_t hi, lo, ext;
    if ((p3 >> 33) != 0) {
        ++e;
        hi = (p3 << 15) | (p2 >> 49);
        lo = (p2 << 15) | (p1 >> 49);
        ext = (p1 << 15) | (p0 >> 49) | ((p0 << 15) != 0);
    } else {
        hi = (p3 << 16) | (p2 >> 48);
        lo = (p2 << 16) | (p1 >> 48);
        ext = (p1 << 16) | (p0 >> 48) | ((p0 << 16) != 0);
    }
    return detail::round_and_pack(sign, e, hi, lo, ext, out);
}

#else
// The same on halves, for the retries after a report.
inline Status multiply_nonzero(Halves x, Halves y, Halves* out) { return detail::on_words<multiply_words>(x, y, out); }
#endif

inline Status attempt(Halves x, Halves y, Halves* out) {
    if (detail::top_is_zero(x) || detail::top_is_zero(y)) {
        *out = Halves{0, 0};
        return Status::ok;
    }
    return multiply_nonzero(x, y, out);
}

// After an attempt that overflowed or underflowed: the report, the retries
// the handler asks for (each starting again from the zero shortcut), and
// the fallback.
[[gnu::cold, gnu::noinline]] Halves recover(Halves hx, Halves hy) {
    return report::settle<report::Form::full>(
        [](Real16 x, Real16 y) -> report::Step<Halves, Real16, Real16> {
            Halves r;
            switch (attempt(detail::load(&x), detail::load(&y), &r)) {
                case Status::ok: return r;
                case Status::underflow: return underflowed(Error::quad_underflow).described(report::Describe::none);
                default:
                    return overflowed(Error::quad_overflow, ((x.w[3] ^ y.w[3]) & kSignBit) != 0)
                        .described(report::Describe::none);
            }
        },
        detail::to_real16(hx), detail::to_real16(hy));
}

}  // namespace

#if defined(__x86_64__)
Halves multiply(Halves x, Halves y) {
    Halves r;
    if (attempt(x, y, &r) != Status::ok) [[unlikely]] r = recover(x, y);
    return r;
}
#endif

}  // namespace mivor::quad

extern "C" mivor_real16* g_aqmq(mivor_real16* result, const mivor_real16* a, const mivor_real16* b) {
    using namespace mivor::quad;
#if defined(__x86_64__)
    detail::store(result, multiply(detail::load(a), detail::load(b)));
#else
    // The first attempt on words, read straight from the operands and
    // written straight to the result, which may be either of them: the
    // product reads all of the operands before it writes.
    if ((a->w[3] & 0x7FFFFFFFu) == 0 || (b->w[3] & 0x7FFFFFFFu) == 0) {
        result->w[0] = result->w[1] = result->w[2] = result->w[3] = 0;
        return result;
    }
    const Status s = multiply_words(a->w, b->w, result->w);
    if (s != Status::ok) [[unlikely]] detail::store(result, recover(detail::load(a), detail::load(b)));
#endif
    return result;
}
