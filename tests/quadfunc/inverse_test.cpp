// REAL(16) inverse circular functions in radians, degrees and quadrants
// through the exports: exact right angles, correctly rounded values, the
// sign rules of ATAN2, the domain reports and ATAN2's two zeros with a
// correcting handler and both fallbacks.
#include <gtest/gtest.h>

#include <vector>

#include "quadfunc/quad_support.h"

namespace {

using namespace mivor::testing;

constexpr mivor_real16 kPiQ = q(0x4000921F, 0xB54442D1, 0x8469898C, 0xC51701B8);
constexpr mivor_real16 kPiOver2Q = q(0x3FFF921F, 0xB54442D1, 0x8469898C, 0xC51701B8);
constexpr mivor_real16 kPiOver4Q = q(0x3FFE921F, 0xB54442D1, 0x8469898C, 0xC51701B8);
constexpr mivor_real16 k3PiOver4Q = q(0x40002D97, 0xC7F3321D, 0x234F2729, 0x93D1414A);

TEST(QuadInverse, RightAnglesAndSimpleFractionsAreExact) {
    RecordingHandler handler;
    EXPECT_Q(call(g_qasind, kOne), qd(90));
    EXPECT_Q(call(g_qasind, neg(kOne)), qd(-90));
    EXPECT_Q(call(g_qasinq, kOne), kOne);
    EXPECT_Q(call(g_qacosd, neg(kOne)), qd(180));
    EXPECT_Q(call(g_qacosd, kZero), qd(90));
    EXPECT_Q(call(g_qacosq, neg(kOne)), qd(2));
    EXPECT_Q(call(g_qacosq, kZero), kOne);
    EXPECT_Q(call(g_qacos, kOne), kZero);
    EXPECT_Q(call(g_qacosd, kOne), kZero);
    EXPECT_Q(call(g_qatand, kOne), qd(45));
    EXPECT_Q(call(g_qatand, kMInfQ), qd(-90));
    EXPECT_Q(call(g_qatanq, kInfQ), kOne);
    EXPECT_Q(call(g_qasind, qd(0.5)), qd(30));
    EXPECT_Q(call(g_qacosd, qd(0.5)), qd(60));
    EXPECT_Q(call(g_qatan2d, kOne, kZero), qd(90));
    EXPECT_Q(call(g_qatan2d, kZero, neg(kOne)), qd(180));
    EXPECT_Q(call(g_qatan2d, qd(-3), qd(-3)), qd(-135));
    EXPECT_Q(call(g_qatan2q, neg(kOne), neg(kOne)), qd(-1.5));
    EXPECT_Q(call(g_qatan2q, qd(7), qd(7)), qd(0.5));
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadInverse, CorrectlyRoundedValues) {
    // MPFR, 113 bits, to nearest.
    EXPECT_Q(call(g_qasin, kOne), kPiOver2Q);
    EXPECT_Q(call(g_qacos, neg(kOne)), kPiQ);
    EXPECT_Q(call(g_qatan, kOne), kPiOver4Q);
    EXPECT_Q(call(g_qatan2, kOne, neg(kOne)), k3PiOver4Q);
    EXPECT_Q(call(g_qacos, qd(0.5)), q(0x3FFF0C15, 0x2382D736, 0x58465BB3, 0x2E0F567B));
    EXPECT_Q(call(g_qatan, qd(2)), q(0x3FFF1B6E, 0x192EBBE4, 0x46C6D19A, 0xA220A39B));
    EXPECT_Q(call(g_qatan2, kOne, qd(-3)), q(0x400068F0, 0x95FDF593, 0xC2208322, 0xA54C7059));
    EXPECT_Q(call(g_qasin, qd(0.3)), q(0x3FFD3801, 0x59E14F6F, 0xE8151747, 0xF9E9581A));  // 0.3 as a double
    EXPECT_Q(call(g_qacosq, qd(0.3)), q(0x3FFE9CAF, 0x85CFEF4F, 0x4EA4DB79, 0x780ECEE6));
    // Scaled into a tiny range: degrees of 1e-4000; quadrants of the least
    // normal number fall below it and give zero (no subnormal results).
    EXPECT_Q(call(g_qasind, q(0x0C17387A, 0xE70C9E70, 0x0B804973, 0x2D11A23D)),
             q(0x0C1D17BF, 0x29310A27, 0xCA5C4699, 0x31F34143));
    EXPECT_Q(call(g_qatanq, q(0x00010000)), kZero);
    EXPECT_Q(call(g_qatanq, q(0x80010000)), kMZero);
}

TEST(QuadInverse, ZerosInfinitiesAndNaNs) {
    RecordingHandler handler;
    for (Q1 f : {g_qatan, g_qatand, g_qatanq, g_qasin, g_qasind, g_qasinq}) {
        EXPECT_Q(call(f, kMZero), kMZero);
        EXPECT_Q(call(f, q(0xFFFF8000, 0, 0, 3)), q(0xFFFF8000, 0, 0, 3));
        EXPECT_Q(call(f, q(0x7FFF0000, 0, 5, 0)), q(0x7FFF8000, 0, 5, 0));
    }
    EXPECT_Q(call(g_qatan, kInfQ), kPiOver2Q);
    EXPECT_Q(call(g_qacos, kMZero), kPiOver2Q);
    // ATAN2 counts a zero of either sign as +0: atan2(-0, -1) is +pi.
    EXPECT_Q(call(g_qatan2, kMZero, neg(kOne)), kPiQ);
    EXPECT_Q(call(g_qatan2, kMZero, kOne), kZero);
    EXPECT_Q(call(g_qatan2, kOne, kMZero), kPiOver2Q);
    EXPECT_Q(call(g_qatan2, neg(kOne), kMZero), neg(kPiOver2Q));
    EXPECT_Q(call(g_qatan2, kInfQ, kMInfQ), k3PiOver4Q);
    EXPECT_Q(call(g_qatan2, kMInfQ, kInfQ), neg(kPiOver4Q));
    EXPECT_Q(call(g_qatan2, neg(kOne), kInfQ), kMZero);
    EXPECT_Q(call(g_qatan2, kMZero, kMInfQ), kPiQ);
    EXPECT_Q(call(g_qatan2, neg(kOne), kMInfQ), neg(kPiQ));
    EXPECT_Q(call(g_qatan2d, kMInfQ, qd(5)), qd(-90));
    EXPECT_Q(call(g_qatan2q, kInfQ, kMInfQ), qd(1.5));
    EXPECT_Q(call(g_qatan2, kNaNQ, kZero), kNaNQ);
    EXPECT_Q(call(g_qatan2, kZero, q(0x7FFF0000, 0, 0, 9)), q(0x7FFF8000, 0, 0, 9));
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadInverse, ArgumentsBeyondOneAreReportedWithTheRangeEndAsSubstitute) {
    struct Case {
        Q1 f;
        int number;
        mivor_real16 above, below;  // substitutes for x > 1 and x < -1
    };
    const Case cases[] = {
        {g_qasin, 219, kPiOver2Q, neg(kPiOver2Q)}, {g_qacos, 219, kZero, kPiQ},
        {g_qasind, 1405, qd(90), qd(-90)},          {g_qacosd, 1405, kZero, qd(180)},
        {g_qasinq, 1400, kOne, neg(kOne)},          {g_qacosq, 1400, kZero, qd(2)},
    };
    RecordingHandler handler;
    const mivor_real16 just_above = q(0x3FFF0000, 0, 0, 1);
    for (const Case& c : cases) {
        for (const mivor_real16& x : {just_above, qd(2), kInfQ, neg(just_above), kMInfQ}) {
            handler.clear();
            jwe_lca.ieee_results = 1;
            EXPECT_Q(call(c.f, x), kNaNQ);
            jwe_lca.ieee_results = 0;
            EXPECT_Q(call(c.f, x), (x.w[3] >> 31) ? c.below : c.above);
            ASSERT_EQ(handler.reports().size(), 2u);
            expect_report(handler.reports()[0], c.number, x);
        }
    }
}

TEST(QuadInverse, Atan2OfTwoZerosDescribesNoOperand) {
    RecordingHandler handler;
    const Q2 fns[] = {g_qatan2, g_qatan2d, g_qatan2q};
    const int numbers[] = {222, 1406, 1401};
    for (int i = 0; i < 3; ++i) {
        handler.clear();
        jwe_lca.ieee_results = 1;
        EXPECT_Q(call(fns[i], kMZero, kZero), kNaNQ);
        jwe_lca.ieee_results = 0;
        EXPECT_Q(call(fns[i], kZero, kMZero), kZero);
        ASSERT_EQ(handler.reports().size(), 2u);
        const Report& r = handler.reports()[0];
        EXPECT_EQ(r.number, numbers[i]);
        EXPECT_EQ(r.count, 0u);
        EXPECT_NE(r.first_operand, nullptr);
        EXPECT_NE(r.second_operand, nullptr);
        EXPECT_TRUE(r.cleared);
    }
}

TEST(QuadInverse, RetryWithCorrectedOperands) {
    // ATAN2: the handler sets x to -1 through the second operand's copy.
    RecordingHandler handler([](const Report& r, jwe_control_area&) {
        const mivor_real16 v = neg(kOne);
        std::memcpy(r.second_operand, &v, sizeof v);
        return true;
    });
    mivor_real16 y = kZero, x = kZero;
    EXPECT_EQ(g_qatan2d(&x, &y, &x), &x);  // the result shares x
    EXPECT_Q(x, qd(180));
    handler.decide(correct_to(qd(0.5)));
    EXPECT_Q(call(g_qasind, qd(3)), qd(30));
    handler.decide(correct_to(neg(kOne)));
    mivor_real16 a = kMInfQ;
    EXPECT_EQ(g_qacos(&a, &a), &a);
    EXPECT_Q(a, kPiQ);
    EXPECT_EQ(handler.numbers(), (std::vector<std::int32_t>{1406, 1405, 219}));
}

}  // namespace
