// Value kinds as the library's kernels see them: bit views of REAL(4) and
// REAL(8), named field access of the four words of a REAL(16), and the
// complex kinds.  The layouts themselves are the public ones in
// <mivor/types.h>.
#pragma once

#include <bit>
#include <cstdint>

#include "mivor/types.h"

namespace mivor {

using Real16 = mivor_real16;
using Complex4 = mivor_complex4;
using Complex8 = mivor_complex8;
using Complex16 = mivor_complex16;

inline std::uint32_t bits_of(float x) { return std::bit_cast<std::uint32_t>(x); }
inline std::uint64_t bits_of(double x) { return std::bit_cast<std::uint64_t>(x); }
inline float float_from_bits(std::uint32_t b) { return std::bit_cast<float>(b); }
inline double double_from_bits(std::uint64_t b) { return std::bit_cast<double>(b); }

inline std::uint32_t high_word(double x) { return static_cast<std::uint32_t>(bits_of(x) >> 32); }
inline std::uint32_t low_word(double x) { return static_cast<std::uint32_t>(bits_of(x)); }
inline double double_from_words(std::uint32_t high, std::uint32_t low) {
    return double_from_bits((std::uint64_t{high} << 32) | low);
}

// Named fields of a REAL(16).  Word 3 carries sign, exponent and the top 16
// fraction bits; words 2, 1, 0 carry the rest of the fraction.
namespace quad {

inline constexpr std::uint32_t kSignBit = 0x80000000u;
inline constexpr std::uint32_t kExponentMask = 0x7FFF0000u;
inline constexpr std::uint32_t kTopFractionMask = 0x0000FFFFu;
inline constexpr int kBias = 16383;

constexpr Real16 make(std::uint32_t w3, std::uint32_t w2, std::uint32_t w1, std::uint32_t w0) {
    return Real16{{w0, w1, w2, w3}};
}
constexpr std::uint32_t top(const Real16& q) { return q.w[3]; }
constexpr bool sign(const Real16& q) { return (q.w[3] & kSignBit) != 0; }
constexpr std::uint32_t exponent_field(const Real16& q) { return (q.w[3] & kExponentMask) >> 16; }
constexpr std::uint32_t top_fraction(const Real16& q) { return q.w[3] & kTopFractionMask; }
constexpr bool same_bits(const Real16& a, const Real16& b) {
    return a.w[0] == b.w[0] && a.w[1] == b.w[1] && a.w[2] == b.w[2] && a.w[3] == b.w[3];
}

}  // namespace quad
}  // namespace mivor
