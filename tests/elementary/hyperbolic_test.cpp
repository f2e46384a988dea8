// sinh, cosh, tanh (REAL(8), REAL(4)) and the hyperbolic pairs g_dsch,
// g_dschq, g_scnh, g_scnhq through the exports: values in every range of
// the plan against correctly rounded references (MPFR), the exact ends,
// overflow reports and fallbacks, and the pairs against the single
// functions, bit for bit and report for report.
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
using mivor::testing::RecordingHandler;
using mivor::testing::Report;
using mivor::testing::ulps;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr float kInfF = std::numeric_limits<float>::infinity();
constexpr std::uint64_t kHuge = 0x7FEFFFFFFFFFFFB6u;

double dsinh(double x) { return g_dsinh(&x); }
double dcosh(double x) { return g_dcosh(&x); }
double dtanh(double x) { return g_dtanh(&x); }
float ssinh(float x) { return g_sinh(&x); }
float scosh(float x) { return g_cosh(&x); }
float stanh(float x) { return g_tanh(&x); }
mivor_complex8 dsch(double x) {
    mivor_complex8 r;
    g_dsch(&r, &x);
    return r;
}
mivor_complex8 dschq(double x) {
    mivor_complex8 r;
    g_dschq(&r, &x);
    return r;
}
mivor_complex4 scnh(float x) {
    mivor_complex4 r;
    g_scnh(&r, &x);
    return r;
}
mivor_complex4 scnhq(float x) {
    mivor_complex4 r;
    g_scnhq(&r, &x);
    return r;
}

// Below 1 the series, then E +- 0.25/E, E alone from 18.4, the squared
// half exponential above 709.78.  The plan itself allows up to 2 ulps at
// 18.4..19 and next to the overflow (see hyperbolic.cpp): the tolerance.
struct Row8 {
    double x, f[3];  // sinh, cosh, tanh
};
constexpr Row8 kRows8[] = {
    {0.5, {0x1.0acd00fe63b97p-1, 0x1.20ac1862ae8dp+0, 0x1.d9353d7568af3p-2}},
    {-0x1.ff7ced916872bp-1, {-0x1.2c74e586adfd3p+0, 0x1.8aba5d73d4352p+0, -0x1.85b89494cdea1p-1}},
    {1.0, {0x1.2cd9fc44eb982p+0, 0x1.8b07551d9f55p+0, 0x1.85efab514f394p-1}},
    {3.25, {0x1.9c0669c3e8083p+3, 0x1.9d440d2c3a213p+3, 0x1.fe76795d353ap-1}},
    {0x1.24ccccccccccdp+4, {0x1.521a61e94adc9p+25, 0x1.521a61e94adcap+25, 0x1.ffffffffffffep-1}},
    {100.0, {0x1.3494a9b171bf5p+143, 0x1.3494a9b171bf5p+143, 1.0}},
    {0x1.62f3333333333p+9, {0x1.1fdb71f9335bap+1023, 0x1.1fdb71f9335bap+1023, 1.0}},
    {0x1.6333333333333p+9, {0x1.da98a7371610bp+1023, 0x1.da98a7371610bp+1023, 1.0}},
    {0x1.4f8b588e368f1p-17, {0x1.4f8b588e4e94p-17, 0x1.0000000036f9cp+0, 0x1.4f8b588e06854p-17}},
};
struct Row4 {
    float x, f[3];
};
constexpr Row4 kRows4[] = {
    {0.5f, {0x1.0acdp-1f, 0x1.20ac18p+0f, 0x1.d9353ep-2f}},
    {-0x1.ff7ceep-1f, {-0x1.2c74e6p+0f, 0x1.8aba5ep+0f, -0x1.85b894p-1f}},
    {1.0f, {0x1.2cd9fcp+0f, 0x1.8b0756p+0f, 0x1.85efacp-1f}},
    {3.25f, {0x1.9c066ap+3f, 0x1.9d440ep+3f, 0x1.fe767ap-1f}},
    {0x1.24ccccp+4f, {0x1.521a52p+25f, 0x1.521a52p+25f, 1.0f}},
    {-50.0f, {-0x1.19103ep+71f, 0x1.19103ep+71f, -1.0f}},
    {89.0f, {0x1.51c2ccp+127f, 0x1.51c2ccp+127f, 1.0f}},
    {0x1.4f8b58p-17f, {0x1.4f8b58p-17f, 1.0f, 0x1.4f8b58p-17f}},
};

