// Complex bases raised to an INTEGER(4) or INTEGER(8): g_acxi, g_acxj
// (COMPLEX(4)), g_axxi, g_axxj (COMPLEX(8)), g_azxi, g_azxj (COMPLEX(16)).
//
// Kept on purpose, since compiled programs see every one of these bits:
//  * the base counts as zero when its modulus is not positive -- a NaN part
//    makes the modulus NaN, so a NaN base takes the zero path as well:
//    n = 0 gives (1, 0), n > 0 gives (0, 0), n < 0 is error 273 / 1414 /
//    274 / 275 / 276 / 277 (full form, the exponent described), with both
//    parts NaN or (HUGE, 0) as the fallback (0x7F7FFFEE, 0x7FEFFFFFFFFFFFB6
//    and the largest REAL(16), as for the real powers);
//  * n = 2 is (a - b)(a + b) + i (ab + ab), without the general loop.
// The modulus is the square root of re^2 + im^2; for COMPLEX(4) and
// COMPLEX(8) that sum is formed in extended precision, where no square
// under- or overflows, so it is positive exactly when some part is nonzero
// and neither is a NaN (the root is not needed to see that).  COMPLEX(16)
// reads zero parts as its operators do, by word 3, and knows no NaN.
//
// Other exponents: binary powering, in the manner of the real power of the
// same kind and exponent width (power/real_int4_powers.cpp,
// power/real_int8_powers.cpp, power/quad_int_powers.cpp):
//  * COMPLEX(4) and COMPLEX(8) compute on the x87 stack in extended
//    precision with the products of complex/arithmetic.h and round each
//    part once at the end.  A product's relative error of about 2^-64
//    doubles with every later squaring, so the loop's error grows like
//    n 2^-64, n/2048 units in the last place of a REAL(8), where a loop
//    in REAL(8) itself grows like n ulps.  Measured on bases of modulus
//    near 1, the result is within 0.51 ulp of the larger part of the exact
//    power for |n| <= 64, 0.62 for |n| <= 256 and 0.73 for |n| <= 1024
//    (COMPLEX(8); COMPLEX(4) stays at 0.5).  The wide exponent range also
//    keeps intermediate powers from overflowing or underflowing before
//    the final rounding;
//    INTEGER(4): shortcuts n = 0 and 1, |n| by a 32-bit negation with
//    arithmetic shifts (n = -2^31 squares 31 times and stops), the
//    reciprocal taken last by Smith's quotient; no doubling, which the
//    extended range makes needless;
//    INTEGER(8): the reciprocal first, then the real INTEGER(8) loop shape
//    (32 rounds over the low word when the high word is nonzero);
//  * COMPLEX(16) with its products and quotients built on the REAL(16)
//    operators, whose reports reach the caller: the reciprocal first for
//    both exponent widths, then the loop of the REAL(16) powers.
// The accumulator starts with the first factor itself rather than with a
// product by (1, 0), which would turn the sign of a zero part or, next to
// an infinite part, make a NaN.
#include <type_traits>

#include "complex/arithmetic.h"
#include "frame/special_values.h"
#include "frame/x87.h"
#include "mivor/mivor.h"
#include "power/zero_base.h"

namespace mivor::power {
namespace {

using complex::Extended;

constexpr Real16 kZero16 = quad::make(0, 0, 0, 0);
constexpr Real16 kOne16 = quad::make(0x3FFF0000u, 0, 0, 0);

template <class V>
V unit();
template <>
Extended unit<Extended>() {
    return {1.0L, 0.0L};
}
template <>
Complex16 unit<Complex16>() {
    return {kOne16, kZero16};
}

// The product of the factors met so far; empty, it is (1, 0).
template <class V>
struct Product {
    V value = unit<V>();
    bool empty = true;

