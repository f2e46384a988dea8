// REAL(16) raised to a REAL(16) power, and two and ten raised to a
// REAL(16) power: exact powers and ties, correctly rounded values at known
// points (600-bit arithmetic), the special operands, the signs of negative
// bases, both ends of the range, and what every report describes, with a
// retry.
#include <gtest/gtest.h>

#include <vector>

#include "quadfunc/quad_support.h"

namespace {

using namespace mivor::testing;

mivor_real16 pw(const mivor_real16& x, const mivor_real16& y) { return call(g_aqxq, x, y); }
mivor_real16 pw(double x, double y) { return pw(qd(x), qd(y)); }
mivor_real16 two(const mivor_real16& y) { return call(g_a2xq, y); }
mivor_real16 ten(const mivor_real16& y) { return call(g_atxq, y); }

const mivor_real16 kNaN = kNaNQ;

TEST(QuadRealPower, ExactPowersAndTies) {
    RecordingHandler handler;
    for (int k = -16382; k <= 16383; ++k) {
        ASSERT_Q(two(qd(k)), pow2q(k));
        if (k % 7 == 0) {
            ASSERT_Q(pw(qd(2.0), qd(k)), pow2q(k));
        }
    }
    EXPECT_Q(pw(4.0, 0.5), qd(2.0));
    EXPECT_Q(pw(0.25, 1.5), qd(0.125));
    EXPECT_Q(pw(-3.0, 41.0), q(0xC03FFA2A, 0x1CF67B5F, 0xB8630000, 0x00000000));
    // x**1 is x, x**2 the correctly rounded square, x**3 exact when short.
    const mivor_real16 x = q(0x40003243, 0xF6A8885A, 0x308D3131, 0x98A2E037);
    mivor_real16 sq;
    g_aqmq(&sq, &x, &x);
    EXPECT_Q(pw(neg(x), kOne), neg(x));
    EXPECT_Q(pw(x, qd(2.0)), sq);
    EXPECT_Q(pw(qd(1.0 + 0x1p-30), qd(3.0)), q(0x3FFF0000, 0x000C0000, 0x00300000, 0x00400000));
    // 5^49 has 114 bits: 78125**7 lies halfway between two numbers and
    // goes to the even one, as 10**49 does.
    EXPECT_Q(pw(78125.0, 7.0), q(0x4070B5E7, 0xE08CA3A8, 0xF6987819, 0xBAECBE22));
    EXPECT_Q(ten(qd(49)), q(0x40A1B5E7, 0xE08CA3A8, 0xF6987819, 0xBAECBE22));
    mivor_real16 p = kOne, t = qd(10.0);
    for (int k = 0; k <= 48; ++k) {
        ASSERT_Q(ten(qd(k)), p);
        g_aqmq(&p, &p, &t);
    }
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadRealPower, CorrectlyRoundedAtKnownPoints) {
    EXPECT_Q(pw(1.5, 100.25), q(0x40398F9F, 0x20247E3A, 0x3710E403, 0xB3A8D032));
    EXPECT_Q(pw(0.75, -1000.5), q(0x419E2F63, 0x35DC236D, 0xEDE4CAA3, 0x0E3E61C1));
    EXPECT_Q(pw(7.0, 1e-30), q(0x3FFF0000, 0x00000000, 0x00000000, 0x00002778));
    // x next to 1 with a large y: log x carries the whole result.
    EXPECT_Q(pw(1.0 + 0x1p-40, 0x1p50), q(0x45C43F82, 0xD20BF614, 0x760BDA02, 0x60FCB6F5));
    EXPECT_Q(pw(1.003, 3000000.5), q(0x72A3C3F2, 0x8935583E, 0xB421637D, 0xA5DCBFC6));
    EXPECT_Q(pw(0.997, -3000000.5), q(0x72CAB572, 0x022F4FFA, 0x8F121A41, 0x4ED19BCC));
    EXPECT_Q(two(qd(-16000.5)), q(0x017E6A09, 0xE667F3BC, 0xC908B2FB, 0x1366EA95));
    EXPECT_Q(ten(qd(-4900.7)), q(0x00672B9E, 0x77E6F6EB, 0xA3C31024, 0x47C5C422));
}

TEST(QuadRealPower, SpecialOperandsAndSigns) {
    RecordingHandler handler;
    const mivor_real16 inf = kInfQ, minf = kMInfQ;
    struct Case {
        mivor_real16 x, y, expected;
    };
    const Case cases[] = {
        {kZero, kZero, kOne},        {kNaN, kZero, kOne},         {minf, kMZero, kOne},         {qd(-3), kZero, kOne},
        {kOne, kNaN, kOne},          {kOne, minf, kOne},          {qd(-1), inf, kOne},          {qd(-1), minf, kOne},
        {qd(-1), qd(0x1p200), kOne}, {qd(-1), qd(-7), qd(-1)},    {kZero, qd(3), kZero},        {kMZero, qd(3), kZero},
        {kMZero, qd(2.5), kZero},    {kZero, inf, kZero},         {qd(0.5), inf, kZero},        {qd(2), minf, kZero},
        {qd(-0.5), inf, kZero},      {inf, qd(-1), kZero},        {minf, qd(-3), kMZero},       {minf, qd(-2), kZero},
        {qd(-2), qd(-1), qd(-0.5)},  {qd(-0.5), qd(-3), qd(-8)},  {qd(-2), qd(2), qd(4)},
        // Results below 2^-16382 are zeros, signed for odd negative powers.
        {qd(2), qd(-16383), kZero},  {qd(-2), qd(-16383), kMZero}, {qd(0.5), qd(1e6), kZero},   {qd(-10), qd(-5001), kMZero},
    };
    for (const Case& c : cases) EXPECT_Q(pw(c.x, c.y), c.expected) << hex(c.x) << " ** " << hex(c.y);
    const mivor_real16 snan = q(0x7FFF0000, 0, 0, 1), payload = q(0xFFFF8000, 0, 0x1234, 0);
    EXPECT_Q(pw(snan, qd(2)), q(0x7FFF8000, 0, 0, 1));
    EXPECT_Q(pw(payload, snan), payload);
    EXPECT_Q(pw(qd(-2), payload), payload);
    EXPECT_Q(two(snan), q(0x7FFF8000, 0, 0, 1));
    EXPECT_Q(ten(payload), payload);
    EXPECT_Q(two(minf), kZero);
    EXPECT_Q(ten(qd(-4932.1)), kZero);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadRealPower, ParityOfLargeIntegralExponents) {
    // 2^112 + 1 is odd, 2^113 + 2 even, 2^111 + 0.5 not integral.
    const mivor_real16 odd = q(0x406F0000, 0, 0, 1), even = q(0x40700000, 0, 0, 1), half = q(0x406E0000, 0, 0, 1);
    const mivor_real16 x = q(0xBFFF0000, 0, 0, 0x1000);  // -(1 + 2^-100)
    EXPECT_TRUE(pw(x, odd).w[3] >> 31);
    EXPECT_FALSE(pw(x, even).w[3] >> 31);
    RecordingHandler handler;
    jwe_lca.ieee_results = 1;
    EXPECT_TRUE(is_nan(pw(qd(-1.0), half)));
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{271});
}

