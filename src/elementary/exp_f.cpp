// g_exp, g_exp2, g_exp10: e^x, 2^x, 10^x in REAL(4).
//
// One kernel for the three: z = x * 64/ln b in double (x is exact, the
// product within 2^-53 relative), k = round(z), r = z - k exact in
// [-1/2, 1/2]; b^x = 2^(k>>6) 2^((k&63)/64) 2^(r/64), the power of two from
// the hi column of the 64-entry table of the REAL(8) base-2 kernel with the
// exponent added to its bits, and 2^(r/64) by a degree-4 polynomial
// (relative error below 2^-48).  The double result carries a relative
// error below 2^-46 and is rounded once to REAL(4): at most 0.5 + 2^-22 ulp,
// correctly rounded except within 2^-22 ulp of a midpoint.  Over all 2^32
// arguments (tools/elementary/check_float.cpp) 5, 5 and 4 results of g_exp,
// g_exp2, g_exp10 are not correctly rounded, each within 10^-5 ulp of the
// half-way point.  Subnormal results come out of the same single rounding.  The REAL(4) forms work in
// double rather than in single precision: that is what makes them
// correctly rounded, and costs nothing on SSE2.
//
// Special cases:
//   NaN                          a quiet NaN, unreported.
//   result overflows REAL(4)     g_exp: error 229, g_exp10: error 241, direct
//                                form; without a retry +Inf, or 0x7F7FFFEE
//                                when IEEE results are off.  g_exp2 has no
//                                error number of its own: +Inf.
//   result below 2^-150          +0.0 (underflow is not reported).
#include <cstdint>

#include "elementary/exp_data.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

using namespace mivor;
using mivor::elementary::exp2_e;
using mivor::elementary::expf_c;

namespace {

constexpr double kShift = 0x1.8p+52;  // ulp 1: rounds z to an integer

inline double expf_kernel(double z) {
    const double kd = z + kShift;
    const std::uint64_t ki = bits_of(kd);  // k in the low bits, two's complement
    const double r = z - (kd - kShift);
    const std::uint64_t t = bits_of(exp2_e[ki & 63].hi) + ((ki >> 6) << 52);
    const double s = double_from_bits(t);
    const double r2 = r * r;
    const double p = r * (expf_c[0] + r * expf_c[1]) + r2 * r * (expf_c[2] + r * expf_c[3]);
    return s + s * p;
}

struct Base {
    double z_per_x;      // 64/ln b
    float careful;       // |x| from which the limits below are checked
    float overflow;      // above: the result overflows for sure
    float underflow;     // below: the result is +0.0 for sure
    bool reports;        // overflow is reported (else +Inf quietly)
    Error error;
};

constexpr Base kE{0x1.71547652b82fep+6, 0x1.5p+6f, 0x1.64p+6f, -0x1.ap+6f, true, Error::exp_overflow_r4};       // 84, 89, -104
constexpr Base kTwo{0x1p+6, 0x1.f8p+6f, 0x1p+7f, -0x1.2ep+7f, false, {}};                                     // 126, 128, -151
constexpr Base kTen{0x1.a934f0979a371p+7, 0x1.3p+5f, 0x1.38p+5f, -0x1.7p+5f, true, Error::exp10_overflow_r4};  // 38, 39, -46

template <const Base& base>
[[gnu::cold, gnu::noinline]] float careful(float x) {
    return report::settle<report::Form::direct>(
        [](float x) -> report::Step<float, float> {
            if (x != x) return x + x;
            if (x < base.underflow) return 0.0f;
            if (x <= base.overflow) {
                const auto y = static_cast<float>(expf_kernel(static_cast<double>(x) * base.z_per_x));
                if (y != _Inf_F) return y;
            }
            if constexpr (!base.reports) return _Inf_F;
            return report::fail(base.error, _Inf_F, kHuge_F);
        },
        x);
}

template <const Base& base>
inline float exp_f(const float* arg) {
    const float x = *arg;
    if (!(x < base.careful && x > -base.careful)) return careful<base>(x);
    return static_cast<float>(expf_kernel(static_cast<double>(x) * base.z_per_x));
}

}  // namespace

extern "C" MIVOR_DISPATCHED float g_exp(const float* arg) { return exp_f<kE>(arg); }
extern "C" MIVOR_DISPATCHED float g_exp2(const float* arg) { return exp_f<kTwo>(arg); }
extern "C" MIVOR_DISPATCHED float g_exp10(const float* arg) { return exp_f<kTen>(arg); }
