// Exponentials and logarithms through the exports: exact values, the
// limits and the deliberate oddities around them, the reports with retry
// and both fallbacks, and the packed forms against the scalar ones.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::RecordingHandler;
using mivor::testing::Report;
using mivor::testing::bits;
using mivor::testing::f32;
using mivor::testing::f64;
using mivor::testing::lane;
// ulps: where the exact value is not a double, the REAL(8) functions
// promise about half an ulp, so a correctly rounded expectation may be
// missed by one.
using mivor::testing::ulps;

constexpr std::uint64_t kInf = 0x7FF0000000000000u;
constexpr std::uint64_t kMInf = 0xFFF0000000000000u;
constexpr std::uint64_t kNaN = 0x7FF8000000000000u;
constexpr std::uint64_t kHuge = 0x7FEFFFFFFFFFFFB6u;
constexpr std::uint64_t kMHuge = 0xFFEFFFFFFFFFFFB6u;

double call(double (*f)(const double*), double x) { return f(&x); }
float callf(float (*f)(const float*), float x) { return f(&x); }

// ---- exponentials -------------------------------------------------------

TEST(Exp, ExactPowersAndKnownValues) {
    RecordingHandler handler;
    EXPECT_EQ(bits(call(g_dexp, 0.0)), bits(1.0));
    EXPECT_EQ(bits(call(g_dexp, -0.0)), bits(1.0));
    EXPECT_LE(ulps(call(g_dexp, 1.0), 0x1.5bf0a8b145769p+1), 1u);
    EXPECT_LE(ulps(call(g_dexp, -1.0), 0x1.78b56362cef38p-2), 1u);
    EXPECT_LE(ulps(call(g_dexp, 700.0), 0x1.d945df4f8ec8ep+1009), 1u);
    for (int k = -1022; k <= 1023; ++k)
        ASSERT_EQ(call(g_dexp2, k), f64(std::uint64_t(k + 1023) << 52)) << k;
    double ten = 1.0;
    for (int k = 0; k <= 22; ++k, ten *= 10) ASSERT_EQ(call(g_dexp10, k), ten) << k;
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Exp, UnderflowGivesZeroOrRoundedSubnormalsWithoutReport) {
    RecordingHandler handler;
    EXPECT_EQ(bits(call(g_dexp, -f64(kInf))), 0u);
    EXPECT_EQ(bits(call(g_dexp, -709.089)), 0u);
    EXPECT_LE(ulps(call(g_dexp, -709.0), 0x0.8bfe55de02338p-1022), 1u);
    EXPECT_GT(call(g_dexp, -709.0889), 0.0);
    // The fast path's scale wraps to +0 for m = -1023: kept on purpose.
    EXPECT_EQ(bits(call(g_dexp, -708.398)), 0u);
    EXPECT_EQ(bits(call(g_dexp, -708.3978)), 0u);
    EXPECT_GT(call(g_dexp, -708.3977), 2.2e-308);
    EXPECT_GT(call(g_dexp, -708.3984375), 2.2e-308);  // guarded path, just outside the band

    // -1023 itself still passes the high-word test of the direct path.
    EXPECT_EQ(call(g_dexp2, -1023.0), 0x1p-1023);
    EXPECT_EQ(bits(call(g_dexp2, -2000.0)), 0u);
    EXPECT_LE(ulps(call(g_dexp2, -1022.5), 0x0.b504f333f9de6p-1022), 1u);
    EXPECT_EQ(bits(call(g_dexp2, -1023.5)), 0u);
    EXPECT_EQ(bits(call(g_dexp10, -307.95)), 0u);
    EXPECT_GT(call(g_dexp10, -307.9), 0.0);
    EXPECT_LT(call(g_dexp10, -307.9), 0x1p-1022);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Exp, LargestResultsBelowTheLimits) {
    RecordingHandler handler;
    EXPECT_LE(ulps(call(g_dexp, 709.78), 0x1.fe9ce5c4c52b4p+1023), 1u);
    EXPECT_LE(ulps(call(g_dexp2, 1023.5), 0x1.6a09e667f3bcdp+1023), 1u);
    EXPECT_LE(ulps(call(g_dexp2, 1023.9999), 0x1.fff6ea43bd988p+1023), 1u);
    EXPECT_LE(ulps(call(g_dexp10, 308.25), 0x1.fa788589d81d3p+1023), 1u);
    EXPECT_LE(ulps(call(g_dexp10, 305.0), 1e305), 1u);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Exp, NaNFlowsThroughUnreported) {
    RecordingHandler handler;
    const double nan = f64(kNaN);
    EXPECT_NE(call(g_dexp, nan), call(g_dexp, nan));
    EXPECT_NE(call(g_dexp2, nan), call(g_dexp2, nan));
    EXPECT_NE(call(g_dexp10, -nan), call(g_dexp10, -nan));
    EXPECT_TRUE(handler.reports().empty());
}