    void times(const V& factor) {
        value = empty ? factor : complex::multiply(value, factor);
        empty = false;
    }
    // The bits of `word` from the lowest: multiply when set, stop when none
    // is left, else square x.
    void run(V& x, std::uint32_t word) {
        for (;;) {
            if (word & 1) times(x);
            word >>= 1;
            if (word == 0) return;
            x = complex::multiply(x, x);
        }
    }
};

// INTEGER(4), reciprocal last (COMPLEX(4), COMPLEX(8)); n != 2.
Extended power_by_int4(Extended x, std::int32_t n) {
    if (n == 0) return unit<Extended>();
    if (n == 1) return x;
    std::int32_t m = n < 0 ? static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(n)) : n;
    while ((m & 1) == 0) {
        m >>= 1;  // arithmetic: -2^31 ends at -1
        x = complex::multiply(x, x);
    }
    Extended acc = x;
    m >>= 1;
    while (m > 0) {
        x = complex::multiply(x, x);
        if (m & 1) acc = complex::multiply(acc, x);
        m >>= 1;
    }
    return n > 0 ? acc : complex::divide(unit<Extended>(), acc);
}

// INTEGER(4), reciprocal first (COMPLEX(16)); n != 2.
Complex16 power_by_int4(Complex16 x, std::int32_t n) {
    std::uint32_t m = static_cast<std::uint32_t>(n);
    if (n < 0) {
        m = 0u - m;
        x = complex::divide(unit<Complex16>(), x);
    }
    Product<Complex16> p;
    p.run(x, m);
    return p.value;
}

// INTEGER(8), reciprocal first, the loop shape of the real INTEGER(8)
// powers; n != 2.
template <class V>
V power_by_int8(V x, std::int64_t n) {
    std::uint32_t low = static_cast<std::uint32_t>(static_cast<std::uint64_t>(n));
    std::uint32_t high = static_cast<std::uint32_t>(static_cast<std::uint64_t>(n) >> 32);
    if (static_cast<std::int32_t>(high) < 0) {
        high = low != 0 ? ~high : 0u - high;
        low = 0u - low;
        x = complex::divide(unit<V>(), x);
    }
    Product<V> p;
    if (high == 0) {
        p.run(x, low);
        return p.value;
    }
    for (int i = 0; i < 32; ++i) {
        if (low & 1) p.times(x);
        low >>= 1;
        x = complex::multiply(x, x);
    }
    p.run(x, high);
    return p.value;
}

// The power of a base with a positive modulus.
template <class C, class N>
C power_of(C x, N n) {
    if constexpr (std::is_same_v<C, Complex16>) {
        if (n == 2) {
            const Real16 ab = complex::mul(x.re, x.im);
            return {complex::mul(complex::sub(x.re, x.im), complex::add(x.re, x.im)), complex::add(ab, ab)};
        }
        if constexpr (sizeof(N) == 4)
            return power_by_int4(x, n);
        else
            return power_by_int8(x, n);
    } else {
        using Part = decltype(x.re);
        x87::ExtendedPrecision scope;
        const long double a = scope.pin(x.re), b = scope.pin(x.im);
        Extended r;
        if (n == 2)
            r = {(a - b) * (a + b), a * b + a * b};
        else if constexpr (sizeof(N) == 4)
            r = power_by_int4(Extended{a, b}, n);
        else
            r = power_by_int8(Extended{a, b}, n);
        return C{static_cast<Part>(scope.pin(r.re)), static_cast<Part>(scope.pin(r.im))};
    }
}

template <class C>
bool modulus_not_positive(const C& x) {
    const long double re = x.re, im = x.im;
    return !(re * re + im * im > 0.0L);
}
template <>
bool modulus_not_positive<Complex16>(const Complex16& x) {
    return ((x.re.w[3] | x.im.w[3]) & ~quad::kSignBit) == 0;
}

template <class C>
ZeroBase<C> zero_results(Error error);
template <>
ZeroBase<Complex4> zero_results<Complex4>(Error error) {
    return {error, {1.0f, 0.0f}, {0.0f, 0.0f}, {_NaN_F, _NaN_F}, {kHuge_F, 0.0f}};
}
template <>
ZeroBase<Complex8> zero_results<Complex8>(Error error) {
    return {error, {1.0, 0.0}, {0.0, 0.0}, {_NaN_D, _NaN_D}, {kHuge_D, 0.0}};
}
template <>
ZeroBase<Complex16> zero_results<Complex16>(Error error) {
    return {error, {kOne16, kZero16}, {kZero16, kZero16}, {_NaN_Q, _NaN_Q}, {kHuge_Q, kZero16}};
}

template <class C, class N>
C raise(const C& x, N n, Error error) {
    if (modulus_not_positive(x)) [[unlikely]]
        return zero_base(x, n, zero_results<C>(error), modulus_not_positive<C>, power_of<C, N>);
    return power_of(x, n);
}

}  // namespace
}  // namespace mivor::power

using namespace mivor;

// Base and exponent are read before the result area is written.
extern "C" mivor_complex4* g_acxi(mivor_complex4* result, const mivor_complex4* base, const std::int32_t* exponent) {
    *result = power::raise(*base, *exponent, Error::zero_to_negative_c4_i4);
    return result;
}

extern "C" mivor_complex4* g_acxj(mivor_complex4* result, const mivor_complex4* base, const std::int64_t* exponent) {
    *result = power::raise(*base, *exponent, Error::zero_to_negative_c4_i8);
    return result;
}

extern "C" mivor_complex8* g_axxi(mivor_complex8* result, const mivor_complex8* base, const std::int32_t* exponent) {
    *result = power::raise(*base, *exponent, Error::zero_to_negative_c8_i4);
    return result;
}

extern "C" mivor_complex8* g_axxj(mivor_complex8* result, const mivor_complex8* base, const std::int64_t* exponent) {
    *result = power::raise(*base, *exponent, Error::zero_to_negative_c8_i8);
    return result;
}

extern "C" mivor_complex16* g_azxi(mivor_complex16* result, const mivor_complex16* base, const std::int32_t* exponent) {
    *result = power::raise(*base, *exponent, Error::zero_to_negative_c16_i4);
    return result;
}

extern "C" mivor_complex16* g_azxj(mivor_complex16* result, const mivor_complex16* base, const std::int64_t* exponent) {
    *result = power::raise(*base, *exponent, Error::zero_to_negative_c16_i8);
    return result;
}
