// g_qlog, g_qlog2, g_qlog10: ln x, log2 x, log10 x in REAL(16).
//
// Method and error bounds: log.cpp; one rounding of a working value within
// 2^-126.2 relative at worst, so at most 0.5 + 2^-13 units of the last
// place.  log(1) = 0, log2(2^k) = k and log10(10^k) = k (k = 0..48) come
// out exact.
//
// Special cases and reports (direct form, error 246 for all three):
//   +-0                  -Inf, or -HUGE when IEEE results are off
//   x < 0 (-Inf too)     the quiet NaN; with IEEE results off the sign is
//                        flipped and the logarithm of |x| computed
//   NaN                  reported like a negative number: the quiet NaN,
//                        or with IEEE results off the sign is flipped and
//                        the NaN reported again, pass after pass, until
//                        the handler corrects it
//   +Inf                 +Inf
//   subnormal x          its logarithm, about -11355 to -11432
//
// Measured against MPFR (`mivor accuracy --count 100000 g_qlog g_qlog2
// g_qlog10`): at most 0.500 / 0.500013 / 0.500004 ulp, 99.999% or more
// correctly rounded.
#include "frame/report.h"
#include "mivor/mivor.h"
#include "quadfunc/kernels.h"
#include "quadfunc/special.h"

using namespace mivor;
using namespace mivor::quadfunc;

namespace {

using Pass = report::Step<Real16, Real16>;

enum class Base { e, two, ten };

template <Base base>
Pass log_pass(Real16 x) {
    const Kind k = kind_of(x);
    if (k == Kind::zero) return report::fail(Error::log_domain_r16, _MInf_Q, kMHugeQ);
    if (k == Kind::nan || quad::sign(x)) return report::fail_then_restart(Error::log_domain_r16, _NaN_Q, negated(x));
    if (k == Kind::infinite) return _Inf_Q;
    const Wide w = from_real16(x);
    if constexpr (base == Base::e) return log_rounded(w).value;
    else if constexpr (base == Base::two) return round_to_real16(log2_wide(w)).value;
    else return round_to_real16(log10_wide(w)).value;
}

template <Base base>
Real16* log_export(Real16* result, const Real16* arg) {
    *result = report::settle<report::Form::direct>(log_pass<base>, *arg);
    return result;
}

}  // namespace

extern "C" Real16* g_qlog(Real16* result, const Real16* x) { return log_export<Base::e>(result, x); }
extern "C" Real16* g_qlog2(Real16* result, const Real16* x) { return log_export<Base::two>(result, x); }
extern "C" Real16* g_qlog10(Real16* result, const Real16* x) { return log_export<Base::ten>(result, x); }
