// The matrix products beside their peers, single thread, in one run:
//
//   dgemm    g_mt22blasd        against OpenBLAS cblas_dgemm
//   dgemv    g_mt21blasd (N, T) against OpenBLAS cblas_dgemv
//   matmul   g_matmld, g_matmlr, g_matmlx against gfortran's MATMUL
//            (host only: the 32-bit gfortran run-time is not installed)
//
// Shapes are m x k x n (A is m x k, B is k x n).  After the Google
// Benchmark table it prints, per case, the GFLOP/s of both (the fastest
// repetition: on a shared machine the others measure the neighbours) and
// the ratio mivor / peer (above 1 is faster), then the machine's measured
// ceilings: the peak of independent vector multiplies and adds without
// fused multiply-add, per instruction set, and of x87 multiplies and adds,
// with each case's share of the ceiling its kernel runs on.
//
// OpenBLAS runs with one thread (openblas_set_num_threads(1), as with
// OPENBLAS_NUM_THREADS=1); its kernel choice (OPENBLAS_CORETYPE) is left
// as the environment has it and printed.
//
//   matmul_bench --benchmark_repetitions=3 [--benchmark_filter=dgemm]
#include <benchmark/benchmark.h>
#include <immintrin.h>

#include <algorithm>
#include <ctime>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "mivor/descriptor.h"
#include "mivor/mivor.h"

extern "C" {
// OpenBLAS, declared here to stay clear of the several cblas.h on the system.
void cblas_dgemm(int order, int transa, int transb, int m, int n, int k, double alpha, const double* a, int lda,
                 const double* b, int ldb, double beta, double* c, int ldc);
void cblas_dgemv(int order, int trans, int m, int n, double alpha, const double* a, int lda, const double* x,
                 int incx, double beta, double* y, int incy);
void openblas_set_num_threads(int n);
char* openblas_get_corename(void);
#if defined(MIVOR_BENCH_GFORTRAN)
// gfortran's MATMUL on explicit-shape arrays (gfortran_matmul.f90).
void gf_matmul_d(int m, int k, int n, const double* a, const double* b, double* c);
void gf_matmul_r(int m, int k, int n, const float* a, const float* b, float* c);
void gf_matmul_x(int m, int k, int n, const mivor_complex8* a, const mivor_complex8* b, mivor_complex8* c);
#endif
}

