// g_dgamma, g_gamma: the gamma function; g_dlgama, g_algama, g_lgamma: the
// logarithm of its magnitude; REAL(8) and REAL(4).
//
// Method.  Gamma goes through log |gamma| as a double-double:
//   0 < x < 1/2     -log x (elementary/exp_log_dd.h) + lgamma(1 + x), the
//                   latter from the rows of `small` (gamma_data.h);
//   1/2 <= x < 16   one polynomial per row of `main` (width 1/32 below 1,
//                   1/16 below 2, eighths of each binade above), evaluated as
//                   c0 + c1 d + d^2 q(d) with c0 and c1 double-doubles and
//                   c1 d formed exactly; around the zeros 1 and 2 the rows
//                   are polynomials in x - 1 and x - 2 with a factor of it,
//                   so that lgamma keeps its relative accuracy there;
//   x >= 16         Stirling: (x - 1/2)(log x - 1) + (log(2 pi) - 1)/2 +
//                   S(1/x), the product of double-doubles, S of degree 13;
//   -190 < x < 0    y = x + n in (-1, 0) with n = trunc(-x) (exact), and
//                   gamma(x) = gamma(1 + y) / (y x (x + 1) ... (x + n - 1)),
//                   the factors exact, their product a double-double kept
//                   scaled by a power of two;
//   x <= -190       gamma underflows to a signed zero; log-gamma by the
//                   reflection log pi - log |x sin(pi x)| - lgamma(-x), the
//                   sine to double precision (the result is above 800 in
//                   size).
// gamma = e^(log gamma) through the double-double exponential, which
// rounds once (onto the subnormal grid too).
//
// REAL(8) log-gamma of a positive normal x below 2^52 is rounded once from
// a sum whose large terms alone are exact, the rest in plain double (it
// needs no double-double result, unlike gamma's exponential):
//   2^-8 <= x < 1024  one row: those of `main` (up to 1024: eighths of a
//                   binade beyond 16) and of `low` (eighths of a binade
//                   below 1/2), the zero rows as for gamma; elsewhere
//                   c0hi + c1hi d exact (c1hi has 26 bits, its products with
//                   the halves of d exact), the rest summed in double;
//   x < 2^-8        -log x from log_dd_far (2^-66, its low part unnormalised)
//                   + the zero row at 0 (below 2^-11 of the value);
//   1024 <= x       Stirling with (x - 1/2)(hi - 1) exact (two_prod), the
//                   rest and S (two terms) in double.
// Other arguments (negative, subnormal, beyond 2^52) take the double-double
// path above.  The REAL(4) forms round the REAL(8) results.
//
// Accuracy.  The rows' fits are at most 2^-56.6 relative (2^-59 outside
// the rows next to 1 and 2, 2^-62.8 in `low`, 2^-63 beyond 8), Stirling's
// series 2^-54 of S (below 2^-61 absolute), log_dd 2^-68.5, the
// exponential 2^-61.  For gamma, in the rows the leading terms c0 + c1 d
// (and in the zero rows c2 d^2 too) are formed exactly; the rest is at most
// a fifth of the value at the ends of the widest zero row, so its roundings
// add a few hundredths of an ulp; gamma, whose error is the absolute error
// of the logarithm, 0.5 + 2^53 (27.9 2^-59 + 2^-61) = 0.7 ulp below 16 and
// less above.  Log-gamma's rows outside the zero rows: the rounded part
// d (c1lo + d q) + c1hi dl is at most 2^-4.9 of the value (at 2.25, next
// to the zero row [2, 2.25); 2^-5.5 in [17/16, 9/8), below 2^-6
// elsewhere), rounded to about 2^-52 of itself: 0.5 + 0.07 ulp; in the
// zero rows 0.5 + 0.14 + 0.05 ulp as for gamma; below 2^-8 and beyond
// 1024, 0.5 + 0.01.  Near the zeros of log-gamma on the negative axis
// (near -2.46, -2.75, ..., and within 2^-40 of each negative integer
// beyond) the subtraction cancels: there the error is absolute, about
// 2^-60 |log |x||.  Measured (`mivor accuracy --count
// 1000000 g_dgamma g_dlgama`, README): gamma 0.511 ulp, log-gamma
// 0.545 ulp (at 2.235, a zero row; 0.542 at 2.252 in the plain rows) and
// 0.90 ulp at the zero near -2.7477.  REAL(4): the REAL(8) value rounded once more, correctly
// rounded on every argument but the few whose value lies within 2^-29 of a
// halfway point (`mivor accuracy --exhaustive`).
//
// Special cases and reports (direct form, the argument described):
//   gamma: +-0 and x > 171.62 (+Inf included), and positive x below
//   5.6e-309, whose gamma exceeds the largest double: error 251 (REAL(4):
//   250 for the REAL(4) range), IEEE +-Inf by the sign of the result or
//   the finite substitute of that sign; a negative integer or -Inf: the
//   same error, IEEE NaN, otherwise the finite substitute.
//   log-gamma: REAL(8) reports nothing: poles (0 and the negative
//   integers) and +-Inf give +Inf.  REAL(4) reports 253 for the poles and
//   for results beyond the REAL(4) range (+-Inf included), IEEE +Inf or
//   the finite substitute.  NaN gives NaN, unreported.
#include <cmath>
#include <cstdint>

