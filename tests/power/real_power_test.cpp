// Real bases raised to INTEGER(4) and INTEGER(8) exponents.
//
// Two deliberately different methods: the INTEGER(4) members take the
// reciprocal last (with the doubling for small bases), the INTEGER(8)
// members take it first.  Where the tests pin exact bits, the values were
// worked out by hand from those methods.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::bits;

double pow_i4(double x, std::int32_t n) { return g_adxi(&x, &n); }
double pow_i8(double x, std::int64_t n) { return g_adxj(&x, &n); }
float pow_i4(float x, std::int32_t n) { return g_arxi(&x, &n); }
float pow_i8(float x, std::int64_t n) { return g_arxj(&x, &n); }

TEST(RealPowers, ZeroBase) {
    EXPECT_EQ(bits(pow_i4(0.0, 0)), bits(1.0));
    EXPECT_EQ(bits(pow_i8(0.0, 0)), bits(1.0));
    EXPECT_EQ(bits(pow_i4(-0.0, 3)), 0u);  // +0.0, not -0.0
    EXPECT_EQ(bits(pow_i8(-0.0, 3)), 0u);
    // A nonzero high word with a zero low word is still a positive exponent.
    EXPECT_EQ(bits(pow_i8(-0.0, std::int64_t{1} << 32)), 0u);
    EXPECT_EQ(bits(pow_i4(-0.0f, 5)), 0u);
    EXPECT_EQ(bits(pow_i8(0.0f, 0)), bits(1.0f));
}

TEST(RealPowers, ShortcutsAndNaN) {
    const double nan = std::nan("");
    EXPECT_EQ(pow_i4(nan, 0), 1.0);
    EXPECT_EQ(pow_i8(nan, 0), 1.0);
    EXPECT_TRUE(std::isnan(pow_i4(nan, 1)));
    EXPECT_TRUE(std::isnan(pow_i4(nan, -7)));
    EXPECT_TRUE(std::isnan(pow_i8(nan, 5)));
    EXPECT_EQ(pow_i4(-1.0, -3), -1.0);
    EXPECT_EQ(pow_i4(-1.0, 4), 1.0);
    EXPECT_EQ(pow_i4(1.0, INT32_MIN), 1.0);
    // Only the low word's parity decides the sign.
    EXPECT_EQ(pow_i8(-1.0, (std::int64_t{1} << 32) + 1), -1.0);
    EXPECT_EQ(pow_i8(-1.0, std::int64_t{1} << 32), 1.0);
    EXPECT_EQ(pow_i4(3.0, 2), 9.0);
    EXPECT_EQ(pow_i4(HUGE_VAL, -2), 0.0);
    EXPECT_EQ(pow_i4(-HUGE_VAL, 3), -HUGE_VAL);
}

TEST(RealPowers, ExactPowers) {
    // Exact results must come out exact by any powering order.
    for (int n = 0; n <= 33; ++n) {
        EXPECT_EQ(pow_i4(3.0, n), std::pow(3.0, n)) << n;
        EXPECT_EQ(pow_i8(3.0, n), std::pow(3.0, n)) << n;
        EXPECT_EQ(pow_i4(-2.0f, n), std::ldexp(n % 2 ? -1.0f : 1.0f, n)) << n;
    }
    // Reciprocal last: 2^1074 overflows before the division.  Reciprocal
    // first: 0.5^1074 is exact.
    EXPECT_EQ(pow_i4(2.0, -1074), 0.0);
    EXPECT_EQ(pow_i8(2.0, -1074), std::ldexp(1.0, -1074));
    EXPECT_EQ(pow_i4(0.5, 1074), std::ldexp(1.0, -1074));
    EXPECT_EQ(pow_i4(0.5, 1023), std::ldexp(1.0, -1023));
    EXPECT_EQ(pow_i4(2.0, 1024), HUGE_VAL);   // overflow is not reported
    EXPECT_EQ(pow_i4(2.0, -1080), 0.0);       // nor is underflow
}

