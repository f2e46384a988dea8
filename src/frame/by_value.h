// REAL(4) and REAL(8) results returned by value, as the caller receives them.
//
// On 32-bit x86 such a result comes back in the x87 register st(0), and
// loading a signalling NaN into it quiets the NaN: the quiet bit is set,
// sign and payload are kept.  On x86-64 the result travels in xmm0
// untouched.  So that every flavour returns the bits a 32-bit caller of the
// Windows library sees, an export whose result can be a signalling NaN
// passes it through `by_value` on return.  Arithmetic on a NaN already
// quiets it, so only results that pass an operand on or are built from
// bits need it (NEAREST, the numeric-model intrinsics, MERGE, ...); the
// golden digests, compared bit for bit across the flavours, show a site
// that was missed.  On 32-bit x86 the helpers are the identity: the return
// itself does the work.
#pragma once

#include <cstdint>

#include "frame/values.h"

namespace mivor {

inline float by_value(float x) {
#if defined(__x86_64__)
    const std::uint32_t b = bits_of(x);
    const bool signalling = (b & 0x7FC00000u) == 0x7F800000u && (b & 0x003FFFFFu) != 0;
    return signalling ? float_from_bits(b | 0x00400000u) : x;
#else
    return x;
#endif
}

inline double by_value(double x) {
#if defined(__x86_64__)
    const std::uint64_t b = bits_of(x);
    const bool signalling =
        (b & 0x7FF8000000000000u) == 0x7FF0000000000000u && (b & 0x0007FFFFFFFFFFFFu) != 0;
    return signalling ? double_from_bits(b | 0x0008000000000000u) : x;
#else
    return x;
#endif
}

}  // namespace mivor
