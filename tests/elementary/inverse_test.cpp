// Arcsine, arccosine and arctangents in radians, degrees and quadrants,
// REAL(8) and REAL(4), through the exports: values against correctly
// rounded references (MPFR at 300 bits), exact angles, the hand-overs
// between the rational forms, the FPATAN results, every report with its
// record, retry and both fallbacks.
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
using mivor::testing::f64;
using mivor::testing::RecordingHandler;
using mivor::testing::Report;
using mivor::testing::ulps;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr float kInfF = std::numeric_limits<float>::infinity();
constexpr double kHalfPi = 0x1.921fb54442d18p+0;
constexpr double kPi = 0x1.921fb54442d18p+1;

using Fn8 = double (*)(const double*);
using Fn4 = float (*)(const float*);
using Fn8x2 = double (*)(const double*, const double*);
using Fn4x2 = float (*)(const float*, const float*);

double call(Fn8 f, double x) { return f(&x); }
float call(Fn4 f, float x) { return f(&x); }
double call(Fn8x2 f, double y, double x) { return f(&y, &x); }
float call(Fn4x2 f, float y, float x) { return f(&y, &x); }

// asin, acos, asind, acosd, asinq, acosq.
constexpr Fn8 kAsinAcos8[6] = {g_dasin, g_dacos, g_dasind, g_dacosd, g_dasinq, g_dacosq};
constexpr Fn4 kAsinAcos4[6] = {g_asin, g_acos, g_asind, g_acosd, g_asinq, g_acosq};

// Correctly rounded values; the arguments sit on both sides of the
// hand-overs at 1/2 and sqrt(1/2).
struct Row8 {
    double x, f[6];
};
constexpr Row8 kRows8[] = {
    {0x1p-2, {0x1.02be9ce0b87cdp-2, 0x1.51700e0c14b25p+0, 0x1.cf47c7a2c056p+3, 0x1.2e17070ba7f54p+6, 0x1.49719f07a5377p-3, 0x1.ada3983e16b22p-1}},
    {0x1p-1, {0x1.0c152382d7366p-1, 0x1.0c152382d7366p+0, 0x1.ep+4, 0x1.ep+5, 0x1.5555555555555p-2, 0x1.5555555555555p-1}},
    {-0x1.6666666666666p-1, {-0x1.8d00e692afd95p-1, 0x1.2c501446cd5f1p+1, -0x1.636a8112d5c5fp+5, 0x1.0cdaa044b5718p+7, -0x1.f97b07373b692p-2, 0x1.7e5ec1cdceda5p+0}},
    {0x1.6a09e667f3bccp-1, {0x1.921fb54442d17p-1, 0x1.921fb54442d19p-1, 0x1.67fffffffffffp+5, 0x1.6800000000001p+5, 0x1.fffffffffffffp-2, 0x1.0000000000001p-1}},
    {0x1.6a09e667f3bcdp-1, {0x1.921fb54442d19p-1, 0x1.921fb54442d18p-1, 0x1.6800000000001p+5, 0x1.67fffffffffffp+5, 0x1p-1, 0x1.fffffffffffffp-2}},
    {0x1.ccccccccccccdp-1, {0x1.1ea93705fa172p+0, 0x1.cdd9f8f922e98p-2, 0x1.00a1dc60b310bp+6, 0x1.9d788e7d33bd5p+4, 0x1.6cfcf528d128cp-1, 0x1.260615ae5dae7p-2}},
    {-0x1.ff7ced916872bp-1, {-0x1.86ac9ad18f803p+0, 0x1.8c66280ae928ep+1, -0x1.5dbff09a7ca0bp+6, 0x1.62dff84d3e506p+7, -0x1.f16c00dbb6effp-1, 0x1.f8b6006ddb77fp+0}},
    {0x1.4f8b588e368f1p-17, {0x1.4f8b588e4e94p-17, 0x1.921f0d7e968a6p+0, 0x1.2c6517efda99fp-11, 0x1.67ff69cd74081p+6, 0x1.ab3a71b025d54p-18, 0x1.ffff2a62c727fp-1}},
    {0x1.fffffffffffffp-2, {0x1.0c152382d7365p-1, 0x1.0c152382d7366p+0, 0x1.dffffffffffffp+4, 0x1.e000000000001p+5, 0x1.5555555555555p-2, 0x1.5555555555556p-1}},
};
struct Row4 {
    float x, f[6];
};
constexpr Row4 kRows4[] = {
    {0x1p-2f, {0x1.02be9cp-2f, 0x1.51700ep+0f, 0x1.cf47c8p+3f, 0x1.2e1708p+6f, 0x1.4971ap-3f, 0x1.ada398p-1f}},
    {0x1p-1f, {0x1.0c1524p-1f, 0x1.0c1524p+0f, 0x1.ep+4f, 0x1.ep+5f, 0x1.555556p-2f, 0x1.555556p-1f}},
    {-0x1.666666p-1f, {-0x1.8d00e6p-1f, 0x1.2c5014p+1f, -0x1.636a8p+5f, 0x1.0cdaap+7f, -0x1.f97b06p-2f, 0x1.7e5ec2p+0f}},
    {0x1.6a09e6p-1f, {0x1.921fb4p-1f, 0x1.921fb6p-1f, 0x1.68p+5f, 0x1.68p+5f, 0x1p-1f, 0x1p-1f}},
    {0x1.ccccccp-1f, {0x1.1ea936p+0f, 0x1.cdd9fcp-2f, 0x1.00a1dcp+6f, 0x1.9d7892p+4f, 0x1.6cfcf4p-1f, 0x1.260618p-2f}},
    {-0x1.ff7ceep-1f, {-0x1.86acap+0f, 0x1.8c662ap+1f, -0x1.5dbff4p+6f, 0x1.62dffap+7f, -0x1.f16c08p-1f, 0x1.f8b604p+0f}},
    {0x1.4f8b58p-17f, {0x1.4f8b58p-17f, 0x1.921f0ep+0f, 0x1.2c6518p-11f, 0x1.67ff6ap+6f, 0x1.ab3a7p-18f, 0x1.ffff2ap-1f}},
    {0x1.fffffap-2f, {0x1.0c152p-1f, 0x1.0c1526p+0f, 0x1.dffffap+4f, 0x1.e00004p+5f, 0x1.55555p-2f, 0x1.555558p-1f}},
    {0x1.6a09e8p-1f, {0x1.921fb8p-1f, 0x1.921fb4p-1f, 0x1.680002p+5f, 0x1.67fffep+5f, 0x1.000002p-1f, 0x1.fffffep-2f}},
};

