// Gamma and log-gamma: exact factorials, correctly rounded values (worked
// out with 400-bit arithmetic) from each method (the rows, Stirling's
// series, the negative axis by the product and by reflection), the zeros
// of log-gamma, monotony across the rows, the reflection formula, and the
// reports with retry and both fallbacks.
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
using mivor::testing::RecordingHandler;
using mivor::testing::Report;

double gamma8(double x) { return g_dgamma(&x); }
double lgamma8(double x) { return g_dlgama(&x); }
float gamma4(float x) { return g_gamma(&x); }
float lgamma4(float x) { return g_lgamma(&x); }
float algama4(float x) { return g_algama(&x); }

constexpr std::uint64_t kInfBits = 0x7FF0000000000000u;
constexpr std::uint64_t kHugeBits = 0x7FEFFFFFFFFFFFB6u;

TEST(Gamma, FactorialsAndZerosAreExact) {
    RecordingHandler handler;
    double factorial = 1;
    for (int n = 1; n <= 23; ++n) {
        ASSERT_EQ(gamma8(n), factorial) << n;  // (n-1)! is a double up to 22!
        if (n <= 20) {
            ASSERT_EQ(gamma4(static_cast<float>(n)), static_cast<float>(factorial)) << n;
        }
        factorial *= n;
    }
    EXPECT_EQ(bits(lgamma8(1.0)), 0u);
    EXPECT_EQ(bits(lgamma8(2.0)), 0u);
    EXPECT_EQ(bits(lgamma4(2.0f)), 0u);
    EXPECT_TRUE(handler.reports().empty());
}

struct Known {
    double x, expected;
};

const Known kGamma[] = {
    {0.5, 0x1.c5bf891b4ef6bp+0},           {0x1.b7cdfd9d7bdbbp-34, 0x1.2a05f1ffb61ddp+33},
    {2.5, 0x1.544fa6d47b390p+0},           {10.5, 0x1.14ade639225cap+20},
    {100.25, 0x1.b7d035f47bc48p+519},      {171.5, 0x1.0e1863dcad789p+1023},
    {-0.5, -0x1.c5bf891b4ef6bp+1},         {-1.5, 0x1.2e7fb0bcdf4f2p+1},
    {-2.5, -0x1.e3ff812e32183p-1},         {-100.5, -0x1.7932fb5136292p-527},
    {-170.25, -0x1.e7334b3b3c801p-1020},   {-180.5, -0.0},  // underflows with its sign
    {0x1p-1020, 0x1p+1020},
};

const Known kLgamma[] = {
    {0.5, 0x1.250d048e7a1bdp-1},           {0x1.000001ad7f29bp+0, -0x1.efd30c8e518b9p-25},
    {2.5, 0x1.2383e809a67e8p-2},           {0x1.56e1fc2f8f359p-997, 0x1.5963447f87fb5p+9},
    {100.25, 0x1.6848d8e681f58p+8},        {0x1.249ad2594c37dp+332, 0x1.060a2246099aep+340},
    {0x1.7e43c8800759cp+996, 0x1.017f38e7a1ab5p+1006},
    // Each side of the switches between the logarithm, the rows and
    // Stirling's series (2^-8, 1024), and inside the rows of eighths of a
    // binade below 1/2 and beyond 16.
    {0x1.4f8b588e368f1p-17, 0x1.7069d68f4ec83p+3}, {0x1.fffffffffffffp-9, 0x1.62bf735f63f2dp+2},
    {0x1p-8, 0x1.62bf735f63f2dp+2},        {0x1.930be0ded288dp-7, 0x1.190917a6e79ccp+2},
    {0x1.3333333333333p-2, 0x1.188637a6c4196p+0}, {0x1.2a66666666666p+5, 0x1.8333548093d25p+6},
    {0x1.5e0cccccccccdp+9, 0x1.e581c0e2de476p+11}, {0x1.fffffffffffffp+9, 0x1.7b747c92489cap+12},
    {0x1p+10, 0x1.7b747c92489cap+12},      {0x1.3888p+12, 0x1.25a5c50ff2199p+15},
    {0x1.0000000000001p+40, 0x1.ab9d3beb8bb7bp+44},
    {-0.5, 0x1.43f89a3f0edd6p+0},          {-2.5, -0x1.ccbf9f5ed0f16p-5},
    {-100.5, -0x1.6ce6a5dbefb91p+8},       {-0x1.2a05f20040000p+33, -0x1.9a43711051a31p+37},
};

