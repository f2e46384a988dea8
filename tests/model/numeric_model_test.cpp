// EXPONENT, FRACTION, RRSPACING, SCALE, SET_EXPONENT, SPACING of the three
// real kinds.  For normal numbers the functions must fit together as the
// model says (checked on random values against each other and against
// exact scaling); at zeros, subnormals, infinities and NaNs they give the
// run-time's field-level answers, pinned here bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "mivor/mivor.h"
#include "support/bits.h"

namespace {

using mivor::testing::bits;
using mivor::testing::f32;
using mivor::testing::f64;
using mivor::testing::q;
using mivor::testing::same;

mivor_real16 fractq(mivor_real16 x) {
    mivor_real16 r;
    EXPECT_EQ(g_fractq(&r, &x), &r);
    return r;
}
mivor_real16 rrspaq(mivor_real16 x) {
    mivor_real16 r;
    g_rrspaq(&r, &x);
    return r;
}
mivor_real16 scaleq(mivor_real16 x, std::int32_t i) {
    mivor_real16 r;
    g_scaleq(&r, &x, &i);
    return r;
}
mivor_real16 stexpq(mivor_real16 x, std::int32_t i) {
    mivor_real16 r;
    g_stexpq(&r, &x, &i);
    return r;
}
mivor_real16 spaciq(mivor_real16 x) {
    mivor_real16 r;
    g_spaciq(&r, &x);
    return r;
}
std::int32_t exponq(mivor_real16 x) { return g_exponq(&x); }

float scale(float x, std::int32_t i) { return g_scale(&x, &i); }
double scale(double x, std::int32_t i) { return g_scaled(&x, &i); }
float stexp(float x, std::int32_t i) { return g_stexp(&x, &i); }
double stexp(double x, std::int32_t i) { return g_stexpd(&x, &i); }

// Random normal values over the whole exponent range of each kind.
struct Normals {
    std::mt19937_64 random{20261124};
    float r4() {
        std::uint32_t b;
        do b = static_cast<std::uint32_t>(random());
        while (((b >> 23) & 0xFF) == 0 || ((b >> 23) & 0xFF) == 0xFF);
        return f32(b);
    }
    double r8() {
        std::uint64_t b;
        do b = random();
        while (((b >> 52) & 0x7FF) == 0 || ((b >> 52) & 0x7FF) == 0x7FF);
        return f64(b);
    }
    mivor_real16 r16() {
        mivor_real16 x;
        do {
            const std::uint64_t a = random(), b = random();
            x = q(static_cast<std::uint32_t>(a >> 32), static_cast<std::uint32_t>(a),
                  static_cast<std::uint32_t>(b >> 32), static_cast<std::uint32_t>(b));
        } while (((x.w[3] >> 16) & 0x7FFF) == 0 || ((x.w[3] >> 16) & 0x7FFF) == 0x7FFF);
        return x;
    }
};

TEST(NumericModel, NormalNumbersFitTheModel) {
    Normals n;
    for (int i = 0; i < 20000; ++i) {
        const float x = n.r4();
        int e;
        const float m = std::frexp(x, &e);  // x = m 2^e, |m| in [0.5, 1)
        EXPECT_EQ(g_expon(&x), e);
        EXPECT_EQ(bits(g_fract(&x)), bits(m));
        EXPECT_EQ(bits(scale(g_fract(&x), e)), bits(x));
        EXPECT_EQ(bits(stexp(x, e)), bits(x));
        EXPECT_EQ(g_rrspa(&x), std::ldexp(std::fabs(m), 24));
        if (e - 24 >= -125) {
            EXPECT_EQ(g_spaci(&x), std::ldexp(1.0f, e - 24)) << x;
        }
        // SCALE within range is exact scaling.
        const std::int32_t k = static_cast<std::int32_t>(n.random() % 60) - 30;
        if (e + k > -125 && e + k < 128) {
            EXPECT_EQ(scale(x, k), std::ldexp(x, k)) << x << " " << k;
        }

        const double y = n.r8();
        const double my = std::frexp(y, &e);
        EXPECT_EQ(g_expond(&y), e);
        EXPECT_EQ(g_jexpnd(&y), static_cast<std::int64_t>(static_cast<std::uint32_t>(e)));
        EXPECT_EQ(bits(g_fractd(&y)), bits(my));
        EXPECT_EQ(bits(stexp(y, e)), bits(y));
        EXPECT_EQ(g_rrspad(&y), std::ldexp(std::fabs(my), 53));
        if (e - 53 >= -1021) {
            EXPECT_EQ(g_spacid(&y), std::ldexp(1.0, e - 53)) << y;
        }
        if (e + k > -1021 && e + k < 1024) {
            EXPECT_EQ(scale(y, k), std::ldexp(y, k)) << y << " " << k;
        }

        // REAL(16): the same relations through the library's own exact
        // operations (products by powers of two).
        const mivor_real16 z = n.r16();
        const std::int32_t ez = exponq(z);
        EXPECT_TRUE(same(scaleq(fractq(z), ez), z));
        EXPECT_TRUE(same(stexpq(z, ez), z));
        const mivor_real16 f = fractq(z);
        EXPECT_EQ(f.w[3] & 0x7FFF0000u, 0x3FFE0000u);  // [0.5, 1)
        if (ez - 113 > -16382) {
            mivor_real16 product, magnitude = z;
            magnitude.w[3] &= 0x7FFFFFFFu;
            const mivor_real16 r = rrspaq(z), s = spaciq(z);
            g_aqmq(&product, &r, &s);
            EXPECT_TRUE(same(product, magnitude));
        }
    }
}

TEST(NumericModel, Exponent) {
    const float zero4[] = {0.0f, -0.0f};
    for (float z : zero4) {
        EXPECT_EQ(g_expon(&z), 0);
        EXPECT_EQ(g_jexpon(&z), 0);
    }
    const double minus_zero = -0.0;
    EXPECT_EQ(g_expond(&minus_zero), 0);
    // Subnormals are read off the field, infinities and NaNs too.
    const float tiny = f32(1), inf = f32(0x7F800000u), nan = f32(0xFFC00001u);
    EXPECT_EQ(g_expon(&tiny), -126);
    EXPECT_EQ(g_expon(&inf), 129);
    EXPECT_EQ(g_expon(&nan), 129);
    const double tiny8 = f64(0x000FFFFFFFFFFFFFu), inf8 = f64(0xFFF0000000000000u);
    EXPECT_EQ(g_expond(&tiny8), -1022);
    EXPECT_EQ(g_expond(&inf8), 1025);
    EXPECT_EQ(exponq(q(0x80000000, 0, 0, 1)), -16382);  // a lower word set is not zero
    EXPECT_EQ(exponq(q(0x80000000)), 0);
    EXPECT_EQ(exponq(q(0x7FFF8000)), 16385);
    // INTEGER(8): the high word is 0 even for a negative exponent.
    const float quarter = 0.25f;
    EXPECT_EQ(g_jexpon(&quarter), 0xFFFFFFFFll);
    mivor_real16 eighth = q(0xBFFC0000);
    EXPECT_EQ(g_jexpnq(&eighth), 0xFFFFFFFEll);
}

TEST(NumericModel, FractionAndRrspacingAtTheEdges) {
    const float sub = f32(0x80000123u), minus_inf = f32(0xFF800000u), snan = f32(0x7F800001u);
    EXPECT_EQ(bits(g_fract(&sub)), 0x80000123u);  // not normalised
    EXPECT_EQ(bits(g_fract(&minus_inf)), 0xBF000000u);
    EXPECT_EQ(bits(g_fract(&snan)), 0x3F000001u);  // a finite value from a NaN
    const double minus_zero = -0.0, sub8 = f64(0x0000000000000005u);
    EXPECT_EQ(bits(g_fractd(&minus_zero)), bits(-0.0));
    EXPECT_EQ(bits(g_fractd(&sub8)), 0x0000000000000005u);
    EXPECT_TRUE(same(fractq(q(0x8000FFFF, 1, 2, 3)), q(0x8000FFFF, 1, 2, 3)));
    EXPECT_TRUE(same(fractq(q(0xFFFF0000)), q(0xBFFE0000)));

    const float minus_three = -3.0f, minus_zero4 = -0.0f;
    EXPECT_EQ(bits(g_rrspa(&minus_three)), 0x4B400000u);
    EXPECT_EQ(bits(g_rrspa(&minus_zero4)), 0x80000000u);
    EXPECT_EQ(bits(g_rrspad(&minus_zero)), bits(-0.0));
    EXPECT_EQ(bits(g_rrspad(&sub8)), 0x4330000000000005u);  // read as if normal
    EXPECT_TRUE(same(rrspaq(q(0x80000000)), q(0x80000000)));
    EXPECT_TRUE(same(rrspaq(q(0xC0001234, 5, 6, 7)), q(0x406F1234, 5, 6, 7)));
}

TEST(NumericModel, ScaleWrapsWithoutChecks) {
    EXPECT_EQ(bits(scale(-0.0f, 3)), 0u);
    EXPECT_EQ(bits(scale(-0.0, 3)), 0u);
    EXPECT_TRUE(same(scaleq(q(0x80000000), 3), q(0)));
    // 1.0 * 2^200: field 127 + 200 = 327 runs into the sign bit.
    EXPECT_EQ(bits(scale(1.0f, 200)), 0xA3800000u);
    EXPECT_EQ(bits(scale(1.0, 1100)), 0x84B0000000000000u);
    EXPECT_EQ(bits(scale(1.0f, -200)), 0xDB800000u);  // a negative field sets the sign bit
    EXPECT_TRUE(same(scaleq(q(0x3FFF0000), 20000), q(0x8E1F0000)));
    // A subnormal's field is 0, so SCALE gives the field I over the same
    // fraction bits.
    EXPECT_EQ(bits(scale(f32(1), 10)), 0x05000001u);
    // Infinities and NaNs are not spared.
    EXPECT_EQ(bits(scale(f32(0x7F800000u), -1)), 0x7F000000u);
    EXPECT_EQ(bits(scale(f32(0x7F800001u), 0)), 0x7FC00001u);  // comes back as from the x87 stack
}

TEST(NumericModel, SetExponentZerosDifferByKind) {
    EXPECT_EQ(bits(stexp(0.0f, 5)), 0u);
    EXPECT_EQ(bits(stexp(-0.0f, 1)), bits(-1.0f));  // -0.0 is not the zero pattern
    EXPECT_EQ(bits(stexp(-0.0f, 3)), bits(-4.0f));
    EXPECT_EQ(bits(stexp(-0.0, 1)), bits(-0.0));
    EXPECT_EQ(bits(stexp(0.0, 1)), 0u);
    EXPECT_TRUE(same(stexpq(q(0x80000000), 1), q(0x80000000)));
    EXPECT_TRUE(same(stexpq(q(0xBFFF8000, 1, 2, 3), 5), q(0xC0038000, 1, 2, 3)));  // -1.5 -> -24
    EXPECT_TRUE(same(stexpq(q(0x3FFF0000), 20000), q(0x8E1E0000)));                // wraps
    EXPECT_EQ(bits(stexp(3.0f, 130)), 0x80400000u);                                // wraps into the sign bit
    EXPECT_EQ(bits(stexp(-3.0, -2000)), 0xC2E8000000000000u);
}

TEST(NumericModel, SpacingLadder) {
    const float zero4 = 0.0f;
    EXPECT_EQ(bits(g_spaci(&zero4)), 0x00800000u);
    const float one = 1.0f, small = std::ldexp(1.0f, -120), sub = f32(1), big_sub = f32(0x007FFFFFu);
    EXPECT_EQ(g_spaci(&one), std::ldexp(1.0f, -23));
    EXPECT_EQ(bits(g_spaci(&small)), 0x00000040u);  // the subnormal 2^-143, not TINY
    EXPECT_EQ(bits(g_spaci(&sub)), 1u);
    EXPECT_EQ(bits(g_spaci(&big_sub)), 1u);
    const float inf = f32(0x7F800000u);
    EXPECT_EQ(g_spaci(&inf), std::ldexp(1.0f, 105));
    // REAL(8): the high-word rung, the low-word rung, the floor.
    const double zero = 0.0;
    EXPECT_EQ(bits(g_spacid(&zero)), 0x0010000000000000u);
    for (int e = -960; e >= -1022; --e) {
        const double x = std::ldexp(1.0, e);
        EXPECT_EQ(g_spacid(&x), std::ldexp(1.0, e - 52)) << e;
    }
    const double sub8 = f64(7);
    EXPECT_EQ(bits(g_spacid(&sub8)), 1u);
    // REAL(16): every rung sets one fraction bit.
    EXPECT_TRUE(same(spaciq(q(0)), q(0x00010000)));
    EXPECT_TRUE(same(spaciq(q(0x3FFF0000)), q(0x3F8F0000)));     // 2^-112
    EXPECT_TRUE(same(spaciq(q(0x00700000)), q(0x00008000)));     // 2^-16383
    EXPECT_TRUE(same(spaciq(q(0x00500000)), q(0, 0x00008000)));  // 2^-16415
    EXPECT_TRUE(same(spaciq(q(0x00010000)), q(0, 0, 0, 1)));
    EXPECT_TRUE(same(spaciq(q(0x00000000, 0, 0, 1)), q(0, 0, 0, 1)));
}

}  // namespace
