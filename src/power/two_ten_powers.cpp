// g_a2xd, g_a2xr, g_atxd, g_atxr: two and ten raised to a REAL(8) or
// REAL(4) power.
//
// 2**y: k = round(256 y), d = y - k/256 exactly, r = d ln2 (rounded once:
// 2^-62.5 relative), and the exponential's table and polynomial step of
// elementary/exp_log_dd.h.  10**y: y ln10 as a double-double (y's halves
// times the 26-bit high part of ln10 are exact; the low part adds 2^-78
// relative), then the double-double exponential.  Both round once: at most
// 0.501 ulp (0.5 + 2^-61 relative), integral exponents give exact powers
// (2**-1074, 10**22).  Subnormal results are rounded once onto their grid.
// REAL(4) rounds the REAL(8) power once more.
//
// Overflow (the power is infinite: y >= 1024, y > 308.25, or y = +Inf for
// REAL(8); the REAL(4) range for REAL(4)) is reported as for the general
// power, 1417 / 1416 with +Inf or the finite substitute, and the report
// describes the constant base (2.0 or 10.0 of the operand's kind) as the
// first operand and the exponent as the second.  The base is the
// operator's own constant, not the caller's operand: a retry takes the
// handler's exponent and keeps the base, so 2**y and 10**y stay powers of
// their base and report nothing but their overflow.  NaN gives NaN,
// underflow +0, neither reported.
#include "frame/dispatch.h"
#include "mivor/mivor.h"
#include "power/real_power.h"

using namespace mivor;
using elementary::DD;

namespace {

// 2**y = 2^(k >> 8) (t + tail) for |y| < 2^42.
inline elementary::ExpParts two_parts(double y) {
    const double shifted = y * 256.0 + elementary::kExpShift;
    const auto k = static_cast<std::int64_t>(bits_of(shifted) - bits_of(elementary::kExpShift));
    const double d = y - (shifted - elementary::kExpShift) * 0x1p-8;  // exact, |d| <= 2^-9
    return elementary::exp_reduced(k, d * elementary::exp_log_dd_data::Ln2);
}

// 2**y for any y.
double two_to(double y) {
    if (!(y < 1024.0)) return y + _Inf_D;  // +Inf, or the NaN
    if (y < -1080.0) return 0.0;
    return elementary::exp_finish(two_parts(y));
}

// y ln10 as a double-double.
inline DD ten_exponent(double y) {
    namespace t = elementary::exp_log_dd_data;
    const double yhi = elementary::upper(y), ylo = y - yhi;
    const DD p = elementary::fast_two_sum(yhi * t::Ln10hi, ylo * t::Ln10hi);
    return {p.hi, p.lo + y * t::Ln10lo};
}

// 10**y for any y.
double ten_to(double y) {
    if (!(y < 308.5)) return y + _Inf_D;
    if (y < -330.0) return 0.0;
    return power::exp_any(ten_exponent(y));
}

template <class T>
report::Step<T, T, T> two_pass(T /*the constant base*/, T y) {
    const T p = static_cast<T>(two_to(y));
    if (p == power::Kind<T>::inf) return report::fail(power::Kind<T>::overflow, power::Kind<T>::inf, power::Kind<T>::huge);
    return p;
}

template <class T>
report::Step<T, T, T> ten_pass(T /*the constant base*/, T y) {
    const T p = static_cast<T>(ten_to(y));
    if (p == power::Kind<T>::inf) return report::fail(power::Kind<T>::overflow, power::Kind<T>::inf, power::Kind<T>::huge);
    return p;
}

template <class T>
[[gnu::cold, gnu::noinline]] T settle_two(T y) {
    return report::settle<report::Form::full>(two_pass<T>, T(2), y);
}

template <class T>
[[gnu::cold, gnu::noinline]] T settle_ten(T y) {
    return report::settle<report::Form::full>(ten_pass<T>, T(10), y);
}

}  // namespace

extern "C" MIVOR_DISPATCHED double g_a2xd(const double* exponent) {
    const double y = *exponent;
    if (y > -1020.0 && y < 1020.0) [[likely]] return elementary::exp_normal(two_parts(y));
    return settle_two(y);
}

extern "C" float g_a2xr(const float* exponent) {
    const float y = *exponent;
    if (y > -1020.0f && y < 128.0f) [[likely]] return static_cast<float>(elementary::exp_normal(two_parts(y)));
    return settle_two(y);
}

extern "C" MIVOR_DISPATCHED double g_atxd(const double* exponent) {
    const double y = *exponent;
    if (y > -306.0 && y < 306.0) [[likely]] {
        const DD e = ten_exponent(y);
        return elementary::exp_normal(elementary::exp_dd(e.hi, e.lo));
    }
    return settle_ten(y);
}

extern "C" float g_atxr(const float* exponent) {
    const float y = *exponent;
    if (y > -306.0f && y < 38.0f) [[likely]] {
        const DD e = ten_exponent(y);
        return static_cast<float>(elementary::exp_normal(elementary::exp_dd(e.hi, e.lo)));
    }
    return settle_ten(y);
}
