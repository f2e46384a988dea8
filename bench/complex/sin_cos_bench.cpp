// Throughput and latency of the complex sine and cosine beside glibc's
// csin, ccos, csinf, ccosf in the same run, with the time ratios (mivor /
// glibc; below 1 is faster) printed after the table.  The quadrant forms
// are compared with glibc on z pi/2 (the multiplication counted on glibc's
// side).
//
// Arguments: real parts uniform in [-10, 10], imaginary parts in [-5, 5]
// (the common range) and, as "wide", in [-700, 700] (COMPLEX(4): [-88, 88]),
// where cosh and sinh come from the exponential's scaled range.  With
// --benchmark_repetitions=N the ratios use the fastest repetition of each.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "mivor/mivor.h"
#include "support/loops.h"
#include "support/ratios.h"

// glibc's, declared here: <complex.h> in C++ is std::complex.
extern "C" {
double _Complex csin(double _Complex);
double _Complex ccos(double _Complex);
float _Complex csinf(float _Complex);
float _Complex ccosf(float _Complex);
}

namespace {

using mivor_bench::kN;
using mivor_bench::splitmix;

double uniform(std::uint64_t& s, double lo, double hi) {
    return lo + static_cast<double>(splitmix(s) >> 11) * 0x1p-53 * (hi - lo);
}

template <class C, class T>
std::vector<C> arguments(double y_range, std::uint64_t seed) {
    std::vector<C> v(kN);
    for (C& z : v) {
        z.re = static_cast<T>(uniform(seed, -10, 10));
        z.im = static_cast<T>(uniform(seed, -y_range, y_range));
    }
    return v;
}

const auto common8 = arguments<mivor_complex8, double>(5, 3);
const auto wide8 = arguments<mivor_complex8, double>(700, 5);
const auto common4 = arguments<mivor_complex4, float>(5, 7);
const auto wide4 = arguments<mivor_complex4, float>(88, 9);

constexpr double kHalfPi = 1.5707963267948966;

// glibc's forms on the same layout.
template <double _Complex (*F)(double _Complex), bool quadrants>
mivor_complex8* glibc8(mivor_complex8* r, const mivor_complex8* z) {
    const double k = quadrants ? kHalfPi : 1.0;
    double _Complex v;
    __real__ v = z->re * k;
    __imag__ v = z->im * k;
    const double _Complex w = F(v);
    r->re = __real__ w;
    r->im = __imag__ w;
    return r;
}
template <float _Complex (*F)(float _Complex), bool quadrants>
mivor_complex4* glibc4(mivor_complex4* r, const mivor_complex4* z) {
    const float k = quadrants ? static_cast<float>(kHalfPi) : 1.0f;
    float _Complex v;
    __real__ v = z->re * k;
    __imag__ v = z->im * k;
    const float _Complex w = F(v);
    r->re = __real__ w;
    r->im = __imag__ w;
    return r;
}

// Throughput: the sum of both parts over independent calls; latency: each
// argument waits for the previous result (joined by `+ previous * 0`).
template <class C, class F>
void sum_calls(benchmark::State& state, const std::vector<C>& in, F f) {
    for (auto _ : state) {
        decltype(C{}.re) acc = 0;
        for (int i = 0; i < kN; ++i) {
            C r;
            f(&r, &in[i]);
            acc += r.re + r.im;
        }
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}
template <class C, class F>
void chain_calls(benchmark::State& state, const std::vector<C>& in, F f) {
    using T = decltype(C{}.re);
    for (auto _ : state) {
        T previous = 0;
        for (int i = 0; i < kN; ++i) {
            C z = in[i], r;
            z.re += previous * T(0);
            f(&r, &z);
            previous = r.re;
        }
        benchmark::DoNotOptimize(previous);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}

#define MIVOR_BENCH_COMPLEX(name, in, mine, theirs)                                                    \
    void name##_mivor(benchmark::State& s) { sum_calls(s, in, mine); }                               \
    void name##_glibc(benchmark::State& s) { sum_calls(s, in, theirs); }                             \
    void name##_latency_mivor(benchmark::State& s) { chain_calls(s, in, mine); }                     \
    void name##_latency_glibc(benchmark::State& s) { chain_calls(s, in, theirs); }                   \
    BENCHMARK(name##_mivor);                                                                         \
    BENCHMARK(name##_glibc);                                                                         \
    BENCHMARK(name##_latency_mivor);                                                                 \
    BENCHMARK(name##_latency_glibc);

MIVOR_BENCH_COMPLEX(csin, common8, g_cdsin, (glibc8<csin, false>))
MIVOR_BENCH_COMPLEX(ccos, common8, g_cdcos, (glibc8<ccos, false>))
MIVOR_BENCH_COMPLEX(csin_wide, wide8, g_cdsin, (glibc8<csin, false>))
MIVOR_BENCH_COMPLEX(csinq, common8, g_cdsinq, (glibc8<csin, true>))
MIVOR_BENCH_COMPLEX(ccosq, common8, g_cdcosq, (glibc8<ccos, true>))
MIVOR_BENCH_COMPLEX(csinf, common4, g_csin, (glibc4<csinf, false>))
MIVOR_BENCH_COMPLEX(ccosf, common4, g_ccos, (glibc4<ccosf, false>))
MIVOR_BENCH_COMPLEX(csinf_wide, wide4, g_csin, (glibc4<csinf, false>))
MIVOR_BENCH_COMPLEX(csinqf, common4, g_csinq, (glibc4<csinf, true>))
MIVOR_BENCH_COMPLEX(ccosqf, common4, g_ccosq, (glibc4<ccosf, true>))

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    mivor_bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    mivor_bench::print_libm_ratios(reporter,
                                   {"csin", "ccos", "csin_wide", "csinq", "ccosq", "csinf", "ccosf", "csinf_wide",
                                    "csinqf", "ccosqf"},
                                   10, {}, 0);
    return 0;
}
