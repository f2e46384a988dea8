// The timed loops shared by the Google Benchmark programs: each iteration
// does kN operations of one kind.
#pragma once

#include <benchmark/benchmark.h>
#include <emmintrin.h>

#include <vector>

#include "operands.h"

namespace mivor_bench {

// Throughput of a scalar function: the sum of f over the kN inputs.
template <class T, class F>
void sum_each(benchmark::State& state, const std::vector<T>& in, F f) {
    for (auto _ : state) {
        T acc = 0;
        for (int i = 0; i < kN; ++i) acc += f(in[i]);
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

// Latency of a scalar function: each argument waits for the previous
// result, joined to it by `+ previous * 0` (an add and a multiply the
// compiler may not drop, since 0 * x is not 0 for every x; the same cost on
// both sides of a comparison).  Results are finite, so the arguments are
// the inputs unchanged.
template <class T, class F>
void chain_each(benchmark::State& state, const std::vector<T>& in, F f) {
    for (auto _ : state) {
        T previous = 0;
        for (int i = 0; i < kN; ++i) previous = f(in[i] + previous * T(0));
        benchmark::DoNotOptimize(previous);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

// A pk_ form, two elements per call, or (use_packed false) two calls of
// its scalar export per pair of elements.
template <__m128d (*P)(__m128d), double (*S)(const double*)>
void packed(benchmark::State& state, const std::vector<double>& in, bool use_packed) {
    for (auto _ : state) {
        __m128d acc = _mm_setzero_pd();
        for (int i = 0; i < kN; i += 2) {
            if (use_packed) acc = _mm_add_pd(acc, P(_mm_loadu_pd(&in[i])));
            else acc = _mm_add_pd(acc, _mm_set_pd(S(&in[i + 1]), S(&in[i])));
        }
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

// name_mivor and name_glibc: sum_each over in of the export mine (by
// address) and of the libm function theirs; name_latency_mivor and
// name_latency_glibc: the same through chain_each.  Registered in that order.
#define MIVOR_BENCH_LIBM(name, T, in, mine, theirs)                                                              \
    void name##_mivor(benchmark::State& s) { mivor_bench::sum_each<T>(s, in, [](T x) { return mine(&x); }); }    \
    void name##_glibc(benchmark::State& s) { mivor_bench::sum_each<T>(s, in, [](T x) { return theirs(x); }); }   \
    void name##_latency_mivor(benchmark::State& s) {                                                             \
        mivor_bench::chain_each<T>(s, in, [](T x) { return mine(&x); });                                         \
    }                                                                                                            \
    void name##_latency_glibc(benchmark::State& s) {                                                             \
        mivor_bench::chain_each<T>(s, in, [](T x) { return theirs(x); });                                        \
    }                                                                                                            \
    BENCHMARK(name##_mivor);                                                                                     \
    BENCHMARK(name##_glibc);                                                                                     \
    BENCHMARK(name##_latency_mivor);                                                                             \
    BENCHMARK(name##_latency_glibc);

// name_packed and name_scalar: the pk_ form P and its scalar export S on
// the inputs in, registered in that order.
#define MIVOR_BENCH_PACKED(name, P, S, in)                                               \
    void name##_packed(benchmark::State& s) { mivor_bench::packed<P, S>(s, in, true); }  \
    void name##_scalar(benchmark::State& s) { mivor_bench::packed<P, S>(s, in, false); } \
    BENCHMARK(name##_packed);                                                            \
    BENCHMARK(name##_scalar);

// Throughput: kN independent operations, f(r, i) storing the i-th result
// in r (an element of an array of R that lives as long as the program).
template <class R, class F>
void throughput(benchmark::State& state, F f) {
    static R r[kN];
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) f(r[i], i);
        benchmark::DoNotOptimize(r);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

// Latency: kN operations in a chain, step(v, i) updating v from start.
template <class T, class Step>
void latency(benchmark::State& state, const T& start, Step step) {
    for (auto _ : state) {
        T v = start;
        for (int i = 0; i < kN; ++i) step(v, i);
        benchmark::DoNotOptimize(v);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

}  // namespace mivor_bench
