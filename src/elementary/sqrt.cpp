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

extern "C" long double g_dsqrt(const double* arg) {
    double x = *arg;
    for (;;) {
        if (x > 0.0 || x != x) break;
        if (x == 0.0) return 0.0L;
        const report::Verdict v = report::direct(227, x);
        if (v.retry) continue;
        if (v.ieee_results) return _NaN_D;
        x = -x;
        break;
    }
    x87::ExtendedPrecision scope;
    return scope.pin(x87::fsqrt(scope.pin(x)));
}

extern "C" float g_sqrt(const float* arg) {
    float x = *arg;
    for (;;) {
        if (x > 0.0f || x != x) break;
        if (x == 0.0f) return 0.0f;
        const report::Verdict v = report::direct(226, x);
        if (v.retry) continue;
        if (v.ieee_results) return _NaN_F;
        x = -x;
        break;
    }
    x87::ExtendedPrecision scope;
    return static_cast<float>(scope.pin(x87::fsqrt(scope.pin(x))));
}
