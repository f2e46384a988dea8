// The reference registry of `mivor accuracy`: one row per export that can
// be measured against MPFR.
#pragma once

#include <mpfr.h>

#include <span>
#include <string_view>
#include <vector>

namespace mivor::accuracy {

// y = f(x) correctly rounded to y's precision, as mpfr_exp, mpfr_cbrt, ...
// A capture-free lambda with this signature serves for functions MPFR lacks
// (degrees, quadrants).
using MpfrFunction = int (*)(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rnd);
// y = f(a, b) for the two-argument functions (ATAN2: a = y, b = x).
using MpfrFunction2 = int (*)(mpfr_ptr y, mpfr_srcptr a, mpfr_srcptr b, mpfr_rnd_t rnd);
// A constant as MPFR gives it (mpfr_const_pi, mpfr_const_log2).
using MpfrConstant = int (*)(mpfr_ptr c, mpfr_rnd_t rnd);

// How a hard range spreads its arguments.
enum class Spread {
    LogUniform,     // magnitudes log-uniform in [lo, hi] (lo > 0); both signs if `both_signs`
    Bits,           // uniform over the representable numbers in [lo, hi] (a signed interval)
    NearMultiples,  // k * unit for integers k in [lo, hi], rounded, then moved by up to 64 ulps
};

// A hard range of a two-argument function spreads the ratio of its
// arguments instead: the second is drawn from the domain, the first is the
// second times a value of the range (so ATAN2's angle comes close to 0,
// +-pi/4 or +-pi/2 and, with a negative second argument, to +-pi).
struct Range {
    std::string_view label;
    Spread spread;
    double lo, hi;
    bool both_signs = false;                // LogUniform only
    MpfrConstant unit_constant = nullptr;   // NearMultiples: unit = constant * unit_scale
    double unit_scale = 1.0;                //   (no constant: unit = unit_scale)
};

// A faster reference for --exhaustive on REAL(4): the function in extended
// precision with relative error at most 2^-bound_log2; MPFR decides only the
// cases it leaves ambiguous.
using FastReference = long double (*)(long double x);

struct Reference {
    std::string_view name;    // the export, as in the export table
    MpfrFunction mpfr;
    std::string_view input;   // "r4" or "r8": the kind of each argument
    double lo, hi;            // domain: arguments that the export answers without a report
    std::span<const Range> hard;
    FastReference fast = nullptr;
    int fast_bound_log2 = 0;
    MpfrFunction2 mpfr2 = nullptr;  // instead of mpfr: a function of two arguments
    int part = -1;            // a pair result (c4, c8): 0 the first value, 1 the second
    std::string_view label = {};  // what is measured, when the name alone does not say
};

std::span<const Reference> references();
// The references of an export: one, or one per value of a pair.
std::vector<const Reference*> find_references(std::string_view name);

}  // namespace mivor::accuracy
