// g_qfloat, g_aqcj: INTEGER(4) and INTEGER(8) to REAL(16), exact.
// g_iqint, g_ajcq: REAL(16) to INTEGER(4) and INTEGER(8), truncating.
//
// To REAL(16): the magnitude is normalised by its leading-zero count (the
// sibling library's jwe_fnzb, word by word) so that its leading one becomes
// the implicit bit; the exponent field is 16382 + n
// for n significant bits.  Zero gives +0.  The most negative integers need
// no case of their own: their magnitude, taken as unsigned, is 2^31 / 2^63.
//
// From REAL(16): the integer part is the top k + 1 significand bits for
// k = E - 16383 (no rounding; the bits below are the fraction).  Kept on
// purpose, since compiled programs see these results:
//  * INTEGER(4): |x| >= 2^31 (-2^31 itself, infinities and NaNs included)
//    saturates to 0x7FFFFFFF or 0x80000000 by the sign bit;
//  * INTEGER(8): |x| >= 2^64 gives 0, not a saturated value, and |x| in
//    [2^63, 2^64) gives the 64-bit magnitude as it stands, not negated for
//    a negative x (so -2^63 comes out as 0x8000000000000000 and
//    -(2^63 + 2^62) as 0xC000000000000000);
//  * |x| < 1 and w3 = 0 give 0.
// No error is reported.
#include "frame/values.h"
#include "mivor/mivor.h"
#include "mivorfsse2.h"
#include "quad/convert.h"

namespace mivor::quad::convert {

Real16 from_magnitude(std::uint64_t magnitude, bool negative) {
    if (magnitude == 0) return make(0, 0, 0, 0);
    const auto high = static_cast<std::uint32_t>(magnitude >> 32), low = static_cast<std::uint32_t>(magnitude);
    const int zeros = high != 0 ? jwe_fnzb(&high) : 32 + jwe_fnzb(&low);
    const auto exponent = static_cast<std::uint32_t>(kBias - 1 + (64 - zeros));
    // The fraction: the bits below the leading one, left-aligned in 64 bits.
    const std::uint64_t fraction = (magnitude << zeros) << 1;
    return make((negative ? kSignBit : 0u) | (exponent << 16) | static_cast<std::uint32_t>(fraction >> 48),
                static_cast<std::uint32_t>(fraction >> 16), static_cast<std::uint32_t>(fraction << 16), 0);
}

std::int32_t to_int32(const Real16& x) {
    const int k = unbiased_exponent(x);
    if (top(x) == 0 || k < 0) return 0;
    if (k > 30) return sign(x) ? INT32_MIN : INT32_MAX;
    const auto magnitude = static_cast<std::int32_t>(significand_head(x) >> (63 - k));
    return sign(x) ? -magnitude : magnitude;
}

std::int64_t to_int64(const Real16& x) {
    const int k = unbiased_exponent(x);
    if (top(x) == 0 || k < 0 || k > 63) return 0;
    const std::uint64_t magnitude = significand_head(x) >> (63 - k);
    if (k == 63 || !sign(x)) return static_cast<std::int64_t>(magnitude);
    return -static_cast<std::int64_t>(magnitude);
}

}  // namespace mivor::quad::convert

using namespace mivor;

extern "C" mivor_real16* g_qfloat(mivor_real16* result, const std::int32_t* i) {
    const std::int32_t v = *i;
    const std::uint32_t magnitude = v < 0 ? 0u - static_cast<std::uint32_t>(v) : static_cast<std::uint32_t>(v);
    *result = quad::convert::from_magnitude(magnitude, v < 0);
    return result;
}

extern "C" mivor_real16* g_aqcj(mivor_real16* result, const std::int64_t* i) {
    const std::int64_t v = *i;
    const std::uint64_t magnitude = v < 0 ? 0u - static_cast<std::uint64_t>(v) : static_cast<std::uint64_t>(v);
    *result = quad::convert::from_magnitude(magnitude, v < 0);
    return result;
}

extern "C" std::int32_t g_iqint(const mivor_real16* x) { return quad::convert::to_int32(*x); }

extern "C" std::int64_t g_ajcq(const mivor_real16* x) { return quad::convert::to_int64(*x); }
