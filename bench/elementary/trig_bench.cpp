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
#include <map>
#include <string>
#include <vector>

#include "mivor/mivor.h"

namespace {

constexpr int kN = 1024;

std::uint64_t next(std::uint64_t& s) {  // splitmix64
    std::uint64_t z = (s += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

template <class T>
std::vector<T> make(bool wide, double limit) {
    std::uint64_t s = 7;
    std::vector<T> v(kN);
    for (T& x : v) {
        const double u = static_cast<double>(next(s) >> 11) * 0x1p-53;
        const double sign = (next(s) & 1) ? -1.0 : 1.0;
        x = static_cast<T>(wide ? sign * std::exp2(-10.0 + u * (std::log2(limit) + 10.0)) : -10.0 + 20.0 * u);
    }
    return v;
}

const auto d_small = make<double>(false, 0);
const auto d_wide = make<double>(true, 1e8);
const auto f_small = make<float>(false, 0);
const auto f_wide = make<float>(true, 8e5);

template <class T, class F>
void run(benchmark::State& state, const std::vector<T>& in, F f) {
    for (auto _ : state) {
        T acc = 0;
        for (int i = 0; i < kN; ++i) acc += f(in[i]);
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

#define VS(name, T, in, mine, theirs)                                                           \
    void name##_mivor(benchmark::State& s) { run<T>(s, in, [](T x) { return mine(&x); }); }  \
    void name##_glibc(benchmark::State& s) { run<T>(s, in, [](T x) { return theirs(x); }); } \
    BENCHMARK(name##_mivor);                                                                  \
    BENCHMARK(name##_glibc);

VS(sin, double, d_small, g_dsin, ::sin)
VS(cos, double, d_small, g_dcos, ::cos)
VS(tan, double, d_small, g_dtan, ::tan)
VS(sin_wide, double, d_wide, g_dsin, ::sin)
VS(cos_wide, double, d_wide, g_dcos, ::cos)
VS(tan_wide, double, d_wide, g_dtan, ::tan)
VS(sinf, float, f_small, g_sin, ::sinf)
VS(cosf, float, f_small, g_cos, ::cosf)
VS(tanf, float, f_small, g_tan, ::tanf)
VS(sinf_wide, float, f_wide, g_sin, ::sinf)
VS(cosf_wide, float, f_wide, g_cos, ::cosf)

// cotangent has no libm peer: against 1/tan.
void cot_mivor(benchmark::State& s) { run<double>(s, d_small, [](double x) { return g_dcotan(&x); }); }
void cot_glibc(benchmark::State& s) { run<double>(s, d_small, [](double x) { return 1.0 / ::tan(x); }); }
BENCHMARK(cot_mivor);
BENCHMARK(cot_glibc);

template <__m128d (*P)(__m128d), double (*S)(const double*)>
void packed(benchmark::State& state, const std::vector<double>& in, bool use_packed) {
    for (auto _ : state) {
        __m128d acc = _mm_setzero_pd();
        for (int i = 0; i < kN; i += 2) {
            if (use_packed)
                acc = _mm_add_pd(acc, P(_mm_loadu_pd(&in[i])));
            else
                acc = _mm_add_pd(acc, _mm_set_pd(S(&in[i + 1]), S(&in[i])));
        }
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}
void pk_dsin_packed(benchmark::State& s) { packed<pk_dsin, g_dsin>(s, d_small, true); }
void pk_dsin_scalar(benchmark::State& s) { packed<pk_dsin, g_dsin>(s, d_small, false); }
void pk_dcos_packed(benchmark::State& s) { packed<pk_dcos, g_dcos>(s, d_small, true); }
void pk_dcos_scalar(benchmark::State& s) { packed<pk_dcos, g_dcos>(s, d_small, false); }
void pk_dsin_wide_packed(benchmark::State& s) { packed<pk_dsin, g_dsin>(s, d_wide, true); }
void pk_dsin_wide_scalar(benchmark::State& s) { packed<pk_dsin, g_dsin>(s, d_wide, false); }
BENCHMARK(pk_dsin_packed);
BENCHMARK(pk_dsin_scalar);
BENCHMARK(pk_dcos_packed);
BENCHMARK(pk_dcos_scalar);
BENCHMARK(pk_dsin_wide_packed);
BENCHMARK(pk_dsin_wide_scalar);

// Keeps the fastest repetition of each benchmark (CPU time per iteration):
// on a shared machine the slower ones measure the neighbours.
class Collect : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> ns;
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& r : runs) {
            // Single runs, or the median when only aggregates are reported.
            if (r.run_type != Run::RT_Iteration && r.aggregate_name != "median") continue;
            const double t = r.GetAdjustedCPUTime();  // per iteration
            const std::string name = r.run_name.function_name;
            if (!ns.count(name) || t < ns[name]) ns[name] = t;
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    Collect reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nratio mivor/glibc per call (below 1 is faster):\n");
    for (const char* f : {"sin", "cos", "tan", "sin_wide", "cos_wide", "tan_wide", "sinf", "cosf", "tanf",
                          "sinf_wide", "cosf_wide", "cot"}) {
        const std::string a = std::string(f) + "_mivor", b = std::string(f) + "_glibc";
        if (reporter.ns.count(a) && reporter.ns.count(b))
            std::printf("  %-10s %.3f\n", f, reporter.ns[a] / reporter.ns[b]);
    }
    std::printf("ratio pk_ per element / two scalar calls:\n");
    for (const char* f : {"pk_dsin", "pk_dcos", "pk_dsin_wide"}) {
        const std::string a = std::string(f) + "_packed", b = std::string(f) + "_scalar";
        if (reporter.ns.count(a) && reporter.ns.count(b))
            std::printf("  %-13s %.3f\n", f, reporter.ns[a] / reporter.ns[b]);
    }
    return 0;
}
