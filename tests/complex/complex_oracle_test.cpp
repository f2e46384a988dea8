// Complex multiplication and division against __float128 (Linux flavours).
//
// COMPLEX(16) must give the bits of its formulas evaluated with correctly
// rounded binary128 operations, which the REAL(16) operators are in the
// normal range.  COMPLEX(4) and COMPLEX(8) are measured against the exact
// product and quotient (binary128 is exact enough for them): their parts
// are rounded once from extended precision, which keeps them within about
// half a unit of the larger part.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "mivor/mivor.h"
#include "support/float128.h"

namespace mivor::testing {
namespace {

struct C128 {
    __float128 re, im;
};

// Error in units of the last place of the larger part of the exact value.
template <class Part>
double normwise_ulps(Part re, Part im, const C128& exact) {
    const double big = std::fmax(std::fabs(static_cast<double>(exact.re)), std::fabs(static_cast<double>(exact.im)));
    int e;
    std::frexp(big, &e);
    const double ulp = std::ldexp(1.0, e - std::numeric_limits<Part>::digits);
    const double dre = static_cast<double>(static_cast<__float128>(re) - exact.re);
    const double dim = static_cast<double>(static_cast<__float128>(im) - exact.im);
    return std::fmax(std::fabs(dre), std::fabs(dim)) / ulp;
}

C128 exact_quotient(__float128 a, __float128 b, __float128 c, __float128 d) {
    const __float128 den = c * c + d * d;
    return {(a * c + b * d) / den, (b * c - a * d) / den};
}

TEST(ComplexOracle, Complex16FormulasBitForBit) {
    std::mt19937_64 random(16);
    long mismatches = 0;
    for (int i = 0; i < 100000; ++i) {
        const __float128 a = random_f128(random, 30), b = random_f128(random, 30);
        const __float128 c = random_f128(random, 30), d = random_f128(random, 30);
        const mivor_complex16 x{from_f128(a), from_f128(b)}, y{from_f128(c), from_f128(d)};
        mivor_complex16 p, q;
        g_azmz(&p, &x, &y);
        g_azdz(&q, &x, &y);
        const __float128 pre = a * c - b * d, pim = b * c + a * d;
        __float128 qre, qim;
        if (__builtin_fabsf128(d) <= __builtin_fabsf128(c)) {
            const __float128 r = d / c, den = c + d * r;
            qre = (a + b * r) / den;
            qim = (b - a * r) / den;
        } else {
            const __float128 r = c / d, den = c * r + d;
            qre = (a * r + b) / den;
            qim = (b * r - a) / den;
        }
        const bool same = to_f128(p.re) == pre && to_f128(p.im) == pim && to_f128(q.re) == qre && to_f128(q.im) == qim;
        if (!same && ++mismatches <= 5) ADD_FAILURE() << "case " << i;
    }
    EXPECT_EQ(mismatches, 0);
}

template <class C>
void measure(const char* name, double bound_mul, double bound_div) {
    using Part = decltype(C{}.re);
    std::mt19937_64 random(sizeof(Part));
    std::uniform_real_distribution<double> mantissa(-1, 1);
    std::uniform_int_distribution<int> exponent(-20, 20);
    double worst_mul = 0, worst_div = 0;
    for (int i = 0; i < 200000; ++i) {
        Part v[4];
        for (Part& p : v) p = static_cast<Part>(std::ldexp(mantissa(random), exponent(random)));
        const C x{v[0], v[1]}, y{v[2], v[3]};
        C p, q;
        if constexpr (sizeof(Part) == 4) {
            g_acmc(&p, &x, &y);
            g_acdc(&q, &x, &y);
        } else {
            g_axmx(&p, &x, &y);
            g_axdx(&q, &x, &y);
        }
        const __float128 a = v[0], b = v[1], c = v[2], d = v[3];
        worst_mul = std::fmax(worst_mul, normwise_ulps(p.re, p.im, C128{a * c - b * d, b * c + a * d}));
        worst_div = std::fmax(worst_div, normwise_ulps(q.re, q.im, exact_quotient(a, b, c, d)));
    }
    std::printf("%s: largest normwise error %.4f ulp (product), %.4f ulp (quotient)\n", name, worst_mul, worst_div);
    EXPECT_LE(worst_mul, bound_mul);
    EXPECT_LE(worst_div, bound_div);
}

TEST(ComplexOracle, Complex4And8WithinAboutHalfAnUlp) {
    measure<mivor_complex4>("COMPLEX(4)", 0.5001, 0.5001);
    measure<mivor_complex8>("COMPLEX(8)", 0.5005, 0.502);
}

}  // namespace
}  // namespace mivor::testing
