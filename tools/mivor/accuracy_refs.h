// The reference registry of `mivor accuracy`: one entry per export that is
// measured against MPFR.
//
// An entry says what the export computes (its exact function, in MPFR),
// which arguments it answers without an error report (the domain), where
// its errors are likely to be largest (hard ranges) and, optionally, the
// largest error it may show (the bound that the exit status and the ctest
// entries check).  The argument and result kinds come from the export
// table, so the same entry types serve REAL(4), REAL(8), REAL(16), the
// packed two-lane entries, two-argument functions and complex results.
#pragma once

#include <gmp.h>
#include <mpfr.h>

#include <array>
#include <span>
#include <string_view>
#include <type_traits>

namespace mivor::accuracy {

// ---- exact functions ------------------------------------------------------

// y = f(x), correctly rounded to the precision of y (mpfr_exp, mpfr_cbrt),
// or at least within 8 units of its last place: the tool asks for more
// precision whenever a result lies that close to a rounding boundary.
using Real1 = int (*)(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rnd);
// y = f(a, b) the same way (mpfr_add, mpfr_atan2, mpfr_pow).  An INTEGER
// argument (the exponent of an integer power) arrives as an integral value.
using Real2 = int (*)(mpfr_ptr y, mpfr_srcptr a, mpfr_srcptr b, mpfr_rnd_t rnd);
// Both parts of a complex result, each within 8 units of the last place at
// the precision of re and im (compute internally with more bits where parts
// cancel).  x holds the argument coordinates in order: a COMPLEX argument
// gives two (real part, imaginary part), any other one.  Returns true when
// both parts are exact.
using Complex = bool (*)(mpfr_ptr re, mpfr_ptr im, const mpfr_srcptr* x);

// The exact function of an entry: one of the three shapes above.  A REAL(4)
// or REAL(8) function of the packed two-lane kind is given as Real1 and
// applied to each lane.
class Exact {
public:
    enum class Shape { real1, real2, complex };
    constexpr Exact(Real1 f) : shape_(Shape::real1), real1_(f) {}
    constexpr Exact(Real2 f) : shape_(Shape::real2), real2_(f) {}
    constexpr Exact(Complex f) : shape_(Shape::complex), complex_(f) {}
    // Capture-free lambdas of the three shapes.
    template <class F> requires std::is_convertible_v<F, Real1> && std::is_class_v<F>
    constexpr Exact(F f) : Exact(static_cast<Real1>(f)) {}
    template <class F> requires std::is_convertible_v<F, Real2> && std::is_class_v<F>
    constexpr Exact(F f) : Exact(static_cast<Real2>(f)) {}
    template <class F> requires std::is_convertible_v<F, Complex> && std::is_class_v<F>
    constexpr Exact(F f) : Exact(static_cast<Complex>(f)) {}

    constexpr Shape shape() const { return shape_; }
    // Results: 1 for the real shapes, 2 for complex.
    constexpr int results() const { return shape_ == Shape::complex ? 2 : 1; }
    // Returns true when y (both parts) is exact.
    bool evaluate(mpfr_ptr y0, mpfr_ptr y1, const mpfr_srcptr* x) const;

private:
    Shape shape_;
    Real1 real1_ = nullptr;
    Real2 real2_ = nullptr;
    Complex complex_ = nullptr;
};

// Functions of an angle in degrees or quadrants, and their inverses, with
// MPFR's exact unit forms: unit<mpfr_sinu, 360> is the sine of an angle in
// degrees, unit<mpfr_asinu, 4> the arcsine in quadrants (u = 4 quadrants or
// 360 degrees to the full turn).
template <int (*F)(mpfr_ptr, mpfr_srcptr, unsigned long, mpfr_rnd_t), unsigned long U>
int unit(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rnd) {
    return F(y, x, U, rnd);
}
template <int (*F)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, unsigned long, mpfr_rnd_t), unsigned long U>
int unit2(mpfr_ptr y, mpfr_srcptr a, mpfr_srcptr b, mpfr_rnd_t rnd) {
    return F(y, a, b, U, rnd);
}

// ---- where arguments come from ------------------------------------------

// A constant as MPFR gives it (mpfr_const_pi, mpfr_const_log2).
using MpfrConstant = int (*)(mpfr_ptr c, mpfr_rnd_t rnd);

enum class Spread {
    unset,           // domain: every finite value; hard range: as the random samples
    interval,        // domain only: the values in [lo, hi]
    bits,            // uniform over the representable numbers in [lo, hi]
    log_uniform,     // magnitudes log-uniform in [lo, hi], 0 < lo <= hi
    uniform,         // uniform in value over [lo, hi], in `parts` equal strata
    near_multiples,  // k unit for integers k in [lo, hi], rounded, then moved
                     // by min_step to max_step units of the last place
};

