// exp_log_ulp: ulp errors of the exponential and logarithm exports against
// MPFR (host only).
//
//   exp_log_ulp [samples-per-range] [function]
//
// Each function is run on uniform random inputs over its whole useful range
// and on the hard ranges (near overflow, subnormal results or arguments,
// near 1 for the logarithms); the line per range gives the largest error
// in ulps of the correctly rounded result, its argument, and the share of
// results that are not correctly rounded.  Results the library returns as
// +0.0 on purpose (exponentials below about 2^-1023, the fast path's wrap
// band of g_dexp) are counted apart as "flushed" and left out of the error.
#include <mpfr.h>

#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "mivor/mivor.h"

namespace {

using MpfrFn = int (*)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);

struct Range {
    const char* name;
    double lo, hi;
    bool log_scale;  // uniform in the exponent rather than the value
};

struct Fn {
    const char* name;
    bool single;
    double (*call)(double);
    MpfrFn ref;
    std::vector<Range> ranges;
};

std::mt19937_64 rng(20261122);

double draw(const Range& r) {
    std::uniform_real_distribution<double> u(0.0, 1.0);
    if (!r.log_scale) return r.lo + (r.hi - r.lo) * u(rng);
    const double e = std::log2(r.lo) + (std::log2(r.hi) - std::log2(r.lo)) * u(rng);
    return std::exp2(e);
}

// Error of `got` against the exact value of f(x), in ulps of the target
// format at the exact value.
double ulp_error(const Fn& f, double x, double got, bool* correct, bool* flushed) {
    mpfr_t in, exact, diff;
    mpfr_inits2(256, in, exact, diff, (mpfr_ptr)nullptr);
    mpfr_set_d(in, x, MPFR_RNDN);
    f.ref(exact, in, MPFR_RNDN);
    const int prec = f.single ? 24 : 53;
    const long emin = f.single ? -149 : -1074;  // exponent of the least ulp
    long e = mpfr_get_exp(exact) - 1;            // exact in [2^e, 2^(e+1))
    long ulp_exp = e - (prec - 1);
    if (ulp_exp < emin) ulp_exp = emin;
    *flushed = got == 0.0 && mpfr_cmp_d(exact, 0.0) != 0 &&
               e < (f.single ? -126 : -1022);
    mpfr_sub_d(diff, exact, got, MPFR_RNDN);
    mpfr_abs(diff, diff, MPFR_RNDN);
    mpfr_mul_2si(diff, diff, -ulp_exp, MPFR_RNDN);
    const double err = mpfr_get_d(diff, MPFR_RNDN);
    // Correctly rounded: the exact value rounded to the format.
    double cr;
    if (f.single) {
        mpfr_t s;
        mpfr_init2(s, 24);
        mpfr_set_emin(-148);
        mpfr_set_emax(128);
        int t = mpfr_set(s, exact, MPFR_RNDN);
        t = mpfr_check_range(s, t, MPFR_RNDN);
        mpfr_subnormalize(s, t, MPFR_RNDN);
        cr = static_cast<float>(mpfr_get_flt(s, MPFR_RNDN));
        mpfr_set_emin(mpfr_get_emin_min());
        mpfr_set_emax(mpfr_get_emax_max());
        mpfr_clear(s);
    } else {
        mpfr_t s;
        mpfr_init2(s, 53);
        mpfr_set_emin(-1073);
        mpfr_set_emax(1024);
        int t = mpfr_set(s, exact, MPFR_RNDN);
        t = mpfr_check_range(s, t, MPFR_RNDN);
        mpfr_subnormalize(s, t, MPFR_RNDN);
        cr = mpfr_get_d(s, MPFR_RNDN);
        mpfr_set_emin(mpfr_get_emin_min());
        mpfr_set_emax(mpfr_get_emax_max());
        mpfr_clear(s);
    }
    *correct = cr == got;
    mpfr_clears(in, exact, diff, (mpfr_ptr)nullptr);
    return err;
}

int log2_ref(mpfr_ptr r, mpfr_srcptr x, mpfr_rnd_t m) { return mpfr_log2(r, x, m); }

template <float (*F)(const float*)> double callf(double x) {
    const float v = static_cast<float>(x);
    return F(&v);
}
template <double (*F)(const double*)> double calld(double x) { return F(&x); }
double pk_exp_lane1(double x) {
    const __m128d v = pk_dexp(_mm_set_pd(x, 0.5));
    return _mm_cvtsd_f64(_mm_unpackhi_pd(v, v));
}
double pk_log_lane1(double x) {
    const __m128d v = pk_dlog(_mm_set_pd(x, 2.0));
    return _mm_cvtsd_f64(_mm_unpackhi_pd(v, v));
}
double pk_log10_lane1(double x) {
    const __m128d v = pk_dlog10(_mm_set_pd(x, 2.0));
    return _mm_cvtsd_f64(_mm_unpackhi_pd(v, v));
}

