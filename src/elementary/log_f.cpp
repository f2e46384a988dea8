// g_alog, g_alog2, g_alog10 (also exported as g_log, g_log2, g_log10): the
// logarithms in REAL(4).
//
// Method, in double: x = 2^k z with z in [0.75, 1.5); z falls in one of 64
// intervals, r = z * invc - 1 is exact (invc has 29 bits, z 24), and
// ln x = k ln 2 + logc + ln(1 + r) with ln(1 + r) = r + r^2 Q(r), Q of
// degree 4 (relative error below 2^-44 on [-1/128, 1/64]).  Near 1 the
// table has invc = 1, so the result is r + r^2 Q(r) alone and keeps its
// relative accuracy.  log2 and log10 multiply the double by 1/ln b.  The
// double result is within about 2^-43 (relative) and is rounded once to
// REAL(4): correctly rounded except within 2^-19 ulp of a midpoint.  Over
// all 2^32 arguments (tools/elementary/check_float.cpp) 3, 0 and 3 results
// of g_alog, g_alog2, g_alog10 are not correctly rounded, each within
// 10^-5 ulp of the half-way point.
// Working in double rather than single precision is what makes that
// possible, at no cost on SSE2.
//
// Special cases:
//   x >= 2^-126, +Inf           main path; +Inf gives +Inf.
//   0 < x < 2^-126              x 2^23 and k - 23.
//   +-0                         error 244, direct form; without a retry
//                               -Inf, or 0xFF7FFFEE (-3.402820018375656e+38)
//                               when IEEE results are off.
//   x < 0, NaN                  error 244; without a retry the quiet NaN, or,
//                               with IEEE results off, ln |x| after the sign
//                               is flipped and everything starts again (a
//                               NaN is then reported on every pass).
#include <cstdint>

#include "elementary/log_data.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

using namespace mivor;
using namespace mivor::elementary;

namespace {

constexpr double kLn2 = 0x1.62e42fefa39efp-1;
constexpr double kInvLn2 = 0x1.71547652b82fep+0;
constexpr double kInvLn10 = 0x1.bcb7b1526e50ep-2;
constexpr std::uint32_t kNegHugeBits = 0xFF7FFFEEu;

// ix: the bits of a positive normal x; k_offset: -23 for scaled subnormals.
inline double ln_kernel(std::uint32_t ix, int k_offset) {
    const std::uint32_t tmp = ix - 0x3F400000u;  // bits of 0.75
    const unsigned i = (tmp >> 17) & 63;
    const std::int32_t k = static_cast<std::int32_t>(tmp) >> 23;
    const double z = static_cast<double>(float_from_bits(ix - (tmp & 0xFF800000u)));
    const LogfEntry& t = logf_table[i];
    const double r = z * t.invc - 1.0;
    const double r2 = r * r;
    const double q = (logf_c[0] + r * logf_c[1]) + r2 * (logf_c[2] + r * (logf_c[3] + r * logf_c[4]));
    return (static_cast<double>(k + k_offset) * kLn2 + t.logc) + (r + r2 * q);
}

template <int base>
inline float finish(double ln) {
    if constexpr (base == 2) return static_cast<float>(ln * kInvLn2);
    else if constexpr (base == 10) return static_cast<float>(ln * kInvLn10);
    else return static_cast<float>(ln);
}

template <int base>
[[gnu::cold, gnu::noinline]] float special(float x) {
    return report::settle<report::Form::direct>(
        [](float x) -> report::Step<float, float> {
            const std::uint32_t ix = bits_of(x);
            if (ix >= 0x00800000u && ix < 0x7F800000u) return finish<base>(ln_kernel(ix, 0));
            if (ix == 0x7F800000u) return x;
            if (x > 0.0f) return finish<base>(ln_kernel(bits_of(x * 0x1p23f), -23));
            if (x == 0.0f) return report::fail(Error::log_domain_r4, _MInf_F, float_from_bits(kNegHugeBits));
            return report::fail_then_restart(Error::log_domain_r4, _NaN_F, -x);  // as the REAL(8) logarithm
        },
        x);
}

template <int base>
inline float log_f(const float* arg) {
    const float x = *arg;
    const std::uint32_t ix = bits_of(x);
    if (ix - 0x00800000u >= 0x7F800000u - 0x00800000u) [[unlikely]]
        return special<base>(x);
    return finish<base>(ln_kernel(ix, 0));
}

}  // namespace

extern "C" MIVOR_DISPATCHED float g_alog(const float* arg) { return log_f<0>(arg); }
extern "C" MIVOR_DISPATCHED float g_alog2(const float* arg) { return log_f<2>(arg); }
extern "C" MIVOR_DISPATCHED float g_alog10(const float* arg) { return log_f<10>(arg); }
extern "C" MIVOR_DISPATCHED float g_log(const float* arg) { return log_f<0>(arg); }
extern "C" MIVOR_DISPATCHED float g_log2(const float* arg) { return log_f<2>(arg); }
extern "C" MIVOR_DISPATCHED float g_log10(const float* arg) { return log_f<10>(arg); }
