// Radian sine, cosine, tangent, cotangent through the exports: values
// against correctly rounded references (MPFR, 300 bits), the limits of the
// reduction, symmetries, every report with retry and both fallbacks, and
// the packed forms against the scalar ones.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::RecordingHandler;
using mivor::testing::Report;
using mivor::testing::bits;
using mivor::testing::lane;
using mivor::testing::ulps;

double dsin(double x) { return g_dsin(&x); }
double dcos(double x) { return g_dcos(&x); }
double dtan(double x) { return g_dtan(&x); }
double dcot(double x) { return g_dcotan(&x); }
float ssin(float x) { return g_sin(&x); }
float scos(float x) { return g_cos(&x); }
float stan(float x) { return g_tan(&x); }
float scot(float x) { return g_cotan(&x); }

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr std::uint64_t kNaNBits = 0x7FF8000000000000u;
constexpr std::uint64_t kSubstitute = 0x3FE6A09E667F3BCDu;  // 0.7071067811865476
constexpr std::uint64_t kHuge = 0x7FEFFFFFFFFFFFB6u;

// Correctly rounded sin, cos, tan, cot (MPFR) over the ladder, both
// Cody-Waite ranges and their edges (1.05e8, just below 3.53e15).
struct Row {
    double x, f[4];
};
constexpr Row kRows[] = {
    {0x1p+0, {0x1.aed548f090ceep-1, 0x1.14a280fb5068cp-1, 0x1.8eb245cbee3a6p+0, 0x1.48c05d04e1cfep-1}},
    {0x1p-1, {0x1.eaee8744b05fp-2, 0x1.c1528065b7d5p-1, 0x1.17b4f5bf3474ap-1, 0x1.d49ad7e47c0a3p+0}},
    {0x1p+1, {0x1.d18f6ead1b446p-1, -0x1.aa22657537205p-2, -0x1.17af62e0950f8p+1, -0x1.d4a42e92faa4ep-2}},
    {0x1.4p+3, {-0x1.1689ef5f34f52p-1, -0x1.ad9ac890c6b1fp-1, 0x1.4bf5f34be3782p-1, 0x1.8ad784a2c267p+0}},
    {-0x1.8p+1, {-0x1.210386db6d55bp-3, -0x1.fae04be85e5d2p-1, 0x1.23ef71254b86fp-3, 0x1.c0f9e5d665e16p+2}},
    {0x1.e848p+19, {-0x1.6664b2568d867p-2, 0x1.df9df9906d32cp-1, -0x1.7e9768ab734cp-2, -0x1.569709f17adep+1}},
    {0x1.2a05f2p+33, {-0x1.f334c7896a4e3p-2, 0x1.bf098901c931ap-1, -0x1.1de000f443f5p-1, -0x1.ca7e7b9d83f5fp+0}},
    {0x1.c6bf52634p+49, {0x1.b76f88136cebap-1, -0x1.06c154609d33fp-1, -0x1.ac23600a95be4p+0, -0x1.3224e6f068155p-1}},
    {0x1.8de76816d8p+51, {-0x1.c8795e9bfa81dp-1, -0x1.cfca5b25e35a3p-2, 0x1.f7ec52906f245p+0, 0x1.041a68b9621dp-1}},
    {0x1.91508581d3fffp+51, {0x1.1971087b84e5dp-2, -0x1.ec4837ac6a715p-1, -0x1.24b6e3d59b26ep-2, -0x1.bfc7fa234212p+1}},
    {0x1.5798ee2308c3ap-27, {0x1.5798ee2308c3ap-27, 0x1p+0, 0x1.5798ee2308c3ap-27, 0x1.7d784p+26}},
    {0x1.921fb54442d18p-1, {0x1.6a09e667f3bccp-1, 0x1.6a09e667f3bcdp-1, 0x1.fffffffffffffp-1, 0x1p+0}},
    {0x1.908b1p+26, {0x1.3bea84fae5f62p-3, 0x1.f9df309c51722p-1, 0x1.3fbe3d19ae9bcp-3, 0x1.99edd7956d104p+2}},
    {0x1.7d784p+26, {0x1.dcffca623a20bp-1, -0x1.741b388a8c029p-2, -0x1.4829e83f49589p+1, -0x1.8f6911080d41cp-2}},
    {0x1.c463abeccb2bbp+2, {0x1.6a09e667f3bcbp-1, 0x1.6a09e667f3bcep-1, 0x1.ffffffffffffbp-1, 0x1.0000000000002p+0}},
};

