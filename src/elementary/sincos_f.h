// The polynomials of the REAL(4) circular kernels (sincos_f_data.h),
// evaluated in double on |r| <= pi/4 + 2^-10: shared by the radian
// functions and the degree and quadrant forms, which hand over their exactly
// reduced angle converted to radians.
#pragma once

#include <emmintrin.h>

#include "elementary/lanes.h"
#include "elementary/sincos_f_data.h"

namespace mivor::elementary::sincos_f {

using elementary::Lanes;
using elementary::lanes;
using elementary::opaque;

// sin r, relative error <= 2^-47.4 (fit) plus a few roundings of 2^-53.
inline double sin_poly(double r) {
    using namespace sincos_f_data;
    const double z = r * r;
    return r + r * z * (S1 + z * (S2 + z * (S3 + z * (S4 + z * S5))));
}
// cos r, relative error <= 2^-43.5 (fit) plus a few roundings of 2^-53.
inline double cos_poly(double r) {
    using namespace sincos_f_data;
    const double z = r * r;
    return 1.0 + z * (C1 + z * (C2 + z * (C3 + z * (C4 + z * C5))));
}

// Both at once, sin r in lane 0 and cos r in lane 1: the two Horner
// chains run as one in the two lanes of a register, each lane the same
// operations as sin_poly or cos_poly, so the same bits for half the
// instructions.
struct PolyPairs {
    Lanes c5, c4, c3, c2, c1, one;
};
inline constexpr PolyPairs kPolyPairs = {
    {{sincos_f_data::S5, sincos_f_data::C5}}, {{sincos_f_data::S4, sincos_f_data::C4}},
    {{sincos_f_data::S3, sincos_f_data::C3}}, {{sincos_f_data::S2, sincos_f_data::C2}},
    {{sincos_f_data::S1, sincos_f_data::C1}}, {{0.0, 1.0}},
};
inline __m128d sin_cos_poly(double r) {
    const PolyPairs& k = opaque(kPolyPairs);
    const double z = r * r;
    const __m128d zz = _mm_set1_pd(z);
    __m128d p = _mm_add_pd(lanes(k.c4), _mm_mul_pd(zz, lanes(k.c5)));
    p = _mm_add_pd(lanes(k.c3), _mm_mul_pd(zz, p));
    p = _mm_add_pd(lanes(k.c2), _mm_mul_pd(zz, p));
    p = _mm_add_pd(lanes(k.c1), _mm_mul_pd(zz, p));
    // (r z, z) and (r, 1): sin = r + (r z) P, cos = 1 + z P.
    const __m128d rz = _mm_set_pd(z, r * z);
    const __m128d lead = _mm_move_sd(lanes(k.one), _mm_set_sd(r));
    return _mm_add_pd(lead, _mm_mul_pd(rz, p));
}

}  // namespace mivor::elementary::sincos_f