struct OverflowCase {
    double (*f)(const double*);
    int number;
    double at_limit;
};

TEST(Exp, OverflowReportsWithBothFallbacks) {
    const OverflowCase cases[] = {
        {g_dexp, 230, 709.782},  // below ln(DBL_MAX) on purpose: e^709.782 is finite
        {g_dexp2, 239, 1024.0},
        {g_dexp10, 242, 308.254},
    };
    for (const OverflowCase& c : cases) {
        RecordingHandler handler;
        for (double x : {c.at_limit, 5000.0, f64(kInf)}) {
            handler.clear();
            jwe_lca.ieee_results = 1;
            EXPECT_EQ(bits(call(c.f, x)), kInf) << c.number;
            jwe_lca.ieee_results = 0;
            EXPECT_EQ(bits(call(c.f, x)), kHuge) << c.number;
            ASSERT_EQ(handler.reports().size(), 2u);
            const Report& r = handler.reports()[0];
            EXPECT_EQ(r.number, c.number);
            EXPECT_EQ(r.count, 1u);
            EXPECT_EQ(r.type1, MIVOR_TYPE_REAL8);
            EXPECT_EQ(r.pad1, 0);
            EXPECT_EQ(bits(r.shown1<double>()), bits(x));
            EXPECT_TRUE(r.cleared);
            EXPECT_EQ(r.retry_pointer, &jwe_lca.retry_word);
        }
    }
}

TEST(Exp, RetryStartsAgainWithTheCorrectedArgument) {
    // The corrected value may land anywhere: the fast path, the guarded
    // path, or the same error again.
    int n = 0;
    RecordingHandler handler([&](const Report& r, jwe_control_area&) {
        double* x = static_cast<double*>(r.first_operand);
        if (++n == 1) *x = 800.0;       // still overflowing: reported again
        else if (n == 2) *x = 1.0;      // fine
        return true;
    });
    double x = 710.0;
    EXPECT_EQ(g_dexp(&x), call(g_dexp, 1.0));
    EXPECT_EQ(x, 710.0);  // the argument itself is never written
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{230, 230}));

    n = 0;
    handler.clear();
    handler.decide([&](const Report& r, jwe_control_area&) {
        *static_cast<double*>(r.first_operand) = ++n == 1 ? -5000.0 : 0.0;
        return true;
    });
    x = 1e300;
    EXPECT_EQ(bits(g_dexp2(&x)), 0u);  // corrected into the underflow branch
    x = 400.0;
    EXPECT_EQ(g_dexp10(&x), 1.0);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{239, 242}));
}

TEST(PackedExp, LanesMatchTheScalarFunctionBitForBit) {
    RecordingHandler handler;
    const __m128d r = pk_dexp(_mm_set_pd(2.0, 1.0));
    EXPECT_EQ(bits(lane(r, 0)), bits(call(g_dexp, 1.0)));
    EXPECT_EQ(bits(lane(r, 1)), bits(call(g_dexp, 2.0)));
    std::uint64_t s = 1;
    for (int i = 0; i < 20000; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        const double a = (static_cast<double>(s >> 11) * 0x1p-53 - 0.5) * 1416.0;
        const double b = -a * 0.73;
        const __m128d v = pk_dexp(_mm_set_pd(b, a));
        ASSERT_EQ(bits(lane(v, 0)), bits(call(g_dexp, a))) << a;
        ASSERT_EQ(bits(lane(v, 1)), bits(call(g_dexp, b))) << b;
    }
    // The wrap band is the packed kernel's too.
    EXPECT_EQ(bits(lane(pk_dexp(_mm_set_pd(0.0, -708.398)), 0)), 0u);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(PackedExp, ALaneOutOfRangeSendsBothThroughTheScalarPath) {
    std::vector<double> seen;
    RecordingHandler handler([&](const Report& r, jwe_control_area&) {
        seen.push_back(r.shown1<double>());
        return false;
    });
    const __m128d v = pk_dexp(_mm_set_pd(800.0, 1.0));
    EXPECT_EQ(lane(v, 0), call(g_dexp, 1.0));
    EXPECT_EQ(bits(lane(v, 1)), kInf);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{230}));
    // Both lanes out: lane 0 is reported first.
    seen.clear();
    const __m128d w = pk_dexp(_mm_set_pd(2000.0, 1000.0));
    EXPECT_EQ(bits(lane(w, 0)), kInf);
    EXPECT_EQ(bits(lane(w, 1)), kInf);
    EXPECT_EQ(seen, (std::vector<double>{1000.0, 2000.0}));
    // -800 underflows quietly, and its partner is exact.
    seen.clear();
    const __m128d u = pk_dexp(_mm_set_pd(-800.0, 0.0));
    EXPECT_EQ(lane(u, 0), 1.0);
    EXPECT_EQ(bits(lane(u, 1)), 0u);
    EXPECT_TRUE(seen.empty());
}

