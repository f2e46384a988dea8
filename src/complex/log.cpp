// g_clog, g_cdlog: the principal logarithm log z = log|z| + i arg z,
// COMPLEX(4) and COMPLEX(8).
//
// Method (complex/functions.h):
//   real part  log|z| as a double-double rounded once.  Away from |z| = 1
//              it is (log(s) + k ln2) with s = x^2 + y^2 of the pair scaled
//              by 2^-k into safe range (both squares exact, the sum to
//              2^-104), log s from the double-double logarithm (2^-68.5
//              relative).  Near |z| = 1, where log|z| cancels, it is
//              log1p(d)/2 with d = x^2 + y^2 - 1 added up from the exact
//              squares with every rounding error kept, so the result is
//              as accurate as log1p of an exact argument;
//   imaginary  atan2(y, x) as a double-double (complex/functions.h: the
//              quotient of the parts reduced around 0, 1/4, 1/2 or 1, the
//              series of the arctangent with r^3/3 in double: 2^-59.6
//              relative), rounded once: within 0.5 ulp + 2^-6.6 ulp
//              (correctly rounded on every argument measured), the C signs
//              of zero kept
//              (the angle of (-0, -0) is -pi, of (-1, +0) is +pi, of
//              (-1, -0) is -pi: the branch cut follows the sign of zero).
//              Zeros, infinities and NaNs take the x87 partial arctangent,
//              which gives the angles of C99.
// Accuracy, COMPLEX(8): the real part within 0.5 ulp + 2^-13 ulp
// (measured: `mivor accuracy --count 1000000 g_cdlog`, both parts
// correctly rounded on 10^6 random arguments and on the hard ranges: near
// |z| = 1, with huge and tiny parts, the branch cut).  COMPLEX(4) uses the same kernel on its
// parts in double and rounds each part once more.
//
// Special values (C99 Annex G): log(+-0 + i0) = (-Inf, +0 or +pi) with
// the signs of the zeros; an infinite part gives +Inf (with the angle of
// the infinities: pi/4, 3pi/4, pi/2, 0, pi), otherwise a NaN part gives
// NaN parts.
//
// Reports: g_clog of (+-0, +-0) reports 247, direct form, the record
// describing both parts (REAL(4), count 2); a retry runs again on the
// corrected parts.  Without one: the IEEE value above, or with IEEE
// results off what the real counterparts give as their substitutes: the
// logarithm of zero's -0x7F7FFFEE and ATAN2 of two zeros' +0.0.  g_cdlog
// reports nothing: the logarithm of zero is (-Inf, angle).
#include "complex/functions.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

namespace mivor::complex {
namespace {

constexpr std::uint32_t kNegHuge_F_bits = 0xFF7FFFEEu;  // the REAL(4) logarithm's substitute for log 0

mivor_complex4 clog4(float x, float y) {
    return {static_cast<float>(log_modulus(x, y)), angle_f(y, x)};
}

[[gnu::cold, gnu::noinline]] mivor_complex4 log_of_zero(float x, float y) {
    return report::settle<report::Form::direct>(
        [](float x, float y) -> report::Step<mivor_complex4, float, float> {
            if (x != 0.0f || y != 0.0f) return clog4(x, y);
            return report::fail(Error::complex_log_c4, mivor_complex4{_MInf_F, angle_f(y, x)},
                                mivor_complex4{float_from_bits(kNegHuge_F_bits), 0.0f});
        },
        x, y);
}

}  // namespace
}  // namespace mivor::complex

using namespace mivor;

// The operand is read before the result area, which may be the same, is
// written.
extern "C" mivor_complex4* g_clog(mivor_complex4* result, const mivor_complex4* z) {
    const float x = z->re, y = z->im;
    *result = x != 0.0f || y != 0.0f ? complex::clog4(x, y) : complex::log_of_zero(x, y);
    return result;
}

extern "C" mivor_complex8* g_cdlog(mivor_complex8* result, const mivor_complex8* z) {
    *result = complex::log_of(z->re, z->im);
    return result;
}
