// Real bases raised to real powers, and two and ten raised to a real power:
// the special operands, exact and correctly rounded values (worked out with
// 400-bit arithmetic), subnormal and near-overflow results, the integral
// test of a negative base's exponent, and every report with its retry and
// both fallbacks.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::bits;
using mivor::testing::f32;
using mivor::testing::f64;
using mivor::testing::RecordingHandler;
using mivor::testing::Report;

double pw(double x, double y) { return g_adxd(&x, &y); }
float pw(float x, float y) { return g_arxr(&x, &y); }
double two(double y) { return g_a2xd(&y); }
float two(float y) { return g_a2xr(&y); }
double ten(double y) { return g_atxd(&y); }
float ten(float y) { return g_atxr(&y); }

const double kNaN = std::nan("");
const double kInf = HUGE_VAL;
constexpr std::uint64_t kInfBits = 0x7FF0000000000000u;
constexpr std::uint64_t kHugeBits = 0x7FEFFFFFFFFFFFB6u;
constexpr std::uint32_t kInfBits4 = 0x7F800000u;
constexpr std::uint32_t kHugeBits4 = 0x7F7FFFEEu;

// ---- special operands ----------------------------------------------------

struct Special {
    double x, y, expected;  // expected NaN: any NaN
};

// Results every kind gives alike, without a report.
const Special kSpecials[] = {
    {0.0, 0.0, 1.0},      {kNaN, 0.0, 1.0},      {-kInf, -0.0, 1.0},  {-3.0, 0.0, 1.0},
    {1.0, kNaN, 1.0},     {1.0, -kInf, 1.0},     {1.0, 1e30, 1.0},    {kNaN, 2.0, kNaN},
    {2.0, kNaN, kNaN},    {-2.0, kNaN, kNaN},    {0.0, kNaN, kNaN},   {0.0, 3.0, 0.0},
    {-0.0, 3.0, 0.0},     {-0.0, 2.5, 0.0},      {0.0, kInf, 0.0},    {0.5, kInf, 0.0},
    {2.0, -kInf, 0.0},    {-0.5, kInf, 0.0},     {-1.0, kInf, 1.0},   {-1.0, -kInf, 1.0},
    {kInf, -1.0, 0.0},    {-kInf, -2.0, 0.0},    {-2.0, 3.0, -8.0},   {-2.0, 2.0, 4.0},
    {-2.0, -1.0, -0.5},   {-0.5, -3.0, -8.0},    {3.0, 2.0, 9.0},     {4.0, 0.5, 2.0},
    {4.0, -0.5, 0.5},     {4.0, 1.5, 8.0},       {0.25, -0.5, 2.0},   {16.0, 0.25, 2.0},
    {-1.0, 16777215.0, -1.0},  // odd, and below 2^24: negative in both kinds
    {-0.5, 0x1p60, 0.0},        // integral and even
    // A positive normal base takes any exponent on the fast path: zero,
    // the least subnormal and the huge ones must still give 1, 1 and 0.
    {5.0, 0.0, 1.0},      {0.3, -0.0, 1.0},      {7.0, 0x1p-1074, 1.0},  {0.1, -0x1p-1074, 1.0},
    {1.5, -1e300, 0.0},   {0.75, 1e300, 0.0},    {1.0000001, -1e300, 0.0},
};

template <class T>
void check_specials() {
    RecordingHandler handler;
    for (const Special& s : kSpecials) {
        const T r = pw(static_cast<T>(s.x), static_cast<T>(s.y));
        if (std::isnan(s.expected)) {
            EXPECT_TRUE(std::isnan(r)) << s.x << "**" << s.y;
        } else {
            EXPECT_EQ(bits(r), bits(static_cast<T>(s.expected))) << s.x << "**" << s.y;
        }
    }
    // The sign of a zero base is not kept; an infinite negative base with a
    // negative odd exponent gives -0.
    EXPECT_EQ(bits(pw(T(-0.0), T(3))), 0u);
    EXPECT_EQ(bits(pw(-static_cast<T>(kInf), T(-3))), bits(T(-0.0)));
    EXPECT_TRUE(handler.reports().empty());
}

