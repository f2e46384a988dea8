// Throughput of the exponential and logarithm exports beside glibc's libm
// in the same run, with the time ratios (mivor / glibc; below 1 is faster)
// printed after the table; the pk_ forms per element against two calls of
// the scalar export.
//
// Each iteration evaluates 1024 independent random arguments of the
// function's useful range.  With --benchmark_repetitions=N the ratios use
// the fastest repetition of each.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "mivor/mivor.h"
#include "support/loops.h"
#include "support/ratios.h"

namespace {

using mivor_bench::kN;
using mivor_bench::splitmix;
using mivor_bench::sum_each;

template <class T>
std::vector<T> inputs(double lo, double hi, bool log_scale) {
    std::uint64_t s = 42;
    std::vector<T> v(kN);
    for (T& x : v) {
        const double u = static_cast<double>(splitmix(s) >> 11) * 0x1p-53;
        x = static_cast<T>(log_scale ? std::exp2(std::log2(lo) + u * (std::log2(hi) - std::log2(lo)))
                                     : lo + u * (hi - lo));
    }
    return v;
}

const auto dexp_in = inputs<double>(-700, 700, false);
const auto dexp2_in = inputs<double>(-1000, 1000, false);
const auto dexp10_in = inputs<double>(-300, 300, false);
const auto dlog_in = inputs<double>(0x1p-1000, 0x1p1000, true);
const auto exp_in = inputs<float>(-85, 85, false);
const auto exp2_in = inputs<float>(-125, 125, false);
const auto exp10_in = inputs<float>(-37, 37, false);
const auto log_in = inputs<float>(0x1p-120, 0x1p120, true);

MIVOR_BENCH_LIBM(exp, double, dexp_in, g_dexp, ::exp)
MIVOR_BENCH_LIBM(exp2, double, dexp2_in, g_dexp2, ::exp2)
MIVOR_BENCH_LIBM(exp10, double, dexp10_in, g_dexp10, ::exp10)
MIVOR_BENCH_LIBM(log, double, dlog_in, g_dlog, ::log)
MIVOR_BENCH_LIBM(log2, double, dlog_in, g_dlog2, ::log2)
MIVOR_BENCH_LIBM(log10, double, dlog_in, g_dlog10, ::log10)
MIVOR_BENCH_LIBM(expf, float, exp_in, g_exp, ::expf)
MIVOR_BENCH_LIBM(exp2f, float, exp2_in, g_exp2, ::exp2f)
MIVOR_BENCH_LIBM(exp10f, float, exp10_in, g_exp10, ::exp10f)
MIVOR_BENCH_LIBM(logf, float, log_in, g_alog, ::logf)
MIVOR_BENCH_LIBM(log2f, float, log_in, g_alog2, ::log2f)
MIVOR_BENCH_LIBM(log10f, float, log_in, g_alog10, ::log10f)

// Packed forms: two elements per call against two scalar calls.
MIVOR_BENCH_PACKED(pk_dexp, pk_dexp, g_dexp, dexp_in)
MIVOR_BENCH_PACKED(pk_dlog, pk_dlog, g_dlog, dlog_in)
MIVOR_BENCH_PACKED(pk_dlog10, pk_dlog10, g_dlog10, dlog_in)

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    // The least time per iteration over the repetitions.
    mivor_bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    mivor_bench::print_libm_ratios(
        reporter,
        {"exp", "exp2", "exp10", "log", "log2", "log10", "expf", "exp2f", "exp10f", "logf", "log2f", "log10f"}, 7,
        {"pk_dexp", "pk_dlog", "pk_dlog10"}, 9);
    return 0;
}
