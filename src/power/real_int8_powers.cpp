// g_adxj, g_arxj: REAL(8) and REAL(4) raised to an INTEGER(8).
//
// Unlike the INTEGER(4) members, the reciprocal of the base is taken first
// and there is no shortcut for exponents 1 and 2 and no doubling; the two
// methods differ in the last bit and at the edges of the range, and both are
// kept.  The exponent is worked as two 32-bit words:
//  * zero base: exponent 0 gives 1.0, a positive one +0.0, a negative one
//    error 265/1413 (the sign is the high word's);
//  * base -1: only the low word's parity decides the sign;
//  * a negative exponent is negated as a 64-bit value; -2^63 negates to
//    itself and its high word 0x80000000 is then worked as unsigned;
//  * a nonzero high word takes exactly 32 iterations over the low word
//    (squaring after each), then the high word's own loop.
#include "mivor/mivor.h"
#include "power/zero_base.h"

namespace mivor::power {
namespace {

// Stops as soon as the word runs out: no squaring after its last bit.
template <class T>
void run_word(T& acc, T& x, std::uint32_t word) {
    for (;;) {
        if (word & 1) acc = acc * x;
        word >>= 1;
        if (word == 0) return;
        x = x * x;
    }
}

// Steps 2 to 6 for a nonzero (or NaN) base; T is double or long double.
template <class T>
T power_by_int8(T x, std::int64_t n) {
    std::uint32_t low = static_cast<std::uint32_t>(static_cast<std::uint64_t>(n));
    std::uint32_t high = static_cast<std::uint32_t>(static_cast<std::uint64_t>(n) >> 32);
    if (x == T(1)) return T(1);
    if (x == T(-1)) return (low & 1) ? T(-1) : T(1);

    T acc = T(1);
    if (static_cast<std::int32_t>(high) < 0) {
        high = low != 0 ? ~high : 0u - high;
        low = 0u - low;
        x = T(1) / x;
    }
    if (high == 0) {
        run_word(acc, x, low);
        return acc;
    }
    for (int i = 0; i < 32; ++i) {
        if (low & 1) acc = acc * x;
        low >>= 1;
        x = x * x;
    }
    run_word(acc, x, high);
    return acc;
}

}  // namespace
}  // namespace mivor::power

using namespace mivor;

extern "C" double g_adxj(const double* base, const std::int64_t* exponent) {
    return power::integer_power(*base, *exponent, Error::zero_to_negative_r8_i8, power::power_by_int8<double>);
}

extern "C" float g_arxj(const float* base, const std::int64_t* exponent) {
    return power::integer_power(*base, *exponent, Error::zero_to_negative_r4_i8, power::in_extended<std::int64_t, power::power_by_int8<long double>>);
}
