// REAL(16) hyperbolic functions through the exports: exact values,
// correctly rounded values on both sides of where the series hands over,
// the tie of cosh near 0, the overflow reports with a correcting handler
// and both fallbacks.
#include <gtest/gtest.h>

#include <vector>

#include "quadfunc/quad_support.h"

namespace {

using namespace mivor::testing;

TEST(QuadHyperbolic, ExactValues) {
    RecordingHandler handler;
    EXPECT_Q(call(g_qcosh, kMZero), kOne);
    EXPECT_Q(call(g_qsinh, kMZero), kMZero);
    EXPECT_Q(call(g_qtanh, kMZero), kMZero);
    EXPECT_Q(call(g_qtanh, kInfQ), kOne);
    EXPECT_Q(call(g_qtanh, kMInfQ), neg(kOne));
    EXPECT_Q(call(g_qtanh, qd(40)), kOne);
    EXPECT_Q(call(g_qtanh, qd(-1e6)), neg(kOne));
    EXPECT_Q(call(g_qtanh, q(0x7FFF0000, 0, 0, 1)), q(0x7FFF8000, 0, 0, 1));
    // Tiny arguments: sinh x and tanh x round to x, cosh x to 1.
    EXPECT_Q(call(g_qsinh, pow2q(-100)), pow2q(-100));
    EXPECT_Q(call(g_qtanh, neg(pow2q(-100))), neg(pow2q(-100)));
    EXPECT_Q(call(g_qcosh, pow2q(-100)), kOne);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadHyperbolic, CorrectlyRoundedValues) {
    // MPFR, 113 bits, to nearest.
    EXPECT_Q(call(g_qsinh, kOne), q(0x3FFF2CD9, 0xFC44EB98, 0x25A80249, 0x487F0650));
    EXPECT_Q(call(g_qcosh, neg(kOne)), q(0x3FFF8B07, 0x551D9F55, 0x04C2BD28, 0x100196A5));
    EXPECT_Q(call(g_qtanh, kOne), q(0x3FFE85EF, 0xAB514F39, 0x4558632B, 0xE293C427));
    EXPECT_Q(call(g_qtanh, qd(0.75)), q(0x3FFE4532, 0x3E552F22, 0x8273AB06, 0x57EF1F62));
    // Just below 1/2: the series.
    EXPECT_Q(call(g_qsinh, q(0x3FFDFFE5, 0xC91D14E3, 0xBCD35A85, 0x8793DD98)),
             q(0x3FFE0ABE, 0x396570B5, 0x8E7490EA, 0xD1A32FCB));
    // 1 + x^2/2 is a tie for x = 2^-56; x^4/24 sends it up.
    EXPECT_Q(call(g_qcosh, pow2q(-56)), q(0x3FFF0000, 0, 0, 1));
    // Next to the overflow limit.
    EXPECT_Q(call(g_qsinh, qd(11357)), q(0x7FFE9C4E, 0xE6CCD991, 0x98CFAE8C, 0xA4DB64A7));
    EXPECT_Q(call(g_qcosh, q(0xC00C62E9, 0x99999999, 0x99999999, 0x9999999A)),
             q(0x7FFEF798, 0x298C3556, 0x85F30D11, 0x3590EDAB));  // -11357.2
}

TEST(QuadHyperbolic, OverflowIsReportedWithTheSignOfTheResult) {
    RecordingHandler handler;
    struct Case {
        Q1 f;
        mivor_real16 x, ieee, substitute;
    };
    const Case cases[] = {
        {g_qsinh, qd(11357.3), kInfQ, kHugeQ},       {g_qsinh, qd(-11357.3), kMInfQ, kMHugeQ},
        {g_qsinh, kMInfQ, kMInfQ, kMHugeQ},          {g_qsinh, q(0xFFFF8000), kMInfQ, kMHugeQ},
        {g_qcosh, qd(-11357.3), kInfQ, kHugeQ},      {g_qcosh, qd(1e9), kInfQ, kHugeQ},
        {g_qcosh, kMInfQ, kInfQ, kHugeQ},            {g_qcosh, kNaNQ, kInfQ, kHugeQ},
    };
    for (const Case& c : cases) {
        handler.clear();
        jwe_lca.ieee_results = 1;
        EXPECT_Q(call(c.f, c.x), c.ieee);
        jwe_lca.ieee_results = 0;
        EXPECT_Q(call(c.f, c.x), c.substitute);
        ASSERT_EQ(handler.reports().size(), 2u) << hex(c.x);
        expect_report(handler.reports()[0], 225, c.x);
    }
}

TEST(QuadHyperbolic, RetryWithACorrectedArgument) {
    RecordingHandler handler(correct_to(kOne));
    mivor_real16 x = qd(20000);
    EXPECT_EQ(g_qcosh(&x, &x), &x);
    EXPECT_Q(x, call(g_qcosh, kOne));
    handler.decide(correct_to(neg(kOne)));
    EXPECT_Q(call(g_qsinh, kNaNQ), neg(call(g_qsinh, kOne)));
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{225, 225}));
}

}  // namespace
