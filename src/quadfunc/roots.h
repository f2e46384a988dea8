// Square and cube roots of working values, rounded to REAL(16) (roots.cpp).
#pragma once

#include "quadfunc/wide.h"

namespace mivor::quadfunc {

// sqrt(|a|) correctly rounded (for a a REAL(16) value; for wider
// significands the root of the value as given).
Rounded sqrt_rounded(const Wide& a);

// cbrt(a), its sign a's, correctly rounded but for roots within 2^-150 of a
// rounding boundary.
Rounded cbrt_rounded(const Wide& a);

}  // namespace mivor::quadfunc
