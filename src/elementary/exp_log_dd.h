// The logarithm as a double-double, and the exponential of a double-double:
// the kernels behind the real powers (x**y, 2**x, 10**x), gamma, log-gamma,
// erfc and the complex functions, which need log x to far more than double
// precision (x**y = e^(y log x), and |y log x| reaches 745) and e^E of an E
// known to more than double precision.
//
// log_dd(x), x finite and positive (subnormals included):
//   x = 2^k z with z in [0.705, 1.41) by the bit pattern; z falls in one of
//   128 cells with a short inverse invc (exp_log_dd_data.h), and
//     log x = k ln2 - log(invc) + log1p(r),  r = z invc - 1, |r| <= 2^-7.99.
//   r is carried exactly as rhi + rlo: z = zhi + zlo with zhi rounded to 21
//   bits, rhi = zhi invc - 1 and rlo = zlo invc are exact, and so is
//   rhi^2/2 (rhi has at most 26 bits).  The large terms
//     t1 = k Ln2hi + logc_hi  (exact),  + rhi,  + rlo,  - rhi^2/2,  + A0 rhi^3
//   are added by four exact Fast2Sum steps, so that the value keeps every
//   bit of the first-order terms, also in the cell around 1 where log x is r
//   itself, and the low part is small; the rest (the four rounding errors,
//   k Ln2lo + logc_lo, the rest rlo (rhi^2 - rhi - rlo/2 + rhi rlo +
//   A0 rlo^2) of the terms of degree 2 and 3, and r^4 (A1 + ... + A5 r^4))
//   is summed in double into
//   lo.  Every step depends on rhi, not r, so that the chain is short.  Errors, relative to log x: the cubic term is
//   evaluated to 2^-51.4 of its size (fit 2^-53 and four roundings), and it
//   is at most 2^-17.6 of log x (|r| <= 2^-8 and log x ~ r in the cell
//   around 1; |r| <= 2^-9 and |log x| >= 2^-9 in the cells next to it, less
//   further out): 2^-69; the roundings in lo (|lo| <= 2^-32 against
//   |log x| >= 2^-9, or scaling with r around 1): 2^-75; the table, below
//   2^-80.  So
//     |hi + lo - log x| <= 2^-68.5 |log x|,  |lo| <= 2^-22 |hi|.
//   The pair is not renormalised (the low part is small enough for the
//   exponential's reduction: see power/real_power.h).
//   log_dd(1) is 0 + 0.
//
// exp_dd(ehi, elo), |ehi| <= 746, |elo| <= 2^-24 |ehi| + 2^-14.5:
//   k = round(ehi 256/ln2) (from the high part alone, so that the reduction
//   need not wait for the low part), r = ehi - k Ln2Nhi (exact: Ln2Nhi has
//   34 bits and |k| < 2^19) + (elo - k Ln2Nlo), |r| <= ln2/512 (1 + 2^-8) +
//   2^-14.4, rounded once (2^-62.4 relative to the result);
//   e^E = 2^(k >> 8) (T + (Tlo + T p(r))), T + Tlo = 2^((k & 255)/256) from
//   the exponential's table (|error| < 2^-106), p(r) = e^r - 1 with
//   |error| < 2^-70.9; T p and the tail round once each (2^-62.4, 2^-62).
//   t + tail gives e^E / 2^(k >> 8), t in [1, 2), to 2^-61.
//
// Finishing: exp_normal() scales t + tail, rounded once, by 2^m, m = k >> 8,
// when 2^m and the result are normal numbers (m in [-1021, 1022]);
// exp_finish() gives the same bits there and also rounds results below
// 2^-1022 once onto the subnormal grid (adding 1 first, so that the
// rounding happens at the grid of the result: one rounding, not two), and
// overflows to +Inf.  With |E| <= 745 the error of x**y is at most
// 0.5 ulp + 745 (2^-68 + 2^-61) 2^53 = 0.520 ulp, and 0.501 for |E| <= 1.
#pragma once

#include <cstdint>

#include "elementary/double_double.h"
#include "elementary/exp_data.h"
#include "elementary/exp_log_dd_data.h"
#include "frame/values.h"

