// The general finishing step of the double-double exponential
// (exp_log_dd.h): results near and beyond the ends of the double range.
#include "elementary/exp_log_dd.h"

namespace mivor::elementary {

double exp_finish(const ExpParts& e) {
    const std::int64_t m = e.k >> 8;
    if (m >= -1021 && m <= 1022) return exp_normal(e);
    const double y = e.t + e.tail;  // in [0.998, 2)
    if (m > 1022) {
        // 2^1023 y 2^(m - 1023): the last factor, 2 or more, overflows to
        // +Inf by itself when it must.
        if (m > 1025) return double_from_bits(0x7FF0000000000000u);
        return (y * 0x1p1023) * double_from_bits(static_cast<std::uint64_t>(m) << 52);  // 2^(m - 1023)
    }
    if (m < -1080) return 0.0;  // below 2^-1078
    // Results below 2^-1021: with s = 2^(m + 1022), the value is
    // 2^-1022 (s t + s tail).  When that sum is below 1 the result is
    // subnormal: 1 + s t is split exactly into h + l, and h + (l + s tail)
    // rounds once, at the grid 2^-52 of [1, 2], which is the subnormal grid
    // 2^-1074 after the exact scaling by 2^-1022.
    const double s = double_from_bits(static_cast<std::uint64_t>(m + 1022 + 1023) << 52);
    const double a = s * e.t;  // exact
    const double b = s * e.tail;
    if (a + b >= 1.0) return (a + b) * 0x1p-1022;  // normal after all (m = -1022)
    const DD h = fast_two_sum(1.0, a);
    const double z = (h.hi + (h.lo + b)) - 1.0;  // the one rounding, then exact
    return z * 0x1p-1022;
}

}  // namespace mivor::elementary
