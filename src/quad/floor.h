// The FLOOR kernels behind jwe_gflo, jwe_gfld, jwe_gflq: FLOOR of a REAL(4),
// REAL(8), REAL(16) as a value of the same kind, for MODULO here and for
// the sibling libraries' FLOOR through those exports.  MODULO needs
// FLOOR(A / P) exactly, since it forms A - FLOOR(A / P) * P next: every
// result here is exact, computed on the bit pattern without the
// floating-point unit.
//
// Method: truncate the fraction bits of weight below 1; for a negative value
// that had any, first add one unit at the integer position to the
// magnitude.  The addition may carry into the exponent, exactly when the
// integer part was all ones, and then the cleared fraction is zero anyway.
//
// REAL(4) and REAL(8) follow IEEE 754, since MODULO passes NaNs and
// infinities through its arithmetic: FLOOR(+-0) = +-0, FLOOR(-0.25) = -1,
// infinities unchanged, a NaN returned quiet (x + x quiets a signalling one
// the same way on every target).
//
// REAL(16) follows the library's binary128 arithmetic instead, whose
// results feed it: only the top word decides zero (w3 = 0x00000000 or
// 0x80000000 gives +0, unsigned like AINT), exponent field 0 reads as a
// tiny normal number (so a negative one floors to -1), and field 32767
// returns the operand bit for bit.
#pragma once

#include <cstdint>

#include "frame/values.h"
#include "quad/convert.h"

namespace mivor::quad {

// FLOOR on a binary32 / binary64 pattern with `fraction_bits` fraction bits
// and exponent bias `bias`; NaNs are the caller's.
template <class Bits, int fraction_bits, int bias>
constexpr Bits floor_bits(Bits b) {
    constexpr int kWidth = sizeof(Bits) * 8;
    constexpr Bits kSign = Bits{1} << (kWidth - 1);
    constexpr int kMaxField = (1 << (kWidth - 1 - fraction_bits)) - 1;
    const int field = static_cast<int>((b & ~kSign) >> fraction_bits);
    const bool negative = (b & kSign) != 0;
    if (field == kMaxField) return b;  // infinities
    if (field < bias) {                // |x| < 1
        if ((b & ~kSign) == 0) return b;
        return negative ? (kSign | (Bits(bias) << fraction_bits)) : Bits{0};
    }
    const int below_one = fraction_bits - (field - bias);  // fraction bits of weight < 1
    if (below_one <= 0) return b;
    const Bits mask = (Bits{1} << below_one) - 1;
    if ((b & mask) == 0) return b;
    if (negative) b += mask + 1;
    return b & ~mask;
}

inline Real16 floor_real16(const Real16& x) {
    const int k = convert::unbiased_exponent(x);
    if (k < 0) {
        if ((top(x) & ~kSignBit) == 0 || !sign(x)) return make(0, 0, 0, 0);
        return make(kSignBit | (std::uint32_t(kBias) << 16), 0, 0, 0);  // -1
    }
    const Real16 t = convert::truncate(x);
    if (!sign(x) || same_bits(t, x)) return t;
    // One unit at the integer position, fraction bit 112 - k, added to the
    // magnitude with carry upwards (into the exponent when w3's fraction
    // overflows).
    Real16 r = t;
    const int unit = 112 - k;
    int i = unit / 32;
    std::uint32_t add = std::uint32_t{1} << (unit % 32);
    for (; i < 4; ++i) {
        r.w[i] += add;
        if (r.w[i] >= add) break;
        add = 1;
    }
    return r;
}

// On the patterns of REAL(4) and REAL(8) values, NaNs included.
inline float floor_of(float v) {
    if (v != v) return v + v;
    return float_from_bits(floor_bits<std::uint32_t, 23, 127>(bits_of(v)));
}
inline double floor_of(double v) {
    if (v != v) return v + v;
    return double_from_bits(floor_bits<std::uint64_t, 52, 1023>(bits_of(v)));
}

}  // namespace mivor::quad
