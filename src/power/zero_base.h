// The zero base of the integer powers: 0**0 = 1, 0**n = +0 for n > 0, and
// for n < 0 a full-form report that describes the exponent only.  Without a
// retry the result is the kind's IEEE special or its finite substitute; a
// retry runs the whole power again on the corrected base and exponent, the
// zero test included.
//
// What counts as a zero base is the kind's: a comparison with 0.0 for the
// real kinds, word 3 for REAL(16) (as its operators test zero), a modulus
// that is not positive for the complex kinds (power/complex_int_powers.cpp).
#pragma once

#include <type_traits>

#include "frame/report.h"
#include "frame/special_values.h"
#include "frame/x87.h"

namespace mivor::power {

// The results of a zero base, by kind.
template <class T>
struct ZeroBase {
    Error error;
    T one;         // n = 0
    T zero;        // n > 0
    T ieee;        // n < 0, IEEE results
    T substitute;  // n < 0, finite results
};

template <class T, class N, class IsZero, class Power>
[[gnu::cold, gnu::noinline]] T zero_base(T x, N n, const ZeroBase<T>& z, IsZero is_zero, Power power) {
    return report::settle<report::Form::full>(
        [&](T x, N n) -> report::Step<T, T, N> {
            if (!is_zero(x)) return power(x, n);
            if (n == 0) return z.one;
            if (n > 0) return z.zero;
            return report::fail(z.error, z.ieee, z.substitute).described(report::Describe::second);
        },
        x, n);
}

// REAL(4) and REAL(8): zero is what compares equal to 0.0.
template <class T, class N, class Power>
[[gnu::cold, gnu::noinline]] T zero_base(T x, N n, Error error, T inf, T huge, Power power) {
    return zero_base(x, n, ZeroBase<T>{error, T(1), T(0), inf, huge}, [](T v) { return v == T(0); }, power);
}

// x**n of the REAL(4) and REAL(8) entries: a zero base takes the report
// path above, every other base (NaN included) `raise_to`.
template <class T, class N, class RaiseTo>
inline T integer_power(T x, N n, Error error, RaiseTo raise_to) {
    if (!(x == T(0))) [[likely]] return raise_to(x, n);
    if constexpr (std::is_same_v<T, float>) return zero_base(x, n, error, _Inf_F, kHuge_F, raise_to);
    else return zero_base(x, n, error, _Inf_D, kHuge_D, raise_to);
}

// The REAL(4) members run the REAL(8) steps on the x87 stack in extended
// precision, the base widened there and the result rounded to REAL(4) only
// on return.
template <class N, long double (*steps)(long double, N)>
float in_extended(float x, N n) {
    x87::ExtendedPrecision scope;
    const long double result = steps(scope.pin(x), n);
    return static_cast<float>(scope.pin(result));
}

}  // namespace mivor::power
