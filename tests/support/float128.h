// REAL(16) values as GCC's __float128 (libgcc's soft-fp, correctly rounded,
// ties to even), the oracle of the Linux flavours, and random operands for
// it: normal numbers with exponents near 2^0, where the library's REAL(16)
// arithmetic and __float128 must give the same bits.
#pragma once

#include <cstdint>
#include <cstring>
#include <random>

#include "mivor/types.h"

namespace mivor::testing {

inline __float128 to_f128(const mivor_real16& q) {
    __float128 f;
    std::memcpy(&f, &q, sizeof f);
    return f;
}
inline mivor_real16 from_f128(__float128 f) {
    mivor_real16 q;
    std::memcpy(&q, &f, sizeof q);
    return q;
}

// Random significand and sign, exponent within 2^+-spread.
inline __float128 random_f128(std::mt19937_64& random, int spread) {
    const std::uint64_t a = random(), b = random();
    mivor_real16 q{{static_cast<std::uint32_t>(a), static_cast<std::uint32_t>(a >> 32), static_cast<std::uint32_t>(b),
                    static_cast<std::uint32_t>(b >> 32)}};
    const int field = 16383 - spread + static_cast<int>(random() % (2 * spread + 1));
    q.w[3] = (q.w[3] & 0x8000FFFFu) | (static_cast<std::uint32_t>(field) << 16);
    return to_f128(q);
}

}  // namespace mivor::testing
