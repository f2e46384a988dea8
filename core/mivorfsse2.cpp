// Stand-in for the intrinsic run-time mivorfsse2: the three entries this
// library imports (core/mivorfsse2.h), written from their interface.
//
// The truncations work on the bit pattern: clearing the fraction bits below
// the binary point is exact, needs no rounding mode and keeps the sign of
// the argument, so AINT(-0.5) is -0.0.  Arguments of magnitude 2^23 (REAL(4))
// or 2^52 (REAL(8)) and more are integral already; infinities and NaNs have
// the largest exponent and are passed on (quieted by the arithmetic).
#include "mivorfsse2.h"

#include <bit>
#include <cstdint>

namespace {

template <class T, class U, int kFractionBits, int kBias>
T truncate(T x) {
    const U b = std::bit_cast<U>(x);
    const int e = static_cast<int>((b >> kFractionBits) & ((U{1} << (sizeof(U) * 8 - 1 - kFractionBits)) - 1)) - kBias;
    if (e >= kFractionBits) return x + T(0);  // integral, infinite or NaN (quieted)
    if (e < 0) return std::bit_cast<T>(b & (U{1} << (sizeof(U) * 8 - 1)));  // |x| < 1: a zero of x's sign
    const U fraction = (U{1} << (kFractionBits - e)) - 1;
    return std::bit_cast<T>(b & ~fraction);
}

}  // namespace

extern "C" {

float f_aint(const float* x) { return truncate<float, std::uint32_t, 23, 127>(*x); }

double f_dint(const double* x) { return truncate<double, std::uint64_t, 52, 1023>(*x); }

int32_t jwe_fnzb(const uint32_t* word) { return *word == 0 ? 32 : std::countl_zero(*word); }

}  // extern "C"
