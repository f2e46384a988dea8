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
#include <chrono>
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

// Independent multiplies and adds, half of each, in as many chains as keep
// both kinds of unit busy; the best of a few timed runs.
template <class F>
double best_gflops(F body, double flops) {
    double best = 0;
    for (int rep = 0; rep < 5; ++rep) {
        const auto t0 = std::chrono::steady_clock::now();
        body();
        const double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        best = std::max(best, flops / s * 1e-9);
    }
    return best;
}

constexpr long kPeakLoops = 20000000;

#define MIVOR_PEAK_BODY(V, SET1, MUL, ADD, LANES)                                            \
    V m0 = SET1(1.0), m1 = m0, m2 = m0, m3 = m0, m4 = m0, m5 = m0, m6 = m0, m7 = m0;         \
    V a0 = SET1(0.0), a1 = a0, a2 = a0, a3 = a0, a4 = a0, a5 = a0, a6 = a0, a7 = a0;         \
    const V f = SET1(1.0000000001), g = SET1(1e-300);                                        \
    for (long i = 0; i < kPeakLoops; ++i) {                                                  \
        m0 = MUL(m0, f); m1 = MUL(m1, f); m2 = MUL(m2, f); m3 = MUL(m3, f);                  \
        m4 = MUL(m4, f); m5 = MUL(m5, f); m6 = MUL(m6, f); m7 = MUL(m7, f);                  \
        a0 = ADD(a0, g); a1 = ADD(a1, g); a2 = ADD(a2, g); a3 = ADD(a3, g);                  \
        a4 = ADD(a4, g); a5 = ADD(a5, g); a6 = ADD(a6, g); a7 = ADD(a7, g);                  \
    }                                                                                        \
    V s = ADD(ADD(ADD(m0, m1), ADD(m2, m3)), ADD(ADD(m4, m5), ADD(m6, m7)));                 \
    s = ADD(s, ADD(ADD(ADD(a0, a1), ADD(a2, a3)), ADD(ADD(a4, a5), ADD(a6, a7))));           \
    benchmark::DoNotOptimize(s);                                                             \
    return 16.0 * LANES * kPeakLoops;

double peak_sse2_body() { MIVOR_PEAK_BODY(__m128d, _mm_set1_pd, _mm_mul_pd, _mm_add_pd, 2) }

#if defined(__x86_64__)
__attribute__((target("avx2"))) double peak_avx2_body() {
    MIVOR_PEAK_BODY(__m256d, _mm256_set1_pd, _mm256_mul_pd, _mm256_add_pd, 4)
}
__attribute__((target("avx512f"))) double peak_avx512_body() {
    MIVOR_PEAK_BODY(__m512d, _mm512_set1_pd, _mm512_mul_pd, _mm512_add_pd, 8)
}
#endif

// x87: three multiply and three add chains fill the eight registers with
// the two constants.
double peak_x87() {
    auto body = [] {
        long double m0 = 1, m1 = 1, m2 = 1, a0 = 0, a1 = 0, a2 = 0;
        const long double f = 1.0000000001L, g = 1e-300L;
        for (long i = 0; i < kPeakLoops; ++i) {
            m0 = m0 * f; m1 = m1 * f; m2 = m2 * f;
            a0 = a0 + g; a1 = a1 + g; a2 = a2 + g;
        }
        long double s = m0 + m1 + m2 + a0 + a1 + a2;
        benchmark::DoNotOptimize(s);
    };
    return best_gflops(body, 6.0 * kPeakLoops);
}

struct Ceilings {
    double sse2 = 0, avx2 = 0, avx512 = 0, x87 = 0;
    double vector() const { return std::max({sse2, avx2, avx512}); }
};

Ceilings measure_ceilings() {
    Ceilings c;
    c.sse2 = best_gflops([] { peak_sse2_body(); }, 16.0 * 2 * kPeakLoops);
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2")) c.avx2 = best_gflops([] { peak_avx2_body(); }, 16.0 * 4 * kPeakLoops);
    if (__builtin_cpu_supports("avx512f")) c.avx512 = best_gflops([] { peak_avx512_body(); }, 16.0 * 8 * kPeakLoops);
#endif
    c.x87 = peak_x87();
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
    std::printf("\nceilings, independent multiplies and adds, no FMA (GFLOP/s): SSE2 %.1f", ceil.sse2);
    if (ceil.avx2 > 0) std::printf(", AVX2 %.1f", ceil.avx2);
    if (ceil.avx512 > 0) std::printf(", AVX-512 %.1f", ceil.avx512);
    std::printf("; x87 %.1f\n", ceil.x87);
    return 0;
}
