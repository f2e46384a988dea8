// check_float: exhaustive check of the REAL(4) exponentials and logarithms
// over all 2^32 arguments (host only).
//
//   check_float [function ...]     (default: all six)
//
// The reference is the correctly rounded REAL(4) result: glibc's double
// function (error well below 1 ulp of double) rounded to float, and MPFR
// wherever that double lies within 2^-45 (relative) of a REAL(4) rounding
// boundary.  Prints per function the arguments whose result is not
// correctly rounded, their share, and the largest error in ulps (measured
// against the double reference).  Reports go to a silent handler; the
// fallbacks are the IEEE ones.
#include <mpfr.h>

#include <cinttypes>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "mivor/control_area.h"
#include "mivor/mivor.h"

namespace {

struct Fn {
    const char* name;
    float (*mine)(const float*);
    double (*libm)(double);
    int (*ref)(mpfr_ptr, mpfr_srcptr, mpfr_rnd_t);
};

int log2_ref(mpfr_ptr r, mpfr_srcptr x, mpfr_rnd_t m) { return mpfr_log2(r, x, m); }
double exp10_d(double x) { return exp10(x); }

const Fn kFns[] = {
    {"g_exp", g_exp, ::exp, mpfr_exp},       {"g_exp2", g_exp2, ::exp2, mpfr_exp2},
    {"g_exp10", g_exp10, exp10_d, mpfr_exp10}, {"g_alog", g_alog, ::log, mpfr_log},
    {"g_alog2", g_alog2, ::log2, log2_ref},  {"g_alog10", g_alog10, ::log10, mpfr_log10},
};

float mpfr_float(const Fn& f, float x) {
    mpfr_t a, r;
    mpfr_init2(a, 24);
    mpfr_init2(r, 24);
    mpfr_set_emin(-148);
    mpfr_set_emax(128);
    mpfr_set_flt(a, x, MPFR_RNDN);
    int t = f.ref(r, a, MPFR_RNDN);
    t = mpfr_check_range(r, t, MPFR_RNDN);
    mpfr_subnormalize(r, t, MPFR_RNDN);
    const float v = mpfr_get_flt(r, MPFR_RNDN);
    mpfr_set_emin(mpfr_get_emin_min());
    mpfr_set_emax(mpfr_get_emax_max());
    mpfr_clear(a);
    mpfr_clear(r);
    return v;
}

// ulp of the REAL(4) binade of |v| (subnormals: 2^-149).
double ulpf(double v) {
    const double a = std::fabs(v);
    if (a < 0x1p-126) return 0x1p-149;
    int e;
    std::frexp(a, &e);
    return std::ldexp(1.0, e - 24);
}

bool near_boundary(double d) {
    // Distance to the nearest REAL(4) midpoint, relative.
    const double a = std::fabs(d);
    if (a == 0 || !std::isfinite(a)) return false;
    const double u = ulpf(a);
    const double pos = a / u;  // exact: scaling by a power of two
    const double frac = pos - std::floor(pos);
    return std::fabs(frac - 0.5) * u < 0x1p-45 * a || a > 0x1.fffffp127;
}

void silent(void*) {}

}  // namespace

int main(int argc, char** argv) {
    jwe_lca.handler = silent;
    jwe_lca.ieee_results = 1;
    for (const Fn& f : kFns) {
        bool wanted = argc == 1;
        for (int i = 1; i < argc; ++i) wanted |= std::strcmp(argv[i], f.name) == 0;
        if (!wanted) continue;
        std::uint64_t wrong = 0, finite_args = 0, slow = 0;
        double max_err = 0;
        std::uint32_t worst = 0;
        for (std::uint64_t b = 0; b <= 0xFFFFFFFFu; ++b) {
            float x;
            const auto bits = static_cast<std::uint32_t>(b);
            std::memcpy(&x, &bits, sizeof x);
            const float got = f.mine(&x);
            if (std::isnan(x)) {
                if (!std::isnan(got)) ++wrong;
                continue;
            }
            ++finite_args;
            const double d = f.libm(static_cast<double>(x));
            float cr;
            if (near_boundary(d)) {
                cr = mpfr_float(f, x);
                ++slow;
            } else {
                cr = static_cast<float>(d);
            }
            const bool same = (std::isnan(cr) && std::isnan(got)) || std::memcmp(&cr, &got, 4) == 0;
            if (!same) {
                ++wrong;
                if (wrong <= 5)
                    std::printf("  %s(%a) = %a, correctly rounded %a\n", f.name, x, got, cr);
            }
            if (std::isfinite(d) && std::isfinite(got)) {
                const double err = std::fabs(static_cast<double>(got) - d) / ulpf(d);
                if (err > max_err) max_err = err, worst = bits;
            }
        }
        float w;
        std::memcpy(&w, &worst, 4);
        std::printf("%-9s not correctly rounded: %" PRIu64 " of %" PRIu64 " (%.6f%%), max %.5f ulp at %a"
                    " (MPFR consulted %" PRIu64 " times)\n",
                    f.name, wrong, finite_args, 100.0 * wrong / finite_args, max_err, w, slow);
        std::fflush(stdout);
    }
    return 0;
}
