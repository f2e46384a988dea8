// g_dsqrt, g_sqrt: square roots.
//
// FSQRT behind a domain check.  g_dsqrt returns the root as FSQRT leaves it,
// in x87 extended precision (64-bit precision is set for the call so that
// every caller gets the same bits); g_sqrt rounds once to REAL(4), which
// gives the correctly rounded single-precision root.
//   * x > 0 or NaN: the root; +Inf gives +Inf; no report for NaN.
//   * +-0: +0.0; the sign of -0.0 is dropped on purpose.
//   * x < 0: error 227 (REAL(8)) / 226 (REAL(4)), direct form.  Without a
//     retry: the quiet NaN when IEEE results are on, otherwise the root of
//     the magnitude.
#include "frame/report.h"
#include "frame/special_values.h"
#include "frame/x87.h"
#include "mivor/mivor.h"

using namespace mivor;

namespace {

// Zeros and negative numbers: what the root is then taken of.  A zero
// gives +0 (FSQRT keeps it); a negative number reports, and without a
// retry gives the quiet NaN (FSQRT passes it on) or, with IEEE results off,
// the magnitude.
template <class T>
[[gnu::cold, gnu::noinline]] T root_argument(T x, Error error, T nan) {
    return report::settle<report::Form::direct>(
        [error, nan](T x) -> report::Step<T, T> {
            if (x > T(0) || x != x) return x;
            if (x == T(0)) return T(0);
            return report::fail_then_restart(error, nan, -x);
        },
        x);
}

}  // namespace

extern "C" long double g_dsqrt(const double* arg) {
    double x = *arg;
    if (!(x > 0.0 || x != x)) x = root_argument(x, Error::sqrt_negative_r8, _NaN_D);
    x87::ExtendedPrecision scope;
    return scope.pin(x87::fsqrt(scope.pin(x)));
}

extern "C" float g_sqrt(const float* arg) {
    float x = *arg;
    if (!(x > 0.0f || x != x)) x = root_argument(x, Error::sqrt_negative_r4, _NaN_F);
    x87::ExtendedPrecision scope;
    return scope.to_float(x87::fsqrt(scope.pin(x)));
}
