// The jwe_gu kernels through the exports: a chain unpack -> kernel -> round
// gives what the g_q function gives (the same kernel beneath), the
// arithmetic agrees with the REAL(16) operators, the results are
// normalised, and each kernel's stand-in outside its domain is as the
// export table states.
#include <gtest/gtest.h>

#include "quadfunc/quad_support.h"

namespace {

using namespace mivor::testing;

using K1 = mivor_work* (*)(mivor_work*, const mivor_work*);
using K2 = mivor_work* (*)(mivor_work*, const mivor_work*, const mivor_work*);

mivor_work unp(const mivor_real16& x) {
    mivor_work w;
    EXPECT_EQ(jwe_guunp(&w, &x), &w);
    return w;
}
mivor_real16 rnd(const mivor_work& w) {
    mivor_real16 r;
    EXPECT_EQ(jwe_gurnd(&r, &w), &r);
    return r;
}
mivor_real16 via(K1 k, const mivor_real16& x) {
    const mivor_work a = unp(x);
    mivor_work r;
    EXPECT_EQ(k(&r, &a), &r);
    EXPECT_TRUE((r.f[3] >> 31) != 0 || (r.f[0] | r.f[1] | r.f[2] | r.f[3]) == 0);
    return rnd(r);
}
mivor_real16 via(K2 k, const mivor_real16& x, const mivor_real16& y) {
    const mivor_work a = unp(x), b = unp(y);
    mivor_work r;
    EXPECT_EQ(k(&r, &a, &b), &r);
    return rnd(r);
}

mivor_real16 random_quad(std::uint64_t& s, std::uint32_t base, std::uint32_t spread) {
    s = s * 6364136223846793005u + 1442695040888963407u;
    const std::uint32_t top = base + static_cast<std::uint32_t>(s >> 40) % spread;
    return q(top, static_cast<std::uint32_t>(s), static_cast<std::uint32_t>(s >> 21), static_cast<std::uint32_t>(s >> 3));
}

TEST(QuadKernels, ChainsGiveTheFunctionsResults) {
    // The g_q functions round the same kernels' results once; where they
    // sum exactly at the rounding (log near 1, cosh near 0) or decide a
    // square root exactly the chain may differ by a unit in rare cases.
    struct Pair {
        K1 kernel;
        Q1 function;
        std::uint32_t base, spread;
    };
    const Pair pairs[] = {
        {jwe_gusin, g_qsin, 0x3FF00000u, 0x00200000u},  {jwe_gucos, g_qcos, 0x3FF00000u, 0x00200000u},
        {jwe_gutan, g_qtan, 0x3FF00000u, 0x00200000u},  {jwe_guexp, g_qexp, 0x3FF00000u, 0x000D0000u},
        {jwe_gulog, g_qlog, 0x3F000000u, 0x01000000u},  {jwe_gusqt, g_qsqrt, 0x3F000000u, 0x01000000u},
        {jwe_guasn, g_qasin, 0x3FF00000u, 0x000F0000u}, {jwe_guacs, g_qacos, 0x3FF00000u, 0x000F0000u},
        {jwe_gusnh, g_qsinh, 0x3FF00000u, 0x00100000u}, {jwe_gucsh, g_qcosh, 0x3FFF0000u, 0x00080000u},
        {jwe_guthn, g_qtanh, 0x3FF00000u, 0x00100000u}, {jwe_gulgm, g_qlgama, 0x3FFF0000u, 0x00040000u},
        {jwe_guerf, g_qerf, 0x3FF00000u, 0x00110000u},  {jwe_guerc, g_qerfc, 0x3FF00000u, 0x00150000u},
    };
    std::uint64_t s = 17;
    for (const Pair& p : pairs) {
        int same_bits = 0;
        for (int i = 0; i < 300; ++i) {
            const mivor_real16 x = random_quad(s, p.base, p.spread);
            const mivor_real16 a = via(p.kernel, x), b = call(p.function, x);
            ASSERT_LE(ulps(a, b), 1u) << hex(x);
            same_bits += same(a, b);
        }
        EXPECT_GE(same_bits, 297);
    }
    // ATAN2 in all four quadrants.
    for (int i = 0; i < 300; ++i) {
        mivor_real16 y = random_quad(s, 0x3FF00000u, 0x00200000u), x = random_quad(s, 0x3FF00000u, 0x00200000u);
        if (i & 1) y = neg(y);
        if (i & 2) x = neg(x);
        ASSERT_Q(via(jwe_guatn, y, x), call(g_qatan2, y, x));
    }
}

TEST(QuadKernels, ArithmeticAgreesWithTheOperators) {
    // Exact sums and products come out exact; others within a unit (the
    // chain rounds twice: to 128 bits, then to 113).
    std::uint64_t s = 23;
    for (int i = 0; i < 2000; ++i) {
        const mivor_real16 a = random_quad(s, 0x3F800000u, 0x01000000u), b = random_quad(s, 0x3F800000u, 0x01000000u);
        mivor_real16 sum, product, quotient;
        g_aqaq(&sum, &a, &b);
        g_aqmq(&product, &a, &b);
        g_aqdq(&quotient, &a, &b);
        ASSERT_LE(ulps(via(jwe_guadd, a, b), sum), 1u);
        ASSERT_LE(ulps(via(jwe_gumul, a, b), product), 1u);
        ASSERT_LE(ulps(via(jwe_gudiv, a, b), quotient), 1u);
    }
    EXPECT_Q(via(jwe_guadd, qd(1.5), qd(-3.25)), qd(-1.75));
    EXPECT_Q(via(jwe_gumul, qd(-1.5), qd(3.25)), qd(-4.875));
    EXPECT_Q(via(jwe_gusqt, qd(-0.25)), qd(0.5));  // the root of |a|
    // A working value keeps what REAL(16) cannot: (1 + 2^-120) - 1.
    mivor_work one = unp(kOne), tiny = unp(pow2q(-120)), m_one = unp(neg(kOne)), t, d;
    jwe_guadd(&t, &one, &tiny);
    jwe_guadd(&d, &t, &m_one);
    EXPECT_Q(rnd(d), pow2q(-120));
}

TEST(QuadKernels, UnpackAndRoundEdges) {
    // Subnormals come in normalised; zero keeps its sign; rounding past
    // the range gives infinities and zeros.
    const mivor_work sub = unp(q(0, 0, 0, 1));
    EXPECT_EQ(sub.f[3], 0x80000000u);
    EXPECT_EQ(sub.scale, -16493);
    EXPECT_EQ(unp(kMZero).sign, 1u);
    EXPECT_Q(rnd(unp(kMZero)), kMZero);
    EXPECT_EQ(unp(kInfQ).scale, 16385);
    const mivor_work big{{0, 0, 0, 0x80000000u}, 16385, 1}, small{{0, 0, 0, 0x80000000u}, -16382, 0};
    EXPECT_Q(rnd(big), kMInfQ);
    EXPECT_Q(rnd(small), kZero);  // 2^-16383: no subnormals
    // A fraction that is not normalised is read at its value.
    const mivor_work loose{{0, 0, 0, 0x40000000u}, 2, 0};
    EXPECT_Q(rnd(loose), kOne);
}

TEST(QuadKernels, StandInsOutsideTheDomains) {
    const mivor_work zero{}, huge_arg{{0, 0, 0, 0x80000000u}, 20, 0}, two = unp(qd(2)), distant{{0, 0, 0, 0x80000000u}, 20000, 0};
    mivor_work r;
    jwe_gudiv(&r, &two, &zero);
    EXPECT_EQ(r.f[3], 0u);
    jwe_guexp(&r, &huge_arg);
    EXPECT_EQ(r.scale, 0x7FFFFFFF);
    mivor_work minus = huge_arg;
    minus.sign = 1;
    jwe_guexp(&r, &minus);
    EXPECT_EQ(r.f[3], 0u);
    jwe_gulog(&r, &zero);
    EXPECT_EQ(r.sign, 1u);
    EXPECT_EQ(r.scale, 0x7FFFFFFF);
    jwe_gusin(&r, &distant);
    EXPECT_EQ(r.f[3], 0u);
    jwe_guthn(&r, &huge_arg);
    EXPECT_Q(rnd(r), kOne);
    EXPECT_Q(via(jwe_guasn, qd(3)), call(g_qasin, kOne));
    EXPECT_Q(via(jwe_guatn, kZero, kZero), kZero);
    mivor_work pole = unp(qd(-4));
    jwe_gulgm(&r, &pole);
    EXPECT_EQ(r.scale, 0x7FFFFFFF);
}

}  // namespace

