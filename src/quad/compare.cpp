// REAL(16) comparisons: g_acmp and g_acmpe (three-way: 0 equal, 1 x < y,
// 2 x > y, 3 unordered), the relational operators g_afeq, g_afne, g_afgt,
// g_afge, g_aflt, g_afle (logical 1 or 0), and MAX / MIN of two values,
// g_qmax1 and g_qmin1.
//
// Integer comparisons of the words: after the sign, magnitudes order like
// the unsigned 127-bit numbers of their patterns (w3 without the sign, then
// w2, w1, w0), infinities included.
//
// Unlike the arithmetic, the comparisons follow IEEE 754: a NaN (field
// 32767 with any fraction bit) is unordered with everything, itself
// included, and +0 equals -0 (here all four words count: a pattern with
// w3 = 0x80000000 and non-zero lower words is a negative subnormal, not a
// zero).  g_acmpe is g_acmp under a second name, signalling nothing.
//
// MAX and MIN are different on purpose: they recognise no NaN and order
// the patterns as signed values, -0 below +0, returning the chosen operand
// bit for bit; so MAX(-0, +0) is +0 and MIN(-0, +0) is -0.
#include <cstdint>

#include "frame/values.h"
#include "mivor/mivor.h"

namespace mivor::quad {
namespace {

enum Order : std::int32_t { kEqual = 0, kLess = 1, kGreater = 2, kUnordered = 3 };

constexpr std::uint64_t magnitude_high(const Real16& q) {
    return (std::uint64_t{q.w[3] & ~kSignBit} << 32) | q.w[2];
}
constexpr std::uint64_t magnitude_low(const Real16& q) { return (std::uint64_t{q.w[1]} << 32) | q.w[0]; }

constexpr bool is_nan(const Real16& q) {
    return exponent_field(q) == 0x7FFF && (top_fraction(q) | q.w[2] | q.w[1] | q.w[0]) != 0;
}
constexpr bool is_zero(const Real16& q) { return ((q.w[3] & ~kSignBit) | q.w[2] | q.w[1] | q.w[0]) == 0; }

// Orders the magnitudes of x and y.
constexpr Order compare_magnitudes(const Real16& x, const Real16& y) {
    const std::uint64_t xh = magnitude_high(x), yh = magnitude_high(y);
    if (xh != yh) return xh < yh ? kLess : kGreater;
    const std::uint64_t xl = magnitude_low(x), yl = magnitude_low(y);
    if (xl != yl) return xl < yl ? kLess : kGreater;
    return kEqual;
}

// Orders the patterns as signed values: a set sign bit is smaller, and
// between two negatives the larger magnitude is smaller.  Zeros and NaNs get
// no special treatment here.
constexpr Order compare_signed(const Real16& x, const Real16& y) {
    if (sign(x) != sign(y)) return sign(x) ? kLess : kGreater;
    const Order m = compare_magnitudes(x, y);
    if (!sign(x) || m == kEqual) return m;
    return m == kLess ? kGreater : kLess;
}

// IEEE ordering: NaNs are unordered, zeros of either sign equal.
constexpr Order compare(const Real16& x, const Real16& y) {
    if (is_nan(x) || is_nan(y)) return kUnordered;
    if (is_zero(x) && is_zero(y)) return kEqual;
    return compare_signed(x, y);
}

}  // namespace
}  // namespace mivor::quad

using namespace mivor;
using quad::compare;

extern "C" std::int32_t g_acmp(const mivor_real16* x, const mivor_real16* y) { return compare(*x, *y); }

extern "C" std::int32_t g_acmpe(const mivor_real16* x, const mivor_real16* y) { return compare(*x, *y); }

extern "C" std::int32_t g_afeq(const mivor_real16* x, const mivor_real16* y) {
    return compare(*x, *y) == quad::kEqual;
}

extern "C" std::int32_t g_afne(const mivor_real16* x, const mivor_real16* y) {
    return compare(*x, *y) != quad::kEqual;
}

extern "C" std::int32_t g_afgt(const mivor_real16* x, const mivor_real16* y) {
    return compare(*x, *y) == quad::kGreater;
}

extern "C" std::int32_t g_afge(const mivor_real16* x, const mivor_real16* y) {
    const quad::Order o = compare(*x, *y);
    return o == quad::kGreater || o == quad::kEqual;
}

extern "C" std::int32_t g_aflt(const mivor_real16* x, const mivor_real16* y) {
    return compare(*x, *y) == quad::kLess;
}

extern "C" std::int32_t g_afle(const mivor_real16* x, const mivor_real16* y) {
    const quad::Order o = compare(*x, *y);
    return o == quad::kLess || o == quad::kEqual;
}

extern "C" mivor_real16* g_qmax1(mivor_real16* result, const mivor_real16* x, const mivor_real16* y) {
    const Real16 a = *x, b = *y;
    *result = quad::compare_signed(a, b) == quad::kLess ? b : a;
    return result;
}

extern "C" mivor_real16* g_qmin1(mivor_real16* result, const mivor_real16* x, const mivor_real16* y) {
    const Real16 a = *x, b = *y;
    *result = quad::compare_signed(a, b) == quad::kGreater ? b : a;
    return result;
}
