// Throughput of the inverse circular functions, the degree and quadrant
// forms, the hyperbolic functions and the sine-cosine pairs beside glibc's
// libm in the same run.  The degree and quadrant forms are compared with
// what a user would write with libm (sin(x * (pi/180)), asin(x) * (180/pi)),
// the pairs with two calls of this library's single functions.  After the
// table: the ratios (mivor / peer, below 1 is faster), fastest repetition
// (run with --benchmark_repetitions=N).
//
// Each iteration evaluates 1024 independent arguments (a few functions also
// in a chain, each argument waiting for the previous result: latency).
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
std::vector<T> uniform(double lo, double hi, std::uint64_t seed) {
    std::uint64_t s = seed;
    std::vector<T> v(kN);
    for (T& x : v) x = static_cast<T>(lo + (hi - lo) * static_cast<double>(splitmix(s) >> 11) * 0x1p-53);
    return v;
}
// Magnitudes log-uniform in [2^-10, limit], random signs.
template <class T>
std::vector<T> wide(double limit, std::uint64_t seed) {
    std::uint64_t s = seed;
    std::vector<T> v(kN);
    for (T& x : v) {
        const double u = static_cast<double>(splitmix(s) >> 11) * 0x1p-53;
        x = static_cast<T>(((splitmix(s) & 1) ? -1.0 : 1.0) * std::exp2(-10.0 + u * (std::log2(limit) + 10.0)));
    }
    return v;
}

const auto d_unit = uniform<double>(-1.0, 1.0, 1);         // asin, acos
const auto d_wide = wide<double>(1e6, 2);                   // atan, atan2
const auto d_wide2 = wide<double>(1e6, 3);
const auto d_deg = uniform<double>(-720.0, 720.0, 4);       // degrees
const auto d_quad = uniform<double>(-8.0, 8.0, 5);          // quadrants
const auto d_hyp = uniform<double>(-20.0, 20.0, 6);         // sinh, cosh, tanh: every range to 20
const auto d_small = uniform<double>(-10.0, 10.0, 7);       // the radian pair
const auto f_unit = uniform<float>(-1.0, 1.0, 1);
const auto f_wide = wide<float>(1e6, 2);
const auto f_wide2 = wide<float>(1e6, 3);
const auto f_deg = uniform<float>(-720.0, 720.0, 4);
const auto f_quad = uniform<float>(-8.0, 8.0, 5);
const auto f_hyp = uniform<float>(-20.0, 20.0, 6);
const auto f_small = uniform<float>(-10.0, 10.0, 7);

// The peers as a user writes them.
constexpr double kD2R = 3.141592653589793 / 180, kR2D = 180 / 3.141592653589793;
constexpr double kQ2R = 3.141592653589793 / 2, kR2Q = 2 / 3.141592653589793;
constexpr float kD2Rf = static_cast<float>(kD2R), kR2Df = static_cast<float>(kR2D);
constexpr float kQ2Rf = static_cast<float>(kQ2R), kR2Qf = static_cast<float>(kR2Q);
double sin_deg(double x) { return ::sin(x * kD2R); }
double cos_deg(double x) { return ::cos(x * kD2R); }
double tan_deg(double x) { return ::tan(x * kD2R); }
double cot_deg(double x) { return 1.0 / ::tan(x * kD2R); }
double asin_deg(double x) { return ::asin(x) * kR2D; }
double acos_deg(double x) { return ::acos(x) * kR2D; }
double atan_deg(double x) { return ::atan(x) * kR2D; }
double sin_quad(double x) { return ::sin(x * kQ2R); }
double cos_quad(double x) { return ::cos(x * kQ2R); }
double tan_quad(double x) { return ::tan(x * kQ2R); }
double asin_quad(double x) { return ::asin(x) * kR2Q; }
double atan_quad(double x) { return ::atan(x) * kR2Q; }
float sinf_deg(float x) { return ::sinf(x * kD2Rf); }
float cosf_deg(float x) { return ::cosf(x * kD2Rf); }
float tanf_deg(float x) { return ::tanf(x * kD2Rf); }
float asinf_deg(float x) { return ::asinf(x) * kR2Df; }
float atanf_deg(float x) { return ::atanf(x) * kR2Df; }
float sinf_quad(float x) { return ::sinf(x * kQ2Rf); }
float cosf_quad(float x) { return ::cosf(x * kQ2Rf); }
float asinf_quad(float x) { return ::asinf(x) * kR2Qf; }
double datan_rounded(const double* x) { return static_cast<double>(g_datan(x)); }

