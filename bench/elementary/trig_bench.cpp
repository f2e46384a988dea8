// Throughput of the radian circular functions beside glibc's libm in the
// same run; the ratios (mivor / glibc, below 1 is faster) are printed after
// the table, and the pk_ forms per element against two scalar calls.
//
// Run with --benchmark_repetitions=N: the ratios use the fastest repetition
// (the median with --benchmark_report_aggregates_only).
// Each iteration evaluates 1024 independent arguments: uniform in [-10, 10]
// (the ladder and the first Cody-Waite multiples), and log-uniform in
// [2^-10, 1e8] ("wide"; 8e5 for REAL(4), whose limit is 823000).
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
std::vector<T> make(bool wide, double limit) {
    std::uint64_t s = 7;
    std::vector<T> v(kN);
    for (T& x : v) {
        const double u = static_cast<double>(splitmix(s) >> 11) * 0x1p-53;
        const double sign = (splitmix(s) & 1) ? -1.0 : 1.0;
        x = static_cast<T>(wide ? sign * std::exp2(-10.0 + u * (std::log2(limit) + 10.0)) : -10.0 + 20.0 * u);
    }
    return v;
}

const auto d_small = make<double>(false, 0);
const auto d_wide = make<double>(true, 1e8);
const auto f_small = make<float>(false, 0);
const auto f_wide = make<float>(true, 8e5);

MIVOR_BENCH_LIBM(sin, double, d_small, g_dsin, ::sin)
MIVOR_BENCH_LIBM(cos, double, d_small, g_dcos, ::cos)
MIVOR_BENCH_LIBM(tan, double, d_small, g_dtan, ::tan)
MIVOR_BENCH_LIBM(sin_wide, double, d_wide, g_dsin, ::sin)
MIVOR_BENCH_LIBM(cos_wide, double, d_wide, g_dcos, ::cos)
MIVOR_BENCH_LIBM(tan_wide, double, d_wide, g_dtan, ::tan)
MIVOR_BENCH_LIBM(sinf, float, f_small, g_sin, ::sinf)
MIVOR_BENCH_LIBM(cosf, float, f_small, g_cos, ::cosf)
MIVOR_BENCH_LIBM(tanf, float, f_small, g_tan, ::tanf)
MIVOR_BENCH_LIBM(sinf_wide, float, f_wide, g_sin, ::sinf)
MIVOR_BENCH_LIBM(cosf_wide, float, f_wide, g_cos, ::cosf)

// cotangent has no libm peer: against 1/tan.
void cot_mivor(benchmark::State& s) { sum_each<double>(s, d_small, [](double x) { return g_dcotan(&x); }); }
void cot_glibc(benchmark::State& s) { sum_each<double>(s, d_small, [](double x) { return 1.0 / ::tan(x); }); }
BENCHMARK(cot_mivor);
BENCHMARK(cot_glibc);

MIVOR_BENCH_PACKED(pk_dsin, pk_dsin, g_dsin, d_small)
MIVOR_BENCH_PACKED(pk_dcos, pk_dcos, g_dcos, d_small)
MIVOR_BENCH_PACKED(pk_dsin_wide, pk_dsin, g_dsin, d_wide)

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    // The fastest repetition of each benchmark (CPU time per iteration): on
    // a shared machine the slower ones measure the neighbours.  The median
    // when only aggregates are reported.
    mivor_bench::RatioReporter reporter({.medians = true});
    benchmark::RunSpecifiedBenchmarks(&reporter);
    mivor_bench::print_libm_ratios(reporter,
                                   {"sin", "cos", "tan", "sin_wide", "cos_wide", "tan_wide", "sinf", "cosf", "tanf",
                                    "sinf_wide", "cosf_wide", "cot"},
                                   10, {"pk_dsin", "pk_dcos", "pk_dsin_wide"}, 13);
    return 0;
}
