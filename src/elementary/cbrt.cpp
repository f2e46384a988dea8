// g_dcbrt, g_cbrt: cube roots.
//
// Method.  A first guess built on the bits of |x|: with h the high word,
// floor(h/3) divides the biased exponent by three (the remainder r moves
// into the fraction) and thirds the top fraction bits; adding b[row]
// rebiases the exponent and shifts the fraction so that, times a[row], the
// guess is the relative minimax line of the cube root over the row
// (h >> 16) mod 48 = 16 r + top four fraction bits.  Tables and their rule:
// cbrt_data.h, tools/tables/gen_cbrt_table.py.  Then two Newton steps for
// y^3 = x in x87 extended precision:
//     y1 = (2 g + x/g^2) * third
//     y2 = y1 + (x/y1^2 - y1) * third          (correction form)
//
// Accuracy.  The scaled guess is within E = 5.3e-5 relative of the root for
// every row (the generator checks this with the bit-level effects of the
// floor and of the unscaled low word).  From g = y (1 + e) a step gives
// y (1 + e^2 - (4/3) e^3 + ...), never below the root, so y1 is within
// 2.8e-9 and y2 within 7.9e-18 (< 2^-56) before rounding.  `third` is 1/3
// rounded to double, 1/3 (1 - 2^-54): in the first step its error is one
// more part in 2^54 of y1, which the second step squares away; in the
// correction it scales a term of size 3e-9 y.  The rounding of the second
// step's x/y1^2 (two roundings to 64 bits) and of the final sum add about
// 1.5 units of the 64-bit significand.  So g_dcbrt is within about
// 2^-56 + 2^-63 relative of the cube root: REAL(8) accuracy with margin,
// not a correctly rounded extended value.  g_cbrt rounds that once to
// REAL(4).  Measured with `mivor accuracy` against MPFR.
//
// Special cases (no error is ever reported):
//   * +-0: +0.0 (the sign of -0.0 is dropped on purpose, as for SQRT).
//   * NaN: flows through the arithmetic (the guess is finite, x/g^2 is the
//     NaN), so a NaN comes back.
//   * +-Inf: the infinity of x's sign.  The guess is finite there and the
//     second step would form Inf - Inf, so infinities are returned as they
//     stand; the result then has the sign of x like every other result.
//   * Subnormal x: the guess presumes a normal exponent (a zero exponent
//     field would give a guess 2^17 too large, which two Newton steps do
//     not repair).  Such x are scaled by 2^54 first, exactly, and the root
//     by 2^-18 after, exactly in extended precision.
//   * The result always has the sign of x: the guess carries it and every
//     step keeps it.
#include <cstdint>

#include "elementary/cbrt_data.h"
#include "frame/special_values.h"
#include "frame/values.h"
#include "frame/x87.h"
#include "mivor/mivor.h"

using namespace mivor;

namespace {

constexpr double third = 0x1.5555555555555p-2;  // 1/3 to double, 0.3333333333333333

constexpr std::uint32_t kSign = 0x80000000u;
constexpr std::uint32_t kExponentField = 0x7FF00000u;
constexpr std::uint32_t kSmallestNormalHigh = 0x00100000u;
constexpr double kTwo54 = 0x1p54;
constexpr long double kTwoMinus18 = 0x1p-18L;

// floor(h/3) for any 32-bit h: 0xAAAAAAAB = (2^33 + 1)/3, and
// h (2^33 + 1)/3 / 2^33 = h/3 + h/(3 2^33) with h/(3 2^33) < 1/6, which
// never reaches the next integer since frac(h/3) <= 2/3.
constexpr std::uint32_t third_of(std::uint32_t h) {
    return static_cast<std::uint32_t>((std::uint64_t{h} * 0xAAAAAAABu) >> 33);
}

// The guess for finite, nonzero x with a normal exponent field: the
// double with high word floor(h/3) + b[row] and the low word of |x|,
// times a[row], with the sign of x.  Exact apart from the product,
// which is rounded to 64 bits.
long double first_guess(double x, const x87::ExtendedPrecision& scope) {
    const std::uint32_t h = high_word(x) & ~kSign;
    const std::uint32_t row = (h >> 16) % 48;
    const double bits = double_from_words(third_of(h) + cbrt_data::b[row], low_word(x));
    const long double g = scope.pin(bits) * static_cast<long double>(cbrt_data::a[row]);
    return (high_word(x) & kSign) != 0 ? -g : g;
}

// Cube root of x, x neither zero nor infinite, in the scope's 64-bit
// precision; NaN gives NaN.
long double cube_root(double x, const x87::ExtendedPrecision& scope) {
    long double scale = 1.0L;
    if ((high_word(x) & kExponentField) == 0) {  // subnormal: exact rescaling
        x *= kTwo54;
        scale = kTwoMinus18;
    }
    const long double xl = scope.pin(x);
    const long double g = first_guess(x, scope);
    const long double y1 = (2.0L * g + xl / (g * g)) * static_cast<long double>(third);
    const long double y2 = y1 + (xl / (y1 * y1) - y1) * static_cast<long double>(third);
    return scope.pin(y2 * scale);
}

bool is_infinite(double x) { return (bits_of(x) << 1) == (kInf_D_bits << 1); }

}  // namespace

extern "C" long double g_dcbrt(const double* arg) {
    const double x = *arg;
    if (x == 0.0) return 0.0L;
    if (is_infinite(x)) return x;
    x87::ExtendedPrecision scope;
    return cube_root(x, scope);
}

// The sign is taken off before and put back after, so the kernel sees a
// positive (or NaN) argument; the float is exact as a double.
extern "C" float g_cbrt(const float* arg) {
    float x = *arg;
    if (x == 0.0f) return 0.0f;
    const bool negative = x < 0.0f;
    if (negative) x = -x;
    float y;
    if (is_infinite(x)) {
        y = x;
    } else {
        x87::ExtendedPrecision scope;
        y = static_cast<float>(cube_root(x, scope));
    }
    return negative ? -y : y;
}
