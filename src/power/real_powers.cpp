// g_adxd, g_arxr: REAL(8) and REAL(4) raised to a real power of the same
// kind.
//
// Method: x**y = e^(y log x) with the double-double kernels of
// elementary/exp_log_dd.h: log x to 2^-68.5 relative, y log x as an exact
// high product of halves plus a low part, e^E from a 256-entry table and a
// degree-5 polynomial, rounded once.  Bound: 0.5 ulp + |y log x| (2^-68.5 +
// 2^-61) 2^53, at most 0.516 ulp over the whole range (|y log x| <= 745),
// subnormal results included (they are rounded once, onto their own grid);
// exact powers come out exact.  Measured: `mivor accuracy g_adxd`
// (see README).  REAL(4) widens its operands and rounds the REAL(8)
// power once more: correctly rounded but for results within 2^-29 ulp of
// a midpoint between two REAL(4) numbers.
//
// The hot path takes a positive normal base and an exponent of magnitude
// in [2^-64, 2^64) whose power is a normal number; everything else
// (special operands, results near or beyond the ends of the range, and
// the reports 266/267/1417, 262/263/1416) goes through power_pass in
// power/real_power.h, which lists the special cases.
#include "frame/dispatch.h"
#include "mivor/mivor.h"
#include "power/real_power.h"

using namespace mivor;

namespace {

// x positive, normal and finite; |y| in [2^-64, 2^64).
inline bool ordinary(std::uint64_t ix, std::uint64_t iy) {
    return ix - 0x0010000000000000u < 0x7FF0000000000000u - 0x0010000000000000u &&
           ((iy >> 52) & 0x7FF) - 0x3BF < 0x43F - 0x3BF;
}

}  // namespace

extern "C" MIVOR_DISPATCHED double g_adxd(const double* base, const double* exponent) {
    const double x = *base, y = *exponent;
    if (ordinary(bits_of(x), bits_of(y))) [[likely]] {
        const elementary::DD e = power::exponent_of_log(elementary::log_dd_normal(x), y);
        if (power::normal_range(e.hi)) [[likely]]
            return elementary::exp_normal(elementary::exp_dd(e.hi, e.lo));
    }
    return power::settle_power(x, y);
}

extern "C" MIVOR_DISPATCHED float g_arxr(const float* base, const float* exponent) {
    const float x = *base, y = *exponent;
    // Every positive normal REAL(4) and |y| in [2^-64, 2^64): |y log x| < 2^71,
    // and the REAL(4) range of results lies well inside the normal range of
    // the double kernel.
    if (ordinary(bits_of(static_cast<double>(x)), bits_of(static_cast<double>(y)))) [[likely]] {
        const elementary::DD e = power::exponent_of_log(elementary::log_dd_normal(x), y);
        if (power::normal_range(e.hi)) [[likely]] {
            const float p = static_cast<float>(elementary::exp_normal(elementary::exp_dd(e.hi, e.lo)));
            if (p != _Inf_F) return p;
        }
    }
    return power::settle_power(x, y);
}
