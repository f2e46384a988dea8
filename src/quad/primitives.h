// Small primitives of the REAL(16) operators: the working significand, word
// products, rounding and packing.  Every routine is a pure function of its
// arguments, inline, and gives the same bits in every flavour.
//
// The working significand is 113 bits held in two 64-bit halves:
//   hi   bits 112..64, with the implicit one at bit 48 (value 1 << 48),
//   lo   bits 63..0.
// Below it, the extension word `ext` carries what lies beyond the last
// significand bit: its upper 32 bits are the guard word G, and its lower 32
// bits stand for the sticky word T -- they are non-zero exactly when some
// bit below G is non-zero (shifts "jam" everything lost into bit 0).  The
// rounding decision needs nothing more than G and whether T is zero, so the
// arithmetic may move bits between the halves of `ext` freely as long as
// that non-zero-ness is kept.
//
// On the 32-bit targets the compiler carries each 64-bit half in a register
// pair; the 64-bit target uses its full-width multiply for `mul_64x64`.
// No __int128 is used anywhere: the 32-bit targets have none.
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/values.h"

namespace mivor::quad::detail {

inline constexpr std::uint64_t kImplicitOne = std::uint64_t{1} << 48;
inline constexpr std::uint64_t kHiFractionMask = kImplicitOne - 1;
inline constexpr std::uint64_t kHalfway = std::uint64_t{1} << 63;
inline constexpr std::uint64_t kSign64 = std::uint64_t{1} << 63;

// A REAL(16) as two 64-bit halves: hi = w3:w2 (sign, exponent field in
// bits 62..48, top fraction bits), lo = w1:w0.  Loaded and stored as two
// halves, so that a result written here and read back as the next operand
// is forwarded from the store buffer (one 16-byte load over narrower stores
// is not, and costs a dozen cycles of latency).
struct Halves {
    std::uint64_t hi, lo;
};

inline Halves load(const Real16* q) {
    Halves h;
    std::memcpy(&h.lo, &q->w[0], 8);
    std::memcpy(&h.hi, &q->w[2], 8);
#if defined(__x86_64__)
    // Keeps the two loads apart: the vectoriser would otherwise merge them
    // into one 16-byte load.
    __asm__("" : "+r"(h.lo), "+r"(h.hi));
#endif
    return h;
}
inline void store(Real16* q, Halves h) {
    std::memcpy(&q->w[0], &h.lo, 8);
    std::memcpy(&q->w[2], &h.hi, 8);
}
inline Real16 to_real16(Halves h) {
    Real16 q;
    store(&q, h);
    return q;
}

// The zero test of the operators looks at the top word only: w3 equal to
// 0x00000000 or 0x80000000 is zero whatever the lower words hold.
constexpr bool top_is_zero(Halves q) { return ((q.hi >> 32) & 0x7FFFFFFFu) == 0; }

constexpr std::int32_t exponent_of(Halves q) { return static_cast<std::int32_t>((q.hi >> 48) & 0x7FFF); }

// The significand's upper half with the implicit one set -- for every
// exponent field, 0 included: the operators read no subnormals.
constexpr std::uint64_t significand_high(Halves q) { return (q.hi & kHiFractionMask) | kImplicitOne; }

// Full 64 x 64 -> 128-bit product: returns the low half, stores the high
// half in *high.  Exact.
inline std::uint64_t mul_64x64(std::uint64_t a, std::uint64_t b, std::uint64_t* high) {
#if defined(__x86_64__)
    std::uint64_t lo, hi;
    __asm__("mulq %3" : "=a"(lo), "=d"(hi) : "%0"(a), "rm"(b) : "cc");
    *high = hi;
    return lo;
#else
    // Four 32 x 32 -> 64 products; the middle column cannot overflow 64
    // bits: (2^32-1)^2 + 2 (2^32-1) < 2^64.
    const std::uint32_t a0 = static_cast<std::uint32_t>(a), a1 = static_cast<std::uint32_t>(a >> 32);
    const std::uint32_t b0 = static_cast<std::uint32_t>(b), b1 = static_cast<std::uint32_t>(b >> 32);
    const std::uint64_t p00 = std::uint64_t{a0} * b0;
    const std::uint64_t p01 = std::uint64_t{a0} * b1;
    const std::uint64_t p10 = std::uint64_t{a1} * b0;
    const std::uint64_t p11 = std::uint64_t{a1} * b1;
    const std::uint64_t mid = (p00 >> 32) + static_cast<std::uint32_t>(p01) + static_cast<std::uint32_t>(p10);
    *high = p11 + (p01 >> 32) + (p10 >> 32) + (mid >> 32);
    return (mid << 32) | static_cast<std::uint32_t>(p00);
#endif
}

// Low 64 bits of a product (the high half is not wanted).
constexpr std::uint64_t mul_low(std::uint64_t a, std::uint64_t b) { return a * b; }

// Shifts the 113-bit significand (hi, lo) right by d >= 1 bits into the
// extension word, which starts out zero.  Every bit shifted out below the
// extension word is ORed into its bit 0, so the guard word (the upper 32
// bits of *ext) is exact and the lower 32 bits are non-zero exactly when a
// bit below the guard word was.  Distances of 192 and more leave only the
// sticky bit (the implicit one guarantees the significand is non-zero).
inline void shift_right_extended(std::uint64_t& hi, std::uint64_t& lo, std::uint64_t* ext, int d) {
    if (d < 64) {
        *ext = lo << (64 - d);
        lo = (lo >> d) | (hi << (64 - d));
        hi >>= d;
    } else if (d == 64) {
        *ext = lo;
        lo = hi;
        hi = 0;
    } else if (d < 128) {
        const int s = d - 64;
        *ext = (lo >> s) | (hi << (64 - s)) | ((lo << (64 - s)) != 0);
        lo = hi >> s;
        hi = 0;
    } else if (d == 128) {
        *ext = hi | (lo != 0);
        lo = hi = 0;
    } else if (d < 192) {
        // hi < 2^49, so d >= 177 leaves only the sticky bit.
        const int s = d - 128;
        *ext = (hi >> s) | (((hi << (64 - s)) | lo) != 0);
        lo = hi = 0;
    } else {
        *ext = 1;
        lo = hi = 0;
    }
}

// Outcome of rounding and packing: the packed word is only valid for ok.
enum class Status { ok, underflow, overflow };

// Rounds a normalised significand (hi in [2^48, 2^49)) with its extension
// word to nearest, ties to even, and packs it with `sign` (bit 63 or 0) and
// the exponent field `e` (a signed quantity that may lie far outside the
// field's range).  A carry out of the significand on rounding up raises e
// by one; the range is checked after rounding: e <= 0 is an underflow (no
// subnormal results), e >= 32767 an overflow.
//
// The guard/sticky rule: G > 0x80000000, or G = 0x80000000 with T non-zero,
// or an exact half with an odd last bit, rounds up.  On `ext` that is
// ext > 2^63, or ext == 2^63 with lo odd.
inline Status round_and_pack(std::uint64_t sign, std::int32_t e, std::uint64_t hi, std::uint64_t lo,
                             std::uint64_t ext, Halves* out) {
    // Without a branch: half of all results round up, unpredictably.
    const std::uint64_t up = (ext > kHalfway) | ((ext == kHalfway) & lo);
    lo += up;
    hi += lo < up;
    if (hi == (kImplicitOne << 1)) [[unlikely]] {  // all fraction bits were ones
        hi = kImplicitOne;
        ++e;
    }
    if (e <= 0) return Status::underflow;
    if (e >= 0x7FFF) return Status::overflow;
    out->hi = sign + (static_cast<std::uint64_t>(e) << 48) + (hi - kImplicitOne);
    out->lo = lo;
    return Status::ok;
}

#if !defined(__x86_64__)
// The rounding step of the word kernels of the 32-bit targets: adds `up`
// (0 or 1) to the significand words s3:s2:s1:s0 (the implicit one at bit 16
// of s3) in one carry chain.  A carry out of the significand (all fraction
// bits were ones) leaves 2.0 there: see carry_out_of_rounding.
inline void add_rounding_carry(std::uint32_t up, std::uint32_t& s0, std::uint32_t& s1, std::uint32_t& s2,
                               std::uint32_t& s3) {
    __asm__(
        "addl %[up], %[s0]\n\t"
        "adcl $0, %[s1]\n\t"
        "adcl $0, %[s2]\n\t"
        "adcl $0, %[s3]"
        : [s0] "+r"(s0), [s1] "+r"(s1), [s2] "+r"(s2), [s3] "+r"(s3)
        : [up] "rm"(up)
        : "cc");
}

// After add_rounding_carry: 2.0 becomes 1.0 with the exponent raised.
inline void carry_out_of_rounding(std::uint32_t& s3, std::int32_t& e) {
    if (s3 == 0x20000) [[unlikely]] {
        s3 = 0x10000;
        ++e;
    }
}

// Range check and packing of a rounded word significand, as round_and_pack
// does on halves: e <= 0 is an underflow, e >= 32767 an overflow.
inline Status pack_words(std::uint32_t sign, std::int32_t e, std::uint32_t s0, std::uint32_t s1, std::uint32_t s2,
                         std::uint32_t s3, std::uint32_t* out) {
    carry_out_of_rounding(s3, e);
    if (e <= 0) return Status::underflow;
    if (e >= 0x7FFF) return Status::overflow;
    out[0] = s0;
    out[1] = s1;
    out[2] = s2;
    out[3] = sign | (static_cast<std::uint32_t>(e) << 16) | (s3 & 0xFFFF);
    return Status::ok;
}

// A word kernel applied to operands held as halves: the retries after a
// report start again from the halves.
template <Status (*kernel)(const std::uint32_t*, const std::uint32_t*, std::uint32_t*)>
inline Status on_words(Halves x, Halves y, Halves* out) {
    const Real16 qx = to_real16(x), qy = to_real16(y);
    Real16 q;
    const Status s = kernel(qx.w, qy.w, q.w);
    if (s == Status::ok) *out = load(&q);
    return s;
}
#endif

}  // namespace mivor::quad::detail
