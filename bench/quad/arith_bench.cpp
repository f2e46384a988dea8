// Latency and throughput of g_aqaq, g_aqsq, g_aqmq, g_aqdq beside the same
// operations on GCC's __float128 (libgcc soft-fp), with the time ratios
// (mivor / __float128; below 1 is faster) printed after the table.
//
//   latency     each result is an operand of the next operation;
//   throughput  1024 independent operations on random normal operands.
//
// With --benchmark_repetitions=N the ratios use the fastest repetition of
// each; --benchmark_enable_random_interleaving=true spreads the
// repetitions of mivor and __float128 over the same stretch of time.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>

#include "mivor/mivor.h"

namespace {

constexpr int kN = 1024;

struct Operands {
    mivor_real16 x[kN], y[kN];
    __float128 fx[kN], fy[kN];
};

std::uint64_t splitmix(std::uint64_t& s) {
    std::uint64_t z = (s += 0x9E3779B97F4A7C15u);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return z ^ (z >> 31);
}

// Random significands; exponents within `spread` binades of 2^0, random
// signs unless `positive`.
mivor_real16 random_quad(std::uint64_t& s, unsigned spread, bool positive) {
    mivor_real16 q;
    const std::uint64_t a = splitmix(s), b = splitmix(s);
    q.w[0] = static_cast<std::uint32_t>(a);
    q.w[1] = static_cast<std::uint32_t>(a >> 32);
    q.w[2] = static_cast<std::uint32_t>(b);
    const std::uint32_t field = 16383 - spread / 2 + static_cast<std::uint32_t>(splitmix(s) % (spread + 1));
    q.w[3] = (static_cast<std::uint32_t>(b >> 32) & 0xFFFFu) | (field << 16) |
             (positive ? 0u : static_cast<std::uint32_t>(b >> 63) << 31);
    return q;
}

const Operands& operands(bool chain) {
    static Operands spread, near_one;
    static bool ready = false;
    if (!ready) {
        std::uint64_t s = 2026;
        for (int i = 0; i < kN; ++i) {
            spread.x[i] = random_quad(s, 60, false);
            spread.y[i] = random_quad(s, 60, false);
            // Chains: y in [1, 2) keeps products and quotients in range over
            // a pass, and sums of random signs wander slowly.
            near_one.x[i] = random_quad(s, 0, true);
            near_one.y[i] = random_quad(s, 0, true);
            std::memcpy(&spread.fx[i], &spread.x[i], 16);
            std::memcpy(&spread.fy[i], &spread.y[i], 16);
            std::memcpy(&near_one.fx[i], &near_one.x[i], 16);
            std::memcpy(&near_one.fy[i], &near_one.y[i], 16);
        }
        for (int i = 0; i < kN; i += 2) {  // sums in a chain: alternate signs
            near_one.y[i].w[3] |= 0x80000000u;
            near_one.fy[i] = -near_one.fy[i];
        }
        ready = true;
    }
    return chain ? near_one : spread;
}

using Fn = mivor_real16* (*)(mivor_real16*, const mivor_real16*, const mivor_real16*);

template <int Op>
__float128 f128_op(__float128 a, __float128 b) {
    if constexpr (Op == 0) return a + b;
    else if constexpr (Op == 1) return a - b;
    else if constexpr (Op == 2) return a * b;
    else return a / b;
}

constexpr Fn kMivor[] = {g_aqaq, g_aqsq, g_aqmq, g_aqdq};

template <int Op>
void mivor_throughput(benchmark::State& state) {
    const Operands& o = operands(false);
    static mivor_real16 r[kN];
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) kMivor[Op](&r[i], &o.x[i], &o.y[i]);
        benchmark::DoNotOptimize(r);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

template <int Op>
void f128_throughput(benchmark::State& state) {
    const Operands& o = operands(false);
    static __float128 r[kN];
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) r[i] = f128_op<Op>(o.fx[i], o.fy[i]);
        benchmark::DoNotOptimize(r);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

template <int Op>
void mivor_latency(benchmark::State& state) {
    const Operands& o = operands(true);
    for (auto _ : state) {
        mivor_real16 r = o.x[0];
        for (int i = 0; i < kN; ++i) kMivor[Op](&r, &r, &o.y[i]);
        benchmark::DoNotOptimize(r);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

template <int Op>
void f128_latency(benchmark::State& state) {
    const Operands& o = operands(true);
    for (auto _ : state) {
        __float128 r = o.fx[0];
        for (int i = 0; i < kN; ++i) r = f128_op<Op>(r, o.fy[i]);
        benchmark::DoNotOptimize(r);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

#define MIVOR_QUAD_BENCH(op, name)                                       \
    BENCHMARK(mivor_latency<op>)->Name(name "/latency/mivor");           \
    BENCHMARK(f128_latency<op>)->Name(name "/latency/float128");         \
    BENCHMARK(mivor_throughput<op>)->Name(name "/throughput/mivor");     \
    BENCHMARK(f128_throughput<op>)->Name(name "/throughput/float128");

MIVOR_QUAD_BENCH(0, "add")
MIVOR_QUAD_BENCH(1, "sub")
MIVOR_QUAD_BENCH(2, "mul")
MIVOR_QUAD_BENCH(3, "div")

// The console table, then one line per operation and measure with the
// nanoseconds per operation and the ratio.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.iterations == 0 || run.error_occurred) continue;
            // The fastest repetition: on a shared machine the others mostly
            // measure the neighbours.
            const double ns = run.GetAdjustedRealTime() / kN;
            const auto [it, fresh] = ns_.emplace(run.run_name.function_name, ns);
            if (!fresh && ns < it->second) it->second = ns;
        }
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        std::printf("\n%-18s %12s %12s %8s\n", "operation", "mivor ns", "float128 ns", "ratio");
        for (const char* op : {"add", "sub", "mul", "div"}) {
            for (const char* measure : {"latency", "throughput"}) {
                const std::string base = std::string(op) + "/" + measure;
                const auto m = ns_.find(base + "/mivor"), f = ns_.find(base + "/float128");
                if (m == ns_.end() || f == ns_.end()) continue;
                std::printf("%-18s %12.2f %12.2f %8.2f\n", base.c_str(), m->second, f->second, m->second / f->second);
            }
        }
    }

private:
    std::map<std::string, double> ns_;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
