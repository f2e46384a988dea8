// The polynomials of the REAL(4) circular kernels (sincos_f_data.h),
// evaluated in double on |r| <= pi/4 + 2^-10: shared by the radian
// functions and the degree and quadrant forms, which hand over their exactly
// reduced angle converted to radians.
#pragma once

#include "elementary/sincos_f_data.h"

namespace mivor::elementary::sincos_f {

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

}  // namespace mivor::elementary::sincos_f