TEST(Inverse, AsinAcosCloseToCorrectlyRounded) {
    RecordingHandler handler;
    for (const Row8& r : kRows8)
        for (int f = 0; f < 6; ++f) EXPECT_LE(ulps(call(kAsinAcos8[f], r.x), r.f[f]), 1u) << "function " << f << " x=" << r.x;
    for (const Row4& r : kRows4)
        for (int f = 0; f < 6; ++f) EXPECT_EQ(call(kAsinAcos4[f], r.x), r.f[f]) << "function " << f << " x=" << r.x;
    EXPECT_TRUE(handler.reports().empty());
}

// The ends of the ranges and the angles that are whole in the unit come out
// exactly, REAL(8) and REAL(4) alike.
TEST(Inverse, ExactAngles) {
    struct Exact {
        double x;
        double f[6];
    };
    constexpr Exact rows[] = {
        {1.0, {kHalfPi, 0.0, 90.0, 0.0, 1.0, 0.0}},
        {-1.0, {-kHalfPi, kPi, -90.0, 180.0, -1.0, 2.0}},
        {0.0, {0.0, kHalfPi, 0.0, 90.0, 0.0, 1.0}},
        {0.5, {0x1.0c152382d7366p-1, 0x1.0c152382d7366p+0, 30.0, 60.0, 0x1.5555555555555p-2, 0x1.5555555555555p-1}},
    };
    for (const Exact& r : rows) {
        for (int f = 0; f < 6; ++f) {
            EXPECT_EQ(call(kAsinAcos8[f], r.x), r.f[f]) << "function " << f << " x=" << r.x;
            if (f != 2 && f != 3 && r.x == 0.5) continue;  // only degrees are whole at 1/2
            EXPECT_EQ(call(kAsinAcos4[f], static_cast<float>(r.x)), static_cast<float>(r.f[f])) << f << " " << r.x;
        }
    }
    EXPECT_EQ(bits(call(g_dasin, -0.0)), 0x8000000000000000u);
    EXPECT_EQ(bits(call(g_dasind, -0.0)), 0x8000000000000000u);
    EXPECT_EQ(bits(call(g_asinq, -0.0f)), 0x80000000u);
    // Arctangents: 45 degrees, half a quadrant, right angles and the straight one.
    EXPECT_EQ(call(g_datand, 1.0), 45.0);
    EXPECT_EQ(call(g_datanq, -1.0), -0.5);
    EXPECT_EQ(call(g_datand, -kInf), -90.0);
    EXPECT_EQ(call(g_datanq, kInf), 1.0);
    EXPECT_EQ(call(g_dtan2d, 0.0, -1.0), 180.0);
    EXPECT_EQ(call(g_dtan2d, -2.0, -2.0), -135.0);
    EXPECT_EQ(call(g_dtan2q, 5.0, 0.0), 1.0);
    EXPECT_EQ(call(g_dtan2q, kInf, -kInf), 1.5);
    EXPECT_EQ(call(g_atand, 1.0f), 45.0f);
    EXPECT_EQ(call(g_atanq, -kInfF), -1.0f);
    EXPECT_EQ(call(g_atan2d, -3.0f, -3.0f), -135.0f);
    EXPECT_EQ(call(g_atan2q, 0.0f, -1.0f), 2.0f);
    EXPECT_EQ(call(g_atan2d, kInfF, 1.0f), 90.0f);
    EXPECT_EQ(call(g_atan2, 0.0f, -1.0f), 0x1.921fb6p+1f);
    EXPECT_EQ(bits(call(g_atand, -0.0f)), 0x80000000u);
}

