// The working format's operations and the reduction against MPFR (host):
// the exactly rounded ones bit for bit, the Newton ones within their
// stated bounds, on significands chosen where carries, cancellations and
// estimates go wrong (powers of two and their neighbours, all ones).
#include <gtest/gtest.h>
#include <mpfr.h>

#include <cstdint>
#include <vector>

#include "quadfunc/accumulate.h"
#include "quadfunc/kernels.h"
#include "quadfunc/sincos.h"
#include "quadfunc/wide.h"

namespace {

using namespace mivor::quadfunc;

struct Mp {
    mpfr_t v;
    explicit Mp(mpfr_prec_t p = 600) { mpfr_init2(v, p); }
    ~Mp() { mpfr_clear(v); }
    Mp(const Mp&) = delete;
    Mp& operator=(const Mp&) = delete;
};

void set(mpfr_t out, const Wide& w) {
    mpz_t z;
    mpz_init(z);
    const std::uint64_t words[2] = {w.m.lo, w.m.hi};
    mpz_import(z, 2, -1, 8, 0, 0, words);
    mpfr_set_z_2exp(out, z, w.e - 128, MPFR_RNDN);
    if (w.neg) mpfr_neg(out, out, MPFR_RNDN);
    mpz_clear(z);
}

// |got - want| / |want| as a power of two (log2), -1000 for exact.
double rel_error(const Wide& got, mpfr_t want) {
    Mp g, d;
    set(g.v, got);
    mpfr_sub(d.v, g.v, want, MPFR_RNDN);
    if (mpfr_zero_p(d.v)) return -1000;
    mpfr_div(d.v, d.v, want, MPFR_RNDN);
    mpfr_abs(d.v, d.v, MPFR_RNDN);
    mpfr_log2(d.v, d.v, MPFR_RNDN);
    return mpfr_get_d(d.v, MPFR_RNDN);
}

// The value rounded to 128 bits, as the exactly rounded operations give it.
bool equals_rounded(const Wide& got, mpfr_t exact) {
    Mp r(128), g(600);
    mpfr_set(r.v, exact, MPFR_RNDN);
    set(g.v, got);
    return mpfr_equal_p(r.v, g.v) != 0;
}

struct Random {
    std::uint64_t s;
    std::uint64_t next() {
        std::uint64_t z = (s += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }
};

// Significands where things go wrong: 2^127 and just above (the reciprocal
// near 2), all ones (rounding carries out), random with long runs, random.
U128 hard_significand(Random& r) {
    const std::uint64_t small = r.next() % 64;
    switch (r.next() % 8) {
        case 0: return U128{kTop64, 0};
        case 1: return U128{kTop64, small + 1};
        case 2: return U128{kTop64 | (r.next() % 16), r.next()};
        case 3: return U128{~std::uint64_t{0}, ~std::uint64_t{0} - small};
        case 4: return U128{~std::uint64_t{0} - small, r.next()};
        case 5: return U128{kTop64 | (r.next() >> 1), r.next() & 0xFFFFFFFF00000000u};
        default: return U128{kTop64 | r.next(), r.next()};
    }
}
Wide hard_wide(Random& r, int spread = 100) {
    return Wide{hard_significand(r), static_cast<std::int32_t>(r.next() % (2 * spread + 1)) - spread,
                static_cast<std::uint32_t>(r.next() & 1)};
}

TEST(WorkingFormat, ProductsAndSumsAreRoundedOnce) {
    Random r{1};
    Mp x, y, z;
    for (int i = 0; i < 20000; ++i) {
        const Wide a = hard_wide(r), b = hard_wide(r);
        set(x.v, a);
        set(y.v, b);
        mpfr_mul(z.v, x.v, y.v, MPFR_RNDN);
        ASSERT_TRUE(equals_rounded(mul(a, b), z.v)) << i;
        mpfr_add(z.v, x.v, y.v, MPFR_RNDN);
        ASSERT_TRUE(equals_rounded(add(a, b), z.v)) << i;
        // Operands of nearly equal magnitude: cancellations of up to 128
        // bits, exact.
        Wide c = a;
        c.neg ^= 1;
        c.m = add64(c.m, r.next() % 5);
        if (is_zero(c.m)) c.m = U128{kTop64, 0};
        set(y.v, c);
        mpfr_add(z.v, x.v, y.v, MPFR_RNDN);
        ASSERT_TRUE(equals_rounded(add(a, c), z.v)) << i;
        const std::uint32_t k = static_cast<std::uint32_t>(r.next());
        mpfr_mul_ui(z.v, x.v, k, MPFR_RNDN);
        if (k != 0) {
            ASSERT_TRUE(equals_rounded(mul_small(a, k), z.v)) << i;
        }
    }
}

TEST(WorkingFormat, NewtonOperationsStayWithinTheirBounds) {
    Random r{2};
    Mp x, y, z;
    double worst_recip = -1000, worst_div = -1000, worst_sqrt = -1000;
    for (int i = 0; i < 20000; ++i) {
        const Wide a = hard_wide(r), b = hard_wide(r);
        set(x.v, a);
        set(y.v, b);
        mpfr_ui_div(z.v, 1, x.v, MPFR_RNDN);
        worst_recip = std::max(worst_recip, rel_error(recip(a), z.v));
        mpfr_div(z.v, y.v, x.v, MPFR_RNDN);
        worst_div = std::max(worst_div, rel_error(div(b, a), z.v));
        mpfr_abs(z.v, x.v, MPFR_RNDN);
        mpfr_sqrt(z.v, z.v, MPFR_RNDN);
        worst_sqrt = std::max(worst_sqrt, rel_error(sqrt(a), z.v));
    }
    EXPECT_LE(worst_recip, -126.4);
    EXPECT_LE(worst_div, -125.5);
    EXPECT_LE(worst_sqrt, -126.0);
}

TEST(WorkingFormat, RoundingToReal16) {
    // Ties to even on the 15 bits below the significand, carries into the
    // exponent, the ends of the range.
    const Wide tie_down{{kTop64, 0x4000}, 1, 0}, tie_up{{kTop64, 0xC000}, 1, 0};
    EXPECT_EQ(round_to_real16(tie_down).value.w[0], 0u);
    EXPECT_EQ(round_to_real16(tie_up).value.w[0], 2u);
    EXPECT_EQ(round_to_real16(Wide{{kTop64, 0x4001}, 1, 0}).value.w[0], 1u);
    const Rounded carry = round_to_real16(Wide{{~std::uint64_t{0}, ~std::uint64_t{0}}, 1, 1});
    EXPECT_EQ(carry.value.w[3], 0xC0000000u);  // -2
    EXPECT_TRUE(round_to_real16(Wide{{~std::uint64_t{0}, ~std::uint64_t{0}}, 16384, 0}).overflow);
    EXPECT_FALSE(round_to_real16(Wide{{~std::uint64_t{0}, 0}, 16384, 0}).overflow);
    // Below 2^-16382: zero with the sign; just below, rounding up to the
    // smallest normal number.
    EXPECT_EQ(round_to_real16(Wide{{kTop64, 0}, -16381, 1}).value.w[3], 0x80010000u);  // -2^-16382
    EXPECT_EQ(round_to_real16(Wide{{kTop64, 0}, -16382, 1}).value.w[3], 0x80000000u);  // -2^-16383: -0
    EXPECT_EQ(round_to_real16(Wide{{~std::uint64_t{0}, ~std::uint64_t{0}}, -16382, 0}).value.w[3], 0x00010000u);
    // Subnormal operands are normalised on the way in.
    const Wide sub = from_real16(mivor::quad::make(0, 0, 0, 1));
    EXPECT_EQ(sub.m.hi, kTop64);
    EXPECT_EQ(sub.e, -16493);
}

TEST(WorkingFormat, ExactSumsDecideTiesByTheirLastTerm) {
    // 1 + 2^-113 (a tie) plus or minus 2^-300: the accumulator rounds up or
    // down accordingly; a tie alone goes to even.
    for (int sign : {0, 1}) {
        Acc256 acc(-254);
        acc.add(kWideOne);
        acc.add(Wide{{kTop64, 0}, -112, 0});
        acc.add(Wide{{kTop64, 0}, -299, static_cast<std::uint32_t>(sign)});
        EXPECT_EQ(acc.round().value.w[0], sign ? 0u : 1u) << sign;
    }
    Acc256 tie(-254);
    tie.add(kWideOne);
    tie.add(Wide{{kTop64, 0}, -112, 0});
    EXPECT_EQ(tie.round().value.w[0], 0u);
    // Random sums against MPFR rounded to 113 bits.
    Random r{3};
    Mp x, s;
    for (int i = 0; i < 5000; ++i) {
        Acc256 acc(-250);
        mpfr_set_zero(s.v, 1);
        for (int t = 0; t < 3; ++t) {
            Wide w = hard_wide(r, 8);
            w.e -= 8 + 40 * t;
            acc.add(w);
            set(x.v, w);
            mpfr_add(s.v, s.v, x.v, MPFR_RNDN);
        }
        Mp want(113);
        mpfr_set(want.v, s.v, MPFR_RNDN);
        const Rounded got = acc.round();
        const Wide back = from_real16(got.value);
        Mp g;
        set(g.v, back);
        ASSERT_TRUE(mpfr_equal_p(g.v, want.v)) << i;
    }
}

// The REAL(16) number of binade E closest to a multiple of pi/2: its
// significand is a denominator of a convergent of frac(2^(E-112) 2/pi),
// brought into [2^112, 2^113) by a small multiple.
Wide closest_to_multiple(int E, mpfr_t two_over_pi) {
    Mp a(E + 700);
    mpfr_mul_2si(a.v, two_over_pi, E - 112, MPFR_RNDN);
    mpfr_frac(a.v, a.v, MPFR_RNDN);
    mpz_t num, den, t, rem, q0, q1, q2, limit;
    mpz_inits(num, den, t, rem, q0, q1, q2, limit, (mpz_ptr)0);
    mpfr_mul_2ui(a.v, a.v, 600, MPFR_RNDN);
    mpfr_get_z(num, a.v, MPFR_RNDN);
    mpz_set_ui(den, 1);
    mpz_mul_2exp(den, den, 600);
    mpz_set_ui(q0, 0);
    mpz_set_ui(q1, 1);
    mpz_set_ui(limit, 1);
    mpz_mul_2exp(limit, limit, 113);
    while (mpz_sgn(num) != 0) {
        mpz_fdiv_qr(t, rem, den, num);
        mpz_mul(q2, t, q1);
        mpz_add(q2, q2, q0);
        if (mpz_cmp(q2, limit) >= 0) break;
        mpz_set(q0, q1);
        mpz_set(q1, q2);
        mpz_set(den, num);
        mpz_set(num, rem);
    }
    mpz_fdiv_q_2exp(limit, limit, 1);  // 2^112
    mpz_cdiv_q(t, limit, q1);
    mpz_mul(q1, q1, t);
    std::uint64_t words[2] = {0, 0};
    mpz_mul_2exp(q1, q1, 15);  // 113 bits to the top of 128
    mpz_export(words, nullptr, -1, 8, 0, 0, q1);
    mpz_clears(num, den, t, rem, q0, q1, q2, limit, (mpz_ptr)0);
    return Wide{U128{words[1], words[0]}, E + 1, 0};
}

TEST(Reduction, RadiansWithinTheBoundAtTheHardestArguments) {
    Random r{4};
    Mp two_over_pi(17000), pi2(17000);
    mpfr_const_pi(pi2.v, MPFR_RNDN);
    mpfr_div_2ui(pi2.v, pi2.v, 1, MPFR_RNDN);
    mpfr_ui_div(two_over_pi.v, 1, pi2.v, MPFR_RNDN);
    double worst = -1000;
    for (int i = 0; i < 500; ++i) {
        const int E = i % 2 ? static_cast<int>(r.next() % 16383) : static_cast<int>(r.next() % 200);
        const Wide x = i % 4 < 2 ? closest_to_multiple(E, two_over_pi.v)
                                 : Wide{U128{kTop64 | (r.next() >> 1), r.next() << 15}, E + 1, 0};
        const Reduced got = reduce_radians(x);
        // The reference: x - k pi/2 with k the nearest integer of x 2/pi.
        Mp X(E + 800), k(E + 800), rem(E + 800);
        set(X.v, x);
        mpfr_mul(k.v, X.v, two_over_pi.v, MPFR_RNDN);
        mpfr_rint(k.v, k.v, MPFR_RNDN);
        mpfr_mul(rem.v, k.v, pi2.v, MPFR_RNDN);
        mpfr_sub(rem.v, X.v, rem.v, MPFR_RNDN);
        mpfr_fmod_ui(k.v, k.v, 4, MPFR_RNDN);
        ASSERT_EQ(got.quadrant, mpfr_get_ui(k.v, MPFR_RNDN) & 3) << i;
        worst = std::max(worst, rel_error(got.r, rem.v));
    }
    EXPECT_LE(worst, -126.4);
}

TEST(Reduction, SineAndCosineOfTheReducedArgument) {
    // Both ends of every table row, and the row values themselves.
    Random r{5};
    Mp x, want;
    double worst_sin = -1000, worst_cos = -1000;
    for (int j = 0; j <= 50; ++j) {
        for (int t = 0; t < 200; ++t) {
            const double off = (static_cast<double>(r.next() >> 11) * 0x1p-53 - 0.5) / 64.0;
            const double v = t == 0 ? j / 64.0 : j / 64.0 + off;
            if (v <= 0 || v > 0.7854) continue;
            const Wide w = from_fixed(U128{static_cast<std::uint64_t>(v * 0x1p62), r.next()}, 126);
            set(x.v, w);
            const SinCos sc = sincos_reduced(w);
            mpfr_sin(want.v, x.v, MPFR_RNDN);
            worst_sin = std::max(worst_sin, rel_error(sc.sin, want.v));
            mpfr_cos(want.v, x.v, MPFR_RNDN);
            worst_cos = std::max(worst_cos, rel_error(sc.cos, want.v));
        }
    }
    EXPECT_LE(worst_sin, -124.7);
    EXPECT_LE(worst_cos, -126.0);
}

}  // namespace