TEST(RealExponent, SpecialOperands) {
    check_specials<double>();
    check_specials<float>();
}

TEST(RealExponent, ParityOfLargeIntegralExponents) {
    RecordingHandler handler;
    // Every double from 2^53 on is even; below, the low bit decides.
    EXPECT_EQ(pw(-1.0, 0x1p53), 1.0);
    EXPECT_EQ(pw(-1.0, 0x1p53 - 1), -1.0);
    EXPECT_EQ(pw(-1.0, -(0x1p53 - 1)), -1.0);
    EXPECT_EQ(pw(-1.0, 1e300), 1.0);
    EXPECT_EQ(pw(-1.0f, 0x1p24f), 1.0f);
    EXPECT_EQ(pw(-1.0f, 0x1p24f - 1), -1.0f);
    EXPECT_EQ(pw(-2.0, 1023.0), -0x1p1023);
    EXPECT_EQ(pw(-2.0, -1074.0), 0x1p-1074);
    EXPECT_EQ(pw(-2.0, -1073.0), -0x1p-1073);
    EXPECT_EQ(pw(-2.0f, -149.0f), -0x1p-149f);
    EXPECT_TRUE(handler.reports().empty());
}

// A negative base with an odd integral exponent goes through the report
// pass and a positive one through the fast path; both must compute the
// magnitude the same way, across the range of results (both ends of the
// fast path's range, subnormal and near-overflow results included).
TEST(RealExponent, NegativeBaseMirrorsThePositiveOne) {
    RecordingHandler handler;
    std::uint64_t s = 0x9E3779B97F4A7C15u;
    for (int i = 0; i < 20000; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        // y log x in [-745, 709.7], y odd with either sign.
        const double e = static_cast<double>((s >> 11) % 1454700) / 1000.0 - 745.0;
        const double y = (2.0 * static_cast<double>((s >> 41) % 1000) + 1.0) * ((s >> 63) ? -1.0 : 1.0);
        const double x = std::exp(e / y);
        ASSERT_EQ(bits(pw(-x, y)), bits(-pw(x, y))) << std::hexfloat << x << "**" << y;
    }
    EXPECT_EQ(handler.reports().size(), 0u);
}

// ---- exact and correctly rounded values -----------------------------------

TEST(RealExponent, ExactPowersComeOutExact) {
    RecordingHandler handler;
    for (int k = -1074; k <= 1023; ++k) {
        ASSERT_EQ(two(static_cast<double>(k)), std::ldexp(1.0, k)) << k;
        ASSERT_EQ(pw(2.0, static_cast<double>(k)), std::ldexp(1.0, k)) << k;
        ASSERT_EQ(pw(0.5, static_cast<double>(-k)), std::ldexp(1.0, k)) << k;
    }
    for (int k = -149; k <= 127; ++k) ASSERT_EQ(two(static_cast<float>(k)), std::ldexp(1.0f, k)) << k;
    double p10 = 1.0, p3 = 1.0, p5 = 1.0;
    for (int k = 0; k <= 22; ++k, p10 *= 10, p3 *= 3, p5 *= 5) {
        ASSERT_EQ(ten(static_cast<double>(k)), p10) << k;
        ASSERT_EQ(pw(10.0, static_cast<double>(k)), p10) << k;
        ASSERT_EQ(pw(3.0, static_cast<double>(k)), p3) << k;
        ASSERT_EQ(pw(5.0, static_cast<double>(k)), p5) << k;
        ASSERT_EQ(pw(p5, 1.0), p5) << k;
    }
    for (int k = 0; k <= 10; ++k) ASSERT_EQ(ten(static_cast<float>(k)), static_cast<float>(std::pow(10.0, k))) << k;
    // Squares and square roots of exact squares.
    for (double v = 1; v < 1e7; v = v * 3 + 1) {
        ASSERT_EQ(pw(v * v, 0.5), v) << v;
        ASSERT_EQ(pw(v, 2.0), v * v) << v;
    }
    EXPECT_TRUE(handler.reports().empty());
}