// Across each hand-over (1/2, sqrt(1/2), and -sqrt(1/2) for acos) the
// results of neighbouring arguments never step backwards: a wrongly placed
// coefficient or complement shows here as a jump.
TEST(Inverse, HandOversAreMonotone) {
    for (double edge : {0.5, 0x1.6a09e667f3bcdp-1, -0x1.6a09e667f3bcdp-1}) {
        double x = edge;
        for (int i = 0; i < 64; ++i) x = std::nextafter(x, -2.0);
        for (int f = 0; f < 6; ++f) {
            double xi = x, previous = call(kAsinAcos8[f], xi);
            const bool increasing = f % 2 == 0;
            for (int i = 0; i < 128; ++i) {
                xi = std::nextafter(xi, 2.0);
                const double v = call(kAsinAcos8[f], xi);
                if (increasing) EXPECT_GE(v, previous) << f << " " << xi;
                else EXPECT_LE(v, previous) << f << " " << xi;
                previous = v;
            }
        }
    }
}

TEST(Inverse, OddAndEven) {
    std::uint64_t s = 3;
    for (int i = 0; i < 2000; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        const double x = static_cast<double>(s >> 11) * 0x1p-53;
        const double y = f64((s >> 12) | 0x3C00000000000000u);  // 2^-63 .. 2^961
        EXPECT_EQ(bits(call(g_dasin, -x)), bits(call(g_dasin, x)) ^ 0x8000000000000000u) << x;
        EXPECT_EQ(bits(call(g_dasinq, -x)), bits(call(g_dasinq, x)) ^ 0x8000000000000000u) << x;
        EXPECT_EQ(bits(call(g_asind, -static_cast<float>(x))), bits(call(g_asind, static_cast<float>(x))) ^ 0x80000000u);
        EXPECT_EQ(bits(call(g_datan2, -y, x - 0.5)), bits(call(g_datan2, y, x - 0.5)) ^ 0x8000000000000000u);
        EXPECT_EQ(bits(call(g_datand, -y)), bits(call(g_datand, y)) ^ 0x8000000000000000u);
        // acos x + acos(-x) = pi: the two complements meet within an ulp of pi.
        EXPECT_LE(ulps(call(g_dacos, x) + call(g_dacos, -x), kPi), 2u) << x;
    }
}

