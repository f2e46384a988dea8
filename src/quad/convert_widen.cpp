// g_qextd, g_qext: REAL(8) and REAL(4) to REAL(16), exact.
//
// Integer work on the bit pattern: the fraction moves to the top of the
// 112-bit fraction and the exponent is rebiased.  A subnormal is normalised
// (its leading one becomes the implicit bit), so every finite value
// converts exactly.  Kept on purpose:
//  * +0.0 and -0.0 both give +0 (all four words zero);
//  * infinities and NaNs are not recognised: their exponent field is
//    rebiased like any other, giving the finite values with exponent field
//    17407 (REAL(8)) or 16511 (REAL(4)) and the fraction carried over.
// No error is reported.
#include "frame/values.h"
#include "mivor/mivor.h"
#include "quad/convert.h"

namespace mivor::quad::convert {

// The 52 fraction bits land in w3's 16, all of w2 and the top 4 of w1.
Real16 from_double(double d) {
    constexpr int kOffset = 16383 - 1023;
    constexpr std::uint64_t kFractionMask = (std::uint64_t{1} << 52) - 1;
    const std::uint64_t bits = bits_of(d);
    if ((bits << 1) == 0) return make(0, 0, 0, 0);
    std::uint64_t fraction = bits & kFractionMask;
    auto exponent = static_cast<std::uint32_t>((bits >> 52) & 0x7FF);
    if (exponent == 0) {
        // Leading one to bit 52, the implicit position; the value is
        // 2^(-1074 + index of that one), so the field is 15309 + index.
        const int shift = leading_zeros(fraction) - 11;
        fraction = (fraction << shift) & kFractionMask;
        exponent = static_cast<std::uint32_t>(1 - shift);
    }
    const std::uint32_t sign = static_cast<std::uint32_t>(bits >> 32) & kSignBit;
    return make(sign | ((exponent + kOffset) << 16) | static_cast<std::uint32_t>(fraction >> 36),
                static_cast<std::uint32_t>(fraction >> 4), static_cast<std::uint32_t>(fraction << 28), 0);
}

// The 23 fraction bits land in w3's 16 and the top 7 of w2.
Real16 from_float(float f) {
    constexpr int kOffset = 16383 - 127;
    constexpr std::uint32_t kFractionMask = (std::uint32_t{1} << 23) - 1;
    const std::uint32_t bits = bits_of(f);
    if ((bits << 1) == 0) return make(0, 0, 0, 0);
    std::uint32_t fraction = bits & kFractionMask;
    std::uint32_t exponent = (bits >> 23) & 0xFF;
    if (exponent == 0) {
        // 2^(-149 + index of the leading one): field 16234 + index.
        const int shift = leading_zeros(fraction) - 8;
        fraction = (fraction << shift) & kFractionMask;
        exponent = static_cast<std::uint32_t>(1 - shift);
    }
    return make((bits & kSignBit) | ((exponent + kOffset) << 16) | (fraction >> 7), fraction << 25, 0, 0);
}

}  // namespace mivor::quad::convert

using namespace mivor;

extern "C" mivor_real16* g_qextd(mivor_real16* result, const double* d) {
    *result = quad::convert::from_double(*d);
    return result;
}

extern "C" mivor_real16* g_qext(mivor_real16* result, const float* f) {
    *result = quad::convert::from_float(*f);
    return result;
}
