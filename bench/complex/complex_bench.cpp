// Throughput of the complex functions and complex powers beside glibc's
// in the same run, with the time ratios (mivor / glibc; below 1 is faster)
// printed after the table.  Each iteration evaluates 1024 independent
// random arguments: parts of random sign and magnitude 2^-8 to 2^8 (the
// exponential: x in [-20, 20], y in [-10, 10]; the powers: exponents with
// parts in [-4, 4]).  With --benchmark_repetitions=N the ratios use the
// fastest repetition of each.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "mivor/mivor.h"
#include "support/loops.h"
#include "support/ratios.h"

extern "C" {
__complex__ double cexp(__complex__ double);
__complex__ double clog(__complex__ double);
__complex__ double csqrt(__complex__ double);
double cabs(__complex__ double);
__complex__ double cpow(__complex__ double, __complex__ double);
__complex__ float cexpf(__complex__ float);
__complex__ float clogf(__complex__ float);
__complex__ float csqrtf(__complex__ float);
float cabsf(__complex__ float);
__complex__ float cpowf(__complex__ float, __complex__ float);
}

namespace {

using mivor_bench::kN;
using mivor_bench::splitmix;

template <class C>
std::vector<C> inputs(std::uint64_t seed, double re_lo, double re_hi, double im_lo, double im_hi, bool log_scale) {
    std::vector<C> v(kN);
    auto u = [&] { return static_cast<double>(splitmix(seed) >> 11) * 0x1p-53; };
    for (C& z : v) {
        if (log_scale) {
            const double a = std::exp2(-8 + 16 * u()) * (u() < 0.5 ? -1 : 1);
            const double b = std::exp2(-8 + 16 * u()) * (u() < 0.5 ? -1 : 1);
            z.re = static_cast<decltype(z.re)>(a), z.im = static_cast<decltype(z.im)>(b);
        } else {
            z.re = static_cast<decltype(z.re)>(re_lo + u() * (re_hi - re_lo));
            z.im = static_cast<decltype(z.im)>(im_lo + u() * (im_hi - im_lo));
        }
    }
    return v;
}

const auto z8 = inputs<mivor_complex8>(1, 0, 0, 0, 0, true);
const auto e8 = inputs<mivor_complex8>(2, -20, 20, -10, 10, false);
const auto w8 = inputs<mivor_complex8>(3, -4, 4, -4, 4, false);
const auto z4 = inputs<mivor_complex4>(1, 0, 0, 0, 0, true);
const auto e4 = inputs<mivor_complex4>(2, -20, 20, -10, 10, false);
const auto w4 = inputs<mivor_complex4>(3, -4, 4, -4, 4, false);

template <class C, class F>
void each(benchmark::State& state, const std::vector<C>& in, F f) {
    for (auto _ : state) {
        double acc = 0;
        for (int i = 0; i < kN; ++i) acc += f(in[i]);
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}
template <class C, class F>
void each2(benchmark::State& state, const std::vector<C>& in, const std::vector<C>& in2, F f) {
    for (auto _ : state) {
        double acc = 0;
        for (int i = 0; i < kN; ++i) acc += f(in[i], in2[i]);
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

template <class C>
auto native(const C& z) {
    if constexpr (sizeof(z.re) == 8) {
        __complex__ double c;
        __real__ c = z.re;
        __imag__ c = z.im;
        return c;
    } else {
        __complex__ float c;
        __real__ c = z.re;
        __imag__ c = z.im;
        return c;
    }
}

#define MIVOR_BENCH_C(name, C, in, mine, theirs)                                                              \
    void name##_mivor(benchmark::State& s) {                                                                  \
        each(s, in, [](const C& z) {                                                                          \
            C r;                                                                                              \
            mine(&r, &z);                                                                                     \
            return static_cast<double>(r.re + r.im);                                                          \
        });                                                                                                   \
    }                                                                                                         \
    void name##_glibc(benchmark::State& s) {                                                                  \
        each(s, in, [](const C& z) {                                                                          \
            const auto r = theirs(native(z));                                                                 \
            return static_cast<double>(__real__ r + __imag__ r);                                              \
        });                                                                                                   \
    }                                                                                                         \
    BENCHMARK(name##_mivor);                                                                                  \
    BENCHMARK(name##_glibc);

#define MIVOR_BENCH_ABS(name, C, in, mine, theirs)                                                                \
    void name##_mivor(benchmark::State& s) { each(s, in, [](const C& z) { return static_cast<double>(mine(&z)); }); } \
    void name##_glibc(benchmark::State& s) {                                                                      \
        each(s, in, [](const C& z) { return static_cast<double>(theirs(native(z))); });                          \
    }                                                                                                             \
    BENCHMARK(name##_mivor);                                                                                      \
    BENCHMARK(name##_glibc);

#define MIVOR_BENCH_POW(name, C, in, in2, mine, theirs)                                                       \
    void name##_mivor(benchmark::State& s) {                                                                  \
        each2(s, in, in2, [](const C& z, const C& w) {                                                        \
            C r;                                                                                              \
            mine(&r, &z, &w);                                                                                 \
            return static_cast<double>(r.re + r.im);                                                          \
        });                                                                                                   \
    }                                                                                                         \
    void name##_glibc(benchmark::State& s) {                                                                  \
        each2(s, in, in2, [](const C& z, const C& w) {                                                        \
            const auto r = theirs(native(z), native(w));                                                      \
            return static_cast<double>(__real__ r + __imag__ r);                                              \
        });                                                                                                   \
    }                                                                                                         \
    BENCHMARK(name##_mivor);                                                                                  \
    BENCHMARK(name##_glibc);

MIVOR_BENCH_C(cexp, mivor_complex8, e8, g_cdexp, cexp)
MIVOR_BENCH_C(clog, mivor_complex8, z8, g_cdlog, clog)
MIVOR_BENCH_C(csqrt, mivor_complex8, z8, g_cdsqrt, csqrt)
MIVOR_BENCH_ABS(cabs, mivor_complex8, z8, g_cdabs, cabs)
MIVOR_BENCH_POW(cpow, mivor_complex8, z8, w8, g_axxx, cpow)
MIVOR_BENCH_C(cexpf, mivor_complex4, e4, g_cexp, cexpf)
MIVOR_BENCH_C(clogf, mivor_complex4, z4, g_clog, clogf)
MIVOR_BENCH_C(csqrtf, mivor_complex4, z4, g_csqrt, csqrtf)
MIVOR_BENCH_ABS(cabsf, mivor_complex4, z4, g_cabs, cabsf)
MIVOR_BENCH_POW(cpowf, mivor_complex4, z4, w4, g_acxc, cpowf)

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    mivor_bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("mivor / glibc (time per call, fastest repetition):\n");
    reporter.print_ratios({"cexp", "clog", "csqrt", "cabs", "cpow", "cexpf", "clogf", "csqrtf", "cabsf", "cpowf"},
                          "_mivor", "_glibc", 7);
    return 0;
}
