// The reference registry of the REAL(16) accuracy tool (quad_ulp): one row
// per g_q export with its MPFR reference, the arguments it answers
// without a report, and its hard ranges.
#pragma once

#include <mpfr.h>

#include <cstdint>
#include <span>
#include <string_view>

#include "mivor/types.h"

namespace mivor::quadulp {

using Fn1 = mivor_real16* (*)(mivor_real16*, const mivor_real16*);
using Fn2 = mivor_real16* (*)(mivor_real16*, const mivor_real16*, const mivor_real16*);
// The reference: y = f(x) (or f(x1, x2)) correctly rounded to y's
// precision.  Capture-free lambdas serve for the forms MPFR names
// differently (degrees, quadrants: mpfr_sinu and the like).
using Ref1 = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
using Ref2 = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_srcptr, mpfr_rnd_t);
using Const = int (*)(mpfr_ptr, mpfr_rnd_t);

enum class Spread {
    Uniform,       // uniform in [lo, hi], rounded to REAL(16)
    LogUniform,    // magnitudes 2^e, e uniform in [lo, hi) (log2 bounds), both signs if both_signs
    NearMultiple,  // k * unit, lo <= k <= hi (k log-uniform above 2^10; -k too if both_signs), moved by up to 64 units of the last place
    HardReduction, // binary128 x closest to multiples of unit among those with exponent lo..hi (continued fractions)
    BelowOne,      // 1 - 2^-t (t uniform in [lo, hi], random low bits), both signs if both_signs
    Short,         // j 2^e with j odd below 256 and e uniform in [lo, hi]: where short terms tie
};

struct Range {
    std::string_view label;
    Spread spread;
    double lo, hi;
    bool both_signs = false;
    Const unit_constant = nullptr;  // NearMultiple, HardReduction: unit = constant * unit_scale
    double unit_scale = 1.0;
    // Second argument of ATAN2 forms: uniform in [lo2, hi2] with both signs.
    double lo2 = 0, hi2 = 0;
    // NearMultiple: whether k * unit itself may come up (not at poles).
    bool exact_too = true;
    // The error is stated absolutely here (next to a zero of the function,
    // where it is promised only so): reported apart, in log2, and left
    // out of the ulp figures and the bound check.
    bool absolute = false;
};

struct Reference {
    std::string_view name;
    Fn1 f1 = nullptr;
    Fn2 f2 = nullptr;
    Ref1 ref1 = nullptr;
    Ref2 ref2 = nullptr;
    std::span<const Range> random;  // the whole domain, split by weight of samples
    std::span<const Range> hard;
    // What --check holds the function to, over all its ranges.
    double max_ulp = 0.51;
    double min_correct = 99.9;  // percent correctly rounded
};

std::span<const Reference> references();

}  // namespace mivor::quadulp
