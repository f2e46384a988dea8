// Throughput and latency of the real powers beside glibc's libm in the same
// run, with the time ratios (mivor / glibc; below 1 is faster) printed
// after the table.
//
// x**y: bases log-uniform in [2^-8, 2^8] and exponents uniform in
// [-40, 40] for REAL(8), [2^-4, 2^4] and [-20, 20] for REAL(4) (every power
// finite); 2**y and 10**y: exponents across most of the finite range.  With --benchmark_repetitions=N the ratios use the
// fastest repetition of each.
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

double uniform(std::uint64_t& s, double lo, double hi) {
    return lo + static_cast<double>(splitmix(s) >> 11) * 0x1p-53 * (hi - lo);
}

template <class T>
struct Pairs {
    std::vector<T> x, y;
};

template <class T>
Pairs<T> pairs(double binades, double exponent) {
    std::uint64_t s = 7;
    Pairs<T> p{std::vector<T>(kN), std::vector<T>(kN)};
    for (int i = 0; i < kN; ++i) {
        p.x[i] = static_cast<T>(std::exp2(uniform(s, -binades, binades)));
        p.y[i] = static_cast<T>(uniform(s, -exponent, exponent));
    }
    return p;
}

template <class T>
std::vector<T> exponents(double lo, double hi) {
    std::uint64_t s = 11;
    std::vector<T> v(kN);
    for (T& e : v) e = static_cast<T>(uniform(s, lo, hi));
    return v;
}

const auto pairs8 = pairs<double>(8, 40);
const auto pairs4 = pairs<float>(4, 20);
const auto two8 = exponents<double>(-1000, 1000);
const auto ten8 = exponents<double>(-300, 300);
const auto two4 = exponents<float>(-120, 120);
const auto ten4 = exponents<float>(-35, 35);

// Throughput: the sum over independent calls; latency: each x waits for
// the previous result (joined by `+ previous * 0`).
template <class T, class F>
void sum_pairs(benchmark::State& state, const Pairs<T>& p, F f) {
    for (auto _ : state) {
        T acc = 0;
        for (int i = 0; i < kN; ++i) acc += f(p.x[i], p.y[i]);
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}
template <class T, class F>
void chain_pairs(benchmark::State& state, const Pairs<T>& p, F f) {
    for (auto _ : state) {
        T previous = 0;
        for (int i = 0; i < kN; ++i) previous = f(p.x[i] + previous * T(0), p.y[i]);
        benchmark::DoNotOptimize(previous);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

#define MIVOR_BENCH_PAIRS(name, T, in, mine, theirs)                                                               \
    void name##_mivor(benchmark::State& s) { sum_pairs<T>(s, in, [](T x, T y) { return mine(&x, &y); }); }        \
    void name##_glibc(benchmark::State& s) { sum_pairs<T>(s, in, [](T x, T y) { return theirs(x, y); }); }        \
    void name##_latency_mivor(benchmark::State& s) { chain_pairs<T>(s, in, [](T x, T y) { return mine(&x, &y); }); } \
    void name##_latency_glibc(benchmark::State& s) { chain_pairs<T>(s, in, [](T x, T y) { return theirs(x, y); }); } \
    BENCHMARK(name##_mivor);                                                                                      \
    BENCHMARK(name##_glibc);                                                                                      \
    BENCHMARK(name##_latency_mivor);                                                                              \
    BENCHMARK(name##_latency_glibc);

MIVOR_BENCH_PAIRS(pow, double, pairs8, g_adxd, ::pow)
MIVOR_BENCH_PAIRS(powf, float, pairs4, g_arxr, ::powf)
MIVOR_BENCH_LIBM(exp2, double, two8, g_a2xd, ::exp2)
MIVOR_BENCH_LIBM(exp10, double, ten8, g_atxd, ::exp10)
MIVOR_BENCH_LIBM(exp2f, float, two4, g_a2xr, ::exp2f)
MIVOR_BENCH_LIBM(exp10f, float, ten4, g_atxr, ::exp10f)

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    mivor_bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    mivor_bench::print_libm_ratios(reporter, {"pow", "powf", "exp2", "exp10", "exp2f", "exp10f"}, 6, {}, 0);
    return 0;
}