namespace mivor::elementary {

// log x for a positive normal x (x < 2^-1022 is not allowed here).
inline DD log_dd_normal(double x) {
    namespace t = exp_log_dd_data;
    const std::uint64_t ix = bits_of(x);
    const std::uint64_t offset = ix - t::kZoff;
    const t::Cell& c = t::cells[(offset >> 45) & 127];
    const auto k = static_cast<std::int64_t>(offset) >> 52;
    const std::uint64_t iz = ix - (static_cast<std::uint64_t>(k) << 52);
    const double kd = static_cast<double>(k);

    const double z = double_from_bits(iz);
    const double zhi = double_from_bits((iz + 0x80000000u) & ~std::uint64_t{0xFFFFFFFF});
    const double zlo = z - zhi;
    const double rhi = zhi * c.invc - 1.0;  // exact
    const double rlo = zlo * c.invc;        // exact
    const double r = rhi + rlo;

    const double t1 = kd * t::Ln2hi + c.logc_hi;  // exact
    const double rhi2 = rhi * rhi;                // exact
    const DD s1 = fast_two_sum(t1, rhi);
    const DD s2 = fast_two_sum(s1.hi, rlo);
    const DD s3 = fast_two_sum(s2.hi, -0.5 * rhi2);
    const DD s4 = fast_two_sum(s3.hi, t::A0 * (rhi2 * rhi));

    // The rest of -r^2/2 and of A0 r^3 (3 A0 = 1 to 2^-53), and the terms of
    // degree 4 and more.
    const double r2 = r * r;
    const double r4 = r2 * r2;
    const double poly = r4 * (t::A1 + t::A2 * r) + (r4 * r2) * ((t::A3 + t::A4 * r) + r2 * t::A5);
    const double cross = rlo * ((rhi2 - (rhi + 0.5 * rlo)) + rlo * (rhi + t::A0 * rlo));
    const double lo = (((s1.lo + s2.lo) + (kd * t::Ln2lo + c.logc_lo)) + (s3.lo + s4.lo)) + (cross + poly);
    return {s4.hi, lo};
}

// log x for a normal x whose logarithm is far from 0 (x <= 1/2 or x >= 2,
// |log x| >= ln 2): the same reduction as log_dd_normal, but since
// |k ln2 + log c| >= 0.68 dominates the sum, one Fast2Sum of t1 and rhi
// keeps the first-order bits and every term of degree 2 and more goes into
// lo in plain double: -r^2/2 to 2^-52 of its size (r rounded once, 2^-53),
// 2^-69 absolute, the roundings in lo (|lo| <= 2^-16) 2^-67, and the term
// A5 r^8 (below 2^-66.9) is left out.  So
//   |hi + lo - log x| <= 2^-66 |log x|, at less than half the latency of
// log_dd (log-gamma, where the logarithm is added to a term of its own
// size, needs no more).  Not normalised: |lo| <= 2^-15 |hi|.
inline DD log_dd_far(double x) {
    namespace t = exp_log_dd_data;
    const std::uint64_t ix = bits_of(x);
    const std::uint64_t offset = ix - t::kZoff;
    const t::Cell& c = t::cells[(offset >> 45) & 127];
    const auto k = static_cast<std::int64_t>(offset) >> 52;
    const std::uint64_t iz = ix - (static_cast<std::uint64_t>(k) << 52);
    const double kd = static_cast<double>(k);

    const double z = double_from_bits(iz);
    const double zhi = double_from_bits((iz + 0x80000000u) & ~std::uint64_t{0xFFFFFFFF});
    const double zlo = z - zhi;
    const double rhi = zhi * c.invc - 1.0;  // exact
    const double rlo = zlo * c.invc;        // exact
    const double r = rhi + rlo;

    const double t1 = kd * t::Ln2hi + c.logc_hi;  // exact
    const DD s = fast_two_sum(t1, rhi);
    const double r2 = r * r;
    const double r4 = r2 * r2;
    const double poly = (r2 * (-0.5 + t::A0 * r) + r4 * (t::A1 + t::A2 * r)) + (r4 * r2) * (t::A3 + t::A4 * r);
    return {s.hi, ((s.lo + rlo) + (kd * t::Ln2lo + c.logc_lo)) + poly};
}

// log x for any finite positive x, subnormals included.
inline DD log_dd(double x) {
    if (bits_of(x) >= 0x0010000000000000u) [[likely]] return log_dd_normal(x);
    // x 2^52 is normal; its logarithm (below -672) less 52 ln2: 52 Ln2hi is
    // exact and smaller, so one Fast2Sum keeps every bit.
    const DD l = log_dd_normal(x * 0x1p52);
    const DD s = fast_two_sum(l.hi, -52.0 * exp_log_dd_data::Ln2hi);
    return {s.hi, (s.lo + l.lo) - 52.0 * exp_log_dd_data::Ln2lo};
}

// e^E = 2^(k >> 8) (t + tail).
struct ExpParts {
    std::int64_t k;
    double t, tail;
};

inline constexpr double kExpShift = 0x1.8p52;  // k in the low bits of kExpShift + v

// The exponential of r + j ln2/256 for an already reduced |r| <= ln2/512
// (1 + 2^-8) + 2^-14: the table and polynomial step.
inline ExpParts exp_reduced(std::int64_t k, double r) {
    namespace t = exp_log_dd_data;
    const double r2 = r * r;
    const double p = r + (r2 * (t::Q0 + t::Q1 * r) + (r2 * r2) * (t::Q2 + t::Q3 * r));
    const Split& e = exp_e[k & 255];
    return {k, e.hi, e.lo + e.hi * p};
}

inline ExpParts exp_dd(double ehi, double elo) {
    namespace t = exp_log_dd_data;
    const double shifted = ehi * t::InvLn2N + kExpShift;
    const auto k = static_cast<std::int64_t>(bits_of(shifted) - bits_of(kExpShift));
    const double kd = shifted - kExpShift;
    const double r = (ehi - kd * t::Ln2Nhi) + (elo - kd * t::Ln2Nlo);
    return exp_reduced(k, r);
}

// 2^(k >> 8) (t + tail) when k >> 8 lies in [-1021, 1022].
inline double exp_normal(const ExpParts& e) {
    const double scale = double_from_bits(static_cast<std::uint64_t>((e.k >> 8) + 1023) << 52);
    return scale * (e.t + e.tail);
}

// 2^(k >> 8) (t + tail) for any k: +Inf beyond the largest double,
// results below 2^-1022 rounded once onto the subnormal grid, +0 below half
// the least subnormal.
double exp_finish(const ExpParts& e);

// 2^m (hi + lo) rounded once, for hi in [2^-60, 2) and |lo| <= 2^-50 hi:
// the same rules at the ends of the range.
double scale_finish(std::int64_t m, double hi, double lo);

}  // namespace mivor::elementary