struct Known {
    double x, y, expected;
};

// The correctly rounded powers, subnormal and near-overflow results among
// them (the power rounds once, onto the subnormal grid too).
const Known kKnown[] = {
    {2.0, 0.5, 0x1.6a09e667f3bcdp+0},
    {0x1.921fb54442d18p+1, 0x1.5bf0a8b145769p+1, 0x1.6758b5c381110p+4},
    {10.0, -0.5, 0x1.43d136248490fp-2},
    {0x1.000001ad7f29bp+0, 0x1.dcd65p+29, 0x1.349445c228792p+144},
    {0x1.0000000000001p+0, 0x1p52, 0x1.5bf0a8b145769p+1},
    {0x1.edd2f1a9fbe77p+6, 0x1.3b9999999999ap+6, 0x1.232619c0a25c6p+548},
    {0x1.56e1fc2f8f359p-997, 0x1.028f5c28f5c29p+0, 0x1.5f1ca8205119ep-1007},
    {2.0, 0x1.fffffcb923a2ap+9, 0x1.fff6ea43bd988p+1023},
    {10.0, 308.25, 0x1.fa788589d81d3p+1023},
    {0.5, 1074.5, 0x0.0000000000001p-1022},
    {0.75, 2470.5, 0x0.191aae3408642p-1022},
    {1.5, -1750.25, 0x0.47f913fd3823dp-1022},
    {7.0, -365.3, 0x0.1636310650e03p-1022},
    {2.0, -1073.7, 0x0.0000000000001p-1022},
    {2.0, -1022.5, 0x0.b504f333f9de6p-1022},
    {10.0, -320.3, 0x0.00000000003f6p-1022},
    {10.0, -310.0, 0x0.012688b70e62bp-1022},
};

struct Known4 {
    std::uint32_t x, y, expected;
};

const Known4 kKnown4[] = {
    {0x40000000, 0x3F000000, 0x3FB504F3}, {0x40490FDB, 0x402DF854, 0x41B3AC5B},
    {0x41200000, 0xBF000000, 0x3EA1E89B}, {0x3F800054, 0x47C35000, 0x402E34A1},
    {0x3F000000, 0x430C8000, 0x0000016A}, {0x40000000, 0xC314B333, 0x00000001},
    {0x3FC00000, 0xC37A4000, 0x00000006}, {0x40000000, 0x42FFFAE1, 0x7F7E3B37},
    {0x41200000, 0x421A0000, 0x7F6DE741}, {0x3E99999A, 0xC28C0000, 0x7C405984},
    {0x3F800001, 0xCE3EBC20, 0x00000AA8},
};

TEST(RealExponent, CorrectlyRoundedValues) {
    RecordingHandler handler;
    for (const Known& k : kKnown) {
        EXPECT_EQ(bits(pw(k.x, k.y)), bits(k.expected)) << std::hexfloat << k.x << "**" << k.y;
        if (k.x == 2.0) {
            EXPECT_EQ(bits(two(k.y)), bits(k.expected)) << std::hexfloat << "2**" << k.y;
        }
        if (k.x == 10.0) {
            EXPECT_EQ(bits(ten(k.y)), bits(k.expected)) << std::hexfloat << "10**" << k.y;
        }
    }
    for (const Known4& k : kKnown4) {
        const float x = f32(k.x), y = f32(k.y);
        EXPECT_EQ(bits(pw(x, y)), k.expected) << x << "**" << y;
        if (x == 2.0f) {
            EXPECT_EQ(bits(two(y)), k.expected) << "2**" << y;
        }
        if (x == 10.0f) {
            EXPECT_EQ(bits(ten(y)), k.expected) << "10**" << y;
        }
    }
    EXPECT_TRUE(handler.reports().empty());
}

