// g_adxd, g_arxr: REAL(8) and REAL(4) raised to a real power of the same
// kind.
//
// Method: x**y = e^(y log x) with log x to 2^-68.5 relative as a
// double-double (elementary/exp_log_dd.h), y log x reduced modulo ln2/256
// straight from its pieces and e^E from a 256-entry table and a degree-5
// polynomial, rounded once (power/real_power.h gives the steps and the
// error): at most 0.524 ulp by analysis over the whole range
// (|y log x| <= 745), subnormal results included (they are rounded once,
// onto their own grid);
// exact powers come out exact.  Measured: `mivor accuracy g_adxd`
// (see README).  REAL(4) widens its operands and rounds the REAL(8)
// power once more: correctly rounded but for results within 2^-29 ulp of
// a midpoint between two REAL(4) numbers.
//
// The hot path takes a positive normal base and any exponent whose power
// lies between about 2^-866 and 2^1023; everything else
// (special operands, results near or beyond the ends of the range, and
// the reports 266/267/1417, 262/263/1416) goes through power_pass in
// power/real_power.h, which lists the special cases.
#include "frame/dispatch.h"
#include "mivor/mivor.h"
#include "power/real_power.h"

using namespace mivor;

namespace {

// x positive, normal and finite.  y is not tested: an infinite, NaN or
// too large y log x fails the range test on v, and a zero or tiny y gives
// r = 0 or next to it, so 1 as the report pass would.
inline bool ordinary(std::uint64_t ix) {
    return ix - 0x0010000000000000u < 0x7FF0000000000000u - 0x0010000000000000u;
}

}  // namespace

extern "C" MIVOR_DISPATCHED double g_adxd(const double* base, const double* exponent) {
    const double x = *base, y = *exponent;
    if (ordinary(bits_of(x))) [[likely]] {
        const elementary::DD l = elementary::log_dd_normal(x);
        const double v = power::scaled_exponent(l, y);
        if (power::scaled_range(v)) [[likely]] return power::exp_scaled(power::reduce_product(l, y, v));
    }
    return power::settle_power(x, y);
}

extern "C" MIVOR_DISPATCHED float g_arxr(const float* base, const float* exponent) {
    const float x = *base, y = *exponent;
    // The REAL(4) range of results lies well inside the scaled range of the
    // double kernel; a power beyond the largest REAL(4) is reported.
    if (ordinary(bits_of(static_cast<double>(x)))) [[likely]] {
        const elementary::DD l = elementary::log_dd_normal(x);
        const double v = power::scaled_exponent(l, y);
        if (power::scaled_range(v)) [[likely]] {
            const float p = static_cast<float>(power::exp_scaled(power::reduce_product(l, y, v)));
            if (p != _Inf_F) return p;
        }
    }
    return power::settle_power(x, y);
}