#include "elementary/gamma_data.h"
#include "elementary/exp_log_dd.h"
#include "frame/dispatch.h"
#include "frame/report.h"
#include "frame/special_values.h"
#include "mivor/mivor.h"

using namespace mivor;
using namespace mivor::elementary;

namespace {

namespace t = gamma_data;

constexpr double kGammaOverflow = 171.62437695630272;  // gamma(x) > DBL_MAX above
constexpr double kPi = 0x1.921fb54442d18p+1;
constexpr double kLogPi = 0x1.250d048e7a1bdp+0;

DD row_value(const t::Row& w, double x) {
    const double d = x - w.mid;  // exact: see gamma_data.h
    const DD p = two_prod(d, w.c1hi);
    const double* c = w.c;
    const double d2 = d * d, d4 = d2 * d2, d8 = d4 * d4;
    if (w.c0hi == 0.0) {
        // A zero row: c1 d and c2 d^2 are of one size (a fifth of the value
        // at the far end of [2, 2.25)), so c2 d^2 is formed exactly too and
        // only d^3 (c3 + ...), below a hundredth of the value, is rounded.
        const DD dd = two_prod(d, d);
        const DD t = two_prod(dd.hi, c[0]);
        const double r = ((c[1] + c[2] * d) + d2 * (c[3] + c[4] * d)) + d4 * ((c[5] + c[6] * d) + d2 * (c[7] + c[8] * d)) +
                         d8 * c[9];
        const DD u = two_sum(p.hi, t.hi);
        return {u.hi, u.lo + (p.lo + (t.lo + (dd.lo * c[0] + (d * w.c1lo + w.c0lo) + dd.hi * d * r)))};
    }
    const double q = ((c[0] + c[1] * d) + d2 * (c[2] + c[3] * d)) +
                     d4 * ((c[4] + c[5] * d) + d2 * (c[6] + c[7] * d)) + d8 * (c[8] + c[9] * d);
    const DD s = two_sum(w.c0hi, p.hi);
    return {s.hi, s.lo + (p.lo + (w.c0lo + (d * w.c1lo + d2 * q)))};
}

// lgamma(1 + y) for -1/2 <= y < 1/2: row floor(32 y) + 16 (32 y is exact).
DD lgamma1p(double y) {
    const double s = y * 32.0;
    int row = static_cast<int>(s);
    if (s < row) --row;
    return row_value(t::small[row + 16], y);
}

// lgamma(x) for 0 < x < 16.
DD lgamma_below_16(double x) {
    if (x < 0.5) {
        const DD l = log_dd(x);
        const DD g = lgamma1p(x);
        const DD s = fast_two_sum(-l.hi, g.hi);  // |log x| >= ln 2 > |g|
        return {s.hi, s.lo + (g.lo - l.lo)};
    }
    const int row = x < 1.0   ? static_cast<int>(x * 32.0) - 16
                    : x < 2.0 ? 16 + static_cast<int>((bits_of(x) >> 48) & 15)
                              : 24 + static_cast<int>((bits_of(x) >> 49) - (std::uint64_t{1023} << 3));
    return row_value(t::main[row], x);
}

// lgamma(x) for x >= 16 (+Inf when it exceeds the largest double).
DD lgamma_stirling(double x) {
    const DD l = log_dd(x);
    DD lm1 = fast_two_sum(l.hi, -1.0);
    lm1.lo += l.lo;
    const DD prod = dd_mul(two_sum(x, -0.5), lm1);
    if (!(prod.hi < _Inf_D)) return {_Inf_D, 0.0};
    const double* s = t::S;
    const double z = 1.0 / x, u = z * z, u2 = u * u;
    const double series = z * (((s[0] + s[1] * u) + u2 * (s[2] + s[3] * u)) + (u2 * u2) * ((s[4] + s[5] * u) + u2 * s[6]));
    const DD r = fast_two_sum(prod.hi, t::kHalfLogTwoPi - 0.5);
    return {r.hi, r.lo + (prod.lo + (t::kHalfLogTwoPiLo + series))};
}

DD lgamma_positive(double x) { return x < 16.0 ? lgamma_below_16(x) : lgamma_stirling(x); }

// Log-gamma alone, rounded to double, needs less than the double-double
// that gamma exponentiates: only terms that are a large part of the result
// are formed exactly, the rest is summed in plain double.

[[gnu::noinline]] double zero_row(const t::Row& w, double x) {
    const DD l = row_value(w, x);
    return l.hi + l.lo;
}

// d^2 (c2 + c3 d + ... + c11 d^9) of a row.
[[gnu::always_inline]] inline double row_tail(const t::Row& w, double d) {
    const double* c = w.c;
    const double d2 = d * d, d4 = d2 * d2, d8 = d4 * d4;
    const double q = ((c[0] + c[1] * d) + d2 * (c[2] + c[3] * d)) +
                     d4 * ((c[4] + c[5] * d) + d2 * (c[6] + c[7] * d)) + d8 * (c[8] + c[9] * d);
    return d2 * q;
}

// A row without a zero: c0 + c1hi d formed exactly (c1hi has 26 bits, so
// its products with the halves of d = dh + dl are exact), the rest, at most
// 2^-4.9 of the value (next to the zero row at 2), summed in double.
[[gnu::always_inline]] inline double row_plain(const t::Row& w, double x) {
    const double d = x - w.mid;  // exact
    const double dh = upper(d), dl = d - dh;
    const DD s = two_sum(w.c0hi, w.c1hi * dh);  // the product exact
    return s.hi + (s.lo + (w.c1hi * dl + (w.c0lo + (d * w.c1lo + row_tail(w, d)))));
}

// lgamma(x) for 1/2 <= x < 1024.
[[gnu::always_inline]] inline double lgamma_rows(double x) {
    // Below 2 the exponent and the top four fraction bits count rows of
    // 1/32 from 1/2 and of 1/16 from 1, above it the top three count eighths.
    const std::uint64_t b = bits_of(x);
    const auto row = static_cast<int>(x < 2.0 ? (b >> 48) - 0x3FE0 : (b >> 49) - 0x1FF8 + 24);
    const t::Row& w = t::main[row];
    if (w.c0hi == 0.0) [[unlikely]]
        return zero_row(w, x);
    return row_plain(w, x);
}

// lgamma(x) for normal x < 2^-8: -log x + lgamma(1 + x), the latter from
// the zero row at 0 (d = x) and below 2^-11 of the value, in double.
[[gnu::always_inline]] inline double lgamma_tiny(double x) {
    const DD l = log_dd_far(x);
    const t::Row& w = t::small[16];
    return -l.hi + ((x * w.c1hi + (x * w.c1lo + row_tail(w, x))) - l.lo);
}

// lgamma(x) for 1024 <= x < 2^52, where x - 1/2 is exact: the product
// (x - 1/2)(hi - 1) exact (hi - 1 is exact for hi >= 2), the rest ((x -
// 1/2) lo, below 2^-14 of the value, the constant and the series) in
// double.  From 1024 on the terms of S beyond z^3 are below 2^-60, a
// millionth of an ulp of the value (above 6000).
[[gnu::always_inline]] inline double lgamma_large(double x) {
    const DD l = log_dd_far(x);
    const double a = x - 0.5;
    const DD p = two_prod(a, l.hi - 1.0);
    const double* s = t::S;
    const double z = 1.0 / x;
    const double series = z * (s[0] + s[1] * (z * z));
    return p.hi + (p.lo + (a * l.lo + ((t::kHalfLogTwoPi - 0.5) + (t::kHalfLogTwoPiLo + series))));
}

// lgamma(x) for 2^-1022 <= x < 2^52: rows from 2^-8 to 1024.
[[gnu::always_inline]] inline double lgamma_normal(double x) {
    if (x < 0.5) {
        if (x < 0x1p-8) return lgamma_tiny(x);
        return row_plain(t::low[static_cast<int>((bits_of(x) >> 49) - 0x1FB8)], x);
    }
    if (x < 1024.0) return lgamma_rows(x);
    return lgamma_large(x);
}

// e^(l.hi + l.lo), once rounded.
double exp_of(DD l) {
    const DD n = fast_two_sum(l.hi, l.lo);
    if (n.hi > 709.8) return _Inf_D;
    return exp_finish(exp_dd(n.hi, n.lo));
}

// Is x (finite, |x| < 2^52) an integer?
bool integral(double x) { return static_cast<double>(static_cast<std::int64_t>(x)) == x; }

// For -190 < x < 0 not an integer: gamma(x) = e^g / (2^e p), p in [1, 2)
// in magnitude as a double-double (with the sign of gamma).
struct Reflected {
    DD g;
    DD p;
    std::int64_t e;
};

Reflected reduce_negative(double x) {
    const auto n = static_cast<std::int64_t>(-x);  // trunc
    const double y = x + static_cast<double>(n);   // exact, in (-1, 0)
    DD p{y, 0.0};
    std::int64_t e = 0;
    for (std::int64_t i = 0; i < n; ++i) {
        p = dd_mul(p, x + static_cast<double>(i));  // each factor exact
        if (std::fabs(p.hi) > 0x1p600) {
            p = {p.hi * 0x1p-600, p.lo * 0x1p-600};
            e += 600;
        }
    }
    // Normalise p to [1, 2) in magnitude (exact scaling).
    const int f = static_cast<int>((bits_of(p.hi) >> 52) & 0x7FF) - 1023;
    const double scale = double_from_bits(static_cast<std::uint64_t>(1023 - f) << 52);
    p = {p.hi * scale, p.lo * scale};
    e += f;
    // lgamma(1 + y): the table, or -log(1 + y) + lgamma(2 + y) when
    // 1 + y < 1/2 (exact).
    const DD g = y >= -0.5 ? lgamma1p(y) : lgamma_below_16(1.0 + y);
    return {g, p, e};
}

double gamma_negative(double x) {
    if (x <= -190.0) {
        // |gamma| < 2^-1089: a zero with the sign of gamma, (-1)^(k+1) on
        // (-k-1, -k).
        const auto k = static_cast<std::int64_t>(-x);
        return (k & 1) ? 0.0 : -0.0;
    }
    if (x > -0x1p-1000) return 1.0 / x;  // 1/x - euler + O(x): 1/x rounded, or -Inf
    const Reflected r = reduce_negative(x);
    const DD n = fast_two_sum(r.g.hi, r.g.lo);
    const ExpParts g = exp_dd(n.hi, n.lo);
    const DD q = dd_div(DD{g.t, g.tail}, DD{std::fabs(r.p.hi), r.p.hi < 0 ? -r.p.lo : r.p.lo});
    const double m = scale_finish((g.k >> 8) - r.e, q.hi, q.lo);
    return r.p.hi < 0 ? -m : m;
}

double lgamma_negative(double x) {
    if (x > -190.0) {
        const Reflected r = reduce_negative(x);
        // g - log |p| - e ln2
        const DD lp = log_dd(std::fabs(r.p.hi));
        const double lp_lo = lp.lo + (r.p.hi < 0 ? -r.p.lo : r.p.lo) / std::fabs(r.p.hi);
        const double ed = static_cast<double>(r.e);
        const DD a = two_sum(r.g.hi, -ed * exp_log_dd_data::Ln2hi);  // e Ln2hi exact
        const DD b = two_sum(a.hi, -lp.hi);
        return b.hi + (b.lo + (a.lo + (r.g.lo - lp_lo - ed * exp_log_dd_data::Ln2lo)));
    }
    // log pi - log |x| - log |sin(pi x)| - lgamma(-x).
    const double r = x - static_cast<double>(static_cast<std::int64_t>(x - 0.5));  // x - nearest integer, in [-1/2, 1/2]
    double a = kPi * std::fabs(r);
    const double sine = g_dsin(&a);
    const DD l = lgamma_stirling(-x);
    const DD lx = log_dd(-x);
    const DD ls = log_dd(sine);
    const double small = kLogPi - lx.hi - (ls.hi + ls.lo);
    const DD s = fast_two_sum(-l.hi, small);
    return s.hi + (s.lo - l.lo - lx.lo);
}

// gamma(x), and whether it is refused (pole) rather than finite or overflowing.
report::Step<double, double> gamma_pass(double x) {
    if (x > 0) {
        const double g = x < kGammaOverflow ? exp_of(lgamma_positive(x)) : _Inf_D;
        if (g == _Inf_D) return report::fail(Error::gamma_r8, _Inf_D, kHuge_D);
        return g;
    }
    if (x == 0) return report::fail(Error::gamma_r8, std::copysign(_Inf_D, x), std::copysign(kHuge_D, x));
    if (x != x) return x + x;
    if (x < -0x1p52 || integral(x)) return report::fail(Error::gamma_r8, _NaN_D, kHuge_D);
    const double g = gamma_negative(x);
    if (std::isinf(g)) return report::fail(Error::gamma_r8, g, std::copysign(kHuge_D, g));
    return g;
}

report::Step<float, float> gamma_pass_f(float x) {
    if (x == 0) return report::fail(Error::gamma_r4, std::copysign(_Inf_F, x), std::copysign(kHuge_F, x));
    if (x != x) return x + x;
    if (x < 0 && (x < -0x1p52f || integral(x))) return report::fail(Error::gamma_r4, _NaN_F, kHuge_F);
    const double g = x > 0 ? (x < 36.0f ? exp_of(lgamma_positive(x)) : _Inf_D) : gamma_negative(x);  // REAL(4) tiny x: 1/x fits
    const auto f = static_cast<float>(g);
    if (std::isinf(f)) return report::fail(Error::gamma_r4, f, std::copysign(kHuge_F, f));
    return f;
}

// log |gamma(x)|: +Inf at the poles and for +-Inf.
double lgamma_any(double x) {
    if (x == _Inf_D) return x;
    if (x > 0) {
        if (x >= 0x1p-1022 && x < 0x1p52) return lgamma_normal(x);
        const DD l = lgamma_positive(x);
        return l.hi + l.lo;
    }
    if (x != x) return x + x;
    if (x == 0 || x < -0x1p52 || integral(x)) return _Inf_D;
    return lgamma_negative(x);
}

report::Step<float, float> lgamma_pass_f(float x) {
    if (x != x) return x + x;
    const auto f = static_cast<float>(lgamma_any(x));
    if (f == _Inf_F) return report::fail(Error::lgamma_r4, _Inf_F, kHuge_F);
    return f;
}

[[gnu::cold, gnu::noinline]] double settle_gamma(double x) { return report::settle<report::Form::direct>(gamma_pass, x); }

}  // namespace

extern "C" MIVOR_DISPATCHED double g_dgamma(const double* arg) {
    const double x = *arg;
    if (x > 0x1p-1000 && x < 171.6) [[likely]]
        return exp_of(lgamma_positive(x));
    return settle_gamma(x);
}

extern "C" float g_gamma(const float* x) { return report::settle<report::Form::direct>(gamma_pass_f, *x); }

extern "C" MIVOR_DISPATCHED double g_dlgama(const double* arg) {
    const double x = *arg;
    if (x >= 0x1p-1022 && x < 0x1p52) [[likely]]
        return lgamma_normal(x);
    return lgamma_any(x);
}

extern "C" float g_algama(const float* x) { return report::settle<report::Form::direct>(lgamma_pass_f, *x); }

extern "C" float g_lgamma(const float* x) { return report::settle<report::Form::direct>(lgamma_pass_f, *x); }
