// _jwe_guhy, the half exponential behind the hyperbolic functions: its
// extended value against the platform's long double exponential, and its
// rounding to double against g_dexp(a)/2, which it must match to the last
// bit or beat.  (Internal entry: Linux flavours only.)
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>

#include "elementary/hyperbolic.h"
#include "mivor/mivor.h"

namespace {

TEST(HalfExponential, AgreesWithExpOrBetter) {
    std::uint64_t s = 17;
    int differing = 0, misrounded = 0, dexp_misrounded = 0;
    const int n = 200000;
    for (int i = 0; i < n; ++i) {
        s = s * 6364136223846793005u + 1442695040888963407u;
        const double a = 1.0 + static_cast<double>(s >> 11) * 0x1p-53 * 708.78;
        const long double v = _jwe_guhy(&a);
        const long double ref = std::exp(static_cast<long double>(a)) / 2;  // within a few 2^-64
        ASSERT_LE(std::fabs(static_cast<double>((v - ref) / ref)), 0x1p-61) << a;  // both within about 2^-63
        const double rounded = static_cast<double>(v);
        const double dexp_half = g_dexp(&a) / 2;
        const double correct = static_cast<double>(ref);  // but within 2^-10 ulp of a tie
        misrounded += rounded != correct;
        dexp_misrounded += dexp_half != correct;
        if (rounded != dexp_half) {
            ++differing;
            EXPECT_EQ(std::fabs(rounded - dexp_half), std::fabs(std::nextafter(rounded, 0.0) - rounded)) << a;
        }
    }
    EXPECT_LT(differing, n / 50);  // g_dexp itself is correctly rounded in 99.5% (README)
    EXPECT_LT(20 * misrounded, dexp_misrounded);
    const double one = 1.0;
    EXPECT_EQ(static_cast<double>(_jwe_guhy(&one)), 0x1.5bf0a8b145769p+0);  // e/2, correctly rounded
    const double top = 710.475;
    EXPECT_LT(static_cast<double>(_jwe_guhy(&top)), HUGE_VAL);  // e^710.475/2 is still finite
}

}  // namespace
