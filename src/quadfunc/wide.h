// The working format of the REAL(16) elementary functions: a 128-bit
// fixed-point significand with a binary scale and a sign,
//
//     value = (-1)^neg * m * 2^(e - 128),
//
// m normalised (bit 127 set, so the value lies in [2^(e-1), 2^e)) or zero.
// It carries 15 bits beyond a REAL(16) significand and a 32-bit scale, so
// kernels run with no overflow or underflow of their own, and a result is
// rounded once, at the end, to REAL(16) (round_to_real16).
//
// Every operation rounds its exact result to nearest (ties to even), so
// each costs at most 2^-128 relative: add and sub keep 64 bits beyond the
// significand, so that a cancellation of up to 64 bits is exact; mul
// rounds the 256-bit product once.  recip, div and sqrt are Newton
// iterations with a stated bound.  All are pure functions of their
// operands and give the same bits on every flavour.
//
// The exported form of the same value is mivor_work (include/mivor/types.h).
#pragma once

#include <cstdint>

#include "frame/values.h"
#include "quadfunc/fixed.h"

namespace mivor::quadfunc {

struct Wide {
    U128 m;
    std::int32_t e;
    std::uint32_t neg;  // 0 or 1
};

inline constexpr std::int32_t kZeroScale = 0;
inline constexpr Wide kWideZero{{0, 0}, kZeroScale, 0};
inline constexpr Wide kWideOne{{kTop64, 0}, 1, 0};

constexpr bool is_zero(const Wide& a) { return is_zero(a.m); }
constexpr Wide negate(Wide a) {
    a.neg ^= 1;
    return a;
}
constexpr Wide abs(Wide a) {
    a.neg = 0;
    return a;
}
constexpr Wide with_sign(Wide a, std::uint32_t neg) {
    a.neg = neg;
    return a;
}
// a * 2^n.
constexpr Wide scaled(Wide a, std::int32_t n) {
    if (!is_zero(a)) a.e += n;
    return a;
}

// value = X * 2^(-point), X unsigned; normalised and exact.
inline Wide from_fixed(U128 x, std::int32_t point, std::uint32_t neg = 0) {
    if (is_zero(x)) return Wide{{0, 0}, kZeroScale, neg};
    const int s = clz(x);
    return Wide{shl(x, s), 128 - point - s, neg};
}
// value = X * 2^(-point), X signed (two's complement).
inline Wide from_signed_fixed(U128 x, std::int32_t point) {
    return negative(x) ? from_fixed(neg(x), point, 1) : from_fixed(x, point, 0);
}
// A 192-bit unsigned X * 2^(-point), rounded to 128 bits.
Wide from_fixed192(U192 x, std::int32_t point, std::uint32_t neg = 0);
inline Wide from_signed_fixed192(U192 x, std::int32_t point) {
    return negative(x) ? from_fixed192(quadfunc::neg(x), point, 1) : from_fixed192(x, point, 0);
}

// |a| * 2^point as an unsigned integer, rounded to nearest; the caller
// guarantees that it fits in 128 bits.
U128 to_fixed(const Wide& a, std::int32_t point);

// The binary128 operand read at its value (subnormals included, which are
// normalised), for finite operands only.
Wide from_real16(const Real16& x);

// Rounding to REAL(16), to nearest with ties to even.  A result whose
// magnitude rounds to at least 2^16384 is an overflow (value undefined);
// one below the smallest normal number 2^-16382 is returned as zero with
// the sign of the result: REAL(16) results, like those of the operators,
// are never subnormal.
struct Rounded {
    Real16 value;
    bool overflow;
};
Rounded round_to_real16(const Wide& a);

Wide mul(const Wide& a, const Wide& b);
Wide add(const Wide& a, const Wide& b);
inline Wide sub(const Wide& a, const Wide& b) { return add(a, negate(b)); }
// Products with a small positive integer and exact sums with one: exact
// but for the final rounding.
Wide mul_small(const Wide& a, std::uint32_t k);

// 1/a: within 2^-126.5 relative (three units of the last place at most).
Wide recip(const Wide& a);
// a/b: within 2^-125.5 relative.
Wide div(const Wide& a, const Wide& b);
// sqrt(|a|): within 2^-126 relative.
Wide sqrt(const Wide& a);

// Magnitude comparison: -1, 0, 1 as |a| <, =, > |b|.
int compare_magnitude(const Wide& a, const Wide& b);

// A constant of the working format from its generated parts.
struct WideConst {
    std::uint64_t hi, lo;
    std::int32_t e;
    std::uint32_t neg;
    constexpr Wide operator()() const { return Wide{{hi, lo}, e, neg}; }
};

}  // namespace mivor::quadfunc
