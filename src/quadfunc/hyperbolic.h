// The hyperbolic kernels (hyperbolic.cpp) on finite working values with
// |x| < 2^14 (beyond, every sinh and cosh overflows and tanh is +-1).
#pragma once

#include "quadfunc/wide.h"

namespace mivor::quadfunc {

// sinh x within 2^-125.1 relative.
Wide sinh_wide(const Wide& x);

// cosh x as main + tail (tail zero unless |x| < 1/2, where main is 1 and
// tail u C(u)), within 2^-125.7 relative.
struct CoshParts {
    Wide main, tail;
};
CoshParts cosh_parts(const Wide& x);
Wide cosh_wide(const Wide& x);
// cosh x rounded to REAL(16), the two parts summed exactly.
Rounded cosh_rounded(const Wide& x);

// tanh x within 2^-124.6 relative.
Wide tanh_wide(const Wide& x);

}  // namespace mivor::quadfunc