// ---- logarithms ---------------------------------------------------------

TEST(Log, ExactValuesAndKnownPoints) {
    RecordingHandler handler;
    EXPECT_EQ(bits(call(g_dlog, 1.0)), 0u);
    EXPECT_EQ(bits(call(g_dlog2, 1.0)), 0u);
    EXPECT_EQ(bits(call(g_dlog10, 1.0)), 0u);
    EXPECT_EQ(call(g_dlog, 2.0), 0x1.62e42fefa39efp-1);
    EXPECT_EQ(call(g_dlog, 0x1.5bf0a8b145769p+1), 1.0);
    EXPECT_EQ(call(g_dlog, 0.75), -0x1.269621134db92p-2);
    EXPECT_LE(ulps(call(g_dlog, 1e-300), -0x1.5963447f87fb5p+9), 1u);
    for (int k = -1074; k <= 1023; ++k) {
        const double x = k < -1022 ? f64(std::uint64_t{1} << (k + 1074))
                                   : f64(std::uint64_t(k + 1023) << 52);
        ASSERT_EQ(call(g_dlog2, x), k) << k;
    }
    double ten = 10.0;
    for (int k = 1; k <= 22; ++k, ten *= 10) ASSERT_EQ(call(g_dlog10, ten), k) << k;
    // Subnormals go through the scaled path.
    EXPECT_EQ(call(g_dlog, 0x1p-1074), -744.4400719213812);
    EXPECT_LE(ulps(call(g_dlog, 0x1.8p-1070), -0x1.72a189cf0df96p+9), 1u);
    // +Inf is not special: it reads as 2^1024.
    EXPECT_EQ(call(g_dlog, f64(kInf)), 709.782712893384);
    EXPECT_EQ(call(g_dlog2, f64(kInf)), 1024.0);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Log, NearOneKeepsRelativeAccuracy) {
    RecordingHandler handler;
    EXPECT_EQ(call(g_dlog, 1.0 + 0x1p-52), 0x1.fffffffffffffp-53);
    EXPECT_EQ(call(g_dlog, 1.0 - 0x1p-53), -0x1.0000000000000p-53);
    EXPECT_EQ(call(g_dlog, 1.0 + 0x1p-30), 0x1.fffffffcp-31);
    EXPECT_LE(ulps(call(g_dlog2, 1.0 + 0x1p-52), 0x1.71547652b82fdp-52), 1u);
}

TEST(Log, ZeroReportsAndFallsBackToMinusInfinityOrHuge) {
    RecordingHandler handler;
    for (double x : {0.0, -0.0}) {
        for (auto f : {g_dlog, g_dlog2, g_dlog10}) {
            handler.clear();
            jwe_lca.ieee_results = 1;
            EXPECT_EQ(bits(call(f, x)), kMInf);
            jwe_lca.ieee_results = 0;
            EXPECT_EQ(bits(call(f, x)), kMHuge);
            ASSERT_EQ(handler.numbers(), (std::vector<std::int32_t>{245, 245}));
            EXPECT_EQ(handler.reports()[0].type1, MIVOR_TYPE_REAL8);
            EXPECT_EQ(bits(handler.reports()[0].shown1<double>()), bits(x));
            EXPECT_TRUE(handler.reports()[0].cleared);
        }
    }
}

