// The gamma and log-gamma kernels (gamma.cpp), on finite working values.
#pragma once

#include "quadfunc/fixed.h"
#include "quadfunc/wide.h"

namespace mivor::quadfunc {

// Horner's scheme in the working format: sum c[i] z^(n-1-i), the
// coefficients highest degree first; each step rounds twice (2^-127
// relative of the partial sum, times |z| afterwards).
Wide horner_wide(const WideConst* c, int n, const Wide& z);

// ln Gamma(y) for y >= 20 by Stirling's series: in S.176 for y < 2^11
// (within 2^-127.6 absolute), in the working format for any y (2^-125
// relative).
U192 lgamma_stirling_s176(const Wide& y);
Wide lgamma_stirling_wide(const Wide& y);

// ln Gamma(x) for x > 0: in S.176 (fixed true) or the working format.
struct LGammaResult {
    bool fixed;
    U192 s176;
    Wide wide;
};
LGammaResult lgamma_positive(const Wide& x);
Wide lgamma_wide(const LGammaResult& r);

// Gamma(x) for 0 < x < 2^11: within 2^-122 relative.
Wide gamma_positive(const Wide& x);

// sin(pi a) for finite a, from the exact reduction in quadrants.
Wide sin_pi(const Wide& a);

}  // namespace mivor::quadfunc
