// g_aqaq, g_aqsq: REAL(16) addition and subtraction, x + y and x - y.
//
// Integer arithmetic on the significands, one rounding: to nearest, ties to
// even (there is no other mode).  For operands and results in the normal
// range the result is the correctly rounded IEEE binary128 sum.
//
// Method.  The operand of larger magnitude is A (x on equal magnitudes), the
// result takes A's sign.  B's significand is shifted right by the exponent
// difference into a full 32-bit guard word G and a sticky word T (held
// together in one 64-bit extension word, see primitives.h).  An effective
// addition may carry one bit out, shifted back with G and T; an effective
// subtraction subtracts B with its extension, so a non-zero T borrows one
// unit from G -- B is then taken as slightly larger than its kept bits and
// the difference slightly smaller, which the rounding of G and T sets right.
// Differences of 2 or more leave at most one leading zero to normalise
// away; differences of 0 or 1 are exact (T = 0) and may cancel massively.
//
// Kept on purpose, since compiled programs see every one of these bits:
//  * only the top word decides whether an operand is zero: w3 = 0x00000000
//    or 0x80000000 returns the other operand bit for bit (g_aqaq tests x
//    first, so +0 + -0 is -0; g_aqsq tests y first and otherwise returns
//    y with its sign flipped);
//  * an exact cancellation gives +0, whatever the signs, without a report;
//  * no special operand is recognised: exponent field 0 is read with the
//    implicit one, as (1 + f) * 2^-16383, and field 32767 (infinities,
//    NaNs) as a finite number with that exponent;
//  * no subnormal results: a final exponent field of 0 or below is
//    underflow 1398, 32767 or above overflow 1397.
// Fallbacks when the handler does not correct the operands: +0 for 1398;
// for 1397 the infinity with x's sign (also in g_aqsq) when IEEE results
// are asked for, else +HUGE whatever the sign.
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

// x + y for non-zero tops; `flip` (0 or the sign bit) is applied to y's
// sign, so subtraction is the same sum.
inline Status add_nonzero(Halves x, Halves y, std::uint64_t flip, Halves* out) {
    const std::uint64_t x_sign = x.hi & detail::kSign64;
    const std::uint64_t y_sign = (y.hi ^ flip) & detail::kSign64;
    const bool subtract = x_sign != y_sign;
    std::uint64_t ah = x.hi & ~detail::kSign64, al = x.lo;
    std::uint64_t bh = y.hi & ~detail::kSign64, bl = y.lo;
    // |y| > |x|: y is A.  (A branch here measured faster than a masked
    // exchange on the 32-bit targets, where the masks need spills.)
    const bool swap = bh > ah || (bh == ah && bl > al);
    if (swap) {
        std::uint64_t t = ah;
        ah = bh;
        bh = t;
        t = al;
        al = bl;
        bl = t;
    }
    const std::uint64_t sign = swap ? y_sign : x_sign;
    std::int32_t e = static_cast<std::int32_t>(ah >> 48);
    const int d = e - static_cast<std::int32_t>(bh >> 48);
    ah = (ah & detail::kHiFractionMask) | detail::kImplicitOne;
    bh = (bh & detail::kHiFractionMask) | detail::kImplicitOne;
    std::uint64_t ext = 0;
    if (d != 0) detail::shift_right_extended(bh, bl, &ext, d);

    std::uint64_t hi, lo;
    if (!subtract) {
        lo = al + bl;
        hi = ah + bh + (lo < al);
        if (hi >= (detail::kImplicitOne << 1)) {
            ext = (ext >> 1) | (ext & 1) | (lo << 63);
            lo = (lo >> 1) | (hi << 63);
            hi >>= 1;
            ++e;
        }
    } else {
        // (ah, al, 0) - (bh, bl, ext): the extension borrows from lo.
        const std::uint64_t borrow0 = ext != 0;
        ext = 0 - ext;
        const std::uint64_t lo1 = al - bl;
        const std::uint64_t borrow1 = (al < bl) | (lo1 < borrow0);
        lo = lo1 - borrow0;
        hi = ah - bh - borrow1;
        if (hi < detail::kImplicitOne) {
            if ((hi | lo | ext) == 0) {  // exact cancellation: +0, no report
                *out = Halves{0, 0};
                return Status::ok;
            }
            // Leading one to bit 48 of hi.  Bits come up from the
            // extension word and zeros fill from below.
            int s;
            if (hi != 0) {
                s = __builtin_clzll(hi) - 15;
            } else if (lo != 0) {
                s = __builtin_clzll(lo) + 49;
            } else {
                s = __builtin_clzll(ext) + 113;
            }
            e -= s;
            if (s < 64) {
                hi = (hi << s) | (lo >> (64 - s));
                lo = (lo << s) | (ext >> (64 - s));
                ext <<= s;
            } else if (s < 128) {
                const int t = s - 64;
                hi = t == 0 ? lo : (lo << t) | (ext >> (64 - t));
                lo = ext << t;
                ext = 0;
            } else {
                hi = ext << (s - 128);
                lo = 0;
                ext = 0;
            }
        }
    }
    return detail::round_and_pack(sign, e, hi, lo, ext, out);
}

// One attempt of g_aqaq (flip 0) or g_aqsq (flip = sign bit), zero
// shortcuts first, each operator in its own order.
inline Status attempt(Halves x, Halves y, std::uint64_t flip, Halves* out) {
    if (flip == 0) {
        if (detail::top_is_zero(x)) {
            *out = y;
            return Status::ok;
        }
        if (detail::top_is_zero(y)) {
            *out = x;
            return Status::ok;
        }
    } else {
        if (detail::top_is_zero(y)) {
            *out = x;
            return Status::ok;
        }
        if (detail::top_is_zero(x)) {
            *out = Halves{y.hi ^ detail::kSign64, y.lo};
            return Status::ok;
        }
    }
    return add_nonzero(x, y, flip, out);
}

// After an attempt that overflowed or underflowed: the report, the retries
// the handler asks for (each starting again from the zero shortcuts), and
// the fallback.
[[gnu::cold, gnu::noinline]] Halves recover(Status status, Halves hx, Halves hy, std::uint64_t flip) {
    Real16 x = detail::to_real16(hx), y = detail::to_real16(hy);
    for (;;) {
        const std::int32_t number = status == Status::overflow ? kOverflow : kUnderflow;
        const report::Verdict v = report::full<report::Describe::none>(number, x, y);
        if (!v.retry) {
            if (status == Status::underflow) return Halves{0, 0};
            return detail::load(v.ieee_results ? (sign(x) ? &_MInf_Q : &_Inf_Q) : &kHuge_Q);
        }
        Halves r;
        status = attempt(detail::load(&x), detail::load(&y), flip, &r);
        if (status == Status::ok) return r;
    }
}

inline Real16* add_or_subtract(Real16* result, const Real16* a, const Real16* b, std::uint64_t flip) {
    const Halves x = detail::load(a), y = detail::load(b);
    Halves r;
    const Status s = attempt(x, y, flip, &r);
    if (s != Status::ok) [[unlikely]] r = recover(s, x, y, flip);
    detail::store(result, r);
    return result;
}

}  // namespace
}  // namespace mivor::quad

extern "C" mivor_real16* g_aqaq(mivor_real16* result, const mivor_real16* a, const mivor_real16* b) {
    return mivor::quad::add_or_subtract(result, a, b, 0);
}

extern "C" mivor_real16* g_aqsq(mivor_real16* result, const mivor_real16* a, const mivor_real16* b) {
    return mivor::quad::add_or_subtract(result, a, b, mivor::quad::detail::kSign64);
}