TEST(Log, NegativeGivesNaNOrTheLogOfTheMagnitude) {
    RecordingHandler handler;
    jwe_lca.ieee_results = 1;
    EXPECT_EQ(bits(call(g_dlog, -1.0)), kNaN);
    EXPECT_EQ(bits(call(g_dlog10, -f64(kInf))), kNaN);
    // IEEE results off: the sign is flipped and the log computed anew.
    jwe_lca.ieee_results = 0;
    EXPECT_EQ(call(g_dlog, -0x1.5bf0a8b145769p+1), 1.0);
    EXPECT_EQ(call(g_dlog2, -8.0), 3.0);
    EXPECT_EQ(call(g_dlog, -0x1p-1074), -744.4400719213812);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{245, 245, 245, 245, 245}));
}

TEST(Log, NaNWithIeeeResultsOffIsReportedUntilCorrected) {
    int n = 0;
    RecordingHandler handler([&](const Report& r, jwe_control_area&) {
        if (++n < 3) return false;  // declined twice: the flipped NaN comes back
        *static_cast<double*>(r.first_operand) = 8.0;
        return true;
    });
    jwe_lca.ieee_results = 0;
    EXPECT_EQ(call(g_dlog2, f64(kNaN)), 3.0);
    EXPECT_EQ(n, 3);
    // With IEEE results on, one report and the NaN.
    jwe_lca.ieee_results = 1;
    handler.clear();
    handler.decide({});
    EXPECT_EQ(bits(call(g_dlog, f64(kNaN))), kNaN);
    EXPECT_EQ(handler.reports().size(), 1u);
}

TEST(PackedLog, LanesMatchTheScalarFunctionsBitForBit) {
    RecordingHandler handler;
    std::uint64_t s = 7;
    for (int i = 0; i < 20000; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        // Positive normals of every binade, and values near 1.
        const double a = f64((s >> 2) % (0x7FE0000000000000u - 0x0010000000000000u) + 0x0010000000000000u);
        const double b = 1.0 + (static_cast<double>(s >> 11) * 0x1p-53 - 0.5) * 0x1p-4;
        const __m128d v = pk_dlog(_mm_set_pd(b, a));
        ASSERT_EQ(bits(lane(v, 0)), bits(call(g_dlog, a))) << a;
        ASSERT_EQ(bits(lane(v, 1)), bits(call(g_dlog, b))) << b;
        const __m128d w = pk_dlog10(_mm_set_pd(a, b));
        ASSERT_EQ(bits(lane(w, 0)), bits(call(g_dlog10, b))) << b;
        ASSERT_EQ(bits(lane(w, 1)), bits(call(g_dlog10, a))) << a;
    }
    EXPECT_TRUE(handler.reports().empty());
}

TEST(PackedLog, OneGoodLaneTakesBothThroughTheUncheckedKernel) {
    RecordingHandler handler;
    const __m128d v = pk_dlog(_mm_set_pd(-1.0, 2.0));
    EXPECT_EQ(lane(v, 0), 0x1.62e42fefa39efp-1);
    EXPECT_TRUE(handler.reports().empty());  // the bad lane is not reported
    const __m128d w = pk_dlog10(_mm_set_pd(0x1p-1060, 100.0));
    EXPECT_EQ(lane(w, 0), 2.0);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(PackedLog, NoGoodLaneSendsEachLaneToTheScalarFunction) {
    std::vector<double> seen;
    RecordingHandler handler([&](const Report& r, jwe_control_area&) {
        seen.push_back(r.shown1<double>());
        return false;
    });
    const __m128d v = pk_dlog(_mm_set_pd(0.0, -1.0));
    EXPECT_EQ(bits(lane(v, 0)), kNaN);
    EXPECT_EQ(bits(lane(v, 1)), kMInf);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{245, 245}));
    EXPECT_EQ(seen, (std::vector<double>{-1.0, 0.0}));
    // Subnormal lanes are fine for the scalar path: no report.
    handler.clear();
    const __m128d w = pk_dlog10(_mm_set_pd(0x1p-1074, 0x1p-1030));
    EXPECT_EQ(bits(lane(w, 0)), bits(call(g_dlog10, 0x1p-1030)));
    EXPECT_EQ(bits(lane(w, 1)), bits(call(g_dlog10, 0x1p-1074)));
    EXPECT_TRUE(handler.reports().empty());
}

// ---- REAL(4) ------------------------------------------------------------