namespace {

constexpr int kColMajor = 102, kNoTrans = 111, kTrans = 112;

std::uint64_t g_seed = 1;
double next_value() {
    g_seed = g_seed * 6364136223846793005u + 1442695040888963407u;
    return static_cast<double>(g_seed >> 11) * 0x1p-53 - 0.5;
}

struct Desc {
    std::int32_t s1, e1, s2, e2;
    mivor_descriptor d{};
    Desc(void* base, std::int32_t size, std::int32_t rows, std::int32_t cols, int rank = 2)
        : s1(size), e1(rows), s2(size * rows), e2(cols) {
        d.base = base;
        d.rank = static_cast<std::int8_t>(rank);
        d.stride1 = &s1;
        d.extent1 = &e1;
        d.stride2 = &s2;
        d.extent2 = &e2;
    }
};

// ---- the cases ------------------------------------------------------------

struct Case {
    std::string op, shape;
    double flops;
    const char* ceiling;  // "vector" or "x87"
    std::function<void()> mine, peer;
};

std::vector<std::unique_ptr<Case>>& cases() {
    static std::vector<std::unique_ptr<Case>> all;
    return all;
}

std::string shape_name(int m, int k, int n) {
    return std::to_string(m) + "x" + std::to_string(k) + "x" + std::to_string(n);
}

void add_gemm(int m, int k, int n) {
    struct Data {
        std::vector<double> a, b, c;
        int m, k, n;
        Desc da, db, dc;
        char t = 'N';
        double alpha = 1.0, beta = 1.0;
        std::int32_t lda, ldb, ldc;
        mivor_gemm_args args;
        Data(int m_, int k_, int n_)
            : a(std::size_t(m_) * k_), b(std::size_t(k_) * n_), c(std::size_t(m_) * n_), m(m_), k(k_), n(n_),
              da(a.data(), 8, m_, k_), db(b.data(), 8, k_, n_), dc(c.data(), 8, m_, n_), lda(m_), ldb(k_), ldc(m_) {
            for (auto* v : {&a, &b, &c})
                for (double& x : *v) x = next_value();
            args = {&dc.d, &da.d, &db.d, nullptr, &t, &t, &alpha, &beta, &ldc, &lda, &ldb, &ldc};
        }
    };
    auto data = std::make_shared<Data>(m, k, n);
    cases().push_back(std::make_unique<Case>(Case{
        "dgemm", shape_name(m, k, n), 2.0 * m * k * n, "vector", [data] { g_mt22blasd(&data->args); },
        [data] {
            cblas_dgemm(kColMajor, kNoTrans, kNoTrans, data->m, data->n, data->k, 1.0, data->a.data(), data->m,
                        data->b.data(), data->k, 1.0, data->c.data(), data->m);
        }}));
}

void add_gemv(char trans, int n) {
    struct Data {
        std::vector<double> a, x, y;
        int n;
        Desc da, dx, dy;
        char t;
        double alpha = 1.0, beta = 1.0;
        std::int32_t lda;
        mivor_gemv_args args;
        Data(char t_, int n_)
            : a(std::size_t(n_) * n_), x(n_), y(n_), n(n_), da(a.data(), 8, n_, n_), dx(x.data(), 8, n_, 1, 1),
              dy(y.data(), 8, n_, 1, 1), t(t_), lda(n_) {
            for (auto* v : {&a, &x, &y})
                for (double& e : *v) e = next_value();
            args = {&dy.d, &da.d, &dx.d, nullptr, &t, &alpha, &beta, &lda};
        }
    };
    auto data = std::make_shared<Data>(trans, n);
    cases().push_back(std::make_unique<Case>(Case{
        std::string("dgemv_") + trans, shape_name(n, n, 1), 2.0 * n * n, "vector",
        [data] { g_mt21blasd(&data->args); },
        [data] {
            cblas_dgemv(kColMajor, data->t == 'T' ? kTrans : kNoTrans, data->n, data->n, 1.0, data->a.data(), data->n,
                        data->x.data(), 1, 1.0, data->y.data(), 1);
        }}));
}

#if defined(MIVOR_BENCH_GFORTRAN)
template <class T>
void add_matmul(const char* op, void (*mine)(const void*), void (*gf)(int, int, int, const T*, const T*, T*), int n,
                double flops_per_term) {
    struct Data {
        std::vector<T> a, b, c;
        Desc da, db, dc;
        mivor_matmul_args args;
        explicit Data(int n_)
            : a(std::size_t(n_) * n_), b(std::size_t(n_) * n_), c(std::size_t(n_) * n_),
              da(a.data(), sizeof(T), n_, n_), db(b.data(), sizeof(T), n_, n_), dc(c.data(), sizeof(T), n_, n_) {
            for (auto* v : {&a, &b})
                for (T& e : *v) {
                    double* parts = reinterpret_cast<double*>(&e);
                    if constexpr (sizeof(T) == 4) e = static_cast<float>(next_value());
                    else for (std::size_t i = 0; i < sizeof(T) / 8; ++i) parts[i] = next_value();
                }
            args = {&dc.d, &da.d, &db.d};
        }
    };
    auto data = std::make_shared<Data>(n);
    cases().push_back(std::make_unique<Case>(Case{
        op, shape_name(n, n, n), flops_per_term * n * n * n, "x87", [data, mine] { mine(&data->args); },
        [data, gf, n] { gf(n, n, n, data->a.data(), data->b.data(), data->c.data()); }}));
}
#endif

// ---- ceilings -------------------------------------------------------------

// What the kernels' inner loops could reach at best: acc = acc + x * y on
// registers, as many independent accumulators as the registers allow, so
// that only the multiply and add units limit it (no fused multiply-add for
// the library's ceiling; the FMA rate beside it for comparison, which is
// what OpenBLAS runs on).  The best of a few timed runs.
// Processor time of this thread, like the table's: a shared machine's
// other work does not count against either.
double thread_seconds() {
    timespec t;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + 1e-9 * static_cast<double>(t.tv_nsec);
}

template <class F>
double best_gflops(F body, double flops) {
    double best = 0;
    for (int rep = 0; rep < 5; ++rep) {
        const double t0 = thread_seconds();
        body();
        best = std::max(best, flops / (thread_seconds() - t0) * 1e-9);
    }
    return best;
}

constexpr long kPeakLoops = 4000000;

// R accumulators of LANES doubles; FMA: fused, else a multiply and an add.
#define MIVOR_REG(c, y) c(y)
#define MIVOR_PEAK(NAME, TARGET, V, SET1, MUL, ADD, FMA, LANES, R, FUSED, REG)                     \
    TARGET double NAME() {                                                                          \
        V acc[R], x[R];                                                                             \
        for (int i = 0; i < R; ++i) {                                                               \
            acc[i] = SET1(0.0);                                                                     \
            x[i] = SET1(1.0 + i * 1e-9);                                                            \
        }                                                                                           \
        V y = SET1(0.999999999);                                                                    \
        for (long it = 0; it < kPeakLoops; ++it) {                                                  \
            _Pragma("GCC unroll 32") for (int i = 0; i < R; ++i) acc[i] = FUSED ? FMA(x[i], y, acc[i]) \
                                                                             : ADD(acc[i], MUL(x[i], y)); \
            __asm__ volatile("" : MIVOR_REG(REG, y));                                                          \
        }                                                                                           \
        V s = acc[0];                                                                               \
        for (int i = 1; i < R; ++i) s = ADD(s, acc[i]);                                             \
        benchmark::DoNotOptimize(s);                                                                \
        return 2.0 * LANES * R * kPeakLoops;                                                        \
    }

inline __m128d no_fma128(__m128d, __m128d, __m128d c) { return c; }
#if defined(__x86_64__)
MIVOR_PEAK(peak_sse2, , __m128d, _mm_set1_pd, _mm_mul_pd, _mm_add_pd, no_fma128, 2, 12, false, "+x")
#else
MIVOR_PEAK(peak_sse2, , __m128d, _mm_set1_pd, _mm_mul_pd, _mm_add_pd, no_fma128, 2, 6, false, "+x")
#endif
#if defined(__x86_64__)
#define MIVOR_AVX2 __attribute__((target("avx2,fma")))
#define MIVOR_AVX512 __attribute__((target("avx512f,fma")))
MIVOR_PEAK(peak_avx2, MIVOR_AVX2, __m256d, _mm256_set1_pd, _mm256_mul_pd, _mm256_add_pd, _mm256_fmadd_pd, 4, 12, false,
           "+x")
MIVOR_PEAK(fma_avx2, MIVOR_AVX2, __m256d, _mm256_set1_pd, _mm256_mul_pd, _mm256_add_pd, _mm256_fmadd_pd, 4, 12, true,
           "+x")
MIVOR_PEAK(peak_avx512, MIVOR_AVX512, __m512d, _mm512_set1_pd, _mm512_mul_pd, _mm512_add_pd, _mm512_fmadd_pd, 8,
           24, false, "+v")
MIVOR_PEAK(fma_avx512, MIVOR_AVX512, __m512d, _mm512_set1_pd, _mm512_mul_pd, _mm512_add_pd, _mm512_fmadd_pd, 8, 24,
           true, "+v")
#endif

// x87: the shape of MATMUL's inner loop, four running sums taking a
// product of an operand from memory and one held in a register, the
// operands in the first-level cache.
__attribute__((noinline)) double peak_x87() {
    static double a[64];
    for (int i = 0; i < 64; ++i) a[i] = 1.0 + i * 1e-9;
    const double* p = a;
    long double s0 = 0, s1 = 0, s2 = 0, s3 = 0;
    const long double b = 0.999999999L;
    for (long it = 0; it < kPeakLoops / 8; ++it) {
        for (int k = 0; k < 64; k += 4) {
            s0 = s0 + p[k] * b;
            s1 = s1 + p[k + 1] * b;
            s2 = s2 + p[k + 2] * b;
            s3 = s3 + p[k + 3] * b;
        }
        __asm__ volatile("" : "+r"(p));
    }
    long double s = s0 + s1 + s2 + s3;
    benchmark::DoNotOptimize(s);
    return 2.0 * 64 * (kPeakLoops / 8);
}

struct Ceilings {
    double sse2 = 0, avx2 = 0, avx512 = 0, fma2 = 0, fma512 = 0, x87 = 0;
    double vector() const { return std::max({sse2, avx2, avx512}); }
};

Ceilings measure_ceilings() {
    Ceilings c;
    c.sse2 = best_gflops([] { peak_sse2(); }, peak_sse2());
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) {
        c.avx2 = best_gflops([] { peak_avx2(); }, peak_avx2());
        c.fma2 = best_gflops([] { fma_avx2(); }, fma_avx2());
    }
    if (__builtin_cpu_supports("avx512f")) {
        c.avx512 = best_gflops([] { peak_avx512(); }, peak_avx512());
        c.fma512 = best_gflops([] { fma_avx512(); }, fma_avx512());
    }
#endif
    c.x87 = best_gflops([] { peak_x87(); }, peak_x87());
    return c;
}

