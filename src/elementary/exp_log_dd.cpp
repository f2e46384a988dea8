// The general finishing step of the double-double exponential
// (exp_log_dd.h): results near and beyond the ends of the double range.
#include "elementary/exp_log_dd.h"

namespace mivor::elementary {

double scale_finish(std::int64_t m, double hi, double lo) {
    if (m > 1022) {
        // 2^1023 (hi + lo) 2^(m - 1023): the last factor, 2 or more,
        // overflows to +Inf by itself when it must.
        if (m > 1025) return double_from_bits(0x7FF0000000000000u);
        return ((hi + lo) * 0x1p1023) * double_from_bits(static_cast<std::uint64_t>(m) << 52);  // 2^(m - 1023)
    }
    if (m >= -1021) {
        const double r = (hi + lo) * double_from_bits(static_cast<std::uint64_t>(m + 1023) << 52);
        if (r >= 0x1p-1022) return r;  // normal: the scaling was exact
    }
    if (m < -1100) return 0.0;
    // Results that may lie below 2^-1022: with s = 2^(m + 1022) (normal),
    // the value is 2^-1022 (s hi + s lo).  When that sum is below 1 the
    // result is subnormal: 1 + s hi is split exactly into h + l, and
    // h + (l + s lo) rounds once, at the grid 2^-52 of [1, 2], which is the
    // subnormal grid 2^-1074 after the exact scaling by 2^-1022.
    const double s = double_from_bits(static_cast<std::uint64_t>(m + 1022 + 1023) << 52);
    const double a = s * hi;  // exact
    const double b = s * lo;
    if (a + b >= 1.0) return (a + b) * 0x1p-1022;  // normal after all
    const DD h = fast_two_sum(1.0, a);
    const double z = (h.hi + (h.lo + b)) - 1.0;  // the one rounding, then exact
    return z * 0x1p-1022;
}

double exp_finish(const ExpParts& e) {
    const std::int64_t m = e.k >> 8;
    if (m >= -1021 && m <= 1022) return exp_normal(e);
    return scale_finish(m, e.t, e.tail);
}

}  // namespace mivor::elementary
