// The SSE2 GEMM and GEMV kernels, on every flavour: two rows per register.
// x86-64 has sixteen vector registers and takes a 4 x 3 GEMM tile (12
// accumulators); the 32-bit targets have eight and take 2 x 3 (six
// accumulators, the row pair of A and one product).  Contracts:
// gemm_kernels.h, gemv_kernels.h.
#include <emmintrin.h>

#include "matmul/gemm_simd.h"
#include "matmul/gemv_simd.h"

namespace mivor::matmul {
namespace {

struct Sse2 {
    using V = __m128d;
    static constexpr int kLanes = 2;
    // The panel holds each value of op(B) twice: one aligned load gives
    // the pair, where a broadcast would cost a shuffle per use.
    static constexpr int kBWidth = 2;
    static V zero() { return _mm_setzero_pd(); }
    static V set1(double x) { return _mm_set1_pd(x); }
    static V load(const double* p) { return _mm_load_pd(p); }
    static V loadu(const double* p) { return _mm_loadu_pd(p); }
    static V broadcast(const double* p) { return _mm_load1_pd(p); }
    static V add(V x, V y) { return _mm_add_pd(x, y); }
    static V mul_broadcast(V x, const double* p) { return mul(x, load(p)); }
    static V mul(V x, V y) { return _mm_mul_pd(x, y); }
    static void storeu(double* p, V x) { _mm_storeu_pd(p, x); }
};

#if defined(__x86_64__)
constexpr int kMv = 2, kNr = 3;
#else
constexpr int kMv = 1, kNr = 3;
#endif

bool always() { return true; }

// GEMV: columns streaming past the sums (A as stored), columns summed at
// once (A transposed), as the registers allow.
#if defined(__x86_64__)
constexpr int kGemvStreams = 4, kGemvCols = 2;
#else
constexpr int kGemvStreams = 4, kGemvCols = 1;
#endif

}  // namespace

const GemmKernel kGemmKernelSse2 = {"sse2", kMv * Sse2::kLanes, kNr, Sse2::kBWidth, &always,
                                    &simd_kernel<Sse2, kMv, kNr>};

const GemvKernel kGemvKernelSse2 = {"sse2", &always, &simd_n_rows<Sse2, kGemvStreams>,
                                    &simd_t_cols<Sse2, kGemvCols>};

}  // namespace mivor::matmul
