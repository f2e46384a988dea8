// g_adxi, g_arxi: REAL(8) and REAL(4) raised to an INTEGER(4).
//
// Binary powering with the reciprocal taken at the end.  Kept on purpose,
// since compiled programs see every one of these bits:
//  * zero base: n > 0 gives +0.0 (even for -0.0), n = 0 gives 1.0, n < 0 is
//    error 264/261;
//  * shortcuts n = 0, 1, 2 and bases +-1 (NaN**0 is 1.0);
//  * |n| is a 32-bit negation, so n = -2^31 stays negative; the arithmetic
//    shifts then square x thirty-one times and leave m = -1;
//  * for n < 0 and |x| <= 1 (or NaN) the accumulator starts at 2x and the
//    numerator at 2.0: large powers of small bases stay one binade higher,
//    losing fewer bits to underflow before the final division.
// REAL(4) runs the same steps on the x87 stack in extended precision and
// rounds once on return.
#include "mivor/mivor.h"
#include "power/zero_base.h"

namespace mivor::power {
namespace {

// Steps 2 to 7 for a nonzero (or NaN) base; T is double or long double.
template <class T>
T power_by_int4(T x, std::int32_t n) {
    if (n == 0) return T(1);
    if (n == 1) return x;
    if (n == 2) return x * x;
    if (x == T(1)) return T(1);
    if (x == T(-1)) return (n & 1) ? T(-1) : T(1);

    std::int32_t m = n < 0 ? static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(n)) : n;
    while ((m & 1) == 0) {
        m >>= 1;  // arithmetic: -2^31 ends at -1
        x = x * x;
    }
    T acc = x;
    T numerator = T(1);
    if (n < 0 && !(x < T(-1) || x > T(1))) {  // |x| <= 1 or NaN
        acc = x + x;
        numerator = T(2);
    }
    m >>= 1;
    while (m > 0) {
        x = x * x;
        if (m & 1) acc = acc * x;
        m >>= 1;
    }
    return n > 0 ? acc : numerator / acc;
}

}  // namespace
}  // namespace mivor::power

using namespace mivor;

extern "C" double g_adxi(const double* base, const std::int32_t* exponent) {
    return power::integer_power(*base, *exponent, Error::zero_to_negative_r8_i4, power::power_by_int4<double>);
}

extern "C" float g_arxi(const float* base, const std::int32_t* exponent) {
    return power::integer_power(*base, *exponent, Error::zero_to_negative_r4_i4, power::in_extended<std::int32_t, power::power_by_int4<long double>>);
}