struct Atan2Row8 {
    double y, x, f[3];
};
constexpr Atan2Row8 kAtan2Rows8[] = {
    {1.0, 2.0, {0x1.dac670561bb4fp-2, 0x1.a90a731a61dc4p+4, 0x1.2e4051d9df308p-2}},
    {-3.0, 0.5, {-0x1.67d8863bc99bdp+0, -0x1.42269501d1431p+6, -0x1.ca2b7e967ef34p-1}},
    {0x1.56e1fc2f8f359p-997, -1.0, {0x1.921fb54442d18p+1, 0x1.68p+7, 0x1p+1}},
    {2.5, -0x1.74876e8p+34, {0x1.921fb5440bd7cp+1, 0x1.67ffffffcec88p+7, 0x1.ffffffffba00cp+0}},
    {-1.0, -0x1.4f8b588e368f1p-17, {-0x1.92205d09ef188p+0, -0x1.680096328bf7dp+6, -0x1.00006ace9c6bfp+0}},
    {7.0, 0x1.c000000000001p+2, {0x1.921fb54442d18p-1, 0x1.67fffffffffffp+5, 0x1.fffffffffffffp-2}},
};
struct Atan2Row4 {
    float y, x, f[3];
};
constexpr Atan2Row4 kAtan2Rows4[] = {
    {1.0f, 2.0f, {0x1.dac67p-2f, 0x1.a90a74p+4f, 0x1.2e4052p-2f}},
    {-3.0f, 0.5f, {-0x1.67d886p+0f, -0x1.422696p+6f, -0x1.ca2b7ep-1f}},
    {0x1.4484cp-100f, -1.0f, {0x1.921fb6p+1f, 0x1.68p+7f, 0x1p+1f}},
    {-1.0f, -0x1.4f8b58p-17f, {-0x1.92205ep+0f, -0x1.680096p+6f, -0x1.00006ap+0f}},
    {7.0f, 0x1.c00002p+2f, {0x1.921fb4p-1f, 0x1.67fffep+5f, 0x1.fffffep-2f}},
};

TEST(Inverse, ArctangentsCloseToCorrectlyRounded) {
    const Fn8x2 two8[3] = {g_datan2, g_dtan2d, g_dtan2q};
    const Fn4x2 two4[3] = {g_atan2, g_atan2d, g_atan2q};
    for (const Atan2Row8& r : kAtan2Rows8)
        for (int f = 0; f < 3; ++f) EXPECT_LE(ulps(call(two8[f], r.y, r.x), r.f[f]), 1u) << f << " " << r.y << " " << r.x;
    for (const Atan2Row4& r : kAtan2Rows4)
        for (int f = 0; f < 3; ++f) EXPECT_EQ(call(two4[f], r.y, r.x), r.f[f]) << f << " " << r.y << " " << r.x;
    // One argument: atan x as atan2(x, 1).
    EXPECT_LE(ulps(call(g_datand, -3.0), -0x1.1e429cc698771p+6), 1u);
    EXPECT_LE(ulps(call(g_datanq, 0x1.2a05f2p+33), 0x1.ffffffff74018p-1), 1u);
    EXPECT_EQ(call(g_atan, -3.0f), -0x1.3fc176p+0f);
    EXPECT_EQ(call(g_atand, 0x1.ad7f2ap-24f), 0x1.808166p-18f);
    EXPECT_EQ(call(g_atanq, 0.5f), 0x1.2e4052p-2f);
}

// g_datan returns FPATAN's extended value as it stands: within an ulp of
// its 64-bit significand, more than a double holds.
TEST(Inverse, ExtendedArctangent) {
    const double one = 1.0, inf = kInf, tiny = 0x1p-600;
    const long double quarter = g_datan(&one);
    const long double kQuarterPi = 0xc90fdaa22168c235p-64L;  // pi/4 to 64 bits
    EXPECT_LE(std::fabs(static_cast<double>((quarter - kQuarterPi) * 0x1p+64L)), 1.0);
    EXPECT_NE(quarter, static_cast<long double>(static_cast<double>(quarter)));
    EXPECT_LE(std::fabs(static_cast<double>((g_datan(&inf) - 2 * kQuarterPi) * 0x1p+63L)), 1.0);
    EXPECT_EQ(g_datan(&tiny), 0x1p-600L);
    const double nan = kNaN;
    EXPECT_TRUE(std::isnan(g_datan(&nan)));
}

