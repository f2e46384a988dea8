// The fixed-point layer beneath the REAL(16) elementary functions: 128-bit
// and 192-bit integers on 64-bit halves, with exact products.
//
// A U128 holds an unsigned 128-bit integer as two 64-bit halves, or a
// two's-complement signed one where a routine says so; a U192 holds three
// words.  What the integer stands for (its binary point, whether it is
// signed) is stated where a kernel declares it: "Q1.127" is an unsigned
// value X / 2^127, "S.136" a signed value X / 2^136, and so on.
//
// Every product is built from 64 x 64 -> 128-bit products, which the
// 32-bit targets form from four 32 x 32 -> 64-bit products
// (quad::detail::mul_64x64): all results are exact or rounded by the same
// rule everywhere, so every flavour gives the same bits.  No __int128.
#pragma once

#include <cstdint>

#include "quad/primitives.h"

namespace mivor::quadfunc {

struct U128 {
    std::uint64_t hi, lo;
};

struct U192 {
    std::uint64_t w2, w1, w0;  // most significant first
};

inline constexpr std::uint64_t kTop64 = std::uint64_t{1} << 63;

constexpr bool is_zero(U128 a) { return (a.hi | a.lo) == 0; }
constexpr bool negative(U128 a) { return (a.hi >> 63) != 0; }  // as a signed value
constexpr bool equal(U128 a, U128 b) { return a.hi == b.hi && a.lo == b.lo; }
constexpr bool less(U128 a, U128 b) { return a.hi < b.hi || (a.hi == b.hi && a.lo < b.lo); }

constexpr U128 add(U128 a, U128 b) {
    const std::uint64_t lo = a.lo + b.lo;
    return U128{a.hi + b.hi + (lo < a.lo), lo};
}
constexpr U128 sub(U128 a, U128 b) {
    const std::uint64_t lo = a.lo - b.lo;
    return U128{a.hi - b.hi - (a.lo < b.lo), lo};
}
constexpr U128 neg(U128 a) { return sub(U128{0, 0}, a); }
constexpr U128 add64(U128 a, std::uint64_t b) {
    const std::uint64_t lo = a.lo + b;
    return U128{a.hi + (lo < b), lo};
}

// Shifts by 0 <= s < 128.
constexpr U128 shr(U128 a, int s) {
    if (s == 0) return a;
    if (s < 64) return U128{a.hi >> s, (a.lo >> s) | (a.hi << (64 - s))};
    return U128{0, a.hi >> (s - 64)};
}
constexpr U128 sar(U128 a, int s) {  // arithmetic: the sign is kept
    if (s == 0) return a;
    const auto h = static_cast<std::int64_t>(a.hi);
    if (s < 64) return U128{static_cast<std::uint64_t>(h >> s), (a.lo >> s) | (a.hi << (64 - s))};
    return U128{static_cast<std::uint64_t>(h >> 63), static_cast<std::uint64_t>(h >> (s - 64))};
}
constexpr U128 shl(U128 a, int s) {
    if (s == 0) return a;
    if (s < 64) return U128{(a.hi << s) | (a.lo >> (64 - s)), a.lo << s};
    return U128{a.lo << (s - 64), 0};
}
// Right shift by 0 <= s < 128, rounded to nearest (a half rounds up).
constexpr U128 shr_round(U128 a, int s) {
    if (s == 0) return a;
    const U128 half_bit = s <= 64 ? U128{0, (a.lo >> (s - 1)) & 1} : U128{0, (a.hi >> (s - 65)) & 1};
    return add(shr(a, s), half_bit);
}

// Leading zeros of a non-zero value.
inline int clz(U128 a) { return a.hi != 0 ? __builtin_clzll(a.hi) : 64 + __builtin_clzll(a.lo); }

// 64 x 64 -> 128, exact.
inline U128 mul64(std::uint64_t a, std::uint64_t b) {
    std::uint64_t hi;
    const std::uint64_t lo = quad::detail::mul_64x64(a, b, &hi);
    return U128{hi, lo};
}

// acc += m c exactly: m a 128-bit integer, c an n-word integer written most
// significant word first (as the tables of constants are), acc n + 2 words
// least significant first, large enough that the sum does not carry out.
inline void multiply_accumulate(U128 m, const std::uint64_t* c, int n, std::uint64_t* acc) {
    const std::uint64_t mw[2] = {m.lo, m.hi};
    for (int i = 0; i < 2; ++i) {
        std::uint64_t carry = 0;
        for (int j = 0; j < n; ++j) {
            const U128 t = mul64(mw[i], c[n - 1 - j]);
            const std::uint64_t lo = t.lo + carry;
            std::uint64_t hi = t.hi + (lo < carry);
            const std::uint64_t s = acc[i + j] + lo;
            hi += s < lo;
            acc[i + j] = s;
            carry = hi;
        }
        acc[i + n] += carry;
    }
}

// The full 256-bit product of two 128-bit integers, most significant first.
struct U256 {
    std::uint64_t w3, w2, w1, w0;
};
inline U256 mul_full(U128 a, U128 b) {
    const U128 ll = mul64(a.lo, b.lo);
    const U128 lh = mul64(a.lo, b.hi);
    const U128 hl = mul64(a.hi, b.lo);
    const U128 hh = mul64(a.hi, b.hi);
    // Column 1 (bits 64..127): ll.hi + lh.lo + hl.lo, carries into column 2.
    std::uint64_t c1 = ll.hi + lh.lo;
    std::uint64_t carry = c1 < lh.lo;
    c1 += hl.lo;
    carry += c1 < hl.lo;
    // Column 2: lh.hi + hl.hi + hh.lo + carry.
    std::uint64_t c2 = lh.hi + carry;
    std::uint64_t carry2 = c2 < carry;
    c2 += hl.hi;
    carry2 += c2 < hl.hi;
    c2 += hh.lo;
    carry2 += c2 < hh.lo;
    return U256{hh.hi + carry2, c2, c1, ll.lo};
}

// floor(a * b / 2^128) rounded to nearest instead: the high half of the
// product plus its bit 127.  Error at most 1/2 unit of the result.
inline U128 mul_hi(U128 a, U128 b) {
    const U256 p = mul_full(a, b);
    return add64(U128{p.w3, p.w2}, p.w1 >> 63);
}

// The same for signed (two's complement) operands: the high half of the
// signed product, from the unsigned one by the usual corrections, rounded
// to nearest.  |a|, |b| < 2^127.
inline U128 mul_hi_signed(U128 a, U128 b) {
    const U256 p = mul_full(a, b);
    U128 h{p.w3, p.w2};
    if (negative(a)) h = sub(h, b);
    if (negative(b)) h = sub(h, a);
    return add64(h, p.w1 >> 63);
}

// a (128 bits) times a 64-bit b: floor(a * b / 2^64), rounded to nearest.
inline U128 mul_hi_64(U128 a, std::uint64_t b) {
    const U128 l = mul64(a.lo, b);
    const U128 h = mul64(a.hi, b);
    return add64(add64(h, l.hi), l.lo >> 63);
}

// ---- 192 bits -------------------------------------------------------------

constexpr U192 add(U192 a, U192 b) {
    const std::uint64_t w0 = a.w0 + b.w0;
    const std::uint64_t c0 = w0 < a.w0;
    const std::uint64_t w1a = a.w1 + b.w1;
    const std::uint64_t w1 = w1a + c0;
    const std::uint64_t c1 = (w1a < a.w1) | (w1 < w1a);
    return U192{a.w2 + b.w2 + c1, w1, w0};
}
constexpr U192 sub(U192 a, U192 b) {
    const std::uint64_t w0 = a.w0 - b.w0;
    const std::uint64_t b0 = a.w0 < b.w0;
    const std::uint64_t w1a = a.w1 - b.w1;
    const std::uint64_t w1 = w1a - b0;
    const std::uint64_t b1 = (a.w1 < b.w1) | (w1a < b0);
    return U192{a.w2 - b.w2 - b1, w1, w0};
}
constexpr U192 neg(U192 a) { return sub(U192{0, 0, 0}, a); }
constexpr bool negative(U192 a) { return (a.w2 >> 63) != 0; }
constexpr bool is_zero(U192 a) { return (a.w2 | a.w1 | a.w0) == 0; }

// Arithmetic right shift by 0 <= s < 64.
constexpr U192 sar(U192 a, int s) {
    if (s == 0) return a;
    return U192{static_cast<std::uint64_t>(static_cast<std::int64_t>(a.w2) >> s), (a.w1 >> s) | (a.w2 << (64 - s)),
                (a.w0 >> s) | (a.w1 << (64 - s))};
}
// Left shift by 0 <= s < 64.
constexpr U192 shl(U192 a, int s) {
    if (s == 0) return a;
    return U192{(a.w2 << s) | (a.w1 >> (64 - s)), (a.w1 << s) | (a.w0 >> (64 - s)), a.w0 << s};
}

// A 192-bit integer times a 64-bit one, modulo 2^192.
inline U192 mul_low(U192 a, std::uint64_t b) {
    const U128 p0 = mul64(a.w0, b);
    const U128 p1 = mul64(a.w1, b);
    const std::uint64_t w1 = p0.hi + p1.lo;
    return U192{a.w2 * b + p1.hi + (w1 < p1.lo), w1, p0.lo};
}

// A 128-bit integer times a 64-bit one: the full 192-bit product.
inline U192 mul_128x64(U128 a, std::uint64_t b) {
    const U128 l = mul64(a.lo, b);
    const U128 h = mul64(a.hi, b);
    const std::uint64_t w1 = l.hi + h.lo;
    return U192{h.hi + (w1 < h.lo), w1, l.lo};
}

}  // namespace mivor::quadfunc