// How one argument coordinate is drawn (a hard range) or bounded (the
// domain).  A COMPLEX argument has two coordinates, real part first.
// Bounds are long double so that REAL(16) ranges fit.
struct Axis {
    Spread spread = Spread::unset;
    long double lo = 0, hi = 0;
    bool mirrored = false;  // also the negatives: [-hi, -lo] (random sign)
    int parts = 1;
    MpfrConstant unit_constant = nullptr;  // near_multiples: unit = constant * unit_scale
    long double unit_scale = 1;            //   (no constant: unit = unit_scale)
    int min_step = 0, max_step = 64;
};

// Domains.
constexpr Axis interval(long double lo, long double hi) { return {Spread::interval, lo, hi}; }
constexpr Axis magnitudes(long double lo, long double hi) { return {Spread::interval, lo, hi, true}; }
// Hard ranges.
enum Signs : bool { positive = false, both_signs = true };
constexpr Axis bits(long double lo, long double hi, Signs s = positive) { return {Spread::bits, lo, hi, s}; }
constexpr Axis log_uniform(long double lo, long double hi, Signs s = positive) {
    return {Spread::log_uniform, lo, hi, s};
}
constexpr Axis uniform(long double lo, long double hi, int parts = 1) { return {Spread::uniform, lo, hi, false, parts}; }
constexpr Axis near_multiples(long k_lo, long k_hi, MpfrConstant c, long double scale, int min_step = 0,
                              int max_step = 64) {
    return {Spread::near_multiples, static_cast<long double>(k_lo), static_cast<long double>(k_hi), false, 1, c, scale,
            min_step, max_step};
}

// Draws for hard ranges whose coordinates depend on each other (a divisor
// near the dividend, an exponent that nearly overflows the power).
class Draw {
public:
    virtual ~Draw() = default;
    // Coordinate i drawn by an axis (an unset axis: as the random samples).
    virtual void axis(int i, const Axis& a, mpfr_ptr out) = 0;
    // v rounded to the format of coordinate i.
    virtual void round(int i, mpfr_ptr v) = 0;
    // Uniform in [0, 1).
    virtual double unit() = 0;
    // Moves coordinate value v by `steps` units of its last place.
    virtual void step(int i, mpfr_ptr v, long steps) = 0;
};
using Generator = void (*)(Draw& draw, const mpfr_ptr* coords);

// No bound recorded.
inline constexpr double kUnbounded = -1;

struct Range {
    std::string_view label;
    std::array<Axis, 4> axes{};  // one per argument coordinate
    double share = 1;            // samples, relative to the other ranges
    Generator generate = nullptr;
    // A range with a bound of its own is judged and shown apart from the
    // function's figure (the doubles nearest a multiple of pi/2, where an
    // absolute error bound shows in ulps).
    double bound = kUnbounded;
    // A range judged by its absolute error instead, against 2^abs_bound_log2
    // (next to a zero of a function whose error is promised only so there:
    // ln|Gamma| next to its zeros on the negative axis); shown apart too.
    bool absolute = false;
    double abs_bound_log2 = 0;

    constexpr Range(std::string_view l, Axis a0, Axis a1 = {}, Axis a2 = {}, Axis a3 = {})
        : label(l), axes{a0, a1, a2, a3} {}
    constexpr Range(std::string_view l, Generator g) : label(l), generate(g) {}
    constexpr Range times(double s) const {
        Range r = *this;
        r.share = s;
        return r;
    }
    constexpr Range within(double b) const {
        Range r = *this;
        r.bound = b;
        return r;
    }
    constexpr Range within_absolute(double log2_bound) const {
        Range r = *this;
        r.absolute = true;
        r.abs_bound_log2 = log2_bound;
        return r;
    }
    constexpr bool apart() const { return bound >= 0 || absolute; }
};

struct Domain {
    std::array<Axis, 4> axes{};
    constexpr Domain() = default;
    constexpr Domain(Axis a0, Axis a1 = {}, Axis a2 = {}, Axis a3 = {}) : axes{a0, a1, a2, a3} {}
};

// A faster reference for --exhaustive on REAL(4): the function in extended
// precision with relative error at most 2^-fast_bits; MPFR decides only the
// arguments it leaves ambiguous, and checks it on a sample of the others.
using FastReference = long double (*)(long double x);

struct Reference {
    std::string_view name;        // the export, as in the export table
    Exact exact;
    Domain domain{};              // arguments the export answers without a report
    std::span<const Range> hard{};  // clipped to the domain
    double bound = kUnbounded;    // largest ulp error allowed
    double subnormal_bound = kUnbounded;  // the same for results below the normal range (none: `bound`)
    FastReference fast = nullptr;
    int fast_bits = 0;
};

std::span<const Reference> references();
const Reference* find_reference(std::string_view name);

}  // namespace mivor::accuracy
