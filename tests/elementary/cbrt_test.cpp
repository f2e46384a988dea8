// Cube roots: table guess and two Newton steps.  Checked here without any
// platform cube root (these tests also run on win32): exactness on cubes,
// symmetry, the special arguments, and the residual y^3 - x over every table
// row and every float of three binades.  The MPFR comparison is in
// cbrt_mpfr_test.cpp (host).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::RecordingHandler;
using mivor::testing::bits;
using mivor::testing::f32;
using mivor::testing::f64;

long double dcbrt(double x) { return g_dcbrt(&x); }
float scbrt(float x) { return g_cbrt(&x); }

// The promised accuracy: two Newton steps from a guess within 5.3e-5 leave
// 7.9e-18 relative, plus about 1.5 units of the 64-bit significand from the
// last step's roundings.  2^-56 = 1.39e-17 covers both.
constexpr long double kBound = 0x1p-56L;

// |y^3 - x| / |x| for the computed root, evaluated in extended precision.
// y^3 = x (1 + d)^3 with d the relative error of y, so the residual is
// 3 d (to first order) plus the two roundings of the cube (2^-63 each).
long double residual(double x, long double y) {
    const long double xl = x;
    return std::fabs((y * y * y - xl) / xl);
}

void expect_accurate(double x) {
    const long double y = dcbrt(x);
    ASSERT_LE(residual(x, y), 3 * kBound + 0x1p-61L) << std::hexfloat << x;
    ASSERT_EQ(std::signbit(y), std::signbit(x)) << std::hexfloat << x;
}

TEST(Cbrt, ZeroGivesPositiveZero) {
    RecordingHandler handler;
    for (double z : {0.0, -0.0}) {
        const long double y = dcbrt(z);
        EXPECT_EQ(y, 0.0L);
        EXPECT_FALSE(std::signbit(y));
    }
    for (float z : {0.0f, -0.0f}) EXPECT_EQ(bits(scbrt(z)), 0u);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Cbrt, ExactCubes) {
    // -27: within one unit of the 64-bit significand.  8 = 2^3 sits at the
    // start of row 0, where the guess is 4.9e-5 high: the two steps leave
    // 2 (1 + 6.2e-18), 57 units of the extended result above 2, which is 2.0
    // once rounded to REAL(8).
    EXPECT_LE(std::fabs(dcbrt(-27.0) + 3.0L), 0x1p-62L);
    EXPECT_LE(std::fabs(dcbrt(8.0) - 2.0L), 2.0L * kBound);
    EXPECT_EQ(static_cast<double>(dcbrt(8.0)), 2.0);
    EXPECT_EQ(scbrt(-27.0f), -3.0f);
    EXPECT_EQ(scbrt(8.0f), 2.0f);
    // Every cube of an integer below 2^17 (exact as a double), and scaled by
    // powers of eight down to subnormals and up to near overflow: the root
    // rounds to the integer.
    for (std::int64_t k = 1; k < (1 << 17); k += (k < 2000 ? 1 : 97)) {
        const double c = static_cast<double>(k * k * k);
        ASSERT_EQ(static_cast<double>(dcbrt(c)), static_cast<double>(k)) << k;
        ASSERT_EQ(static_cast<double>(dcbrt(-c)), -static_cast<double>(k)) << k;
        for (int e : {-1098, -1077, -999, -300, -3, 3, 300, 966}) {
            const double s = std::ldexp(c, e);
            if (s == 0.0 || std::isinf(s) || std::ldexp(s, -e) != c) continue;
            ASSERT_EQ(static_cast<double>(dcbrt(s)), std::ldexp(static_cast<double>(k), e / 3))
                << k << " * 2^" << e;
        }
    }
}

TEST(Cbrt, ResultHasTheSignOfX) {
    std::mt19937_64 rng(7);
    for (int i = 0; i < 20000; ++i) {
        double x = f64(rng() & 0x7FFFFFFFFFFFFFFFu);
        if (std::isnan(x) || x == 0.0) continue;
        const long double p = dcbrt(x), m = dcbrt(-x);
        ASSERT_FALSE(std::signbit(p));
        ASSERT_EQ(m, -p) << std::hexfloat << x;  // every step is odd in x
        const float xf = static_cast<float>(x);
        if (xf != 0.0f && !std::isinf(xf)) {
            ASSERT_EQ(scbrt(-xf), -scbrt(xf));
        }
    }
}