// The fallbacks themselves are checked by the report cases
// (tests/exports/report_cases.tab); here what each report describes, the
// restart with |x| and a retry.
TEST(QuadRealPower, ReportsDescribeTheirOperands) {
    RecordingHandler handler;
    jwe_lca.ieee_results = 0;
    EXPECT_Q(pw(kMZero, qd(-2.5)), kHugeQ);     // 270: the exponent alone
    EXPECT_Q(pw(qd(-4.0), qd(0.5)), qd(2.0));   // 271: goes on with |x|
    EXPECT_Q(pw(qd(-10.0), qd(4933)), kHugeQ);  // 272: not negative
    jwe_lca.ieee_results = 1;
    EXPECT_Q(pw(qd(1.5), kInfQ), kInfQ);
    EXPECT_Q(pw(kInfQ, qd(0.5)), kInfQ);
    const std::vector<Report>& r = handler.reports();
    ASSERT_EQ(handler.numbers(), (std::vector<std::int32_t>{270, 271, 272, 272, 272}));
    expect_report(r[0], 270, qd(-2.5));
    for (std::size_t i : {1u, 2u}) {
        EXPECT_EQ(r[i].count, 2u);
        EXPECT_EQ(r[i].type1, MIVOR_TYPE_REAL16);
        EXPECT_EQ(r[i].type2, MIVOR_TYPE_REAL16);
    }
    EXPECT_Q(r[2].shown1<mivor_real16>(), qd(-10.0));
    EXPECT_Q(r[2].shown2<mivor_real16>(), qd(4933));
    // A retry with a corrected base starts again from the first test.
    handler.clear();
    handler.decide(correct_to(qd(4.0)));
    EXPECT_Q(pw(kZero, qd(-0.5)), qd(0.5));
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>{270});
    // The largest results below HUGE are not refused.
    handler.clear();
    const mivor_real16 below = q(0x400CFFFF, 0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFF);
    EXPECT_EQ(two(below).w[3] >> 16, 0x7FFEu);
    EXPECT_EQ(pw(qd(2.0), below).w[3] >> 16, 0x7FFEu);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadRealPower, TwoAndTenReportTheirConstantBaseAndKeepItOnRetry) {
    struct Case {
        Q1 f;
        mivor_real16 base, over;
    };
    for (const Case& c : {Case{g_a2xq, qd(2.0), qd(16384.0)}, Case{g_atxq, qd(10.0), qd(4932.0755)}}) {
        RecordingHandler handler;
        jwe_lca.ieee_results = 1;
        EXPECT_Q(call(c.f, c.over), kInfQ);
        ASSERT_EQ(handler.reports().size(), 1u);
        const Report& r = handler.reports()[0];
        EXPECT_EQ(r.number, 272);
        EXPECT_EQ(r.count, 2u);
        EXPECT_Q(r.shown1<mivor_real16>(), c.base);
        EXPECT_Q(r.shown2<mivor_real16>(), c.over);
        // A handler that changes both copies: the exponent is taken, the
        // base stays the operator's own.
        handler.clear();
        handler.decide([](const Report& rep, jwe_control_area&) {
            const mivor_real16 b = qd(3.0), y = qd(2.0);
            std::memcpy(rep.first_operand, &b, sizeof b);
            std::memcpy(rep.second_operand, &y, sizeof y);
            return true;
        });
        mivor_real16 squared;
        g_aqmq(&squared, &c.base, &c.base);
        EXPECT_Q(call(c.f, c.over), squared);
    }
}

TEST(QuadRealPower, ResultMayShareAnOperand) {
    mivor_real16 x = qd(1.375), y = qd(-2.25);
    const mivor_real16 expected = pw(x, y);
    EXPECT_EQ(g_aqxq(&y, &x, &y), &y);
    EXPECT_Q(y, expected);
    EXPECT_EQ(g_aqxq(&x, &x, &expected), &x);
    EXPECT_Q(x, pw(qd(1.375), expected));
}

}  // namespace