TEST(Hyperbolic, CloseToCorrectlyRounded) {
    RecordingHandler handler;
    for (const Row8& r : kRows8) {
        EXPECT_LE(ulps(dsinh(r.x), r.f[0]), 2u) << r.x;
        EXPECT_LE(ulps(dcosh(r.x), r.f[1]), 2u) << r.x;
        EXPECT_LE(ulps(dtanh(r.x), r.f[2]), 1u) << r.x;
    }
    for (const Row4& r : kRows4) {
        EXPECT_EQ(ssinh(r.x), r.f[0]) << r.x;
        EXPECT_EQ(scosh(r.x), r.f[1]) << r.x;
        EXPECT_EQ(stanh(r.x), r.f[2]) << r.x;
    }
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Hyperbolic, ExactEnds) {
    EXPECT_EQ(dcosh(0.0), 1.0);
    EXPECT_EQ(dcosh(-0.0), 1.0);
    EXPECT_EQ(bits(dsinh(-0.0)), 0x8000000000000000u);
    EXPECT_EQ(bits(dtanh(-0.0)), 0x8000000000000000u);
    EXPECT_EQ(bits(ssinh(-0.0f)), 0x80000000u);
    EXPECT_EQ(dtanh(20.0), 1.0);
    EXPECT_EQ(dtanh(-20.0), -1.0);
    EXPECT_EQ(dtanh(kInf), 1.0);
    // From 18.369 on the result is 1, two ulps above tanh there.
    EXPECT_EQ(dtanh(18.5), 1.0);
    EXPECT_EQ(dtanh(0x1.25e76c8b43957p+4), 0x1.ffffffffffffep-1);
    EXPECT_EQ(stanh(-9.5f), -1.0f);
    EXPECT_EQ(dsinh(0x1p-1074), 0x1p-1074);
    // 710 needs the squared half exponential and is finite.
    EXPECT_LE(ulps(dcosh(710.0), 0x1.3e21a464507f9p+1023), 2u);
    EXPECT_TRUE(std::isnan(dtanh(kNaN)));
    EXPECT_TRUE(std::isnan(stanh(std::numeric_limits<float>::quiet_NaN())));
}

// Overflow (and Inf, NaN, whose comparisons fail) reports 224 / 223.
TEST(Hyperbolic, Overflow) {
    RecordingHandler handler;
    EXPECT_EQ(dcosh(0x1.633cccccccccdp+9), kInf);  // 710.475 itself
    EXPECT_EQ(dsinh(-800.0), -kInf);
    EXPECT_EQ(dcosh(-kInf), kInf);
    EXPECT_EQ(dsinh(kNaN), kInf);  // a NaN without its sign bit takes +Inf
    EXPECT_EQ(scosh(89.5f), kInfF);
    EXPECT_EQ(ssinh(-0x1.65a9fap+6f), -kInfF);  // 89.4159..., the first that overflows
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{224, 224, 224, 224, 223, 223}));
    EXPECT_EQ(handler.reports()[1].type1, MIVOR_TYPE_REAL8);
    EXPECT_EQ(handler.reports()[1].shown1<double>(), -800.0);
    EXPECT_EQ(handler.reports()[5].shown1<float>(), -0x1.65a9fap+6f);
    handler.clear();
    EXPECT_LT(ssinh(-0x1.65a9f8p+6f), 0.0f);  // the float below does not
    EXPECT_LT(dcosh(0x1.633ccccccccccp+9), kInf);
    EXPECT_TRUE(handler.reports().empty());

    jwe_lca.ieee_results = 0;
    EXPECT_EQ(bits(dcosh(1e300)), kHuge);
    EXPECT_EQ(bits(dsinh(-800.0)), kHuge | 0x8000000000000000u);
    EXPECT_EQ(bits(scosh(-kInfF)), 0x7F7FFFEEu);
    EXPECT_EQ(bits(ssinh(-100.0f)), 0xFF7FFFEEu);

    handler.decide([](const Report& r, jwe_control_area& a) {
        if (r.type1 == MIVOR_TYPE_REAL8) *static_cast<double*>(a.first_operand) = 1.0;
        else *static_cast<float*>(a.first_operand) = 1.0f;
        return true;
    });
    EXPECT_EQ(dcosh(kNaN), dcosh(1.0));
    EXPECT_EQ(ssinh(1e9f), ssinh(1.0f));
}