TEST(Cbrt, NaNAndInfinity) {
    RecordingHandler handler;
    const double qnan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(dcbrt(qnan)));
    EXPECT_TRUE(std::isnan(dcbrt(-qnan)));
    EXPECT_TRUE(std::isnan(dcbrt(f64(0x7FF0000000000001u))));  // signalling
    EXPECT_TRUE(std::isnan(scbrt(std::numeric_limits<float>::quiet_NaN())));
    EXPECT_TRUE(std::isnan(scbrt(-std::numeric_limits<float>::quiet_NaN())));
    // The infinity of x's sign.
    EXPECT_EQ(dcbrt(HUGE_VAL), HUGE_VALL);
    EXPECT_EQ(dcbrt(-HUGE_VAL), -HUGE_VALL);
    EXPECT_EQ(scbrt(HUGE_VALF), HUGE_VALF);
    EXPECT_EQ(scbrt(-HUGE_VALF), -HUGE_VALF);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Cbrt, ExtremeMagnitudes) {
    // 2^-1074 = (2^-358)^3 and 2^-1023 = (2^-341)^3: exact roots of
    // subnormals, which go through the rescaled path.
    EXPECT_EQ(static_cast<double>(dcbrt(0x1p-1074)), 0x1p-358);
    EXPECT_EQ(static_cast<double>(dcbrt(-0x1p-1023)), -0x1p-341);
    EXPECT_EQ(scbrt(0x1p-147f), 0x1p-49f);  // a REAL(4) subnormal
    // Every subnormal exponent, with random fractions, and the largest values.
    std::mt19937_64 rng(11);
    for (int shift = 0; shift < 52; ++shift) {
        for (int i = 0; i < 50; ++i) {
            const std::uint64_t f = (rng() & ((std::uint64_t{1} << 52) - 1)) >> shift;
            if (f != 0) expect_accurate(f64(f));
        }
    }
    expect_accurate(std::numeric_limits<double>::max());
    expect_accurate(-std::numeric_limits<double>::max());
    expect_accurate(std::numeric_limits<double>::min());
    expect_accurate(std::nextafter(std::numeric_limits<double>::min(), 0.0));
}

TEST(Cbrt, EveryTableRow) {
    // Row = (high word >> 16) mod 48: exponent mod 3 and the top four
    // fraction bits.  For each row, across exponents of each residue: the
    // first and last doubles of the row, the middle, and random points.
    std::mt19937_64 rng(13);
    for (int row = 0; row < 48; ++row) {
        const std::uint64_t r = row / 16, top = row % 16;
        for (std::uint64_t e : {r + 3, r + 1020, r + 1023, r + 1500, r + 2043}) {
            if (e > 2046) continue;
            const std::uint64_t start = (e << 52) | (top << 48);
            const std::uint64_t span = std::uint64_t{1} << 48;
            for (std::uint64_t off : {std::uint64_t{0}, span / 2, span - 1, span / 3, (span / 3) * 2})
                expect_accurate(f64(start + off));
            for (int i = 0; i < 200; ++i) expect_accurate(f64(start + (rng() & (span - 1))));
        }
    }
}

// g_cbrt on every float of [1, 8): every table row, each residue of the
// exponent; other binades differ by exact powers of two.  The result must
// be the correctly rounded root: the cubes of the two midpoints around it
// bracket x.  A midpoint m has 25 significant bits, so m^3 != x exactly and
// the cube in extended precision (error < 2^-62 relative) decides unless it
// lands that close to x; such cases are counted, not judged.
TEST(Cbrt, FloatsOfThreeBinadesAreCorrectlyRounded) {
    int undecided = 0;
    for (std::uint32_t b = bits(1.0f); b < bits(8.0f); ++b) {
        const float x = f32(b);
        const float y = scbrt(x);
        const long double yl = y;
        const long double lo = (yl + f32(bits(y) - 1)) / 2, hi = (yl + f32(bits(y) + 1)) / 2;
        const long double lo3 = lo * lo * lo, hi3 = hi * hi * hi, xl = x;
        if (std::fabs(lo3 - xl) <= xl * 0x1p-61L || std::fabs(hi3 - xl) <= xl * 0x1p-61L) {
            ++undecided;
            continue;
        }
        ASSERT_TRUE(lo3 < xl && xl < hi3) << std::hexfloat << x << " -> " << y;
    }
    EXPECT_LE(undecided, 4);
}

}  // namespace
