// The AVX2 GEMM and GEMV kernels (x86-64 Linux, chosen at run time): four
// rows per register, an 8 x 3 GEMM tile with 12 accumulators.  Separate
// multiplies and adds, never a fused multiply-add, so the bits are the
// reference kernels'.  Contracts: gemm_kernels.h, gemv_kernels.h.  Built
// with -mavx2 (and no -mfma).
#if defined(MIVOR_MATMUL_AVX)
#include <immintrin.h>

#include "matmul/gemm_simd.h"
#include "matmul/gemv_simd.h"

namespace mivor::matmul {
namespace {

struct Avx2 {
    using V = __m256d;
    static constexpr int kBWidth = 1;
    template <int MV, int NR>
    static constexpr bool kHandLoop = false;
    static constexpr int kLanes = 4;
    static V zero() { return _mm256_setzero_pd(); }
    static V set1(double x) { return _mm256_set1_pd(x); }
    static V load(const double* p) { return _mm256_load_pd(p); }
    static V loadu(const double* p) { return _mm256_loadu_pd(p); }
    static V broadcast(const double* p) { return _mm256_broadcast_sd(p); }
    static V add(V x, V y) { return _mm256_add_pd(x, y); }
    static V mul_broadcast(V x, const double* p) { return mul(x, broadcast(p)); }
    static V mul(V x, V y) { return _mm256_mul_pd(x, y); }
    static void storeu(double* p, V x) { _mm256_storeu_pd(p, x); }
};

constexpr int kMv = 2, kNr = 3;

bool supported() { return __builtin_cpu_supports("avx2"); }

// GEMV: columns streaming past the sums (A as stored), columns summed at
// once (A transposed).
constexpr int kGemvStreams = 8, kGemvCols = 4;

}  // namespace

const GemmKernel kGemmKernelAvx2 = {"avx2", kMv* Avx2::kLanes, kNr, 1, &supported, &simd_kernel<Avx2, kMv, kNr>};

const GemvKernel kGemvKernelAvx2 = {"avx2", &supported, &simd_n_rows<Avx2, kGemvStreams>,
                                    &simd_t_cols<Avx2, kGemvCols>};

}  // namespace mivor::matmul
#endif
