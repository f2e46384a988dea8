// MODULO of the real kinds and MERGE of the real and complex kinds.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "mivor/mivor.h"
#include "support/bits.h"
#include "support/recording_handler.h"

namespace {

using mivor::testing::bits;
using mivor::testing::f32;
using mivor::testing::f64;
using mivor::testing::q;
using mivor::testing::RecordingHandler;
using mivor::testing::same;

float mod4(float a, float p) { return g_modlr(&a, &p); }
double mod8(double a, double p) { return g_modld(&a, &p); }
mivor_real16 mod16(mivor_real16 a, mivor_real16 p) {
    mivor_real16 r;
    EXPECT_EQ(g_modlq(&r, &a, &p), &r);
    return r;
}

TEST(Modulo, SignOfTheDivisor) {
    RecordingHandler handler;
    EXPECT_EQ(mod4(7.0f, -2.0f), -1.0f);
    EXPECT_EQ(mod4(-7.0f, 2.0f), 1.0f);
    EXPECT_EQ(mod8(-7.5, -2.0), -1.5);
    EXPECT_EQ(mod8(5.25, 0.5), 0.25);
    EXPECT_TRUE(same(mod16(q(0x4001C000), q(0xC0000000)), q(0xBFFF0000)));  // MODULO(7, -2) = -1
    EXPECT_TRUE(same(mod16(q(0xC001C000), q(0x40000000)), q(0x3FFF0000)));  // MODULO(-7, 2) = 1
    EXPECT_TRUE(handler.reports().empty());
}

TEST(Modulo, RoundedQuotientShows) {
    // 1e10 / 3 rounds to 3333333248 in REAL(4): the result is 1e10 less
    // three times that, 256, where the exact remainder is 1.
    EXPECT_EQ(mod4(1e10f, 3.0f), 256.0f);
    // A tiny negative A: FLOOR gives -1 and A + P rounds to P itself.
    EXPECT_EQ(mod4(-1e-30f, 1.0f), 1.0f);
    EXPECT_EQ(mod8(-1e-300, 1.0), 1.0);
    // Zero results are +0 whatever the signs.
    EXPECT_EQ(bits(mod4(-4.0f, 2.0f)), 0u);
    EXPECT_EQ(bits(mod8(-4.0, -2.0)), 0u);
    // Infinities go through the formula: 0 * Inf and Inf - Inf are NaNs.
    EXPECT_TRUE(std::isnan(mod8(1.0, HUGE_VAL)));
    EXPECT_TRUE(std::isnan(mod4(HUGE_VALF, 3.0f)));
    EXPECT_TRUE(std::isnan(mod8(std::nan(""), 3.0)));
}

TEST(Modulo, FloorAgreesWithTheFloorKernels) {
    // MODULO(x, 1) = x - FLOOR(x) exactly for these x: halves (ties of the
    // rounding inside), values next to integers and to 2^52 / 2^23, both
    // signs.
    const double cases[] = {0.5, 1.5, 2.5, 0.25, 0.75, 1 - 0x1p-53, 0x1p52 - 0.5, 0x1p51 + 0.5, 3, 0x1p-1074, 1e-300};
    for (double c : cases) {
        for (double x : {c, -c}) {
            EXPECT_EQ(bits(mod8(x, 1.0)), bits(x - jwe_gfld(&x))) << x;
            const float xf = static_cast<float>(x);
            if (std::fabs(xf) < 0x1p23f) {
                EXPECT_EQ(bits(mod4(xf, 1.0f)), bits(xf - jwe_gflo(&xf))) << xf;
            }
        }
    }
}

TEST(Modulo, ZeroDivisorReturnsTheTrueMaximum) {
    RecordingHandler handler([](const mivor::testing::Report&, jwe_control_area&) { return true; });
    EXPECT_EQ(bits(mod4(1.0f, -0.0f)), 0x7F7FFFFFu);
    EXPECT_EQ(bits(mod8(-3.0, 0.0)), 0x7FEFFFFFFFFFFFFFu);
    // REAL(16): word 3 alone decides, as for the operators.
    EXPECT_TRUE(same(mod16(q(0x3FFF0000), q(0x80000000, 0, 0, 9)), q(0x7FFEFFFF, ~0u, ~0u, ~0u)));
    // Short form: the retry asked for is ignored, nothing is described, and
    // byte 589 plays no part.
    jwe_lca.ieee_results = 0;
    EXPECT_EQ(bits(mod4(1.0f, 0.0f)), 0x7F7FFFFFu);
    EXPECT_EQ(handler.numbers(), std::vector<std::int32_t>(4, 1396));
    for (const auto& r : handler.reports()) EXPECT_EQ(r.count, 0u);
}

TEST(Modulo, Real16OperatorsReportThrough) {
    RecordingHandler handler;
    // HUGE / 0.5 overflows in the division (278), and the formula goes on
    // with the division's fallback.
    const mivor_real16 huge = q(0x7FFEFFFF, ~0u, ~0u, ~0u), half = q(0x3FFE0000);
    mod16(huge, half);
    ASSERT_FALSE(handler.numbers().empty());
    EXPECT_EQ(handler.numbers().front(), 278);
}

TEST(Merge, MaskWordAndCopies) {
    const float t4 = 1.0f, f4 = 2.0f;
    const std::int32_t yes = 2, minus = -1, no = 0;
    EXPECT_EQ(g_mrgr(&t4, &f4, &yes), 1.0f);
    EXPECT_EQ(g_mrgr(&t4, &f4, &minus), 1.0f);
    EXPECT_EQ(g_mrgr(&t4, &f4, &no), 2.0f);
    // By value: a signalling NaN comes back quieted, as from the x87 stack.
    const double snan = f64(0x7FF0000000000001u), d = 3.0;
    EXPECT_EQ(bits(g_mrgd(&snan, &d, &yes)), 0x7FF8000000000001u);
    EXPECT_EQ(g_mrgd(&snan, &d, &no), 3.0);

    // Through the result area: the chosen source bit for bit.
    const mivor_real16 tq = q(0x7FFF0000, 0, 0, 1), fq = q(0x3FFF0000);
    mivor_real16 rq;
    EXPECT_EQ(g_mrgq(&rq, &tq, &fq, &yes), &rq);
    EXPECT_TRUE(same(rq, tq));
    g_mrgq(&rq, &tq, &fq, &no);
    EXPECT_TRUE(same(rq, fq));
    const mivor_complex4 tc{f32(0x7F800001u), -0.0f}, fc{1.0f, 2.0f};
    mivor_complex4 rc;
    g_cmrg(&rc, &tc, &fc, &minus);
    EXPECT_EQ(bits(rc.re), 0x7F800001u);
    EXPECT_EQ(bits(rc.im), 0x80000000u);
    g_cmrg(&rc, &tc, &fc, &no);
    EXPECT_EQ(rc.re, 1.0f);
}

TEST(Merge, ComplexEightAndSixteenMayOverlapEitherSource) {
    const std::int32_t yes = 1;
    // The result area is FSOURCE itself and MASK is true: TSOURCE arrives
    // intact.
    const std::int32_t no = 0;
    mivor_complex8 t8{1.5, -2.5}, f8{7.0, 8.0};
    g_dmrg(&t8, &t8, &f8, &no);  // and the result area TSOURCE, MASK false
    EXPECT_EQ(t8.re, 7.0);
    EXPECT_EQ(t8.im, 8.0);
    t8 = {1.5, -2.5};
    g_dmrg(&f8, &t8, &f8, &yes);
    EXPECT_EQ(f8.re, 1.5);
    EXPECT_EQ(f8.im, -2.5);
    // A result area one part further on than TSOURCE: copied through a
    // local, the parts do not run into each other.
    mivor_real16 area[3] = {q(0x3FFF0000, 1, 2, 3), q(0x40000000, 4, 5, 6), q(0)};
    mivor_complex16 t16, f16{q(0x3FFF0000), q(0xC0000000)};
    std::memcpy(&t16, area, sizeof t16);
    auto* overlapping = reinterpret_cast<mivor_complex16*>(&area[1]);
    g_qmrg(overlapping, reinterpret_cast<const mivor_complex16*>(&area[0]), &f16, &yes);
    EXPECT_TRUE(same(area[1], t16.re));
    EXPECT_TRUE(same(area[2], t16.im));
    mivor_complex16 r16;
    g_qmrg(&r16, &t16, &f16, &no);
    EXPECT_TRUE(same(r16.re, f16.re) && same(r16.im, f16.im));
}

}  // namespace
