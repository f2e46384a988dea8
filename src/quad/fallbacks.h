// The fallbacks of the REAL(16) operators' reports, as halves.
//
// Overflow (and x / 0): the infinity of the given sign with IEEE results,
// otherwise +HUGE whatever the sign; kept so on purpose, compiled programs
// rely on the positive HUGE.  Underflow: +0 either way, since these
// operators have no subnormal results.
#pragma once

#include "frame/report.h"
#include "frame/special_values.h"
#include "quad/primitives.h"

namespace mivor::quad {

inline report::Failure<detail::Halves> overflowed(Error number, bool negative) {
    return report::fail(number, detail::load(negative ? &_MInf_Q : &_Inf_Q), detail::load(&kHuge_Q));
}

inline report::Failure<detail::Halves> underflowed(Error number) { return report::fail(number, detail::Halves{0, 0}); }

}  // namespace mivor::quad
