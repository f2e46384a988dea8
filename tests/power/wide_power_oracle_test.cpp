// REAL(16) and complex integer powers against __float128 (Linux flavours).
//
// REAL(16) and COMPLEX(16) must give the bits of their method -- the
// reciprocal first, then the powering loop -- evaluated with correctly
// rounded binary128 operations, which their operators are in the normal
// range.  COMPLEX(4) and COMPLEX(8), powered in extended precision and
// rounded once, are measured against the exact power.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "mivor/mivor.h"
#include "support/float128.h"

namespace mivor::testing {
namespace {

struct C128 {
    __float128 re, im;
};
C128 operator*(const C128& x, const C128& y) { return {x.re * y.re - x.im * y.im, x.im * y.re + x.re * y.im}; }
C128 reciprocal(const C128& x) {  // Smith's, as COMPLEX(16) divides
    const __float128 c = x.re, d = x.im;
    if (__builtin_fabsf128(d) <= __builtin_fabsf128(c)) {
        const __float128 r = d / c, den = c + d * r;
        return {1 / den, (0 - r) / den};
    }
    const __float128 r = c / d, den = c * r + d;
    return {r / den, -1 / den};
}

// The binary128 oracle of the method: reciprocal first, then multiply when
// the low bit is set, shift, stop at 0, else square.  Exponents below 2^32.
template <class V>
V power_by_method(V x, std::int64_t n, V one) {
    std::uint64_t m = n < 0 ? 0 - static_cast<std::uint64_t>(n) : n;
    if constexpr (std::is_same_v<V, __float128>) {
        if (n < 0) x = 1 / x;
    } else {
        if (n < 0) x = reciprocal(x);
    }
    V acc = one;
    bool empty = true;  // COMPLEX(16) starts from the first factor
    for (;;) {
        if (m & 1) {
            if constexpr (std::is_same_v<V, __float128>)
                acc = acc * x;
            else
                acc = empty ? x : acc * x;
            empty = false;
        }
        m >>= 1;
        if (m == 0) return acc;
        x = x * x;
    }
}

TEST(WidePowerOracle, Real16AndComplex16FollowTheirMethodBitForBit) {
    std::mt19937_64 random(5);
    long mismatches = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::int32_t n = static_cast<std::int32_t>(random() % 121) - 60;
        const __float128 x = random_f128(random, 4), y = random_f128(random, 4);
        const mivor_real16 qx = from_f128(x);
        mivor_real16 r4, r8;
        const std::int64_t n8 = n;
        g_aqxi(&r4, &qx, &n);
        g_aqxj(&r8, &qx, &n8);
        const __float128 expected = power_by_method(x, n, __float128(1));
        bool ok = to_f128(r4) == expected && to_f128(r8) == expected;
        if (n != 2) {  // n = 2 is the shortcut, checked on every flavour
            const mivor_complex16 z{from_f128(x), from_f128(y)};
            mivor_complex16 c4, c8;
            g_azxi(&c4, &z, &n);
            g_azxj(&c8, &z, &n8);
            const C128 e = power_by_method(C128{x, y}, n, C128{1, 0});
            ok = ok && to_f128(c4.re) == e.re && to_f128(c4.im) == e.im && to_f128(c8.re) == e.re &&
                 to_f128(c8.im) == e.im;
        }
        if (!ok && ++mismatches <= 5) ADD_FAILURE() << "case " << i << ", n = " << n;
    }
    EXPECT_EQ(mismatches, 0);
}

// Largest normwise error, in units of the last place of the larger part
// of the exact power, over bases of modulus near 1 and |n| <= max_n.
template <class C, class N>
double worst_power_error(int max_n) {
    using Part = decltype(C{}.re);
    std::mt19937_64 random(max_n);
    std::uniform_real_distribution<double> angle(0, 6.283185307179586), radius(0.99, 1.01);
    double worst = 0;
    for (int i = 0; i < 20000; ++i) {
        const double r = radius(random), t = angle(random);
        const C x{static_cast<Part>(r * std::cos(t)), static_cast<Part>(r * std::sin(t))};
        const N n = static_cast<N>(random() % (2 * max_n + 1)) - max_n;
        if (n == 0) continue;
        C p;
        if constexpr (sizeof(Part) == 4 && sizeof(N) == 4)
            g_acxi(&p, &x, &n);
        else if constexpr (sizeof(Part) == 4)
            g_acxj(&p, &x, &n);
        else if constexpr (sizeof(N) == 4)
            g_axxi(&p, &x, &n);
        else
            g_axxj(&p, &x, &n);
        // The exact power, near enough: binary128 powering of |n| <= 4096
        // loses at most about 2^-100 relative.
        C128 e{1, 0}, b{x.re, x.im};
        for (std::uint64_t m = n < 0 ? -static_cast<std::int64_t>(n) : n; m; m >>= 1, b = b * b)
            if (m & 1) e = e * b;
        if (n < 0) {
            const __float128 den = e.re * e.re + e.im * e.im;
            e = {e.re / den, -e.im / den};
        }
        const double big = std::fmax(std::fabs(static_cast<double>(e.re)), std::fabs(static_cast<double>(e.im)));
        int exp2;
        std::frexp(big, &exp2);
        const double ulp = std::ldexp(1.0, exp2 - std::numeric_limits<Part>::digits);
        const double err =
            std::fmax(std::fabs(static_cast<double>(p.re - e.re)), std::fabs(static_cast<double>(p.im - e.im)));
        worst = std::fmax(worst, err / ulp);
    }
    return worst;
}

TEST(WidePowerOracle, ComplexPowersInExtendedPrecision) {
    const double c8_64 = worst_power_error<mivor_complex8, std::int32_t>(64);
    const double c8_256 = worst_power_error<mivor_complex8, std::int64_t>(256);
    const double c8_1024 = worst_power_error<mivor_complex8, std::int32_t>(1024);
    const double c4_1024 = worst_power_error<mivor_complex4, std::int64_t>(1024);
    std::printf(
        "largest normwise error: COMPLEX(8) %.3f ulp (|n| <= 64), %.3f (256), %.3f (1024); "
        "COMPLEX(4) %.3f (1024)\n",
        c8_64, c8_256, c8_1024, c4_1024);
    EXPECT_LE(c8_64, 0.55);
    EXPECT_LE(c8_256, 0.7);
    EXPECT_LE(c8_1024, 1.2);
    EXPECT_LE(c4_1024, 0.501);
}

}  // namespace
}  // namespace mivor::testing