// ---- reporting ------------------------------------------------------------

class Reporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& r : runs) {
            if (r.run_type != Run::RT_Iteration || r.iterations == 0 || r.error_occurred) continue;
            // Processor time: single-threaded on both sides, and on a shared
            // machine wall time also counts the neighbours' turns.
            const double s = r.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(r.time_unit);
            const auto [it, fresh] = seconds.emplace(r.run_name.function_name, s);
            if (!fresh && s < it->second) it->second = s;
        }
        ConsoleReporter::ReportRuns(runs);
    }
    std::map<std::string, double> seconds;
};

}  // namespace

int main(int argc, char** argv) {
    openblas_set_num_threads(1);
    add_gemm(64, 64, 64);
    for (int n : {128, 256, 512, 1024, 2048}) add_gemm(n, n, n);
    add_gemm(1000, 7, 1000);
    add_gemm(7, 1000, 1000);
    for (int n : {256, 1024, 2048, 4096}) add_gemv('N', n);
    for (int n : {256, 1024, 2048, 4096}) add_gemv('T', n);
#if defined(MIVOR_BENCH_GFORTRAN)
    for (int n : {64, 256, 512, 1024}) add_matmul<double>("matmul_d", g_matmld, gf_matmul_d, n, 2);
    for (int n : {64, 256, 512, 1024}) add_matmul<float>("matmul_r", g_matmlr, gf_matmul_r, n, 2);
    for (int n : {64, 256, 512}) add_matmul<mivor_complex8>("matmul_x", g_matmlx, gf_matmul_x, n, 8);
#endif
    for (const auto& c : cases()) {
        const std::string base = c->op + "/" + c->shape;
        benchmark::RegisterBenchmark((base + "/mivor").c_str(), [f = c->mine](benchmark::State& s) {
            for (auto _ : s) f();
        })->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((base + "/peer").c_str(), [f = c->peer](benchmark::State& s) {
            for (auto _ : s) f();
        })->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    Reporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    const Ceilings ceil = measure_ceilings();
    std::printf("\nOpenBLAS core: %s, 1 thread; peers of matmul_*: gfortran MATMUL\n", openblas_get_corename());
    std::printf("%-10s %-15s %12s %12s %8s %10s\n", "op", "m x k x n", "mivor GF/s", "peer GF/s", "ratio",
                "of ceiling");
    for (const auto& c : cases()) {
        const std::string base = c->op + "/" + c->shape;
        const auto mine = reporter.seconds.find(base + "/mivor"), peer = reporter.seconds.find(base + "/peer");
        if (mine == reporter.seconds.end() || peer == reporter.seconds.end()) continue;
        const double gm = c->flops / mine->second * 1e-9, gp = c->flops / peer->second * 1e-9;
        const double ceiling = std::string(c->ceiling) == "x87" ? ceil.x87 : ceil.vector();
        std::printf("%-10s %-15s %12.2f %12.2f %8.3f %10.3f\n", c->op.c_str(), c->shape.c_str(), gm, gp, gm / gp,
                    gm / ceiling);
    }
    std::printf("\nceilings (GFLOP/s), acc = acc + x y without FMA: SSE2 %.1f", ceil.sse2);
    if (ceil.avx2 > 0) std::printf(", AVX2 %.1f", ceil.avx2);
    if (ceil.avx512 > 0) std::printf(", AVX-512 %.1f", ceil.avx512);
    std::printf("; x87 with an operand from memory %.2f\n", ceil.x87);
    if (ceil.fma2 > 0) std::printf("for comparison, with FMA: AVX2 %.1f", ceil.fma2);
    if (ceil.fma512 > 0) std::printf(", AVX-512 %.1f", ceil.fma512);
    if (ceil.fma2 > 0) std::printf("\n");
    return 0;
}