TEST(QuadKernels, UseTheBitsBeyondReal16) {
    // Arguments with all 128 bits of the fraction: ln(1 - 2^-128) is
    // -2^-128 (1 + 2^-129), which rounds to -2^-128; a kernel that drops
    // the last bit gives ln(1 - 2^-127), twice as large.
    const mivor_work below_one{{~0u, ~0u, ~0u, ~0u}, 0, 0};
    mivor_work r;
    jwe_gulog(&r, &below_one);
    EXPECT_EQ(r.sign, 1u);
    EXPECT_EQ(r.scale, -127);
    EXPECT_EQ(r.f[3], 0x80000000u);
    EXPECT_EQ(r.f[0] | r.f[1] | r.f[2], 0u);
    // ln(1 + 2^-127) = 2^-127 - 2^-255 + ..., just below 2^-127, where a
    // unit is 2^-255: every fraction bit set.
    const mivor_work above_one{{1, 0, 0, 0x80000000u}, 1, 0};
    jwe_gulog(&r, &above_one);
    EXPECT_EQ(r.sign, 0u);
    EXPECT_EQ(r.scale, -127);
    EXPECT_EQ(r.f[3] & r.f[2] & r.f[1] & r.f[0], ~0u);
    // (1 + 2^-127) - 1 through the sum keeps the last bit.
    const mivor_work m_one = unp(neg(kOne));
    jwe_guadd(&r, &above_one, &m_one);
    EXPECT_EQ(r.scale, -126);
    EXPECT_EQ(r.f[3], 0x80000000u);
}
