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
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"
#include "quad/primitives.h"

namespace mivor::quad {
namespace {

using detail::Halves;
using detail::Status;

constexpr std::int32_t kOverflow = 1397;
constexpr std::int32_t kUnderflow = 1398;

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
// The 32-bit targets scan the product column by column over 32-bit words:
// each column's 32 x 32 -> 64-bit products are summed into a 96-bit
// accumulator (`acc` and the carry count `over`, at most 4 per column),
// whose low word is the column's word.  Sixteen products either way, but
// far fewer 64-bit additions, each needing a register pair, than with
// four 64 x 64 products.
inline void product(std::uint64_t ah, std::uint64_t al, std::uint64_t bh, std::uint64_t bl, std::uint64_t* p3,
                    std::uint64_t* p2, std::uint64_t* p1, std::uint64_t* p0) {
    const std::uint32_t a0 = static_cast<std::uint32_t>(al), a1 = static_cast<std::uint32_t>(al >> 32);
    const std::uint32_t a2 = static_cast<std::uint32_t>(ah), a3 = static_cast<std::uint32_t>(ah >> 32);
    const std::uint32_t b0 = static_cast<std::uint32_t>(bl), b1 = static_cast<std::uint32_t>(bl >> 32);
    const std::uint32_t b2 = static_cast<std::uint32_t>(bh), b3 = static_cast<std::uint32_t>(bh >> 32);
    std::uint64_t acc = 0;
    std::uint32_t over = 0;
    auto mac = [&](std::uint32_t x, std::uint32_t y) {
        const std::uint64_t t = std::uint64_t{x} * y;
        acc += t;
        over += acc < t;
    };
    auto next = [&]() {
        const std::uint32_t word = static_cast<std::uint32_t>(acc);
        acc = (acc >> 32) | (std::uint64_t{over} << 32);
        over = 0;
        return word;
    };
    mac(a0, b0);
    const std::uint32_t w0 = next();
    mac(a0, b1);
    mac(a1, b0);
    const std::uint32_t w1 = next();
    mac(a0, b2);
    mac(a1, b1);
    mac(a2, b0);
    const std::uint32_t w2 = next();
    mac(a0, b3);
    mac(a1, b2);
    mac(a2, b1);
    mac(a3, b0);
    const std::uint32_t w3 = next();
    mac(a1, b3);
    mac(a2, b2);
    mac(a3, b1);
    const std::uint32_t w4 = next();
    mac(a2, b3);
    mac(a3, b2);
    const std::uint32_t w5 = next();
    mac(a3, b3);  // a3, b3 < 2^17
    *p3 = acc;
    *p2 = (std::uint64_t{w5} << 32) | w4;
    *p1 = (std::uint64_t{w3} << 32) | w2;
    *p0 = (std::uint64_t{w1} << 32) | w0;
}
#endif

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
[[gnu::cold, gnu::noinline]] Halves recover(Status status, Halves hx, Halves hy) {
    Real16 x = detail::to_real16(hx), y = detail::to_real16(hy);
    for (;;) {
        const std::int32_t number = status == Status::overflow ? kOverflow : kUnderflow;
        const report::Verdict v = report::full<report::Describe::none>(number, x, y);
        if (!v.retry) {
            if (status == Status::underflow) return Halves{0, 0};
            const bool negative = ((x.w[3] ^ y.w[3]) & kSignBit) != 0;
            return detail::load(v.ieee_results ? (negative ? &_MInf_Q : &_Inf_Q) : &kHuge_Q);
        }
        Halves r;
        status = attempt(detail::load(&x), detail::load(&y), &r);
        if (status == Status::ok) return r;
    }
}

}  // namespace
}  // namespace mivor::quad

extern "C" mivor_real16* g_aqmq(mivor_real16* result, const mivor_real16* a, const mivor_real16* b) {
    using namespace mivor::quad;
    const Halves x = detail::load(a), y = detail::load(b);
    Halves r;
    const Status s = attempt(x, y, &r);
    if (s != Status::ok) [[unlikely]] r = recover(s, x, y);
    detail::store(result, r);
    return result;
}