TEST(Real4, ExactValues) {
    RecordingHandler handler;
    EXPECT_EQ(callf(g_exp, 0.0f), 1.0f);
    EXPECT_EQ(callf(g_exp, 1.0f), 0x1.5bf0a8p+1f);
    for (int k = -149; k <= 127; ++k) {
        const float p = k < -126 ? f32(1u << (k + 149)) : f32(std::uint32_t(k + 127) << 23);
        ASSERT_EQ(callf(g_exp2, static_cast<float>(k)), p) << k;
        ASSERT_EQ(callf(g_alog2, p), static_cast<float>(k)) << k;
        ASSERT_EQ(callf(g_log2, p), static_cast<float>(k)) << k;
    }
    float ten = 1.0f;
    for (int k = 0; k <= 10; ++k, ten *= 10) {
        ASSERT_EQ(callf(g_exp10, static_cast<float>(k)), ten) << k;
        ASSERT_EQ(callf(g_alog10, ten), static_cast<float>(k)) << k;
        ASSERT_EQ(callf(g_log10, ten), static_cast<float>(k)) << k;
    }
    EXPECT_EQ(bits(callf(g_alog, 1.0f)), 0u);
    EXPECT_EQ(callf(g_alog, 2.0f), 0x1.62e43p-1f);
    EXPECT_EQ(callf(g_log, 2.0f), 0x1.62e43p-1f);
    EXPECT_EQ(callf(g_alog, 0x1p-149f), -0x1.9d1dap+6f);  // subnormal argument
    EXPECT_EQ(callf(g_alog, 1.0f + 0x1p-23f), 0x1.fffffep-24f);
    EXPECT_EQ(callf(g_alog, f32(0x7F800000u)), f32(0x7F800000u));
    // Subnormal and zero results, unreported.
    EXPECT_EQ(callf(g_exp, -100.0f), 0x1.bp-145f);
    EXPECT_EQ(bits(callf(g_exp, -104.0f)), 0u);
    EXPECT_EQ(bits(callf(g_exp10, -50.0f)), 0u);
    EXPECT_EQ(bits(callf(g_exp2, -f32(0x7F800000u))), 0u);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Real4, OverflowReports) {
    RecordingHandler handler;
    const std::uint32_t inf = 0x7F800000u, huge = 0x7F7FFFEEu;
    EXPECT_EQ(callf(g_exp, 88.72f), 0x1.fe8c9p+127f);
    EXPECT_TRUE(handler.reports().empty());
    jwe_lca.ieee_results = 1;
    EXPECT_EQ(bits(callf(g_exp, 88.73f)), inf);
    EXPECT_EQ(bits(callf(g_exp10, 38.6f)), inf);
    jwe_lca.ieee_results = 0;
    EXPECT_EQ(bits(callf(g_exp, 1000.0f)), huge);
    EXPECT_EQ(bits(callf(g_exp10, f32(inf))), huge);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{229, 241, 229, 241}));
    EXPECT_EQ(handler.reports()[0].type1, MIVOR_TYPE_REAL4);
    EXPECT_EQ(handler.reports()[0].shown1<float>(), 88.73f);
    // A retry starts again with the corrected argument.
    handler.clear();
    handler.decide([](const Report& r, jwe_control_area&) {
        float* x = static_cast<float*>(r.first_operand);
        const bool first = *x > 0.0f;
        *x = first ? -1e9f : 1.0f;  // underflows quietly
        return first;
    });
    EXPECT_EQ(bits(callf(g_exp, 100.0f)), 0u);
    EXPECT_EQ(bits(callf(g_exp10, 100.0f)), 0u);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{229, 241}));
    handler.decide({});
    // g_exp2 has no error number: +Inf, whatever the flag.
    handler.clear();
    EXPECT_EQ(bits(callf(g_exp2, 128.0f)), inf);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Real4, LogReportsAndFallbacks) {
    RecordingHandler handler;
    jwe_lca.ieee_results = 1;
    EXPECT_EQ(bits(callf(g_alog, 0.0f)), 0xFF800000u);
    EXPECT_EQ(bits(callf(g_log10, -2.0f)), 0x7FC00000u);
    jwe_lca.ieee_results = 0;
    EXPECT_EQ(bits(callf(g_alog2, -0.0f)), 0xFF7FFFEEu);
    EXPECT_EQ(callf(g_alog2, -8.0f), 3.0f);
    EXPECT_EQ(callf(g_log, -1.0f), 0.0f);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{244, 244, 244, 244, 244}));
    EXPECT_EQ(handler.reports()[2].type1, MIVOR_TYPE_REAL4);

    handler.clear();
    handler.decide([](const Report& r, jwe_control_area&) {
        *static_cast<float*>(r.first_operand) = 100.0f;
        return true;
    });
    EXPECT_EQ(callf(g_alog10, 0.0f), 2.0f);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{244}));
}

}  // namespace
