// The error function and its complement: special values, correctly rounded
// values (worked out with 400-bit arithmetic) on each of the methods (the
// polynomial near zero, the scaled complement's rows, the tails down to
// subnormal results), the symmetries and the monotony across the rows'
// boundaries, and the absence of reports.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::bits;
using mivor::testing::RecordingHandler;

double erf8(double x) { return g_derf(&x); }
double erfc8(double x) { return g_derfc(&x); }
float erf4(float x) { return g_erf(&x); }
float erfc4(float x) { return g_erfc(&x); }

TEST(Erf, SpecialValues) {
    RecordingHandler handler;
    const double inf = HUGE_VAL;
    EXPECT_EQ(bits(erf8(0.0)), bits(0.0));
    EXPECT_EQ(bits(erf8(-0.0)), bits(-0.0));
    EXPECT_EQ(erf8(inf), 1.0);
    EXPECT_EQ(erf8(-inf), -1.0);
    EXPECT_EQ(erf8(6.0), 1.0);
    EXPECT_EQ(erf8(-1e300), -1.0);
    EXPECT_EQ(erfc8(0.0), 1.0);
    EXPECT_EQ(erfc8(-0.0), 1.0);
    EXPECT_EQ(erfc8(inf), 0.0);
    EXPECT_EQ(erfc8(-inf), 2.0);
    EXPECT_EQ(erfc8(-6.0), 2.0);
    EXPECT_EQ(bits(erfc8(27.3)), 0u);
    EXPECT_EQ(bits(erfc8(1e300)), 0u);
    EXPECT_TRUE(std::isnan(erf8(std::nan(""))));
    EXPECT_TRUE(std::isnan(erfc8(-std::nan(""))));
    EXPECT_TRUE(std::isnan(erf4(std::nanf(""))));
    EXPECT_EQ(erf4(HUGE_VALF), 1.0f);
    EXPECT_EQ(erfc4(-HUGE_VALF), 2.0f);
    EXPECT_EQ(bits(erfc4(10.1f)), 0u);
    // Subnormal arguments: x 2/sqrt(pi) rounded once onto the grid.
    EXPECT_EQ(erf8(0x1p-1074), 0x1p-1074);
    EXPECT_EQ(erf8(0x4p-1074), 0x5p-1074);
    EXPECT_EQ(erf8(-0x3p-1074), -0x3p-1074);
    EXPECT_TRUE(handler.reports().empty());
}

struct Known {
    double x, erf, erfc;  // 0: not checked
};

const Known kKnown[] = {
    {1e-10, 0x1.f044332d68161p-34, 0},
    {-0.3, -0x1.50838881dea0fp-2, 0},
    {0.49, 0x1.05f961e0696acp-1, 0},
    {0.5, 0x1.0a7ef5c18edd2p-1, 0x1.eb02147ce245cp-2},
    {1.0, 0x1.af767a741088bp-1, 0x1.4226162fbddd5p-3},
    {2.0, 0x1.fd9ae142795e3p-1, 0},
    {4.0, 0x1.ffffff7b91176p-1, 0},
    {5.8, 0x1.ffffffffffffep-1, 0},
    {0.1, 0, 0x1.c66b42bb60999p-1},
    {5.0, 0, 0x1.b0c1a759f7739p-40},
    {10.0, 0, 0x1.7d8a7f2a8a2d0p-149},
    {20.0, 0, 0x1.b54f244df93dfp-583},
    {26.6, 0, 0x0.0c860a467b1a5p-1022},
    {27.2, 0, 0x0.0000000000002p-1022},
    {-1.0, 0, 0x1.d7bb3d3a08445p+0},
    {-3.0, 0, 0x1.fffe8d6209afdp+0},
    {-0.25, 0, 0x1.46bd5388cb582p+0},
};

struct Known4 {
    float x;
    std::uint32_t erf, erfc;
};

const Known4 kKnown4[] = {
    {0.5f, 0x3F053F7B, 0x3EF5810A}, {3.0f, 0x3F7FFE8D, 0x37B94EFB}, {9.5f, 0x3F800000, 0x00006912},
    {-2.0f, 0xBF7ECD71, 0x3FFF66B8}, {1e-20f, 0x1E552511, 0x3F800000},
};

TEST(Erf, CorrectlyRoundedValues) {
    RecordingHandler handler;
    for (const Known& k : kKnown) {
        if (k.erf != 0) {
            EXPECT_EQ(bits(erf8(k.x)), bits(k.erf)) << "erf " << k.x;
            EXPECT_EQ(bits(erf8(-k.x)), bits(-k.erf)) << "erf " << -k.x;
        }
        if (k.erfc != 0) {
            EXPECT_EQ(bits(erfc8(k.x)), bits(k.erfc)) << "erfc " << k.x;
        }
    }
    for (const Known4& k : kKnown4) {
        EXPECT_EQ(bits(erf4(k.x)), k.erf) << "erf " << k.x;
        EXPECT_EQ(bits(erfc4(k.x)), k.erfc) << "erfc " << k.x;
    }
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Erf, MonotonyAndComplementAcrossRows) {
    // Around every boundary of the polynomial rows of the complement
    // (eighths of [1/2, 1) and of each binade up to 28) and of the small
    // argument polynomial at 1/2: erf rises, erfc falls, and the two add up
    // to 1 within the rounding of the larger.
    for (double b = 0.5; b < 27; b += b < 1 ? 0.125 : std::ldexp(0.125, std::ilogb(b))) {
        double x = std::nextafter(b, 0.0);
        for (int i = 0; i < 64; ++i, x = std::nextafter(x, 30.0)) {
            const double next = std::nextafter(x, 30.0);
            ASSERT_GE(erfc8(x), erfc8(next)) << x;
            ASSERT_LE(erf8(x), erf8(next)) << x;
            if (b <= 4) {
                ASSERT_NEAR(erf8(x) + erfc8(x), 1.0, 0x1p-52) << x;
                ASSERT_NEAR(erfc8(-x), 2.0 - erfc8(x), 0x1p-51) << x;
            }
        }
    }
}

}  // namespace
