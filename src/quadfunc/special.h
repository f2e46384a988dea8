// Reading a REAL(16) operand for the elementary functions: its kind (zero,
// finite, infinite, NaN), and the results every family shares.
//
// The functions read subnormal operands at their value, and never return
// a subnormal result: like the operators, a result below 2^-16382 in
// magnitude is zero (round_to_real16, wide.h), here with the sign of the
// exact result and without a report, since elementary functions report
// no underflow.  A NaN operand that a function does not refuse comes back
// quieted (its payload kept), as the hardware passes NaNs on.
#pragma once

#include <cstdint>

#include "frame/special_values.h"
#include "frame/values.h"

namespace mivor::quadfunc {

enum class Kind : std::uint8_t { zero, finite, infinite, nan };

inline Kind kind_of(const Real16& x) {
    const std::uint32_t field = quad::exponent_field(x);
    const bool fraction = (x.w[3] & 0xFFFFu) != 0 || x.w[2] != 0 || x.w[1] != 0 || x.w[0] != 0;
    if (field == 0x7FFF) return fraction ? Kind::nan : Kind::infinite;
    if (field == 0 && !fraction) return Kind::zero;
    return Kind::finite;
}

inline Real16 quieted(Real16 x) {
    x.w[3] |= 0x00008000u;
    return x;
}
inline Real16 negated(Real16 x) {
    x.w[3] ^= quad::kSignBit;
    return x;
}
inline Real16 absolute(Real16 x) {
    x.w[3] &= ~quad::kSignBit;
    return x;
}

inline constexpr Real16 kZeroQ = quad::make(0, 0, 0, 0);
inline constexpr Real16 kMZeroQ = quad::make(0x80000000u, 0, 0, 0);
inline constexpr Real16 kOneQ = quad::make(0x3FFF0000u, 0, 0, 0);
inline constexpr Real16 kMOneQ = quad::make(0xBFFF0000u, 0, 0, 0);
inline constexpr Real16 kMHugeQ = quad::make(0xFFFEFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu);

}  // namespace mivor::quadfunc