std::vector<Fn> functions() {
    const std::vector<Range> dlog = {{"all positive", 0x1p-1022, 0x1p1023, true},
                                     {"[0.5,2]", 0.5, 2.0, false},
                                     {"1+-2^-20", 1 - 0x1p-20, 1 + 0x1p-20, false},
                                     {"subnormal", 0x1p-1074, 0x1p-1022, true}};
    const std::vector<Range> flog = {{"all positive", 0x1p-126, 0x1p127, true},
                                     {"[0.5,2]", 0.5, 2.0, false},
                                     {"1+-2^-10", 1 - 0x1p-10, 1 + 0x1p-10, false},
                                     {"subnormal", 0x1p-149, 0x1p-126, true}};
    return {
        {"g_dexp", false, calld<g_dexp>, mpfr_exp,
         {{"[-708.39,709.78]", -708.39, 709.78, false}, {"[-1,1]", -1, 1, false},
          {"near overflow", 708.3984375, 709.782, false}, {"subnormal", -709.089, -708.3984375, false}}},
        {"pk_dexp", false, pk_exp_lane1, mpfr_exp, {{"[-708.39,708.39]", -708.39, 708.39, false}}},
        {"g_dexp2", false, calld<g_dexp2>, mpfr_exp2,
         {{"[-1022,1024]", -1022, 1024, false}, {"[-1,1]", -1, 1, false},
          {"near overflow", 1023, 1024, false}, {"subnormal", -1023, -1022, false}}},
        {"g_dexp10", false, calld<g_dexp10>, mpfr_exp10,
         {{"[-307.6,308.25]", -307.6, 308.25, false}, {"[-1,1]", -1, 1, false},
          {"near overflow", 304, 308.254, false}, {"subnormal", -307.95, -307.6, false}}},
        {"g_dlog", false, calld<g_dlog>, mpfr_log, dlog},
        {"pk_dlog", false, pk_log_lane1, mpfr_log, {dlog[0], dlog[1], dlog[2]}},
        {"g_dlog2", false, calld<g_dlog2>, log2_ref, dlog},
        {"g_dlog10", false, calld<g_dlog10>, mpfr_log10, dlog},
        {"pk_dlog10", false, pk_log10_lane1, mpfr_log10, {dlog[0], dlog[1], dlog[2]}},
        {"g_exp", true, callf<g_exp>, mpfr_exp, {{"[-104,88.8]", -104, 88.8, false}}},
        {"g_exp2", true, callf<g_exp2>, mpfr_exp2, {{"[-151,128]", -151, 128, false}}},
        {"g_exp10", true, callf<g_exp10>, mpfr_exp10, {{"[-46,38.6]", -46, 38.6, false}}},
        {"g_alog", true, callf<g_alog>, mpfr_log, flog},
        {"g_alog2", true, callf<g_alog2>, log2_ref, flog},
        {"g_alog10", true, callf<g_alog10>, mpfr_log10, flog},
    };
}

}  // namespace

int main(int argc, char** argv) {
    const long samples = argc > 1 ? std::atol(argv[1]) : 1000000;
    const char* only = argc > 2 ? argv[2] : nullptr;
    for (const Fn& f : functions()) {
        if (only && std::strcmp(only, f.name) != 0) continue;
        double fn_max = 0;
        for (const Range& r : f.ranges) {
            double max_err = 0, worst = 0;
            long wrong = 0, flushed_count = 0;
            for (long i = 0; i < samples; ++i) {
                double x = draw(r);
                if (f.single) x = static_cast<float>(x);
                const double got = f.call(x);
                bool correct, flushed;
                const double err = ulp_error(f, x, got, &correct, &flushed);
                if (flushed) {
                    ++flushed_count;
                    continue;
                }
                if (!correct) ++wrong;
                if (err > max_err) max_err = err, worst = x;
            }
            if (max_err > fn_max) fn_max = max_err;
            std::printf("%-9s %-18s max %.4f ulp at %-24a not CR %.4f%%%s\n", f.name, r.name, max_err, worst,
                        100.0 * wrong / samples,
                        flushed_count ? (" flushed to +0: " + std::to_string(flushed_count)).c_str() : "");
        }
        std::printf("%-9s max %.4f ulp\n", f.name, fn_max);
        std::fflush(stdout);
    }
    return 0;
}
