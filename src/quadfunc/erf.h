// The error function kernels (erf.cpp), on finite working values.
#pragma once

#include "quadfunc/wide.h"

namespace mivor::quadfunc {

// erfc x for x >= 1/2 (below 2^-16382 from x = 106.6 on; x < 144):
// within 2^-122 relative.
Wide erfc_positive(const Wide& x);

// erf x for |x| < 1/2: within 2^-126 relative.
Wide erf_small(const Wide& x);

// erf x and erfc x for every finite x: within 2^-121.8 relative.
Wide erf_wide(const Wide& x);
Wide erfc_wide(const Wide& x);

}  // namespace mivor::quadfunc
