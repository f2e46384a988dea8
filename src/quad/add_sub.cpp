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
#include "mivor/mivor.h"
#include "quad/fallbacks.h"
#include "quad/operators.h"
#include "quad/primitives.h"

namespace mivor::quad {
namespace {

using detail::Halves;
using detail::Status;

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

#if !defined(__x86_64__)
// The 32-bit targets: the first attempt on 32-bit words, read straight from
// the operands and written straight to the result (the compiler's
// register-pair code for the 64-bit halves spills most of its values).
// The common case -- exponents less than 64 apart -- takes five words (four
// of significand and the guard word, everything below it jammed into the
// guard word's last bit) and runs without a data-dependent branch: half of
// all sums are effective subtractions and half of the operand pairs are
// exchanged, unpredictably.  A cancellation of more than one bit is exact
// and normalised on the words too: a running sum meets it often.  The rest,
// rare, is done again from the start by the general code, which gives the
// same bits.
//
// x + y for non-zero tops on words, least significant first; `flip` (0 or
// the sign bit) is applied to y's sign.  True when the sum is written; false,
// with nothing written, for the cases left to the general code (exponents 64
// or more apart, overflow, underflow).  All operand words are read before the
// result is written.
[[gnu::always_inline]] inline bool add_words(const std::uint32_t* x, const std::uint32_t* y, std::uint32_t flip,
                                               std::uint32_t* out) {
    const std::uint32_t x3 = x[3], y3 = y[3] ^ flip;
    // |y| > |x| as the borrow of |x| - |y|: y is then A.  The operands are
    // exchanged by choosing pointers.
    bool swap;
    {
        std::uint32_t t;
        __asm__(
            "movl %[x0], %[t]\n\t"
            "subl %[y0], %[t]\n\t"
            "movl %[x1], %[t]\n\t"
            "sbbl %[y1], %[t]\n\t"
            "movl %[x2], %[t]\n\t"
            "sbbl %[y2], %[t]\n\t"
            "movl %[x3], %[t]\n\t"
            "sbbl %[y3], %[t]"
            : [t] "=&r"(t), "=@ccc"(swap)
            : [x0] "m"(x[0]), [x1] "m"(x[1]), [x2] "m"(x[2]), [x3] "rm"(x3 & 0x7FFFFFFFu), [y0] "m"(y[0]),
              [y1] "m"(y[1]), [y2] "m"(y[2]), [y3] "rm"(y3 & 0x7FFFFFFFu));
    }
    const std::uint32_t swap_mask = 0u - static_cast<std::uint32_t>(swap);
    const std::uintptr_t px = reinterpret_cast<std::uintptr_t>(x), py = reinterpret_cast<std::uintptr_t>(y);
    const std::uint32_t* a = reinterpret_cast<const std::uint32_t*>(px ^ ((px ^ py) & swap_mask));
    const std::uint32_t* b = reinterpret_cast<const std::uint32_t*>(py ^ ((px ^ py) & swap_mask));
    const std::uint32_t sign = (x3 ^ ((x3 ^ y3) & swap_mask)) & kSignBit;
    const std::uint32_t subtract = static_cast<std::uint32_t>(static_cast<std::int32_t>(x3 ^ y3) >> 31);
    const std::uint32_t a3 = a[3], b3 = b[3];
    const std::int32_t e = static_cast<std::int32_t>((a3 >> 16) & 0x7FFF);
    const std::uint32_t d = static_cast<std::uint32_t>(e - static_cast<std::int32_t>((b3 >> 16) & 0x7FFF));
    if (d >= 64) [[unlikely]]
        return false;

    // B shifted right by d: the word offset by reading from a frame of
    // B's words between zeros, the bit offset by shifts.  (A zero the
    // compiler cannot see keeps it from building the frame with 16-byte
    // stores.)
    std::uint32_t zero = 0;
    __asm__("" : "+r"(zero));
    const std::uint32_t frame[7] = {zero, b[0], b[1], b[2], (b3 & 0xFFFF) | 0x10000, zero, zero};
    const std::uint32_t* f = frame + (d >> 5);
    const unsigned bit = d & 31;
    // Plain shifts: a double shift by a variable count costs several times
    // as much on some processors.  The upper word goes up in two steps, so
    // that bit = 0 brings in nothing.
    auto down = [bit](std::uint32_t lo, std::uint32_t hi) { return (lo >> bit) | ((hi << 1) << (31 - bit)); };
    // Below the guard word only whether anything is non-zero matters: it
    // is jammed into the guard word's last bit, which lies far enough below
    // the rounding position even after a bit of cancellation.  (Only f[0]
    // can reach below, and only its part shifted out.)
    const std::uint32_t jam = ((f[0] << 1) << (31 - bit)) != 0;
    // A - B is A + ~B + 1: the words of B complemented for a subtraction.
    std::uint32_t r0 = (down(f[0], f[1]) | jam) ^ subtract, r1 = down(f[1], f[2]) ^ subtract;
    std::uint32_t r2 = down(f[2], f[3]) ^ subtract, r3 = down(f[3], f[4]) ^ subtract;
    std::uint32_t r4 = down(f[4], f[5]) ^ subtract;
    __asm__(
        "btl $0, %[m]\n\t"
        "adcl $0, %[r0]\n\t"
        "adcl %[a0], %[r1]\n\t"
        "adcl %[a1], %[r2]\n\t"
        "adcl %[a2], %[r3]\n\t"
        "adcl %[a3], %[r4]"
        : [r0] "+rm"(r0), [r1] "+r"(r1), [r2] "+r"(r2), [r3] "+r"(r3), [r4] "+r"(r4)
        : [m] "r"(subtract), [a0] "m"(a[0]), [a1] "m"(a[1]), [a2] "m"(a[2]), [a3] "rm"((a3 & 0xFFFF) | 0x10000)
        : "cc");
    // The sum is below 2^146 (top word below 2^18).
    if (r4 < 0x8000) [[unlikely]] {
        // More than one bit cancelled: a subtraction with exponents at most
        // one apart, so nothing was jammed and the difference, at most 114
        // bits wide less what cancelled, is exact and needs no rounding.
        // Common in a running sum, hence not left to the general code.
        const std::uint32_t g[10] = {zero, zero, zero, zero, zero, r0, r1, r2, r3, r4};
        int k = 9;
        while (g[k] == 0)
            if (--k < 5) {  // exact cancellation: +0
                out[0] = out[1] = out[2] = out[3] = 0;
                return true;
            }
        // Leading one from bit 32 k + 31 - clz to bit 16 of g[9]: shift is
        // 2 to 144 (r4 < 2^15, k >= 5), so the five result words start at
        // g[5 - shift / 32], at g[1] or above.
        const unsigned shift = 304 - (32 * static_cast<unsigned>(k) + 31 - static_cast<unsigned>(__builtin_clz(g[k])));
        const std::int32_t e_low = e - static_cast<std::int32_t>(shift);
        if (e_low <= 0) return false;
        const std::uint32_t* h = g + (5 - (shift >> 5));
        const unsigned up_bits = shift & 31;
        auto up = [up_bits](std::uint32_t lo, std::uint32_t hi) { return (hi << up_bits) | ((lo >> 1) >> (31 - up_bits)); };
        out[0] = up(h[0], h[1]);
        out[1] = up(h[1], h[2]);
        out[2] = up(h[2], h[3]);
        out[3] = sign | (static_cast<std::uint32_t>(e_low) << 16) | (up(h[3], h[4]) & 0xFFFF);
        return true;
    }
    // Leading one to bit 16 of the top word: the five words doubled, then
    // halved 0, 1 or 2 times.  Only the guard word's last bit can be lost,
    // when halving twice; it then counts as sticky.
    const unsigned u = 16 - static_cast<unsigned>(__builtin_clz(r4));
    const std::uint32_t lost = r0 & (u >> 1);
    __asm__(
        "shll $1, %[r0]\n\t"
        "adcl %[r1], %[r1]\n\t"
        "adcl %[r2], %[r2]\n\t"
        "adcl %[r3], %[r3]\n\t"
        "adcl %[r4], %[r4]\n\t"
        "shrdl %%cl, %[r1], %[r0]\n\t"
        "shrdl %%cl, %[r2], %[r1]\n\t"
        "shrdl %%cl, %[r3], %[r2]\n\t"
        "shrdl %%cl, %[r4], %[r3]\n\t"
        "shrl %%cl, %[r4]"
        : [r0] "+rm"(r0), [r1] "+r"(r1), [r2] "+r"(r2), [r3] "+r"(r3), [r4] "+r"(r4)
        : "c"(u)
        : "cc");
    // To nearest, ties to even: guard word r0, the lost bit sticky.
    const std::uint32_t up = static_cast<std::uint32_t>(r0 > 0x80000000u) |
                             (static_cast<std::uint32_t>(r0 == 0x80000000u) & (lost | r1));
    std::int32_t e_out = e + static_cast<std::int32_t>(u) - 1;
    detail::add_rounding_carry(up & 1, r1, r2, r3, r4);
    detail::carry_out_of_rounding(r4, e_out);
    if (e_out <= 0 || e_out >= 0x7FFF) [[unlikely]]
        return false;
    // Word stores, kept apart: the compiler would merge them into one
    // 16-byte store, after four moves to SSE and three shuffles.
    const std::uint32_t top = sign | (static_cast<std::uint32_t>(e_out) << 16) | (r4 & 0xFFFF);
    __asm__(
        "movl %[s0], %[o0]\n\t"
        "movl %[s1], %[o1]\n\t"
        "movl %[s2], %[o2]\n\t"
        "movl %[s3], %[o3]"
        : [o0] "=m"(out[0]), [o1] "=m"(out[1]), [o2] "=m"(out[2]), [o3] "=m"(out[3])
        : [s0] "r"(r1), [s1] "r"(r2), [s2] "r"(r3), [s3] "r"(top));
    return true;
}
#endif

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
[[gnu::cold, gnu::noinline]] Halves recover(Halves hx, Halves hy, std::uint64_t flip) {
    return report::settle<report::Form::full>(
        [flip](Real16 x, Real16 y) -> report::Step<Halves, Real16, Real16> {
            Halves r;
            switch (attempt(detail::load(&x), detail::load(&y), flip, &r)) {
                case Status::ok: return r;
                case Status::underflow: return underflowed(Error::quad_underflow).described(report::Describe::none);
                default: return overflowed(Error::quad_overflow, sign(x)).described(report::Describe::none);
            }
        },
        detail::to_real16(hx), detail::to_real16(hy));
}

// The general code: the attempt on halves, the report and its sequel.
template <std::uint64_t Flip>
inline Real16* add_or_subtract_halves(Real16* result, const Real16* a, const Real16* b) {
    const Halves x = detail::load(a), y = detail::load(b);
    Halves r;
    const Status s = attempt(x, y, Flip, &r);
    if (s != Status::ok) [[unlikely]] r = recover(x, y, Flip);
    detail::store(result, r);
    return result;
}


#if !defined(__x86_64__)
template <std::uint64_t Flip>
[[gnu::noinline]] Real16* general(Real16* result, const Real16* a, const Real16* b) {
    return add_or_subtract_halves<Flip>(result, a, b);
}
#endif

template <std::uint64_t Flip>
inline Real16* add_or_subtract(Real16* result, const Real16* a, const Real16* b) {
#if defined(__x86_64__)
    return add_or_subtract_halves<Flip>(result, a, b);
#else
    // The zero shortcuts on the top words, in the same order as attempt's;
    // every word is read before the result, which may be an operand, is
    // written.
    const bool x_zero = (a->w[3] & 0x7FFFFFFFu) == 0, y_zero = (b->w[3] & 0x7FFFFFFFu) == 0;
    if (x_zero || y_zero) [[unlikely]] {
        const bool take_y = Flip == 0 ? x_zero : !y_zero;
        const Real16* from = take_y ? b : a;
        const std::uint32_t w0 = from->w[0], w1 = from->w[1], w2 = from->w[2];
        const std::uint32_t w3 = from->w[3] ^ (take_y ? static_cast<std::uint32_t>(Flip >> 32) : 0u);
        result->w[0] = w0;
        result->w[1] = w1;
        result->w[2] = w2;
        result->w[3] = w3;
        return result;
    }
    if (add_words(a->w, b->w, static_cast<std::uint32_t>(Flip >> 32), result->w)) return result;
    // A tail call: the entry point then makes no call of its own and needs
    // neither a realigned stack nor a frame pointer.
    return general<Flip>(result, a, b);
#endif
}

}  // namespace

#if defined(__x86_64__)
Halves add(Halves x, Halves y) {
    Halves r;
    if (attempt(x, y, 0, &r) != Status::ok) [[unlikely]] r = recover(x, y, 0);
    return r;
}
Halves subtract(Halves x, Halves y) {
    Halves r;
    if (attempt(x, y, detail::kSign64, &r) != Status::ok) [[unlikely]] r = recover(x, y, detail::kSign64);
    return r;
}
#endif

}  // namespace mivor::quad

extern "C" mivor_real16* g_aqaq(mivor_real16* result, const mivor_real16* a, const mivor_real16* b) {
    return mivor::quad::add_or_subtract<0>(result, a, b);
}

extern "C" mivor_real16* g_aqsq(mivor_real16* result, const mivor_real16* a, const mivor_real16* b) {
    return mivor::quad::add_or_subtract<mivor::quad::detail::kSign64>(result, a, b);
}
