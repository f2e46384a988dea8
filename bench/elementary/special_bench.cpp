// Throughput and latency of gamma, log-gamma, the error function and its
// complement beside glibc's libm in the same run, with the time ratios
// (mivor / glibc; below 1 is faster) printed after the table.
//
// Arguments: gamma over (-30, 170) (positive three times in four, where
// most calls fall), log-gamma over (0, 1000) log-uniform, erf over
// [-6, 6], erfc over [-2, 27].  With --benchmark_repetitions=N the ratios
// use the fastest repetition of each.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdint>
#include <vector>

#include "mivor/mivor.h"
#include "support/loops.h"
#include "support/ratios.h"

namespace {

using mivor_bench::kN;
using mivor_bench::splitmix;

double unit(std::uint64_t& s) { return static_cast<double>(splitmix(s) >> 11) * 0x1p-53; }

template <class T> std::vector<T> gamma_inputs() {
    std::uint64_t s = 5;
    std::vector<T> v(kN);
    const double top = sizeof(T) == 4 ? 34.0 : 170.0;
    for (T& x : v) {
        const double u = unit(s);
        // Negative arguments: kept away from the poles, as real programs are.
        x = static_cast<T>(u < 0.25 ? -(std::floor(unit(s) * 30.0) + 0.05 + 0.9 * unit(s)) : 0x1p-8 + unit(s) * top);
    }
    return v;
}
template <class T> std::vector<T> inputs(double lo, double hi, bool log_scale) {
    std::uint64_t s = 9;
    std::vector<T> v(kN);
    for (T& x : v) {
        const double u = unit(s);
        x = static_cast<T>(log_scale ? std::exp2(std::log2(lo) + u * (std::log2(hi) - std::log2(lo))) : lo + u * (hi - lo));
    }
    return v;
}

const auto gamma8 = gamma_inputs<double>();
const auto gamma4 = gamma_inputs<float>();
const auto lgamma8 = inputs<double>(0x1p-8, 1000, true);
const auto lgamma4 = inputs<float>(0x1p-8, 1000, true);
const auto erf8 = inputs<double>(-6, 6, false);
const auto erf4 = inputs<float>(-6, 6, false);
const auto erfc8 = inputs<double>(-2, 27, false);
const auto erfc4 = inputs<float>(-2, 10, false);

MIVOR_BENCH_LIBM(tgamma, double, gamma8, g_dgamma, ::tgamma)
MIVOR_BENCH_LIBM(lgamma, double, lgamma8, g_dlgama, ::lgamma)
MIVOR_BENCH_LIBM(erf, double, erf8, g_derf, ::erf)
MIVOR_BENCH_LIBM(erfc, double, erfc8, g_derfc, ::erfc)
MIVOR_BENCH_LIBM(tgammaf, float, gamma4, g_gamma, ::tgammaf)
MIVOR_BENCH_LIBM(lgammaf, float, lgamma4, g_algama, ::lgammaf)
MIVOR_BENCH_LIBM(erff, float, erf4, g_erf, ::erff)
MIVOR_BENCH_LIBM(erfcf, float, erfc4, g_erfc, ::erfcf)

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    mivor_bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    mivor_bench::print_libm_ratios(reporter, {"tgamma", "lgamma", "erf", "erfc", "tgammaf", "lgammaf", "erff", "erfcf"},
                                   7, {}, 0);
    return 0;
}