// The pairs give the single functions' bits: over every range, through the
// overflow fallbacks too; and one report where the singles make two.
TEST(Hyperbolic, PairsAgreeWithSingles) {
    RecordingHandler handler;
    std::uint64_t s = 9;
    for (int i = 0; i < 4000; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        const double u = static_cast<double>(s >> 11) * 0x1p-53;
        double x = (i % 4 == 0) ? u : (i % 4 == 1) ? 20.0 * u : (i % 4 == 2) ? 709.0 + 1.5 * u : 800.0 * u;
        if (s & 1) x = -x;
        const mivor_complex8 p = dsch(x);
        EXPECT_EQ(bits(p.re), bits(dsinh(x))) << x;
        EXPECT_EQ(bits(p.im), bits(dcosh(x))) << x;
        const float xf = static_cast<float>(x / 8.0);
        const mivor_complex4 q = scnh(xf);
        EXPECT_EQ(bits(q.re), bits(ssinh(xf))) << xf;
        EXPECT_EQ(bits(q.im), bits(scosh(xf))) << xf;
    }
    handler.clear();
    const mivor_complex8 over = dsch(-720.0);
    EXPECT_EQ(over.re, -kInf);
    EXPECT_EQ(over.im, kInf);
    const mivor_complex4 nan = scnh(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(nan.im, kInfF);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{224, 223}));
    jwe_lca.ieee_results = 0;
    const mivor_complex8 finite = dsch(kInf);
    EXPECT_EQ(bits(finite.re), kHuge);
    EXPECT_EQ(bits(finite.im), kHuge);
    // The pair reads its argument before writing: the result may overlay it.
    mivor_complex8 overlay{1.0, 7.0};
    g_dsch(&overlay, &overlay.re);
    EXPECT_EQ(overlay.re, dsinh(1.0));
    EXPECT_EQ(overlay.im, dcosh(1.0));
}

// The quadrant pairs: sinh and cosh of x pi/2, with x pi/2 carried exactly.
TEST(Hyperbolic, QuadrantPairs) {
    RecordingHandler handler;
    struct Row {
        double x, sh, ch;
    };
    constexpr Row rows[] = {
        {0.25, 0x1.9c8a0dab717d6p-2, 0x1.13fe82f729c21p+0},
        {-0.75, -0x1.785c881bb0bdep+0, 0x1.c72cb47429b93p+0},
        {3.0, 0x1.bd3c34cf00a26p+5, 0x1.bd4e9aa3e9cddp+5},
        {100.5, 0x1.aeddd306bdbcap+226, 0x1.aeddd306bdbcap+226},
        {452.0, 0x1.3e1cbb7783d53p+1023, 0x1.3e1cbb7783d53p+1023},
    };
    for (const Row& r : rows) {
        const mivor_complex8 p = dschq(r.x);
        EXPECT_LE(ulps(p.re, r.sh), 1u) << r.x;
        EXPECT_LE(ulps(p.im, r.ch), 1u) << r.x;
    }
    struct Row4 {
        float x, sh, ch;
    };
    constexpr Row4 rows4[] = {
        {0.25f, 0x1.9c8a0ep-2f, 0x1.13fe82p+0f},
        {-0.75f, -0x1.785c88p+0f, 0x1.c72cb4p+0f},
        {3.0f, 0x1.bd3c34p+5f, 0x1.bd4e9ap+5f},
        {50.5f, 0x1.5bcb88p+113f, 0x1.5bcb88p+113f},
    };
    for (const Row4& r : rows4) {
        const mivor_complex4 p = scnhq(r.x);
        EXPECT_EQ(p.re, r.sh) << r.x;
        EXPECT_EQ(p.im, r.ch) << r.x;
    }
    EXPECT_EQ(dschq(0.0).im, 1.0);
    EXPECT_EQ(bits(dschq(-0.0).re), 0x8000000000000000u);
    EXPECT_EQ(dschq(0x1p-1070).re, 0x1.9p-1070);  // 25.13 units of 2^-1074: x pi/2 rounded once
    EXPECT_TRUE(handler.reports().empty());
    const mivor_complex8 over = dschq(-453.0);  // 453 pi/2 > 710.475
    EXPECT_EQ(over.re, -kInf);
    EXPECT_EQ(over.im, kInf);
    EXPECT_EQ(scnhq(57.0f).im, kInfF);
    dschq(kNaN);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{224, 223, 224}));
}

}  // namespace
