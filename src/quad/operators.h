// The REAL(16) operators on values, for the library's own REAL(16)
// computations on the 64-bit target: g_aqaq, g_aqsq, g_aqmq and g_aqdq
// with every result bit, report, retry and fallback, but with operands and
// result passed in registers instead of through memory.  A chain of
// operations (the squarings of a power) then does not wait twice per step
// for a store to reach the next load.  The 32-bit targets, whose word
// kernels read and write memory anyway, call the exports.
#pragma once

#include "quad/primitives.h"

namespace mivor::quad {

#if defined(__x86_64__)
detail::Halves add(detail::Halves x, detail::Halves y);
detail::Halves subtract(detail::Halves x, detail::Halves y);
detail::Halves multiply(detail::Halves x, detail::Halves y);
detail::Halves divide(detail::Halves x, detail::Halves y);
#endif

}  // namespace mivor::quad
