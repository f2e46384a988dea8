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

#include <cstdio>

#include "mivor/mivor.h"
#include "support/loops.h"
#include "support/operands.h"
#include "support/ratios.h"

namespace {

using mivor_bench::f128_op;
using mivor_bench::kMivorQuadOps;
using mivor_bench::kN;

struct Operands {
    mivor_real16 x[kN], y[kN];
    __float128 fx[kN], fy[kN];
};

// Chains: y in [1, 2) keeps products and quotients in range over a pass,
// and sums of alternating signs wander slowly.
const Operands& operands(bool chain) {
    static const struct Both {
        Operands spread, near_one;
        Both() { mivor_bench::fill_quad_operands(spread, near_one); }
    } both;
    return chain ? both.near_one : both.spread;
}

template <int Op>
void mivor_throughput(benchmark::State& state) {
    const Operands& o = operands(false);
    mivor_bench::throughput<mivor_real16>(state,
                                          [&](mivor_real16& r, int i) { kMivorQuadOps[Op](&r, &o.x[i], &o.y[i]); });
}

template <int Op>
void f128_throughput(benchmark::State& state) {
    const Operands& o = operands(false);
    mivor_bench::throughput<__float128>(state, [&](__float128& r, int i) { r = f128_op<Op>(o.fx[i], o.fy[i]); });
}

template <int Op>
void mivor_latency(benchmark::State& state) {
    const Operands& o = operands(true);
    mivor_bench::latency(state, o.x[0], [&](mivor_real16& r, int i) { kMivorQuadOps[Op](&r, &r, &o.y[i]); });
}

template <int Op>
void f128_latency(benchmark::State& state) {
    const Operands& o = operands(true);
    mivor_bench::latency(state, o.fx[0], [&](__float128& r, int i) { r = f128_op<Op>(r, o.fy[i]); });
}

#define MIVOR_QUAD_BENCH(op, name)                                   \
    BENCHMARK(mivor_latency<op>)->Name(name "/latency/mivor");       \
    BENCHMARK(f128_latency<op>)->Name(name "/latency/float128");     \
    BENCHMARK(mivor_throughput<op>)->Name(name "/throughput/mivor"); \
    BENCHMARK(f128_throughput<op>)->Name(name "/throughput/float128");

MIVOR_QUAD_BENCH(0, "add")
MIVOR_QUAD_BENCH(1, "sub")
MIVOR_QUAD_BENCH(2, "mul")
MIVOR_QUAD_BENCH(3, "div")

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    // The console table, then one line per operation and measure with the
    // nanoseconds per operation (the fastest repetition: on a shared machine
    // the others mostly measure the neighbours) and the ratio.
    mivor_bench::TableReporter reporter({.real_time = true, .per = kN}, "operation", {"add", "sub", "mul", "div"});
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
