// Bit views of the floating kinds and REAL(16) values by their words, for
// the tests of every flavour (public headers only).
#pragma once

#include <emmintrin.h>

#include <cstdint>
#include <cstring>

#include "mivor/types.h"

namespace mivor::testing {

inline std::uint32_t bits(float v) {
    std::uint32_t b;
    std::memcpy(&b, &v, sizeof b);
    return b;
}
inline std::uint64_t bits(double v) {
    std::uint64_t b;
    std::memcpy(&b, &v, sizeof b);
    return b;
}
inline float f32(std::uint32_t b) {
    float v;
    std::memcpy(&v, &b, sizeof v);
    return v;
}
inline double f64(std::uint64_t b) {
    double v;
    std::memcpy(&v, &b, sizeof v);
    return v;
}

// Distance in units of the last place between two finite doubles of the
// same sign.
inline std::uint64_t ulps(double a, double b) {
    const std::uint64_t x = bits(a), y = bits(b);
    return x > y ? x - y : y - x;
}

// Lane i of a packed pair.
inline double lane(__m128d v, int i) {
    alignas(16) double d[2];
    _mm_store_pd(d, v);
    return d[i];
}

// REAL(16) by its words, most significant first, as patterns are written.
constexpr mivor_real16 q(std::uint32_t w3, std::uint32_t w2 = 0, std::uint32_t w1 = 0, std::uint32_t w0 = 0) {
    return mivor_real16{{w0, w1, w2, w3}};
}
inline bool same(const mivor_real16& a, const mivor_real16& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

}  // namespace mivor::testing