TEST(Gamma, CorrectlyRoundedValues) {
    RecordingHandler handler;
    for (const Known& k : kGamma) EXPECT_EQ(bits(gamma8(k.x)), bits(k.expected)) << std::hexfloat << k.x;
    for (const Known& k : kLgamma) EXPECT_EQ(bits(lgamma8(k.x)), bits(k.expected)) << std::hexfloat << k.x;
    const float x4[] = {0.5f, 3.5f, -1.5f, 30.5f};
    const std::uint32_t g4[] = {0x3FE2DFC5, 0x4054B1C8, 0x40173FD8, 0x74182D70};
    const std::uint32_t l4[] = {0x3F128682, 0x3F99B981, 0x3F5C2C0B, 0x4291E82D};
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(bits(gamma4(x4[i])), g4[i]) << x4[i];
        EXPECT_EQ(bits(lgamma4(x4[i])), l4[i]) << x4[i];
        EXPECT_EQ(bits(algama4(x4[i])), l4[i]) << x4[i];
    }
    // Near a zero of log-gamma on the negative axis the error is absolute.
    EXPECT_NEAR(lgamma8(-0x1.3a7fc90dfb6b4p+1), 0x1.f1981b06590bbp-25, 0x1p-60);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Gamma, MonotonyAcrossRowsAndReflection) {
    // log-gamma falls on (0, 1.4616) and rises after it; around every row
    // boundary from 2^-8 to 1024 it must keep its direction.
    std::vector<double> bounds;
    for (int i = 16; i <= 32; ++i) bounds.push_back(i / 32.0);
    for (double b = 0x1p-8; b <= 1024; b += std::ldexp(0.125, std::ilogb(b)))
        if (b < 0.5 || b >= 2) bounds.push_back(b);
    for (double b = 1.125; b < 2; b += 0.0625) bounds.push_back(b);
    for (double b : bounds) {
        double x = std::nextafter(b, 0.0);
        for (int i = 0; i < 32; ++i, x = std::nextafter(x, 2048.0)) {
            const double next = std::nextafter(x, 2048.0);
            if (x < 1.46) {
                ASSERT_GE(lgamma8(x), lgamma8(next)) << x;
            } else {
                ASSERT_LE(lgamma8(x), lgamma8(next)) << x;
            }
        }
    }
    // gamma(x) gamma(-x) = -pi / (x sin(pi x)) over the negative product
    // path's range of shifts.
    for (double x = 0.01; x < 60; x = x * 1.37 + 0.003) {
        const double lhs = gamma8(x) * gamma8(-x);
        const double rhs = -3.141592653589793 / (x * std::sin(3.141592653589793 * x));
        ASSERT_NEAR(lhs / rhs, 1.0, 1e-12) << x;
        ASSERT_NEAR(lgamma8(-x), std::log(std::fabs(rhs)) - lgamma8(x), 1e-11 * std::fabs(lgamma8(x)) + 1e-12) << x;
    }
}

TEST(Gamma, PolesAndOverflowReport) {
    RecordingHandler handler;
    EXPECT_EQ(bits(gamma8(0.0)), kInfBits);
    EXPECT_EQ(bits(gamma8(-0.0)), kInfBits | 0x8000000000000000u);
    EXPECT_TRUE(std::isnan(gamma8(-3.0)));
    EXPECT_TRUE(std::isnan(gamma8(-HUGE_VAL)));
    EXPECT_EQ(bits(gamma8(172.0)), kInfBits);
    EXPECT_EQ(bits(gamma8(HUGE_VAL)), kInfBits);
    EXPECT_EQ(bits(gamma8(0x1p-1030)), kInfBits);         // 1/x beyond the largest double
    EXPECT_EQ(bits(gamma8(-0x1p-1030)), kInfBits | 0x8000000000000000u);
    ASSERT_EQ(handler.numbers(), (std::vector<std::int32_t>(8, 251)));
    const Report& r = handler.reports()[2];
    EXPECT_EQ(r.count, 1u);
    EXPECT_EQ(r.type1, MIVOR_TYPE_REAL8);
    EXPECT_EQ(r.shown1<double>(), -3.0);

    handler.clear();
    jwe_lca.ieee_results = 0;
    EXPECT_EQ(bits(gamma8(-0.0)), kHugeBits | 0x8000000000000000u);
    EXPECT_EQ(bits(gamma8(-3.0)), kHugeBits);
    EXPECT_EQ(bits(gamma8(200.0)), kHugeBits);
    EXPECT_EQ(bits(gamma4(-0.0f)), 0xFF7FFFEEu);
    EXPECT_EQ(bits(gamma4(36.0f)), 0x7F7FFFEEu);
    EXPECT_EQ(bits(lgamma4(-1.0f)), 0x7F7FFFEEu);
    EXPECT_EQ(bits(algama4(1e37f)), 0x7F7FFFEEu);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{251, 251, 251, 250, 250, 253, 253}));

    // A corrected argument starts the function again.
    handler.clear();
    handler.decide([](const Report&, jwe_control_area& a) {
        *static_cast<double*>(a.first_operand) = 5.0;
        return true;
    });
    EXPECT_EQ(gamma8(-4.0), 24.0);
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{251});
}

TEST(Gamma, DoubleLogGammaReportsNothing) {
    RecordingHandler handler;
    EXPECT_EQ(bits(lgamma8(0.0)), kInfBits);
    EXPECT_EQ(bits(lgamma8(-7.0)), kInfBits);
    EXPECT_EQ(bits(lgamma8(-0x1p60)), kInfBits);
    EXPECT_EQ(bits(lgamma8(HUGE_VAL)), kInfBits);
    EXPECT_EQ(bits(lgamma8(-HUGE_VAL)), kInfBits);
    EXPECT_EQ(bits(lgamma8(1e306)), kInfBits);
    EXPECT_TRUE(std::isnan(lgamma8(std::nan(""))));
    EXPECT_TRUE(std::isnan(gamma8(std::nan(""))));
    EXPECT_TRUE(std::isnan(gamma4(std::nanf(""))));
    EXPECT_TRUE(handler.reports().empty());
}

}  // namespace