TEST(RealExponent, UnderflowIsNotReported) {
    RecordingHandler handler;
    EXPECT_EQ(bits(pw(10.0, -400.0)), 0u);
    EXPECT_EQ(bits(pw(-10.0, -401.0)), bits(-0.0));
    EXPECT_EQ(bits(pw(0x1p-1074, 1.5)), 0u);
    EXPECT_EQ(bits(two(-1075.0)), 0u);  // 2^-1075 ties to even: +0
    EXPECT_EQ(two(-1074.99), 0x1p-1074);
    EXPECT_EQ(bits(ten(-400.0)), 0u);
    EXPECT_EQ(bits(two(-150.0f)), 0u);
    EXPECT_EQ(bits(ten(-46.0f)), 0u);
    EXPECT_EQ(bits(pw(1e-30f, 2.0f)), 0u);
    EXPECT_TRUE(handler.reports().empty());
}

// ---- reports ---------------------------------------------------------------

TEST(RealExponent, ZeroToANegativePower) {
    RecordingHandler handler;
    EXPECT_EQ(bits(pw(0.0, -2.0)), kInfBits);
    EXPECT_EQ(bits(pw(-0.0, -3.0)), kInfBits);  // +Inf whatever the sign
    EXPECT_EQ(bits(pw(0.0f, -HUGE_VALF)), kInfBits4);
    ASSERT_EQ(handler.numbers(), (std::vector<std::int32_t>{266, 266, 262}));
    const Report& r = handler.reports()[0];
    EXPECT_EQ(r.count, 1u);  // the exponent alone
    EXPECT_EQ(r.type1, MIVOR_TYPE_REAL8);
    EXPECT_EQ(r.shown1<double>(), -2.0);
    EXPECT_EQ(handler.reports()[2].type1, MIVOR_TYPE_REAL4);

    jwe_lca.ieee_results = 0;
    EXPECT_EQ(bits(pw(0.0, -2.0)), kHugeBits);
    EXPECT_EQ(bits(pw(0.0f, -0.5f)), kHugeBits4);

    // The handler corrects the exponent: 0**2.
    handler.decide([](const Report&, jwe_control_area& a) {
        *static_cast<double*>(a.second_operand) = 2.0;
        return true;
    });
    EXPECT_EQ(bits(pw(0.0, -2.0)), 0u);
}

TEST(RealExponent, NegativeBaseWithAFractionalExponent) {
    RecordingHandler handler;
    EXPECT_TRUE(std::isnan(pw(-4.0, 0.5)));
    EXPECT_TRUE(std::isnan(pw(-8.0f, 1.0f / 3)));
    EXPECT_TRUE(std::isnan(pw(-kInf, 0.5)));
    ASSERT_EQ(handler.numbers(), (std::vector<std::int32_t>{267, 263, 267}));
    const Report& r = handler.reports()[0];
    EXPECT_EQ(r.count, 2u);
    EXPECT_EQ(r.type1, MIVOR_TYPE_REAL8);
    EXPECT_EQ(r.type2, MIVOR_TYPE_REAL8);
    EXPECT_EQ(r.shown1<double>(), -4.0);
    EXPECT_EQ(r.shown2<double>(), 0.5);

    // IEEE results off: the power goes on with |x|, and may overflow then.
    handler.clear();
    jwe_lca.ieee_results = 0;
    EXPECT_EQ(pw(-4.0, 0.5), 2.0);
    EXPECT_EQ(pw(-8.0f, 2.5f), pw(8.0f, 2.5f));
    EXPECT_EQ(bits(pw(-1e300, 1.5)), kHugeBits);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{267, 263, 267, 1417}));
    EXPECT_EQ(handler.reports()[3].shown1<double>(), 1e300);  // the operands it went on with

    // A handler correcting the base.
    handler.clear();
    handler.decide([](const Report&, jwe_control_area& a) {
        *static_cast<double*>(a.first_operand) = 9.0;
        return true;
    });
    EXPECT_EQ(pw(-4.0, 0.5), 3.0);
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{267});
}

