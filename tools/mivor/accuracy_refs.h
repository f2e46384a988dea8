// The reference registry of `mivor accuracy`: one row per export that can
// be measured against MPFR.
#pragma once

#include <mpfr.h>

#include <random>
#include <span>
#include <string_view>

namespace mivor::accuracy {

// y = f(x) correctly rounded to y's precision, as mpfr_exp, mpfr_cbrt, ...
// A capture-free lambda with this signature serves for functions MPFR lacks
// (degrees, quadrants).
using MpfrFunction = int (*)(mpfr_ptr y, mpfr_srcptr x, mpfr_rnd_t rnd);
// z = f(x, y) for the functions of two arguments (mpfr_pow).
using MpfrFunction2 = int (*)(mpfr_ptr z, mpfr_srcptr x, mpfr_srcptr y, mpfr_rnd_t rnd);
// A constant as MPFR gives it (mpfr_const_pi, mpfr_const_log2).
using MpfrConstant = int (*)(mpfr_ptr c, mpfr_rnd_t rnd);

// How a hard range spreads its arguments.
enum class Spread {
    LogUniform,     // magnitudes log-uniform in [lo, hi] (lo > 0); both signs if `both_signs`
    Bits,           // uniform over the representable numbers in [lo, hi] (a signed interval)
    NearMultiples,  // k * unit for integers k in [lo, hi], rounded, then moved by up to 64 ulps
};

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

// Argument pairs of a two-argument function: one pair per call, drawn with
// `random`; `limit` is the largest |log| of a finite result of the kind
// (745 for REAL(8), 104 for REAL(4)), for generators that aim at a range of
// results.  Pairs are rounded to the argument kind by the caller.
using PairGenerator = void (*)(std::mt19937_64& random, double limit, double& x, double& y);
struct PairRange {
    std::string_view label;
    PairGenerator generate;
};

struct Reference {
    std::string_view name;    // the export, as in the export table
    MpfrFunction mpfr;        // one argument (null for two)
    std::string_view input;   // "r4" or "r8": the export's argument kind
    double lo, hi;            // domain: arguments that the export answers without a report
    std::span<const Range> hard;
    FastReference fast = nullptr;
    int fast_bound_log2 = 0;
    // Two arguments: the function, the random pairs (the first range) and
    // the hard ones (the others).
    MpfrFunction2 mpfr2 = nullptr;
    std::span<const PairRange> pairs = {};
};

std::span<const Reference> references();
const Reference* find_reference(std::string_view name);

}  // namespace mivor::accuracy