// name_mivor, name_glibc: throughput only.
#define BENCH_THROUGHPUT(name, T, in, mine, theirs)                                                         \
    void name##_mivor(benchmark::State& s) { sum_each<T>(s, in, [](T x) { return mine(&x); }); }          \
    void name##_glibc(benchmark::State& s) { sum_each<T>(s, in, [](T x) { return theirs(x); }); }         \
    BENCHMARK(name##_mivor);                                                                               \
    BENCHMARK(name##_glibc);

// Two arguments: y from in, x from in2.
template <class T, class F>
void sum_pairs(benchmark::State& state, const std::vector<T>& in, const std::vector<T>& in2, F f) {
    for (auto _ : state) {
        T acc = 0;
        for (int i = 0; i < kN; ++i) acc += f(in[i], in2[i]);
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}
#define BENCH_TWO(name, T, in, in2, mine, theirs)                                                               \
    void name##_mivor(benchmark::State& s) { sum_pairs<T>(s, in, in2, [](T y, T x) { return mine(&y, &x); }); } \
    void name##_glibc(benchmark::State& s) { sum_pairs<T>(s, in, in2, [](T y, T x) { return theirs(y, x); }); } \
    BENCHMARK(name##_mivor);                                                                                     \
    BENCHMARK(name##_glibc);

double atan2_deg(double y, double x) { return ::atan2(y, x) * kR2D; }
double atan2_quad(double y, double x) { return ::atan2(y, x) * kR2Q; }
float atan2f_deg(float y, float x) { return ::atan2f(y, x) * kR2Df; }

// Pairs: name_pair (one call) and name_singles (two calls), per argument.
template <class T, class C, class P>
void pair_loop(benchmark::State& state, const std::vector<T>& in, P pair) {
    for (auto _ : state) {
        T acc = 0;
        for (int i = 0; i < kN; ++i) {
            C r;
            pair(r, in[i]);
            acc += r.re + r.im;
        }
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}
template <class T, class S>
void singles_loop(benchmark::State& state, const std::vector<T>& in, S singles) {
    for (auto _ : state) {
        T acc = 0;
        for (int i = 0; i < kN; ++i) acc += singles(in[i]);
        benchmark::DoNotOptimize(acc);
    }
    state.SetItemsProcessed(state.iterations() * kN);
}
#define BENCH_PAIR(name, T, C, in, pair_fn, first, second, scale)                                            \
    void name##_pair(benchmark::State& s) {                                                                   \
        pair_loop<T, C>(s, in, [](C& r, T x) { pair_fn(&r, &x); });                                        \
    }                                                                                                         \
    void name##_singles(benchmark::State& s) {                                                                \
        singles_loop<T>(s, in, [](T x) {                                                                      \
            const T y = x * static_cast<T>(scale);                                                            \
            return first(&y) + second(&y);                                                                    \
        });                                                                                                   \
    }                                                                                                         \
    BENCHMARK(name##_pair);                                                                                   \
    BENCHMARK(name##_singles);

// Inverse circular.
MIVOR_BENCH_LIBM(asin, double, d_unit, g_dasin, ::asin)
BENCH_THROUGHPUT(acos, double, d_unit, g_dacos, ::acos)
BENCH_THROUGHPUT(atan, double, d_wide, datan_rounded, ::atan)
BENCH_TWO(atan2, double, d_wide, d_wide2, g_datan2, ::atan2)
BENCH_THROUGHPUT(asinf, float, f_unit, g_asin, ::asinf)
BENCH_THROUGHPUT(acosf, float, f_unit, g_acos, ::acosf)
BENCH_THROUGHPUT(atanf, float, f_wide, g_atan, ::atanf)
BENCH_TWO(atan2f, float, f_wide, f_wide2, g_atan2, ::atan2f)
// Degrees.
MIVOR_BENCH_LIBM(sind, double, d_deg, g_dsind, sin_deg)
BENCH_THROUGHPUT(cosd, double, d_deg, g_dcosd, cos_deg)
BENCH_THROUGHPUT(tand, double, d_deg, g_dtand, tan_deg)
BENCH_THROUGHPUT(cotd, double, d_deg, g_dcotd, cot_deg)
BENCH_THROUGHPUT(asind, double, d_unit, g_dasind, asin_deg)
BENCH_THROUGHPUT(acosd, double, d_unit, g_dacosd, acos_deg)
BENCH_THROUGHPUT(atand, double, d_wide, g_datand, atan_deg)
BENCH_TWO(atan2d, double, d_wide, d_wide2, g_dtan2d, atan2_deg)
BENCH_THROUGHPUT(sindf, float, f_deg, g_sind, sinf_deg)
BENCH_THROUGHPUT(cosdf, float, f_deg, g_cosd, cosf_deg)
BENCH_THROUGHPUT(tandf, float, f_deg, g_tand, tanf_deg)
BENCH_THROUGHPUT(asindf, float, f_unit, g_asind, asinf_deg)
BENCH_THROUGHPUT(atandf, float, f_wide, g_atand, atanf_deg)
BENCH_TWO(atan2df, float, f_wide, f_wide2, g_atan2d, atan2f_deg)
// Quadrants.
BENCH_THROUGHPUT(sinq, double, d_quad, g_dsinq, sin_quad)
BENCH_THROUGHPUT(cosq, double, d_quad, g_dcosq, cos_quad)
BENCH_THROUGHPUT(tanq, double, d_quad, g_dtanq, tan_quad)
BENCH_THROUGHPUT(asinq, double, d_unit, g_dasinq, asin_quad)
BENCH_THROUGHPUT(atanq, double, d_wide, g_datanq, atan_quad)
BENCH_TWO(atan2q, double, d_wide, d_wide2, g_dtan2q, atan2_quad)
BENCH_THROUGHPUT(sinqf, float, f_quad, g_sinq, sinf_quad)
BENCH_THROUGHPUT(cosqf, float, f_quad, g_cosq, cosf_quad)
BENCH_THROUGHPUT(asinqf, float, f_unit, g_asinq, asinf_quad)
// Hyperbolic.
MIVOR_BENCH_LIBM(sinh, double, d_hyp, g_dsinh, ::sinh)
BENCH_THROUGHPUT(cosh, double, d_hyp, g_dcosh, ::cosh)
BENCH_THROUGHPUT(tanh, double, d_hyp, g_dtanh, ::tanh)
BENCH_THROUGHPUT(sinhf, float, f_hyp, g_sinh, ::sinhf)
BENCH_THROUGHPUT(coshf, float, f_hyp, g_cosh, ::coshf)
BENCH_THROUGHPUT(tanhf, float, f_hyp, g_tanh, ::tanhf)
// Pairs against two single calls (the quadrant hyperbolic pairs against
// the singles on x pi/2).
BENCH_PAIR(dscn, double, mivor_complex8, d_small, g_dscn, g_dsin, g_dcos, 1)
BENCH_PAIR(dscnq, double, mivor_complex8, d_quad, g_dscnq, g_dsinq, g_dcosq, 1)
BENCH_PAIR(dsch, double, mivor_complex8, d_hyp, g_dsch, g_dsinh, g_dcosh, 1)
BENCH_PAIR(dschq, double, mivor_complex8, d_small, g_dschq, g_dsinh, g_dcosh, 1.5707963267948966)
BENCH_PAIR(scns, float, mivor_complex4, f_small, g_scns, g_sin, g_cos, 1)
BENCH_PAIR(scnsq, float, mivor_complex4, f_quad, g_scnsq, g_sinq, g_cosq, 1)
BENCH_PAIR(scnh, float, mivor_complex4, f_hyp, g_scnh, g_sinh, g_cosh, 1)
BENCH_PAIR(scnhq, float, mivor_complex4, f_small, g_scnhq, g_sinh, g_cosh, 1.5707963267948966)

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    mivor_bench::RatioReporter reporter({.medians = true});
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\nratio mivor/glibc per call, throughput (below 1 is faster):\n");
    reporter.print_ratios({"asin", "acos", "atan", "atan2", "asinf", "acosf", "atanf", "atan2f", "sind", "cosd", "tand",
                           "cotd", "asind", "acosd", "atand", "atan2d", "sindf", "cosdf", "tandf", "asindf", "atandf",
                           "atan2df", "sinq", "cosq", "tanq", "asinq", "atanq", "atan2q", "sinqf", "cosqf", "asinqf",
                           "sinh", "cosh", "tanh", "sinhf", "coshf", "tanhf"},
                          "_mivor", "_glibc", 8);
    std::printf("ratio mivor/glibc per call, latency:\n");
    reporter.print_ratios({"asin", "sind", "sinh"}, "_latency_mivor", "_latency_glibc", 8);
    std::printf("ratio pair / two single calls:\n");
    reporter.print_ratios({"dscn", "dscnq", "dsch", "dschq", "scns", "scnsq", "scnh", "scnhq"}, "_pair", "_singles", 8);
    return 0;
}
