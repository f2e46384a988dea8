// (sin x, cos x) for x = k pi/2 + r from (sin r, cos r), for the pair
// functions: the lanes exchange when k is odd and take the quadrant's signs
// (sin negative for k = 2, 3; cos for k = 1, 2), both by masks from a row
// of k & 3, as random quadrants would mispredict a branch.  The pair stays
// in one register, so the caller converts and stores it at once.
#pragma once

#include <emmintrin.h>

#include <cstdint>

#include "elementary/lanes.h"

namespace mivor::elementary {

struct alignas(16) QuadrantRow {
    std::uint64_t exchange[2];  // all ones: the lanes exchange
    std::uint64_t sign[2];      // the sign bits of (sin, cos) in this quadrant
};
namespace quadrant_pair_detail {
inline constexpr std::uint64_t kAll = ~std::uint64_t{0}, kSignBit = std::uint64_t{1} << 63;
}
inline constexpr QuadrantRow kQuadrantRows[4] = {
    {{0, 0}, {0, 0}},
    {{quadrant_pair_detail::kAll, quadrant_pair_detail::kAll}, {0, quadrant_pair_detail::kSignBit}},
    {{0, 0}, {quadrant_pair_detail::kSignBit, quadrant_pair_detail::kSignBit}},
    {{quadrant_pair_detail::kAll, quadrant_pair_detail::kAll}, {quadrant_pair_detail::kSignBit, 0}},
};

// `sine_sign`: a sign bit in lane 0 (the sign of x for the odd sine), 0 in
// lane 1.
inline __m128d to_quadrant(__m128d sin_cos_r, std::uint32_t k, __m128d sine_sign) {
    const QuadrantRow& q = opaque(kQuadrantRows)[k & 3];
    const __m128d crossed = _mm_shuffle_pd(sin_cos_r, sin_cos_r, 1);
    const __m128d exchange = _mm_load_pd(reinterpret_cast<const double*>(q.exchange));
    const __m128d v = _mm_or_pd(_mm_and_pd(exchange, crossed), _mm_andnot_pd(exchange, sin_cos_r));
    return _mm_xor_pd(v, _mm_xor_pd(_mm_load_pd(reinterpret_cast<const double*>(q.sign)), sine_sign));
}

}  // namespace mivor::elementary
