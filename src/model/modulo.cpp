// MODULO(A, P) of the real kinds: g_modlr, g_modld, g_modlq.
//
// The formula A - FLOOR(A / P) * P, each step rounded as the run-time has
// always done it:
//   q = A / P, rounded to the kind (REAL(4)/REAL(8): divided on the x87
//       stack and stored, so a REAL(8) quotient is rounded twice, to 64
//       bits and then to 53);
//   f = FLOOR(q), exact (the FLOOR kernels of quad/floor.h);
//   A - f * P on the x87 stack, rounded to the kind once on return.
// REAL(16) takes the same steps with g_aqdq, FLOOR, g_aqmq and g_aqsq, whose
// own reports (278, 279, 1397, 1398) reach the caller unchanged.
//
// No exact remainder is formed, deliberately: when A / P is large or
// rounds up to an integer, q's rounding shows in the result (MODULO(A, P)
// may come out as P itself, or off by one P), and a zero result is +0
// whatever the signs (A - f * P of equal values).  Infinities and NaNs go
// through the arithmetic: an infinite A or P gives a NaN.
//
// A zero P (either sign; for REAL(16) word 3 alone decides, as for the
// REAL(16) operators) is error 1396 in the short form: the handler is
// called and its retry word ignored, and the result is the largest finite
// value of the kind -- the true maximum 0x7F7FFFFF / 0x7FEFFFFFFFFFFFFF /
// 0x7FFEFFFF FFFFFFFF FFFFFFFF FFFFFFFF, unlike the slightly smaller
// substitutes of the power operators.
#include "frame/report.h"
#include "frame/x87.h"
#include "mivor/mivor.h"
#include "quad/floor.h"

namespace mivor::model {
namespace {

constexpr float kMax_F = std::bit_cast<float>(0x7F7FFFFFu);
constexpr double kMax_D = std::bit_cast<double>(0x7FEFFFFFFFFFFFFFu);
constexpr Real16 kMax_Q = quad::make(0x7FFEFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu, 0xFFFFFFFFu);

template <class T>
T formula(T a, T p) {
    x87::ExtendedPrecision scope;
    const long double la = scope.pin(a), lp = scope.pin(p);
    const T q = static_cast<T>(scope.pin(la / lp));
    const long double f = quad::floor_of(q);
    return static_cast<T>(scope.pin(la - f * lp));
}

template <class T>
T modulo(T a, T p, T largest) {
    return report::settle<report::Form::short_form>(
        [largest](T a, T p) -> report::Step<T, T, T> {
            if (p == T(0)) return report::fail(Error::modulo_zero, largest);
            return formula(a, p);
        },
        a, p);
}

Real16 modulo(const Real16& a, const Real16& p) {
    return report::settle<report::Form::short_form>(
        [](Real16 a, Real16 p) -> report::Step<Real16, Real16, Real16> {
            if ((p.w[3] & ~quad::kSignBit) == 0) return report::fail(Error::modulo_zero, kMax_Q);
            Real16 q, t, r;
            g_aqdq(&q, &a, &p);
            const Real16 f = quad::floor_real16(q);
            g_aqmq(&t, &f, &p);
            g_aqsq(&r, &a, &t);
            return r;
        },
        a, p);
}

}  // namespace
}  // namespace mivor::model

using namespace mivor;

// Results come from arithmetic (NaNs quiet) or are finite: no by_value.
extern "C" float g_modlr(const float* a, const float* p) { return model::modulo(*a, *p, model::kMax_F); }

extern "C" double g_modld(const double* a, const double* p) { return model::modulo(*a, *p, model::kMax_D); }

extern "C" mivor_real16* g_modlq(mivor_real16* result, const mivor_real16* a, const mivor_real16* p) {
    *result = model::modulo(*a, *p);  // both read before the result is written
    return result;
}