TEST(Trig, CloseToCorrectlyRounded) {
    RecordingHandler handler;
    double (*const fns[4])(double) = {dsin, dcos, dtan, dcot};
    for (const Row& r : kRows)
        for (int f = 0; f < 4; ++f) EXPECT_LE(ulps(fns[f](r.x), r.f[f]), 1u) << "function " << f << " x=" << r.x;
    EXPECT_TRUE(handler.reports().empty());
}

// Next to a pole the tangent is -1/r for a tiny reduced argument r: its
// relative accuracy is that of r, so r's low part must be carried in full
// (a second-order term of an unnormalised low part once cost 2^-42 here).
TEST(Trig, NextToPoles) {
    struct Pole {
        double x, tan, cot;  // correctly rounded (MPFR)
    };
    constexpr Pole poles[] = {
        {1572.3671231216915, -0x1.9a74bbf1ce9e3p+47, -0x1.3f552891590a4p-48},  // 1001 pi/2
        {102.10176124166829, -0x1.73184db46efb2p+47, -0x1.61341341f5289p-48},  // 65 pi/2
        {15707961.697152639, 0x1.946cfb27591bp+30, 0x1.441819445efd2p-31},     // about 10^7 pi/2
        {103672559.1392595, 0x1.5b6d1ff77c00ap+29, 0x1.7944022a25354p-30},     // below 1.05e8
    };
    for (const Pole& p : poles) {
        EXPECT_LE(ulps(dtan(p.x), p.tan), 1u) << p.x;
        EXPECT_LE(ulps(dcot(p.x), p.cot), 1u) << p.x;
    }
}

TEST(Trig, ZerosAndSymmetry) {
    EXPECT_EQ(bits(dsin(0.0)), 0u);
    EXPECT_EQ(bits(dsin(-0.0)), 0x8000000000000000u);
    EXPECT_EQ(dcos(0.0), 1.0);
    EXPECT_EQ(dcos(-0.0), 1.0);
    EXPECT_EQ(bits(dtan(-0.0)), 0x8000000000000000u);
    EXPECT_EQ(bits(ssin(-0.0f)), 0x80000000u);
    EXPECT_EQ(scos(-0.0f), 1.0f);
    EXPECT_EQ(dsin(0x1p-1074), 0x1p-1074);  // sin x = x below about 2^-26
    EXPECT_EQ(dtan(-0x1p-1060), -0x1p-1060);
    // Odd and even on every path, bit for bit.
    std::uint64_t s = 1;
    for (int i = 0; i < 2000; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        double x;
        const std::uint64_t b = (s >> 12) | 0x3C00000000000000u;  // 2^-63 .. 2^961, then limited
        std::memcpy(&x, &b, sizeof x);
        if (x >= 3.5e15) x = static_cast<double>(s >> 13) * 0x1p-20;
        EXPECT_EQ(bits(dsin(-x)), bits(dsin(x)) ^ 0x8000000000000000u) << x;
        EXPECT_EQ(bits(dcos(-x)), bits(dcos(x))) << x;
        EXPECT_EQ(bits(dtan(-x)), bits(dtan(x)) ^ 0x8000000000000000u) << x;
        EXPECT_EQ(bits(dcot(-x)), bits(dcot(x)) ^ 0x8000000000000000u) << x;
        const float xf = static_cast<float>(x < 823000.0 ? x : x * 0x1p-40);
        EXPECT_EQ(bits(ssin(-xf)), bits(ssin(xf)) ^ 0x80000000u) << xf;
        EXPECT_EQ(bits(scos(-xf)), bits(scos(xf))) << xf;
    }
}

