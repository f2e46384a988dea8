// REAL(16) gamma, log-gamma, erf and erfc through the exports: exact
// factorials (38! is a tie), correctly rounded values, the special values
// and the gamma and log-gamma reports with a correcting handler and both
// fallbacks.
#include <gtest/gtest.h>

#include <vector>

#include "quadfunc/quad_support.h"

namespace {

using namespace mivor::testing;

constexpr mivor_real16 kTwo = q(0x40000000);

TEST(QuadGamma, FactorialsAreExact) {
    RecordingHandler handler;
    mivor_real16 f = kOne;
    for (int k = 1; k <= 39; ++k) {  // f = (k-1)!, rounded once at 38!, ties to even
        ASSERT_Q(call(g_qgamma, qd(k)), f) << k;
        const mivor_real16 kk = qd(k);
        g_aqmq(&f, &f, &kk);
    }
    EXPECT_Q(call(g_qlgama, kOne), kZero);
    EXPECT_Q(call(g_qlgama, kTwo), kZero);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadGamma, CorrectlyRoundedValues) {
    // MPFR, 113 bits, to nearest.
    EXPECT_Q(call(g_qgamma, qd(0.5)), q(0x3FFFC5BF, 0x891B4EF6, 0xAA79C3B0, 0x520D5DB9));
    EXPECT_Q(call(g_qgamma, qd(-0.5)), q(0xC000C5BF, 0x891B4EF6, 0xAA79C3B0, 0x520D5DB9));
    EXPECT_Q(call(g_qgamma, q(0x4009B6D9, 0x99999999, 0x99999999, 0x9999999A)),  // 1755.4
             q(0x7FFD5217, 0xA7C2FFFE, 0xC6733AE1, 0x6A1F8099));
    EXPECT_Q(call(g_qgamma, qd(-170.5)), q(0xBC017D23, 0x74DFCDA7, 0x9C72E0B9, 0x4041001B));
    EXPECT_Q(call(g_qgamma, pow2q(-116)), q(0x40730000));  // 1/x - gamma, rounded
    EXPECT_Q(call(g_qlgama, qd(0.5)), q(0x3FFE250D, 0x048E7A1B, 0xD0BD5F95, 0x6C6A843F));
    EXPECT_Q(call(g_qlgama, qd(-0.5)), q(0x3FFF43F8, 0x9A3F0EDD, 0x620A79AE, 0x69CD4613));
    EXPECT_Q(call(g_qlgama, qd(1.5)), q(0xBFFBEEB9, 0x5B094C19, 0x14D1A18F, 0xD62C1D35));
    // Next to the zero at 1 the result keeps its relative precision.
    EXPECT_Q(call(g_qlgama, q(0x3FFF0000, 0, 0, 1)), q(0xBF8E2788, 0xCFC6FB61, 0x8F49A37C, 0x7F0202A4));
    EXPECT_Q(call(g_qlgama, q(0x73E6A375, 0x0647FCAB, 0x18C21AB9, 0x05450CC3)),  // 1e4000
             q(0x73F3D78C, 0x5BA38B26, 0x4D9D99EF, 0x24B49110));
}

TEST(QuadGamma, SpecialValues) {
    RecordingHandler handler;
    EXPECT_Q(call(g_qlgama, kMInfQ), kInfQ);
    EXPECT_Q(call(g_qlgama, kInfQ), kInfQ);
    EXPECT_Q(call(g_qgamma, q(0xFFFF8000, 0, 1)), q(0xFFFF8000, 0, 1));
    EXPECT_Q(call(g_qlgama, q(0x7FFF0000, 0, 1)), q(0x7FFF8000, 0, 1));
    // Large negative arguments: results below 2^-16382 are zeros with the
    // sign of sin(pi x).
    EXPECT_Q(call(g_qgamma, qd(-3000.5)), kMZero);
    EXPECT_Q(call(g_qgamma, qd(-3001.5)), kZero);
    EXPECT_TRUE(handler.reports().empty());
}

TEST(QuadGamma, PolesAndOverflowAreReported) {
    struct Case {
        Q1 f;
        mivor_real16 x, ieee, substitute;
        int number;
    };
    const Case cases[] = {
        {g_qgamma, kZero, kInfQ, kHugeQ, 252},           {g_qgamma, kMZero, kMInfQ, kMHugeQ, 252},
        {g_qgamma, qd(-3), kNaNQ, kHugeQ, 252},          {g_qgamma, kMInfQ, kNaNQ, kHugeQ, 252},
        {g_qgamma, qd(1756), kInfQ, kHugeQ, 252},        {g_qgamma, kInfQ, kInfQ, kHugeQ, 252},
        {g_qgamma, q(0x00000000, 0, 0, 9), kInfQ, kHugeQ, 252},  // 1/x overflows
        {g_qlgama, kMZero, kInfQ, kHugeQ, 255},          {g_qlgama, qd(-1e20), kInfQ, kHugeQ, 255},
        {g_qlgama, kHugeQ, kInfQ, kHugeQ, 255},
    };
    RecordingHandler handler;
    for (const Case& c : cases) {
        handler.clear();
        jwe_lca.ieee_results = 1;
        EXPECT_Q(call(c.f, c.x), c.ieee);
        jwe_lca.ieee_results = 0;
        EXPECT_Q(call(c.f, c.x), c.substitute);
        ASSERT_EQ(handler.reports().size(), 2u) << hex(c.x);
        expect_report(handler.reports()[0], c.number, c.x);
    }
    handler.decide(correct_to(qd(5)));
    mivor_real16 x = qd(-2);
    EXPECT_EQ(g_qgamma(&x, &x), &x);
    EXPECT_Q(x, qd(24));
    handler.decide(correct_to(qd(3)));
    EXPECT_Q(call(g_qlgama, qd(-7)), call(g_qlgama, qd(3)));
}

TEST(QuadErf, CorrectlyRoundedValues) {
    EXPECT_Q(call(g_qerf, qd(0.25)), q(0x3FFD1AF5, 0x4E232D60, 0x89045B78, 0x16FA3530));
    EXPECT_Q(call(g_qerf, kOne), q(0x3FFEAF76, 0x7A741088, 0xAC6D0110, 0xFDBB0D27));
    EXPECT_Q(call(g_qerf, qd(3)), q(0x3FFEFFFD, 0x1AC4135F, 0x97BABE87, 0xB35B3BD6));
    EXPECT_Q(call(g_qerfc, qd(0.25)), q(0x3FFE7285, 0x58EE694F, 0xBB7DD243, 0xF482E568));
    EXPECT_Q(call(g_qerfc, kOne), q(0x3FFC4226, 0x162FBDDD, 0x4E4BFBBC, 0x0913CB64));
    EXPECT_Q(call(g_qerfc, qd(10)), q(0x3F6A7D8A, 0x7F2A8A2C, 0xF9D37388, 0xC15C764D));
    EXPECT_Q(call(g_qerfc, qd(100)), q(0x079C7EA8, 0xA677BBA8, 0x72C48330, 0x0FF9AEE0));
    EXPECT_Q(call(g_qerfc, neg(kOne)), q(0x3FFFD7BB, 0x3D3A0844, 0x56368088, 0x7EDD8693));
    EXPECT_Q(call(g_qerf, q(0x00010000)), q(0x000120DD, 0x750429B6, 0xD11AE3A9, 0x14FED7FE));
}

TEST(QuadErf, SpecialValuesAndSymmetry) {
    RecordingHandler handler;
    EXPECT_Q(call(g_qerf, kMZero), kMZero);
    EXPECT_Q(call(g_qerfc, kMZero), kOne);
    EXPECT_Q(call(g_qerf, kMInfQ), neg(kOne));
    EXPECT_Q(call(g_qerfc, kInfQ), kZero);
    EXPECT_Q(call(g_qerfc, kMInfQ), kTwo);
    EXPECT_Q(call(g_qerf, qd(9)), kOne);
    EXPECT_Q(call(g_qerfc, qd(107)), kZero);  // below 2^-16382
    EXPECT_Q(call(g_qerfc, qd(-9)), kTwo);
    EXPECT_Q(call(g_qerfc, q(0x7FFF0000, 1)), q(0x7FFF8000, 1));
    std::uint64_t s = 9;
    for (int i = 0; i < 2000; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        const mivor_real16 x = q(0x3FF80000u + static_cast<std::uint32_t>(s >> 44) % 0x90000u,
                                 static_cast<std::uint32_t>(s), static_cast<std::uint32_t>(s >> 13), 7);
        ASSERT_Q(call(g_qerf, neg(x)), neg(call(g_qerf, x)));
        // erf + erfc = 1 within the two roundings (for x where neither is
        // tiny: below 4).
        mivor_real16 sum;
        const mivor_real16 a = call(g_qerf, x), b = call(g_qerfc, x);
        g_aqaq(&sum, &a, &b);
        if ((x.w[3] >> 16) < 0x4001) {
            ASSERT_LE(ulps(sum, kOne), 2u) << hex(x);
        }
    }
    EXPECT_TRUE(handler.reports().empty());
}

}  // namespace
