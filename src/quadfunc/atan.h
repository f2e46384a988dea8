// The inverse circular kernels (atan.cpp), in radians, on finite working
// values.
#pragma once

#include "quadfunc/wide.h"

namespace mivor::quadfunc {

// atan(n/d) for 0 <= n <= d, d > 0: in [0, pi/4], within 2^-124.9
// relative.
Wide atan_ratio(const Wide& n, const Wide& d);

// The angle of (x, y) in (-pi, pi], for y and x not both zero; its sign is
// y's (an angle of pi or 0 takes the sign of y too).  Within 2^-124.8
// relative.
Wide atan2_wide(const Wide& y, const Wide& x);

// asin x and acos x for |x| <= 1: within 2^-124.1 relative.
Wide asin_wide(const Wide& x);
Wide acos_wide(const Wide& x);

}  // namespace mivor::quadfunc
