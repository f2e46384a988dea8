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
#include <map>
#include <string>
#include <vector>

#include "mivor/mivor.h"

namespace {

constexpr int kN = 1024;

std::uint64_t splitmix(std::uint64_t& s) {
    std::uint64_t z = (s += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

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

template <class T, class F>
void run(benchmark::State& state, const std::vector<T>& in, F f) {
    for (auto _ : state) {
        T acc = 0;
        for (int i = 0; i < kN; ++i) acc += f(in[i]);
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

const auto dexp_in = inputs<double>(-700, 700, false);
const auto dexp2_in = inputs<double>(-1000, 1000, false);
const auto dexp10_in = inputs<double>(-300, 300, false);
const auto dlog_in = inputs<double>(0x1p-1000, 0x1p1000, true);
const auto exp_in = inputs<float>(-85, 85, false);
const auto exp2_in = inputs<float>(-125, 125, false);
const auto exp10_in = inputs<float>(-37, 37, false);
const auto log_in = inputs<float>(0x1p-120, 0x1p120, true);

#define PAIR(name, T, in, mine, theirs)                                                          \
    void name##_mivor(benchmark::State& s) { run<T>(s, in, [](T x) { return mine(&x); }); }  \
    void name##_glibc(benchmark::State& s) { run<T>(s, in, [](T x) { return theirs(x); }); } \
    BENCHMARK(name##_mivor);                                                                  \
    BENCHMARK(name##_glibc);

PAIR(exp, double, dexp_in, g_dexp, ::exp)
PAIR(exp2, double, dexp2_in, g_dexp2, ::exp2)
PAIR(exp10, double, dexp10_in, g_dexp10, ::exp10)
PAIR(log, double, dlog_in, g_dlog, ::log)
PAIR(log2, double, dlog_in, g_dlog2, ::log2)
PAIR(log10, double, dlog_in, g_dlog10, ::log10)
PAIR(expf, float, exp_in, g_exp, ::expf)
PAIR(exp2f, float, exp2_in, g_exp2, ::exp2f)
PAIR(exp10f, float, exp10_in, g_exp10, ::exp10f)
PAIR(logf, float, log_in, g_alog, ::logf)
PAIR(log2f, float, log_in, g_alog2, ::log2f)
PAIR(log10f, float, log_in, g_alog10, ::log10f)

// Packed forms: two elements per call against two scalar calls.
template <__m128d (*P)(__m128d), double (*S)(const double*)>
void packed(benchmark::State& state, const std::vector<double>& in, bool use_packed) {
    for (auto _ : state) {
        __m128d acc = _mm_setzero_pd();
        for (int i = 0; i < kN; i += 2) {
            if (use_packed) {
                acc = _mm_add_pd(acc, P(_mm_loadu_pd(&in[i])));
            } else {
                acc = _mm_add_pd(acc, _mm_set_pd(S(&in[i + 1]), S(&in[i])));
            }
        }
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}
void pk_dexp_packed(benchmark::State& s) { packed<pk_dexp, g_dexp>(s, dexp_in, true); }
void pk_dexp_scalar(benchmark::State& s) { packed<pk_dexp, g_dexp>(s, dexp_in, false); }
void pk_dlog_packed(benchmark::State& s) { packed<pk_dlog, g_dlog>(s, dlog_in, true); }
void pk_dlog_scalar(benchmark::State& s) { packed<pk_dlog, g_dlog>(s, dlog_in, false); }
void pk_dlog10_packed(benchmark::State& s) { packed<pk_dlog10, g_dlog10>(s, dlog_in, true); }
void pk_dlog10_scalar(benchmark::State& s) { packed<pk_dlog10, g_dlog10>(s, dlog_in, false); }
BENCHMARK(pk_dexp_packed);
BENCHMARK(pk_dexp_scalar);
BENCHMARK(pk_dlog_packed);
BENCHMARK(pk_dlog_scalar);
BENCHMARK(pk_dlog10_packed);
BENCHMARK(pk_dlog10_scalar);

class Collect : public benchmark::ConsoleReporter {
public:
    std::map<std::string, double> ns;
    void ReportRuns(const std::vector<Run>& runs) override {
        // The least time per iteration over the repetitions: the machine
        // may be shared, and interference only ever adds time.
        for (const Run& r : runs) {
            if (r.run_type != Run::RT_Iteration) continue;
            const std::string name = r.run_name.function_name;
            const double t = r.GetAdjustedCPUTime();
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
    for (const char* f : {"exp", "exp2", "exp10", "log", "log2", "log10", "expf", "exp2f", "exp10f", "logf",
                          "log2f", "log10f"}) {
        const std::string a = std::string(f) + "_mivor", b = std::string(f) + "_glibc";
        if (reporter.ns.count(a) && reporter.ns.count(b))
            std::printf("  %-7s %.3f\n", f, reporter.ns[a] / reporter.ns[b]);
    }
    std::printf("ratio pk_ per element / two scalar calls:\n");
    for (const char* f : {"pk_dexp", "pk_dlog", "pk_dlog10"}) {
        const std::string a = std::string(f) + "_packed", b = std::string(f) + "_scalar";
        if (reporter.ns.count(a) && reporter.ns.count(b))
            std::printf("  %-9s %.3f\n", f, reporter.ns[a] / reporter.ns[b]);
    }
    return 0;
}
