// The sine-cosine pairs g_dscn, g_scns, g_dscnq, g_scnsq through the
// exports: one reduction for both halves with the bits of the two-lane or
// single functions, the fallbacks through the single functions (a refused
// argument reported once per half), and the quadrant pairs' handling of
// infinities and NaN.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::bits;
using mivor::testing::lane;
using mivor::testing::RecordingHandler;
using mivor::testing::Report;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr float kNaNF = std::numeric_limits<float>::quiet_NaN();

mivor_complex8 dscn(double x) {
    mivor_complex8 r;
    g_dscn(&r, &x);
    return r;
}
mivor_complex8 dscnq(double x) {
    mivor_complex8 r;
    g_dscnq(&r, &x);
    return r;
}
mivor_complex4 scns(float x) {
    mivor_complex4 r;
    g_scns(&r, &x);
    return r;
}
mivor_complex4 scnsq(float x) {
    mivor_complex4 r;
    g_scnsq(&r, &x);
    return r;
}

double argument(std::uint64_t& s, int i) {
    s = s * 6364136223846793005u + 1442695040888963407u;
    const double u = static_cast<double>(s >> 11) * 0x1p-53;
    const double sign = (s & 1) ? -1.0 : 1.0;
    switch (i % 4) {
        case 0: return sign * u;                                   // below pi/4 mostly
        case 1: return sign * 8.0 * u;                             // the ladder's range
        case 2: return sign * std::exp2(3.0 + 23.0 * u);           // up to 1.05e8
        default: return sign * (1.0e8 + 1e9 * u);                  // both sides of 1.05e8
    }
}

// The pair is g_dsin and g_dcos, bit for bit, on every path (the ladder,
// both Cody-Waite ranges, and beyond 1.05e8 the singles themselves); from
// 9pi/4 to 1.05e8 it is also the two-lane kernel's lanes.
TEST(SinCosPairs, RealEightAgreesWithSinglesAndLanes) {
    RecordingHandler handler;
    std::uint64_t s = 21;
    for (int i = 0; i < 8000; ++i) {
        const double x = argument(s, i);
        const mivor_complex8 p = dscn(x);
        EXPECT_EQ(bits(p.re), bits(g_dsin(&x))) << x;
        EXPECT_EQ(bits(p.im), bits(g_dcos(&x))) << x;
        const double a = std::fabs(x);
        if (a >= 0x1.c463abeccb2bbp+2 && a <= 1.05e8) {
            const __m128d v = _mm_set_pd(0.5, x);
            EXPECT_EQ(bits(p.re), bits(lane(pk_dsin(v), 0))) << x;
            EXPECT_EQ(bits(p.im), bits(lane(pk_dcos(v), 0))) << x;
        }
    }
    EXPECT_TRUE(handler.reports().empty());
    EXPECT_EQ(bits(dscn(0.0).re), 0u);
    EXPECT_EQ(dscn(0.0).im, 1.0);
    EXPECT_EQ(bits(dscn(-0.0).re), 0x8000000000000000u);
    EXPECT_EQ(dscn(-0.0).im, 1.0);
}

TEST(SinCosPairs, RealFourAgreesWithSingles) {
    RecordingHandler handler;
    for (std::uint32_t b = 0; b < 0x7F800000u; b += 0x00012345u) {
        for (float x : {mivor::testing::f32(b), -mivor::testing::f32(b)}) {
            if (!(std::fabs(x) < 823000.0f)) continue;
            const mivor_complex4 p = scns(x);
            EXPECT_EQ(bits(p.re), bits(g_sin(&x))) << x;
            EXPECT_EQ(bits(p.im), bits(g_cos(&x))) << x;
            const mivor_complex4 q = scnsq(x);
            EXPECT_EQ(bits(q.re), bits(g_sinq(&x))) << x;
            EXPECT_EQ(bits(q.im), bits(g_cosq(&x))) << x;
        }
    }
    std::uint64_t s = 4;
    for (int i = 0; i < 4000; ++i) {
        const double x = argument(s, i) * 1e-3 + static_cast<double>(i) * 1e11;
        const mivor_complex8 q = dscnq(x);
        EXPECT_EQ(bits(q.re), bits(g_dsinq(&x))) << x;
        EXPECT_EQ(bits(q.im), bits(g_dcosq(&x))) << x;
    }
    EXPECT_TRUE(handler.reports().empty());
}

// A refused argument goes through the single functions, so it is reported
// once for each half, each with its own retry.
TEST(SinCosPairs, RefusedArgumentsReportTwice) {
    RecordingHandler handler;
    const mivor_complex8 n = dscn(kNaN);
    EXPECT_TRUE(std::isnan(n.re) && std::isnan(n.im));
    const mivor_complex4 f = scns(1e6f);
    EXPECT_TRUE(std::isnan(f.re) && std::isnan(f.im));
    const mivor_complex8 q = dscnq(-kInf);
    EXPECT_TRUE(std::isnan(q.re) && std::isnan(q.im));
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{203, 203, 202, 202, 203, 203}));
    EXPECT_EQ(handler.reports()[4].shown1<double>(), -kInf);
    jwe_lca.ieee_results = 0;
    const mivor_complex8 big = dscn(3.6e15);
    EXPECT_EQ(bits(big.re), 0x3FE6A09E667F3BCDu);
    EXPECT_EQ(bits(big.im), 0x3FE6A09E667F3BCDu);
    EXPECT_EQ(bits(dscnq(kNaN).im), 0x3FE6A09E667F3BCDu);

    // Beyond 1.05e8 but accepted: exactly what the singles give.
    handler.clear();
    jwe_lca.ieee_results = 1;
    const double x = 2e8;
    EXPECT_EQ(bits(dscn(x).re), bits(g_dsin(&x)));
    EXPECT_EQ(bits(dscn(x).im), bits(g_dcos(&x)));

    // The first half's retry does not carry over to the second half.
    handler.decide([](const Report&, jwe_control_area& a) {
        *static_cast<double*>(a.first_operand) = 1.0;
        return true;
    });
    const mivor_complex8 r = dscnq(kInf);
    EXPECT_EQ(r.re, 1.0);  // sinq(1)
    EXPECT_EQ(bits(r.im), 0x8000000000000000u);  // cosq(1) = -0
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{203, 203}));

    // The REAL(4) quadrant pair makes no report at all.
    handler.clear();
    const mivor_complex4 z = scnsq(kNaNF);
    EXPECT_TRUE(std::isnan(z.re) && std::isnan(z.im));
    EXPECT_EQ(bits(scnsq(-std::numeric_limits<float>::infinity()).re), 0x7FC00000u);
    EXPECT_TRUE(handler.reports().empty());
}

}  // namespace