// |x| > 1: each unit its number; the NaN, or the nearer end of the range.
TEST(Inverse, OutOfDomain) {
    RecordingHandler handler;
    for (double x : {1.5, -1.0000000000000002, kInf})
        for (Fn8 f : kAsinAcos8) EXPECT_TRUE(std::isnan(call(f, x))) << x;
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{218, 218, 1368, 1368, 1358, 1358, 218, 218, 1368, 1368,
                                                            1358, 1358, 218, 218, 1368, 1368, 1358, 1358}));
    const Report& r = handler.reports()[6];
    EXPECT_EQ(r.count, 1u);
    EXPECT_EQ(r.type1, MIVOR_TYPE_REAL8);
    EXPECT_EQ(r.shown1<double>(), -1.0000000000000002);
    EXPECT_TRUE(r.cleared);

    handler.clear();
    jwe_lca.ieee_results = 0;
    const double clamped8[2][6] = {{kHalfPi, 0.0, 90.0, 0.0, 1.0, 0.0}, {-kHalfPi, kPi, -90.0, 180.0, -1.0, 2.0}};
    for (int f = 0; f < 6; ++f) {
        EXPECT_EQ(call(kAsinAcos8[f], 1.5), clamped8[0][f]) << f;
        EXPECT_EQ(call(kAsinAcos8[f], -1.5), clamped8[1][f]) << f;
    }
    const float clamped4[2][6] = {{0x1.921fb6p+0f, 0.0f, 90.0f, 0.0f, 1.0f, 0.0f},
                                  {-0x1.921fb6p+0f, 0x1.921fb6p+1f, -90.0f, 180.0f, -1.0f, 2.0f}};
    handler.clear();
    for (int f = 0; f < 6; ++f) {
        EXPECT_EQ(bits(call(kAsinAcos4[f], 2.0f)), bits(clamped4[0][f])) << f;
        EXPECT_EQ(bits(call(kAsinAcos4[f], -kInfF)), bits(clamped4[1][f])) << f;
    }
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{217, 217, 217, 217, 1367, 1367, 1367, 1367, 1357, 1357,
                                                            1357, 1357}));
    EXPECT_EQ(handler.reports()[0].type1, MIVOR_TYPE_REAL4);
    EXPECT_EQ(handler.reports()[0].shown1<float>(), 2.0f);
}

// A NaN is not outside [-1, 1]: it comes back a NaN, unreported.
TEST(Inverse, NaNPassesThrough) {
    RecordingHandler handler;
    for (Fn8 f : kAsinAcos8) EXPECT_TRUE(std::isnan(call(f, kNaN)));
    for (Fn4 f : kAsinAcos4) EXPECT_TRUE(std::isnan(call(f, std::numeric_limits<float>::quiet_NaN())));
    EXPECT_TRUE(std::isnan(call(g_datan2, kNaN, 0.0)));
    EXPECT_TRUE(std::isnan(call(g_atan2q, 0.0f, std::numeric_limits<float>::quiet_NaN())));
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Inverse, RetryWithCorrectedArgument) {
    int calls = 0;
    RecordingHandler handler([&](const Report& r, jwe_control_area& a) {
        ++calls;
        if (r.type1 == MIVOR_TYPE_REAL8) *static_cast<double*>(a.first_operand) = calls == 1 ? 2.0 : 0.5;
        else *static_cast<float*>(a.first_operand) = 0.5f;
        return true;
    });
    EXPECT_EQ(call(g_dacos, 3.0), 0x1.0c152382d7366p+0);  // 3 -> 2 (refused again) -> 0.5
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{218, 218}));
    EXPECT_EQ(call(g_dasind, -7.0), 30.0);
    EXPECT_EQ(call(g_acosq, 1.25f), 0x1.555556p-1f);
}

