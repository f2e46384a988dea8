// g_dbleq, g_snglq: REAL(16) to REAL(8) and to REAL(4), rounded to nearest,
// ties to even.
//
// Method.  The top 64 significand bits (leading one at bit 63) are shifted
// right so that the target's p significand bits remain; what is shifted out,
// with the 49 low significand bits as a sticky flag, decides the rounding.
// Below the target's normal range the shift grows by one per exponent step,
// giving the subnormal directly; the packed pattern is formed by adding the
// rounded significand to the exponent, so a rounding carry moves into the
// exponent (and out of the subnormal range) by itself.
//
// Inside the target's range the result is the correctly rounded IEEE
// conversion.  Kept on purpose, since compiled programs see these bits:
//  * w3 = 0 gives +0 whatever the lower words hold; -0 gives +0;
//  * no input is special: exponent field 0 reads as a tiny normal number
//    and field 32767 (infinities, NaNs) as a huge one;
//  * a value below half the smallest subnormal (REAL(8): e < -52, REAL(4):
//    e < -23, e the target's biased exponent) gives +0, its sign dropped;
//  * overflow, by exponent or by a rounding carry, gives for REAL(8)
//    +-HUGE (0x7FEFFFFFFFFFFFFF with the sign), never an infinity, and for
//    REAL(4) the pattern sign | 0x3F7FFFFF, that is +-0.99999994 -- not
//    HUGE: the run-time has always returned this value and programs
//    compare against it.
// No error is reported.
#include "frame/values.h"
#include "mivor/mivor.h"
#include "quad/convert.h"

namespace mivor::quad::convert {
namespace {

// The target format: p significand bits (implicit one included), the
// exponent offset from the REAL(16) bias, the first exponent that
// overflows, the position of the sign bit, and the pattern an overflow
// gives (sign added).
struct Target {
    int precision;
    int offset;
    int max_exponent;
    int sign_shift;
    std::uint64_t overflow_bits;
};

constexpr Target kReal8{53, 16383 - 1023, 2047, 63, 0x7FEFFFFFFFFFFFFFu};
constexpr Target kReal4{24, 16383 - 127, 255, 31, 0x3F7FFFFFu};

// Rounds the top 64 significand bits `head` (leading one at bit 63; the
// bits below it non-zero when `tail`) shifted right by `shift` (11..64) to
// nearest, ties to even: the kept bits plus the rounding increment.
constexpr std::uint64_t round_shifted(std::uint64_t head, bool tail, int shift) {
    constexpr std::uint64_t half = std::uint64_t{1} << 63;
    const std::uint64_t kept = shift < 64 ? head >> shift : 0;
    const std::uint64_t dropped = shift < 64 ? head << (64 - shift) : head;
    const bool up = dropped > half || (dropped == half && (tail || (kept & 1) != 0));
    return kept + up;
}

// The target's bit pattern of x, sign included.  The format is a template
// argument so that the normal path shifts by constants.
template <const Target& t>
constexpr std::uint64_t narrow(const Real16& x) {
    const std::uint64_t sign = std::uint64_t{quad::sign(x)} << t.sign_shift;
    const int e = static_cast<int>(exponent_field(x)) - t.offset;
    if (e >= t.max_exponent) return sign | t.overflow_bits;
    constexpr int normal_shift = 64 - t.precision;
    if (e > 0) {
        // Adding the rounded significand (implicit one included) to
        // e - 1 in the exponent field carries into it when rounding
        // reaches the next binade, up to the overflow exponent.
        const std::uint64_t bits = (std::uint64_t(e - 1) << (t.precision - 1)) +
                                   round_shifted(significand_head(x), tail_nonzero(x), normal_shift);
        if ((bits >> (t.precision - 1)) >= std::uint64_t(t.max_exponent)) return sign | t.overflow_bits;
        return sign | bits;
    }
    // e = 1 - p holds [half the smallest subnormal, the smallest
    // subnormal); anything smaller rounds to zero, given without its sign.
    if (e < 1 - t.precision) return 0;
    // Subnormal: one more bit shifted out per step below e = 1; at most
    // 64, where only the rounding bits remain.  A rounding carry gives the
    // smallest normal pattern by itself.
    return sign | round_shifted(significand_head(x), tail_nonzero(x), normal_shift + 1 - e);
}

}  // namespace
}  // namespace mivor::quad::convert

using namespace mivor;

extern "C" double g_dbleq(const mivor_real16* x) {
    const Real16 v = *x;
    if (quad::top(v) == 0) return 0.0;
    return double_from_bits(quad::convert::narrow<quad::convert::kReal8>(v));
}

extern "C" float g_snglq(const mivor_real16* x) {
    const Real16 v = *x;
    if (quad::top(v) == 0) return 0.0f;
    return float_from_bits(static_cast<std::uint32_t>(quad::convert::narrow<quad::convert::kReal4>(v)));
}