TEST(RealExponent, Overflow) {
    RecordingHandler handler;
    EXPECT_EQ(bits(pw(10.0, 400.0)), kInfBits);
    EXPECT_EQ(bits(pw(-10.0, 401.0)), kInfBits);  // +Inf whatever the sign
    EXPECT_EQ(bits(pw(kInf, 2.0)), kInfBits);     // an infinite power is an overflow
    EXPECT_EQ(bits(pw(0.5, -kInf)), kInfBits);
    EXPECT_EQ(bits(pw(0x1.fffffff768fa1p-1, -0x1.4a9e9878p+39)), kInfBits);  // 2.23e308
    EXPECT_EQ(bits(pw(1e20f, 2.0f)), kInfBits4);
    EXPECT_EQ(bits(two(1024.0)), kInfBits);
    EXPECT_EQ(bits(ten(308.26)), kInfBits);
    EXPECT_EQ(bits(two(kInf)), kInfBits);
    EXPECT_EQ(bits(two(128.0f)), kInfBits4);
    EXPECT_EQ(bits(ten(38.6f)), kInfBits4);
    ASSERT_EQ(handler.numbers(),
              (std::vector<std::int32_t>{1417, 1417, 1417, 1417, 1417, 1416, 1417, 1417, 1417, 1416, 1416}));
    const auto& reports = handler.reports();
    EXPECT_EQ(reports[0].count, 2u);
    EXPECT_EQ(reports[0].shown1<double>(), 10.0);
    EXPECT_EQ(reports[0].shown2<double>(), 400.0);
    // Two and ten to the x describe their constant base first.
    EXPECT_EQ(reports[6].shown1<double>(), 2.0);
    EXPECT_EQ(reports[6].shown2<double>(), 1024.0);
    EXPECT_EQ(reports[7].shown1<double>(), 10.0);
    EXPECT_EQ(reports[9].type1, MIVOR_TYPE_REAL4);
    EXPECT_EQ(reports[9].shown1<float>(), 2.0f);
    EXPECT_EQ(reports[10].shown1<float>(), 10.0f);

    jwe_lca.ieee_results = 0;
    EXPECT_EQ(bits(pw(-10.0, 401.0)), kHugeBits);
    EXPECT_EQ(bits(ten(400.0)), kHugeBits);
    EXPECT_EQ(bits(two(200.0f)), kHugeBits4);

    // Retries start the whole operation again on the corrected operands;
    // two and ten to the x keep their constant base whatever the handler
    // writes over its copy.
    handler.decide([](const Report& r, jwe_control_area& a) {
        if (r.type2 == MIVOR_TYPE_REAL4) {
            *static_cast<float*>(a.first_operand) = 5.0f;
            *static_cast<float*>(a.second_operand) = 3.0f;
        } else {
            *static_cast<double*>(a.first_operand) = 5.0;
            *static_cast<double*>(a.second_operand) = 3.0;
        }
        return true;
    });
    EXPECT_EQ(two(1e10), 8.0);
    EXPECT_EQ(ten(1e10), 1000.0);
    EXPECT_EQ(pw(10.0, 400.0), 125.0);
    EXPECT_EQ(ten(1e10f), 1000.0f);
    EXPECT_EQ(two(1e10f), 8.0f);
}

TEST(RealExponent, PowersReportInTheFullForm) {
    RecordingHandler handler;
    // The handler is not called while reports are disabled or suppressed;
    // the fallback is taken at once.
    jwe_lca.handler_enabled = 0;
    EXPECT_EQ(bits(pw(0.0, -1.0)), kInfBits);
    jwe_lca.handler_enabled = 1;
    jwe_lca.suppress = 1;
    EXPECT_EQ(bits(two(2000.0)), kInfBits);
    jwe_lca.ieee_results = 0;
    EXPECT_EQ(pw(-9.0, 0.5), 3.0);
    EXPECT_TRUE(handler.reports().empty());
    jwe_lca.suppress = 0;
    EXPECT_EQ(pw(-9.0, 0.5), 3.0);
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{267});
    EXPECT_EQ(jwe_x_init, 2);  // the core run-time was initialised first
}

}  // namespace