TEST(RealPowers, MostNegativeExponents) {
    // INTEGER(4): -2^31 stays negative through the arithmetic shifts: x is
    // squared thirty-one times, m ends at -1 and the loop does not run, so
    // the result is 1 / x^(2^31) (as 2 / 2x^(2^31) for |x| <= 1).  Each
    // squaring doubles the relative error: about 2^31 ulps in the end.
    EXPECT_NEAR(pow_i4(1.0000001, INT32_MIN) / 5.4447103e-94, 1.0, 1e-6);
    EXPECT_NEAR(pow_i4(0.9999999, INT32_MIN) / 1.8366842e93, 1.0, 1e-6);
    // x^(2^31) of 1 - 2^-40 is exp(-2^-9 - 2^-50), its reciprocal 1.00195503...
    const double y = pow_i4(1.0 - std::ldexp(1.0, -40), INT32_MIN);
    EXPECT_NEAR(y, 1.0019550348358, 1e-8);
    EXPECT_EQ(pow_i4(2.0, INT32_MIN), 0.0);
    // INTEGER(8): -2^63 negates to itself and runs the 32-iteration path.
    EXPECT_EQ(pow_i8(2.0, INT64_MIN), 0.0);
    EXPECT_EQ(pow_i8(0.5, INT64_MIN), HUGE_VAL);
    EXPECT_EQ(pow_i8(1.0 + std::ldexp(1.0, -52), INT64_MIN), 0.0);
}

TEST(RealPowers, ReciprocalFirstOrLast) {
    // 10^-n: g_adxi divides once at the end, g_adxj powers the rounded
    // reciprocal 0.1, so their last bits differ; both stay close.
    const double a = pow_i4(10.0, -22);
    const double b = pow_i8(10.0, -22);
    EXPECT_EQ(a, 1e-22);  // 10^22 is exact, one rounding in the division
    EXPECT_NE(bits(a), bits(b));
    EXPECT_NEAR(b / a, 1.0, 1e-14);
}

TEST(RealPowers, DoublingKeepsSmallBasesAccurate) {
    // 0.75^-2470 is about 2^1025.2 / 2^2 ... pick n so that x^|n| sits in
    // the subnormal range [2^-1024, 2^-1022) and the result stays finite:
    // with the doubling the final division sees a normal number.
    const double x = 0.75;
    const std::int32_t n = -2466;  // 0.75^2466 ~ 2^-1023.5
    const double doubled = pow_i4(x, n);
    ASSERT_TRUE(std::isfinite(doubled));
    const long double reference = std::pow(static_cast<long double>(x), static_cast<long double>(n));
    // A subnormal intermediate would cost about two bits; the doubled
    // path loses only the rounding of the ~12 products.
    EXPECT_NEAR(static_cast<double>(doubled / reference), 1.0, 32 * std::ldexp(1.0, -52));
}

TEST(RealPowers, AccuracyOnRandomOperands) {
    std::mt19937_64 random(12345);
    std::uniform_real_distribution<double> base(0.5, 2.0);
    std::uniform_int_distribution<int> exponent(-200, 200);
    for (int i = 0; i < 20000; ++i) {
        const double x = base(random);
        const int n = exponent(random);
        const long double reference = std::pow(static_cast<long double>(x), static_cast<long double>(n));
        // Squaring doubles the relative error of x^(2^k): the error of
        // binary powering grows with |n| itself, up to about |n| ulps.
        const double bound = (std::abs(n) + 4) * std::ldexp(1.0, -52);
        EXPECT_NEAR(static_cast<double>(pow_i4(x, n) / reference), 1.0, bound) << x << "^" << n;
        EXPECT_NEAR(static_cast<double>(pow_i8(x, n) / reference), 1.0, bound) << x << "^" << n;
        // REAL(4) works in extended precision and rounds once.
        const float xf = static_cast<float>(x);
        const long double ref4 = std::pow(static_cast<long double>(xf), static_cast<long double>(n));
        if (std::isnormal(static_cast<float>(ref4))) {
            EXPECT_NEAR(pow_i4(xf, n) / static_cast<double>(ref4), 1.0, 1.0001 * std::ldexp(1.0, -24))
                << xf << "^" << n;
            EXPECT_NEAR(pow_i8(xf, n) / static_cast<double>(ref4), 1.0, 1.0001 * std::ldexp(1.0, -24))
                << xf << "^" << n;
        }
    }
}

TEST(RealPowers, HandlerCorrectsTheBase) {
    mivor::testing::RecordingHandler handler([](const mivor::testing::Report& r, jwe_control_area& area) {
        EXPECT_EQ(r.type1, MIVOR_TYPE_INTEGER4);
        *static_cast<float*>(area.first_operand) = 2.0f;
        return true;
    });
    EXPECT_EQ(pow_i4(0.0f, -2), 0.25f);
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{261});
}

}  // namespace