// ATAN2 of two zeros: the record names both modifiable copies (696, 700)
// and describes neither; the NaN, or +0.0 with IEEE results off.
// Otherwise a -0.0 counts as +0.0.
TEST(Inverse, Atan2OfZeros) {
    RecordingHandler handler;
    RecordingHandler::scribble();
    const std::uint32_t count_before = jwe_lca.operand_count;
    EXPECT_TRUE(std::isnan(call(g_datan2, -0.0, 0.0)));
    ASSERT_EQ(handler.numbers(), (std::vector<std::int32_t>{221}));
    EXPECT_EQ(handler.reports()[0].count, count_before);  // not written
    EXPECT_TRUE(handler.reports()[0].cleared);
    EXPECT_TRUE(std::isnan(call(g_dtan2d, 0.0, -0.0)));
    EXPECT_TRUE(std::isnan(call(g_dtan2q, 0.0, 0.0)));
    EXPECT_TRUE(std::isnan(call(g_atan2, 0.0f, 0.0f)));
    EXPECT_TRUE(std::isnan(call(g_atan2d, -0.0f, -0.0f)));
    EXPECT_TRUE(std::isnan(call(g_atan2q, 0.0f, 0.0f)));
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{221, 1370, 1360, 220, 1369, 1359}));
    jwe_lca.ieee_results = 0;
    EXPECT_EQ(bits(call(g_datan2, 0.0, -0.0)), 0u);
    EXPECT_EQ(bits(call(g_atan2q, -0.0f, 0.0f)), 0u);

    // The handler corrects x (the second copy) and retries: atan2(0, -1).
    handler.decide([](const Report&, jwe_control_area& a) {
        EXPECT_EQ(bits(*static_cast<double*>(a.first_operand)), 0x8000000000000000u);  // the copy of y
        EXPECT_EQ(bits(*static_cast<double*>(a.second_operand)), 0u);
        *static_cast<double*>(a.second_operand) = -1.0;
        return true;
    });
    EXPECT_EQ(call(g_dtan2d, -0.0, 0.0), 180.0);
    handler.decide([](const Report&, jwe_control_area& a) {
        *static_cast<float*>(a.first_operand) = 1.0f;
        return true;
    });
    EXPECT_EQ(call(g_atan2d, 0.0f, 0.0f), 90.0f);

    // The sign of a zero does not matter otherwise.
    EXPECT_EQ(call(g_datan2, -0.0, -1.0), kPi);
    EXPECT_EQ(call(g_datan2, 1.0, -0.0), kHalfPi);
    EXPECT_EQ(bits(call(g_datan2, -0.0, 1.0)), 0u);
    EXPECT_EQ(call(g_atan2, -0.0f, -1.0f), 0x1.921fb6p+1f);
    EXPECT_EQ(call(g_dtan2q, -1.0, -0.0), -1.0);
}

// The x87 paths set their own precision and rounding: a caller running at
// 53-bit precision and rounding down (as some Windows programs do) gets the
// same bits.
TEST(Inverse, IndependentOfCallersX87ControlWord) {
    const double xs[] = {0.3, -0.6, 0.71, 0.999, -1.0, 1e-3};
    // Only calls between the control-word changes; the comparison after.
    auto run = [&](std::vector<double>& out, std::vector<long double>& ext, std::vector<float>& single) {
        for (double x : xs) {
            for (Fn8 f : kAsinAcos8) out.push_back(call(f, x));
            out.push_back(call(g_dtan2d, x, 0.5));
            out.push_back(call(g_dsinh, x * 3));
            out.push_back(call(g_dtanh, x));
            ext.push_back(g_datan(&x));
            single.push_back(call(g_atan, static_cast<float>(x)));
            single.push_back(call(g_sqrt, static_cast<float>(x + 2)));
            single.push_back(call(g_cbrt, static_cast<float>(x)));
        }
    };
    std::vector<double> expected, got;
    std::vector<long double> expected_ext, got_ext;
    std::vector<float> expected_f, got_f;
    run(expected, expected_ext, expected_f);
    std::uint16_t saved, changed, after;
    __asm__ __volatile__("fnstcw %0" : "=m"(saved));
    changed = static_cast<std::uint16_t>((saved & ~0x0F00u) | 0x0200u | 0x0400u);  // 53 bits, toward -Inf
    __asm__ __volatile__("fldcw %0" : : "m"(changed));
    run(got, got_ext, got_f);
    __asm__ __volatile__("fnstcw %0" : "=m"(after));
    __asm__ __volatile__("fldcw %0" : : "m"(saved));
    EXPECT_EQ(after, changed);  // the caller's control word comes back
    for (std::size_t i = 0; i < got.size(); ++i) EXPECT_EQ(bits(got[i]), bits(expected[i])) << i;
    for (std::size_t i = 0; i < got_ext.size(); ++i) EXPECT_TRUE(got_ext[i] == expected_ext[i]) << i;
    for (std::size_t i = 0; i < got_f.size(); ++i) EXPECT_EQ(bits(got_f[i]), bits(expected_f[i])) << i;
}

}  // namespace
