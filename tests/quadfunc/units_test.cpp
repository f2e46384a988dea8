// REAL(16) circular functions in degrees and quadrants through the exports:
// exact results at multiples of a right angle for any magnitude, exact
// simple values, correctly rounded values, poles and refusals with a
// correcting handler and both fallbacks.
#include <gtest/gtest.h>

#include <vector>

#include "quadfunc/quad_support.h"

namespace {

using namespace mivor::testing;

constexpr mivor_real16 kSqrtHalfQ = q(0x3FFE6A09, 0xE667F3BC, 0xC908B2FB, 0x1366EA95);

// sin and cos of k right angles: 0, 1, 0, -1 and 1, 0, -1, 0.
int sin_of(int k) { return (k & 1) ? ((k & 3) == 1 ? 1 : -1) : 0; }
int cos_of(int k) { return sin_of(k + 1); }

mivor_real16 as_quad(int v) { return v == 0 ? kZero : qd(v); }
// The value without the sign of a zero.
mivor_real16 unsigned_zero(mivor_real16 v) {
    if ((v.w[3] & 0x7FFFFFFFu) == 0 && (v.w[2] | v.w[1] | v.w[0]) == 0) v.w[3] = 0;
    return v;
}

TEST(QuadUnits, MultiplesOfARightAngleAreExactAtAnyMagnitude) {
    RecordingHandler handler;
    for (int k = -12; k <= 12; ++k) {
        ASSERT_Q(unsigned_zero(call(g_qsind, qd(90.0 * k))), as_quad(sin_of(k))) << k;
        ASSERT_Q(unsigned_zero(call(g_qcosd, qd(90.0 * k))), as_quad(cos_of(k))) << k;
        ASSERT_Q(unsigned_zero(call(g_qsinq, qd(k))), as_quad(sin_of(k))) << k;
        ASSERT_Q(unsigned_zero(call(g_qcosq, qd(k))), as_quad(cos_of(k))) << k;
    }
    // 90 times large integers (as REAL(16) products, exact), and numbers
    // so large that they are multiples of 360 or of 4.
    std::uint64_t s = 3;
    for (int i = 0; i < 500; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        const std::int64_t k = static_cast<std::int64_t>(s >> 12);  // below 2^52
        mivor_real16 a = qd(static_cast<double>(k)), ninety = qd(90.0), x;
        g_aqmq(&x, &a, &ninety);
        const int kk = static_cast<int>(static_cast<double>(k) - 4.0 * static_cast<double>(k / 4));
        ASSERT_Q(unsigned_zero(call(g_qsind, x)), as_quad(sin_of(kk))) << k;
        ASSERT_Q(unsigned_zero(call(g_qcosd, x)), as_quad(cos_of(kk))) << k;
    }
    EXPECT_Q(unsigned_zero(call(g_qsind, q(0x7FF66800))), kZero);  // 45 2^16370: a multiple of 360
    EXPECT_Q(call(g_qcosq, kHugeQ), kOne);                          // a multiple of 4
    EXPECT_Q(call(g_qcosq, q(0x406E0000)), kOne);                   // 2^111
    EXPECT_Q(call(g_qcosq, q(0x40700000, 0, 0, 1)), qd(-1));        // 2^113 + 2: 2 modulo 4
    EXPECT_Q(call(g_qsind, kMZero), kMZero);
    EXPECT_Q(call(g_qsind, qd(180)), kMZero);  // the quadrant's negation
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadUnits, SimpleValuesAreExact) {
    EXPECT_Q(call(g_qsind, qd(30)), qd(0.5));
    EXPECT_Q(call(g_qsind, qd(150)), qd(0.5));
    EXPECT_Q(call(g_qsind, qd(-210)), qd(0.5));
    EXPECT_Q(call(g_qcosd, qd(60)), qd(0.5));
    EXPECT_Q(call(g_qcosd, qd(-120)), qd(-0.5));
    EXPECT_Q(call(g_qtand, qd(45)), kOne);
    EXPECT_Q(call(g_qtand, qd(135)), qd(-1));
    EXPECT_Q(call(g_qcotd, qd(-45)), qd(-1));
    EXPECT_Q(call(g_qtanq, qd(0.5)), kOne);
    EXPECT_Q(call(g_qcotq, qd(-2.5)), qd(-1));
    EXPECT_Q(call(g_qsinq, qd(0.5)), kSqrtHalfQ);
}

TEST(QuadUnits, CorrectlyRoundedValues) {
    // MPFR's sinu/cosu/tanu with 360 or 4 to the full turn.
    EXPECT_Q(call(g_qsind, kOne), q(0x3FF91DF0, 0xB2B89DD1, 0xE560D35A, 0x0521E1E6));
    EXPECT_Q(call(g_qcosd, kOne), q(0x3FFEFFEC, 0x097F5AF8, 0x9B9DAE80, 0x1FF97AA1));
    EXPECT_Q(call(g_qtand, q(0x4062C7E1, 0x4AF68000, 0, 0)), q(0x3FFDC7EA, 0x074A90A0, 0xD2DD2A4C, 0x9411C83A));
    EXPECT_Q(call(g_qsinq, qd(0.3)), q(0x3FFDD0E2, 0xE2B44DE0, 0x07CC1A9C, 0x32570A2F));
    EXPECT_Q(call(g_qcosd, q(0x7E6F0000)), q(0xBFFE704D, 0x4E6A54D3, 0x886F0760, 0x34A5B973));
    EXPECT_Q(call(g_qsind, kHugeQ), q(0x3FFE9376, 0x253F463D, 0x17B68051, 0xE5A93A43));
    EXPECT_Q(call(g_qtanq, q(0x3FFEFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF)),
             q(0x406F45F3, 0x06DC9C88, 0x2A53F84E, 0xAFA3EA6A));
    // Tiny degrees: below 2^-16382 the result is zero, with its sign.
    EXPECT_Q(call(g_qsind, q(0x80010000)), kMZero);
    EXPECT_EQ(call(g_qsinq, q(0x00010000)).w[3] >> 16, 1u);
}

TEST(QuadUnits, PolesAreReported) {
    RecordingHandler handler;
    // 90 (2^100 + 1): an odd multiple of 90 far beyond 2^53.
    mivor_real16 big_odd, ninety = qd(90), m = q(0x40630000, 0, 0, 0x00001000);
    g_aqmq(&big_odd, &ninety, &m);
    struct Case {
        Q1 f;
        mivor_real16 x;
        int number;
    };
    const Case cases[] = {
        {g_qtand, qd(90), 1404},  {g_qtand, qd(-270), 1404},     {g_qtand, big_odd, 1404},
        {g_qcotd, kZero, 1404},   {g_qcotd, qd(-180), 1404},     {g_qcotd, q(0x00020000), 1404},
        {g_qtanq, qd(1), 1399},   {g_qtanq, qd(-3), 1399},       {g_qcotq, kMZero, 1399},
        {g_qcotq, qd(2), 1399},   {g_qcotq, q(0x80000000, 0, 1), 1399},
    };
    for (const Case& c : cases) {
        handler.clear();
        jwe_lca.ieee_results = 1;
        EXPECT_Q(call(c.f, c.x), kInfQ);
        jwe_lca.ieee_results = 0;
        EXPECT_Q(call(c.f, c.x), kHugeQ);
        ASSERT_EQ(handler.reports().size(), 2u) << hex(c.x);
        expect_report(handler.reports()[0], c.number, c.x);
    }
    // Next to the poles the values are large but finite.
    handler.clear();
    EXPECT_EQ(call(g_qtand, q(0x400567FF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF)).w[3] >> 16, 0x406Eu);  // 2^111.8
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadUnits, InfinitiesAndNaNs) {
    RecordingHandler handler;
    struct Case {
        Q1 f;
        int number;
        mivor_real16 substitute;
    };
    const Case cases[] = {{g_qsind, 1402, kSqrtHalfQ}, {g_qcosd, 1402, kSqrtHalfQ}, {g_qtand, 1403, kOne},
                          {g_qcotd, 1403, kOne},       {g_qtanq, 1399, kOne},       {g_qcotq, 1399, kOne}};
    for (const Case& c : cases) {
        for (const mivor_real16& x : {kInfQ, kMInfQ, kNaNQ}) {
            handler.clear();
            jwe_lca.ieee_results = 1;
            EXPECT_Q(call(c.f, x), kNaNQ);
            jwe_lca.ieee_results = 0;
            EXPECT_Q(call(c.f, x), c.substitute);
            ASSERT_EQ(handler.reports().size(), 2u);
            expect_report(handler.reports()[1], c.number, x);
        }
    }
    // The quadrant sine and cosine report nothing.
    handler.clear();
    EXPECT_Q(call(g_qsinq, kInfQ), kNaNQ);
    EXPECT_Q(call(g_qcosq, q(0xFFFF0000, 0, 0, 3)), q(0xFFFF8000, 0, 0, 3));
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadUnits, RetryWithACorrectedArgument) {
    RecordingHandler handler(correct_to(qd(45)));
    mivor_real16 x = qd(90);
    EXPECT_EQ(g_qtand(&x, &x), &x);
    EXPECT_Q(x, kOne);
    handler.decide(correct_to(qd(30)));
    EXPECT_Q(call(g_qsind, kNaNQ), qd(0.5));
    handler.decide(correct_to(qd(0.5)));
    EXPECT_Q(call(g_qcotq, qd(4)), kOne);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{1404, 1402, 1399}));
}

}  // namespace
