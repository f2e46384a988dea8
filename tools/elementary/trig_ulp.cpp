// Accuracy of the radian circular functions against MPFR (host only).
//
//   trig_ulp random [N] [seed]   g_dsin, g_dcos, g_dtan, g_dcotan, pk_dsin,
//                                pk_dcos on N log-uniform inputs below 3.53e15
//                                and N uniform inputs in [-10, 10]: max error
//                                in ulps and the share of correctly rounded
//                                results
//   trig_ulp near [N] [seed]     inputs next to multiples of pi/2 beyond 9pi/4:
//                                the absolute error of sin, cos (and tan, cot
//                                relative to 1 + f^2), which is what the
//                                reduction bounds there
//   trig_ulp floats [threads [f]] g_sin, g_cos, g_tan, g_cotan (or one) on all 2^32
//                                inputs; the reference is the REAL(8) function
//                                (good to about 1 ulp of a double), with MPFR
//                                wherever that is within 2^-45 (relative) of a
//                                REAL(4) midpoint
#include <mpfr.h>

#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <thread>
#include <vector>

#include <emmintrin.h>

#include "mivor/mivor.h"

namespace {

enum Fn { kSin, kCos, kTan, kCot };
const char* const kNames[] = {"sin", "cos", "tan", "cotan"};

void reference(Fn f, mpfr_t y, const mpfr_t x) {
    switch (f) {
        case kSin: mpfr_sin(y, x, MPFR_RNDN); break;
        case kCos: mpfr_cos(y, x, MPFR_RNDN); break;
        case kTan: mpfr_tan(y, x, MPFR_RNDN); break;
        case kCot: mpfr_cot(y, x, MPFR_RNDN); break;
    }
}

// |got - y| in units of the last place of y at precision p (min exponent emin).
double ulp_error(double got, const mpfr_t y, int p, int emin) {
    mpfr_t d;
    mpfr_init2(d, 256);
    mpfr_sub_d(d, y, got, MPFR_RNDN);
    mpfr_abs(d, d, MPFR_RNDN);
    long e = mpfr_zero_p(y) ? emin : mpfr_get_exp(y);  // y in [2^(e-1), 2^e)
    long ue = e - p;
    if (ue < emin - p + 1) ue = emin - p + 1;
    mpfr_mul_2si(d, d, -ue, MPFR_RNDN);
    const double r = mpfr_get_d(d, MPFR_RNDN);
    mpfr_clear(d);
    return r;
}

double call(Fn f, double x) {
    switch (f) {
        case kSin: return g_dsin(&x);
        case kCos: return g_dcos(&x);
        case kTan: return g_dtan(&x);
        default: return g_dcotan(&x);
    }
}

struct Stat {
    double max = 0, at = 0;
    long n = 0, wrong = 0;
    void add(double e, double x) {
        ++n;
        if (e > 0.5) ++wrong;
        if (e > max) max = e, at = x;
    }
};

// Returns false when a bound is exceeded: 0.6 ulp for sine and cosine,
// 1 ulp for tangent and cotangent.
bool random_mode(long n, unsigned seed) {
    bool ok = true;
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> ex(-30.0, std::log2(3.53e15));
    std::uniform_real_distribution<double> uni(-10.0, 10.0);
    mpfr_t x, y;
    mpfr_inits2(256, x, y, (mpfr_ptr)0);
    for (int range = 0; range < 2; ++range) {
        Stat st[4], pk[2];
        for (long i = 0; i < n; ++i) {
            double v;
            if (range == 0) {
                v = std::exp2(ex(rng));
                if (v >= 3.53e15) continue;
                if (rng() & 1) v = -v;
            } else {
                v = uni(rng);
            }
            mpfr_set_d(x, v, MPFR_RNDN);
            for (int f = 0; f < 4; ++f) {
                reference(Fn(f), y, x);
                const double got = call(Fn(f), v);
                st[f].add(ulp_error(got, y, 53, -1021), v);
                if (f < 2) {
                    const __m128d r = f == kSin ? pk_dsin(_mm_set_pd(-v, v)) : pk_dcos(_mm_set_pd(-v, v));
                    double lanes[2];
                    _mm_storeu_pd(lanes, r);
                    pk[f].add(ulp_error(lanes[0], y, 53, -1021), v);
                    if (lanes[1] != (f == kSin ? -lanes[0] : lanes[0])) pk[f].add(99.0, -v);
                }
            }
        }
        std::printf("%s inputs:\n", range == 0 ? "log-uniform |x| in [2^-30, 3.53e15)" : "uniform [-10, 10]");
        for (int f = 0; f < 4; ++f)
            std::printf("  g_d%-6s n=%ld max %.4f ulp (x=%.17g)  correctly rounded %.4f%%\n", kNames[f],
                        st[f].n, st[f].max, st[f].at, 100.0 * (st[f].n - st[f].wrong) / st[f].n);
        for (int f = 0; f < 2; ++f)
            std::printf("  pk_d%-5s n=%ld max %.4f ulp (x=%.17g)\n", kNames[f], pk[f].n, pk[f].max, pk[f].at);
        for (int f = 0; f < 4; ++f) ok = ok && st[f].max <= (f < 2 ? 0.6 : 1.0);
        for (int f = 0; f < 2; ++f) ok = ok && pk[f].max <= 0.6;
    }
    mpfr_clears(x, y, (mpfr_ptr)0);
    if (!ok) std::printf("FAILED: a bound is exceeded\n");
    return ok;
}

// Absolute errors next to multiples of pi/2: x = the double nearest k pi/2
// moved by up to 8 ulps, k up to 2^51.
void near_mode(long n, unsigned seed) {
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> lk(2.0, 51.0);
    mpfr_t x, y, pi2, t;
    mpfr_inits2(400, x, y, pi2, t, (mpfr_ptr)0);
    mpfr_const_pi(pi2, MPFR_RNDN);
    mpfr_div_2ui(pi2, pi2, 1, MPFR_RNDN);
    const char* bands[] = {"9pi/4 .. 1.05e8", "1.05e8 .. 3.53e15"};
    double worst[2][4] = {}, worst_ulp[2][4] = {};
    for (long i = 0; i < n; ++i) {
        const double kf = std::floor(std::exp2(lk(rng)));
        mpfr_mul_d(t, pi2, kf, MPFR_RNDN);
        double v = mpfr_get_d(t, MPFR_RNDN);
        const int steps = static_cast<int>(rng() % 17) - 8;
        for (int s = 0; s < std::abs(steps); ++s) v = std::nextafter(v, steps > 0 ? INFINITY : 0.0);
        if (v < 7.07 || v >= 3.53e15) continue;
        const int band = v < 1.05e8 ? 0 : 1;
        mpfr_set_d(x, v, MPFR_RNDN);
        for (int f = 0; f < 4; ++f) {
            reference(Fn(f), y, x);
            const double got = call(Fn(f), v);
            mpfr_sub_d(t, y, got, MPFR_RNDN);
            mpfr_abs(t, t, MPFR_RNDN);
            double abs_err = mpfr_get_d(t, MPFR_RNDN);
            if (f >= 2) abs_err /= 1.0 + got * got;  // error of the reduced argument it implies
            if (abs_err > worst[band][f]) worst[band][f] = abs_err;
            const double u = ulp_error(got, y, 53, -1021);
            if (u > worst_ulp[band][f]) worst_ulp[band][f] = u;
        }
    }
    for (int b = 0; b < 2; ++b)
        for (int f = 0; f < 4; ++f)
            std::printf("  %-18s g_d%-6s max abs error %.3g (2^%.1f)%s, max %.3g ulp\n", bands[b], kNames[f],
                        worst[b][f], std::log2(worst[b][f]), f >= 2 ? " / (1 + f^2)" : "", worst_ulp[b][f]);
    mpfr_clears(x, y, pi2, t, (mpfr_ptr)0);
}

// REAL(4): exhaustive.
struct FloatStat {
    double max = 0;
    float at = 0;
    std::uint64_t n = 0, wrong = 0, refused = 0, mpfr_calls = 0;
};

float callf(Fn f, float x) {
    switch (f) {
        case kSin: return g_sin(&x);
        case kCos: return g_cos(&x);
        case kTan: return g_tan(&x);
        default: return g_cotan(&x);
    }
}

void float_worker(Fn f, std::uint64_t begin, std::uint64_t end, FloatStat& st) {
    mpfr_t x, y;
    mpfr_inits2(256, x, y, (mpfr_ptr)0);
    for (std::uint64_t u = begin; u < end; ++u) {
        float xf;
        const std::uint32_t b = static_cast<std::uint32_t>(u);
        std::memcpy(&xf, &b, 4);
        if (!(std::fabs(xf) < 823000.0f) || (f == kCot && xf == 0.0f)) {
            ++st.refused;
            continue;
        }
        const float got = callf(f, xf);
        const double yd = call(f, xf);
        // yd is within ~1 ulp (double) of the true value; unless a REAL(4)
        // midpoint is within 2^-45 relative of it, rounding yd to float gives
        // the correctly rounded result and yd measures the error.
        double err;
        const float cr = static_cast<float>(yd);
        const double ulpf = std::ldexp(1.0, std::max(std::ilogb(yd), -126) - 23);
        const double mid = std::fabs(yd - cr) / ulpf;  // distance to the rounded value, in ulps of float
        if (std::isinf(cr) || std::fabs(0.5 - mid) < std::ldexp(1.0, -20)) {
            ++st.mpfr_calls;
            mpfr_set_flt(x, xf, MPFR_RNDN);
            reference(f, y, x);
            // Overflow (cot of the tiniest arguments): +-Inf is the
            // correctly rounded REAL(4) result.
            err = std::isinf(got) && got == mpfr_get_flt(y, MPFR_RNDN) ? 0.0 : ulp_error(got, y, 24, -125);
        } else {
            err = std::fabs(static_cast<double>(got) - yd) / ulpf;
            if (got != cr) err = std::max(err, 0.5000001);
        }
        ++st.n;
        if (err > 0.5) ++st.wrong;
        if (err > st.max) st.max = err, st.at = xf;
    }
    mpfr_clears(x, y, (mpfr_ptr)0);
}

void float_mode(int threads, int only) {
    for (int f = 0; f < 4; ++f) {
        if (only >= 0 && f != only) continue;
        std::vector<FloatStat> st(threads);
        std::vector<std::thread> pool;
        const std::uint64_t total = 1ull << 32, chunk = total / threads;
        for (int t = 0; t < threads; ++t)
            pool.emplace_back(float_worker, Fn(f), t * chunk, t + 1 == threads ? total : (t + 1) * chunk,
                              std::ref(st[t]));
        for (auto& th : pool) th.join();
        FloatStat all;
        for (auto& s : st) {
            all.n += s.n, all.wrong += s.wrong, all.refused += s.refused, all.mpfr_calls += s.mpfr_calls;
            if (s.max > all.max) all.max = s.max, all.at = s.at;
        }
        std::printf("g_%-6s %llu inputs (%llu refused) max %.6f ulp (x=%a)  not correctly rounded %llu "
                    "(%.6f%%), MPFR used %llu times\n",
                    kNames[f], (unsigned long long)all.n, (unsigned long long)all.refused, all.max, all.at,
                    (unsigned long long)all.wrong, 100.0 * all.wrong / all.n,
                    (unsigned long long)all.mpfr_calls);
        std::fflush(stdout);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const char* mode = argc > 1 ? argv[1] : "random";
    if (!std::strcmp(mode, "random")) {
        return random_mode(argc > 2 ? std::atol(argv[2]) : 1000000, argc > 3 ? std::atoi(argv[3]) : 1) ? 0 : 1;
    } else if (!std::strcmp(mode, "near")) {
        near_mode(argc > 2 ? std::atol(argv[2]) : 100000, argc > 3 ? std::atoi(argv[3]) : 1);
    } else if (!std::strcmp(mode, "floats")) {
        int only = -1;  // trig_ulp floats THREADS [sin|cos|tan|cotan]
        for (int f = 0; f < 4 && argc > 3; ++f)
            if (!std::strcmp(argv[3], kNames[f])) only = f;
        float_mode(argc > 2 ? std::atoi(argv[2]) : 2, only);
    } else {
        std::fprintf(stderr, "usage: trig_ulp random|near|floats [n|threads] [seed]\n");
        return 2;
    }
    return 0;
}
