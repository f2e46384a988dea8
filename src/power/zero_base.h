// The zero base of the integer powers: 0**0 = 1, 0**n = +0 for n > 0, and
// for n < 0 a full-form report that describes the exponent only.  Without a
// retry the result is +Inf, or the finite substitute with IEEE results off;
// a retry runs the whole power again on the corrected base and exponent.
#pragma once

#include "frame/report.h"

namespace mivor::power {

template <class T, class N, class Power>
[[gnu::cold, gnu::noinline]] T zero_base(T x, N n, Error error, T inf, T huge, Power power) {
    return report::settle<report::Form::full>(
        [&](T x, N n) -> report::Step<T, T, N> {
            if (!(x == T(0))) return power(x, n);
            if (n == 0) return T(1);
            if (n > 0) return T(0);
            return report::fail(error, inf, huge).described(report::Describe::second);
        },
        x, n);
}

}  // namespace mivor::power