TEST(Trig, RealFourCorrectlyRounded) {
    struct RowF {
        float x, f[4];
    };
    constexpr RowF rows[] = {
        {0x1p+0f, {0x1.aed548p-1f, 0x1.14a28p-1f, 0x1.8eb246p+0f, 0x1.48c05ep-1f}},
        {0x1p+1f, {0x1.d18f6ep-1f, -0x1.aa2266p-2f, -0x1.17af62p+1f, -0x1.d4a42ep-2f}},
        {-0x1.8p+1f, {-0x1.210386p-3f, -0x1.fae04cp-1f, 0x1.23ef72p-3f, 0x1.c0f9e6p+2f}},
        {0x1.86ap+16f, {0x1.24daaap-5f, -0x1.ffac38p-1f, -0x1.250a9ep-5f, -0x1.bf480ap+4f}},
        {0x1.91dafep+19f, {-0x1.a6c77ep-5f, -0x1.ff5154p-1f, 0x1.a757ecp-5f, 0x1.359c8cp+4f}},  // < 823000
        {0x1.5798eep-27f, {0x1.5798eep-27f, 0x1p+0f, 0x1.5798eep-27f, 0x1.7d784p+26f}},
        {0x1.921fb6p-1f, {0x1.6a09e6p-1f, 0x1.6a09e6p-1f, 0x1p+0f, 0x1.fffffep-1f}},
    };
    for (const RowF& r : rows) {
        EXPECT_EQ(ssin(r.x), r.f[0]) << r.x;
        EXPECT_EQ(scos(r.x), r.f[1]) << r.x;
        EXPECT_EQ(stan(r.x), r.f[2]) << r.x;
        EXPECT_EQ(scot(r.x), r.f[3]) << r.x;
    }
}

// Refused arguments: 203 for sine and cosine, 213 for tangent and
// cotangent, 202 and 211 for REAL(4): direct form, one REAL(8) or REAL(4)
// operand; NaN is refused like Inf.
TEST(Trig, RefusedArgumentsReport) {
    RecordingHandler handler;
    const double refused[] = {3.53e15, -3.53e15, 1e300, kInf, -kInf, kNaN};
    for (double x : refused) {
        handler.clear();
        EXPECT_EQ(bits(dsin(x)), kNaNBits) << x;
        EXPECT_EQ(bits(dcos(x)), kNaNBits) << x;
        EXPECT_EQ(bits(dtan(x)), kNaNBits) << x;
        EXPECT_EQ(bits(dcot(x)), kNaNBits) << x;
        ASSERT_EQ(handler.numbers(), (std::vector<std::int32_t>{203, 203, 213, 213})) << x;
        for (const Report& r : handler.reports()) {
            EXPECT_EQ(r.count, 1u);
            EXPECT_EQ(r.type1, MIVOR_TYPE_REAL8);
            EXPECT_EQ(bits(r.shown1<double>()), bits(x));
            EXPECT_TRUE(r.cleared);
        }
    }
    // The largest accepted argument is the double below 3.53e15.
    handler.clear();
    EXPECT_LE(ulps(dsin(0x1.91508581d3fffp+51), 0x1.1971087b84e5dp-2), 1u);
    EXPECT_TRUE(handler.reports().empty());

    handler.clear();
    EXPECT_TRUE(ssin(823000.0f) != ssin(823000.0f));
    EXPECT_TRUE(scos(-kInf) != scos(-kInf));
    EXPECT_TRUE(stan(823000.0f) != stan(823000.0f));
    EXPECT_TRUE(scot(std::numeric_limits<float>::quiet_NaN()) != 0.0f);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{202, 202, 202, 202, 211, 211, 211}));
    EXPECT_EQ(handler.reports()[0].type1, MIVOR_TYPE_REAL4);
    EXPECT_EQ(handler.reports()[0].shown1<float>(), 823000.0f);
    EXPECT_FALSE(ssin(822999.9375f) != ssin(822999.9375f));
}

TEST(Trig, FinitesWithoutIeeeResults) {
    RecordingHandler handler;
    jwe_lca.ieee_results = 0;
    EXPECT_EQ(bits(dsin(kInf)), kSubstitute);  // sin(pi/4): inside [-1, 1] on purpose
    EXPECT_EQ(bits(dcos(kNaN)), kSubstitute);
    EXPECT_EQ(dtan(3.53e15), 1.0);
    EXPECT_EQ(dcot(-kInf), 1.0);
    EXPECT_EQ(bits(ssin(kInf)), 0x3F3504F3u);
    EXPECT_EQ(bits(scos(1e6f)), 0x3F3504F3u);
    EXPECT_EQ(stan(1e6f), 1.0f);
    EXPECT_EQ(bits(dcot(0.0)), kHuge);
    EXPECT_EQ(bits(dcot(-0.0)), kHuge);
    EXPECT_EQ(bits(scot(0.0f)), 0x7F7FFFEEu);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{203, 203, 213, 213, 202, 202, 211, 214, 214, 212}));
}

