// Kernels of the REAL(16) conversions, shared by the exports built on one
// another: ANINT and MOD on AINT, NINT on INT, the REAL(8)/REAL(16) helpers
// and the double-precision product on the widening, FLOOR on AINT.  Each is
// a pure function of its argument on the four words; none reports.
//
// Field helpers used below: the 112-bit fraction is numbered from bit 0 (bit
// 0 of w0) to bit 111 (bit 15 of w3); the significand is the fraction with
// the implicit one at bit 112, set for every exponent field (0 included):
// these conversions, like the operators, read no subnormals.
#pragma once

#include <bit>
#include <cstdint>

#include "frame/values.h"

namespace mivor::quad::convert {

inline constexpr std::uint32_t kImplicitBit = 0x00010000u;  // the implicit one, in w3's position

// Top 64 bits of the 113-bit significand, leading one at bit 63: w3's 17
// bits, w2, and the top 15 bits of w1.  The 49 bits below (the low 17 of w1
// and w0) are left out; `tail_nonzero` says whether any of them is set.
constexpr std::uint64_t significand_head(const Real16& q) {
    return (std::uint64_t{(q.w[3] & kTopFractionMask) | kImplicitBit} << 47) | (std::uint64_t{q.w[2]} << 15) |
           (q.w[1] >> 17);
}
constexpr bool tail_nonzero(const Real16& q) { return ((q.w[1] & 0x1FFFFu) | q.w[0]) != 0; }

// Unbiased exponent k = E - 16383 (|x| in [2^k, 2^(k+1)) for the library's
// reading of x).
constexpr int unbiased_exponent(const Real16& q) { return static_cast<int>(exponent_field(q)) - kBias; }

// Leading zero bits of a non-zero word: 31 for 1, 0 when the top bit is set.
// The conversions from integers take the count from the sibling library
// (jwe_fnzb, see from_magnitude); the widenings use this inline copy.
constexpr int leading_zeros(std::uint32_t w) { return std::countl_zero(w); }
constexpr int leading_zeros(std::uint64_t w) {
    const auto high = static_cast<std::uint32_t>(w >> 32);
    return high != 0 ? leading_zeros(high) : 32 + leading_zeros(static_cast<std::uint32_t>(w));
}

// AINT: x with the fraction bits of weight below 1 cleared.  |x| < 1 (and
// both zero patterns) give +0 whatever the sign; k > 112 (infinities and
// NaNs among them) return x unchanged.
Real16 truncate(const Real16& x);

// REAL(8) / REAL(4) to REAL(16), exact: +-0 give +0, subnormals are
// normalised, infinities and NaNs become finite values with exponent field
// 17407 / 16511.
Real16 from_double(double d);
Real16 from_float(float f);

// An integer given as its magnitude and sign, exact; a zero magnitude
// gives +0.
Real16 from_magnitude(std::uint64_t magnitude, bool negative);

// INT to INTEGER(4): truncation, saturating at 0x7FFFFFFF / 0x80000000 for
// |x| >= 2^31.
std::int32_t to_int32(const Real16& x);

// INT to INTEGER(8): truncation; |x| >= 2^64 gives 0, and |x| in
// [2^63, 2^64) gives the 64-bit magnitude without negation.
std::int64_t to_int64(const Real16& x);

}  // namespace mivor::quad::convert
