// Latency and throughput of g_aqaq, g_aqsq, g_aqmq, g_aqdq beside the same
// operations on GCC's __float128 (libgcc soft-fp), with the time ratios
// (mivor / __float128; below 1 is faster) printed after the table.
//
//   latency     each result is an operand of the next operation;
//   throughput  1024 independent operations per iteration on random
//               full-precision operands (exponents within 2^+-8), walking
//               a pool of 4096 pairs.
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

using mivor_bench::kPool;

template <int n>
struct Operands {
    mivor_real16 x[n], y[n];
    __float128 fx[n], fy[n];
};

struct Both {
    Operands<kPool> spread;
    Operands<kN> near_one;  // chains: see fill_quad_operands
    Both() { mivor_bench::fill_quad_operands(spread, near_one); }
};
const Both& operands() {
    static const Both both;
    return both;
}

// The next kN pairs of the pool, for each iteration.
int next_block() {
    static int block = 0;
    block = (block + kN) % kPool;
    return block;
}

template <int Op>
void mivor_throughput(benchmark::State& state) {
    const auto& o = operands().spread;
    mivor_bench::throughput<mivor_real16>(state, [&](mivor_real16& r, int i) {
        static int base = 0;
        if (i == 0) base = next_block();
        kMivorQuadOps[Op](&r, &o.x[base + i], &o.y[base + i]);
    });
}

template <int Op>
void f128_throughput(benchmark::State& state) {
    const auto& o = operands().spread;
    mivor_bench::throughput<__float128>(state, [&](__float128& r, int i) {
        static int base = 0;
        if (i == 0) base = next_block();
        r = f128_op<Op>(o.fx[base + i], o.fy[base + i]);
    });
}

template <int Op>
void mivor_latency(benchmark::State& state) {
    const auto& o = operands().near_one;
    mivor_bench::latency(state, o.x[0], [&](mivor_real16& r, int i) { kMivorQuadOps[Op](&r, &r, &o.y[i]); });
}

template <int Op>
void f128_latency(benchmark::State& state) {
    const auto& o = operands().near_one;
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