TEST(Trig, CotangentOfZeroReports) {
    RecordingHandler handler;
    EXPECT_EQ(dcot(0.0), kInf);
    EXPECT_EQ(dcot(-0.0), kInf);  // +Inf for either sign, as the fallback is defined
    EXPECT_EQ(scot(-0.0f), std::numeric_limits<float>::infinity());
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{214, 214, 212}));
    EXPECT_EQ(bits(handler.reports()[1].shown1<double>()), 0x8000000000000000u);
    handler.clear();
    EXPECT_EQ(dtan(0.0), 0.0);  // no quotient by zero for the tangent
    EXPECT_TRUE(handler.reports().empty());
}

// A retry starts again from the top with the corrected argument, which may
// be refused again (and reported again) or computed.
TEST(Trig, RetryWithCorrectedArgument) {
    int calls = 0;
    RecordingHandler handler([&](const Report&, jwe_control_area& a) {
        ++calls;
        if (calls == 1) {
            *static_cast<double*>(a.first_operand) = 1e300;  // still refused
        } else {
            *static_cast<double*>(a.first_operand) = 0.5;
        }
        return true;
    });
    EXPECT_EQ(dsin(kNaN), dsin(0.5));
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(bits(handler.reports()[1].shown1<double>()), bits(1e300));

    calls = 1;
    handler.clear();
    EXPECT_EQ(dcot(0.0), dcot(0.5));
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{214}));

    handler.decide([](const Report&, jwe_control_area& a) {
        *static_cast<float*>(a.first_operand) = 2.0f;
        return true;
    });
    handler.clear();
    EXPECT_EQ(bits(scos(kInf)), bits(scos(2.0f)));
    EXPECT_EQ(bits(stan(kInf)), bits(stan(2.0f)));
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{202, 211}));
}

// pk_: both lanes through the two-lane kernel when both |x| <= 1.05e8,
// otherwise lane 0 and then lane 1 through the scalar function, reports
// included.  The kernel's results equal the scalar ones except where the
// ladder's constants and the kernel's split pi/2 round differently (within
// an ulp, below 9pi/4).
TEST(Trig, PackedForms) {
    RecordingHandler handler;
    std::uint64_t s = 5;
    for (int i = 0; i < 3000; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        const double x0 = static_cast<double>(s >> 11) * 0x1p-53 * 200.0 - 100.0;
        const double x1 = static_cast<double>(s >> 20) * 0x1p-44 * 2e8 - 1e8;
        const __m128d v = _mm_set_pd(x1, x0);
        const __m128d ps = pk_dsin(v), pc = pk_dcos(v);
        const std::uint64_t tol0 = (x0 < 7.07 && x0 > -7.07) ? 1u : 0u;
        EXPECT_LE(ulps(lane(ps, 0), dsin(x0)), tol0) << x0;
        EXPECT_LE(ulps(lane(pc, 0), dcos(x0)), tol0) << x0;
        EXPECT_EQ(bits(lane(ps, 1)), bits(dsin(x1))) << x1;
        EXPECT_EQ(bits(lane(pc, 1)), bits(dcos(x1))) << x1;
    }
    EXPECT_TRUE(handler.reports().empty());
    // One lane beyond 1.05e8: both lanes through the scalar functions.
    const __m128d big = pk_dsin(_mm_set_pd(2e8, 1.0));
    EXPECT_EQ(bits(lane(big, 0)), bits(dsin(1.0)));
    EXPECT_EQ(bits(lane(big, 1)), bits(dsin(2e8)));
    // A refused lane reports once, the other lane is computed.
    const __m128d bad = pk_dcos(_mm_set_pd(1.0, kInf));
    EXPECT_EQ(bits(lane(bad, 0)), kNaNBits);
    EXPECT_EQ(bits(lane(bad, 1)), bits(dcos(1.0)));
    const __m128d nan = pk_dsin(_mm_set_pd(kNaN, 2.0));  // a NaN lane fails the range test
    EXPECT_EQ(bits(lane(nan, 0)), bits(dsin(2.0)));
    EXPECT_EQ(bits(lane(nan, 1)), kNaNBits);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{203, 203}));
    EXPECT_EQ(bits(lane(pk_dsin(_mm_set_pd(-0.0, 0.0)), 1)), 0x8000000000000000u);
}

}  // namespace
